#include "tools/parameter_kind.h"

#include "tools/value_walk.h"

namespace sbd_tool {

PARAMETER_KIND kind_of_parameter(const STATEMENT& statement) {
  if (statement.type == STATEMENT::ST_REFERENCE) return PARAMETER_KIND::REFS;
  switch (statement.value->type) {
    case VALUE::VT_BOOL:
      return PARAMETER_KIND::BOOL;
    case VALUE::VT_STRING:
      return PARAMETER_KIND::STRING;
    case VALUE::VT_LIST:
      return PARAMETER_KIND::LIST;
    default:
      return PARAMETER_KIND::NUMBER;
  }
}

std::string_view description_of(PARAMETER_KIND kind) {
  switch (kind) {
    case PARAMETER_KIND::NUMBER:
      return "a number";
    case PARAMETER_KIND::STRING:
      return "a string";
    case PARAMETER_KIND::BOOL:
      return "a Boolean";
    case PARAMETER_KIND::LIST:
      return "a list";
    case PARAMETER_KIND::REFS:
      break;
  }
  return "a reference";
}

std::string_view get_written(const SBD_FILE_PARSER& document, const NODE& node) {
  SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
  const std::string_view source = document.get_source();
  if (node.statement->type == STATEMENT::ST_ASSIGNMENT) {
    if (!document.get_range(node.statement->value, range)) return {};
    return source.substr(range.offset, range.length);
  }
  if (!document.get_range(&node, range)) return {};
  const std::string_view statement = source.substr(range.offset, range.length);
  const std::size_t begin = statement.find('<');
  return statement.substr(begin, statement.rfind('>') + 1 - begin);
}

}  // namespace sbd_tool
