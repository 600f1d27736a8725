#include "tests/device/exact_arithmetic.h"

#include <cmath>
#include <limits>

namespace {

__extension__ using WIDE = unsigned __int128;

// `value`, of which only the highest `bits` bits are kept, ties to even. `has_rest` says that the
// exact number is a little more than `value`. Sets how many places were dropped.
std::uint64_t round_to(int bits, WIDE value, bool has_rest, int& dropped) {
  dropped = 0;
  int length = 0;
  while (length < 128 && (value >> length) != 0) ++length;
  if (length <= bits) return static_cast<std::uint64_t>(value);
  dropped = length - bits;
  const WIDE half = static_cast<WIDE>(1) << (dropped - 1);
  const WIDE tail = value & ((half << 1) - 1);
  WIDE kept = value >> dropped;
  if (tail > half || (tail == half && (has_rest || (kept & 1) != 0))) ++kept;
  if (bits < 128 && (kept >> bits) != 0) {
    kept >>= 1;
    ++dropped;
  }
  return static_cast<std::uint64_t>(kept);
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
  int dropped = 0;
  const WIDE product = static_cast<WIDE>(m_significand) * factor;
  if (product == 0) {
    result.m_significand = 0;
    result.m_exponent = 0;
    return result;
  }
  result.m_significand = round_to(64, product, false, dropped);
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
  const WIDE dividend = static_cast<WIDE>(m_significand) << 64;
  int dropped = 0;
  result.m_significand = round_to(64, dividend / divisor, dividend % divisor != 0, dropped);
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
    const std::uint64_t significand = round_to(53, m_significand, false, dropped);
    number = std::ldexp(static_cast<double>(significand), m_exponent + dropped);
  }
  return m_is_negative ? -number : number;
}

std::uint32_t WIDE_NUMBER::to_dword() const {
  std::uint32_t whole = 0;
  if (m_exponent >= 0) {
    whole = m_exponent >= 32 ? 0 : static_cast<std::uint32_t>(m_significand << m_exponent);
  } else if (m_exponent >= -64) {
    // The whole number in the upper 64 bits, what is behind its point in the lower ones.
    const WIDE scaled = static_cast<WIDE>(m_significand) << (64 + m_exponent);
    const WIDE half = static_cast<WIDE>(1) << 63;
    const WIDE tail = scaled & ((half << 1) - 1);
    WIDE kept = scaled >> 64;
    if (tail > half || (tail == half && (kept & 1) != 0)) ++kept;
    whole = static_cast<std::uint32_t>(kept);
  }
  return m_is_negative ? 0 - whole : whole;
}
