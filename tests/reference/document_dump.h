// The canonical text of a document's tree, as reference_reader.h describes it.
#ifndef TESTS_REFERENCE_DOCUMENT_DUMP_H
#define TESTS_REFERENCE_DOCUMENT_DUMP_H

#include <string>

#include "sbd/sbd_file_parser.h"

// Does not recurse, so any depth of nesting will do. Records that do not hang together as they
// should (a symbol that names another node, a missing text) show up as "!" lines.
std::string dump_document(const SBD_FILE_PARSER& document);

// The same without line numbers, which edits and layout change.
std::string dump_shape(const SBD_FILE_PARSER& document);

#endif
