// A stack of plain records with room for the usual case in itself, so that small documents cost no
// allocation.
#ifndef SBD_READING_SBD_SCRATCH_H
#define SBD_READING_SBD_SCRATCH_H

#include <cstddef>
#include <cstring>
#include <type_traits>

#include "sbd/sbd_memory.h"

template <class T, std::size_t INLINE_COUNT>
class SBD_SCRATCH {
  static_assert(std::is_trivially_copyable_v<T>, "moved by copying bytes");

 public:
  SBD_SCRATCH() = default;
  ~SBD_SCRATCH() { release(); }
  SBD_SCRATCH(const SBD_SCRATCH&) = delete;
  SBD_SCRATCH& operator=(const SBD_SCRATCH&) = delete;

  bool empty() const { return m_size == 0; }
  std::size_t size() const { return m_size; }
  T& operator[](std::size_t index) { return m_items[index]; }
  const T& operator[](std::size_t index) const { return m_items[index]; }
  T& back() { return m_items[m_size - 1]; }
  const T* begin() const { return m_items; }
  const T* end() const { return m_items + m_size; }

  void push_back(const T& item) {
    if (m_size == m_capacity) {
      const T copy = item;  // It may lie in the items that move.
      grow();
      m_items[m_size++] = copy;
      return;
    }
    m_items[m_size++] = item;
  }
  void pop_back() { --m_size; }
  // Drops all items from `size` on.
  void truncate(std::size_t size) { m_size = size; }
  // Drops all items and the memory behind them.
  void release() noexcept {
    if (m_items != inline_items()) SBD_ALLOCATOR<T>().deallocate(m_items, m_capacity);
    m_items = inline_items();
    m_size = 0;
    m_capacity = INLINE_COUNT;
  }

 private:
  T* inline_items() { return reinterpret_cast<T*>(m_inline); }

  void grow() {
    const std::size_t capacity = m_capacity * 2;
    T* items = SBD_ALLOCATOR<T>().allocate(capacity);
    std::memcpy(static_cast<void*>(items), m_items, m_size * sizeof(T));
    const std::size_t size = m_size;
    release();
    m_items = items;
    m_size = size;
    m_capacity = capacity;
  }

  alignas(T) unsigned char m_inline[INLINE_COUNT * sizeof(T)];
  T* m_items = inline_items();
  std::size_t m_size = 0;
  std::size_t m_capacity = INLINE_COUNT;
};

#endif
