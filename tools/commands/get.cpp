// sbd get: prints the value of one parameter.
#include <fmt/format.h>

#include <array>
#include <string>
#include <vector>

#include "tools/commands/command.h"
#include "tools/commands/options.h"
#include "tools/descriptor.h"
#include "tools/json_tree.h"
#include "tools/lookup.h"
#include "tools/notation.h"
#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

using STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;

constexpr char k_examples[] =
    "Prints numbers scaled by their unit, texts without quotes, the full names that references\n"
    "stand for, and lists in the notation of the file.\n"
    "\n"
    "Examples:\n"
    "  sbd get board.sbd stripe.pll1.clock\n"
    "  sbd get --as number board.sbd stripe.sram.size\n"
    "  sbd get --as raw board.sbd stripe.sram.size\n"
    "  sbd get --json board.sbd stripe.names";

// What a parameter holds.
enum class KIND { NUMBER, STRING, BOOL, LIST, REFS };

KIND kind_of_parameter(const STATEMENT& statement) {
  if (statement.type == STATEMENT::ST_REFERENCE) return KIND::REFS;
  switch (statement.value->type) {
    case VALUE::VT_BOOL:
      return KIND::BOOL;
    case VALUE::VT_STRING:
      return KIND::STRING;
    case VALUE::VT_LIST:
      return KIND::LIST;
    default:
      return KIND::NUMBER;
  }
}

std::string_view description_of(KIND kind) {
  switch (kind) {
    case KIND::NUMBER:
      return "a number";
    case KIND::STRING:
      return "a string";
    case KIND::BOOL:
      return "a Boolean";
    case KIND::LIST:
      return "a list";
    case KIND::REFS:
      break;
  }
  return "a reference";
}

// What --as can ask for besides the notation of the file.
struct FORM {
  const char* name;
  KIND kind;
};
constexpr std::array<FORM, 4> k_forms = {{{"number", KIND::NUMBER},
                                          {"string", KIND::STRING},
                                          {"bool", KIND::BOOL},
                                          {"refs", KIND::REFS}}};
constexpr char k_raw[] = "raw";

std::vector<std::string> target_names(const SBD_FILE_PARSER& document, const STATEMENT& statement) {
  std::vector<std::string> names;
  for (const auto* reference = statement.reference; reference != nullptr;
       reference = reference->next) {
    names.push_back(full_name(document, *reference->target));
  }
  return names;
}

// The value as it stands in the file: an expression, or references with their brackets.
std::string_view get_raw(const SBD_FILE_PARSER& document, const NODE& node) {
  SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
  const std::string_view source = document.get_source();
  if (node.statement->type == STATEMENT::ST_ASSIGNMENT) {
    if (!document.get_range(node.statement->value, range)) return {};
    return source.substr(range.offset, range.length);
  }
  if (!document.get_range(&node, range)) return {};
  const std::string_view statement = source.substr(range.offset, range.length);
  const std::size_t begin = statement.find('<');
  return statement.substr(begin, statement.rfind('>') + 1 - begin);
}

std::string get_text(const SBD_FILE_PARSER& document, const STATEMENT& statement) {
  switch (kind_of_parameter(statement)) {
    case KIND::NUMBER:
      return get_scaled_number(*statement.value);
    case KIND::STRING:
      return std::string(get_unquoted(*statement.value));
    case KIND::BOOL:
      return statement.value->flag != 0 ? "true" : "false";
    case KIND::LIST:
      return get_notation(document, *statement.value);
    case KIND::REFS:
      break;
  }
  std::string text;
  for (const std::string& name : target_names(document, statement)) {
    text.append(text.empty() ? "" : "\n").append(name);
  }
  return text;
}

void write_json(JSON_WRITER& json, const SBD_FILE_PARSER& document, const STATEMENT& statement) {
  if (statement.type == STATEMENT::ST_ASSIGNMENT) {
    write_plain_value(json, *statement.value);
    return;
  }
  json.begin_array(JSON_WRITER::LAYOUT::ONE_LINE);
  for (const std::string& name : target_names(document, statement)) json.text(name);
  json.end();
}

class GET_COMMAND : public COMMAND {
 public:
  COMMAND_SYNTAX declare(const COMMAND_SYNTAX& tool) override {
    const COMMAND_SYNTAX command = tool.add_command("get", "Print the value of a parameter");
    add_file(command, m_file);
    command.add_positional("NAME", m_name, "Full name of the parameter").required();
    m_as_option = command.add_choice(
        "--as", "KIND", {"number", "string", "bool", "refs", k_raw},
        [this](const std::string& kind) { m_as = kind; },
        "Fail for a value of another kind; raw: as it stands in the file");
    command.add_flag("--json", m_is_json, "Print JSON");
    add_color(command, m_colors);
    command.set_footer(k_examples);
    return command;
  }

  void run(SESSION& session) override {
    const auto descriptor = read_faultless(session, m_file, m_colors);
    if (descriptor == nullptr) return;
    const NODE* const node = find_wanted(session, *descriptor, m_name, WANTED::PARAMETER);
    if (node == nullptr || !has_asked_kind(session, *descriptor, *node)) return;
    if (m_as == k_raw) {
      print_raw(session.out(), get_raw(descriptor->document, *node));
    } else {
      print_value(session.out(), descriptor->document, *node->statement);
    }
  }

 private:
  bool has_asked_kind(SESSION& session, const DESCRIPTOR& descriptor, const NODE& node) {
    if (!m_as_option.is_given() || m_as == k_raw) return true;
    const KIND kind = kind_of_parameter(*node.statement);
    for (const FORM& form : k_forms) {
      if (m_as != form.name) continue;
      if (kind == form.kind) return true;
      session.complain(fmt::format("'{}' in {} is {}, not {}", full_name(descriptor.document, node),
                                   make_visible(descriptor.name), description_of(kind),
                                   description_of(form.kind)),
                       EXIT_FAULTS);
    }
    return false;
  }

  void print_raw(OUTPUT& output, std::string_view raw) {
    if (!m_is_json) {
      output.write_line(raw);
      return;
    }
    JSON_WRITER json(output);
    json.text(raw);
    json.finish();
  }

  void print_value(OUTPUT& output, const SBD_FILE_PARSER& document, const STATEMENT& statement) {
    if (!m_is_json) {
      output.write_line(get_text(document, statement));
      return;
    }
    JSON_WRITER json(output);
    write_json(json, document, statement);
    json.finish();
  }

  std::string m_file;
  std::string m_name;
  std::string m_as;
  OPTION_SYNTAX m_as_option;
  bool m_is_json = false;
  COLOR_CHOICE m_colors = COLOR_CHOICE::AUTO;
};

}  // namespace

std::unique_ptr<COMMAND> make_get_command() {
  return std::make_unique<GET_COMMAND>();
}

}  // namespace sbd_tool
