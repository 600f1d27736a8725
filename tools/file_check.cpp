#include "tools/file_check.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "tools/advice.h"
#include "tools/device_view.h"
#include "tools/waivers.h"

namespace sbd_tool {

namespace {

std::size_t count_parameters(const SBD_VELDRAN& device) {
  SBD_STRING_LIST parameters;
  sbd_get_parameter_names(device.get_chip_type(), parameters);
  return parameters.size();
}

// Adds advice to the findings of a file as far as it is wanted.
class ADVICE_FILTER {
 public:
  ADVICE_FILTER(const SBD_FILE_PARSER& document, const CHECK_OPTIONS& options, FINDINGS& findings)
      : m_waivers(document), m_options(options), m_findings(findings) {}

  void add_all(std::vector<FINDING> advice) {
    for (FINDING& finding : advice) add(std::move(finding));
  }

  // To be called when all advice has been added.
  void add_waiver_faults() {
    std::vector<FINDING> faults = m_waivers.list_faults();
    // Of a device that was left out, nobody knows what there is to waive.
    if (m_options.devices.empty()) {
      for (FINDING& idle : m_waivers.list_idle(m_options.disabled))
        faults.push_back(std::move(idle));
    }
    std::stable_sort(faults.begin(), faults.end(), [](const FINDING& a, const FINDING& b) {
      return a.place->offset < b.place->offset;
    });
    add_all(std::move(faults));
  }

 private:
  void add(FINDING finding) {
    const auto& disabled = m_options.disabled;
    if (std::find(disabled.begin(), disabled.end(), finding.key) != disabled.end()) return;
    if (const std::string* const reason = m_waivers.find_reason(finding)) {
      finding.waiver = *reason;
      m_findings.waived.push_back(std::move(finding));
    } else if (finding.severity == SEVERITY::INFO && !m_options.has_infos) {
      ++m_findings.hidden_count;
    } else {
      m_findings.add(std::move(finding), m_options.finding_limit);
    }
  }

  WAIVERS m_waivers;
  const CHECK_OPTIONS& m_options;
  FINDINGS& m_findings;
};

// `advice` is null where none is wanted.
DEVICE_RESULT check_device(DESCRIPTOR& descriptor, const std::string& name,
                           const CHECK_OPTIONS& options, ADVICE_FILTER* advice) {
  DEVICE_RESULT device;
  device.name = name;
  const std::size_t findings_before = descriptor.findings.count();
  if (open_device(descriptor, name, options.finding_limit)) {
    device.parameter_count = count_parameters(descriptor.document);
    if (advice != nullptr) advice->add_all(give_advice(descriptor.document));
  }
  SBD_STRING chip;
  if (descriptor.document.get_chip_type_name(chip)) device.chip = chip;
  device.finding_count = descriptor.findings.count() - findings_before;
  return device;
}

std::vector<DEVICE_RESULT> check_devices(DESCRIPTOR& descriptor, const CHECK_OPTIONS& options) {
  std::vector<DEVICE_RESULT> devices;
  std::optional<ADVICE_FILTER> advice;
  if (options.has_advice) advice.emplace(descriptor.document, options, descriptor.findings);
  const bool is_each = options.devices.empty();
  for (const std::string& name : is_each ? list_devices(descriptor.document) : options.devices) {
    devices.push_back(check_device(descriptor, name, options, advice ? &*advice : nullptr));
  }
  if (advice) advice->add_waiver_faults();
  return devices;
}

}  // namespace

CHECKED_FILE check_file(const std::string& path, const CHECK_OPTIONS& options) {
  const auto descriptor = read_descriptor(path, options.finding_limit);
  CHECKED_FILE file;
  file.has_good_format = descriptor->outcome == EXIT_FINE;
  if (file.has_good_format && !options.is_format_only) {
    file.devices = check_devices(*descriptor, options);
  }
  file.name = std::move(descriptor->name);
  file.findings = std::move(descriptor->findings);
  file.outcome = descriptor->outcome;
  if (options.do_warnings_count && file.findings.warning_count != 0) {
    file.outcome = worse_of(file.outcome, EXIT_FAULTS);
  }
  if (!file.findings.empty() || !file.findings.waived.empty()) {
    file.source = std::move(descriptor->source);
  }
  return file;
}

}  // namespace sbd_tool
