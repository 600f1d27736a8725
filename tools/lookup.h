// Finding what the user means by a name, and helping where that is nothing.
#ifndef TOOLS_LOOKUP_H
#define TOOLS_LOOKUP_H

#include <string>

#include "tools/descriptor.h"
#include "tools/names.h"
#include "tools/session.h"

namespace sbd_tool {

// The node named `name`. When there is none, or one that is not wanted, says so on standard error,
// with names that may have been meant, sets the exit code and returns null.
const NODE* find_wanted(SESSION& session, const DESCRIPTOR& descriptor, const std::string& name,
                        WANTED wanted);

}  // namespace sbd_tool

#endif
