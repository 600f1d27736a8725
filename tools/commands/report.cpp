// sbd report: writes a page about a descriptor.
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "tools/commands/command.h"
#include "tools/commands/options.h"
#include "tools/device_view.h"
#include "tools/file_check.h"
#include "tools/finding_printer.h"
#include "tools/html_report.h"
#include "tools/input.h"
#include "tools/json_tree.h"
#include "tools/text_file.h"

namespace sbd_tool {

namespace {

using LAYOUT = JSON_WRITER::LAYOUT;

constexpr char k_footer[] =
    "Writes one HTML page that loads nothing: summary, findings, and for each device the memory\n"
    "map, the clocks and all parameters with the origin of their values. The exit code is 1 if\n"
    "there are findings of errors; the page is written all the same.\n"
    "\n"
    "Examples:\n"
    "  sbd report board.sbd -o report.html\n"
    "  generate_board | sbd report - > report.html";

bool is_same_file(const std::string& a, const std::string& b) {
  std::error_code error;
  return std::filesystem::equivalent(a, b, error) && !error;
}

class REPORT_COMMAND : public COMMAND {
 public:
  COMMAND_SYNTAX declare(const COMMAND_SYNTAX& tool) override {
    const COMMAND_SYNTAX command = tool.add_command("report", "Write a page about a descriptor");
    add_file(command, m_file);
    command.add_option("-o,--output", "OUT", m_output,
                       "Write the page there; without it, or for \"-\", to standard output");
    command.add_flag("--json", m_is_json, "Print JSON that says what was written; needs --output");
    add_color(command, m_colors);
    command.set_footer(k_footer);
    return command;
  }

  void run(SESSION& session) override {
    const bool is_file = !m_output.empty() && m_output != k_standard_input;
    if (m_is_json && !is_file) {
      session.complain("--json needs a file to write the page to (see sbd report --help)",
                       EXIT_UNUSABLE);
      return;
    }
    const auto descriptor = read_descriptor(m_file, k_default_finding_limit);
    if (descriptor->outcome == EXIT_UNUSABLE) {
      print_findings(session.err(), make_painter(m_colors, session.err()), descriptor->name,
                     descriptor->source, descriptor->findings);
      session.note(EXIT_UNUSABLE);
      return;
    }
    if (is_file && is_same_file(m_file, m_output)) {
      session.complain("the page would replace the descriptor", EXIT_UNUSABLE);
      return;
    }
    CHECKED_FILE checked = check_descriptor(*descriptor, {});
    descriptor->findings = std::move(checked.findings);
    std::vector<std::string> devices;
    if (checked.has_good_format) devices = list_devices(descriptor->document);
    session.note(checked.outcome);
    write(session, *descriptor, devices, is_file);
  }

 private:
  void write(SESSION& session, DESCRIPTOR& descriptor, const std::vector<std::string>& devices,
             bool is_file) const {
    const std::string page = make_html_report(descriptor, devices);
    if (!is_file) {
      session.out().write(page);
      return;
    }
    if (save(session, page) && m_is_json) print_json(session.out(), descriptor, devices);
  }

  bool save(SESSION& session, const std::string& page) const {
    return write_text_file(session, m_output, page, PRESENT_FILE::IS_REPLACED);
  }

  void print_json(OUTPUT& output, const DESCRIPTOR& descriptor,
                  const std::vector<std::string>& devices) const {
    JSON_WRITER json(output);
    json.begin_object(LAYOUT::LINES);
    json.key("version");
    json.count(k_json_version);
    json.key("file");
    json.text(descriptor.name);
    json.key("written");
    json.text(m_output);
    json.key("errors");
    json.count(descriptor.findings.error_count);
    json.key("warnings");
    json.count(descriptor.findings.warning_count);
    json.key("devices");
    json.begin_array(LAYOUT::ONE_LINE);
    for (const std::string& device : devices) json.text(device);
    json.end();
    json.end();
    json.finish();
  }

  std::string m_file;
  std::string m_output;
  bool m_is_json = false;
  COLOR_CHOICE m_colors = COLOR_CHOICE::AUTO;
};

}  // namespace

std::unique_ptr<COMMAND> make_report_command() {
  return std::make_unique<REPORT_COMMAND>();
}

}  // namespace sbd_tool
