// Values the way a descriptor writes them, and the way everybody else does.
#ifndef TOOLS_NOTATION_H
#define TOOLS_NOTATION_H

#include <string>
#include <string_view>

#include "sbd/sbd_file_parser.h"
#include "tools/value_walk.h"

namespace sbd_tool {

inline bool is_number(const VALUE& value) {
  return value.type <= VALUE::VT_FLOAT;
}

// "K", "M", "G", "Hz", "MHz", or "" for none.
std::string_view unit_text(VALUE::QUANTITY_UNIT unit);

// A value as the file writes it, with its base and unit; what no file was read for is written
// anew. A list comes on one line, "{1, 2}".
std::string get_notation(const SBD_FILE_PARSER& document, const VALUE& value);

// A number times its unit.
double get_scaled_value(const VALUE& value);
// The same as text: integers without exponent, others with as many digits as it takes to read the
// same number again.
std::string get_scaled_number(const VALUE& value);
// The same number before its unit is applied.
std::string get_unscaled_number(const VALUE& value);

// A string value's text without its quotes, if it has any.
std::string_view get_unquoted(const VALUE& value);

}  // namespace sbd_tool

#endif
