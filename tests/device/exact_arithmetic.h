// Numbers with a significand of 64 bits, in whole-number arithmetic: what products, quotients and
// their roundings have to come to, whatever the machine's floating point does.
#ifndef TESTS_DEVICE_EXACT_ARITHMETIC_H
#define TESTS_DEVICE_EXACT_ARITHMETIC_H

#include <cstdint>

// Every operation rounds its exact result to 64 bits, ties to even. Divisors may be zero; apart
// from that, numbers are finite and far from the ends of the range of double.
class WIDE_NUMBER {
 public:
  explicit WIDE_NUMBER(double number);
  static WIDE_NUMBER of_whole(std::uint64_t number);

  WIDE_NUMBER times(std::uint32_t factor) const;
  WIDE_NUMBER divided_by(std::uint32_t divisor) const;
  WIDE_NUMBER halved() const;

  // Rounded to 53 bits, ties to even.
  double to_double() const;
  // The low 32 bits of the nearest whole number, ties to even.
  std::uint32_t to_dword() const;

 private:
  enum STATE { FINITE, INFINITE, UNDEFINED };

  WIDE_NUMBER() = default;

  STATE m_state = FINITE;
  bool m_is_negative = false;
  std::uint64_t m_significand = 0;  // Its highest bit is set, or it is zero.
  int m_exponent = 0;               // Of the lowest bit.
};

#endif
