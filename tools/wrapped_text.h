// Running text broken into lines.
#ifndef TOOLS_WRAPPED_TEXT_H
#define TOOLS_WRAPPED_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace sbd_tool {

// The words of the text in lines of at most `width` characters where words are not longer, each
// behind `indent` blanks and with a line end.
std::string wrap_text(std::string_view text, std::size_t width, std::size_t indent);

}  // namespace sbd_tool

#endif
