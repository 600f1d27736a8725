// The bytes of a file that the tool was given.
#ifndef TOOLS_INPUT_H
#define TOOLS_INPUT_H

#include <string>

namespace sbd_tool {

// The path that stands for standard input.
inline constexpr char k_standard_input[] = "-";

struct INPUT {
  std::string name;  // As messages call it.
  std::string bytes;
  std::string failure;  // Why it can't be read; empty when it was.
};

// Reads a file, a pipe, or standard input to its end.
INPUT read_input(const std::string& path);

}  // namespace sbd_tool

#endif
