// Runs a fuzz target over files, without libFuzzer: the arguments are files and folders of inputs.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/fuzz_support.h"

namespace {

namespace fs = std::filesystem;

bool run_file(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> bytes(std::istreambuf_iterator<char>(file), {});
  if (file.bad()) return false;
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  return true;
}

// How many inputs there are; -1 when one can't be read.
int run_all(const fs::path& path) {
  if (!fs::is_directory(path)) return run_file(path) ? 1 : -1;
  int count = 0;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(path)) {
    if (!entry.is_regular_file()) continue;
    if (!run_file(entry.path())) return -1;
    ++count;
  }
  return count;
}

}  // namespace

int main(int argument_count, char** arguments) {
  int total = 0;
  for (int i = 1; i < argument_count; ++i) {
    const int count = run_all(arguments[i]);
    if (count <= 0) {
      std::fprintf(stderr, "no inputs: %s\n", arguments[i]);
      return 1;
    }
    total += count;
  }
  std::printf("%d inputs\n", total);
  return total > 0 ? 0 : 1;
}
