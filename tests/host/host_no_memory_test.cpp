// The standalone host when the system itself has no memory left. The program takes the place of
// malloc and mmap (see CMakeLists.txt), so that it can say no to the host.
#include <gtest/gtest.h>

#include <sys/mman.h>
#include <sys/types.h>

#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>

#include "h/mem_alloc_sys.h"
#include "host/sbd_host.h"

namespace {

bool g_is_exhausted = false;

// The system says no as long as it exists.
class EXHAUSTION {
 public:
  EXHAUSTION() { g_is_exhausted = true; }
  ~EXHAUSTION() { g_is_exhausted = false; }
  EXHAUSTION(const EXHAUSTION&) = delete;
  EXHAUSTION& operator=(const EXHAUSTION&) = delete;
};

// Whether the host gives such a block while there is no memory.
bool can_allocate(std::size_t size, const char* tag) {
  const EXHAUSTION exhaustion;
  try {
    MEM_MANAGER::delete_wrapper(MEM_MANAGER::new_wrapper(size, tag), tag);
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

TEST(HOST_WITHOUT_MEMORY, BlocksAreRefused) {
  const char* const tag = "KNOWN";
  MEM_MANAGER::delete_wrapper(MEM_MANAGER::new_wrapper(1, tag), tag);
  const sbd_host::MEMORY_ACCOUNT before = sbd_host::get_memory_account(tag);
  for (const std::size_t size :
       {std::size_t{1}, std::size_t{1000}, std::size_t{1} << 20, std::size_t{1} << 22,
        std::numeric_limits<std::size_t>::max() / 8}) {
    EXPECT_FALSE(can_allocate(size, tag)) << size;
  }
  const sbd_host::MEMORY_ACCOUNT after = sbd_host::get_memory_account(tag);
  EXPECT_EQ(after.live_bytes, before.live_bytes);
  EXPECT_EQ(after.total_allocations, before.total_allocations);
  MEM_MANAGER::delete_wrapper(MEM_MANAGER::new_wrapper(1, tag), tag);
}

TEST(HOST_WITHOUT_MEMORY, NewAccountsAreRefused) {
  EXPECT_FALSE(can_allocate(1, "NEW"));
  EXPECT_EQ(sbd_host::get_memory_account("NEW").total_allocations, 0U);
}

TEST(HOST_WITHOUT_MEMORY, ModulesStayUnregisteredUntilTheyAllocate) {
  {
    const EXHAUSTION exhaustion;
    const MEM_INITIALIZER initializer("LATER");
    EXPECT_THROW(sbd_host::fail_allocation("LATER", 1, false), std::bad_alloc);
  }
  EXPECT_FALSE(sbd_host::is_module_registered("LATER"));
  MEM_MANAGER::delete_wrapper(MEM_MANAGER::new_wrapper(1, "LATER"), "LATER");
  EXPECT_EQ(sbd_host::get_memory_account("LATER").total_allocations, 1U);
}

// Null is no tag of a module, and is answered for all the same.
TEST(HOST_WITHOUT_MEMORY, NullCountsAsTheEmptyTag) {
  sbd_host::fail_allocation(nullptr, 1, false);
  EXPECT_FALSE(sbd_host::is_module_registered(nullptr));
  EXPECT_THROW((void)MEM_MANAGER::new_wrapper(1, nullptr), std::bad_alloc);
  MEM_MANAGER::delete_wrapper(MEM_MANAGER::new_wrapper(1, nullptr), nullptr);
  EXPECT_EQ(sbd_host::get_memory_account("").total_allocations, 1U);
  EXPECT_EQ(sbd_host::get_memory_account(nullptr).total_allocations, 1U);
}

}  // namespace

// The linker's names. Large files have a call of their own where addresses are short.
extern "C" {
void* __real_malloc(std::size_t size);
void* __wrap_malloc(std::size_t size);
void* __real_mmap(void* place, std::size_t size, int access, int kind, int file, off_t offset);
void* __wrap_mmap(void* place, std::size_t size, int access, int kind, int file, off_t offset);
void* __real_mmap64(void* place, std::size_t size, int access, int kind, int file, off64_t offset);
void* __wrap_mmap64(void* place, std::size_t size, int access, int kind, int file, off64_t offset);

void* __wrap_malloc(std::size_t size) {
  return g_is_exhausted ? nullptr : __real_malloc(size);
}

void* __wrap_mmap(void* place, std::size_t size, int access, int kind, int file, off_t offset) {
  return g_is_exhausted ? MAP_FAILED : __real_mmap(place, size, access, kind, file, offset);
}

void* __wrap_mmap64(void* place, std::size_t size, int access, int kind, int file, off64_t offset) {
  return g_is_exhausted ? MAP_FAILED : __real_mmap64(place, size, access, kind, file, offset);
}
}
