// Options that several commands have.
#ifndef TOOLS_COMMANDS_OPTIONS_H
#define TOOLS_COMMANDS_OPTIONS_H

#include <CLI/CLI.hpp>
#include <string>

#include "tools/terminal.h"

namespace sbd_tool {

void add_file(CLI::App& command, std::string& file);
void add_color(CLI::App& command, COLOR_CHOICE& choice);

}  // namespace sbd_tool

#endif
