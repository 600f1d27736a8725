// Integers from floating numbers, without any conversion that C++ leaves undefined.
#ifndef SBD_READING_SBD_LOW_BITS_H
#define SBD_READING_SBD_LOW_BITS_H

#include <cmath>
#include <cstdint>

// The low 32 bits of a number's whole part, of a negative one those of its two's complement; 0
// where the number has no place in 64 bits.
inline std::uint32_t sbd_low_bits(long double number) {
  constexpr long double k_two_to_63 = 9223372036854775808.0L;
  constexpr long double k_two_to_64 = 2 * k_two_to_63;
  // The usual numbers need no more than a conversion.
  if (number >= 0 && number < k_two_to_63) {
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(number));
  }
  const long double whole = std::trunc(number);
  if (!(whole > -k_two_to_64 && whole < k_two_to_64)) return 0;
  const auto magnitude = static_cast<std::uint64_t>(std::fabs(whole));
  return static_cast<std::uint32_t>(whole < 0 ? ~magnitude + 1 : magnitude);
}

#endif
