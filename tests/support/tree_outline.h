// Writes a document down, for comparing whole trees.
#ifndef TESTS_SUPPORT_TREE_OUTLINE_H
#define TESTS_SUPPORT_TREE_OUTLINE_H

#include <string>

#include "sbd/sbd_file_parser.h"

// One line per node, two blanks deeper for each enclosing block:
//   module m @2                     type as written, name, line of the name
//   a = 64 K @3                     value with its kind's mark and unit
//   b = {0x1, {2, '"s"'}} [k, l .v] @4 '# comment\n'
//   r < d.x, .y > @5
//   '# comment line\n'
// Numbers are marked by their kind: 5 decimal, 0o5 octal, 0x5 hexadecimal (all written in decimal
// digits), 0b5 binary, 5f float.
std::string outline(const SBD_FILE_PARSER& document);

std::string outline(const SBD_FILE_PARSER::SBD_PARA_VALUE& value);

// What does not hold, or "" when the document is consistent: every symbol is in the bucket of its
// name, every declaring node has just its own symbol there, chains run from the symbol entered last
// to the one entered first, and parents are the enclosing blocks.
std::string find_inconsistency(const SBD_FILE_PARSER& document);

#endif
