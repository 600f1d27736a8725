// The results as a table.
#ifndef BENCH_MEASURE_RESULT_TABLE_H
#define BENCH_MEASURE_RESULT_TABLE_H

#include <string>
#include <vector>

#include "bench/measure/comparison.h"

// One line for each subject, with a column for each size where there are sizes. A value that misses
// its target is marked: bold in Markdown, with a "!" behind it in the plain table.
std::string make_result_table(const std::vector<RESULT>& results, bool is_markdown);

#endif
