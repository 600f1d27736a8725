// Large blocks that the standalone memory manager keeps for the next use.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "h/mem_alloc_sys.h"
#include "host/sbd_host.h"

namespace {

constexpr char k_tag[] = "KEPT_MEMORY_TEST";
constexpr std::size_t k_large = std::size_t{1} << 20;
constexpr std::size_t k_default_limit = std::size_t{256} << 20;

void* take(std::size_t size) {
  void* const block = MEM_MANAGER::new_wrapper(size, k_tag);
  std::memset(block, 0x5A, size);
  return block;
}

void give_back(void* block) {
  MEM_MANAGER::delete_wrapper(block, k_tag);
}

class KEPT_MEMORY : public testing::Test {
 protected:
  void SetUp() override {
    sbd_host::limit_kept_memory(0);
    sbd_host::limit_kept_memory(k_default_limit);
  }
  void TearDown() override { sbd_host::limit_kept_memory(0); }
};

TEST_F(KEPT_MEMORY, ReleasedLargeBlockServesTheNextRequest) {
  void* const first = take(k_large);
  EXPECT_EQ(sbd_host::get_kept_memory(), 0u);
  give_back(first);
  EXPECT_GE(sbd_host::get_kept_memory(), k_large);
  void* const second = take(k_large - 100);
  EXPECT_EQ(second, first);
  EXPECT_EQ(sbd_host::get_kept_memory(), 0u);
  give_back(second);
}

TEST_F(KEPT_MEMORY, SmallBlocksAreNotKept) {
  give_back(take(1000));
  EXPECT_EQ(sbd_host::get_kept_memory(), 0u);
}

TEST_F(KEPT_MEMORY, SmallestBlockThatIsLargeEnoughIsTaken) {
  void* const large = take(3 * k_large);
  void* const middle = take(2 * k_large);
  give_back(large);
  give_back(middle);
  void* const taken = take(2 * k_large - 1000);
  EXPECT_EQ(taken, middle);
  give_back(taken);
}

TEST_F(KEPT_MEMORY, BlockTwiceTooLargeIsLeftForOthers) {
  give_back(take(8 * k_large));
  const std::size_t kept = sbd_host::get_kept_memory();
  void* const taken = take(k_large);
  EXPECT_EQ(sbd_host::get_kept_memory(), kept);
  give_back(taken);
}

TEST_F(KEPT_MEMORY, LimitDropsTheOldest) {
  void* const old = take(2 * k_large);
  void* const young = take(2 * k_large);
  give_back(old);
  give_back(young);
  sbd_host::limit_kept_memory(3 * k_large);
  EXPECT_GE(sbd_host::get_kept_memory(), 2 * k_large);
  EXPECT_LE(sbd_host::get_kept_memory(), 3 * k_large);
  void* const taken = take(2 * k_large);
  EXPECT_EQ(taken, young);
  give_back(taken);
}

TEST_F(KEPT_MEMORY, BlockBeyondTheLimitIsGivenBack) {
  sbd_host::limit_kept_memory(k_large);
  give_back(take(2 * k_large));
  EXPECT_EQ(sbd_host::get_kept_memory(), 0u);
}

TEST_F(KEPT_MEMORY, LimitOfZeroGivesEverythingBack) {
  give_back(take(k_large));
  sbd_host::limit_kept_memory(0);
  EXPECT_EQ(sbd_host::get_kept_memory(), 0u);
  give_back(take(k_large));
  EXPECT_EQ(sbd_host::get_kept_memory(), 0u);
}

TEST_F(KEPT_MEMORY, NumberOfKeptBlocksIsBounded) {
  std::vector<void*> blocks;
  for (int i = 0; i != 200; ++i) blocks.push_back(take(k_large / 4));
  for (void* const block : blocks) give_back(block);
  EXPECT_GE(sbd_host::get_kept_memory(), 16 * k_large);
  EXPECT_LT(sbd_host::get_kept_memory(), 200 * k_large / 4);
}

TEST_F(KEPT_MEMORY, KeptMemoryIsInNoAccount) {
  give_back(take(k_large));
  EXPECT_EQ(sbd_host::get_memory_account(k_tag).live_bytes, 0u);
  EXPECT_EQ(sbd_host::get_memory_account(k_tag).live_blocks, 0u);
}

}  // namespace
