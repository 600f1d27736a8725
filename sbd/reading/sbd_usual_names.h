// The names that nearly every descriptor is made of: those of the blocks and parameters that the
// devices know. A document finds them worked out, and need not store them.
#ifndef SBD_READING_SBD_USUAL_NAMES_H
#define SBD_READING_SBD_USUAL_NAMES_H

#include <string_view>

#include "sbd/reading/sbd_known_names.h"

// What a document knows before it is read. Of two names that fall into one slot it knows one.
const SBD_KNOWN_NAMES& sbd_known_usual_names();

// The usual names behind one another, each with its NUL.
std::string_view sbd_usual_name_texts() noexcept;

// Whether a text is that of a usual name, which all documents share and none of them frees.
bool sbd_is_usual_name(const char* text) noexcept;

#endif
