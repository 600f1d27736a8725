// The tree of clocks as a drawing.
#ifndef TOOLS_CLOCK_PICTURE_H
#define TOOLS_CLOCK_PICTURE_H

#include <string_view>
#include <vector>

#include "tools/clock_view.h"
#include "tools/svg_picture.h"

namespace sbd_tool {

// From the input clock at the left to the clocks at the right.
SVG_PICTURE draw_clock_tree(const std::vector<CLOCK_TREE_NODE>& tree, std::string_view title);

}  // namespace sbd_tool

#endif
