// The line of a file that a finding is about, with a mark below the place.
#ifndef TOOLS_EXCERPT_H
#define TOOLS_EXCERPT_H

#include <cstddef>
#include <string>
#include <string_view>

#include "sbd/sbd_file_parser.h"

namespace sbd_tool {

struct EXCERPT {
  std::string line;              // Fit for a terminal; a long line is cut around the place.
  std::size_t mark_column = 0;   // In characters of `line`, from 0.
  std::size_t mark_width = 1;    // At least 1.
  bool is_end_of_input = false;  // The place is not a part of the text, but where it ends.
};

// `place` lies in `source`. What it covers beyond the end of its line is not marked.
EXCERPT make_excerpt(std::string_view source, const SBD_FILE_PARSER::SBD_SOURCE_RANGE& place);

}  // namespace sbd_tool

#endif
