#include "tests/device/exact_arithmetic.h"

#include <cmath>
#include <limits>

namespace {

// 128 bits; not every machine has a type of so many.
struct WIDE {
  std::uint64_t high;
  std::uint64_t low;
};

constexpr std::uint64_t k_low_half = 0xFFFFFFFF;

WIDE shifted_right(const WIDE& value, int places) {
  if (places == 0) return value;
  if (places >= 64) return {0, value.high >> (places - 64)};
  return {value.high >> places, value.low >> places | value.high << (64 - places)};
}

bool has_bits_below(const WIDE& value, int place) {
  if (place == 0) return false;
  if (place <= 64) return value.low << (64 - place) != 0;
  return value.low != 0 || value.high << (128 - place) != 0;
}

int length_of(std::uint64_t value) {
  int length = 0;
  while (value != 0) {
    value >>= 1;
    ++length;
  }
  return length;
}

WIDE product_of(std::uint64_t a, std::uint32_t b) {
  const std::uint64_t low = (a & k_low_half) * b;
  const std::uint64_t high = (a >> 32) * b + (low >> 32);
  return {high >> 32, high << 32 | (low & k_low_half)};
}

// Of `dividend` * 2^64, with 32 bits at a time as on paper.
WIDE quotient_of(std::uint64_t dividend, std::uint32_t divisor, bool& has_rest) {
  std::uint64_t rest = 0;
  std::uint64_t digits[4] = {dividend >> 32, dividend & k_low_half, 0, 0};
  for (std::uint64_t& digit : digits) {
    const std::uint64_t part = rest << 32 | digit;
    digit = part / divisor;
    rest = part % divisor;
  }
  has_rest = rest != 0;
  return {digits[0] << 32 | digits[1], digits[2] << 32 | digits[3]};
}

// `value`, of which only the highest `bits` bits, at most 64, are kept, ties to even. `has_rest`
// says that the exact number is a little more than `value`. Sets how many places were dropped.
std::uint64_t round_to(int bits, const WIDE& value, bool has_rest, int& dropped) {
  dropped = 0;
  const int length = value.high != 0 ? 64 + length_of(value.high) : length_of(value.low);
  if (length <= bits) return value.low;
  dropped = length - bits;
  std::uint64_t kept = shifted_right(value, dropped).low;
  const bool has_half = (shifted_right(value, dropped - 1).low & 1) != 0;
  if (!has_half) return kept;
  if (!has_rest && !has_bits_below(value, dropped - 1) && (kept & 1) == 0) return kept;
  ++kept;
  if (length_of(kept - 1) == length_of(kept)) return kept;
  ++dropped;  // All ones have become a one with zeros.
  return std::uint64_t{1} << (bits - 1);
}

}  // namespace

WIDE_NUMBER::WIDE_NUMBER(double number) {
  m_is_negative = std::signbit(number);
  int exponent = 0;
  const double fraction = std::frexp(std::fabs(number), &exponent);
  m_significand = static_cast<std::uint64_t>(std::ldexp(fraction, 64));
  m_exponent = m_significand == 0 ? 0 : exponent - 64;
}

WIDE_NUMBER WIDE_NUMBER::of_whole(std::uint64_t number) {
  WIDE_NUMBER result;
  result.m_significand = number;
  while (number != 0 && (result.m_significand >> 63) == 0) {
    result.m_significand <<= 1;
    --result.m_exponent;
  }
  return result;
}

WIDE_NUMBER WIDE_NUMBER::times(std::uint32_t factor) const {
  WIDE_NUMBER result = *this;
  if (m_state != FINITE) return result;
  if (m_significand == 0 || factor == 0) {
    result.m_significand = 0;
    result.m_exponent = 0;
    return result;
  }
  int dropped = 0;
  result.m_significand = round_to(64, product_of(m_significand, factor), false, dropped);
  result.m_exponent = m_exponent + dropped;
  return result;
}

WIDE_NUMBER WIDE_NUMBER::divided_by(std::uint32_t divisor) const {
  WIDE_NUMBER result = *this;
  if (m_state != FINITE) return result;
  if (divisor == 0) {
    result.m_state = m_significand == 0 ? UNDEFINED : INFINITE;
    return result;
  }
  if (m_significand == 0) return result;
  bool has_rest = false;
  const WIDE quotient = quotient_of(m_significand, divisor, has_rest);
  int dropped = 0;
  result.m_significand = round_to(64, quotient, has_rest, dropped);
  result.m_exponent = m_exponent - 64 + dropped;
  return result;
}

WIDE_NUMBER WIDE_NUMBER::halved() const {
  WIDE_NUMBER result = *this;
  if (result.m_significand != 0) --result.m_exponent;
  return result;
}

double WIDE_NUMBER::to_double() const {
  if (m_state == UNDEFINED) return std::numeric_limits<double>::quiet_NaN();
  double number = std::numeric_limits<double>::infinity();
  if (m_state == FINITE) {
    int dropped = 0;
    const std::uint64_t significand = round_to(53, {0, m_significand}, false, dropped);
    number = std::ldexp(static_cast<double>(significand), m_exponent + dropped);
  }
  return m_is_negative ? -number : number;
}

std::uint32_t WIDE_NUMBER::to_dword() const {
  std::uint32_t whole = 0;
  if (m_exponent >= 0) {
    whole = m_exponent >= 32 ? 0 : static_cast<std::uint32_t>(m_significand << m_exponent);
  } else if (m_exponent >= -64) {
    const std::uint64_t fraction = m_significand << (64 + m_exponent);
    std::uint64_t kept = m_exponent == -64 ? 0 : m_significand >> -m_exponent;
    constexpr std::uint64_t k_half = std::uint64_t{1} << 63;
    if (fraction > k_half || (fraction == k_half && (kept & 1) != 0)) ++kept;
    whole = static_cast<std::uint32_t>(kept);
  }
  return m_is_negative ? 0 - whole : whole;
}
