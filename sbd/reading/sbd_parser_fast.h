// The parser for faultless text.
#ifndef SBD_READING_SBD_PARSER_FAST_H
#define SBD_READING_SBD_PARSER_FAST_H

#include <string_view>

#include "sbd/sbd_file_parser.h"

// Parses `text`, which `store` keeps, and builds its tree in one go. False at the first fault, with
// nothing posted: what was built is then of no use, and the automaton says what is wrong.
bool sbd_parse_faultless(std::string_view text, SBD_STORE& store,
                         SBD_FILE_PARSER::SBD_PARSER_PARA& para);

#endif
