// Places the way other programs count them.
#ifndef TOOLS_SOURCE_REGION_H
#define TOOLS_SOURCE_REGION_H

#include <cstddef>
#include <string_view>

#include "sbd/sbd_file_parser.h"

namespace sbd_tool {

// Lines and columns count from 1, columns in characters; a byte that is no UTF-8 counts as one.
struct SOURCE_REGION {
  std::size_t start_line = 1;
  std::size_t start_column = 1;
  std::size_t end_line = 1;
  std::size_t end_column = 1;  // Behind the last character.
};

// Finds regions in a text, fastest when they are asked for in order.
class REGION_FINDER {
 public:
  explicit REGION_FINDER(std::string_view source) : m_source(source) {}

  SOURCE_REGION find(const SBD_FILE_PARSER::SBD_SOURCE_RANGE& place);

 private:
  std::size_t count_characters(std::size_t begin, std::size_t end) const;

  std::string_view m_source;
  // The place of the last answer: a line may be long, and full of findings.
  std::size_t m_line = 0;
  std::size_t m_offset = 0;
  std::size_t m_column = 1;
};

}  // namespace sbd_tool

#endif
