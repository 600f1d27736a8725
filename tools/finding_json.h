// Findings as JSON; docs/tool.md describes the form.
#ifndef TOOLS_FINDING_JSON_H
#define TOOLS_FINDING_JSON_H

#include "tools/findings.h"
#include "tools/json_writer.h"

namespace sbd_tool {

void write_finding(JSON_WRITER& json, const FINDING& finding);

}  // namespace sbd_tool

#endif
