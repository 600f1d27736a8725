// Manual pages of the tool, made of what its help says.
#ifndef TOOLS_MANUAL_PAGE_H
#define TOOLS_MANUAL_PAGE_H

#include <string>

#include "tools/command_description.h"

namespace sbd_tool {

// What stands at the foot of a page.
struct MANUAL_ISSUE {
  std::string version;
  std::string date;
};

// "sbd-block", of "sbd block"; the page's file has ".1" behind it.
std::string manual_page_name(const COMMAND_DESCRIPTION& command);

// The page of the tool itself, which leads to those of its commands.
std::string make_tool_page(const COMMAND_DESCRIPTION& tool, const MANUAL_ISSUE& issue);

// The page of one of its commands, with the commands below that.
std::string make_command_page(const COMMAND_DESCRIPTION& command, const MANUAL_ISSUE& issue);

}  // namespace sbd_tool

#endif
