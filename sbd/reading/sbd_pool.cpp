#include "sbd/reading/sbd_pool.h"

#include <algorithm>
#include <functional>
#include <new>

// How much is going to be taken from now on, though never more than a part of what is there, since
// within a long line nobody knows how far it has got; 0 where too little is done to tell.
std::size_t SBD_POOL::foresee() const {
  constexpr double k_least_done = 1.0 / 16;
  constexpr double k_most_added = 1.0 / 4;
  constexpr double k_reserve = 9.0 / 8;  // Better a little too much than one more chunk.
  const auto done = static_cast<double>(progress.here - progress.begin);
  const auto all = static_cast<double>(progress.end - progress.begin);
  if (done <= all * k_least_done) return 0;
  const double lacking = static_cast<double>(m_size - left()) * ((all - done) / done) * k_reserve;
  return static_cast<std::size_t>(std::min(lacking, static_cast<double>(m_size) * k_most_added));
}

void SBD_POOL::add_chunk(std::size_t least) {
  // Where nothing is foreseen, what was reserved is about right: little is lacking, and little
  // should be left over. If it was not, or foreseen wrongly, chunks grow faster than the pool, so
  // that their number stays small for any document.
  constexpr std::size_t k_most_foreseen_chunks = 16;
  constexpr std::size_t k_least_share = 128;
  constexpr std::size_t k_most_share = 8;
  constexpr std::size_t k_chunks_of_a_size = 4;
  const std::size_t doublings = std::min<std::size_t>(m_chunk_count / k_chunks_of_a_size, 4);
  const std::size_t share = std::max(k_least_share >> doublings, k_most_share);
  const std::size_t foreseen = m_chunk_count < k_most_foreseen_chunks ? foresee() : 0;
  const std::size_t lacking = foreseen != 0 ? foreseen : m_size / share;
  const std::size_t smallest = m_chunk_count == 0 ? k_first_chunk : k_least_chunk;
  const std::size_t room = std::max({least, lacking, smallest});
  const std::size_t size = sizeof(CHUNK) + room + k_slack;
  auto* memory = SBD_ALLOCATOR<char>().allocate(size);
  m_chunks = ::new (memory) CHUNK{m_chunks, memory + size};
  m_next = memory + sizeof(CHUNK);
  m_end = memory + size - k_slack;
  m_size += size;
  ++m_chunk_count;
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
  m_chunk_count = 0;
  progress = {};
}
