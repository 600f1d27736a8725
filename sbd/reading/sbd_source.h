// The text that a document was read from, and where its lines begin.
#ifndef SBD_READING_SBD_SOURCE_H
#define SBD_READING_SBD_SOURCE_H

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
  // Positions are kept in 32 bits, plus one.
  static constexpr std::size_t k_longest = 0xFFFFFFFFU - 1;

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

  // Remembers where some of the lines begin; the reader calls it for every newline in order. `line`
  // is the number of the line that begins at `next`.
  void note_line(std::uint32_t line, const char* next) {
    if (line % k_lines_per_mark == 0) m_marks.push_back(offset_of(next));
  }

  std::uint32_t offset_of(const char* place) const {
    return static_cast<std::uint32_t>(place - m_text);
  }

  // The lines and columns of a stretch of the text.
  SBD_FILE_PARSER::SBD_SOURCE_RANGE range(std::size_t offset, std::size_t length) const;

 private:
  static constexpr std::uint32_t k_lines_per_mark = 64;

  char* m_text = nullptr;
  std::size_t m_length = 0;
  SBD_SCRATCH<std::uint32_t, 8> m_marks;  // Begin of line 64, 128, ...
};

#endif
