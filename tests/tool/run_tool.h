// Runs the program that the tests are about.
#ifndef TESTS_TOOL_RUN_TOOL_H
#define TESTS_TOOL_RUN_TOOL_H

#include <string>

struct TOOL_RUN {
  int exit_code = -1;  // 128 + the signal that ended it, as in a shell.
  std::string out;
  std::string err;
};

// Runs the shell script `script` in `folder`, where "sbd" is the built tool. Standard input is the
// folder's file "stdin" or, where there is none, empty.
TOOL_RUN run_script(const std::string& folder, const std::string& script);

// The same, on a terminal: standard output and standard error end up in `out` together.
TOOL_RUN run_script_on_terminal(const std::string& folder, const std::string& script);

// The content of a file; empty when there is none.
std::string read_file(const std::string& path);

#endif
