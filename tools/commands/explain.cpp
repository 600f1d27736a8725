// sbd explain: tells the rules of a parameter, or what a message means.
#include <fmt/format.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/commands/command.h"
#include "tools/commands/options.h"
#include "tools/json_tree.h"
#include "tools/json_writer.h"
#include "tools/lookup.h"
#include "tools/message_help.h"
#include "tools/near_names.h"
#include "tools/parameter_help.h"
#include "tools/text_table.h"
#include "tools/wrapped_text.h"

namespace sbd_tool {

namespace {

using LAYOUT = JSON_WRITER::LAYOUT;

constexpr std::size_t k_width = 90;
constexpr std::size_t k_indent = 2;
constexpr std::size_t k_example_indent = 4;

constexpr char k_footer[] =
    "TOPIC is the name of a parameter, with or without its block, of a block of parameters, or\n"
    "the key or number of a message.\n"
    "Without it, all messages and parameters are listed.\n"
    "\n"
    "Examples:\n"
    "  sbd explain sdram.data_width\n"
    "  sbd explain pll_ahb_m\n"
    "  sbd explain sdram\n"
    "  sbd explain clocks.pll_ahb_m --chip qmxa10\n"
    "  sbd explain ESBD_SBD_SYNTAX_ERROR\n"
    "  sbd explain 12";

// ---- Parameters --------------------------------------------------------------------------------

// One line of what is said about a parameter.
struct ASPECT {
  const char* label;
  std::string (*tell)(const CHIP_HELP& help);
};

std::string tell_default(const CHIP_HELP& help, const std::string& text) {
  if (!help.has_default) return "none";
  return text.empty() ? "none" : text;
}

// The text without the word that the label says already.
std::string tell_requirement(const CHIP_HELP& help) {
  constexpr std::string_view k_required = "required ";
  if (help.required == "optional") return "no";
  if (help.required == "always required") return "always";
  const bool has_word = help.required.rfind(k_required, 0) == 0;
  return has_word ? help.required.substr(k_required.size()) : help.required;
}

constexpr ASPECT k_aspects[] = {
    {"type", [](const CHIP_HELP& help) { return help.type; }},
    {"block",
     [](const CHIP_HELP& help) {
       return help.block.empty() ? std::string("the stripe's module itself")
                                 : fmt::format("{} in the stripe's module", help.block);
     }},
    {"required", tell_requirement},
    {"valid", [](const CHIP_HELP& help) { return help.valid; }},
    {"default",
     [](const CHIP_HELP& help) { return tell_default(help, help.present_block_default); }},
    {"without block",
     [](const CHIP_HELP& help) {
       return help.block.empty() ? std::string() : tell_default(help, help.absent_block_default);
     }},
};

// What several chips have to say alike.
struct ANSWER {
  std::string text;
  std::string chips;
};

std::vector<ANSWER> collect_answers(const std::vector<CHIP_HELP>& helps, const ASPECT& aspect) {
  std::vector<ANSWER> answers;
  for (const CHIP_HELP& help : helps) {
    const std::string text = aspect.tell(help);
    std::size_t i = 0;
    while (i != answers.size() && answers[i].text != text) ++i;
    if (i == answers.size()) answers.push_back({text, {}});
    answers[i].chips.append(answers[i].chips.empty() ? "" : ", ").append(help.chip);
  }
  return answers;
}

void add_aspect(TEXT_TABLE& table, const std::vector<CHIP_HELP>& helps, const ASPECT& aspect) {
  const std::vector<ANSWER> answers = collect_answers(helps, aspect);
  std::string label = aspect.label;
  for (const ANSWER& answer : answers) {
    if (answer.text.empty()) continue;
    const bool is_for_all = answers.size() == 1;
    table.add_row({{label, STYLE::FAINT},
                   {is_for_all ? answer.text : fmt::format("{}: {}", answer.chips, answer.text)}});
    label.clear();
  }
}

std::string join_chips(const std::vector<CHIP_HELP>& helps) {
  std::string text;
  for (const CHIP_HELP& help : helps) text.append(text.empty() ? "" : ", ").append(help.chip);
  return text;
}

void print_parameter(OUTPUT& output, const PAINTER& painter, const std::vector<CHIP_HELP>& helps) {
  const CHIP_HELP& first = helps.front();
  output.write_line(painter.paint(STYLE::NAME, first.name));
  TEXT_TABLE table;
  table.add_column("");
  table.add_column("");
  table.add_row({{"chips", STYLE::FAINT}, {join_chips(helps)}});
  for (const ASPECT& aspect : k_aspects) add_aspect(table, helps, aspect);
  table.print(output, painter, k_indent);
  std::string remarks;
  if (first.has_default && first.required != "optional") {
    remarks += "Where it is required, the file has to state it, whatever the default. ";
  }
  if (first.is_checked_while_required) {
    remarks += "While it is not required, any value of its type is accepted.";
  }
  output.write(wrap_text(remarks, k_width, k_indent));
}

void write_default(JSON_WRITER& json, const char* key, const CHIP_HELP& help,
                   const std::string& text) {
  json.key(key);
  if (!help.has_default || text.empty()) {
    json.null();
  } else if (help.type == "text") {
    json.text(text);
  } else {
    json.number(text);
  }
}

void write_parameter(JSON_WRITER& json, const std::vector<CHIP_HELP>& helps) {
  const CHIP_HELP& first = helps.front();
  json.key("kind");
  json.text("parameter");
  json.key("name");
  json.text(first.name);
  json.key("block");
  json.text(first.block);
  json.key("chips");
  json.begin_array(LAYOUT::LINES);
  for (const CHIP_HELP& help : helps) {
    json.begin_object(LAYOUT::ONE_LINE);
    json.key("chip");
    json.text(help.chip);
    json.key("type");
    json.text(help.type);
    json.key("required");
    json.text(help.required);
    json.key("valid");
    json.text(help.valid);
    write_default(json, "default", help, help.present_block_default);
    write_default(json, "absent_block_default", help, help.absent_block_default);
    json.end();
  }
  json.end();
}

// ---- Blocks ------------------------------------------------------------------------------------

// "optional" if that is what all chips say, "depends on the chip" if they differ.
std::string tell_for_all(const std::vector<CHIP_HELP>& helps, const ASPECT& aspect) {
  const std::vector<ANSWER> answers = collect_answers(helps, aspect);
  return answers.size() == 1 ? answers.front().text : "depends on the chip";
}

void print_parameters(OUTPUT& output, const PAINTER& painter,
                      const std::vector<std::string>& parameters, const std::string& chip) {
  TEXT_TABLE table;
  for (const char* const heading : {"PARAMETER", "TYPE", "REQUIRED", "VALID"}) {
    table.add_column(heading);
  }
  for (const std::string& parameter : parameters) {
    const std::vector<CHIP_HELP> helps = find_parameter_help(parameter, chip);
    table.add_row({{parameter, STYLE::NAME},
                   {helps.front().type},
                   {tell_for_all(helps, {"", tell_requirement})},
                   {tell_for_all(helps, {"", [](const CHIP_HELP& help) { return help.valid; }})}});
  }
  table.print(output, painter, 0);
}

void write_parameters(JSON_WRITER& json, const std::string& name, bool is_block,
                      const std::vector<std::string>& parameters) {
  json.key("kind");
  json.text(is_block ? "block" : "name");
  json.key("name");
  json.text(name);
  json.key("parameters");
  json.begin_array(LAYOUT::LINES);
  for (const std::string& parameter : parameters) json.text(parameter);
  json.end();
}

// ---- Messages ----------------------------------------------------------------------------------

void print_example(OUTPUT& output, const PAINTER& painter, std::string_view label,
                   std::string_view lines) {
  output.write("\n");
  output.write_line(std::string(k_indent, ' ') + painter.paint(STYLE::FAINT, label));
  while (!lines.empty()) {
    const std::string_view line = lines.substr(0, lines.find('\n'));
    lines.remove_prefix(line.size() + 1);
    output.write_line(std::string(k_example_indent, ' ').append(line));
  }
}

void print_message(OUTPUT& output, const PAINTER& painter, const MESSAGE_HELP& message) {
  const std::string number =
      message.number != 0 ? fmt::format(" (message {})", message.number) : std::string();
  output.write_line(
      fmt::format("{}{}: {}", painter.paint(STYLE::NAME, message.key), number, message.title));
  output.write("\n");
  output.write(wrap_text(message.meaning, k_width, k_indent));
  output.write("\n");
  output.write(wrap_text(message.mend, k_width, k_indent));
  if (message.example == MESSAGE_HELP::EXAMPLE::NONE) return;
  print_example(output, painter, "Faulty:", message.faulty);
  print_example(output, painter, "Mended:", message.mended);
}

void write_message(JSON_WRITER& json, const MESSAGE_HELP& message) {
  json.key("kind");
  json.text("message");
  if (message.number != 0) {
    json.key("number");
    json.count(static_cast<std::size_t>(message.number));
  }
  json.key("key");
  json.text(message.key);
  json.key("title");
  json.text(message.title);
  json.key("meaning");
  json.text(message.meaning);
  json.key("mend");
  json.text(message.mend);
  if (message.example == MESSAGE_HELP::EXAMPLE::NONE) return;
  json.key("faulty");
  json.text(message.faulty);
  json.key("mended");
  json.text(message.mended);
}

// ---- The command -------------------------------------------------------------------------------

class EXPLAIN_COMMAND : public COMMAND {
 public:
  COMMAND_SYNTAX declare(const COMMAND_SYNTAX& tool) override {
    const COMMAND_SYNTAX command =
        tool.add_command("explain", "Tell the rules of a parameter, or what a message means");
    m_topic_option = command.add_positional(
        "TOPIC", m_topic, "A parameter, a block, or the key or number of a message");
    command.add_choice(
        "--chip", "CHIP", list_chips(), [this](const std::string& chip) { m_chip = chip; },
        "The rules of this chip only: qmxa1, qmxa4 or qmxa10");
    command.add_flag("--json", m_is_json, "Print JSON");
    add_color(command, m_colors);
    command.set_footer(k_footer);
    return command;
  }

  void run(SESSION& session) override {
    if (!m_topic_option.is_given()) {
      list_topics(session.out());
      return;
    }
    if (const MESSAGE_HELP* const message = find_message(m_topic)) {
      tell(
          session.out(), [&](JSON_WRITER& json) { write_message(json, *message); },
          [&](const PAINTER& painter) { print_message(session.out(), painter, *message); });
      return;
    }
    std::vector<std::string> members = list_block_parameters(m_topic, m_chip);
    const bool is_block = !members.empty();
    if (!is_block) members = list_parameters_of_name(m_topic, m_chip);
    std::vector<CHIP_HELP> helps = find_parameter_help(m_topic, m_chip);
    if (helps.empty() && members.size() == 1) helps = find_parameter_help(members.front(), m_chip);
    if (!helps.empty()) {
      tell(
          session.out(), [&](JSON_WRITER& json) { write_parameter(json, helps); },
          [&](const PAINTER& painter) { print_parameter(session.out(), painter, helps); });
      return;
    }
    if (members.empty()) {
      complain(session);
      return;
    }
    tell(
        session.out(),
        [&](JSON_WRITER& json) { write_parameters(json, m_topic, is_block, members); },
        [&](const PAINTER& painter) { print_parameters(session.out(), painter, members, m_chip); });
  }

 private:
  static void begin(JSON_WRITER& json) {
    json.begin_object(LAYOUT::LINES);
    json.key("version");
    json.count(k_json_version);
  }

  static void end(JSON_WRITER& json) {
    json.end();
    json.finish();
  }

  // As JSON or as text, whatever was asked for.
  void tell(OUTPUT& output, const std::function<void(JSON_WRITER&)>& write,
            const std::function<void(const PAINTER&)>& print) const {
    if (!m_is_json) {
      print(make_painter(m_colors, output));
      return;
    }
    JSON_WRITER json(output);
    begin(json);
    write(json);
    end(json);
  }

  void complain(SESSION& session) const {
    const bool is_number =
        !m_topic.empty() && m_topic.find_first_not_of("0123456789") == std::string::npos;
    if (is_number) {
      session.complain(fmt::format("no message {}: messages have the numbers 1 to {}",
                                   quote_name(m_topic), greatest_message_number()),
                       EXIT_FAULTS);
      return;
    }
    if (!m_chip.empty() && !find_parameter_help(m_topic, {}).empty()) {
      session.complain(fmt::format("{} has no parameter {}", m_chip, quote_name(m_topic)),
                       EXIT_FAULTS);
      return;
    }
    std::vector<std::string> topics = list_all_parameters({});
    for (const MESSAGE_HELP& message : list_messages()) topics.emplace_back(message.key);
    const std::string suggestion = ask_for(find_near_texts(topics, m_topic));
    session.complain(fmt::format("no parameter or message {}{}{}", quote_name(m_topic),
                                 suggestion.empty() ? "" : "; ", suggestion),
                     EXIT_FAULTS);
  }

  void list_topics(OUTPUT& output) const {
    if (m_is_json) {
      write_topics(output);
      return;
    }
    TEXT_TABLE table;
    table.add_column("", TEXT_TABLE::ALIGN::RIGHT);
    table.add_column("");
    table.add_column("");
    for (const MESSAGE_HELP& message : list_messages()) {
      const std::string number = message.number != 0 ? std::to_string(message.number) : "";
      table.add_row({{number}, {message.key, STYLE::NAME}, {message.title}});
    }
    const PAINTER painter = make_painter(m_colors, output);
    output.write_line("Messages:");
    table.print(output, painter, k_indent);
    output.write("\n");
    output.write_line("Parameters:");
    for (const std::string& name : list_all_parameters(m_chip)) {
      output.write_line(std::string(k_indent, ' ') + painter.paint(STYLE::NAME, name));
    }
  }

  void write_topics(OUTPUT& output) const {
    JSON_WRITER json(output);
    begin(json);
    json.key("messages");
    json.begin_array(LAYOUT::LINES);
    for (const MESSAGE_HELP& message : list_messages()) json.text(message.key);
    json.end();
    json.key("parameters");
    json.begin_array(LAYOUT::LINES);
    for (const std::string& name : list_all_parameters(m_chip)) json.text(name);
    json.end();
    end(json);
  }

  std::string m_topic;
  OPTION_SYNTAX m_topic_option;
  std::string m_chip;
  bool m_is_json = false;
  COLOR_CHOICE m_colors = COLOR_CHOICE::AUTO;
};

}  // namespace

std::unique_ptr<COMMAND> make_explain_command() {
  return std::make_unique<EXPLAIN_COMMAND>();
}

}  // namespace sbd_tool
