// What may stand where the cursor is, for the completion scripts of shells.
//
// A script asks with a hidden command, "sbd __complete WORD...": the words behind the program's
// name up to the cursor, the last of which is completed and may be empty. The first line of the
// answer tells what files are candidates, too: "files none", "files any" or "files descriptors".
// A line follows for each candidate: the whole word and, behind a tab, what it is. Behind a
// candidate that ends in "." or "=" something else is to be typed.
//
// Nothing is said about what is wrong: nobody asked.
#ifndef TOOLS_COMPLETION_H
#define TOOLS_COMPLETION_H

#include <string>
#include <string_view>
#include <vector>

#include "tools/command_description.h"

namespace sbd_tool {

inline constexpr std::string_view k_complete_command = "__complete";

struct CANDIDATE {
  std::string text;
  std::string description;
};

struct COMPLETION {
  enum class FILES { NONE, ANY, DESCRIPTORS };

  FILES files = FILES::NONE;
  std::vector<CANDIDATE> candidates;
};

// `words` as above; an empty list stands for an empty word.
COMPLETION complete(const COMMAND_DESCRIPTION& tool, const std::vector<std::string>& words);

// As a script reads it.
std::string format_completion(const COMPLETION& completion);

}  // namespace sbd_tool

#endif
