#include "tools/commands/options.h"

#include <map>

namespace sbd_tool {

void add_file(CLI::App& command, std::string& file) {
  command.add_option("FILE", file, "The descriptor file; \"-\" is standard input")
      ->required()
      ->type_name("");
}

void add_color(CLI::App& command, COLOR_CHOICE& choice) {
  static const std::map<std::string, COLOR_CHOICE> k_choices = {{"auto", COLOR_CHOICE::AUTO},
                                                                {"always", COLOR_CHOICE::ALWAYS},
                                                                {"never", COLOR_CHOICE::NEVER}};
  // A function of our own, as the transformers of the library take the numbers of an enumeration,
  // too, and list them in the help.
  command
      .add_option_function<std::string>(
          "--color", [&choice](const std::string& name) { choice = k_choices.at(name); },
          "auto (the default: colours on a terminal), always or never")
      ->check(CLI::IsMember({"auto", "always", "never"}))
      ->type_name("WHEN");
}

}  // namespace sbd_tool
