// Decimal digits, the same in every locale.
#ifndef SBD_DEVICE_SBD_DECIMAL_H
#define SBD_DEVICE_SBD_DECIMAL_H

#include <cstddef>

inline constexpr std::size_t k_longest_decimal = 20;  // Digits of the largest 64-bit number.

// Writes the digits of `number` from `to` on and returns where they end.
inline char* sbd_write_decimal(char* to, unsigned long number) {
  constexpr unsigned long k_base = 10;
  char digits[k_longest_decimal];
  std::size_t count = 0;
  do {
    digits[count++] = static_cast<char>('0' + number % k_base);
    number /= k_base;
  } while (number != 0);
  while (count != 0) *to++ = digits[--count];
  return to;
}

#endif
