// How the tool ends.
#ifndef TOOLS_EXIT_CODE_H
#define TOOLS_EXIT_CODE_H

#include <algorithm>
#include <array>

namespace sbd_tool {

// The greater code wins when several files are worked on.
enum EXIT_CODE : int {
  EXIT_FINE = 0,
  EXIT_FAULTS = 1,   // The file has faults, or has not what was asked for.
  EXIT_UNUSABLE = 2  // Wrong use, an unreadable file, or output that can't be written.
};

struct EXIT_CODE_MEANING {
  EXIT_CODE code;
  const char* meaning;
};

inline constexpr std::array<EXIT_CODE_MEANING, 3> k_exit_codes = {
    {{EXIT_FINE, "fine"},
     {EXIT_FAULTS,
      "the file has faults, has not what was asked for, can't be edited so, or differs"},
     {EXIT_UNUSABLE, "wrong use, an unreadable file, or output that can't be written"}}};

inline EXIT_CODE worse_of(EXIT_CODE a, EXIT_CODE b) {
  return std::max(a, b);
}

}  // namespace sbd_tool

#endif
