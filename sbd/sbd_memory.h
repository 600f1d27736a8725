// The library's string and list types, and how its records are allocated.
//
// Everything on the heap comes from the host's memory manager under the module tag "SBD".
#ifndef SBD_SBD_MEMORY_H
#define SBD_SBD_MEMORY_H

#include <cstddef>
#include <list>
#include <string>
#include <vector>

#include "h/mem_alloc_sys.h"
#include "sbd/sbd_api.h"

// The module whose account the library's memory is charged to.
struct SBD_MEMORY_MODULE {
  static const char* tag() noexcept { return "SBD"; }  // A static string.
};

// Standard allocator over the host's memory manager.
template <class T>
using SBD_ALLOCATOR = MEM_STL_ALLOCATOR<T, SBD_MEMORY_MODULE>;

// The standard containers with it.
using SBD_STRING = std::basic_string<char, std::char_traits<char>, SBD_ALLOCATOR<char>>;
using SBD_STRING_LIST = std::list<SBD_STRING, SBD_ALLOCATOR<SBD_STRING>>;

// The same.
template <class T>
using SBD_VECTOR = std::vector<T, SBD_ALLOCATOR<T>>;

// Base of every record of the tree: `new` takes the record from the host's memory manager, and so
// a record that a caller made can be handed to a document, which then owns and frees it. `new`
// throws what the memory manager throws.
struct SBD_RECORD {
  static void* operator new(std::size_t size) {
    return MEM_MANAGER::new_wrapper(size, SBD_MEMORY_MODULE::tag());
  }
  static void operator delete(void* record) noexcept {
    MEM_MANAGER::delete_wrapper(record, SBD_MEMORY_MODULE::tag());
  }
};

// A copy of `text` that a record may own: the text slots of a record (names, comments, type
// keywords, string values, attribute keys and values) take such copies and free them. The copy of
// null is null; so is, after an internal error, one that the host has no memory for.
SBD_API char* sbd_copy_text(const char* text) noexcept;

// Frees a copy that no record took; null is ignored.
SBD_API void sbd_free_text(char* text) noexcept;

#endif
