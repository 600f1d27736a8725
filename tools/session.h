// One run of the tool: where it writes to, and how it is going to end.
#ifndef TOOLS_SESSION_H
#define TOOLS_SESSION_H

#include <cstdio>
#include <string_view>

#include "tools/exit_code.h"
#include "tools/output.h"

namespace sbd_tool {

class SESSION {
 public:
  // Results.
  OUTPUT& out() { return m_out; }
  // What is said about the results. Nobody can be told when this fails, so that is ignored.
  OUTPUT& err() { return m_err; }

  // Prints "sbd: text" on standard error, behind all results so far.
  void complain(std::string_view text);
  // The same, and the program will end with `code` or a worse one.
  void complain(std::string_view text, EXIT_CODE code);

  void note(EXIT_CODE code) { m_exit_code = worse_of(m_exit_code, code); }
  EXIT_CODE exit_code() const { return m_exit_code; }

 private:
  OUTPUT m_out{stdout, OUTPUT::FAILURE::THROWS};
  OUTPUT m_err{stderr, OUTPUT::FAILURE::IS_IGNORED};
  EXIT_CODE m_exit_code = EXIT_FINE;
};

}  // namespace sbd_tool

#endif
