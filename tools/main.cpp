#include "tools/tool.h"

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

// One file after the other takes and releases the same amount of memory: it stays with the process
// meanwhile, since giving it back and taking it again would be felt, above all by several threads.
void keep_released_memory() {
#if defined(__GLIBC__)
  constexpr int k_kept_bytes = 64 << 20;
  mallopt(M_TRIM_THRESHOLD, k_kept_bytes);
#endif
}

}  // namespace

int main(int argument_count, char** arguments) {
  keep_released_memory();
  return sbd_tool::run_tool(argument_count, arguments);
}
