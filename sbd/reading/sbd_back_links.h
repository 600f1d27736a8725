// Unlinks elements of singly linked lists in near-constant time.
//
// The lists of a document (siblings, bucket chains) have no links backwards, and most documents
// never need any. Once walking to an element has cost more than it should, the list's backward
// links are kept here, beside it.
#ifndef SBD_READING_SBD_BACK_LINKS_H
#define SBD_READING_SBD_BACK_LINKS_H

#include <cstddef>
#include <functional>
#include <unordered_map>

#include "sbd/sbd_memory.h"

template <class T>
class SBD_BACK_LINKS {
 public:
  // Takes `element` out of the list that begins at `head`. False when it is not in the list. When
  // `previous` is given, it is set to the element before, or null.
  bool unlink(T*& head, T* element, T** previous = nullptr) {
    T* before = nullptr;
    if (element == head) {
      head = element->next;
    } else {
      before = find_before(head, element);
      if (before == nullptr) return false;
      before->next = element->next;
    }
    forget(element, before);
    if (previous != nullptr) *previous = before;
    return true;
  }

  // Puts `element` in front of `mark`, which is in the list, or behind it.
  void link(T*& head, T* element, T* mark, bool is_behind) {
    T* const before = is_behind ? mark : mark == head ? nullptr : find_before(head, mark);
    element->next = before != nullptr ? before->next : head;
    (before != nullptr ? before->next : head) = element;
    if (m_before.empty()) return;
    if (before != nullptr) keep(element, before);
    if (element->next != nullptr) keep(element->next, element);
  }

  // Takes notice of an element that was linked in at the head of a list.
  void note_head(T* element) {
    if (!m_before.empty() && element->next != nullptr) keep(element->next, element);
  }
  // Takes notice of an element that was linked in behind `last`.
  void note_tail(T* last, T* element) {
    if (!m_before.empty() && m_before.count(last) != 0) keep(element, last);
  }
  // Takes notice that an element and its list go at once.
  void drop(const T* element) noexcept {
    if (!m_before.empty()) m_before.erase(element);
  }

  void clear() noexcept {
    m_before.clear();
    m_steps = 0;
  }

 private:
  // So many steps cost no more than a look-up.
  static constexpr std::size_t k_cheap_walk = 64;
  // Walks may cost so many times what linking the list backwards costs, which few deletions do.
  static constexpr std::size_t k_walks_before_links = 8;

  T* find_before(T* head, T* element) {
    const auto known = m_before.find(element);
    if (known != m_before.end() && known->second->next == element) return known->second;

    std::size_t steps = 0;
    for (T* node = head; node != nullptr; node = node->next, ++steps) {
      if (node->next != element) continue;
      if (steps > k_cheap_walk) charge(head, steps);
      return node;
    }
    return nullptr;
  }

  // Adds up what walks cost; past the limit, links this list backwards.
  void charge(T* head, std::size_t steps) {
    m_steps += steps;
    if (m_steps < k_walks_before_links * steps) return;
    try {
      for (T* node = head; node->next != nullptr; node = node->next) m_before[node->next] = node;
    } catch (...) {
      m_before.clear();  // Without them it is only slower.
    }
  }

  void keep(T* element, T* before) noexcept {
    try {
      m_before[element] = before;
    } catch (...) {
      m_before.clear();
    }
  }

  void forget(const T* element, T* before) noexcept {
    if (m_before.empty()) return;
    T* const next = element->next;
    if (next != nullptr && before != nullptr && m_before.count(element) != 0) {
      keep(next, before);
    } else if (next != nullptr) {
      m_before.erase(next);
    }
    m_before.erase(element);
  }

  std::unordered_map<const T*, T*, std::hash<const T*>, std::equal_to<const T*>,
                     SBD_ALLOCATOR<std::pair<const T* const, T*>>>
      m_before;
  std::size_t m_steps = 0;
};

#endif
