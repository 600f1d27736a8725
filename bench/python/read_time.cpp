// Reads a generated document with the library, for the comparison with Python.
//
// read_time PARAMETERS FILE - writes the document to the file, and prints how many milliseconds of
// processor time reading it takes: the best of some rounds.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <limits>
#include <string>

#include "bench/document/document_texts.h"
#include "sbd/sbd_file_parser.h"

namespace {

bool write_document(std::size_t parameter_count, const char* path) {
  const std::string text = make_sbd_text(parameter_count);
  std::ofstream file(path, std::ios::binary);
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
  return static_cast<bool>(file.flush());
}

// Negative when the document has faults.
double time_to_read(const char* path) {
  const std::clock_t begin = std::clock();
  {
    SBD_FILE_PARSER document;
    if (!document.read(path)) return -1;
  }
  return static_cast<double>(std::clock() - begin) * 1000 / CLOCKS_PER_SEC;
}

}  // namespace

int main(int argc, char** argv) {
  constexpr int k_rounds = 15;
  if (argc != 3 || !write_document(std::strtoul(argv[1], nullptr, 10), argv[2])) {
    std::fprintf(stderr, "usage: read_time PARAMETERS FILE\n");
    return 2;
  }
  double best = std::numeric_limits<double>::infinity();
  for (int i = 0; i < k_rounds; i++) {
    const double time = time_to_read(argv[2]);
    if (time < 0) return 1;
    best = std::min(best, time);
  }
  std::printf("%f\n", best);
  return 0;
}
