// The names of nodes.
#ifndef TOOLS_NAMES_H
#define TOOLS_NAMES_H

#include <string>
#include <string_view>

#include "tools/tree_walk.h"

namespace sbd_tool {

// What kind of node is looked for.
enum class WANTED { BLOCK, PARAMETER, ANY };

bool is_wanted(const NODE& node, WANTED wanted);

// The name that a block or statement declares; empty for a comment.
std::string_view declared_name(const NODE& node);

// The full name of a block or statement, spelled as declared.
std::string full_name(const SBD_FILE_PARSER& document, const NODE& node);

// The node of this name, seen from inside `scope` (null: from the top level), or null.
const NODE* find_node(const SBD_FILE_PARSER& document, const std::string& name, const NODE* scope);

}  // namespace sbd_tool

#endif
