#include "tools/session.h"

#include <string>

namespace sbd_tool {

void SESSION::complain(std::string_view text) {
  m_out.flush();
  // Written at once, so that lines of several processes do not mix.
  m_err.write(std::string("sbd: ").append(text).append("\n"));
}

void SESSION::complain(std::string_view text, EXIT_CODE code) {
  note(code);
  complain(text);
}

}  // namespace sbd_tool
