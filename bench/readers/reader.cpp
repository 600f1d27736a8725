#include "bench/readers/reader.h"

#include <cstdio>
#include <cstdlib>

void stop_measuring(const char* reader, const std::string& reason) {
  std::fprintf(stderr, "bench: %s: %s\n", reader, reason.c_str());
  std::exit(1);
}
