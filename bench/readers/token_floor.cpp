#include "bench/readers/token_floor.h"

#include <array>
#include <cstdint>

namespace {

enum BYTE_CLASS : std::uint8_t { BLANK, WORD, QUOTE, HASH, OTHER };

constexpr std::array<BYTE_CLASS, 256> make_classes() {
  std::array<BYTE_CLASS, 256> classes{};
  for (std::size_t byte = 0; byte < classes.size(); byte++) {
    const bool is_letter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
    const bool is_digit = byte >= '0' && byte <= '9';
    const bool is_blank = byte == ' ' || byte == '\t' || byte == '\r' || byte == '\n';
    const bool is_joint = byte == '_' || byte == '.' || byte == '+' || byte == '-';
    classes[byte] = is_blank                            ? BLANK
                    : is_letter || is_digit || is_joint ? WORD
                    : byte == '"'                       ? QUOTE
                    : byte == '#'                       ? HASH
                                                        : OTHER;
  }
  return classes;
}

constexpr std::array<BYTE_CLASS, 256> CLASSES = make_classes();

}  // namespace

std::size_t count_tokens(std::string_view text) {
  const auto class_of = [](char c) { return CLASSES[static_cast<unsigned char>(c)]; };
  const char* at = text.data();
  const char* const end = at + text.size();
  std::size_t tokens = 0;
  while (at != end) {
    const BYTE_CLASS first = class_of(*at++);
    if (first == BLANK) continue;
    tokens++;
    switch (first) {
      case WORD:
        while (at != end && class_of(*at) == WORD) at++;
        break;
      case QUOTE:
        while (at != end && *at != '"') at++;
        if (at != end) at++;
        break;
      case HASH:
        while (at != end && *at != '\n') at++;
        break;
      default:
        break;
    }
  }
  return tokens;
}
