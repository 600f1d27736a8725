// A file that the page cache holds.
#ifndef BENCH_MEASURE_TEMPORARY_FILE_H
#define BENCH_MEASURE_TEMPORARY_FILE_H

#include <string>
#include <string_view>

// A file with that text, in memory where the system has a place for it, until it is destroyed. Ends
// the program when it can't be made.
class TEMPORARY_FILE {
 public:
  explicit TEMPORARY_FILE(std::string_view text);
  ~TEMPORARY_FILE();
  TEMPORARY_FILE(const TEMPORARY_FILE&) = delete;
  TEMPORARY_FILE& operator=(const TEMPORARY_FILE&) = delete;

  const char* path() const { return m_path.c_str(); }

 private:
  std::string m_path;
};

#endif
