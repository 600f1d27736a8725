// The difference of two texts, in the form that patch applies.
#ifndef TOOLS_UNIFIED_DIFF_H
#define TOOLS_UNIFIED_DIFF_H

#include <string>
#include <string_view>

namespace sbd_tool {

// What must be changed in `old_text` to get `new_text`, with three lines of context, below the
// heads "--- a/file" and "+++ b/file"; empty when they are the same. Texts that differ in few lines
// get the shortest difference; with many, it may be longer than it has to be.
std::string make_unified_diff(std::string_view file, std::string_view old_text,
                              std::string_view new_text);

}  // namespace sbd_tool

#endif
