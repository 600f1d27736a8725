#include "tools/notation.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

namespace sbd_tool {

namespace {

std::string_view text_of(const VALUE& value) {
  return value.text != nullptr ? std::string_view(value.text) : std::string_view();
}

std::string write_integer(const VALUE& value) {
  const auto number = static_cast<std::uint32_t>(value.number);
  switch (value.type) {
    case VALUE::VT_OCTAL:
      return fmt::format("0{:o}", number);
    case VALUE::VT_HEXAL:
      return fmt::format("0x{:x}", number);
    case VALUE::VT_BINARY:
      return fmt::format("0b{:b}", number);
    default:
      return fmt::format("{}", number);
  }
}

// The notation has no exponents, and it is the point that makes a number a float.
std::string write_float(double number) {
  constexpr std::size_t k_longest = std::numeric_limits<double>::max_exponent10 -
                                    std::numeric_limits<double>::min_exponent10 + 32;
  std::array<char, k_longest> digits{};
  const auto result =
      std::to_chars(digits.data(), digits.data() + digits.size(), number, std::chars_format::fixed);
  std::string text(digits.data(), result.ptr);
  if (std::isfinite(number) && text.find('.') == std::string::npos) text += ".0";
  return text;
}

std::string write_scalar(const VALUE& value) {
  switch (value.type) {
    case VALUE::VT_FLOAT:
      return write_float(value.number).append(unit_text(value.unit));
    case VALUE::VT_BOOL:
      return value.flag != 0 ? "true" : "false";
    case VALUE::VT_STRING:
      return std::string(text_of(value));
    default:
      return write_integer(value).append(unit_text(value.unit));
  }
}

std::string_view get_written(const SBD_FILE_PARSER& document, const VALUE& value) {
  SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
  if (!document.get_range(&value, range)) return {};
  return document.get_source().substr(range.offset, range.length);
}

void append_scalar(std::string& text, const SBD_FILE_PARSER& document, const VALUE& value) {
  const std::string_view written = get_written(document, value);
  if (written.empty()) {
    text += write_scalar(value);
  } else {
    text += written;
  }
}

// Whole numbers of the integer kinds have no more than 62 bits with their unit, so that a double
// holds them exactly.
std::string write_number(const VALUE& value, double number) {
  const bool is_integer = value.type != VALUE::VT_FLOAT;
  return is_integer ? fmt::format("{:.0f}", number) : fmt::format("{}", number);
}

}  // namespace

std::string_view unit_text(VALUE::QUANTITY_UNIT unit) {
  constexpr std::array<std::string_view, 6> k_units = {"", "K", "M", "G", "Hz", "MHz"};
  return unit < k_units.size() ? k_units[unit] : std::string_view();
}

std::string get_notation(const SBD_FILE_PARSER& document, const VALUE& value) {
  std::string text;
  VALUE_WALK walk(value);
  for (;;) {
    const VALUE_WALK::STEP step = walk.next();
    if (step == VALUE_WALK::STEP::END) return text;
    if (step == VALUE_WALK::STEP::LEAVE) {
      text += '}';
      continue;
    }
    if (walk.is_later_element()) text += ", ";
    if (walk.value().type == VALUE::VT_LIST) {
      text += '{';
    } else {
      append_scalar(text, document, walk.value());
    }
  }
}

double get_scaled_value(const VALUE& value) {
  return value.number * static_cast<double>(SBD_FILE_PARSER::get_unit_value(value.unit));
}

std::string get_scaled_number(const VALUE& value) {
  return write_number(value, get_scaled_value(value));
}

std::string get_unscaled_number(const VALUE& value) {
  return write_number(value, value.number);
}

std::string_view get_unquoted(const VALUE& value) {
  std::string_view text = text_of(value);
  const bool is_quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
  if (is_quoted) text = text.substr(1, text.size() - 2);
  return text;
}

}  // namespace sbd_tool
