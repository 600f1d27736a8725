// All that is measured, one function for each group of lines of the table.
#ifndef BENCH_ROWS_ROWS_H
#define BENCH_ROWS_ROWS_H

#include <cstddef>
#include <vector>

#include "bench/document/document_generator.h"
#include "bench/measure/comparison.h"

struct SIZE_ROW {
  const char* label;  // In the table,
  const char* key;    // and in names that regular expressions look for.
  std::size_t parameters;
};

constexpr SIZE_ROW SIZES[] = {{"typical", "typical", TYPICAL_PARAMETERS},
                              {"10^3", "1000", 1000},
                              {"10^4", "10000", 10000},
                              {"10^5", "100000", 100000},
                              {"10^6", "1000000", 1000000}};

inline double count_of(const SIZE_ROW& size) {
  return static_cast<double>(size.parameters);
}

void add_read_rows(std::vector<COMPARISON>& comparisons);
void add_growth_rows(std::vector<COMPARISON>& comparisons);
void add_file_rows(std::vector<COMPARISON>& comparisons);
void add_lookup_rows(std::vector<COMPARISON>& comparisons);
void add_write_rows(std::vector<COMPARISON>& comparisons);
void add_memory_rows(std::vector<COMPARISON>& comparisons);
void add_edit_rows(std::vector<COMPARISON>& comparisons);
void add_device_rows(std::vector<COMPARISON>& comparisons);
void add_process_rows(std::vector<COMPARISON>& comparisons);

#endif
