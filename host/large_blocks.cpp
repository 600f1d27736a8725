#include "host/large_blocks.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <mutex>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace {

// Memory that is used again would hide faults from a sanitizer.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool k_keeps_blocks = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer) || \
    __has_feature(thread_sanitizer)
constexpr bool k_keeps_blocks = false;
#else
constexpr bool k_keeps_blocks = true;
#endif
#else
constexpr bool k_keeps_blocks = true;
#endif

// Stands in front of every block.
struct alignas(std::max_align_t) PREFIX {
  std::size_t size;  // Of all, the prefix included.
};

// ---- The system's memory -----------------------------------------------------------------------

#if defined(__linux__)

// The size of a huge page, which blocks that can hold one are aligned to: one fault brings in as
// much as 512 others would.
constexpr std::size_t k_huge_page = std::size_t{2} << 20;

void* map_aligned(std::size_t size) noexcept {
  const std::size_t mapped_size = size + k_huge_page;
  void* const mapped =
      mmap(nullptr, mapped_size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapped == MAP_FAILED) return nullptr;
  auto* const begin = static_cast<char*>(mapped);
  const std::size_t too_much = reinterpret_cast<std::uintptr_t>(begin) % k_huge_page;
  const std::size_t head = too_much == 0 ? 0 : k_huge_page - too_much;
  if (head != 0) munmap(begin, head);
  munmap(begin + head + size, mapped_size - head - size);
  madvise(begin + head, size, MADV_HUGEPAGE);
  return begin + head;
}

std::size_t round_up(std::size_t size) {
  constexpr std::size_t k_page = 4096;
  return (size + k_page - 1) & ~(k_page - 1);
}

bool is_mapped(std::size_t size) {
  return size >= k_huge_page;
}

void* get_memory(std::size_t size) noexcept {
  return is_mapped(size) ? map_aligned(size) : std::malloc(size);
}

void free_memory(PREFIX* memory) noexcept {
  if (is_mapped(memory->size)) {
    munmap(memory, memory->size);
  } else {
    std::free(memory);
  }
}

// Lets the system take the pages of a kept block when memory gets short.
void offer_pages(PREFIX* memory) noexcept {
  if (!is_mapped(memory->size)) return;
  constexpr std::size_t k_page = 4096;  // The first holds the prefix.
  madvise(reinterpret_cast<char*>(memory) + k_page, memory->size - k_page, MADV_FREE);
}

#else

std::size_t round_up(std::size_t size) {
  return size;
}

void* get_memory(std::size_t size) noexcept {
  return std::malloc(size);
}

void free_memory(PREFIX* memory) noexcept {
  std::free(memory);
}

void offer_pages(PREFIX*) noexcept {}

#endif

// ---- The blocks that are kept ------------------------------------------------------------------

class KEPT_BLOCKS {
 public:
  constexpr KEPT_BLOCKS() noexcept = default;

  // The smallest block that has room for `size` bytes without wasting as much again; null if none.
  PREFIX* find(std::size_t size) noexcept {
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::size_t best = m_count;
    for (std::size_t i = 0; i != m_count; ++i) {
      const std::size_t room = m_blocks[i]->size;
      if (room < size || room / 2 > size) continue;
      if (best == m_count || room < m_blocks[best]->size) best = i;
    }
    return best == m_count ? nullptr : remove(best);
  }

  // Keeps the block unless it is larger than all that may be kept.
  void keep(PREFIX* block) noexcept {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (block->size > m_limit) {
      free_memory(block);
      return;
    }
    if (m_count == m_blocks.size()) free_memory(remove(0));
    free_all_beyond(m_limit - block->size);
    if (m_size + block->size > k_least_offered) offer_pages(block);
    m_blocks[m_count++] = block;
    m_size += block->size;
  }

  void limit(std::size_t limit) noexcept {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_limit = limit;
    free_all_beyond(limit);
  }

  std::size_t size() noexcept {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_size;
  }

 private:
  static constexpr std::size_t k_most_blocks = 64;
  static constexpr std::size_t k_default_limit = std::size_t{256} << 20;
  // Offering pages takes time, too: it begins when more than this is kept.
  static constexpr std::size_t k_least_offered = std::size_t{32} << 20;

  // Frees the oldest until no more than `limit` bytes are left.
  void free_all_beyond(std::size_t limit) noexcept {
    while (m_size > limit) free_memory(remove(0));
  }

  PREFIX* remove(std::size_t index) noexcept {
    PREFIX* const block = m_blocks[index];
    std::copy(m_blocks.begin() + index + 1, m_blocks.begin() + m_count, m_blocks.begin() + index);
    --m_count;
    m_size -= block->size;
    return block;
  }

  std::mutex m_mutex;
  std::array<PREFIX*, k_most_blocks> m_blocks{};  // The oldest first.
  std::size_t m_count = 0;
  std::size_t m_size = 0;
  std::size_t m_limit = k_keeps_blocks ? k_default_limit : 0;
};

// Constant-initialized and not destroyed by anything that it does: modules give blocks back in
// their own static destructors, too.
KEPT_BLOCKS g_kept_blocks;

}  // namespace

void* take_large_block(std::size_t size) noexcept {
  const std::size_t whole_size = round_up(sizeof(PREFIX) + size);
  PREFIX* block = g_kept_blocks.find(whole_size);
  if (block == nullptr) {
    block = static_cast<PREFIX*>(get_memory(whole_size));
    if (block == nullptr) return nullptr;
    block->size = whole_size;
  }
  return block + 1;
}

void give_back_large_block(void* block) noexcept {
  g_kept_blocks.keep(static_cast<PREFIX*>(block) - 1);
}

void limit_kept_blocks(std::size_t limit) noexcept {
  g_kept_blocks.limit(limit);
}

std::size_t size_of_kept_blocks() noexcept {
  return g_kept_blocks.size();
}
