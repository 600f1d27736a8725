// The results of checking files, in the forms that people and programs read.
#ifndef TOOLS_CHECK_PRINTER_H
#define TOOLS_CHECK_PRINTER_H

#include <cstddef>
#include <memory>

#include "tools/file_check.h"
#include "tools/output.h"
#include "tools/terminal.h"

namespace sbd_tool {

// What was found in all files together.
struct CHECK_TOTALS {
  std::size_t errors = 0;
  std::size_t warnings = 0;
  std::size_t infos = 0;
  std::size_t hidden = 0;
  std::size_t files = 0;
  std::size_t files_with_findings = 0;

  void add(const FINDINGS& findings);
};

// Prints to the output that it was made for.
class CHECK_PRINTER {
 public:
  CHECK_PRINTER() = default;
  virtual ~CHECK_PRINTER() = default;
  CHECK_PRINTER(const CHECK_PRINTER&) = delete;
  CHECK_PRINTER& operator=(const CHECK_PRINTER&) = delete;

  // In this order: once, for each file, once.
  virtual void begin() {}
  virtual void print(const CHECKED_FILE& file) = 0;
  virtual void end(const CHECK_TOTALS&) {}
};

// For people, see print_findings.
std::unique_ptr<CHECK_PRINTER> make_text_printer(OUTPUT& output, const PAINTER& painter);
// The tool's own JSON; docs/tool.md describes it.
std::unique_ptr<CHECK_PRINTER> make_json_printer(OUTPUT& output);
// SARIF 2.1.0, the form of findings that code hosts and editors read.
std::unique_ptr<CHECK_PRINTER> make_sarif_printer(OUTPUT& output);
// Commands that make a GitHub workflow mark lines.
std::unique_ptr<CHECK_PRINTER> make_github_printer(OUTPUT& output);

// The chips that devices fit, and what they break on the others; as text and as JSON.
std::unique_ptr<CHECK_PRINTER> make_matrix_text_printer(OUTPUT& output, const PAINTER& painter);
std::unique_ptr<CHECK_PRINTER> make_matrix_json_printer(OUTPUT& output);

}  // namespace sbd_tool

#endif
