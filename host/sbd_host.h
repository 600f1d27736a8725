// The standalone host services: what a program that brings no message service and no memory
// manager of its own can adjust at run time.
//
// All functions may be called from any thread at any time. A handler runs in the thread that posts
// or allocates; it must not throw. Installing a handler does not wait for calls of the old one that
// are under way in other threads.
#ifndef HOST_SBD_HOST_H
#define HOST_SBD_HOST_H

#include <cstddef>
#include <functional>

#include "h/host_api.h"

namespace sbd_host {

// How grave a message is.
enum class SEVERITY { ERROR, WARNING, DEBUG };

// A posted message. The texts live until the handler returns.
struct MESSAGE {
  SEVERITY severity;          // How grave it is.
  int number;                 // The message's number; 0 for a debug message.
  const char* text_template;  // As filled in, text "/" key.
  const char* key;            // The part of the template behind its last "/"; "" if it has none.
  const char* text;           // The template's text with its arguments in place.
  const char* module;         // The module's tag; "" if none was set.
};

// Receives a message.
using MESSAGE_HANDLER = std::function<void(const MESSAGE&)>;

// Installs what receives every posted message; an empty function brings back the default, which
// prints "error: text [KEY]" (or "warning: ...", "debug: ...") as one line on standard error.
HOST_API void set_message_handler(MESSAGE_HANDLER handler);

// A condition of the library's code that did not hold.
struct INTERNAL_ERROR {
  const char* condition;  // As it stands in the code.
  const char* module;     // The module's tag.
  const char* source;     // Source file without path and extension.
  int line;               // In that file.
};

// Receives an internal error.
using INTERNAL_ERROR_HANDLER = std::function<void(const INTERNAL_ERROR&)>;

// Installs what receives every internal error; an empty function brings back the default, which
// prints "internal error: condition (module, source:line)" as one line on standard error. When the
// handler returns, the library goes on.
HOST_API void set_internal_error_handler(INTERNAL_ERROR_HANDLER handler);

// ---- Memory ------------------------------------------------------------------------------------

// What a module holds at the moment, and what it took so far.
struct MEMORY_ACCOUNT {
  std::size_t live_bytes;         // Bytes as asked for, without the manager's own overhead.
  std::size_t live_blocks;        // Allocations that were not released yet.
  std::size_t total_allocations;  // Since the program started.
  std::size_t peak_bytes;         // The most that was ever live. When several threads allocate, the
                                  // sum of what was the most for each, which may be more.
};

// The account of a tag; all zero for a tag that never allocated.
HOST_API MEMORY_ACCOUNT get_memory_account(const char* module_tag);

// True once a MEM_INITIALIZER has registered the tag.
HOST_API bool is_module_registered(const char* module_tag);

// One allocation or release, told after it was done.
struct MEMORY_EVENT {
  bool is_allocation;      // False for a release.
  const char* module_tag;  // Whose memory it is.
  std::size_t size;        // In bytes, as asked for.
  const void* block;       // Where it is, or was.
};

// Is told of an allocation or a release.
using MEMORY_HOOK = std::function<void(const MEMORY_EVENT&)>;

// Installs what is told of every allocation and release; an empty function removes it. The hook is
// not told of what it allocates itself.
HOST_API void set_memory_hook(MEMORY_HOOK hook);

// Makes the `count`-th allocation under the tag from now on (1: the next one) throw
// std::bad_alloc; with `and_later`, all after it as well. 0 ends that.
HOST_API void fail_allocation(const char* module_tag, std::size_t count, bool and_later);

// Large blocks that were released are kept for the next use, up to `limit` bytes in all (256 MiB
// unless it is set; none in builds with sanitizers). A lower limit takes effect at once: 0 gives
// everything back to the system. Kept memory belongs to no module's account. On Linux the system
// takes it when memory gets short.
HOST_API void limit_kept_memory(std::size_t limit);

// The bytes that are kept at the moment.
HOST_API std::size_t get_kept_memory();

}  // namespace sbd_host

#endif
