// What the module of a stripe states, held against what the device looks at.
#ifndef TOOLS_STRIPE_CONTENTS_H
#define TOOLS_STRIPE_CONTENTS_H

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "sbd/sbd_veldran.h"
#include "tools/device_view.h"
#include "tools/tree_walk.h"

namespace sbd_tool {

// The names that a chip has, relative to the stripe's module, in lower case.
struct CHIP_NAMES {
  std::set<std::string, std::less<>> parameters;
  std::set<std::string, std::less<>> blocks;  // With the ones around them.
};
const CHIP_NAMES& names_of_chip(SBD_VELDRAN::CHIP_TYPE chip);

// The block in front of a name, empty for the module itself, and what is behind it.
std::string_view block_of(std::string_view name);
std::string_view last_of(std::string_view name);

struct STATED_PARAMETER {
  const NODE* statement = nullptr;
  SBD_PARAMETER_RULE rule;
  PARAMETER_VIEW view;
};

// A statement that is no parameter, or a block that has none.
struct UNREAD_NODE {
  const NODE* node = nullptr;
  std::string name;  // Relative to the stripe's module, as written.
};

struct STRIPE_CONTENTS {
  std::vector<STATED_PARAMETER> parameters;
  std::vector<UNREAD_NODE> unread;             // Not what is in an unread block.
  std::set<std::string, std::less<>> present;  // Names of all blocks and statements, in lower case.
};

// In file order; of the device that is open and has parameters.
STRIPE_CONTENTS list_contents(const SBD_VELDRAN& device);

}  // namespace sbd_tool

#endif
