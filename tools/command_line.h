// What may stand on the command line, and what does.
//
// A parser library does the work, but its headers take longer to compile than all of a command;
// only command_line.cpp sees them. COMMAND_SYNTAX and OPTION_SYNTAX are handles: small, copied
// freely, valid as long as the COMMAND_LINE.
#ifndef TOOLS_COMMAND_LINE_H
#define TOOLS_COMMAND_LINE_H

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tools/command_description.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace sbd_tool {

// A positional argument, an option or a flag.
class OPTION_SYNTAX {
 public:
  OPTION_SYNTAX() = default;
  explicit OPTION_SYNTAX(CLI::Option* option) : m_option(option) {}

  OPTION_SYNTAX required() const;
  // Wrong use when both are given.
  OPTION_SYNTAX excludes(const OPTION_SYNTAX& other) const;

  bool is_given() const;

 private:
  CLI::Option* m_option = nullptr;
};

// A command: the tool itself or one of those below it. What is parsed goes into variables that have
// to live until then; they keep their values where an argument is not given.
class COMMAND_SYNTAX {
 public:
  COMMAND_SYNTAX() = default;
  explicit COMMAND_SYNTAX(CLI::App* app) : m_app(app) {}

  COMMAND_SYNTAX add_command(const std::string& name, const std::string& description) const;
  // Wrong use without a command behind this one.
  void require_command() const;

  // Positional arguments, in their order; the second form takes one or more.
  OPTION_SYNTAX add_positional(const std::string& name, std::string& value,
                               const std::string& description) const;
  OPTION_SYNTAX add_positional(const std::string& name, std::vector<std::string>& values,
                               const std::string& description) const;
  // The same for arguments that come in groups: `behind` is what the help shows behind the name.
  OPTION_SYNTAX add_positionals(const std::string& name, const std::string& behind,
                                std::vector<std::string>& values,
                                const std::string& description) const;

  // Options with a value, which help calls `value_name`; `names` is such as "-o,--output". The
  // second form may be repeated, each time with one value.
  OPTION_SYNTAX add_option(const std::string& names, const std::string& value_name,
                           std::string& value, const std::string& description) const;
  OPTION_SYNTAX add_option(const std::string& names, const std::string& value_name,
                           std::vector<std::string>& values, const std::string& description) const;
  // A whole number of `things`, as a refusal calls them.
  OPTION_SYNTAX add_count(const std::string& names, const std::string& value_name,
                          const std::string& things, std::size_t& count,
                          const std::string& description) const;
  // One of `choices`, handed to `take`.
  OPTION_SYNTAX add_choice(const std::string& names, const std::string& value_name,
                           const std::vector<std::string>& choices,
                           const std::function<void(const std::string&)>& take,
                           const std::string& description) const;
  OPTION_SYNTAX add_flag(const std::string& names, bool& is_set,
                         const std::string& description) const;

  // What help says at its end.
  void set_footer(const std::string& text) const;

  bool is_given() const;

 private:
  CLI::App* m_app = nullptr;
};

// The tool's command line as a whole.
class COMMAND_LINE {
 public:
  struct TOOL_TEXTS {
    std::string name;
    std::string description;
    std::string version;
    std::string exit_codes;  // Help prints them before the footer.
    std::string footer;
  };

  // What became of the arguments.
  struct RESULT {
    enum class KIND { COMMAND, ANSWER, REFUSAL };
    KIND kind;
    std::string text;  // An ANSWER (help, version) to print, or why the arguments are refused.
  };

  explicit COMMAND_LINE(const TOOL_TEXTS& texts);
  ~COMMAND_LINE();
  COMMAND_LINE(const COMMAND_LINE&) = delete;
  COMMAND_LINE& operator=(const COMMAND_LINE&) = delete;

  COMMAND_SYNTAX tool() const { return COMMAND_SYNTAX(m_app.get()); }

  // All that was added to the tool.
  COMMAND_DESCRIPTION describe() const;

  // Reads the arguments of main, once.
  RESULT parse(int argument_count, const char* const* arguments);

 private:
  TOOL_TEXTS m_texts;
  std::unique_ptr<CLI::App> m_app;
};

}  // namespace sbd_tool

#endif
