// Memory for what a read makes: a few chunks from the host, handed out from front to back and given
// back all at once.
#ifndef SBD_READING_SBD_POOL_H
#define SBD_READING_SBD_POOL_H

#include <cstddef>
#include <cstdint>

#include "sbd/reading/sbd_address.h"
#include "sbd/sbd_memory.h"

class SBD_POOL {
 public:
  SBD_POOL() = default;
  ~SBD_POOL() { release(); }
  SBD_POOL(const SBD_POOL&) = delete;
  SBD_POOL& operator=(const SBD_POOL&) = delete;

  // Behind what was taken last, so many bytes may be written over: copying can be done in large
  // steps.
  static constexpr std::size_t k_slack = 16;

  // `size` bytes, aligned for records.
  void* take(std::size_t size) {
    size = (size + k_alignment - 1) & ~(k_alignment - 1);
    if (size > left()) add_chunk(size);
    void* const taken = m_next;
    m_next += size;
    return taken;
  }

  // Lets memory be fetched that is going to be taken after a while, for a record of SIZE bytes
  // that is taken now: in a large document it is fetched more slowly than it is written. The small
  // records beside a large one share its lines.
  template <std::size_t SIZE>
  void fetch_ahead() const {
    constexpr std::intptr_t k_lines = (SIZE + k_cache_line / 2) / k_cache_line;
    for (std::intptr_t line = 0; line != k_lines; ++line) {
      sbd_prefetch_to_write(m_next, k_fetched_ahead + line * k_cache_line);
    }
  }

  // Makes room for about `size` bytes in one chunk.
  void reserve(std::size_t size) {
    if (size > left()) add_chunk(size);
  }

  // How far the parser has got with a text. While that is known, the pool foresees how much memory
  // is lacking: as much for each byte that is left as for those before.
  struct PROGRESS {
    const char* begin = nullptr;
    const char* here = nullptr;
    const char* end = nullptr;
  };
  PROGRESS progress;

  // True for an address inside this pool's chunks.
  bool owns(const void* address) const noexcept;

  // Gives every chunk back to the host.
  void release() noexcept;

  // Bytes of all chunks.
  std::size_t size() const { return m_size; }

 private:
  static constexpr std::size_t k_alignment = 8;
  static constexpr std::intptr_t k_fetched_ahead = 16 * k_cache_line;
  static constexpr std::size_t k_first_chunk = 1024;
  static constexpr std::size_t k_least_chunk = 1024;  // Of those behind it.

  struct CHUNK {
    CHUNK* next;
    char* end;
  };

  std::size_t left() const { return static_cast<std::size_t>(m_end - m_next); }
  void add_chunk(std::size_t least);
  std::size_t foresee() const;

  CHUNK* m_chunks = nullptr;
  char* m_next = nullptr;
  char* m_end = nullptr;
  std::size_t m_size = 0;
  std::size_t m_chunk_count = 0;
};

#endif
