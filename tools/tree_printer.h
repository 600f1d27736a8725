// A document as an outline for people.
#ifndef TOOLS_TREE_PRINTER_H
#define TOOLS_TREE_PRINTER_H

#include "sbd/sbd_file_parser.h"
#include "tools/output.h"
#include "tools/terminal.h"
#include "tools/tree_walk.h"

namespace sbd_tool {

// Prints what the walk comes across. The nodes of its outermost level are printed with their full
// names.
void print_tree(OUTPUT& output, const PAINTER& painter, const SBD_FILE_PARSER& document,
                TREE_WALK walk);

}  // namespace sbd_tool

#endif
