#include "tools/input.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace sbd_tool {

namespace {

constexpr char k_standard_input_name[] = "<stdin>";
constexpr std::size_t k_first_guess = std::size_t{64} * 1024;
// The library refuses what is longer, so there is no use in reading on.
constexpr std::size_t k_longest = 0xFFFFFFFFU - 1;

struct FILE_CLOSER {
  void operator()(std::FILE* file) const {
    if (file != stdin) (void)std::fclose(file);
  }
};
using FILE_HANDLE = std::unique_ptr<std::FILE, FILE_CLOSER>;

FILE_HANDLE open_input(const std::string& path) {
  return FILE_HANDLE(path == k_standard_input ? stdin : std::fopen(path.c_str(), "rb"));
}

// Returns why not all could be read; empty when all was.
std::string read_to_end(std::FILE* file, std::string& bytes) {
  std::size_t length = 0;
  do {
    bytes.resize(std::max(k_first_guess, bytes.size() * 2));
    length += std::fread(bytes.data() + length, 1, bytes.size() - length, file);
    if (std::ferror(file) != 0) return std::strerror(errno);
    if (length > k_longest) return "The file has 4 GiB or more";
  } while (length == bytes.size());
  bytes.resize(length);
  return {};
}

}  // namespace

INPUT read_input(const std::string& path) {
  INPUT input;
  input.name = path == k_standard_input ? k_standard_input_name : path;
  const FILE_HANDLE file = open_input(path);
  if (file == nullptr) {
    input.failure = std::strerror(errno);
    return input;
  }
  input.failure = read_to_end(file.get(), input.bytes);
  if (!input.failure.empty()) input.bytes.clear();
  return input;
}

}  // namespace sbd_tool
