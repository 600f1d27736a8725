// Options that several commands have.
#ifndef TOOLS_COMMANDS_OPTIONS_H
#define TOOLS_COMMANDS_OPTIONS_H

#include <string>

#include "tools/command_line.h"
#include "tools/terminal.h"

namespace sbd_tool {

void add_file(const COMMAND_SYNTAX& command, std::string& file);
void add_color(const COMMAND_SYNTAX& command, COLOR_CHOICE& choice);

}  // namespace sbd_tool

#endif
