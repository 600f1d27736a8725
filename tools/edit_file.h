// What all editing commands do with a file.
#ifndef TOOLS_EDIT_FILE_H
#define TOOLS_EDIT_FILE_H

#include <string>
#include <vector>

#include "tools/edit.h"
#include "tools/session.h"
#include "tools/terminal.h"

namespace sbd_tool {

struct EDIT_OPTIONS {
  std::string file;
  std::string output;  // Empty for the file itself, or standard output when that is standard input.
  bool is_dry_run = false;
  bool is_canonical = false;
  bool is_json = false;
  bool is_verbose = false;
  COLOR_CHOICE colors = COLOR_CHOICE::AUTO;
};

// Reads the file, performs the edits, and writes the result, unless one of them is refused: then
// nothing is written.
void edit_file(SESSION& session, const EDIT_OPTIONS& options, const std::vector<EDIT>& edits);

}  // namespace sbd_tool

#endif
