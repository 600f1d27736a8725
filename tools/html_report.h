// All that is known about a descriptor, as a page.
#ifndef TOOLS_HTML_REPORT_H
#define TOOLS_HTML_REPORT_H

#include <string>
#include <vector>

#include "tools/descriptor.h"
#include "tools/device_snapshot.h"

namespace sbd_tool {

// A page that stands alone: it loads nothing, and can be read without its script, which but
// searches the tables. The findings are those of the descriptor; there are no devices if its format
// is faulty.
std::string make_html_report(const DESCRIPTOR& descriptor,
                             const std::vector<DEVICE_SNAPSHOT>& devices);

}  // namespace sbd_tool

#endif
