// Patterns that choose parameters by their names.
#ifndef TOOLS_NAME_PATTERN_H
#define TOOLS_NAME_PATTERN_H

#include <string_view>

namespace sbd_tool {

// Whether the pattern chooses the name. With a "*" (any characters, dots too) or "?" (one of them)
// in it, the pattern has to fit the whole name; otherwise it has to be a part of it. Letter case
// does not matter. Brackets stand for themselves: names have them.
bool matches_pattern(std::string_view name, std::string_view pattern);

}  // namespace sbd_tool

#endif
