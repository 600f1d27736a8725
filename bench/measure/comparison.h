// Things that are measured side by side, and what is concluded from them.
//
// Everything of one comparison runs in the same rounds, one after the other, so that whatever else
// the machine does at the time touches all of them alike. A figure is computed from the times of
// each round, and its median over the rounds is what counts.
#ifndef BENCH_MEASURE_COMPARISON_H
#define BENCH_MEASURE_COMPARISON_H

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

using OPERATION = std::function<void()>;

// What is timed, with all that it works on.
struct STAGE {
  OPERATION operation;
  double units = 1;  // What one run is divided by: parameters, lookups, bytes ...
};

struct MEASUREMENT {
  enum CLOCK { CPU_TIME, WALL_TIME };

  std::string name;  // "read/sbd/1000"
  std::function<STAGE()> prepare;

  CLOCK clock = CPU_TIME;  // CPU time of the calling thread, or time on the wall for processes.
};

// A line of the table.
struct FIGURE {
  std::string subject;                         // "read / RapidJSON"
  std::string size;                            // "10^3"; may be empty
  std::size_t measured;                        // Index of the measurement that is judged,
  std::size_t against;                         // and of the one it is divided by.
  std::optional<double> limit = std::nullopt;  // The most that is good; none for information only.

  // How the figure follows from the seconds per unit of the two; a ratio when empty.
  std::function<double(double measured, double against)> compute = nullptr;
};

struct RESULT {
  std::string subject;
  std::string size;
  double value;
  std::optional<double> limit;

  bool is_missed() const { return limit && !(value <= *limit); }
};

struct COMPARISON {
  std::string name;  // "read/1000"
  std::vector<MEASUREMENT> measurements;
  std::vector<FIGURE> figures;

  // Appends figures that are counted rather than timed; may be empty.
  std::function<void(std::vector<RESULT>&)> count = nullptr;
};

// Runs the comparison and appends the results of its figures. Times go to standard error.
void run_comparison(const COMPARISON& comparison, std::vector<RESULT>& results);

#endif
