#include "sbd/reading/sbd_pool.h"

#include <algorithm>
#include <functional>
#include <new>

void SBD_POOL::add_chunk(std::size_t least) {
  // Chunks grow with the pool, so that their number stays small for any document.
  const std::size_t room = std::max({least, m_size / 8, k_least_chunk});
  const std::size_t size = sizeof(CHUNK) + room + k_slack;
  auto* memory = SBD_ALLOCATOR<char>().allocate(size);
  m_chunks = ::new (memory) CHUNK{m_chunks, memory + size};
  m_next = memory + sizeof(CHUNK);
  m_end = memory + size - k_slack;
  m_size += size;
}

bool SBD_POOL::owns(const void* address) const noexcept {
  const std::less<const void*> before;
  for (const CHUNK* chunk = m_chunks; chunk != nullptr; chunk = chunk->next) {
    if (!before(address, chunk) && before(address, chunk->end)) return true;
  }
  return false;
}

void SBD_POOL::release() noexcept {
  while (m_chunks != nullptr) {
    CHUNK* const chunk = m_chunks;
    m_chunks = chunk->next;
    SBD_ALLOCATOR<char>().deallocate(reinterpret_cast<char*>(chunk), 0);
  }
  m_next = m_end = nullptr;
  m_size = 0;
}
