// The text that a document was read from, and where its lines begin.
#ifndef SBD_READING_SBD_SOURCE_H
#define SBD_READING_SBD_SOURCE_H

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "sbd/reading/sbd_scratch.h"
#include "sbd/sbd_file_parser.h"

class SBD_SOURCE {
 public:
  // Behind the text lie this many NUL bytes, so that scanning needs no check for the end, nor
  // loading eight bytes at once.
  static constexpr std::size_t k_padding = 16;
  // Positions are kept in 32 bits, plus one; where addresses have no more than that, longer texts
  // than a quarter of them would find no memory.
  static constexpr std::size_t k_longest = sizeof(std::size_t) > 4 ? 0xFFFFFFFFU - 1 : 0x3FFFFFFFU;

  SBD_SOURCE() = default;
  ~SBD_SOURCE() { release(); }
  SBD_SOURCE(const SBD_SOURCE&) = delete;
  SBD_SOURCE& operator=(const SBD_SOURCE&) = delete;

  // A buffer for a text of `length` bytes, padding included but not yet written.
  static char* allocate(std::size_t length);
  static void free(char* buffer) noexcept;

  // Takes a buffer of allocate, writes its padding, and forgets the text before.
  void adopt(char* buffer, std::size_t length) noexcept;
  void release() noexcept;

  std::string_view text() const { return {m_text, m_length}; }

  // A line that the reader is in.
  struct LINE_START {
    std::uint32_t number;
    const char* begin;
  };

  // Remembers in which line every so many bytes stand, so that no place is far from a known one:
  // for all up to `newline`, that is in `line`. Returns the first place that is still unmarked, and
  // whose newline has to be told of next.
  const char* mark_lines(const char* newline, LINE_START line) {
    const std::uint32_t offset = offset_of(newline);
    while (offset >= m_next_mark) {
      m_marks.push_back({line.number, offset_of(line.begin)});
      m_next_mark += k_bytes_per_mark;
    }
    return m_text + std::min(m_next_mark, m_length);
  }

  // Tells of the line behind the last newline.
  void set_last_line(LINE_START line) {
    m_line = line.number;
    m_line_begin = offset_of(line.begin);
  }

  std::uint32_t offset_of(const char* place) const {
    return static_cast<std::uint32_t>(place - m_text);
  }

  // The lines and columns of a stretch of the text. Asked for one place behind the other, it need
  // not look at any part of the text twice.
  SBD_FILE_PARSER::SBD_SOURCE_RANGE range(std::size_t offset, std::size_t length) const;

 private:
  // Aligned as a whole, or clang calls a library of the compiler to read it at once.
  struct alignas(2 * sizeof(std::uint32_t)) LINE {
    std::uint32_t number;
    std::uint32_t begin;
  };
  LINE known_line_before(std::size_t offset) const;

  static constexpr std::uint32_t k_bytes_per_mark = 2048;

  char* m_text = nullptr;
  std::size_t m_length = 0;
  SBD_SCRATCH<LINE, 8> m_marks;    // The lines in which bytes 0, 2048, ... stand.
  std::size_t m_next_mark = 0;     // Offset of the first byte without mark.
  std::uint32_t m_line = 1;        // The line behind the last newline,
  std::uint32_t m_line_begin = 0;  // and where it begins.
  // The line that was found last. Whole at any time, for any thread: const documents are shared.
  mutable std::atomic<LINE> m_last_line{LINE{1, 0}};
};

#endif
