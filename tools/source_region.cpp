#include "tools/source_region.h"

#include <algorithm>

#include "tools/visible_text.h"

namespace sbd_tool {

std::size_t REGION_FINDER::count_characters(std::size_t begin, std::size_t end) const {
  std::string_view left = m_source.substr(begin, end - begin);
  std::size_t count = 0;
  while (!left.empty()) {
    take_visible(left);
    ++count;
  }
  return count;
}

SOURCE_REGION REGION_FINDER::find(const SBD_FILE_PARSER::SBD_SOURCE_RANGE& place) {
  const std::size_t offset = std::min(place.offset, m_source.size());
  const bool is_behind = place.line == m_line && offset >= m_offset;
  if (!is_behind) {
    m_line = place.line;
    m_offset = offset - std::min<std::size_t>(place.column - 1, offset);
    m_column = 1;
  }
  m_column += count_characters(m_offset, offset);
  m_offset = offset;

  SOURCE_REGION region;
  region.start_line = place.line;
  region.start_column = m_column;
  const std::string_view text = m_source.substr(offset, place.length);
  const std::size_t last_line_end = text.rfind('\n');
  region.end_line =
      place.line + static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
  region.end_column = last_line_end == std::string_view::npos
                          ? m_column + count_characters(offset, offset + text.size())
                          : 1 + count_characters(offset + last_line_end + 1, offset + text.size());
  return region;
}

}  // namespace sbd_tool
