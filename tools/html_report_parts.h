// The parts of a report's page that are always the same.
#ifndef TOOLS_HTML_REPORT_PARTS_H
#define TOOLS_HTML_REPORT_PARTS_H

namespace sbd_tool {

extern const char k_report_style[];
// Shows the search fields, which are of no use without it, and hides the rows of the table below
// that have not all words of the field in them.
extern const char k_report_script[];
// Nothing may be loaded, and no other script than that one may run: it is named by its checksum.
extern const char k_report_policy[];

}  // namespace sbd_tool

#endif
