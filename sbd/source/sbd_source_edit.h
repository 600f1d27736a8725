// One edit, as it was asked for; kept, so that it can be repeated.
#ifndef SBD_SOURCE_SBD_SOURCE_EDIT_H
#define SBD_SOURCE_SBD_SOURCE_EDIT_H

#include "sbd/sbd_source_document.h"

struct SBD_SOURCE_EDIT {
  enum KIND {
    SET_VALUE,
    ADD_VALUE,
    SET_REFERENCES,
    SET_ATTRIBUTES,
    REMOVE_ATTRIBUTES,
    REMOVE_PARAMETER,
    ADD_BLOCK,
    REMOVE_BLOCK,
    REMOVE_REFERENCES,
    RENAME
  };
  struct ATTRIBUTE {
    SBD_STRING key;
    SBD_STRING value;
    bool has_value = false;
  };

  // The full name of the object: of the enclosing block, "" for the top level, and the own name.
  SBD_STRING full_name() const {
    if (scope.empty()) return name;
    SBD_STRING full = scope;
    full += '.';
    full += name;
    return full;
  }

  KIND kind = SET_VALUE;
  SBD_STRING scope;
  SBD_STRING name;
  SBD_STRING text;        // The value, the block's type, or the new name.
  SBD_STRING_LIST names;  // The references.
  SBD_VECTOR<ATTRIBUTE> attributes;
  SBD_SOURCE_DOCUMENT::PLACE::KIND place = SBD_SOURCE_DOCUMENT::PLACE::AT_END;
  SBD_STRING sibling;
  bool with_references = false;
};

#endif
