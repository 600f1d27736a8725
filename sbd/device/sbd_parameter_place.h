// Where in a document a parameter stands, or would stand.
#ifndef SBD_DEVICE_SBD_PARAMETER_PLACE_H
#define SBD_DEVICE_SBD_PARAMETER_PLACE_H

#include <string_view>

#include "sbd/sbd_file_parser.h"
#include "sbd/sbd_memory.h"

struct SBD_PARAMETER_PLACE {
  const SBD_FILE_PARSER::SBD_NODE* statement = nullptr;
  const SBD_FILE_PARSER::SBD_NODE* block = nullptr;            // Where it belongs.
  const SBD_FILE_PARSER::SBD_NODE* innermost_block = nullptr;  // The same or the nearest around it.
};

// Looks a parameter up by its reference, relative to the module. Members are null for what the
// document does not have.
SBD_PARAMETER_PLACE sbd_find_place(const SBD_FILE_PARSER& document, const SBD_STRING& module_name,
                                   std::string_view reference);

#endif
