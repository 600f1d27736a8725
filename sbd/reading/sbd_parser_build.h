// Entering symbols that the reader did not make.
#ifndef SBD_READING_SBD_PARSER_BUILD_H
#define SBD_READING_SBD_PARSER_BUILD_H

#include "sbd/sbd_file_parser.h"

// Enters a symbol of a caller's or an edit's at the head of its bucket and in the index of names.
void sbd_enter_foreign_symbol(SBD_FILE_PARSER::SBD_SYMBOL* symbol,
                              SBD_FILE_PARSER::SBD_SYMBOL_TABLE& symbol_table);

#endif
