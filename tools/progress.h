// How far a long run has come, for those who watch.
#ifndef TOOLS_PROGRESS_H
#define TOOLS_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <string>

#include "tools/output.h"

namespace sbd_tool {

// A line such as "checked 120 of 1000 files" that stands on a terminal for as long as nothing else
// is printed. Runs that are over soon show none, and no other output ever does.
class PROGRESS {
 public:
  // `total` is the number of `things`.
  PROGRESS(OUTPUT& output, std::size_t total, std::string things);
  ~PROGRESS() { clear(); }
  PROGRESS(const PROGRESS&) = delete;
  PROGRESS& operator=(const PROGRESS&) = delete;

  void show(std::size_t done);
  // To be called before anything else is printed.
  void clear();

 private:
  using CLOCK = std::chrono::steady_clock;

  OUTPUT& m_output;
  std::size_t m_total;
  std::string m_things;
  bool m_is_terminal;
  bool m_is_shown = false;
  CLOCK::time_point m_next_time;
};

}  // namespace sbd_tool

#endif
