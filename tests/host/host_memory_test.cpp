#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <list>
#include <memory>
#include <mutex>
#include <new>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "h/mem_alloc_sys.h"
#include "host/sbd_host.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define HAS_SANITIZED_MALLOC 1
#elif defined(__has_feature)
#define HAS_SANITIZED_MALLOC (__has_feature(address_sanitizer) || __has_feature(thread_sanitizer))
#else
#define HAS_SANITIZED_MALLOC 0
#endif

namespace {

using sbd_host::get_memory_account;
using sbd_host::MEMORY_ACCOUNT;
using sbd_host::MEMORY_EVENT;

// Accounts are never reset, so every test has a tag of its own.
void* take(const char* tag, std::size_t size) {
  return MEM_MANAGER::new_wrapper(size, tag);
}
void give_back(const char* tag, void* block) {
  MEM_MANAGER::delete_wrapper(block, tag);
}

// Takes and releases a block; false if that threw.
bool can_allocate(const char* tag) {
  try {
    give_back(tag, take(tag, 8));
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

void run_in_threads(int count, const std::function<void(int)>& work) {
  std::vector<std::thread> threads;
  for (int i = 0; i < count; i++) threads.emplace_back(work, i);
  for (std::thread& thread : threads) thread.join();
}

class HOST_MEMORY : public testing::Test {
 protected:
  void TearDown() override { sbd_host::set_memory_hook({}); }
};

struct LIST_MODULE {
  static const char* tag() { return "LIST_MODULE"; }
};

struct VECTOR_MODULE {
  static const char* tag() { return "VECTOR_MODULE"; }
};

// ---- Blocks ------------------------------------------------------------------------------------

TEST_F(HOST_MEMORY, BlocksAreWritableAndAligned) {
  for (std::size_t size = 0; size < 200; size++) {
    void* const block = take("ALIGNED", size);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), 0U);
    std::memset(block, 0x5a, size);
    give_back("ALIGNED", block);
  }
}

TEST_F(HOST_MEMORY, EmptyBlocksAreDistinct) {
  void* const first = take("EMPTY", 0);
  void* const second = take("EMPTY", 0);
  EXPECT_NE(first, second);
  EXPECT_EQ(get_memory_account("EMPTY").live_blocks, 2U);
  EXPECT_EQ(get_memory_account("EMPTY").live_bytes, 0U);
  give_back("EMPTY", first);
  give_back("EMPTY", second);
  EXPECT_EQ(get_memory_account("EMPTY").live_blocks, 0U);
}

TEST_F(HOST_MEMORY, ReleasingNullDoesNothing) {
  static_assert(noexcept(MEM_MANAGER::delete_wrapper(nullptr, "NULL_BLOCK")));
  give_back("NULL_BLOCK", nullptr);
  EXPECT_EQ(get_memory_account("NULL_BLOCK").live_blocks, 0U);
}

TEST_F(HOST_MEMORY, SizesThatCannotBeThrow) {
  const std::size_t most = std::numeric_limits<std::size_t>::max();
  for (const std::size_t size : {most, most - 1, most - 15, most - 16, most - 32, most / 2}) {
    EXPECT_THROW(take("HUGE", size), std::bad_alloc) << size;
  }
  EXPECT_EQ(get_memory_account("HUGE").live_bytes, 0U);
  EXPECT_EQ(get_memory_account("HUGE").peak_bytes, 0U);
  EXPECT_EQ(get_memory_account("HUGE").total_allocations, 0U);
}

TEST_F(HOST_MEMORY, ExhaustionThrows) {
#if HAS_SANITIZED_MALLOC
  GTEST_SKIP() << "The sanitizer ends the program instead.";
#else
  EXPECT_THROW(take("EXHAUSTED", std::numeric_limits<std::size_t>::max() / 2), std::bad_alloc);
  EXPECT_EQ(get_memory_account("EXHAUSTED").total_allocations, 0U);
#endif
}

// ---- Accounts ----------------------------------------------------------------------------------

TEST_F(HOST_MEMORY, UnknownTagHasAnEmptyAccount) {
  const MEMORY_ACCOUNT account = get_memory_account("NEVER_SEEN");
  EXPECT_EQ(account.live_bytes, 0U);
  EXPECT_EQ(account.live_blocks, 0U);
  EXPECT_EQ(account.total_allocations, 0U);
  EXPECT_EQ(account.peak_bytes, 0U);
}

TEST_F(HOST_MEMORY, AccountFollowsTheBlocks) {
  void* const first = take("ACCOUNT", 100);
  void* const second = take("ACCOUNT", 20);
  MEMORY_ACCOUNT account = get_memory_account("ACCOUNT");
  EXPECT_EQ(account.live_bytes, 120U);
  EXPECT_EQ(account.live_blocks, 2U);
  EXPECT_EQ(account.total_allocations, 2U);
  EXPECT_EQ(account.peak_bytes, 120U);

  give_back("ACCOUNT", first);
  account = get_memory_account("ACCOUNT");
  EXPECT_EQ(account.live_bytes, 20U);
  EXPECT_EQ(account.live_blocks, 1U);

  void* const third = take("ACCOUNT", 99);
  account = get_memory_account("ACCOUNT");
  EXPECT_EQ(account.live_bytes, 119U);
  EXPECT_EQ(account.total_allocations, 3U);
  EXPECT_EQ(account.peak_bytes, 120U);

  give_back("ACCOUNT", third);
  give_back("ACCOUNT", second);
  account = get_memory_account("ACCOUNT");
  EXPECT_EQ(account.live_bytes, 0U);
  EXPECT_EQ(account.live_blocks, 0U);
  EXPECT_EQ(account.total_allocations, 3U);
  EXPECT_EQ(account.peak_bytes, 120U);
}

TEST_F(HOST_MEMORY, TagsAreComparedByText) {
  static const char first_tag[] = "SAME_TEXT";
  static const char second_tag[] = "SAME_TEXT";
  ASSERT_NE(static_cast<const void*>(first_tag), static_cast<const void*>(second_tag));
  void* const first = take(first_tag, 1);
  void* const second = take(second_tag, 2);
  const std::string looked_up = std::string("SAME_") + "TEXT";
  EXPECT_EQ(get_memory_account(looked_up.c_str()).live_bytes, 3U);
  give_back(second_tag, first);
  give_back(first_tag, second);
  EXPECT_EQ(get_memory_account(looked_up.c_str()).live_bytes, 0U);
}

TEST_F(HOST_MEMORY, TagsHaveSeparateAccounts) {
  void* const one = take("SEPARATE", 1);
  void* const other = take("SEPARATE_TOO", 2);
  EXPECT_EQ(get_memory_account("SEPARATE").live_bytes, 1U);
  EXPECT_EQ(get_memory_account("SEPARATE_TOO").live_bytes, 2U);
  give_back("SEPARATE", one);
  give_back("SEPARATE_TOO", other);
}

TEST_F(HOST_MEMORY, ReleaseIsChargedToTheTagOfTheBlock) {
  void* const block = take("OWNER", 10);
  give_back("NOT_THE_OWNER", block);
  EXPECT_EQ(get_memory_account("OWNER").live_bytes, 0U);
  EXPECT_EQ(get_memory_account("OWNER").live_blocks, 0U);
  EXPECT_EQ(get_memory_account("NOT_THE_OWNER").live_blocks, 0U);
}

TEST_F(HOST_MEMORY, InitializerRegistersTheTag) {
  EXPECT_FALSE(sbd_host::is_module_registered("REGISTERED"));
  const MEM_INITIALIZER initializer("REGISTERED");
  EXPECT_TRUE(sbd_host::is_module_registered("REGISTERED"));
  EXPECT_TRUE(sbd_host::is_module_registered(std::string("REGISTERED").c_str()));
  const MEM_INITIALIZER again("REGISTERED");
  EXPECT_TRUE(sbd_host::is_module_registered("REGISTERED"));
  EXPECT_EQ(get_memory_account("REGISTERED").total_allocations, 0U);
}

TEST_F(HOST_MEMORY, AllocatingDoesNotRegister) {
  EXPECT_TRUE(can_allocate("UNREGISTERED"));
  EXPECT_FALSE(sbd_host::is_module_registered("UNREGISTERED"));
}

// ---- Planned failures --------------------------------------------------------------------------

TEST_F(HOST_MEMORY, OneAllocationFails) {
  sbd_host::fail_allocation("FAIL_ONE", 3, false);
  EXPECT_TRUE(can_allocate("FAIL_ONE"));
  EXPECT_TRUE(can_allocate("FAIL_ONE"));
  EXPECT_FALSE(can_allocate("FAIL_ONE"));
  EXPECT_TRUE(can_allocate("FAIL_ONE"));
  EXPECT_EQ(get_memory_account("FAIL_ONE").total_allocations, 3U);
}

TEST_F(HOST_MEMORY, AllLaterAllocationsFailUntilEnded) {
  sbd_host::fail_allocation("FAIL_LATER", 2, true);
  EXPECT_TRUE(can_allocate("FAIL_LATER"));
  for (int i = 0; i < 5; i++) EXPECT_FALSE(can_allocate("FAIL_LATER"));
  sbd_host::fail_allocation("FAIL_LATER", 0, true);
  EXPECT_TRUE(can_allocate("FAIL_LATER"));
}

TEST_F(HOST_MEMORY, NextAllocationFails) {
  sbd_host::fail_allocation("FAIL_NEXT", 1, false);
  EXPECT_FALSE(can_allocate("FAIL_NEXT"));
  EXPECT_TRUE(can_allocate("FAIL_NEXT"));
}

TEST_F(HOST_MEMORY, CountStartsAnewWithEveryCall) {
  sbd_host::fail_allocation("FAIL_ANEW", 2, false);
  EXPECT_TRUE(can_allocate("FAIL_ANEW"));
  sbd_host::fail_allocation("FAIL_ANEW", 2, false);
  EXPECT_TRUE(can_allocate("FAIL_ANEW"));
  EXPECT_FALSE(can_allocate("FAIL_ANEW"));
}

TEST_F(HOST_MEMORY, DistantFailureStaysAway) {
  for (const bool and_later : {false, true}) {
    sbd_host::fail_allocation("FAIL_FAR", std::numeric_limits<std::size_t>::max(), and_later);
    EXPECT_TRUE(can_allocate("FAIL_FAR"));
    EXPECT_TRUE(can_allocate("FAIL_FAR"));
  }
  sbd_host::fail_allocation("FAIL_FAR", 0, false);
}

TEST_F(HOST_MEMORY, OtherTagsDoNotFail) {
  sbd_host::fail_allocation("FAIL_HERE", 1, true);
  EXPECT_TRUE(can_allocate("FAIL_NOT_HERE"));
  EXPECT_FALSE(can_allocate("FAIL_HERE"));
  sbd_host::fail_allocation("FAIL_HERE", 0, false);
}

TEST_F(HOST_MEMORY, ReleasesDoNotFail) {
  void* const block = take("FAIL_NO_RELEASE", 8);
  sbd_host::fail_allocation("FAIL_NO_RELEASE", 1, true);
  give_back("FAIL_NO_RELEASE", block);
  EXPECT_EQ(get_memory_account("FAIL_NO_RELEASE").live_blocks, 0U);
  sbd_host::fail_allocation("FAIL_NO_RELEASE", 0, false);
}

TEST_F(HOST_MEMORY, ExactlyOneOfManyThreadsMeetsTheFailure) {
  std::atomic<int> failures{0};
  sbd_host::fail_allocation("FAIL_THREADS", 1000, false);
  run_in_threads(4, [&](int) {
    for (int i = 0; i < 500; i++) failures += can_allocate("FAIL_THREADS") ? 0 : 1;
  });
  EXPECT_EQ(failures, 1);
  EXPECT_EQ(get_memory_account("FAIL_THREADS").total_allocations, 1999U);
}

// ---- Hook --------------------------------------------------------------------------------------

TEST_F(HOST_MEMORY, HookIsToldOfAllocationAndRelease) {
  std::vector<MEMORY_EVENT> events;
  std::vector<std::size_t> live_bytes;
  sbd_host::set_memory_hook([&](const MEMORY_EVENT& event) {
    events.push_back(event);
    live_bytes.push_back(get_memory_account(event.module_tag).live_bytes);
  });
  void* const block = take("HOOKED", 33);
  give_back("ANOTHER", block);
  give_back("HOOKED", nullptr);
  sbd_host::set_memory_hook({});

  ASSERT_EQ(events.size(), 2U);
  EXPECT_TRUE(events[0].is_allocation);
  EXPECT_STREQ(events[0].module_tag, "HOOKED");
  EXPECT_EQ(events[0].size, 33U);
  EXPECT_EQ(events[0].block, block);
  EXPECT_FALSE(events[1].is_allocation);
  EXPECT_STREQ(events[1].module_tag, "HOOKED");
  EXPECT_EQ(events[1].size, 33U);
  EXPECT_EQ(events[1].block, block);
  // It was told after each was done.
  EXPECT_EQ(live_bytes, (std::vector<std::size_t>{33U, 0U}));
}

TEST_F(HOST_MEMORY, HookIsNotToldOfFailures) {
  int calls = 0;
  sbd_host::set_memory_hook([&](const MEMORY_EVENT&) { calls++; });
  sbd_host::fail_allocation("HOOK_FAILURE", 1, false);
  EXPECT_FALSE(can_allocate("HOOK_FAILURE"));
  EXPECT_EQ(calls, 0);
}

TEST_F(HOST_MEMORY, RemovedHookIsSilent) {
  int calls = 0;
  sbd_host::set_memory_hook([&](const MEMORY_EVENT&) { calls++; });
  EXPECT_TRUE(can_allocate("HOOK_REMOVED"));
  sbd_host::set_memory_hook({});
  EXPECT_TRUE(can_allocate("HOOK_REMOVED"));
  EXPECT_EQ(calls, 2);
}

TEST_F(HOST_MEMORY, HookIsNotToldOfItsOwnAllocations) {
  int calls = 0;
  sbd_host::set_memory_hook([&](const MEMORY_EVENT&) {
    calls++;
    EXPECT_TRUE(can_allocate("HOOK_ITSELF"));
  });
  EXPECT_TRUE(can_allocate("HOOK_ITSELF"));
  EXPECT_EQ(calls, 2);
  // They are accounted for all the same.
  EXPECT_EQ(get_memory_account("HOOK_ITSELF").total_allocations, 3U);
}

TEST_F(HOST_MEMORY, HookMayReplaceItself) {
  int first_calls = 0;
  int second_calls = 0;
  sbd_host::set_memory_hook([&](const MEMORY_EVENT&) {
    first_calls++;
    sbd_host::set_memory_hook([&](const MEMORY_EVENT&) { second_calls++; });
  });
  EXPECT_TRUE(can_allocate("HOOK_REPLACED"));
  EXPECT_EQ(first_calls, 1);
  EXPECT_EQ(second_calls, 1);
}

TEST_F(HOST_MEMORY, HookMayOwnMemoryOfTheManager) {
  // The hook's copies go away with it, which must neither be told nor hang.
  struct RELEASE {
    void operator()(void* block) const { give_back("HOOK_OWNER", block); }
  };
  const auto install = [] {
    std::shared_ptr<void> owned(take("HOOK_OWNER", 8), RELEASE());
    sbd_host::set_memory_hook([owned](const MEMORY_EVENT&) { sbd_host::set_memory_hook({}); });
  };
  install();
  EXPECT_TRUE(can_allocate("HOOK_OWNER"));
  install();
  sbd_host::set_memory_hook({});
  EXPECT_EQ(get_memory_account("HOOK_OWNER").live_blocks, 0U);
}

TEST_F(HOST_MEMORY, HookSeesEveryAddressReleasedBeforeItIsTakenAgain) {
  std::mutex mutex;
  std::set<const void*> live;
  int mistakes = 0;
  sbd_host::set_memory_hook([&](const MEMORY_EVENT& event) {
    const std::lock_guard<std::mutex> lock(mutex);
    const bool changed =
        event.is_allocation ? live.insert(event.block).second : live.erase(event.block) == 1;
    mistakes += changed ? 0 : 1;
  });
  run_in_threads(4, [](int) {
    for (int i = 0; i < 2000; i++) EXPECT_TRUE(can_allocate("HOOK_THREADS"));
  });
  sbd_host::set_memory_hook({});
  EXPECT_EQ(mistakes, 0);
  EXPECT_TRUE(live.empty());
}

// ---- Threads -----------------------------------------------------------------------------------

TEST_F(HOST_MEMORY, ThreadsShareAnAccount) {
  run_in_threads(4, [](int thread) {
    std::vector<void*> blocks;
    for (std::size_t i = 0; i < 5000; i++) {
      blocks.push_back(take("THREADS", i % 64));
      if (i % 3 != 0) continue;
      give_back("THREADS", blocks.back());
      blocks.pop_back();
    }
    // Some blocks are released by a thread that did not take them.
    if (thread % 2 == 0) {
      std::thread([&] {
        for (void* block : blocks) give_back("THREADS", block);
      }).join();
    } else {
      for (void* block : blocks) give_back("THREADS", block);
    }
  });
  const MEMORY_ACCOUNT account = get_memory_account("THREADS");
  EXPECT_EQ(account.live_bytes, 0U);
  EXPECT_EQ(account.live_blocks, 0U);
  EXPECT_EQ(account.total_allocations, 20000U);
  EXPECT_GT(account.peak_bytes, 0U);
}

TEST_F(HOST_MEMORY, PeakOfThreadsIsNoLessThanWhatTheyHeldTogether) {
  constexpr int k_threads = 40;  // More than have counts of their own.
  std::atomic<int> holding{0};
  run_in_threads(k_threads, [&](int) {
    void* const block = MEM_MANAGER::new_wrapper(1000, "PEAK");
    ++holding;
    while (holding != k_threads) std::this_thread::yield();
    give_back("PEAK", block);
  });
  const MEMORY_ACCOUNT account = get_memory_account("PEAK");
  EXPECT_EQ(account.live_bytes, 0U);
  EXPECT_EQ(account.live_blocks, 0U);
  EXPECT_EQ(account.total_allocations, 40U);
  EXPECT_GE(account.peak_bytes, 40000U);
}

TEST_F(HOST_MEMORY, ThreadsAgreeOnANewTag) {
  static const char tags[4][9] = {"NEW_TAG1", "NEW_TAG1", "NEW_TAG1", "NEW_TAG1"};
  run_in_threads(4, [](int thread) {
    for (int i = 0; i < 100; i++) EXPECT_TRUE(can_allocate(tags[thread]));
  });
  EXPECT_EQ(get_memory_account("NEW_TAG1").total_allocations, 400U);
}

TEST_F(HOST_MEMORY, EverythingMayBeAdjustedMeanwhile) {
  std::atomic<bool> is_over{false};
  std::thread worker([&] {
    while (!is_over) can_allocate("MEANWHILE");
  });
  for (int i = 0; i < 300; i++) {
    auto calls = std::make_shared<std::atomic<int>>(0);
    sbd_host::set_memory_hook([calls](const MEMORY_EVENT&) { ++*calls; });
    sbd_host::fail_allocation("MEANWHILE", 2, i % 2 == 0);
    const MEMORY_ACCOUNT account = get_memory_account("MEANWHILE");
    EXPECT_GE(account.peak_bytes, account.live_bytes);
    // A snapshot is not taken at once, but it never falls below zero.
    EXPECT_LE(account.live_blocks, account.total_allocations);
    sbd_host::fail_allocation("MEANWHILE", 0, false);
    sbd_host::set_memory_hook({});
  }
  is_over = true;
  worker.join();
  EXPECT_EQ(get_memory_account("MEANWHILE").live_blocks, 0U);
}

// ---- Standard allocator ------------------------------------------------------------------------

TEST_F(HOST_MEMORY, VectorIsChargedToItsModule) {
  {
    std::vector<int, MEM_STL_ALLOCATOR<int, VECTOR_MODULE>> numbers;
    for (int i = 0; i < 1000; i++) numbers.push_back(i);
    EXPECT_EQ(numbers[999], 999);
    const MEMORY_ACCOUNT account = get_memory_account("VECTOR_MODULE");
    EXPECT_EQ(account.live_bytes, numbers.capacity() * sizeof(int));
    EXPECT_EQ(account.live_blocks, 1U);
  }
  EXPECT_EQ(get_memory_account("VECTOR_MODULE").live_bytes, 0U);
}

TEST_F(HOST_MEMORY, ListIsChargedToItsModule) {
  using STRINGS = std::list<std::string, MEM_STL_ALLOCATOR<std::string, LIST_MODULE>>;
  {
    STRINGS first = {"one", "two", "three"};
    STRINGS second;
    second.splice(second.end(), first);  // All allocators are equal, so nodes may change hands.
    EXPECT_EQ(second.size(), 3U);
    EXPECT_EQ(get_memory_account("LIST_MODULE").live_blocks, 3U);
  }
  EXPECT_EQ(get_memory_account("LIST_MODULE").live_blocks, 0U);
}

TEST_F(HOST_MEMORY, AllocatorsAreEqualAndConvert) {
  const MEM_STL_ALLOCATOR<int, LIST_MODULE> ints;
  const MEM_STL_ALLOCATOR<double, LIST_MODULE> doubles(ints);
  EXPECT_TRUE(ints == doubles);
  EXPECT_FALSE(ints != doubles);
}

TEST_F(HOST_MEMORY, AllocatorRefusesCountsThatOverflow) {
  MEM_STL_ALLOCATOR<long, LIST_MODULE> allocator;
  const std::size_t count = std::numeric_limits<std::size_t>::max() / sizeof(long) + 1;
  EXPECT_THROW(static_cast<void>(allocator.allocate(count)), std::bad_alloc);
}

TEST_F(HOST_MEMORY, ContainerPassesAFailureOn) {
  std::vector<int, MEM_STL_ALLOCATOR<int, VECTOR_MODULE>> numbers;
  sbd_host::fail_allocation("VECTOR_MODULE", 1, false);
  EXPECT_THROW(numbers.push_back(1), std::bad_alloc);
  EXPECT_TRUE(numbers.empty());
  numbers.push_back(1);
  EXPECT_EQ(numbers.size(), 1U);
}

}  // namespace
