// Runs operations of the library while the host's memory runs out and while its handlers throw.
#ifndef TESTS_EXHAUSTION_OPERATIONS_H
#define TESTS_EXHAUSTION_OPERATIONS_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/sbd_host.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"

// One operation on a SUBJECT, which is made anew for every run. Its state() tells what must not
// change when the operation fails.
template <class SUBJECT>
struct OPERATION {
  const char* name;
  // What the operation answers, outputs included. Whatever it needs is in the subject: memory that
  // is taken in here counts as the operation's.
  std::string (*run)(SUBJECT& subject);
  // What it answers when there was no memory; empty when it never takes any.
  const char* failed;
  // How often it may say so: an operation that reads a text back says what that says, too.
  std::size_t most_reports = 1;
};

inline std::string told(bool answer) {
  return answer ? "true" : "false";
}
inline std::string told(const void* answer) {
  return answer != nullptr ? "something" : "null";
}

inline std::size_t allocations_made() {
  return sbd_host::get_memory_account("SBD").total_allocations;
}

// What an operation comes to when nothing fails.
struct OUTCOME {
  std::string answer;
  std::string state;
};

template <class SUBJECT>
OUTCOME outcome_of(const OPERATION<SUBJECT>& operation) {
  const MESSAGE_RECORDER recorder;
  SUBJECT subject;
  std::string answer = operation.run(subject);
  return {std::move(answer), subject.state()};
}

// With the n-th allocation failing, alone and with all later ones, for every n until it succeeds:
// nothing is thrown, one internal error tells of it, the answer is that of a failure, the subject
// is as it was, and nothing is left behind.
template <class SUBJECT>
void expect_survival(const OPERATION<SUBJECT>& operation) {
  SCOPED_TRACE(operation.name);
  const OUTCOME expected = outcome_of(operation);
  std::size_t failures = 0;
  for (const bool and_later : {false, true}) {
    for (std::size_t count = 1;; ++count) {
      SCOPED_TRACE(testing::Message() << (and_later ? "from" : "at") << " allocation " << count);
      ASSERT_LT(count, 5000U);
      MESSAGE_RECORDER recorder;
      const std::size_t live_blocks = sbd_host::get_memory_account("SBD").live_blocks;
      bool is_reached = true;
      {
        SUBJECT subject;
        const std::string before = subject.state();
        std::string got;
        recorder.forget();
        const std::size_t made = allocations_made();
        sbd_host::fail_allocation("SBD", count, and_later);
        EXPECT_NO_THROW(got = operation.run(subject));
        sbd_host::fail_allocation("SBD", 0, false);
        is_reached = !recorder.conditions().empty() || allocations_made() - made + 1 >= count;
        if (recorder.conditions().empty()) {
          EXPECT_EQ(got, expected.answer);
          EXPECT_EQ(subject.state(), expected.state);
        } else {
          ++failures;
          const std::size_t reports =
              std::min(recorder.conditions().size(), operation.most_reports);
          EXPECT_EQ(recorder.conditions(), std::vector<std::string>(reports, "out of memory"));
          EXPECT_EQ(got, operation.failed);
          EXPECT_EQ(subject.state(), before);
        }
      }
      EXPECT_EQ(sbd_host::get_memory_account("SBD").live_blocks, live_blocks);
      if (!is_reached || testing::Test::HasFailure()) break;
    }
  }
  // A row that says what fails must have seen it fail.
  EXPECT_EQ(failures != 0, *operation.failed != '\0');
}

// Handlers of the host that throw make no difference to what an operation does, with memory and
// without.
template <class SUBJECT>
void expect_handlers_may_throw(const OPERATION<SUBJECT>& operation) {
  SCOPED_TRACE(operation.name);
  const OUTCOME expected = outcome_of(operation);
  SUBJECT subject;
  sbd_host::set_message_handler(
      [](const sbd_host::MESSAGE&) { throw std::runtime_error("the host's own trouble"); });
  sbd_host::set_internal_error_handler([](const sbd_host::INTERNAL_ERROR&) { throw 1; });
  std::string got;
  EXPECT_NO_THROW(got = operation.run(subject));
  EXPECT_EQ(got, expected.answer);
  EXPECT_EQ(subject.state(), expected.state);
  for (const std::size_t count : {1U, 2U, 5U}) {
    SUBJECT other;
    sbd_host::fail_allocation("SBD", count, true);
    EXPECT_NO_THROW((void)operation.run(other));
    sbd_host::fail_allocation("SBD", 0, false);
  }
  sbd_host::set_message_handler({});
  sbd_host::set_internal_error_handler({});
}

template <class SUBJECT, std::size_t COUNT>
void expect_all_to_survive(const OPERATION<SUBJECT> (&operations)[COUNT]) {
  for (const OPERATION<SUBJECT>& operation : operations) {
    expect_survival(operation);
    expect_handlers_may_throw(operation);
  }
}

#endif
