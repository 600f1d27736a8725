#include "tools/visible_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

namespace sbd_tool {

namespace {

constexpr std::string_view k_cut = "...";
constexpr std::size_t k_longest_character = 4;

// What the first byte of a character says about it.
struct LEAD {
  std::size_t length = 0;  // 0 for a byte that no character begins with.
  std::uint32_t bits = 0;
  std::uint32_t least = 0;  // Lower code points have a shorter form.
};

LEAD lead_of(char first) {
  const auto byte = static_cast<unsigned char>(first);
  if (byte < 0x80U) return {1, byte, 0};
  if ((byte & 0xE0U) == 0xC0U) return {2, byte & 0x1FU, 0x80};
  if ((byte & 0xF0U) == 0xE0U) return {3, byte & 0x0FU, 0x800};
  if ((byte & 0xF8U) == 0xF0U) return {4, byte & 0x07U, 0x10000};
  return {};
}

bool is_surrogate(std::uint32_t code) {
  return code >= 0xD800 && code <= 0xDFFF;
}

struct CHARACTER {
  std::size_t length = 0;  // 0 when there is none.
  std::uint32_t code = 0;
};

CHARACTER decode(std::string_view text) {
  constexpr std::uint32_t k_greatest_code = 0x10FFFF;
  const LEAD lead = lead_of(text.front());
  if (lead.length == 0 || lead.length > text.size()) return {};
  std::uint32_t code = lead.bits;
  for (const char c : text.substr(1, lead.length - 1)) {
    if (!is_continuation(c)) return {};
    code = code << 6U | (static_cast<unsigned char>(c) & 0x3FU);
  }
  if (code < lead.least || code > k_greatest_code || is_surrogate(code)) return {};
  return {lead.length, code};
}

bool is_control(std::uint32_t code) {
  return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

// Marks that turn or embed the direction of writing, separators of lines, and the byte order mark:
// a line that holds them need not read as it is.
bool is_deceptive(std::uint32_t code) {
  return (code >= 0x200E && code <= 0x200F) || (code >= 0x2028 && code <= 0x202E) ||
         (code >= 0x2066 && code <= 0x2069) || code == 0x061C || code == 0xFEFF;
}

std::string escape_control(std::uint32_t code) {
  switch (code) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      return fmt::format(code < 0x80 ? "\\x{:02x}" : "\\u{:04x}", code);
  }
}

std::string first_characters(std::string_view visible, std::size_t count) {
  std::size_t end = 0;
  for (; count > 0 && end < visible.size(); --count) {
    do {
      ++end;
    } while (end < visible.size() && is_continuation(visible[end]));
  }
  return std::string(visible.substr(0, end));
}

std::string last_characters(std::string_view visible, std::size_t count) {
  std::size_t begin = visible.size();
  for (; count > 0 && begin > 0; --count) {
    do {
      --begin;
    } while (begin > 0 && is_continuation(visible[begin]));
  }
  return std::string(visible.substr(begin));
}

}  // namespace

std::string take_visible(std::string_view& text) {
  const CHARACTER character = decode(text);
  const std::string_view taken = text.substr(0, std::max<std::size_t>(character.length, 1));
  text.remove_prefix(taken.size());
  if (character.length == 0) {
    return fmt::format("\\x{:02x}", static_cast<unsigned char>(taken.front()));
  }
  if (is_control(character.code)) return escape_control(character.code);
  if (is_deceptive(character.code)) return fmt::format("\\u{:04x}", character.code);
  return std::string(taken);
}

std::string make_visible(std::string_view text) {
  std::string visible;
  visible.reserve(text.size());
  while (!text.empty()) visible += take_visible(text);
  return visible;
}

std::string make_visible(std::string_view text, std::size_t width) {
  std::string visible;
  while (!text.empty() && width_of(visible) <= width) visible += take_visible(text);
  if (width_of(visible) <= width) return visible;

  // Of what is left, only the end can be seen.
  const std::size_t enough = width * k_longest_character;
  if (text.size() > enough) text.remove_prefix(text.size() - enough);
  while (!text.empty() && is_continuation(text.front())) text.remove_prefix(1);
  visible += make_visible(text);
  return first_characters(visible, width / 2).append(k_cut) + last_characters(visible, width / 2);
}

std::size_t width_of(std::string_view visible) {
  return static_cast<std::size_t>(
      std::count_if(visible.begin(), visible.end(), [](char c) { return !is_continuation(c); }));
}

}  // namespace sbd_tool
