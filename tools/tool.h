// The tool as a whole: its commands, and what becomes of its arguments.
#ifndef TOOLS_TOOL_H
#define TOOLS_TOOL_H

#include "tools/command_description.h"
#include "tools/exit_code.h"

namespace sbd_tool {

// All that its command line takes.
COMMAND_DESCRIPTION describe_tool();

// Does what the arguments of main say, and returns what main is to return.
EXIT_CODE run_tool(int argument_count, const char* const* arguments) noexcept;

}  // namespace sbd_tool

#endif
