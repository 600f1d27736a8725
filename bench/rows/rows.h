// All that is measured, one function for each group of lines of the table.
#ifndef BENCH_ROWS_ROWS_H
#define BENCH_ROWS_ROWS_H

#include <vector>

#include "bench/measure/comparison.h"

void add_read_rows(std::vector<COMPARISON>& comparisons);

#endif
