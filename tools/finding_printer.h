// Findings as text for people.
#ifndef TOOLS_FINDING_PRINTER_H
#define TOOLS_FINDING_PRINTER_H

#include <string_view>

#include "tools/findings.h"
#include "tools/output.h"
#include "tools/terminal.h"

namespace sbd_tool {

// Prints each finding as
//
//   file:line:column: error: text [KEY]
//       12 |     the line
//          |     ^~~
//   file:line:column: note: cause
//
// `source` is what was read from the file.
void print_findings(OUTPUT& output, const PAINTER& painter, std::string_view file,
                    std::string_view source, const FINDINGS& findings);

}  // namespace sbd_tool

#endif
