// Finding what the user means by a name, and helping where that is nothing.
#ifndef TOOLS_LOOKUP_H
#define TOOLS_LOOKUP_H

#include <string>
#include <string_view>
#include <vector>

#include "tools/descriptor.h"
#include "tools/names.h"
#include "tools/session.h"

namespace sbd_tool {

// A name as it is quoted in messages: fit for a terminal, not too long.
std::string quote_name(std::string_view name);

// "block", "parameter", or both.
std::string_view description_of(WANTED wanted);

// "did you mean 'a' or 'b'?"; empty for no names.
std::string ask_for(const std::vector<std::string>& names);

// The same for names that look like `name`.
std::string suggest_names(const SBD_FILE_PARSER& document, const std::string& name, WANTED wanted);

// The node named `name`. When there is none, or one that is not wanted, says so on standard error,
// with names that may have been meant, sets the exit code and returns null.
const NODE* find_wanted(SESSION& session, const DESCRIPTOR& descriptor, const std::string& name,
                        WANTED wanted);

}  // namespace sbd_tool

#endif
