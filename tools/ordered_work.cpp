#include "tools/ordered_work.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace sbd_tool {

namespace {

// Results that may wait to be taken, for each thread: a slow item must not leave the others idle,
// and a fast machine must not hold all results in memory.
constexpr std::size_t k_ahead = 16;

// Items that a thread takes over at a time, at most, so that threads seldom meet; and how often
// each comes back for more, so that all of them end at about the same time.
constexpr std::size_t k_longest_run = 8;
constexpr std::size_t k_least_runs = 4;

// Does the work in threads of its own and in the one that takes the results: a thread that only
// waited for them would be woken for nearly each.
class ORDERED_WORK {
 public:
  ORDERED_WORK(std::size_t count, std::size_t jobs, const std::function<void(std::size_t)>& work)
      : m_work(work), m_is_done(count, false), m_jobs(jobs) {
    try {
      for (std::size_t i = 1; i < jobs; ++i) m_threads.emplace_back([this] { help(); });
    } catch (const std::system_error&) {
      // The threads that could be started do the work, and the calling one.
    }
  }

  ~ORDERED_WORK() {
    stop();
    for (std::thread& thread : m_threads) thread.join();
  }
  ORDERED_WORK(const ORDERED_WORK&) = delete;
  ORDERED_WORK& operator=(const ORDERED_WORK&) = delete;

  // Works until `first` is done, and returns the end of what is done from there on; throws what any
  // work threw. All items before `first` have been taken.
  std::size_t finish(std::size_t first) {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_taken = first;
    m_was_taken.notify_all();
    while (!m_is_done[first] && !m_failure) {
      const RUN run = take_over();
      if (run.is_empty()) {
        m_was_done.wait(lock);
      } else {
        lock.unlock();
        do_run(run);
        lock.lock();
      }
    }
    if (m_failure) std::rethrow_exception(m_failure);
    return first_undone_from(first);
  }

 private:
  struct RUN {
    bool is_empty() const { return begin == end; }

    std::size_t begin;
    std::size_t end;
  };

  void help() {
    for (RUN run = wait_for_run(); !run.is_empty(); run = wait_for_run()) do_run(run);
  }

  // Empty when there is no more to do.
  RUN wait_for_run() {
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
      const RUN run = take_over();
      if (!run.is_empty() || m_is_stopped || m_next == m_is_done.size()) return run;
      m_was_taken.wait(lock);
    }
  }

  // Empty when there is nothing to do, or not yet. The mutex is held.
  RUN take_over() {
    const std::size_t count = m_is_done.size();
    const std::size_t end = std::min(count, m_taken + m_jobs * k_ahead);
    if (m_is_stopped || m_next >= end) return {m_next, m_next};
    const std::size_t fair = std::max<std::size_t>(1, (count - m_next) / (m_jobs * k_least_runs));
    const std::size_t begin = m_next;
    m_next = std::min({end, begin + fair, begin + k_longest_run});
    return {begin, m_next};
  }

  void do_run(const RUN& run) {
    std::exception_ptr failure;
    try {
      for (std::size_t i = run.begin; i != run.end && !m_is_stopped; ++i) m_work(i);
    } catch (...) {
      failure = std::current_exception();
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (failure) fail(failure);
    if (m_is_stopped) return;
    std::fill_n(m_is_done.begin() + static_cast<std::ptrdiff_t>(run.begin), run.end - run.begin,
                true);
    m_was_done.notify_one();
  }

  void fail(const std::exception_ptr& failure) {
    if (!m_failure) m_failure = failure;
    m_is_stopped = true;
    m_was_done.notify_one();
    m_was_taken.notify_all();
  }

  void stop() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_is_stopped = true;
    m_was_taken.notify_all();
  }

  std::size_t first_undone_from(std::size_t item) const {
    while (item != m_is_done.size() && m_is_done[item]) ++item;
    return item;
  }

  const std::function<void(std::size_t)>& m_work;
  std::vector<bool> m_is_done;
  std::size_t m_jobs;
  std::size_t m_next = 0;
  std::size_t m_taken = 0;
  std::atomic<bool> m_is_stopped{false};
  std::exception_ptr m_failure;
  std::mutex m_mutex;
  std::condition_variable m_was_done;
  std::condition_variable m_was_taken;
  std::vector<std::thread> m_threads;  // Last: they use all of the above.
};

}  // namespace

std::size_t count_processors() {
  return std::max(1U, std::thread::hardware_concurrency());
}

void do_in_order(std::size_t count, std::size_t jobs, const std::function<void(std::size_t)>& work,
                 const std::function<void(std::size_t)>& take) {
  const std::size_t threads = std::min(count, jobs);
  if (threads <= 1) {
    for (std::size_t i = 0; i != count; ++i) {
      work(i);
      take(i);
    }
    return;
  }
  ORDERED_WORK ordered(count, threads, work);
  for (std::size_t i = 0; i != count;) {
    for (const std::size_t end = ordered.finish(i); i != end; ++i) take(i);
  }
}

}  // namespace sbd_tool
