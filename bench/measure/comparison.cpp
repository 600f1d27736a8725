#include "bench/measure/comparison.h"

#include <malloc.h>
#include <time.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

// A sample repeats a short operation until the clock's own grain does not matter.
constexpr double SAMPLE_SECONDS = 0.002;
constexpr std::size_t MOST_ROUNDS = 101;
constexpr std::size_t LEAST_ROUNDS = 5;
constexpr double SECONDS_FOR_ROUNDS = 3.0;

double now(MEASUREMENT::CLOCK clock) {
  timespec time{};
  clock_gettime(clock == MEASUREMENT::CPU_TIME ? CLOCK_THREAD_CPUTIME_ID : CLOCK_MONOTONIC, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

struct SUBJECT {
  const MEASUREMENT& measurement;
  STAGE stage;
  std::size_t repetitions = 1;
  std::vector<double> seconds_per_unit;

  double run() const {
    const double begin = now(measurement.clock);
    for (std::size_t i = 0; i < repetitions; i++) stage.operation();
    return now(measurement.clock) - begin;
  }

  // The first run warms up; then the repetitions grow until a sample is long enough.
  void calibrate() {
    run();
    for (double seconds = run(); seconds < SAMPLE_SECONDS; seconds = run()) {
      const double growth = std::clamp(1.2 * SAMPLE_SECONDS / std::max(seconds, 1e-7), 1.2, 100.0);
      repetitions = static_cast<std::size_t>(std::ceil(static_cast<double>(repetitions) * growth));
    }
  }

  // An untimed run comes first: it clears up what the subject before left in the heap and the
  // caches, so that each subject pays for its own doings only.
  void take_sample() {
    stage.operation();
    seconds_per_unit.push_back(run() / static_cast<double>(repetitions) / stage.units);
  }
};

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

std::vector<SUBJECT> prepare_subjects(const COMPARISON& comparison) {
  std::vector<SUBJECT> subjects;
  for (const MEASUREMENT& measurement : comparison.measurements) {
    subjects.push_back({measurement, measurement.prepare(), 1, {}});
    subjects.back().calibrate();
  }
  return subjects;
}

double compute(const FIGURE& figure, const std::vector<SUBJECT>& subjects) {
  const std::vector<double>& measured = subjects[figure.measured].seconds_per_unit;
  const std::vector<double>& against = subjects[figure.against].seconds_per_unit;
  std::vector<double> values;
  for (std::size_t round = 0; round < measured.size(); round++) {
    values.push_back(figure.compute ? figure.compute(measured[round], against[round])
                                    : measured[round] / against[round]);
  }
  return median(std::move(values));
}

void run_rounds(std::vector<SUBJECT>& subjects) {
  const double begin = now(MEASUREMENT::WALL_TIME);
  for (std::size_t round = 0; round < MOST_ROUNDS; round++) {
    const bool is_time_over = now(MEASUREMENT::WALL_TIME) - begin > SECONDS_FOR_ROUNDS;
    if (round >= LEAST_ROUNDS && is_time_over) break;
    for (SUBJECT& subject : subjects) subject.take_sample();
  }
}

}  // namespace

void run_comparison(const COMPARISON& comparison, std::vector<RESULT>& results) {
  std::fprintf(stderr, "%s\n", comparison.name.c_str());
  // What an earlier comparison left of the heap must not help or hinder this one.
  malloc_trim(0);
  std::vector<SUBJECT> subjects = prepare_subjects(comparison);
  run_rounds(subjects);
  for (const SUBJECT& subject : subjects) {
    std::fprintf(stderr, "  %-36s %14.2f ns per unit\n", subject.measurement.name.c_str(),
                 1e9 * median(subject.seconds_per_unit));
  }
  for (const FIGURE& figure : comparison.figures) {
    results.push_back({figure.subject, figure.size, compute(figure, subjects), figure.limit});
  }
  if (comparison.count) comparison.count(results);
}
