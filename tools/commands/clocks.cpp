// sbd clocks: prints the clock frequencies and port widths of a device.
#include <fmt/format.h>

#include <string>
#include <vector>

#include "tools/clock_view.h"
#include "tools/commands/command.h"
#include "tools/commands/device_command.h"
#include "tools/commands/options.h"
#include "tools/parameter_printer.h"
#include "tools/text_table.h"

namespace sbd_tool {

namespace {

using LAYOUT = JSON_WRITER::LAYOUT;

constexpr std::size_t k_indent = 2;

constexpr char k_footer[] =
    "Prints the frequencies of the two AHB buses and the SDRAM and the data width of each DPRAM "
    "port,\n"
    "with the formula, and the settings that went in. One that can't be told, as a setting has no\n"
    "value or is a divisor of 0, ends in exit code 1.\n"
    "\n"
    "Examples:\n"
    "  sbd clocks board.sbd\n"
    "  sbd clocks --device io_board rack.sbd\n"
    "  sbd clocks --json board.sbd | jq '.clocks[] | {name, frequency}'";

std::string format_width(double bits) {
  return fmt::format("{:g} bits", bits);
}

// Name and value, with everything that is to be said about them on lines of its own.
void add_rows(TEXT_TABLE& table, const DERIVED_VIEW& view, std::string (*format)(double)) {
  std::vector<TEXT_TABLE::CELL> lines;
  if (!view.formula.empty()) lines.push_back({"= " + view.formula});
  if (!view.calculation.empty()) lines.push_back({"= " + view.calculation});
  if (!view.problem.empty()) lines.push_back({view.problem, STYLE::ERROR});
  if (!view.remark.empty()) lines.push_back({view.remark, STYLE::NOTE});
  TEXT_TABLE::CELL name = {view.title, STYLE::NAME};
  TEXT_TABLE::CELL value = {view.value ? format(*view.value) : "unknown", STYLE::DATA};
  for (TEXT_TABLE::CELL& line : lines) {
    table.add_row({std::move(name), std::move(value), std::move(line)});
    name = value = {};
  }
}

void write_view(JSON_WRITER& json, const DERIVED_VIEW& view, const char* value_key) {
  json.begin_object(LAYOUT::ONE_LINE);
  json.key("name");
  json.text(view.name);
  json.key(value_key);
  if (view.value) {
    json.number(fmt::format("{}", *view.value));
  } else {
    json.null();
  }
  const std::pair<const char*, const std::string&> texts[] = {{"formula", view.formula},
                                                              {"calculation", view.calculation},
                                                              {"problem", view.problem},
                                                              {"remark", view.remark}};
  for (const auto& [key, text] : texts) {
    if (text.empty()) continue;
    json.key(key);
    json.text(text);
  }
  json.key("settings");
  json.begin_array(LAYOUT::ONE_LINE);
  for (const PARAMETER_VIEW& setting : view.settings) json.text(setting.name);
  json.end();
  json.end();
}

void write_views(JSON_WRITER& json, const char* key, const std::vector<DERIVED_VIEW>& views,
                 const char* value_key) {
  json.key(key);
  json.begin_array(LAYOUT::LINES);
  for (const DERIVED_VIEW& view : views) write_view(json, view, value_key);
  json.end();
}

class CLOCKS_COMMAND : public COMMAND {
 public:
  COMMAND_SYNTAX declare(const COMMAND_SYNTAX& tool) override {
    const COMMAND_SYNTAX command =
        tool.add_command("clocks", "Print the clocks and port widths of a device");
    add_file(command, m_file);
    add_device(command, m_device);
    command.add_flag("--json", m_is_json, "Print JSON");
    add_color(command, m_colors);
    command.set_footer(k_footer);
    return command;
  }

  void run(SESSION& session) override {
    const auto descriptor = read_device(session, m_file, m_device, m_colors);
    if (descriptor == nullptr) return;
    m_clocks = derive_clocks(descriptor->document);
    m_widths = derive_widths(descriptor->document);
    note_problems(session);
    if (m_is_json) {
      print_json(session.out(), *descriptor);
    } else {
      print(session.out());
    }
  }

 private:
  void note_problems(SESSION& session) const {
    for (const auto* const views : {&m_clocks, &m_widths}) {
      for (const DERIVED_VIEW& view : *views) {
        if (!view.problem.empty()) session.note(EXIT_FAULTS);
      }
    }
  }

  void print(OUTPUT& output) const {
    const PAINTER painter = make_painter(m_colors, output);
    TEXT_TABLE table;
    table.add_column("");
    table.add_column("", TEXT_TABLE::ALIGN::RIGHT);
    table.add_column("");
    for (const DERIVED_VIEW& clock : m_clocks) add_rows(table, clock, format_frequency);
    for (const DERIVED_VIEW& width : m_widths) add_rows(table, width, format_width);
    table.print(output, painter, 0);
    output.write("\n");
    output.write_line("Settings:");
    print_parameters(output, painter, k_indent, collect_settings(m_clocks, m_widths));
  }

  void print_json(OUTPUT& output, const DESCRIPTOR& descriptor) const {
    JSON_WRITER json(output);
    json.begin_object(LAYOUT::LINES);
    write_device_keys(json, descriptor);
    write_views(json, "clocks", m_clocks, "frequency");
    write_views(json, "widths", m_widths, "bits");
    json.key("parameters");
    write_parameters(json, collect_settings(m_clocks, m_widths));
    json.end();
    json.finish();
  }

  std::string m_file;
  std::string m_device;
  bool m_is_json = false;
  COLOR_CHOICE m_colors = COLOR_CHOICE::AUTO;
  std::vector<DERIVED_VIEW> m_clocks;
  std::vector<DERIVED_VIEW> m_widths;
};

}  // namespace

std::unique_ptr<COMMAND> make_clocks_command() {
  return std::make_unique<CLOCKS_COMMAND>();
}

}  // namespace sbd_tool
