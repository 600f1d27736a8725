// A memory map as a drawing.
#ifndef TOOLS_MEMORY_MAP_PICTURE_H
#define TOOLS_MEMORY_MAP_PICTURE_H

#include <string_view>

#include "tools/memory_map.h"
#include "tools/svg_picture.h"

namespace sbd_tool {

// The address space from 0 at the top to 4 GiB, not to scale: holes are short, large windows are
// taller than small ones. Windows that overlap stand side by side.
SVG_PICTURE draw_memory_map(const MEMORY_MAP& map, std::string_view title);

}  // namespace sbd_tool

#endif
