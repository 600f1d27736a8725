#include "tools/names.h"

namespace sbd_tool {

bool is_wanted(const NODE& node, WANTED wanted) {
  switch (wanted) {
    case WANTED::BLOCK:
      return node.type == NODE::NT_BLOCK;
    case WANTED::PARAMETER:
      return node.type == NODE::NT_STATEMENT;
    case WANTED::ANY:
      break;
  }
  return node.type != NODE::NT_COMMENT;
}

std::string_view declared_name(const NODE& node) {
  switch (node.type) {
    case NODE::NT_BLOCK:
      return node.block->name->name;
    case NODE::NT_STATEMENT:
      return node.statement->name->name;
    default:
      return {};
  }
}

std::string full_name(const SBD_FILE_PARSER& document, const NODE& node) {
  SBD_STRING name;
  document.get_ref_name(&node, name);
  return std::string(name);
}

const NODE* find_node(const SBD_FILE_PARSER& document, const std::string& name, const NODE* scope) {
  // To the library an empty name is a mistake of its caller.
  return name.empty() ? nullptr : document.get_ref_object(name.c_str(), scope);
}

}  // namespace sbd_tool
