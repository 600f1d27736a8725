#include "sbd/reading/sbd_source.h"

#include <algorithm>
#include <cstring>

char* SBD_SOURCE::allocate(std::size_t length) {
  return SBD_ALLOCATOR<char>().allocate(length + k_padding);
}

void SBD_SOURCE::free(char* buffer) noexcept {
  SBD_ALLOCATOR<char>().deallocate(buffer, 0);
}

void SBD_SOURCE::adopt(char* buffer, std::size_t length) noexcept {
  release();
  std::memset(buffer + length, 0, k_padding);
  m_text = buffer;
  m_length = length;
}

void SBD_SOURCE::release() noexcept {
  free(m_text);
  m_text = nullptr;
  m_length = 0;
  m_marks.release();
}

SBD_FILE_PARSER::SBD_SOURCE_RANGE SBD_SOURCE::range(std::size_t offset, std::size_t length) const {
  const std::uint32_t* const mark =
      std::upper_bound(m_marks.begin(), m_marks.end(), static_cast<std::uint32_t>(offset));
  const auto marks_before = static_cast<std::size_t>(mark - m_marks.begin());
  // Marks are set while the text is parsed; where they end, lines are counted from the last one.
  std::size_t line_begin = marks_before == 0 ? 0 : mark[-1];
  unsigned long line = marks_before == 0 ? 1 : marks_before * k_lines_per_mark;
  for (;;) {
    const void* const newline =
        std::memchr(m_text + line_begin, '\n', std::max(offset, line_begin) - line_begin);
    if (newline == nullptr) break;
    line_begin = static_cast<std::size_t>(static_cast<const char*>(newline) - m_text) + 1;
    ++line;
  }
  return {offset, length, line, offset - line_begin + 1};
}
