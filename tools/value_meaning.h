// What a statement says, whatever way it is written.
#ifndef TOOLS_VALUE_MEANING_H
#define TOOLS_VALUE_MEANING_H

#include <string>
#include <string_view>

#include "tools/tree_walk.h"
#include "tools/value_walk.h"

namespace sbd_tool {

// Equal for values that mean the same: numbers of one amount in any base and unit.
std::string get_meaning(const VALUE& value);

// The attributes of an assignment in an order that does not depend on theirs; empty for none.
std::string get_attribute_meaning(const NODE& statement);

// Names mean the same in any letter case.
std::string fold_case(std::string_view name);

}  // namespace sbd_tool

#endif
