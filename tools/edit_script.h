// Edits as lines of text.
#ifndef TOOLS_EDIT_SCRIPT_H
#define TOOLS_EDIT_SCRIPT_H

#include <string>
#include <string_view>
#include <vector>

#include "tools/edit.h"

namespace sbd_tool {

// The words of a line, which blanks are between. A value stays one word, as a descriptor has it: a
// text in double quotes with them, a list with its braces and all that is between. "#" at the begin
// of a word begins a comment. False, with the reason in `fault`, when quotes or braces stay open.
bool split_words(std::string_view line, std::vector<std::string>& words, std::string& fault);

// The edits of a script, with `name` and the line as origin. False, with the reason in `fault`,
// when a line is not an edit.
bool read_edit_script(std::string_view script, const std::string& name, std::vector<EDIT>& edits,
                      std::string& fault);

}  // namespace sbd_tool

#endif
