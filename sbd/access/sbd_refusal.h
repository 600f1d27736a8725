// Says why an edit is refused.
#ifndef SBD_ACCESS_SBD_REFUSAL_H
#define SBD_ACCESS_SBD_REFUSAL_H

#include <initializer_list>

#include "sbd/diagnostics/sbd_messages.h"
#include "sbd/sbd_file_parser.h"

inline SBD_STRING sbd_join_texts(std::initializer_list<const char*> texts) {
  SBD_STRING joined;
  for (const char* const text : texts) joined += text;
  return joined;
}

// Posts the texts, joined, as an error and returns false.
inline bool sbd_refuse(std::initializer_list<const char*> texts) {
  SBD_FILE_PARSER::post_message(
      sbd_make_message<MSG_E>(k_msg_error, sbd_join_texts(texts).c_str()));
  return false;
}

inline void sbd_warn(std::initializer_list<const char*> texts) {
  SBD_FILE_PARSER::post_message(
      sbd_make_message<MSG_W>(k_msg_warning, sbd_join_texts(texts).c_str()));
}

#endif
