// Lookups for use inside an operation: as the public ones of the document, but what the host throws
// passes through. An operation that runs out of memory then ends at once, where it would otherwise
// take an object for missing and go on.
#ifndef SBD_READING_SBD_LOOKUP_H
#define SBD_READING_SBD_LOOKUP_H

#include "sbd/sbd_file_parser.h"

class SBD_LOOKUP {
 public:
  using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;

  // What get_ref_object finds.
  static SBD_NODE* find(const SBD_FILE_PARSER& document, const char* name, const SBD_NODE* scope);
  // The object of a two-name form; null when either name is null.
  static SBD_NODE* find_member(const SBD_FILE_PARSER& document, const char* block,
                               const char* parameter);
  // What get_ref_name writes.
  static bool make_full_name(const SBD_NODE* node, SBD_STRING& name);
  // What is_referenced answers for a target and the siblings from `first` on.
  static bool is_referenced(const SBD_FILE_PARSER& document, const SBD_NODE* target,
                            const SBD_NODE* first);

 private:
  static SBD_NODE* resolve(const SBD_FILE_PARSER& document, const SBD_JOINED_NAME& name,
                           const SBD_NODE* scope);
};

#endif
