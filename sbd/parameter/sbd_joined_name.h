// Dotted names put together without touching the heap, unless they are very long.
#ifndef SBD_PARAMETER_SBD_JOINED_NAME_H
#define SBD_PARAMETER_SBD_JOINED_NAME_H

#include <cstddef>
#include <cstring>
#include <string_view>

#include "sbd/reading/sbd_chars.h"
#include "sbd/sbd_memory.h"

// Block "." parameter, or the parameter alone where the block is null.
class SBD_JOINED_NAME {
 public:
  SBD_JOINED_NAME(const char* block, const char* parameter) {
    const std::size_t block_size = block != nullptr ? std::strlen(block) + 1 : 0;
    const std::size_t parameter_size = std::strlen(parameter);
    m_size = block_size + parameter_size;
    if (m_size >= sizeof m_buffer) m_long.resize(m_size);
    char* const name = m_size >= sizeof m_buffer ? m_long.data() : m_buffer;
    if (block_size != 0) {
      std::memcpy(name, block, block_size - 1);
      name[block_size - 1] = '.';
    }
    std::memcpy(name + block_size, parameter, parameter_size + 1);
    m_name = name;
  }
  SBD_JOINED_NAME(const SBD_JOINED_NAME&) = delete;
  SBD_JOINED_NAME& operator=(const SBD_JOINED_NAME&) = delete;

  const char* c_str() const { return m_name; }
  std::string_view view() const { return {m_name, m_size}; }

 private:
  static constexpr std::size_t k_usual_size = 128;

  char m_buffer[k_usual_size];
  SBD_STRING m_long;  // For names that the buffer can't hold.
  const char* m_name = nullptr;
  std::size_t m_size = 0;
};

inline void sbd_lower(SBD_STRING& text) {
  for (char& c : text) c = sbd_to_lower(c);
}

#endif
