// sbd diff: tells what two descriptors say differently.
#include <fmt/format.h>

#include <string>
#include <string_view>

#include "tools/commands/command.h"
#include "tools/commands/options.h"
#include "tools/descriptor_diff.h"
#include "tools/input.h"
#include "tools/json_tree.h"
#include "tools/text_table.h"
#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

using KIND = DIFFERENCE::KIND;
using LAYOUT = JSON_WRITER::LAYOUT;
using WHAT = DIFFERENCE::WHAT;

constexpr std::size_t k_widest_text = 60;

constexpr char k_footer[] =
    "Tells what two descriptors say differently, and what that changes for their devices. Numbers\n"
    "in other bases and units, order and comments make no difference, nor do statements of what\n"
    "counts anyway; with --strict, they do. Exit code 1 when there is a difference, 2 when a file\n"
    "can't be read or its format is faulty.\n"
    "\n"
    "Examples:\n"
    "  sbd diff old.sbd new.sbd\n"
    "  sbd diff --strict --json old.sbd new.sbd\n"
    "  git show HEAD:board.sbd | sbd diff - board.sbd";

char mark_of(KIND kind) {
  switch (kind) {
    case KIND::ADDED:
      return '+';
    case KIND::REMOVED:
      return '-';
    case KIND::CHANGED:
      return '~';
    case KIND::RENAMED:
      break;
  }
  return '=';
}

STYLE style_of(KIND kind) {
  switch (kind) {
    case KIND::ADDED:
      return STYLE::DATA;
    case KIND::REMOVED:
      return STYLE::ERROR;
    case KIND::CHANGED:
    case KIND::RENAMED:
      break;
  }
  return STYLE::NOTE;
}

std::string cut(const std::string& text) {
  return make_visible(text, k_widest_text);
}

std::string line_of(const std::optional<SOURCE_RANGE>& place) {
  return place ? std::to_string(place->line) : std::string();
}

// "8 -> 4"; one side only where the other one has nothing.
std::string describe_change(const DIFFERENCE& difference) {
  if (difference.kind == KIND::RENAMED) return "was " + cut(difference.old_text);
  if (difference.kind == KIND::ADDED && difference.old_text.empty()) {
    return cut(difference.new_text);
  }
  if (difference.kind == KIND::REMOVED && difference.new_text.empty()) {
    return cut(difference.old_text);
  }
  const std::string change =
      fmt::format("{} -> {}", cut(difference.old_text), cut(difference.new_text));
  const bool is_plain = difference.what == WHAT::VALUE || difference.what == WHAT::PARAMETER;
  return is_plain ? change : fmt::format("{}: {}", name_of(difference.what), change);
}

void write_texts(JSON_WRITER& json, const std::string& old_text, const std::string& new_text) {
  json.key("old");
  json.text(old_text);
  json.key("new");
  json.text(new_text);
}

void write_position(JSON_WRITER& json, const char* key, const std::optional<SOURCE_RANGE>& place) {
  if (!place) return;
  json.key(key);
  write_place(json, *place);
}

void write_difference(JSON_WRITER& json, const DIFFERENCE& difference) {
  json.begin_object(LAYOUT::ONE_LINE);
  json.key("kind");
  json.text(name_of(difference.kind));
  json.key("what");
  json.text(name_of(difference.what));
  json.key("name");
  json.text(difference.name);
  write_texts(json, difference.old_text, difference.new_text);
  write_position(json, "old_position", difference.old_place);
  write_position(json, "new_position", difference.new_place);
  json.end();
}

void write_device(JSON_WRITER& json, const DEVICE_DIFFERENCE& device) {
  json.begin_object(LAYOUT::LINES);
  json.key("name");
  json.text(device.name);
  json.key("effects");
  json.begin_array(LAYOUT::LINES);
  for (const EFFECT& effect : device.effects) {
    json.begin_object(LAYOUT::ONE_LINE);
    json.key("kind");
    json.text(effect.is_parameter ? "parameter" : "derived");
    json.key("name");
    json.text(effect.name);
    write_texts(json, effect.old_text, effect.new_text);
    json.end();
  }
  json.end();
  json.end();
}

class DIFF_COMMAND : public COMMAND {
 public:
  COMMAND_SYNTAX declare(const COMMAND_SYNTAX& tool) override {
    const COMMAND_SYNTAX command =
        tool.add_command("diff", "Tell what two descriptors say differently");
    command.add_positional("OLD", m_old, "A descriptor file; \"-\" is standard input").required();
    command.add_positional("NEW", m_new, "Another one").required();
    command.add_flag("--strict", m_is_strict,
                     "Tell also of order, comments, spelling, and what counts anyway");
    command.add_flag("-q,--quiet", m_is_quiet, "Print nothing: the exit code says it all");
    command.add_flag("--json", m_is_json, "Print JSON");
    add_color(command, m_colors);
    command.set_footer(k_footer);
    return command;
  }

  void run(SESSION& session) override {
    if (m_old == k_standard_input && m_new == k_standard_input) {
      session.complain("only one of the files can be standard input", EXIT_UNUSABLE);
      return;
    }
    const auto old_descriptor = read_faultless(session, m_old, m_colors);
    const auto new_descriptor = read_faultless(session, m_new, m_colors);
    if (old_descriptor == nullptr || new_descriptor == nullptr) {
      session.note(EXIT_UNUSABLE);
      return;
    }
    const DESCRIPTOR_DIFF diff = compare_descriptors(*old_descriptor, *new_descriptor, m_is_strict);
    if (!diff.empty()) session.note(EXIT_FAULTS);
    if (m_is_quiet) return;
    if (m_is_json) {
      print_json(session.out(), diff, old_descriptor->name, new_descriptor->name);
    } else if (!diff.empty()) {
      print(session.out(), diff, old_descriptor->name, new_descriptor->name);
    }
  }

 private:
  void print(OUTPUT& output, const DESCRIPTOR_DIFF& diff, const std::string& old_name,
             const std::string& new_name) const {
    const PAINTER painter = make_painter(m_colors, output);
    output.write_line(painter.paint(STYLE::FAINT, "--- " + make_visible(old_name)));
    output.write_line(painter.paint(STYLE::FAINT, "+++ " + make_visible(new_name)));
    print_differences(output, painter, diff);
    for (const DEVICE_DIFFERENCE& device : diff.devices) print_effects(output, painter, device);
  }

  static void print_differences(OUTPUT& output, const PAINTER& painter,
                                const DESCRIPTOR_DIFF& diff) {
    TEXT_TABLE table;
    table.add_column("");
    table.add_column("");
    table.add_column("OLD", TEXT_TABLE::ALIGN::RIGHT);
    table.add_column("NEW", TEXT_TABLE::ALIGN::RIGHT);
    table.add_column("");
    for (const DIFFERENCE& difference : diff.differences) {
      const std::string name = difference.name.empty() ? "(top level)" : cut(difference.name);
      table.add_row({{std::string(1, mark_of(difference.kind)), style_of(difference.kind)},
                     {name, STYLE::NAME},
                     {line_of(difference.old_place), STYLE::FAINT},
                     {line_of(difference.new_place), STYLE::FAINT},
                     {describe_change(difference)}});
    }
    table.print(output, painter, 0);
  }

  static void print_effects(OUTPUT& output, const PAINTER& painter,
                            const DEVICE_DIFFERENCE& device) {
    TEXT_TABLE table;
    table.add_column("");
    table.add_column("");
    for (const EFFECT& effect : device.effects) {
      table.add_row({{effect.name, STYLE::NAME},
                     {fmt::format("{} -> {}", cut(effect.old_text), cut(effect.new_text))}});
    }
    output.write_line(fmt::format("Device {}:", cut(device.name)));
    table.print(output, painter, 2);
  }

  void print_json(OUTPUT& output, const DESCRIPTOR_DIFF& diff, const std::string& old_name,
                  const std::string& new_name) const {
    JSON_WRITER json(output);
    json.begin_object(LAYOUT::LINES);
    json.key("version");
    json.count(k_json_version);
    write_texts(json, old_name, new_name);
    json.key("strict");
    json.boolean(m_is_strict);
    json.key("different");
    json.boolean(!diff.empty());
    json.key("differences");
    json.begin_array(LAYOUT::LINES);
    for (const DIFFERENCE& difference : diff.differences) write_difference(json, difference);
    json.end();
    json.key("devices");
    json.begin_array(LAYOUT::LINES);
    for (const DEVICE_DIFFERENCE& device : diff.devices) write_device(json, device);
    json.end();
    json.end();
    json.finish();
  }

  std::string m_old;
  std::string m_new;
  bool m_is_strict = false;
  bool m_is_quiet = false;
  bool m_is_json = false;
  COLOR_CHOICE m_colors = COLOR_CHOICE::AUTO;
};

}  // namespace

std::unique_ptr<COMMAND> make_diff_command() {
  return std::make_unique<DIFF_COMMAND>();
}

}  // namespace sbd_tool
