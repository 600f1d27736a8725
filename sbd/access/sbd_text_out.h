// Gathers text and hands it to a stream in large pieces.
#ifndef SBD_ACCESS_SBD_TEXT_OUT_H
#define SBD_ACCESS_SBD_TEXT_OUT_H

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>

#include "sbd/reading/sbd_room.h"

class SBD_TEXT_OUT {
 public:
  explicit SBD_TEXT_OUT(std::FILE* stream) : m_stream(stream) {}
  ~SBD_TEXT_OUT() { flush(); }
  SBD_TEXT_OUT(const SBD_TEXT_OUT&) = delete;
  SBD_TEXT_OUT& operator=(const SBD_TEXT_OUT&) = delete;

  void put(char c) {
    if (m_used == k_size) flush();
    m_buffer.items[m_used++] = c;
  }
  void put(const char* text) { put(text, std::strlen(text)); }
  void put(const char* text, std::size_t length) {
    if (length > k_size - m_used) {
      flush();
      if (length > k_size) {
        (void)std::fwrite(text, 1, length, m_stream);
        return;
      }
    }
    std::memcpy(m_buffer.items + m_used, text, length);
    m_used += length;
  }
  void put_blanks(std::size_t count) {
    while (count != 0) {
      if (m_used == k_size) flush();
      const std::size_t piece = std::min(count, k_size - m_used);
      std::memset(m_buffer.items + m_used, ' ', piece);
      m_used += piece;
      count -= piece;
    }
  }

 private:
  static constexpr std::size_t k_size = 16384;

  // Errors of the stream are the caller's to look for.
  void flush() {
    (void)std::fwrite(m_buffer.items, 1, m_used, m_stream);
    m_used = 0;
  }

  std::FILE* m_stream;
  std::size_t m_used = 0;
  SBD_ROOM<char, k_size> m_buffer;
};

#endif
