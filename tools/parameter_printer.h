// Parameters of a device as a table, as JSON and as CSV; docs/tool.md describes the forms.
#ifndef TOOLS_PARAMETER_PRINTER_H
#define TOOLS_PARAMETER_PRINTER_H

#include <cstddef>
#include <vector>

#include "tools/device_view.h"
#include "tools/json_writer.h"
#include "tools/output.h"
#include "tools/terminal.h"

namespace sbd_tool {

void print_parameters(OUTPUT& output, const PAINTER& painter, std::size_t indent,
                      const std::vector<PARAMETER_VIEW>& parameters);

// With a line of headings; texts as they are, in quotes where they need them.
void print_parameters_as_csv(OUTPUT& output, const std::vector<PARAMETER_VIEW>& parameters);

// An array of objects.
void write_parameters(JSON_WRITER& json, const std::vector<PARAMETER_VIEW>& parameters);

// The keys that tell what a result is about: version, file, device and chip.
void write_device_keys(JSON_WRITER& json, const DESCRIPTOR& descriptor);

}  // namespace sbd_tool

#endif
