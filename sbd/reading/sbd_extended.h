// Extended precision: numbers with a significand of 64 bits, on all machines whose `long double`
// has as many or more.
#ifndef SBD_READING_SBD_EXTENDED_H
#define SBD_READING_SBD_EXTENDED_H

#include <cmath>
#include <limits>

inline constexpr int k_extended_digits = 64;

// The nearest number of so many binary digits, of two the one whose last digit is even.
template <int DIGITS>
long double sbd_round_to_digits(long double number) {
  if (!std::isfinite(number)) return number;
  int exponent = 0;
  const long double significand = std::frexp(number, &exponent);
  return std::ldexp(std::nearbyint(std::ldexp(significand, DIGITS)), exponent - DIGITS);
}

// A product or quotient of numbers of up to 64 bits and of up to 32 as extended precision has it.
// To round it once more than it was changes nothing: the wider types hold such products whole, and
// such quotients with so many digits that none lies too near to the middle between two results.
inline long double sbd_extended(long double result) {
  if constexpr (std::numeric_limits<long double>::digits > k_extended_digits) {
    return sbd_round_to_digits<k_extended_digits>(result);
  } else {
    return result;
  }
}

#endif
