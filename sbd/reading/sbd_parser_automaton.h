// The LALR(1) automaton that says what is wrong with a faulty text.
#ifndef SBD_READING_SBD_PARSER_AUTOMATON_H
#define SBD_READING_SBD_PARSER_AUTOMATON_H

#include "sbd/sbd_parser.h"

// Runs the automaton over what `scanner` scans and hands every syntax error to sbd_yyerror, with
// recovery. Builds nothing: a text with errors has no tree. Returns 0 when the end of the input was
// accepted, 1 when recovery gave up.
int sbd_run_automaton(sbd_yyFlexLexer& scanner, SBD_FILE_PARSER::SBD_PARSER_PARA* para);

#endif
