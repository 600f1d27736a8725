#include "tools/check_printer.h"
#include "tools/finding_json.h"
#include "tools/json_tree.h"
#include "tools/json_writer.h"

namespace sbd_tool {

namespace {

using LAYOUT = JSON_WRITER::LAYOUT;

class JSON_PRINTER : public CHECK_PRINTER {
 public:
  explicit JSON_PRINTER(OUTPUT& output) : m_json(output) {}

  void begin() override {
    m_json.begin_object(LAYOUT::LINES);
    m_json.key("version");
    m_json.count(k_json_version);
    m_json.key("files");
    m_json.begin_array(LAYOUT::LINES);
  }

  void print(const CHECKED_FILE& file) override {
    const FINDINGS& findings = file.findings;
    m_json.begin_object(LAYOUT::LINES);
    m_json.key("file");
    m_json.text(file.name);
    write_counts(findings.error_count, findings.warning_count, findings.info_count);
    m_json.key("waived");
    m_json.count(findings.waived.size());
    m_json.key("omitted");
    m_json.count(findings.omitted_count);
    m_json.key("devices");
    m_json.begin_array(LAYOUT::LINES);
    for (const DEVICE_RESULT& device : file.devices) write_device(device);
    m_json.end();
    m_json.key("findings");
    m_json.begin_array(LAYOUT::LINES);
    for (const FINDING& finding : findings.list) write_finding(m_json, finding);
    m_json.end();
    m_json.end();
  }

  void end(const CHECK_TOTALS& totals) override {
    m_json.end();
    write_counts(totals.errors, totals.warnings, totals.infos);
    m_json.end();
    m_json.finish();
  }

 private:
  void write_counts(std::size_t errors, std::size_t warnings, std::size_t infos) {
    m_json.key("errors");
    m_json.count(errors);
    m_json.key("warnings");
    m_json.count(warnings);
    m_json.key("infos");
    m_json.count(infos);
  }

  void write_device(const DEVICE_RESULT& device) {
    m_json.begin_object(LAYOUT::ONE_LINE);
    m_json.key("name");
    m_json.text(device.name);
    m_json.key("chip");
    m_json.text(device.chip);
    if (!device.own_chip.empty()) {
      m_json.key("own_chip");
      m_json.text(device.own_chip);
    }
    m_json.key("parameters");
    m_json.count(device.parameter_count);
    m_json.key("findings");
    m_json.count(device.finding_count);
    m_json.end();
  }

  JSON_WRITER m_json;
};

}  // namespace

std::unique_ptr<CHECK_PRINTER> make_json_printer(OUTPUT& output) {
  return std::make_unique<JSON_PRINTER>(output);
}

}  // namespace sbd_tool
