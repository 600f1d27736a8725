// All that is known about a descriptor, as a page.
#ifndef TOOLS_HTML_REPORT_H
#define TOOLS_HTML_REPORT_H

#include <string>
#include <vector>

#include "tools/descriptor.h"

namespace sbd_tool {

// A page that stands alone: it loads nothing, and can be read without its script, which but
// searches the tables. The findings are those of the descriptor. Afterwards, the last of the
// `devices`, which are names of device blocks, is open.
std::string make_html_report(DESCRIPTOR& descriptor, const std::vector<std::string>& devices);

}  // namespace sbd_tool

#endif
