#include <cstdio>
#include <string>

#include "bench/rows/rows.h"

int main(int argc, char** argv) {
  std::vector<COMPARISON> comparisons;
  add_read_rows(comparisons);
  std::vector<RESULT> results;
  for (const COMPARISON& comparison : comparisons) {
    if (argc > 1 && comparison.name.find(argv[1]) == std::string::npos) continue;
    run_comparison(comparison, results);
  }
  for (const RESULT& result : results) {
    std::printf("%-40s %-8s %8.2f", result.subject.c_str(), result.size.c_str(), result.value);
    if (result.limit) {
      std::printf("  <= %.2f  %s", *result.limit, result.value <= *result.limit ? "pass" : "MISS");
    }
    std::printf("\n");
  }
}
