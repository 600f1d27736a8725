// The results as a table.
#ifndef BENCH_MEASURE_RESULT_TABLE_H
#define BENCH_MEASURE_RESULT_TABLE_H

#include <string>
#include <vector>

#include "bench/measure/comparison.h"

// One line for each subject, with a column for each size where there are sizes; a value that misses
// its target is marked. Either as a Markdown table or with columns of blanks.
std::string make_result_table(const std::vector<RESULT>& results, bool is_markdown);

#endif
