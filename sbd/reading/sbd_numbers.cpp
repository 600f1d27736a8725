#include "sbd/reading/sbd_numbers.h"

#include <charconv>
#include <cstddef>
#include <cstring>
#include <limits>
#include <system_error>

#include "sbd/reading/sbd_chars.h"
#include "sbd/reading/sbd_wraps.h"

namespace {

std::uint32_t digit_value(char c) {
  if (sbd_is(c, CC_DIGIT)) return static_cast<std::uint32_t>(c - '0');
  return static_cast<std::uint32_t>(sbd_to_lower(c) - 'a') + 10;
}

template <unsigned BASE>
std::uint32_t convert(std::string_view digits, std::uint64_t largest) {
  std::uint64_t number = 0;
  for (const char c : digits) {
    const std::uint64_t digit = digit_value(c);
    if (number > (largest - digit) / BASE) return static_cast<std::uint32_t>(largest);
    number = number * BASE + digit;
  }
  return static_cast<std::uint32_t>(number);
}

// ---- Eight digits at once ----------------------------------------------------------------------

// The first digit has to lie in the lowest byte.
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
constexpr bool k_takes_eight = true;
#else
constexpr bool k_takes_eight = false;
#endif
constexpr std::size_t k_digits_at_once = 8;

constexpr std::uint64_t in_all_bytes(std::uint64_t byte) {
  return byte * 0x0101010101010101U;
}

// The last of the eight digits that `digits` would be with leading zeros lies in the highest byte.
SBD_WRAPS std::uint64_t align_digits(std::uint64_t digits, std::size_t count) {
  return digits << (8 * (k_digits_at_once - count));
}

std::uint64_t load_eight(std::string_view digits) {
  std::uint64_t bytes = 0;
  std::memcpy(&bytes, digits.data(), sizeof bytes);
  return bytes;
}

// Each step joins neighbours: digits to pairs, pairs to fours, fours to eights.
std::uint32_t join_decimal_digits(std::uint64_t digits) {
  digits = (digits * 10 + (digits >> 8)) & 0x00FF00FF00FF00FFU;
  digits = (digits * 100 + (digits >> 16)) & 0x0000FFFF0000FFFFU;
  return static_cast<std::uint32_t>(digits * 10000 + (digits >> 32));
}

std::uint32_t join_hexadecimal_digits(std::uint64_t digits) {
  digits = (digits << 4 | digits >> 8) & 0x00FF00FF00FF00FFU;
  digits = (digits << 8 | digits >> 16) & 0x0000FFFF0000FFFFU;
  return static_cast<std::uint32_t>(digits << 16 | digits >> 32);
}

bool fits_at_once(std::string_view digits) {
  return k_takes_eight && digits.size() - 1 < k_digits_at_once;
}

// ------------------------------------------------------------------------------------------------

constexpr std::uint64_t k_largest_signed = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t k_largest_unsigned = std::numeric_limits<std::uint64_t>::max();

// Digits up to this count, and powers of ten up to this one, are exact as doubles; so is then their
// one product or quotient rounded right.
constexpr int k_exact_digits = 15;
constexpr double k_exact_powers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                     1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

// The value that a number too large or too small for from_chars rounds to.
double out_of_range(std::string_view text) {
  const std::string_view whole = text.substr(0, text.find('.'));
  const bool is_large = whole.find_first_of("123456789") != std::string_view::npos;
  return is_large ? std::numeric_limits<double>::infinity() : 0.0;
}

double convert_unsigned_float(std::string_view text) {
  std::uint64_t digits = 0;
  int count = 0;
  std::size_t point = text.size();
  for (std::size_t i = 0; i != text.size(); ++i) {
    if (text[i] == '.') {
      point = i;
      continue;
    }
    if (++count > k_exact_digits) {
      double number = 0;
      const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
      return result.ec == std::errc::result_out_of_range ? out_of_range(text) : number;
    }
    digits = digits * 10 + digit_value(text[i]);
  }
  const std::size_t decimals = point == text.size() ? 0 : text.size() - point - 1;
  return static_cast<double>(digits) / k_exact_powers[decimals];
}

}  // namespace

std::uint32_t sbd_convert_decimal(std::string_view digits) noexcept {
  if (!digits.empty() && digits.front() == '+') digits.remove_prefix(1);
  constexpr std::size_t k_always_fits = 18;
  if (digits.size() > k_always_fits) return convert<10>(digits, k_largest_signed);
  std::uint64_t number = 0;
  for (const char c : digits) number = number * 10 + static_cast<std::uint64_t>(c - '0');
  return static_cast<std::uint32_t>(number);
}

std::uint32_t sbd_convert_octal(std::string_view digits) noexcept {
  return convert<8>(digits, k_largest_unsigned);
}

std::uint32_t sbd_convert_hexadecimal(std::string_view digits) noexcept {
  constexpr std::size_t k_always_fits = 16;
  if (digits.size() <= k_always_fits) {
    std::uint64_t number = 0;
    for (const char c : digits) number = number << 4 | digit_value(c);
    return static_cast<std::uint32_t>(number);
  }
  return convert<16>(digits, k_largest_unsigned);
}

SBD_WRAPS std::uint32_t sbd_convert_padded_decimal(std::string_view digits) noexcept {
  if (!fits_at_once(digits) || digits.front() == '+') return sbd_convert_decimal(digits);
  const std::uint64_t values = load_eight(digits) - in_all_bytes('0');
  return join_decimal_digits(align_digits(values, digits.size()));
}

std::uint32_t sbd_convert_padded_hexadecimal(std::string_view digits) noexcept {
  if (!fits_at_once(digits)) return sbd_convert_hexadecimal(digits);
  const std::uint64_t bytes = load_eight(digits);
  // A letter has bit 6 set, and its low four bits are 9 less than its value.
  const std::uint64_t is_letter = (bytes >> 6) & in_all_bytes(1);
  const std::uint64_t values = (bytes & in_all_bytes(0x0F)) + is_letter * 9;
  return join_hexadecimal_digits(align_digits(values, digits.size()));
}

SBD_WRAPS std::uint32_t sbd_convert_binary(std::string_view digits) noexcept {
  std::uint32_t number = 0;
  for (const char c : digits) number = number * 2 + digit_value(c);
  return number;
}

double sbd_convert_float(std::string_view text) noexcept {
  if (text.empty()) return 0;
  if (text.front() == '-') return -convert_unsigned_float(text.substr(1));
  if (text.front() == '+') text.remove_prefix(1);
  return convert_unsigned_float(text);
}
