// Prints how many milliseconds of processor time the library takes to read a file: the best of some
// rounds, for the test that compares Python with it.
#include <algorithm>
#include <cstdio>
#include <ctime>

#include "sbd/sbd_file_parser.h"

int main(int argc, char** argv) {
  constexpr int k_rounds = 7;
  double best = 1e9;
  for (int i = 0; argc == 2 && i < k_rounds; i++) {
    const std::clock_t begin = std::clock();
    {
      SBD_FILE_PARSER document;
      if (!document.read(argv[1])) return 1;
    }
    best = std::min(best, static_cast<double>(std::clock() - begin) * 1000 / CLOCKS_PER_SEC);
  }
  std::printf("%f\n", best);
  return 0;
}
