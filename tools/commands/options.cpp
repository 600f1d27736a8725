#include "tools/commands/options.h"

#include <map>

namespace sbd_tool {

void add_file(const COMMAND_SYNTAX& command, std::string& file) {
  command.add_positional("FILE", file, "The descriptor file; \"-\" is standard input").required();
}

void add_color(const COMMAND_SYNTAX& command, COLOR_CHOICE& choice) {
  static const std::map<std::string, COLOR_CHOICE> k_choices = {{"auto", COLOR_CHOICE::AUTO},
                                                                {"always", COLOR_CHOICE::ALWAYS},
                                                                {"never", COLOR_CHOICE::NEVER}};
  command.add_choice(
      "--color", "WHEN", {"auto", "always", "never"},
      [&choice](const std::string& name) { choice = k_choices.at(name); },
      "auto (the default: colours on a terminal), always or never");
}

}  // namespace sbd_tool
