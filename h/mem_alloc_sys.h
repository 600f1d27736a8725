// The host's memory manager, as the library sees it.
//
// This header declares the interface only. The host program, or the standalone implementation in
// host/, defines MEM_MANAGER and MEM_INITIALIZER at link time.
#ifndef H_MEM_ALLOC_SYS_H
#define H_MEM_ALLOC_SYS_H

#include <cstddef>
#include <limits>
#include <type_traits>

#include "h/host_api.h"

// Tagged allocation. Every block belongs to the module whose tag it was taken under, so that a
// host can account for, limit or trace each module by itself.
class HOST_API MEM_MANAGER {
 public:
  // Returns `size` bytes, aligned for any fundamental type, charged to `module_tag` (a string
  // with static lifetime, never null). A size of 0 gives a valid block. When memory is exhausted
  // the manager throws std::bad_alloc or does not return; it never returns null.
  static void* new_wrapper(std::size_t size, const char* module_tag);

  // Gives a block of new_wrapper back; null is ignored. The tag is the one it was taken under.
  static void delete_wrapper(void* block, const char* module_tag) noexcept;
};

// Registers a module's tag with the manager. A library keeps one static object of this class, so
// the tag is known before the library allocates under it.
class HOST_API MEM_INITIALIZER {
 public:
  explicit MEM_INITIALIZER(const char* module_tag) noexcept;  // A static string.
};

// Standard allocator over the manager. MODULE is a type with a static `const char* tag()`, which
// names the module that is charged.
template <class T, class MODULE>
class MEM_STL_ALLOCATOR {
 public:
  using value_type = T;
  using is_always_equal = std::true_type;

  template <class OTHER>
  struct rebind {
    using other = MEM_STL_ALLOCATOR<OTHER, MODULE>;
  };

  MEM_STL_ALLOCATOR() noexcept = default;
  template <class OTHER>
  MEM_STL_ALLOCATOR(const MEM_STL_ALLOCATOR<OTHER, MODULE>&)
  noexcept {}

  T* allocate(std::size_t count) {
    // More than there can be is asked for as the largest size, which the manager refuses: it throws
    // in programs that are built without exceptions, too.
    constexpr std::size_t k_most = std::numeric_limits<std::size_t>::max();
    const std::size_t size = count > k_most / sizeof(T) ? k_most : count * sizeof(T);
    return static_cast<T*>(MEM_MANAGER::new_wrapper(size, MODULE::tag()));
  }
  void deallocate(T* block, std::size_t) noexcept {
    MEM_MANAGER::delete_wrapper(block, MODULE::tag());
  }

  template <class OTHER>
  bool operator==(const MEM_STL_ALLOCATOR<OTHER, MODULE>&) const noexcept {
    return true;
  }
  template <class OTHER>
  bool operator!=(const MEM_STL_ALLOCATOR<OTHER, MODULE>&) const noexcept {
    return false;
  }
};

#endif
