// Texts that a command writes into a file of their own.
#ifndef TOOLS_TEXT_FILE_H
#define TOOLS_TEXT_FILE_H

#include <string>

#include "tools/session.h"

namespace sbd_tool {

// Whether a file that is there already gives way.
enum class PRESENT_FILE { IS_REPLACED, STAYS };

// Writes the text into the file at `path`. False, after saying why, when that can't be done; the
// session then ends as unusable.
bool write_text_file(SESSION& session, const std::string& path, const std::string& text,
                     PRESENT_FILE present_file);

}  // namespace sbd_tool

#endif
