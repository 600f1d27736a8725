// The values that an argument may have, as far as they are known: names in the file that the
// command line gives, names in the tables of the chips, files.
#ifndef TOOLS_COMPLETION_VALUES_H
#define TOOLS_COMPLETION_VALUES_H

#include <string>
#include <vector>

#include "tools/command_description.h"
#include "tools/completion.h"

namespace sbd_tool {

// A value to complete, and what stands before it.
struct VALUE_QUESTION {
  struct GIVEN_OPTION {
    const ARGUMENT_DESCRIPTION* option;
    std::string value;
  };

  const COMMAND_DESCRIPTION* command = nullptr;
  const ARGUMENT_DESCRIPTION* argument = nullptr;
  std::string value_name;  // Which one, of an argument with two values in turn.
  std::string word;        // As far as it is typed.
  std::vector<std::string> positionals;
  std::vector<GIVEN_OPTION> options;

  // Empty where it is not given.
  std::string find_option(const std::string& name) const;
};

// False for an argument that nobody has said the values of.
bool has_value_source(const COMMAND_DESCRIPTION& command, const ARGUMENT_DESCRIPTION& argument,
                      const std::string& value_name);

COMPLETION complete_value(const VALUE_QUESTION& question);

bool begins_with(std::string_view text, std::string_view beginning);  // Letter case aside.

}  // namespace sbd_tool

#endif
