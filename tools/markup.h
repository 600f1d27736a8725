// Text for HTML and SVG.
#ifndef TOOLS_MARKUP_H
#define TOOLS_MARKUP_H

#include <string>
#include <string_view>

namespace sbd_tool {

// The text with everything escaped that means something in markup, also within attributes. What a
// terminal would not show is made visible: most of it is not allowed in XML.
std::string escape_markup(std::string_view text);

}  // namespace sbd_tool

#endif
