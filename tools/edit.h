// One change to a descriptor, as a user asks for it.
#ifndef TOOLS_EDIT_H
#define TOOLS_EDIT_H

#include <optional>
#include <string>
#include <vector>

#include "sbd/sbd_source_document.h"
#include "tools/findings.h"

namespace sbd_tool {

struct EDIT {
  enum class KIND {
    SET,                // `value` to the parameter `name`.
    UNSET,              // The parameter or reference statement `name`.
    SET_REFERENCES,     // `targets` to the reference statement `name`.
    REMOVE_REFERENCES,  // All references to `name`.
    SET_ATTRIBUTES,     // `attributes` to the parameter `name`.
    ADD_BLOCK,          // `name`, of the type `value`, with `members` as parameters.
    REMOVE_BLOCK,       // `name`.
    RENAME              // `name` to `value`.
  };
  // A parameter with its value, or an attribute, which may have none.
  struct PAIR {
    std::string key;
    std::optional<std::string> value;
  };

  KIND kind = KIND::SET;
  std::string name;  // A full name.
  std::string value;
  std::vector<std::string> targets;
  std::vector<PAIR> attributes;  // None stands for none to be left.
  std::vector<PAIR> members;
  // Where something new stands; the sibling may be named by its full name.
  SBD_PLACE::KIND place = SBD_PLACE::AT_END;
  std::string sibling;
  // References to what is removed are removed, too; those to what is renamed follow.
  bool with_references = false;
  std::string origin;  // Where the edit comes from; empty for the command line.
};

// "key=value", split at the first "="; without one, there is no value.
EDIT::PAIR split_pair(const std::string& text);

// Performs an edit. When it is refused, that is one finding or more, and what is then in the
// document should not be saved. The library's own messages go to the collector of this thread,
// which is to put them into `findings`, too.
bool apply_edit(SBD_SOURCE_DOCUMENT& source, const EDIT& edit, FINDINGS& findings);

}  // namespace sbd_tool

#endif
