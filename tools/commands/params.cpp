// sbd params: prints what the parameters of a device come to.
#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tools/commands/command.h"
#include "tools/commands/device_command.h"
#include "tools/commands/options.h"
#include "tools/device_view.h"
#include "tools/lookup.h"
#include "tools/name_pattern.h"
#include "tools/parameter_help.h"
#include "tools/parameter_printer.h"
#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

constexpr char k_footer[] =
    "Prints every parameter of the chip with the value that counts and where that comes from: the\n"
    "file, the default of a parameter that its block does not state, or the default for an absent\n"
    "block. A PATTERN with \"*\" or \"?\" has to fit the whole name, any other a part of it. "
    "Faults "
    "are\n"
    "told on standard error and end in exit code 1.\n"
    "\n"
    "Examples:\n"
    "  sbd params board.sbd\n"
    "  sbd params board.sbd clocks\n"
    "  sbd params board.sbd '*.region[?].enabled'\n"
    "  sbd params --csv board.sbd >board.csv\n"
    "  sbd params --json board.sbd | jq '.parameters[] | select(.origin == \"file\")'";

class PARAMS_COMMAND : public COMMAND {
 public:
  COMMAND_SYNTAX declare(const COMMAND_SYNTAX& tool) override {
    const COMMAND_SYNTAX command =
        tool.add_command("params", "Print what the parameters of a device come to");
    add_file(command, m_file);
    command.add_positional("PATTERN", m_pattern, "Only parameters with names like that");
    add_device(command, m_device);
    const OPTION_SYNTAX json = command.add_flag("--json", m_is_json, "Print JSON");
    command.add_flag("--csv", m_is_csv, "Print comma-separated values").excludes(json);
    add_color(command, m_colors);
    command.set_footer(k_footer);
    return command;
  }

  void run(SESSION& session) override {
    const auto descriptor = read_device(session, m_file, m_device, m_colors);
    if (descriptor == nullptr) return;
    std::vector<PARAMETER_VIEW> parameters = list_parameters(descriptor->document);
    const auto is_unwanted = [this](const PARAMETER_VIEW& parameter) {
      return !matches_pattern(parameter.name, m_pattern);
    };
    parameters.erase(std::remove_if(parameters.begin(), parameters.end(), is_unwanted),
                     parameters.end());
    if (parameters.empty()) complain_of_pattern(session, *descriptor);
    print(session.out(), *descriptor, parameters);
  }

 private:
  void complain_of_pattern(SESSION& session, const DESCRIPTOR& descriptor) const {
    SBD_STRING chip;
    descriptor.document.get_chip_type_name(chip);
    const std::string suggestion = ask_for(find_near_parameters(m_pattern));
    session.complain(fmt::format("no parameter of {} is like {}{}{}", chip.c_str(),
                                 quote_name(m_pattern), suggestion.empty() ? "" : "; ", suggestion),
                     EXIT_FAULTS);
  }

  void print(OUTPUT& output, const DESCRIPTOR& descriptor,
             const std::vector<PARAMETER_VIEW>& parameters) const {
    if (m_is_json) {
      JSON_WRITER json(output);
      json.begin_object(JSON_WRITER::LAYOUT::LINES);
      write_device_keys(json, descriptor);
      json.key("parameters");
      write_parameters(json, parameters);
      json.end();
      json.finish();
    } else if (m_is_csv) {
      print_parameters_as_csv(output, parameters);
    } else {
      print_parameters(output, make_painter(m_colors, output), 0, parameters);
    }
  }

  std::string m_file;
  std::string m_pattern;
  std::string m_device;
  bool m_is_json = false;
  bool m_is_csv = false;
  COLOR_CHOICE m_colors = COLOR_CHOICE::AUTO;
};

}  // namespace

std::unique_ptr<COMMAND> make_params_command() {
  return std::make_unique<PARAMS_COMMAND>();
}

}  // namespace sbd_tool
