#include "tools/manual_page.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <sstream>
#include <string_view>
#include <vector>

#include "tools/exit_code.h"

namespace sbd_tool {

namespace {

constexpr char k_examples_heading[] = "Examples:";
constexpr char k_preformatted[] = "  ";  // How such lines of help begin.

struct ENVIRONMENT_VARIABLE {
  const char* name;
  const char* meaning;
};
constexpr std::array<ENVIRONMENT_VARIABLE, 2> k_environment = {
    {{"NO_COLOR", "If it is set and not empty, --color auto prints no colours."},
     {"TERM", "If it is dumb, --color auto prints no colours."}}};

// ---- The language of manual pages --------------------------------------------------------------

// Characters that would mean something to the formatter, or look otherwise on paper.
std::string_view find_escape(char c) {
  switch (c) {
    case '\\':
      return "\\e";
    case '-':
      return "\\-";
    case '\'':
      return "\\(aq";
    case '`':
      return "\\(ga";
    case '^':
      return "\\(ha";
    case '~':
      return "\\(ti";
    case '"':
      return "\\(dq";
    default:
      return {};
  }
}

std::string escape(std::string_view text) {
  std::string escaped;
  // At the beginning of a line it would make that a request.
  if (!text.empty() && text.front() == '.') escaped += "\\&";
  for (const char c : text) {
    const std::string_view escape = find_escape(c);
    escape.empty() ? escaped += c : escaped += escape;
  }
  return escaped;
}

std::string bold(std::string_view text) {
  return "\\fB" + escape(text) + "\\fR";
}

std::string italic(std::string_view text) {
  return "\\fI" + escape(text) + "\\fR";
}

std::string page_link(std::string_view page, int section) {
  return fmt::format("\\fB{}\\fR({})", escape(page), section);
}

// ---- What is printed ---------------------------------------------------------------------------

std::string to_upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

// As behind the name of a page.
std::string make_phrase(std::string text) {
  if (text.empty()) return text;
  text.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(text.front())));
  if (text.back() == '.') text.pop_back();
  return text;
}

std::string end_sentence(std::string text) {
  if (!text.empty() && std::string_view(".?!").find(text.back()) == std::string_view::npos) {
    text += '.';
  }
  return text;
}

std::vector<std::string> split_lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string join(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) joined.append(joined.empty() ? "" : ", ").append(text);
  return joined;
}

// ---- A page ------------------------------------------------------------------------------------

class PAGE {
 public:
  PAGE(const COMMAND_DESCRIPTION& command, const MANUAL_ISSUE& issue) {
    line(fmt::format(".TH {} 1 \"{}\" \"sbd {}\" \"User Commands\"",
                     escape(to_upper(manual_page_name(command))), issue.date,
                     escape(issue.version)));
    section("NAME");
    line(fmt::format("{} \\- {}", escape(manual_page_name(command)),
                     escape(make_phrase(command.description))));
  }

  void section(std::string_view title) { line(fmt::format(".SH {}", title)); }

  void synopsis(const COMMAND_DESCRIPTION& command) {
    std::string text = bold(command.path);
    if (!command.options.empty()) text += " [" + italic("OPTIONS") + "]";
    for (const ARGUMENT_DESCRIPTION& argument : command.positionals) {
      std::string name;
      for (const std::string& value : argument.values) {
        name += (name.empty() ? "" : " ") + italic(value);
      }
      if (argument.is_repeated) name += " ...";
      text += argument.is_required ? " " + name : " [" + name + "]";
    }
    if (!command.commands.empty()) text += " " + italic("COMMAND");
    line(text);
  }

  // The description and all of the footer but its examples.
  void description(const COMMAND_DESCRIPTION& command) {
    line(escape(end_sentence(command.description)));
    std::vector<std::string> lines = split_lines(command.footer);
    lines.erase(std::find(lines.begin(), lines.end(), k_examples_heading), lines.end());
    m_has_gap = true;
    text_lines(lines);
  }

  void arguments(const COMMAND_DESCRIPTION& command) {
    for (const ARGUMENT_DESCRIPTION& argument : command.positionals) describe(argument);
    for (const ARGUMENT_DESCRIPTION& option : command.options) describe(option);
  }

  void examples(const COMMAND_DESCRIPTION& command) {
    const std::vector<std::string> lines = split_lines(command.footer);
    const auto heading = std::find(lines.begin(), lines.end(), k_examples_heading);
    if (heading != lines.end()) text_lines({heading + 1, lines.end()});
  }

  void exit_status() {
    section("EXIT STATUS");
    for (const EXIT_CODE_MEANING& code : k_exit_codes) {
      item(bold(std::to_string(code.code)), escape(end_sentence(code.meaning)));
    }
  }

  void item(const std::string& heading, const std::string& text) {
    line(".TP");
    line(heading);
    line(text);
  }

  void see_also(const std::vector<std::string>& links) {
    section("SEE ALSO");
    line(join(links));
  }

  void line(std::string_view text) { m_text.append(text).append("\n"); }

  std::string take() { return std::move(m_text); }

 private:
  // Lines that begin with blanks stay as they are, others flow.
  void text_lines(const std::vector<std::string>& lines) {
    bool is_example = false;
    for (const std::string& text : lines) {
      const bool begins_blank = text.compare(0, 2, k_preformatted) == 0;
      if (begins_blank && !is_example) line(".RS 4\n.nf");
      if (!begins_blank && is_example) line(".fi\n.RE");
      is_example = begins_blank;
      if (text.empty()) {
        m_has_gap = true;
        continue;
      }
      if (m_has_gap) line(".PP");
      m_has_gap = false;
      line(escape(is_example ? std::string_view(text).substr(2) : std::string_view(text)));
    }
    if (is_example) line(".fi\n.RE");
    m_has_gap = false;
  }

  void describe(const ARGUMENT_DESCRIPTION& argument) {
    std::string heading;
    for (const std::string& name : argument.names) {
      heading += (heading.empty() ? "" : ", ") + bold(name);
    }
    for (const std::string& value : argument.values) {
      heading += (heading.empty() ? "" : " ") + italic(value);
    }
    item(heading, escape(explain(argument)));
  }

  // The description with what is not in it.
  static std::string explain(const ARGUMENT_DESCRIPTION& argument) {
    std::string text = end_sentence(argument.description);
    const auto is_told = [&text](const std::string& what) {
      return text.find(what) != std::string::npos;
    };
    const std::vector<std::string>& choices = argument.choices;
    if (!std::all_of(choices.begin(), choices.end(), is_told)) {
      text += fmt::format(" {}: {}.", argument.values.front(), join(choices));
    }
    if (argument.is_repeated && !argument.is_positional() && !is_told("repeated")) {
      text += " May be repeated.";
    }
    if (argument.is_required && !argument.is_positional()) text += " Required.";
    if (!argument.excluded.empty()) text += " Not with " + join(argument.excluded) + '.';
    return text;
  }

  std::string m_text;
  bool m_has_gap = false;  // A new paragraph begins with the next line of text.
};

void describe_environment(PAGE& page) {
  page.section("ENVIRONMENT");
  for (const ENVIRONMENT_VARIABLE& variable : k_environment) {
    page.item(bold(variable.name), escape(variable.meaning));
  }
}

}  // namespace

std::string manual_page_name(const COMMAND_DESCRIPTION& command) {
  std::string name = command.path;
  std::replace(name.begin(), name.end(), ' ', '-');
  return name;
}

std::string make_tool_page(const COMMAND_DESCRIPTION& tool, const MANUAL_ISSUE& issue) {
  PAGE page(tool, issue);
  page.section("SYNOPSIS");
  page.synopsis(tool);
  page.section("DESCRIPTION");
  page.description(tool);
  page.section("COMMANDS");
  std::vector<std::string> links;
  for (const COMMAND_DESCRIPTION& command : tool.commands) {
    page.item(bold(command.name), escape(end_sentence(command.description)));
    links.push_back(page_link(manual_page_name(command), 1));
  }
  page.section("OPTIONS");
  page.arguments(tool);
  page.exit_status();
  describe_environment(page);
  page.section("EXAMPLES");
  page.examples(tool);
  links.push_back(page_link("sbd-descriptor", 5));
  page.see_also(links);
  return page.take();
}

std::string make_command_page(const COMMAND_DESCRIPTION& command, const MANUAL_ISSUE& issue) {
  PAGE page(command, issue);
  page.section("SYNOPSIS");
  if (command.commands.empty()) page.synopsis(command);
  for (const COMMAND_DESCRIPTION& below : command.commands) {
    page.synopsis(below);
    if (&below != &command.commands.back()) page.line(".br");
  }
  page.section("DESCRIPTION");
  page.description(command);
  for (const COMMAND_DESCRIPTION& below : command.commands) {
    page.line(fmt::format(".SS {}", escape(below.path)));
    page.description(below);
    page.arguments(below);
  }
  page.section("OPTIONS");
  page.arguments(command);
  page.exit_status();
  page.section("EXAMPLES");
  page.examples(command);
  for (const COMMAND_DESCRIPTION& below : command.commands) page.examples(below);
  page.see_also({page_link("sbd", 1), page_link("sbd-descriptor", 5)});
  return page.take();
}

}  // namespace sbd_tool
