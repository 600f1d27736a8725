// Replaces files so that there is always a whole one.
#ifndef SBD_SOURCE_SBD_SAFE_SAVE_H
#define SBD_SOURCE_SBD_SAFE_SAVE_H

#include <string_view>

#include "sbd/sbd_file_parser.h"

// Puts `content` in the place of the file at `path`, or of the one that the symbolic link there
// leads to: written to a new file beside it, brought to the disc, read back, renamed. When the
// folder can't be brought to the disc afterwards, that is a warning. False, with the reason in
// `why` and the old file as it was, when anything fails.
bool sbd_replace_file(const char* path, std::string_view content, SBD_STRING& why);

// The document in the library's own layout.
bool sbd_write_to_text(const SBD_FILE_PARSER& document, SBD_STRING& text, SBD_STRING& why);

// Posts that the file can't be written, and why.
void sbd_refuse_save(const char* path, const SBD_STRING& why);

#endif
