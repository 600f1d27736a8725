#include "tools/clock_printer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>

#include "tools/text_table.h"

namespace sbd_tool {

namespace {

using ALIGN = TEXT_TABLE::ALIGN;
using CELL = TEXT_TABLE::CELL;
using LAYOUT = JSON_WRITER::LAYOUT;

constexpr std::size_t k_indent = 2;
constexpr char k_nothing[] = "-";
constexpr char k_change_mark[] = "*";

std::string format_width(double bits) {
  return fmt::format("{:g} bits", bits);
}

// ---- Text --------------------------------------------------------------------------------------

// Name and value, with everything that is to be said about them on lines of its own.
void add_rows(TEXT_TABLE& table, const DERIVED_VIEW& view, std::string (*format)(double)) {
  std::vector<CELL> lines;
  if (!view.formula.empty()) lines.push_back({"= " + view.formula});
  if (!view.calculation.empty()) lines.push_back({"= " + view.calculation});
  if (!view.problem.empty()) lines.push_back({view.problem, STYLE::ERROR});
  if (!view.remark.empty()) lines.push_back({view.remark, STYLE::NOTE});
  CELL name = {view.title, STYLE::NAME};
  CELL value = {view.value ? format(*view.value) : "unknown", STYLE::DATA};
  for (CELL& line : lines) {
    table.add_row({std::move(name), std::move(value), std::move(line)});
    name = value = {};
  }
}

// The lines that the settings stand in, as far as they stand in the file.
std::string list_lines(const std::vector<PARAMETER_VIEW>& settings) {
  std::string lines;
  for (const PARAMETER_VIEW& setting : settings) {
    if (!setting.place) continue;
    lines += fmt::format("{}{}", lines.empty() ? "" : ", ", setting.place->line);
  }
  return lines;
}

// The settings that any choice changes, in their order.
std::vector<std::string> list_changed_settings(const std::vector<CLOCK_CHOICE>& choices) {
  std::vector<std::string> names;
  for (const CLOCK_CHOICE& choice : choices) {
    auto place = names.begin();
    for (const CLOCK_CHOICE::SETTING& setting : choice.settings) {
      const auto found = std::find(names.begin(), names.end(), setting.name);
      if (found == names.end() && !setting.is_changed) continue;
      place = found == names.end() ? names.insert(place, setting.name) : found;
      ++place;
    }
  }
  return names;
}

CELL make_setting_cell(const CLOCK_CHOICE& choice, const std::string& name) {
  for (const CLOCK_CHOICE::SETTING& setting : choice.settings) {
    if (setting.name != name) continue;
    if (!setting.is_changed) return {setting.value, STYLE::PLAIN};
    return {setting.value + k_change_mark, STYLE::NAME};
  }
  return {k_nothing, STYLE::FAINT};
}

std::string own_name(const std::string& name) {
  return name.substr(name.rfind('.') + 1);
}

// An error of less than a thousandth of a millionth is one of arithmetic.
std::string format_ppm(double ppm) {
  const double rounded = std::round(ppm * 1e3) / 1e3;
  return rounded == 0 ? "0" : fmt::format("{:+.6g}", rounded);
}

}  // namespace

void print_derived(OUTPUT& output, const PAINTER& painter, const std::vector<DERIVED_VIEW>& clocks,
                   const std::vector<DERIVED_VIEW>& widths) {
  TEXT_TABLE table;
  table.add_column("");
  table.add_column("", ALIGN::RIGHT);
  table.add_column("");
  for (const DERIVED_VIEW& clock : clocks) add_rows(table, clock, format_frequency);
  for (const DERIVED_VIEW& width : widths) add_rows(table, width, format_width);
  table.print(output, painter, 0);
}

void print_clock_tree(OUTPUT& output, const PAINTER& painter,
                      const std::vector<CLOCK_TREE_NODE>& tree) {
  TEXT_TABLE table;
  table.add_column("CLOCK");
  table.add_column("STEP");
  table.add_column("FREQUENCY", ALIGN::RIGHT);
  table.add_column("LINES");
  table.add_column("");
  for (const CLOCK_TREE_NODE& node : tree) {
    const std::string indent(static_cast<std::size_t>(node.kind) * k_indent, ' ');
    table.add_row({{indent + node.title, STYLE::NAME},
                   {node.step},
                   {node.frequency ? format_frequency(*node.frequency) : "unknown", STYLE::DATA},
                   {list_lines(node.settings)},
                   {node.is_idle ? "not in use" : "", STYLE::NOTE}});
  }
  table.print(output, painter, k_indent);
}

void print_choices(OUTPUT& output, const PAINTER& painter,
                   const std::vector<CLOCK_CHOICE>& choices) {
  TEXT_TABLE table;
  table.add_column("N", ALIGN::RIGHT);
  for (const CLOCK_CHOICE::RESULT& result : choices.front().results) {
    table.add_column(result.clock, ALIGN::RIGHT);
    table.add_column(result.ppm ? "ppm" : "", ALIGN::RIGHT);
  }
  const std::vector<std::string> names = list_changed_settings(choices);
  for (const std::string& name : names) table.add_column(own_name(name), ALIGN::RIGHT);
  for (std::size_t i = 0; i != choices.size(); ++i) {
    std::vector<CELL> cells = {{std::to_string(i + 1)}};
    for (const CLOCK_CHOICE::RESULT& result : choices[i].results) {
      cells.push_back({format_frequency(result.frequency), STYLE::DATA});
      cells.push_back({result.ppm ? format_ppm(*result.ppm) : ""});
    }
    for (const std::string& name : names) cells.push_back(make_setting_cell(choices[i], name));
    table.add_row(std::move(cells));
  }
  table.print(output, painter, 0);
}

// ---- JSON --------------------------------------------------------------------------------------

namespace {

void write_number(JSON_WRITER& json, const char* key, const std::optional<double>& number) {
  json.key(key);
  if (number) {
    json.number(fmt::format("{}", *number));
  } else {
    json.null();
  }
}

void write_setting_names(JSON_WRITER& json, const std::vector<PARAMETER_VIEW>& settings) {
  json.key("settings");
  json.begin_array(LAYOUT::ONE_LINE);
  for (const PARAMETER_VIEW& setting : settings) json.text(setting.name);
  json.end();
}

void write_view(JSON_WRITER& json, const DERIVED_VIEW& view, const char* value_key) {
  json.begin_object(LAYOUT::ONE_LINE);
  json.key("name");
  json.text(view.name);
  write_number(json, value_key, view.value);
  const std::pair<const char*, const std::string&> texts[] = {{"formula", view.formula},
                                                              {"calculation", view.calculation},
                                                              {"problem", view.problem},
                                                              {"remark", view.remark}};
  for (const auto& [key, text] : texts) {
    if (text.empty()) continue;
    json.key(key);
    json.text(text);
  }
  write_setting_names(json, view.settings);
  json.end();
}

const char* name_of(CLOCK_TREE_NODE::KIND kind) {
  switch (kind) {
    case CLOCK_TREE_NODE::KIND::INPUT:
      return "input";
    case CLOCK_TREE_NODE::KIND::PLL:
      return "pll";
    case CLOCK_TREE_NODE::KIND::CLOCK:
      break;
  }
  return "clock";
}

void write_choice(JSON_WRITER& json, const CLOCK_CHOICE& choice) {
  json.begin_object(LAYOUT::ONE_LINE);
  write_number(json, "worst_ppm", choice.worst_ppm);
  json.key("clocks");
  json.begin_array(LAYOUT::ONE_LINE);
  for (const CLOCK_CHOICE::RESULT& result : choice.results) {
    json.begin_object(LAYOUT::ONE_LINE);
    json.key("name");
    json.text(result.clock);
    write_number(json, "frequency", result.frequency);
    if (result.ppm) write_number(json, "ppm", result.ppm);
    json.end();
  }
  json.end();
  json.key("settings");
  json.begin_array(LAYOUT::ONE_LINE);
  for (const CLOCK_CHOICE::SETTING& setting : choice.settings) {
    json.begin_object(LAYOUT::ONE_LINE);
    json.key("name");
    json.text(setting.name);
    json.key("value");
    json.number(setting.value);
    json.key("changed");
    json.boolean(setting.is_changed);
    json.end();
  }
  json.end();
  json.end();
}

}  // namespace

void write_derived(JSON_WRITER& json, const std::vector<DERIVED_VIEW>& views,
                   const char* value_key) {
  json.begin_array(LAYOUT::LINES);
  for (const DERIVED_VIEW& view : views) write_view(json, view, value_key);
  json.end();
}

void write_clock_tree(JSON_WRITER& json, const std::vector<CLOCK_TREE_NODE>& tree) {
  json.begin_array(LAYOUT::LINES);
  for (const CLOCK_TREE_NODE& node : tree) {
    json.begin_object(LAYOUT::ONE_LINE);
    json.key("kind");
    json.text(name_of(node.kind));
    json.key("title");
    json.text(node.title);
    json.key("step");
    json.text(node.step);
    write_number(json, "frequency", node.frequency);
    json.key("in_use");
    json.boolean(!node.is_idle);
    write_setting_names(json, node.settings);
    json.end();
  }
  json.end();
}

void write_choices(JSON_WRITER& json, const std::vector<CLOCK_CHOICE>& choices) {
  json.begin_array(LAYOUT::LINES);
  for (const CLOCK_CHOICE& choice : choices) write_choice(json, choice);
  json.end();
}

}  // namespace sbd_tool
