// Documents in the library's own layout.
#ifndef TOOLS_CANONICAL_H
#define TOOLS_CANONICAL_H

#include <string>

#include "sbd/sbd_file_parser.h"

namespace sbd_tool {

// The document as the library writes it. False, with the reason in `fault`, when it would lose
// decimals of a number.
bool make_canonical(const SBD_FILE_PARSER& document, std::string& text, std::string& fault);

}  // namespace sbd_tool

#endif
