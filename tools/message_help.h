// What each message means and how to mend it.
#ifndef TOOLS_MESSAGE_HELP_H
#define TOOLS_MESSAGE_HELP_H

#include <string_view>
#include <vector>

#include "tools/findings.h"

namespace sbd_tool {

struct MESSAGE_HELP {
  // What the examples are. A fragment is a part of the module that describes the stripe.
  enum class EXAMPLE { NONE, FILE, FRAGMENT, COMMAND };

  int number;  // 0 for a finding of the tool's own.
  const char* key;
  const char* title;
  const char* meaning;
  const char* mend;
  EXAMPLE example;
  const char* faulty;  // Lines, each with its line end; null for EXAMPLE::NONE.
  const char* mended;
  SEVERITY severity = SEVERITY::ERROR;
};

// By number, those of the tool at the end.
const std::vector<MESSAGE_HELP>& list_messages();

int greatest_message_number();

// By number, or by key in any letter case, which may lack what its kind begins with, such as
// "ESBD_" or "ESBD_SBD_". Null when there is no such message.
const MESSAGE_HELP* find_message(std::string_view topic);

}  // namespace sbd_tool

#endif
