// Work done by several threads whose results are taken in order.
#ifndef TOOLS_ORDERED_WORK_H
#define TOOLS_ORDERED_WORK_H

#include <cstddef>
#include <functional>

namespace sbd_tool {

// As many threads as the machine runs at a time; at least 1.
std::size_t count_processors();

// Calls `work(i)` once for each i below `count`, in up to `jobs` threads, and `take(i)` in the
// calling thread, in the order of i, each behind its work. Work does not run far ahead of what was
// taken. An exception of either ends it: what is under way is finished, the exception goes on to
// the caller. With one job, or where the system has no threads left, all is done by the calling
// thread.
void do_in_order(std::size_t count, std::size_t jobs, const std::function<void(std::size_t)>& work,
                 const std::function<void(std::size_t)>& take);

}  // namespace sbd_tool

#endif
