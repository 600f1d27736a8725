// What the command line of the tool takes, as data: manual pages and completions are made of it.
#ifndef TOOLS_COMMAND_DESCRIPTION_H
#define TOOLS_COMMAND_DESCRIPTION_H

#include <string>
#include <vector>

namespace sbd_tool {

// A positional argument, an option or a flag.
struct ARGUMENT_DESCRIPTION {
  std::vector<std::string> names;  // "-o" and "--output"; none of a positional argument.
  // What help calls its values: "OUT"; none of a flag. Two for arguments that come in pairs.
  std::vector<std::string> values;
  std::vector<std::string> choices;  // The values that there are, where they are few.
  std::string description;
  std::vector<std::string> excluded;  // What it can't be given with, by the last of its names.
  bool is_required = false;
  bool is_repeated = false;

  bool is_positional() const { return names.empty(); }
  // What refusals and `excluded` call it.
  const std::string& name() const { return names.empty() ? values.front() : names.back(); }
};

struct COMMAND_DESCRIPTION {
  std::string name;  // "add".
  std::string path;  // "sbd block add".
  std::string description;
  std::string footer;
  std::vector<ARGUMENT_DESCRIPTION> positionals;  // In their order.
  std::vector<ARGUMENT_DESCRIPTION> options;
  std::vector<COMMAND_DESCRIPTION> commands;
};

}  // namespace sbd_tool

#endif
