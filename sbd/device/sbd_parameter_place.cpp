#include "sbd/device/sbd_parameter_place.h"

#include "sbd/reading/sbd_lookup.h"

using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;

SBD_PARAMETER_PLACE sbd_find_place(const SBD_FILE_PARSER& document, const SBD_STRING& module_name,
                                   std::string_view reference) {
  SBD_PARAMETER_PLACE place;
  if (module_name.empty()) return place;
  const SBD_NODE* scope = SBD_LOOKUP::find(document, module_name.c_str(), nullptr);
  SBD_STRING component;
  for (std::size_t begin = 0; scope != nullptr && scope->type == SBD_NODE::NT_BLOCK;) {
    place.innermost_block = scope;
    const std::size_t end = reference.find('.', begin);
    const bool is_last = end == std::string_view::npos;
    component = reference.substr(begin, end - begin);
    if (is_last) place.block = scope;
    const bool is_named = !component.empty();
    scope = is_named ? SBD_LOOKUP::find(document, component.c_str(), scope) : nullptr;
    if (is_last) break;
    begin = end + 1;
  }
  if (place.block != nullptr && scope != nullptr && scope->type == SBD_NODE::NT_STATEMENT) {
    place.statement = scope;
  }
  return place;
}
