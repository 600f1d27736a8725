// Reads a value by itself.
#ifndef SBD_SOURCE_SBD_VALUE_READER_H
#define SBD_SOURCE_SBD_VALUE_READER_H

#include <string_view>

#include "sbd/sbd_file_parser.h"

class SBD_VALUE_READER {
 public:
  // The value that `text` is in the notation of the format, with nothing around it; null, in
  // silence, when it is anything else. Lives until the next read.
  const SBD_FILE_PARSER::SBD_PARA_VALUE* read(std::string_view text);

 private:
  SBD_FILE_PARSER m_document;
};

// `text` without blanks and newlines at its ends.
std::string_view sbd_trim(std::string_view text);

#endif
