// A stack of plain records with room for the usual case in itself, so that small documents cost no
// allocation.
#ifndef SBD_READING_SBD_SCRATCH_H
#define SBD_READING_SBD_SCRATCH_H

#include <cstddef>
#include <cstring>
#include <type_traits>

#include "sbd/reading/sbd_room.h"
#include "sbd/sbd_memory.h"

template <class T, std::size_t INLINE_COUNT>
class SBD_SCRATCH {
  static_assert(std::is_trivially_copyable_v<T>, "moved by copying bytes");

 public:
  SBD_SCRATCH() = default;
  ~SBD_SCRATCH() { release(); }
  SBD_SCRATCH(const SBD_SCRATCH&) = delete;
  SBD_SCRATCH& operator=(const SBD_SCRATCH&) = delete;

  bool empty() const { return m_end == m_items; }
  std::size_t size() const { return static_cast<std::size_t>(m_end - m_items); }
  T& operator[](std::size_t index) { return m_items[index]; }
  const T& operator[](std::size_t index) const { return m_items[index]; }
  T& back() { return m_end[-1]; }
  const T* begin() const { return m_items; }
  const T* end() const { return m_end; }

  void push_back(const T& item) {
    if (m_end == m_limit) {
      const T copy = item;  // It may lie in the items that move.
      grow();
      *m_end++ = copy;
      return;
    }
    *m_end++ = item;
  }
  void pop_back() { --m_end; }
  // Drops all items from `size` on.
  void truncate(std::size_t size) { m_end = m_items + size; }
  // Drops all items and the memory behind them.
  void release() noexcept {
    if (m_items != inline_items()) SBD_ALLOCATOR<T>().deallocate(m_items, capacity());
    m_items = m_end = inline_items();
    m_limit = m_items + INLINE_COUNT;
  }

 private:
  T* inline_items() { return m_inline.items; }

  std::size_t capacity() const { return static_cast<std::size_t>(m_limit - m_items); }

  void grow() {
    const std::size_t new_capacity = capacity() * 2;
    const std::size_t used = size();
    T* const items = SBD_ALLOCATOR<T>().allocate(new_capacity);
    std::memcpy(static_cast<void*>(items), m_items, used * sizeof(T));
    release();
    m_items = items;
    m_end = items + used;
    m_limit = items + new_capacity;
  }

  SBD_ROOM<T, INLINE_COUNT> m_inline;
  T* m_items = inline_items();
  T* m_end = m_items;                   // Behind the last item,
  T* m_limit = m_items + INLINE_COUNT;  // and behind the room for more.
};

#endif
