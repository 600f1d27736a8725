// The rules of the chips about a parameter, without any file.
#ifndef TOOLS_PARAMETER_HELP_H
#define TOOLS_PARAMETER_HELP_H

#include <string>
#include <string_view>
#include <vector>

#include "sbd/sbd_parameter_rules.h"

namespace sbd_tool {

// The names of the chips that there are rules for, from the smallest to the largest.
std::vector<std::string> list_chips();

// The chip of that name; CT_UNKNOWN for one that there are no rules for.
SBD_VELDRAN::CHIP_TYPE find_chip_type(std::string_view name);

// What one chip has to say about a parameter, in words.
struct CHIP_HELP {
  std::string chip;
  std::string name;      // The parameter, relative to the stripe's module.
  std::string block;     // Where it stands below that module; empty for the module itself.
  std::string type;      // "boolean", "integer", "number" or "text".
  std::string required;  // "optional", "always required", "required when ...".
  std::string valid;     // "1 to 15", "any whole number".
  bool has_default = false;
  std::string present_block_default;  // Empty without default, and for the empty text.
  std::string absent_block_default;
  bool is_checked_while_required = false;  // Otherwise the value is not held against the rule.
};

// One for each chip that has the parameter; of the chip `chip` only, unless that is empty. A name
// that begins with the device block's and the module's is understood, too.
std::vector<CHIP_HELP> find_parameter_help(std::string_view name, std::string_view chip);

// The names of all parameters of the chip `chip`, or of all chips if that is empty, each once, in
// alphabetical order.
std::vector<std::string> list_all_parameters(std::string_view chip);

// Those of one block and the blocks in it; empty for a name that is no block's.
std::vector<std::string> list_block_parameters(std::string_view block, std::string_view chip);

// The parameters of that bare name, whatever block they are in, of one chip or of all.
std::vector<std::string> list_parameters_of_name(std::string_view name, std::string_view chip);

// A few of them that look like `name`.
std::vector<std::string> find_near_parameters(std::string_view name);

}  // namespace sbd_tool

#endif
