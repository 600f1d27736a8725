// Reading, writing and reading again: the same tree, and from then on the same text.
#include <cstdio>
#include <cstdlib>

#include "fuzz/fuzz_support.h"
#include "tests/reference/document_dump.h"

namespace {

// Floating numbers are written with six decimals, so they are compared as far as that.
std::string comparable(const SBD_FILE_PARSER& document) {
  constexpr std::string_view k_float = "number 4 ";
  const std::string shape = dump_shape(document);
  std::string result;
  for (std::size_t at = 0; at < shape.size();) {
    const std::size_t end = shape.find('\n', at) + 1;
    std::string line = shape.substr(at, end - at);
    if (line.rfind(k_float, 0) == 0) {
      char digits[400];
      char* behind = nullptr;
      const double number = std::strtod(line.c_str() + k_float.size(), &behind);
      std::snprintf(digits, sizeof digits, "%f", number);
      line = std::string(k_float) + digits + behind;
    }
    result += line;
    at = end;
  }
  return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const FUZZ_RUN run;
  SBD_FILE_PARSER document;
  if (!read_text(document, view(data, size))) return 0;
  const std::string first = written(document);
  SBD_FILE_PARSER again;
  FUZZ_EXPECT(read_text(again, first), first);
  FUZZ_EXPECT(comparable(again) == comparable(document), first);
  FUZZ_EXPECT(written(again) == first, first);
  return 0;
}
