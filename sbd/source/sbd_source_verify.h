// Whether a text means what a tree holds.
#ifndef SBD_SOURCE_SBD_SOURCE_VERIFY_H
#define SBD_SOURCE_SBD_SOURCE_VERIFY_H

#include <string_view>

#include "sbd/sbd_file_parser.h"

// What the tree is to be read from.
enum class SBD_LAYOUT {
  AS_TYPED,  // A text in which everything that was read is as it was.
  CANONICAL  // What the library's writer makes of the tree.
};

// True when the format has a form for all that the tree holds, no name is declared twice and every
// reference means its target. Otherwise `why` tells what is in the way.
bool sbd_check_expressible(const SBD_FILE_PARSER& document, SBD_LAYOUT layout, SBD_STRING& why);

// Reads the text and compares its tree with the document's.
bool sbd_compare_text(const SBD_FILE_PARSER& document, std::string_view text, SBD_STRING& why);

// Both.
bool sbd_verify_text(const SBD_FILE_PARSER& document, std::string_view text, SBD_LAYOUT layout,
                     SBD_STRING& why);

#endif
