// Text of a file made fit for a line on a terminal.
//
// What would not show, or would make the terminal do something, is replaced by an escape: "\n",
// "\x1b" for a control character or a byte that is no UTF-8, "\u202e" for what turns the direction
// of writing.
#ifndef TOOLS_VISIBLE_TEXT_H
#define TOOLS_VISIBLE_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace sbd_tool {

// True for a byte that can't begin a character of UTF-8.
inline bool is_continuation(char c) {
  return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

// Takes one character, or one byte that is none, off the front of `text`, which is not empty, and
// returns its visible form.
std::string take_visible(std::string_view& text);

std::string make_visible(std::string_view text);

// The same for a text that may be of any length: one wider than `width` loses its middle.
std::string make_visible(std::string_view text, std::size_t width);

// How many characters a visible text has.
std::size_t width_of(std::string_view visible);

}  // namespace sbd_tool

#endif
