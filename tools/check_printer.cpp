#include "tools/check_printer.h"

#include "tools/finding_printer.h"

namespace sbd_tool {

namespace {

class TEXT_PRINTER : public CHECK_PRINTER {
 public:
  TEXT_PRINTER(OUTPUT& output, const PAINTER& painter) : m_output(output), m_painter(painter) {}

  void print(const CHECKED_FILE& file) override {
    print_findings(m_output, m_painter, file.name, file.source, file.findings);
  }

 private:
  OUTPUT& m_output;
  PAINTER m_painter;
};

}  // namespace

void CHECK_TOTALS::add(const FINDINGS& findings) {
  ++files;
  errors += findings.error_count;
  warnings += findings.warning_count;
  infos += findings.info_count;
  hidden += findings.hidden_count;
  if (!findings.empty()) ++files_with_findings;
}

std::unique_ptr<CHECK_PRINTER> make_text_printer(OUTPUT& output, const PAINTER& painter) {
  return std::make_unique<TEXT_PRINTER>(output, painter);
}

}  // namespace sbd_tool
