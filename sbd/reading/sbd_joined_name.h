// Dotted names put together without touching the heap, unless they are very long.
#ifndef SBD_READING_SBD_JOINED_NAME_H
#define SBD_READING_SBD_JOINED_NAME_H

#include <cstddef>
#include <cstring>
#include <string_view>

#include "sbd/reading/sbd_chars.h"
#include "sbd/reading/sbd_run.h"
#include "sbd/sbd_memory.h"

// Block "." parameter, or the parameter alone where the block is null. It ends with NUL, and behind
// that a step can be read.
class SBD_JOINED_NAME {
 public:
  SBD_JOINED_NAME(const char* block, const char* parameter) {
    const std::size_t block_size = block != nullptr ? std::strlen(block) + 1 : 0;
    const std::size_t parameter_size = std::strlen(parameter);
    m_size = block_size + parameter_size;
    m_name = m_buffer;
    if (m_size + k_run_step > sizeof m_buffer) {
      m_long.resize(m_size + k_run_step);
      m_name = m_long.data();
    }
    if (block_size != 0) {
      std::memcpy(m_name, block, block_size - 1);
      m_name[block_size - 1] = '.';
    }
    std::memcpy(m_name + block_size, parameter, parameter_size);
    std::memset(m_name + m_size, 0, k_run_step);
  }
  SBD_JOINED_NAME(const SBD_JOINED_NAME&) = delete;
  SBD_JOINED_NAME& operator=(const SBD_JOINED_NAME&) = delete;

  const char* c_str() const { return m_name; }
  std::string_view view() const { return {m_name, m_size}; }

 private:
  static constexpr std::size_t k_usual_size = 144;

  char m_buffer[k_usual_size];
  SBD_STRING m_long;  // For names that the buffer can't hold.
  char* m_name = nullptr;
  std::size_t m_size = 0;
};

inline void sbd_lower(SBD_STRING& text) {
  for (char& c : text) c = sbd_to_lower(c);
}

#endif
