// The name that a document was read from. A usual one needs no memory from the host.
#ifndef SBD_READING_SBD_FILE_NAME_H
#define SBD_READING_SBD_FILE_NAME_H

#include <cstddef>
#include <cstring>

#include "sbd/reading/sbd_texts.h"
#include "sbd/sbd_memory.h"

class SBD_FILE_NAME {
 public:
  SBD_FILE_NAME() = default;
  ~SBD_FILE_NAME() { sbd_free_text(m_long); }
  SBD_FILE_NAME(const SBD_FILE_NAME&) = delete;
  SBD_FILE_NAME& operator=(const SBD_FILE_NAME&) = delete;

  // Takes a copy of the name, which may be a part of the one before, and returns the copy. It lies
  // elsewhere than the one before: that the name moved tells that the document was read. When there
  // is no memory for it, the name before stays.
  char* set(const char* name) {
    const std::size_t size = std::strlen(name) + 1;
    char* const new_long = size > k_room_size ? sbd_duplicate_text(name) : nullptr;
    if (new_long == nullptr) {
      m_room = 1 - m_room;
      std::memcpy(m_rooms[m_room], name, size);
    }
    sbd_free_text(m_long);
    m_long = new_long;
    return new_long != nullptr ? new_long : m_rooms[m_room];
  }

 private:
  static constexpr std::size_t k_room_size = 44;

  char m_rooms[2][k_room_size] = {};
  int m_room = 0;          // The one that was used last.
  char* m_long = nullptr;  // The name if it does not fit.
};

#endif
