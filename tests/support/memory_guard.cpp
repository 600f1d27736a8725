#include "tests/support/memory_guard.h"

#include <gtest/gtest.h>

#include "host/sbd_host.h"

namespace {

class MEMORY_GUARD : public testing::EmptyTestEventListener {
  void OnTestEnd(const testing::TestInfo&) override {
    const sbd_host::MEMORY_ACCOUNT account = sbd_host::get_memory_account("SBD");
    EXPECT_EQ(account.live_blocks, m_known_blocks) << "blocks of the library are left behind";
    EXPECT_EQ(account.live_bytes, m_known_bytes) << "memory of the library is left behind";
    // What one test lost is not held against the next.
    m_known_blocks = account.live_blocks;
    m_known_bytes = account.live_bytes;
  }

  std::size_t m_known_blocks = 0;
  std::size_t m_known_bytes = 0;
};

}  // namespace

bool install_memory_guard() {
  testing::UnitTest::GetInstance()->listeners().Append(new MEMORY_GUARD);  // GoogleTest owns it.
  return true;
}
