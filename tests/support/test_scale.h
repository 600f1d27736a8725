// How much the tests with random or enumerated cases are to do: SBD_TEST_SCALE in the environment
// multiplies the number of their cases.
#ifndef TESTS_SUPPORT_TEST_SCALE_H
#define TESTS_SUPPORT_TEST_SCALE_H

#include <algorithm>
#include <cstddef>
#include <cstdlib>

// 1 unless something else above 0 is asked for.
inline double test_scale() {
  const char* const text = std::getenv("SBD_TEST_SCALE");
  const double scale = text == nullptr ? 1 : std::strtod(text, nullptr);
  return scale > 0 ? scale : 1;
}

// `count` times that, at least 1.
inline std::size_t scaled(std::size_t count) {
  const double product = static_cast<double>(count) * test_scale();
  return std::max<std::size_t>(1, static_cast<std::size_t>(product));
}

#endif
