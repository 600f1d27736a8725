// Clocks, their tree, and choices for them, as text and JSON; docs/tool.md describes the forms.
#ifndef TOOLS_CLOCK_PRINTER_H
#define TOOLS_CLOCK_PRINTER_H

#include <vector>

#include "tools/clock_search.h"
#include "tools/clock_view.h"
#include "tools/json_writer.h"
#include "tools/output.h"
#include "tools/terminal.h"

namespace sbd_tool {

void print_derived(OUTPUT& output, const PAINTER& painter, const std::vector<DERIVED_VIEW>& clocks,
                   const std::vector<DERIVED_VIEW>& widths);

void print_clock_tree(OUTPUT& output, const PAINTER& painter,
                      const std::vector<CLOCK_TREE_NODE>& tree);

// Numbered from 1, with the settings that any of them changes; there is one choice at least.
void print_choices(OUTPUT& output, const PAINTER& painter,
                   const std::vector<CLOCK_CHOICE>& choices);

// An array of objects; the value has the key `value_key`.
void write_derived(JSON_WRITER& json, const std::vector<DERIVED_VIEW>& views,
                   const char* value_key);

// An array of objects.
void write_clock_tree(JSON_WRITER& json, const std::vector<CLOCK_TREE_NODE>& tree);
void write_choices(JSON_WRITER& json, const std::vector<CLOCK_CHOICE>& choices);

}  // namespace sbd_tool

#endif
