#include "tools/command_line.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

// Help then shows no type behind the name of a positional argument.
constexpr char k_no_type_name[] = "";

// "sbd block add": the command that a refusal leads to the help of.
std::string get_command_path(const CLI::App& app) {
  std::string path = app.get_name();
  for (const CLI::App* const command : app.get_subcommands()) path += " " + command->get_name();
  return path;
}

std::string get_reason(const CLI::App& app, const CLI::ParseError& error) {
  if (!app.get_subcommands().empty()) return make_visible(error.what());
  const std::vector<std::string> unknown = app.remaining();
  if (unknown.empty()) return "a command is required";
  return fmt::format("no command or option '{}'", make_visible(unknown.front()));
}

// Of "{auto,always,never}", which is what the parser library says of a choice, its members.
std::vector<std::string> split_choices(const std::string& braced) {
  std::vector<std::string> choices;
  std::istringstream list(braced.substr(1, braced.size() - 2));
  for (std::string choice; std::getline(list, choice, ',');) choices.push_back(choice);
  return choices;
}

// Of an option, the names as they are typed; of a positional argument, what help calls it.
std::string get_last_name(const CLI::Option& option) {
  if (!option.get_lnames().empty()) return "--" + option.get_lnames().back();
  if (!option.get_snames().empty()) return "-" + option.get_snames().back();
  return option.get_name(true);
}

ARGUMENT_DESCRIPTION describe_argument(const CLI::Option& option) {
  ARGUMENT_DESCRIPTION argument;
  for (const std::string& name : option.get_snames()) argument.names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) argument.names.push_back("--" + name);
  if (argument.names.empty()) argument.values.push_back(option.get_name(true));
  const std::string type = option.get_type_name();
  const std::size_t value_end = std::min(type.find(":{"), type.size());
  const bool takes_value = option.get_items_expected_max() > 0;
  if (takes_value && value_end != 0) argument.values.push_back(type.substr(0, value_end));
  if (value_end != type.size()) argument.choices = split_choices(type.substr(value_end + 1));
  argument.description = option.get_description();
  for (const CLI::Option* const other : option.get_excludes()) {
    argument.excluded.push_back(get_last_name(*other));
  }
  std::sort(argument.excluded.begin(), argument.excluded.end());
  argument.is_required = option.get_required();
  argument.is_repeated = option.get_expected_max() >= CLI::detail::expected_max_vector_size;
  return argument;
}

COMMAND_DESCRIPTION describe_command(const CLI::App& app, const std::string& path) {
  COMMAND_DESCRIPTION command;
  command.name = app.get_name();
  command.path = path + app.get_name();
  command.description = app.get_description();
  command.footer = app.get_footer();
  for (const CLI::Option* const option : app.get_options()) {
    (option->get_positional() ? command.positionals : command.options)
        .push_back(describe_argument(*option));
  }
  for (const CLI::App* const below : app.get_subcommands({})) {
    command.commands.push_back(describe_command(*below, command.path + ' '));
  }
  return command;
}

}  // namespace

// ---- Options -----------------------------------------------------------------------------------

OPTION_SYNTAX OPTION_SYNTAX::required() const {
  m_option->required();
  return *this;
}

OPTION_SYNTAX OPTION_SYNTAX::excludes(const OPTION_SYNTAX& other) const {
  m_option->excludes(other.m_option);
  return *this;
}

bool OPTION_SYNTAX::is_given() const {
  return m_option != nullptr && !m_option->empty();
}

// ---- Commands ----------------------------------------------------------------------------------

COMMAND_SYNTAX COMMAND_SYNTAX::add_command(const std::string& name,
                                           const std::string& description) const {
  return COMMAND_SYNTAX(m_app->add_subcommand(name, description));
}

void COMMAND_SYNTAX::require_command() const {
  m_app->require_subcommand(1);
}

OPTION_SYNTAX COMMAND_SYNTAX::add_positional(const std::string& name, std::string& value,
                                             const std::string& description) const {
  return OPTION_SYNTAX(m_app->add_option(name, value, description)->type_name(k_no_type_name));
}

OPTION_SYNTAX COMMAND_SYNTAX::add_positional(const std::string& name,
                                             std::vector<std::string>& values,
                                             const std::string& description) const {
  return add_positionals(name, k_no_type_name, values, description);
}

OPTION_SYNTAX COMMAND_SYNTAX::add_positionals(const std::string& name, const std::string& behind,
                                              std::vector<std::string>& values,
                                              const std::string& description) const {
  return OPTION_SYNTAX(m_app->add_option(name, values, description)->type_name(behind));
}

OPTION_SYNTAX COMMAND_SYNTAX::add_option(const std::string& names, const std::string& value_name,
                                         std::string& value, const std::string& description) const {
  return OPTION_SYNTAX(m_app->add_option(names, value, description)->type_name(value_name));
}

OPTION_SYNTAX COMMAND_SYNTAX::add_option(const std::string& names, const std::string& value_name,
                                         std::vector<std::string>& values,
                                         const std::string& description) const {
  CLI::Option* const option = m_app->add_option(names, values, description);
  // Or the option would take the positional arguments behind it, too.
  option->allow_extra_args(false)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  return OPTION_SYNTAX(option->type_name(value_name));
}

OPTION_SYNTAX COMMAND_SYNTAX::add_count(const std::string& names, const std::string& value_name,
                                        const std::string& things, std::size_t& count,
                                        const std::string& description) const {
  // The parser library itself would take -1.
  const auto find_fault = [things](const std::string& argument) -> std::string {
    const bool has_digits_only = argument.find_first_not_of("0123456789") == std::string::npos;
    if (has_digits_only && !argument.empty()) return {};
    return fmt::format("'{}' is not a number of {}", argument, things);
  };
  CLI::Option* const option = m_app->add_option(names, count, description);
  return OPTION_SYNTAX(option->check(find_fault)->type_name(value_name));
}

OPTION_SYNTAX COMMAND_SYNTAX::add_choice(const std::string& names, const std::string& value_name,
                                         const std::vector<std::string>& choices,
                                         const std::function<void(const std::string&)>& take,
                                         const std::string& description) const {
  CLI::Option* const option = m_app->add_option_function<std::string>(names, take, description);
  return OPTION_SYNTAX(option->check(CLI::IsMember(choices))->type_name(value_name));
}

OPTION_SYNTAX COMMAND_SYNTAX::add_flag(const std::string& names, bool& is_set,
                                       const std::string& description) const {
  return OPTION_SYNTAX(m_app->add_flag(names, is_set, description));
}

void COMMAND_SYNTAX::set_footer(const std::string& text) const {
  m_app->footer(text);
}

bool COMMAND_SYNTAX::is_given() const {
  return m_app != nullptr && m_app->parsed();
}

// ---- The command line --------------------------------------------------------------------------

COMMAND_LINE::COMMAND_LINE(const TOOL_TEXTS& texts)
    : m_texts(texts), m_app(std::make_unique<CLI::App>(texts.description, texts.name)) {
  m_app->set_version_flag("--version", texts.version, "Print the version and exit");
  m_app->footer(texts.exit_codes + '\n' + texts.footer);
  tool().require_command();
}

COMMAND_LINE::~COMMAND_LINE() = default;

COMMAND_DESCRIPTION COMMAND_LINE::describe() const {
  COMMAND_DESCRIPTION description = describe_command(*m_app, {});
  description.footer = m_texts.footer;
  return description;
}

COMMAND_LINE::RESULT COMMAND_LINE::parse(int argument_count, const char* const* arguments) {
  try {
    m_app->parse(argument_count, arguments);
    return {RESULT::KIND::COMMAND, {}};
  } catch (const CLI::Success& request) {
    std::ostringstream text;
    m_app->exit(request, text, text);
    return {RESULT::KIND::ANSWER, text.str()};
  } catch (const CLI::ParseError& error) {
    return {RESULT::KIND::REFUSAL,
            fmt::format("{} (see {} --help)", get_reason(*m_app, error), get_command_path(*m_app))};
  }
}

}  // namespace sbd_tool
