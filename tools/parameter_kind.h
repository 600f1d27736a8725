// What a parameter holds, and how it is written.
#ifndef TOOLS_PARAMETER_KIND_H
#define TOOLS_PARAMETER_KIND_H

#include <string_view>

#include "tools/tree_walk.h"

namespace sbd_tool {

using STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;

enum class PARAMETER_KIND { NUMBER, STRING, BOOL, LIST, REFS };

PARAMETER_KIND kind_of_parameter(const STATEMENT& statement);

// "a number", "a string", "a Boolean", "a list", "a reference".
std::string_view description_of(PARAMETER_KIND kind);

// The value of a statement as it stands in the file: an expression, or references with their
// brackets. The bytes are the document's.
std::string_view get_written(const SBD_FILE_PARSER& document, const NODE& node);

}  // namespace sbd_tool

#endif
