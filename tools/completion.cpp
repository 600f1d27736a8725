#include "tools/completion.h"

#include <algorithm>

#include "tools/completion_values.h"

namespace sbd_tool {

namespace {

constexpr std::string_view k_end_of_options = "--";

bool is_flag(const ARGUMENT_DESCRIPTION& option) {
  return option.values.empty();
}

bool is_long(std::string_view word) {
  return word.compare(0, 2, "--") == 0;
}

bool is_option(std::string_view word) {
  return word.size() > 1 && word.front() == '-';
}

const ARGUMENT_DESCRIPTION* find_option(const COMMAND_DESCRIPTION& command, std::string_view name) {
  for (const ARGUMENT_DESCRIPTION& option : command.options) {
    const auto& names = option.names;
    if (std::find(names.begin(), names.end(), name) != names.end()) return &option;
  }
  return nullptr;
}

const COMMAND_DESCRIPTION* find_command(const COMMAND_DESCRIPTION& command, std::string_view name) {
  for (const COMMAND_DESCRIPTION& below : command.commands) {
    if (below.name == name) return &below;
  }
  return nullptr;
}

// The command line up to the word that is completed.
class LINE {
 public:
  explicit LINE(const COMMAND_DESCRIPTION& tool) { m_question.command = &tool; }

  void take(const std::string& word) {
    if (m_awaiting != nullptr) {
      give(*m_awaiting, word);
      m_awaiting = nullptr;
    } else if (m_has_no_more_options || !is_option(word)) {
      take_positional(word);
    } else if (word == k_end_of_options) {
      m_has_no_more_options = true;
    } else if (is_long(word)) {
      take_long(word);
    } else {
      take_short(word);
    }
  }

  COMPLETION complete(const std::string& word) {
    if (m_awaiting != nullptr) return complete_option_value(*m_awaiting, {}, word);
    if (m_has_no_more_options || word.empty() || word.front() != '-') {
      return complete_positional(word);
    }
    const std::size_t equals = word.find('=');
    if (!is_long(word) || equals == std::string::npos) return complete_option(word);
    const ARGUMENT_DESCRIPTION* const option = find_option(command(), word.substr(0, equals));
    if (option == nullptr || is_flag(*option)) return {};
    return complete_option_value(*option, word.substr(0, equals + 1), word.substr(equals + 1));
  }

 private:
  const COMMAND_DESCRIPTION& command() const { return *m_question.command; }

  void give(const ARGUMENT_DESCRIPTION& option, const std::string& value) {
    m_question.options.push_back({&option, value});
  }

  void take_positional(const std::string& word) {
    const COMMAND_DESCRIPTION* const below = find_command(command(), word);
    if (below == nullptr) {
      m_question.positionals.push_back(word);
      return;
    }
    m_question.command = below;
    m_question.options.clear();
  }

  // "--name" or "--name=value".
  void take_long(const std::string& word) {
    const std::size_t equals = std::min(word.find('='), word.size());
    const ARGUMENT_DESCRIPTION* const option = find_option(command(), word.substr(0, equals));
    if (option == nullptr) return;
    const bool has_value = equals != word.size();
    if (is_flag(*option) || has_value) {
      give(*option, has_value ? word.substr(equals + 1) : std::string());
    } else {
      m_awaiting = option;
    }
  }

  // "-n", "-nv", "-o" or "-oFILE".
  void take_short(const std::string& word) {
    for (std::size_t i = 1; i != word.size(); ++i) {
      const ARGUMENT_DESCRIPTION* const option = find_option(command(), {"-" + word.substr(i, 1)});
      if (option == nullptr) return;
      if (is_flag(*option)) {
        give(*option, {});
        continue;
      }
      if (i + 1 == word.size()) {
        m_awaiting = option;
      } else {
        give(*option, word.substr(i + 1));
      }
      return;
    }
  }

  COMPLETION complete_option_value(const ARGUMENT_DESCRIPTION& option, const std::string& front,
                                   const std::string& word) {
    m_question.argument = &option;
    m_question.value_name = option.values.front();
    m_question.word = word;
    COMPLETION completion = complete_value(m_question);
    for (CANDIDATE& candidate : completion.candidates) candidate.text.insert(0, front);
    return completion;
  }

  COMPLETION complete_positional(const std::string& word) {
    if (!command().commands.empty()) return complete_command(word);
    const auto& arguments = command().positionals;
    const std::size_t given = m_question.positionals.size();
    const bool is_further =
        given >= arguments.size() && !arguments.empty() && arguments.back().is_repeated;
    if (given >= arguments.size() && !is_further) {
      return word.empty() ? complete_option(word) : COMPLETION();
    }
    const std::size_t index = std::min(given, arguments.size() - 1);
    m_question.argument = &arguments[index];
    const auto& values = m_question.argument->values;
    m_question.value_name = values[(given - index) % values.size()];
    m_question.word = word;
    return complete_value(m_question);
  }

  COMPLETION complete_command(const std::string& word) const {
    COMPLETION completion;
    for (const COMMAND_DESCRIPTION& below : command().commands) {
      if (begins_with(below.name, word)) {
        completion.candidates.push_back({below.name, below.description});
      }
    }
    return completion;
  }

  COMPLETION complete_option(const std::string& word) const {
    COMPLETION completion;
    for (const ARGUMENT_DESCRIPTION& option : command().options) {
      if (!is_still_possible(option)) continue;
      for (const std::string& name : option.names) {
        // The short name of an option with a long one is offered to those who have typed it.
        const bool is_asked_for = name == option.names.back() || name == word;
        if (is_asked_for && begins_with(name, word)) {
          completion.candidates.push_back({name, option.description});
        }
      }
    }
    return completion;
  }

  bool is_still_possible(const ARGUMENT_DESCRIPTION& option) const {
    for (const auto& given : m_question.options) {
      if (given.option == &option && !option.is_repeated) return false;
      const auto& excluded = given.option->excluded;
      if (std::find(excluded.begin(), excluded.end(), option.name()) != excluded.end()) {
        return false;
      }
    }
    return true;
  }

  VALUE_QUESTION m_question;
  const ARGUMENT_DESCRIPTION* m_awaiting = nullptr;  // An option whose value comes next.
  bool m_has_no_more_options = false;
};

std::string_view name_of(COMPLETION::FILES files) {
  switch (files) {
    case COMPLETION::FILES::ANY:
      return "any";
    case COMPLETION::FILES::DESCRIPTORS:
      return "descriptors";
    case COMPLETION::FILES::NONE:
      break;
  }
  return "none";
}

}  // namespace

COMPLETION complete(const COMMAND_DESCRIPTION& tool, const std::vector<std::string>& words) {
  LINE line(tool);
  if (words.empty()) return line.complete({});
  for (std::size_t i = 0; i + 1 < words.size(); ++i) line.take(words[i]);
  return line.complete(words.back());
}

std::string format_completion(const COMPLETION& completion) {
  std::string text = "files ";
  text.append(name_of(completion.files)).append("\n");
  for (const CANDIDATE& candidate : completion.candidates) {
    text.append(candidate.text).append("\t").append(candidate.description).append("\n");
  }
  return text;
}

}  // namespace sbd_tool
