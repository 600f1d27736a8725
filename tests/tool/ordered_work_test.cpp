#include "tools/ordered_work.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using sbd_tool::do_in_order;

class ORDERED_WORK_TEST : public testing::TestWithParam<std::size_t> {};

TEST_P(ORDERED_WORK_TEST, ResultsAreTakenOnceAndInOrder) {
  constexpr std::size_t k_count = 500;
  std::vector<std::atomic<int>> done(k_count);
  std::vector<std::size_t> taken;
  const auto caller = std::this_thread::get_id();
  do_in_order(
      k_count, GetParam(), [&](std::size_t i) { ++done[i]; },
      [&](std::size_t i) {
        EXPECT_EQ(done[i], 1);
        EXPECT_EQ(std::this_thread::get_id(), caller);
        taken.push_back(i);
      });
  ASSERT_EQ(taken.size(), k_count);
  for (std::size_t i = 0; i != k_count; ++i) EXPECT_EQ(taken[i], i);
}

TEST_P(ORDERED_WORK_TEST, NothingToDoIsNoProblem) {
  const auto fail = [](std::size_t) { FAIL(); };
  do_in_order(0, GetParam(), fail, fail);
}

TEST_P(ORDERED_WORK_TEST, FailuresOfTheWorkReachTheCaller) {
  std::size_t taken = 0;
  const auto work = [](std::size_t i) {
    if (i == 20) throw std::runtime_error("no");
  };
  EXPECT_THROW(do_in_order(100, GetParam(), work, [&](std::size_t) { ++taken; }),
               std::runtime_error);
  EXPECT_LE(taken, 20U);
}

TEST_P(ORDERED_WORK_TEST, FailuresOfTheTakerEndTheWork) {
  constexpr std::size_t k_count = 10000;
  std::atomic<std::size_t> done{0};
  const auto take = [](std::size_t i) {
    if (i == 3) throw std::runtime_error("full");
  };
  EXPECT_THROW(do_in_order(
                   k_count, GetParam(), [&](std::size_t) { ++done; }, take),
               std::runtime_error);
  EXPECT_LT(done, k_count);
}

INSTANTIATE_TEST_SUITE_P(Jobs, ORDERED_WORK_TEST, testing::Values(0, 1, 2, 7, 64));

TEST(ORDERED_WORK_THREADS, AreDifferentOnes) {
  std::mutex mutex;
  std::set<std::thread::id> threads;
  std::atomic<int> waiting{0};
  do_in_order(
      2, 2,
      [&](std::size_t) {
        ++waiting;
        while (waiting != 2) std::this_thread::yield();  // Each needs the other.
        const std::lock_guard<std::mutex> lock(mutex);
        threads.insert(std::this_thread::get_id());
      },
      [](std::size_t) {});
  EXPECT_EQ(threads.size(), 2U);
}

}  // namespace
