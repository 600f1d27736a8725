// sbd map: prints the memory map of a device.
#include <fmt/format.h>

#include <string>
#include <vector>

#include "tools/commands/command.h"
#include "tools/commands/device_command.h"
#include "tools/commands/options.h"
#include "tools/json_tree.h"
#include "tools/memory_map.h"
#include "tools/memory_map_picture.h"
#include "tools/parameter_printer.h"
#include "tools/text_table.h"
#include "tools/wrapped_text.h"

namespace sbd_tool {

namespace {

using CELL = TEXT_TABLE::CELL;
using LAYOUT = JSON_WRITER::LAYOUT;

constexpr std::size_t k_indent = 2;
constexpr std::size_t k_line_width = 90;
constexpr char k_nothing[] = "-";

constexpr char k_footer[] =
    "Prints the windows of the device by address, with the holes between them. Windows that\n"
    "overlap and those that run past 4 GiB are marked, but are no faults.\n"
    "\n"
    "Examples:\n"
    "  sbd map board.sbd\n"
    "  sbd map --svg board.sbd > map.svg\n"
    "  sbd map --json board.sbd | jq '.windows[] | select(.overlaps != [])'";

std::string yes_or_no(const PARAMETER_VIEW& flag) {
  if (flag.text.empty()) return k_nothing;
  return flag.value.m_bool_value ? "yes" : "no";
}

std::string join(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) joined.append(joined.empty() ? "" : ", ").append(text);
  return joined;
}

// The line where the window begins to be described.
std::string line_of(const MEMORY_WINDOW& window) {
  return window.base.place ? std::to_string(window.base.place->line) : std::string();
}

CELL make_remark(const MEMORY_WINDOW& window) {
  std::vector<std::string> remarks;
  if (!window.overlaps.empty()) remarks.push_back("overlaps " + join(window.overlaps));
  remarks.insert(remarks.end(), window.remarks.begin(), window.remarks.end());
  return {join(remarks), window.is_faulty() ? STYLE::ERROR : STYLE::NOTE};
}

void add_window(TEXT_TABLE& table, const MEMORY_WINDOW& window) {
  table.add_row({{format_address(window.first), STYLE::DATA},
                 {format_address(window.end - 1), STYLE::DATA},
                 {format_size(window.end - window.first)},
                 {window.name, STYLE::NAME},
                 {yes_or_no(window.enabled)},
                 {yes_or_no(window.prefetch)},
                 {line_of(window)},
                 make_remark(window)});
}

void add_hole(TEXT_TABLE& table, const MEMORY_HOLE& hole) {
  table.add_row({{format_address(hole.first), STYLE::FAINT},
                 {format_address(hole.end - 1), STYLE::FAINT},
                 {format_size(hole.end - hole.first), STYLE::FAINT},
                 {"(hole)", STYLE::FAINT},
                 {},
                 {},
                 {},
                 {}});
}

std::string value_or_dash(const PARAMETER_VIEW& parameter, std::string (*format)(std::uint64_t)) {
  return parameter.text.empty() ? k_nothing : format(parameter.value.m_dword_value);
}

void add_other(TEXT_TABLE& table, const MEMORY_WINDOW& window) {
  table.add_row({{value_or_dash(window.base, format_address)},
                 {},
                 {value_or_dash(window.size, format_size)},
                 {window.name, STYLE::NAME},
                 {yes_or_no(window.enabled)},
                 {yes_or_no(window.prefetch)},
                 {line_of(window)},
                 make_remark(window)});
}

TEXT_TABLE make_table() {
  TEXT_TABLE table;
  table.add_column("BASE");
  table.add_column("END");
  table.add_column("SIZE", TEXT_TABLE::ALIGN::RIGHT);
  table.add_column("WINDOW");
  table.add_column("ENABLED");
  table.add_column("PREFETCH");
  table.add_column("LINE", TEXT_TABLE::ALIGN::RIGHT);
  table.add_column("");
  return table;
}

void write_number(JSON_WRITER& json, const char* key, const PARAMETER_VIEW& parameter) {
  json.key(key);
  if (parameter.text.empty()) {
    json.null();
  } else {
    json.count(parameter.value.m_dword_value);
  }
}

void write_flag(JSON_WRITER& json, const char* key, const PARAMETER_VIEW& parameter) {
  json.key(key);
  json.boolean(!parameter.text.empty() && parameter.value.m_bool_value);
}

void write_texts(JSON_WRITER& json, const char* key, const std::vector<std::string>& texts) {
  json.key(key);
  json.begin_array(LAYOUT::ONE_LINE);
  for (const std::string& text : texts) json.text(text);
  json.end();
}

void write_window(JSON_WRITER& json, const MEMORY_WINDOW& window) {
  json.begin_object(LAYOUT::ONE_LINE);
  json.key("name");
  json.text(window.name);
  write_number(json, "base", window.base);
  write_number(json, "size", window.size);
  json.key("end");
  if (window.is_placed) {
    json.count(window.end - 1);
  } else {
    json.null();
  }
  write_flag(json, "enabled", window.enabled);
  write_flag(json, "prefetch", window.prefetch);
  json.key("placed");
  json.boolean(window.is_placed);
  write_texts(json, "overlaps", window.overlaps);
  write_texts(json, "remarks", window.remarks);
  if (window.base.place) {
    json.key("position");
    write_place(json, *window.base.place);
  }
  json.end();
}

class MAP_COMMAND : public COMMAND {
 public:
  COMMAND_SYNTAX declare(const COMMAND_SYNTAX& tool) override {
    const COMMAND_SYNTAX command = tool.add_command("map", "Print the memory map of a device");
    add_file(command, m_file);
    add_device(command, m_device);
    const OPTION_SYNTAX json = command.add_flag("--json", m_is_json, "Print JSON");
    command.add_flag("--svg", m_is_svg, "Print a drawing, in SVG").excludes(json);
    add_color(command, m_colors);
    command.set_footer(k_footer);
    return command;
  }

  void run(SESSION& session) override {
    const auto descriptor = read_device(session, m_file, m_device, m_colors);
    if (descriptor == nullptr) return;
    const MEMORY_MAP map = make_memory_map(descriptor->document);
    if (m_is_json) {
      print_json(session.out(), *descriptor, map);
    } else if (m_is_svg) {
      const std::string title = fmt::format("Memory map of {}", device_title(*descriptor));
      session.out().write(draw_memory_map(map, title).file());
    } else {
      print(session.out(), map);
    }
  }

 private:
  void print(OUTPUT& output, const MEMORY_MAP& map) const {
    const PAINTER painter = make_painter(m_colors, output);
    TEXT_TABLE table = make_table();
    auto hole = map.holes.begin();
    for (const MEMORY_WINDOW& window : map.placed) {
      for (; hole != map.holes.end() && hole->first < window.first; ++hole) add_hole(table, *hole);
      add_window(table, window);
    }
    for (; hole != map.holes.end(); ++hole) add_hole(table, *hole);
    table.print(output, painter, 0);
    print_others(output, painter, map);
  }

  static void print_others(OUTPUT& output, const PAINTER& painter, const MEMORY_MAP& map) {
    if (map.others.empty()) return;
    TEXT_TABLE table = make_table();
    std::vector<std::string> unstated;
    for (const MEMORY_WINDOW& window : map.others) {
      const bool is_stated = !window.base.text.empty() || !window.size.text.empty();
      if (is_stated || window.is_in_use) {
        add_other(table, window);
      } else {
        unstated.push_back(window.name);
      }
    }
    output.write_line("\nNot in the map:");
    table.print(output, painter, k_indent);
    if (unstated.empty()) return;
    output.write(wrap_text("not in use: " + join(unstated), k_line_width, k_indent));
  }

  static void print_json(OUTPUT& output, const DESCRIPTOR& descriptor, const MEMORY_MAP& map) {
    JSON_WRITER json(output);
    json.begin_object(LAYOUT::LINES);
    write_device_keys(json, descriptor);
    json.key("windows");
    json.begin_array(LAYOUT::LINES);
    for (const MEMORY_WINDOW& window : map.placed) write_window(json, window);
    for (const MEMORY_WINDOW& window : map.others) write_window(json, window);
    json.end();
    json.key("holes");
    json.begin_array(LAYOUT::LINES);
    for (const MEMORY_HOLE& hole : map.holes) {
      json.begin_object(LAYOUT::ONE_LINE);
      json.key("base");
      json.count(hole.first);
      json.key("size");
      json.count(hole.end - hole.first);
      json.key("end");
      json.count(hole.end - 1);
      json.end();
    }
    json.end();
    json.end();
    json.finish();
  }

  std::string m_file;
  std::string m_device;
  bool m_is_json = false;
  bool m_is_svg = false;
  COLOR_CHOICE m_colors = COLOR_CHOICE::AUTO;
};

}  // namespace

std::unique_ptr<COMMAND> make_map_command() {
  return std::make_unique<MAP_COMMAND>();
}

}  // namespace sbd_tool
