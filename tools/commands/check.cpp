// sbd check: says what is wrong with files.
#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tools/commands/command.h"
#include "tools/commands/options.h"
#include "tools/descriptor.h"
#include "tools/device_view.h"
#include "tools/finding_printer.h"
#include "tools/input.h"
#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

constexpr char k_examples[] =
    "Checks the format and then, by the rules of the chip, each device block, or the ones that\n"
    "--device names. Prints every finding with its place and its cause, and ends with exit code 1\n"
    "when there is an error.\n"
    "\n"
    "Examples:\n"
    "  sbd check board.sbd\n"
    "  sbd check --device io_board rack.sbd\n"
    "  sbd check --format-only fragments/*.sbd\n"
    "  sbd check -v boards/*.sbd\n"
    "  sbd check -q board.sbd && echo fine\n"
    "  generate_board | sbd check -";

std::string count_of(std::size_t count, std::string_view thing) {
  return fmt::format("{} {}{}", count, thing, count == 1 ? "" : "s");
}

// What was found in all files together.
struct TOTALS {
  std::size_t errors = 0;
  std::size_t warnings = 0;
  std::size_t files = 0;
  std::size_t files_with_findings = 0;

  void add(const FINDINGS& findings) {
    ++files;
    errors += findings.error_count;
    warnings += findings.warning_count;
    if (!findings.empty()) ++files_with_findings;
  }

  std::string summarize() const {
    if (files_with_findings == 0) return fmt::format("no errors in {}", count_of(files, "file"));
    std::string text = count_of(errors, "error");
    if (warnings != 0) text += " and " + count_of(warnings, "warning");
    return files == 1 ? text
                      : fmt::format("{} in {} of {} files", text, files_with_findings, files);
  }
};

class CHECK_COMMAND : public COMMAND {
 public:
  COMMAND_SYNTAX declare(const COMMAND_SYNTAX& tool) override {
    const COMMAND_SYNTAX command = tool.add_command("check", "Say what is wrong with files");
    command.add_positional("FILE", m_files, "Descriptor files; \"-\" is standard input").required();
    const OPTION_SYNTAX format_only = command.add_flag(
        "--format-only", m_is_format_only, "Do not look at what the format means to a device");
    command
        .add_option("--device", "NAME", m_devices, "Check this device block only; may be repeated")
        .excludes(format_only);
    const OPTION_SYNTAX quiet =
        command.add_flag("-q,--quiet", m_is_quiet, "Print nothing: the exit code says it all");
    command
        .add_flag("-v,--verbose", m_is_verbose,
                  "Say what was checked, and print a summary in any case")
        .excludes(quiet);
    command.add_count(
        "--max-findings", "N", "findings", m_finding_limit,
        fmt::format("Print so many findings of each file (0: all of them; default: {})",
                    k_default_finding_limit));
    add_color(command, m_colors);
    command.set_footer(k_examples);
    return command;
  }

  void run(SESSION& session) override {
    if (std::count(m_files.begin(), m_files.end(), k_standard_input) > 1) {
      session.complain("standard input can be read only once", EXIT_UNUSABLE);
      return;
    }
    TOTALS totals;
    for (const std::string& file : m_files) totals.add(check(session, file));
    print_summary(session, totals);
  }

 private:
  // A device that was checked.
  struct DEVICE_RESULT {
    std::string name;
    std::string chip;
    std::size_t parameter_count = 0;  // 0 when they could not be checked.
    std::size_t finding_count = 0;
  };

  FINDINGS check(SESSION& session, const std::string& file) {
    const auto descriptor = read_descriptor(file, m_finding_limit);
    const bool has_good_format = descriptor->outcome == EXIT_FINE;
    std::vector<DEVICE_RESULT> devices;
    if (has_good_format && !m_is_format_only) devices = check_devices(*descriptor);
    session.note(descriptor->outcome);
    if (!m_is_quiet) {
      print_findings(session.out(), make_painter(m_colors, session.out()), descriptor->name,
                     descriptor->source, descriptor->findings);
    }
    if (has_good_format) tell_devices(session, *descriptor, devices);
    return std::move(descriptor->findings);
  }

  std::vector<DEVICE_RESULT> check_devices(DESCRIPTOR& descriptor) const {
    std::vector<DEVICE_RESULT> devices;
    const bool is_each = m_devices.empty();
    for (const std::string& name : is_each ? list_devices(descriptor.document) : m_devices) {
      const std::size_t findings_before = descriptor.findings.count();
      DEVICE_RESULT device;
      device.name = name;
      if (open_device(descriptor, name, m_finding_limit)) {
        device.parameter_count = count_parameters(descriptor.document);
      }
      SBD_STRING chip;
      if (descriptor.document.get_chip_type_name(chip)) device.chip = chip;
      device.finding_count = descriptor.findings.count() - findings_before;
      devices.push_back(std::move(device));
    }
    return devices;
  }

  static std::size_t count_parameters(const SBD_VELDRAN& device) {
    SBD_STRING_LIST parameters;
    sbd_get_parameter_names(device.get_chip_type(), parameters);
    return parameters.size();
  }

  // What was looked at; without it nobody could tell a fine device from one that was passed over.
  void tell_devices(SESSION& session, const DESCRIPTOR& descriptor,
                    const std::vector<DEVICE_RESULT>& devices) const {
    const bool is_unclear = m_devices.empty() && devices.size() > 1 && !descriptor.findings.empty();
    if (m_is_quiet || !(m_is_verbose || is_unclear)) return;
    session.out().flush();
    const auto tell = [&session, &descriptor](const std::string& text) {
      session.err().write_line(make_visible(descriptor.name + ": " + text));
    };
    if (!m_is_verbose) {
      tell(summarize(devices));
      return;
    }
    for (const DEVICE_RESULT& device : devices) tell(describe(device));
    if (!devices.empty()) return;
    tell(m_is_format_only ? "only the format checked"
                          : "only the format checked, there is no device block");
  }

  static std::string describe(const DEVICE_RESULT& device) {
    const std::string chip = device.chip.empty() ? "" : fmt::format(" ({})", device.chip);
    const std::string parameters = device.parameter_count == 0
                                       ? "no parameters"
                                       : count_of(device.parameter_count, "parameter");
    const std::string findings =
        device.finding_count == 0 ? "fine" : count_of(device.finding_count, "finding");
    return fmt::format("device {}{}: {} checked, {}", device.name, chip, parameters, findings);
  }

  static std::string summarize(const std::vector<DEVICE_RESULT>& devices) {
    std::vector<std::string> fine;
    std::vector<std::string> faulty;
    for (const DEVICE_RESULT& device : devices) {
      (device.finding_count == 0 ? fine : faulty).push_back(device.name);
    }
    return fmt::format("devices with findings: {}; fine: {}", join_device_names(faulty),
                       fine.empty() ? "none" : join_device_names(fine));
  }

  void print_summary(SESSION& session, const TOTALS& totals) {
    const bool is_worth_saying = totals.files > 1 && totals.files_with_findings > 0;
    if (m_is_quiet || !(is_worth_saying || m_is_verbose)) return;
    session.out().flush();
    session.err().write_line(totals.summarize());
  }

  std::vector<std::string> m_files;
  std::vector<std::string> m_devices;
  bool m_is_format_only = false;
  std::size_t m_finding_limit = k_default_finding_limit;
  bool m_is_quiet = false;
  bool m_is_verbose = false;
  COLOR_CHOICE m_colors = COLOR_CHOICE::AUTO;
};

}  // namespace

std::unique_ptr<COMMAND> make_check_command() {
  return std::make_unique<CHECK_COMMAND>();
}

}  // namespace sbd_tool
