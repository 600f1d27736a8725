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
  m_next_mark = 0;
  m_line = 1;
  m_line_begin = 0;
  m_last_line.store(LINE{1, 0}, std::memory_order_relaxed);
}

// Of the lines that are known without looking at the text, the last one that begins not behind
// `offset`.
SBD_SOURCE::LINE SBD_SOURCE::known_line_before(std::size_t offset) const {
  const LINE marked = m_marks[offset / k_bytes_per_mark];
  const LINE last = m_last_line.load(std::memory_order_relaxed);
  return last.begin > marked.begin && last.begin <= offset ? last : marked;
}

SBD_FILE_PARSER::SBD_SOURCE_RANGE SBD_SOURCE::range(std::size_t offset, std::size_t length) const {
  const std::size_t mark = offset / k_bytes_per_mark;
  if (mark >= m_marks.size()) return {offset, length, m_line, offset - m_line_begin + 1};
  LINE line = known_line_before(offset);
  std::size_t next = std::max<std::size_t>(line.begin, mark * k_bytes_per_mark);
  while (next < offset) {
    const void* const newline = std::memchr(m_text + next, '\n', offset - next);
    if (newline == nullptr) break;
    next = static_cast<std::size_t>(static_cast<const char*>(newline) - m_text) + 1;
    line = {line.number + 1, static_cast<std::uint32_t>(next)};
  }
  m_last_line.store(line, std::memory_order_relaxed);
  return {offset, length, line.number, offset - line.begin + 1};
}
