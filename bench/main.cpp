// Measures the library beside others and prints the ratios.
//
// Everything that is measured is also known to Google Benchmark, which takes over when it is given
// one of its own options, such as --benchmark_filter=read/
#include <benchmark/benchmark.h>

#include <cstdio>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "bench/measure/comparison.h"
#include "bench/measure/result_table.h"
#include "bench/readers/peers.h"
#include "bench/rows/rows.h"

namespace {

constexpr char USAGE[] =
    "Usage: bench [--markdown] [FILTER]     the table of ratios\n"
    "       bench --list                    the names of what is compared\n"
    "       bench --benchmark_...           single measurements by Google Benchmark\n"
    "\n"
    "FILTER is a regular expression that is searched in the names of what is compared.\n";

std::vector<COMPARISON> make_comparisons() {
  std::vector<COMPARISON> comparisons;
  add_read_rows(comparisons);
  add_growth_rows(comparisons);
  add_file_rows(comparisons);
  add_lookup_rows(comparisons);
  add_write_rows(comparisons);
  add_memory_rows(comparisons);
  add_edit_rows(comparisons);
  add_device_rows(comparisons);
  add_process_rows(comparisons);
  return comparisons;
}

void run_under_benchmark(benchmark::State& state, const MEASUREMENT& measurement) {
  const STAGE stage = measurement.prepare();
  for ([[maybe_unused]] const auto round : state) stage.operation();
  using COUNTER = benchmark::Counter;
  state.counters["per_unit"] =
      COUNTER(stage.units, COUNTER::kIsIterationInvariantRate | COUNTER::kInvert);
}

int run_google_benchmark(int argc, char** argv, const std::vector<COMPARISON>& comparisons) {
  std::set<std::string> names;
  for (const COMPARISON& comparison : comparisons) {
    for (const MEASUREMENT& measurement : comparison.measurements) {
      if (!names.insert(measurement.name).second) continue;
      auto* const registered = benchmark::RegisterBenchmark(
          measurement.name.c_str(),
          [measurement](benchmark::State& state) { run_under_benchmark(state, measurement); });
      if (measurement.clock == MEASUREMENT::WALL_TIME) registered->UseRealTime();
    }
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}

std::string environment_text() {
  std::string text = "Compiler: g++ " __VERSION__ ", " SBD_BENCH_FLAGS "\nLibraries: ";
  text += RAPIDJSON.make()->library();
  for (const PEER& peer : OTHER_PEERS) text += ", " + peer.make()->library();
  return text + "\n";
}

int list(const std::vector<COMPARISON>& comparisons) {
  for (const COMPARISON& comparison : comparisons) std::printf("%s\n", comparison.name.c_str());
  return 0;
}

int print_table(const std::vector<COMPARISON>& comparisons, const char* filter, bool is_markdown) {
  const std::regex pattern(filter);
  std::vector<RESULT> results;
  for (const COMPARISON& comparison : comparisons) {
    if (std::regex_search(comparison.name, pattern)) run_comparison(comparison, results);
  }
  if (results.empty()) {
    std::fprintf(stderr, "bench: nothing is named like '%s'; see --list\n", filter);
    return 2;
  }
  std::printf("%s\n%s", make_result_table(results, is_markdown).c_str(),
              environment_text().c_str());
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<COMPARISON> comparisons = make_comparisons();
  bool is_markdown = false;
  const char* filter = nullptr;
  for (int i = 1; i < argc; i++) {
    const std::string argument = argv[i];
    if (argument.rfind("--benchmark_", 0) == 0) {
      return run_google_benchmark(argc, argv, comparisons);
    }
    if (argument == "--list") return list(comparisons);
    if (argument == "--markdown") {
      is_markdown = true;
    } else if (argument[0] == '-' || filter != nullptr) {
      std::fputs(USAGE, argument == "--help" ? stdout : stderr);
      return argument == "--help" ? 0 : 2;
    } else {
      filter = argv[i];
    }
  }
  try {
    return print_table(comparisons, filter != nullptr ? filter : "", is_markdown);
  } catch (const std::regex_error&) {
    std::fprintf(stderr, "bench: not a regular expression: '%s'\n", filter);
    return 2;
  }
}
