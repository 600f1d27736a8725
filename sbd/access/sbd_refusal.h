// Says why an edit is refused.
#ifndef SBD_ACCESS_SBD_REFUSAL_H
#define SBD_ACCESS_SBD_REFUSAL_H

#include <initializer_list>

#include "sbd/msg_sbd.h"
#include "sbd/sbd_file_parser.h"

inline SBD_STRING sbd_join_texts(std::initializer_list<const char*> texts) {
  SBD_STRING joined;
  for (const char* const text : texts) joined += text;
  return joined;
}

// Posts the texts, joined, as an error and returns false.
inline bool sbd_refuse(std::initializer_list<const char*> texts) {
  SBD_FILE_PARSER::post_message(MSG_SBD::E::SBD_ERROR(sbd_join_texts(texts).c_str()));
  return false;
}

inline void sbd_warn(std::initializer_list<const char*> texts) {
  SBD_FILE_PARSER::post_message(MSG_SBD::W::SBD_WARNING(sbd_join_texts(texts).c_str()));
}

#endif
