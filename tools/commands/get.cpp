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
#include "tools/parameter_kind.h"
#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

constexpr char k_examples[] =
    "Prints numbers scaled by their unit, texts without quotes, the full names that references\n"
    "stand for, and lists in the notation of the file.\n"
    "\n"
    "Examples:\n"
    "  sbd get board.sbd board.stripe.sdram.data_width\n"
    "  sbd get --as number board.sbd board.stripe.clocks.input_clock_frequency\n"
    "  sbd get --as raw board.sbd board.stripe.clocks.input_clock_frequency\n"
    "  sbd get --json board.sbd board.stripe.type";

// What --as can ask for besides the notation of the file.
struct FORM {
  const char* name;
  PARAMETER_KIND kind;
};
constexpr std::array<FORM, 4> k_forms = {{{"number", PARAMETER_KIND::NUMBER},
                                          {"string", PARAMETER_KIND::STRING},
                                          {"bool", PARAMETER_KIND::BOOL},
                                          {"refs", PARAMETER_KIND::REFS}}};
constexpr char k_raw[] = "raw";

std::vector<std::string> target_names(const SBD_FILE_PARSER& document, const STATEMENT& statement) {
  std::vector<std::string> names;
  for (const auto* reference = statement.reference; reference != nullptr;
       reference = reference->next) {
    names.push_back(full_name(document, *reference->target));
  }
  return names;
}

std::string get_text(const SBD_FILE_PARSER& document, const STATEMENT& statement) {
  switch (kind_of_parameter(statement)) {
    case PARAMETER_KIND::NUMBER:
      return get_scaled_number(*statement.value);
    case PARAMETER_KIND::STRING:
      return std::string(get_unquoted(*statement.value));
    case PARAMETER_KIND::BOOL:
      return statement.value->flag != 0 ? "true" : "false";
    case PARAMETER_KIND::LIST:
      return get_notation(document, *statement.value);
    case PARAMETER_KIND::REFS:
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
      print_raw(session.out(), get_written(descriptor->document, *node));
    } else {
      print_value(session.out(), descriptor->document, *node->statement);
    }
  }

 private:
  bool has_asked_kind(SESSION& session, const DESCRIPTOR& descriptor, const NODE& node) {
    if (!m_as_option.is_given() || m_as == k_raw) return true;
    const PARAMETER_KIND kind = kind_of_parameter(*node.statement);
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
