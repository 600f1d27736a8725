#include "tools/parameter_printer.h"

#include <fmt/format.h>

#include <string>
#include <string_view>

#include "tools/json_tree.h"
#include "tools/text_table.h"
#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

using FAULT = PARAMETER_VIEW::FAULT;
using LAYOUT = JSON_WRITER::LAYOUT;

constexpr char k_nothing[] = "-";
constexpr std::size_t k_widest_text = 60;

std::string line_of(const PARAMETER_VIEW& parameter) {
  return parameter.place ? std::to_string(parameter.place->line) : std::string();
}

// What the file says, where that is not just the value again.
std::string other_spelling(const PARAMETER_VIEW& parameter) {
  if (parameter.written == parameter.text) return {};
  return make_visible(parameter.written, k_widest_text);
}

std::vector<TEXT_TABLE::CELL> make_row(const PARAMETER_VIEW& parameter) {
  const bool is_faulty = parameter.fault != FAULT::NONE;
  const bool is_stated = parameter.origin == PO_STATEMENT;
  const std::string value = make_visible(parameter.text, k_widest_text);
  return {{parameter.name, is_stated ? STYLE::NAME : STYLE::PLAIN},
          {value.empty() ? k_nothing : value, is_stated ? STYLE::DATA : STYLE::PLAIN},
          {std::string(name_of(parameter.origin)), is_stated ? STYLE::PLAIN : STYLE::FAINT},
          {line_of(parameter)},
          {other_spelling(parameter)},
          {std::string(name_of(parameter.fault)), is_faulty ? STYLE::ERROR : STYLE::PLAIN}};
}

std::string quote_for_csv(std::string_view text) {
  if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
  std::string quoted = "\"";
  for (const char c : text) quoted.append(c == '"' ? 2 : 1, c);
  return quoted + '"';
}

void write_value(JSON_WRITER& json, const PARAMETER_VIEW& parameter) {
  if (parameter.text.empty()) {
    json.null();
    return;
  }
  switch (parameter.value.m_value_type) {
    case PARAMETER_VALUE::BOOL_VALUE:
      json.boolean(parameter.value.m_bool_value);
      break;
    case PARAMETER_VALUE::DWORD_VALUE:
    case PARAMETER_VALUE::DOUBLE_VALUE:
      json.number(parameter.text);
      break;
    case PARAMETER_VALUE::STRING_VALUE:
      json.text(parameter.text);
      break;
  }
}

void write_parameter(JSON_WRITER& json, const PARAMETER_VIEW& parameter) {
  json.begin_object(LAYOUT::ONE_LINE);
  json.key("name");
  json.text(parameter.name);
  json.key("type");
  json.text(name_of(parameter.value.m_value_type));
  json.key("value");
  write_value(json, parameter);
  json.key("origin");
  json.text(name_of(parameter.origin));
  json.key("required");
  json.boolean(parameter.is_required);
  if (parameter.place) {
    json.key("written");
    json.text(parameter.written);
    json.key("position");
    write_place(json, *parameter.place);
  }
  if (parameter.fault != FAULT::NONE) {
    json.key("fault");
    json.text(name_of(parameter.fault));
  }
  json.end();
}

}  // namespace

void print_parameters(OUTPUT& output, const PAINTER& painter, std::size_t indent,
                      const std::vector<PARAMETER_VIEW>& parameters) {
  TEXT_TABLE table;
  table.add_column("PARAMETER");
  table.add_column("VALUE");
  table.add_column("ORIGIN");
  table.add_column("LINE", TEXT_TABLE::ALIGN::RIGHT);
  table.add_column("WRITTEN");
  table.add_column("FAULT");
  for (const PARAMETER_VIEW& parameter : parameters) table.add_row(make_row(parameter));
  table.print(output, painter, indent);
}

void print_parameters_as_csv(OUTPUT& output, const std::vector<PARAMETER_VIEW>& parameters) {
  output.write_line("parameter,type,value,origin,required,line,written,fault");
  for (const PARAMETER_VIEW& parameter : parameters) {
    output.write_line(fmt::format("{},{},{},{},{},{},{},{}", quote_for_csv(parameter.name),
                                  name_of(parameter.value.m_value_type),
                                  quote_for_csv(parameter.text), name_of(parameter.origin),
                                  parameter.is_required, line_of(parameter),
                                  quote_for_csv(parameter.written), name_of(parameter.fault)));
  }
}

void write_parameters(JSON_WRITER& json, const std::vector<PARAMETER_VIEW>& parameters) {
  json.begin_array(LAYOUT::LINES);
  for (const PARAMETER_VIEW& parameter : parameters) write_parameter(json, parameter);
  json.end();
}

void write_device_keys(JSON_WRITER& json, const DESCRIPTOR& descriptor) {
  SBD_STRING chip;
  descriptor.document.get_chip_type_name(chip);
  json.key("version");
  json.count(k_json_version);
  json.key("file");
  json.text(descriptor.name);
  json.key("device");
  json.text(descriptor.document.get_device_name());
  json.key("chip");
  json.text(chip);
}

}  // namespace sbd_tool
