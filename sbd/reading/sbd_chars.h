// What kind of character each byte is, and letter case; the same in every locale.
#ifndef SBD_READING_SBD_CHARS_H
#define SBD_READING_SBD_CHARS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

enum SBD_CHAR_CLASS : std::uint8_t {
  CC_NAME_START = 1,  // letters and "_"
  CC_DIGIT = 2,
  CC_BLANK = 4,  // blank, tab, carriage return
  CC_DOT = 8,
  CC_LETTER = 16,
  CC_HEX_LETTER = 32,
  CC_NAME = CC_NAME_START | CC_DIGIT,
  CC_QUALIFIED = CC_NAME | CC_DOT
};

constexpr std::array<std::uint8_t, 256> sbd_make_char_classes() {
  std::array<std::uint8_t, 256> classes{};
  for (std::size_t c = 'a'; c <= 'z'; ++c) classes[c] = CC_NAME_START | CC_LETTER;
  for (std::size_t c = 'A'; c <= 'Z'; ++c) classes[c] = CC_NAME_START | CC_LETTER;
  for (std::size_t c = '0'; c <= '9'; ++c) classes[c] = CC_DIGIT;
  for (std::size_t c = 'a'; c <= 'f'; ++c) classes[c] |= CC_HEX_LETTER;
  for (std::size_t c = 'A'; c <= 'F'; ++c) classes[c] |= CC_HEX_LETTER;
  classes['_'] = CC_NAME_START;
  classes['.'] = CC_DOT;
  classes[' '] = classes['\t'] = classes['\r'] = CC_BLANK;
  return classes;
}

inline constexpr std::array<std::uint8_t, 256> k_char_classes = sbd_make_char_classes();

constexpr bool sbd_is(char c, std::uint8_t classes) {
  return (k_char_classes[static_cast<unsigned char>(c)] & classes) != 0;
}

constexpr char sbd_to_lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// True when the two are equal, letter case aside.
inline bool sbd_equal_ignoring_case(std::string_view one, std::string_view other) {
  if (one.size() != other.size()) return false;
  for (std::size_t i = 0; i != one.size(); ++i) {
    if (one[i] != other[i] && sbd_to_lower(one[i]) != sbd_to_lower(other[i])) return false;
  }
  return true;
}

// The same where the length of `text`, which ends with NUL, is not known.
inline bool sbd_equal_ignoring_case(const char* text, std::string_view other) {
  for (const char c : other) {
    // Most are spelled alike; and a NUL in `other` must not lead past the end of `text`.
    if (*text != c ? sbd_to_lower(*text) != sbd_to_lower(c) : c == '\0') return false;
    ++text;
  }
  return *text == '\0';
}

#endif
