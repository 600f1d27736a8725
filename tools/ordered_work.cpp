#include "tools/ordered_work.h"

#include <algorithm>
#include <condition_variable>
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

class ORDERED_WORK {
 public:
  ORDERED_WORK(std::size_t count, std::size_t jobs, const std::function<void(std::size_t)>& work)
      : m_work(work), m_is_done(count, false), m_window(jobs * k_ahead) {
    try {
      for (std::size_t i = 0; i != jobs; ++i) m_threads.emplace_back([this] { run(); });
    } catch (const std::system_error&) {
      // The threads that could be started do the work.
    }
  }

  ~ORDERED_WORK() {
    stop();
    for (std::thread& thread : m_threads) thread.join();
  }
  ORDERED_WORK(const ORDERED_WORK&) = delete;
  ORDERED_WORK& operator=(const ORDERED_WORK&) = delete;

  bool has_threads() const { return !m_threads.empty(); }

  // Returns when the work for `item` was done; throws what any work threw.
  void wait_for(std::size_t item) {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_wanted = item;
    m_was_done.wait(lock, [&] { return m_is_done[item] || m_failure; });
    if (m_failure) std::rethrow_exception(m_failure);
    m_taken = item;
    if (m_idle_threads != 0) m_was_taken.notify_all();
  }

 private:
  void run() {
    std::size_t item = 0;
    while (next(item)) {
      std::exception_ptr failure;
      try {
        m_work(item);
      } catch (...) {
        failure = std::current_exception();
      }
      finish(item, failure);
    }
  }

  bool next(std::size_t& item) {
    std::unique_lock<std::mutex> lock(m_mutex);
    ++m_idle_threads;
    m_was_taken.wait(lock, [&] { return m_is_stopped || m_next < m_taken + m_window; });
    --m_idle_threads;
    if (m_is_stopped || m_next == m_is_done.size()) return false;
    item = m_next++;
    return true;
  }

  void finish(std::size_t item, const std::exception_ptr& failure) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_is_done[item] = true;
    if (failure && !m_failure) m_failure = failure;
    if (m_failure) m_is_stopped = true;
    // Nobody is woken for an item that is not waited for.
    if (item == m_wanted || m_failure) m_was_done.notify_all();
    if (m_is_stopped) m_was_taken.notify_all();
  }

  void stop() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_is_stopped = true;
    m_was_taken.notify_all();
  }

  const std::function<void(std::size_t)>& m_work;
  std::vector<bool> m_is_done;
  std::size_t m_window;
  std::size_t m_next = 0;
  std::size_t m_taken = 0;
  std::size_t m_wanted = 0;        // What is waited for, or was taken last.
  std::size_t m_idle_threads = 0;  // That wait until more was taken.
  bool m_is_stopped = false;
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
  if (threads > 1) {
    ORDERED_WORK ordered(count, threads, work);
    for (std::size_t i = 0; ordered.has_threads() && i != count; ++i) {
      ordered.wait_for(i);
      take(i);
    }
    if (ordered.has_threads()) return;
  }
  for (std::size_t i = 0; i != count; ++i) {
    work(i);
    take(i);
  }
}

}  // namespace sbd_tool
