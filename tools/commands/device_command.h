// What the commands that look at one device have in common.
#ifndef TOOLS_COMMANDS_DEVICE_COMMAND_H
#define TOOLS_COMMANDS_DEVICE_COMMAND_H

#include <memory>
#include <string>

#include "tools/command_line.h"
#include "tools/descriptor.h"
#include "tools/session.h"
#include "tools/terminal.h"

namespace sbd_tool {

void add_device(const COMMAND_SYNTAX& command, std::string& device);

// Reads the file and opens the device named `device`, or, where that is empty, the only one there
// is. All findings are printed on standard error and noted in the session. Null when there are no
// parameters to look at, which is then told; with faults in them there are.
std::unique_ptr<DESCRIPTOR> read_device(SESSION& session, const std::string& file,
                                        const std::string& device, COLOR_CHOICE colors);

}  // namespace sbd_tool

#endif
