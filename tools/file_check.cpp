#include "tools/file_check.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "tools/advice.h"
#include "tools/device_view.h"
#include "tools/lookup.h"
#include "tools/near_names.h"
#include "tools/stripe_contents.h"
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
    for (FINDING& finding : advice) {
      if (is_disabled(finding)) continue;
      if (const std::string* const reason = m_waivers.find_reason(finding)) {
        finding.waiver = *reason;
        m_findings.waived.push_back(std::move(finding));
      } else {
        add(std::move(finding));
      }
    }
  }

  // To be called when all advice has been added.
  void add_waiver_faults() {
    std::vector<FINDING> faults = m_waivers.list_faults();
    // Of a device that was left out, or is another one now, nobody knows what there is to waive.
    if (m_options.devices.empty() && m_options.chip.empty()) {
      std::vector<FINDING> idle = m_waivers.list_idle(m_options.disabled);
      std::move(idle.begin(), idle.end(), std::back_inserter(faults));
    }
    std::stable_sort(faults.begin(), faults.end(), [](const FINDING& a, const FINDING& b) {
      return a.place->offset < b.place->offset;
    });
    for (FINDING& finding : faults) {
      if (!is_disabled(finding)) add(std::move(finding));
    }
  }

 private:
  bool is_disabled(const FINDING& finding) const {
    const auto& disabled = m_options.disabled;
    return std::find(disabled.begin(), disabled.end(), finding.key) != disabled.end();
  }

  void add(FINDING finding) {
    if (finding.severity == SEVERITY::INFO && !m_options.has_infos) {
      ++m_findings.hidden_count;
    } else {
      m_findings.add(std::move(finding), m_options.finding_limit);
    }
  }

  WAIVERS m_waivers;
  const CHECK_OPTIONS& m_options;
  FINDINGS& m_findings;
};

class DEVICE_CHECK {
 public:
  // `advice` is null where none is wanted.
  DEVICE_CHECK(DESCRIPTOR& descriptor, const CHECK_OPTIONS& options, ADVICE_FILTER* advice)
      : m_descriptor(descriptor),
        m_document(descriptor.document),
        m_options(options),
        m_advice(advice) {}

  DEVICE_RESULT check(const std::string& name) {
    DEVICE_RESULT device;
    device.name = name;
    if (!m_options.chip.empty()) change_chip(device);
    const std::size_t findings_before = m_descriptor.findings.count();
    const std::size_t kept_before = m_descriptor.findings.list.size();
    if (open_device(m_descriptor, name, m_options.finding_limit)) {
      device.parameter_count = count_parameters(m_document);
      if (m_advice != nullptr) advise(device, kept_before);
    }
    device.chip = get_chip();
    device.finding_count = m_descriptor.findings.count() - findings_before;
    return device;
  }

 private:
  std::string get_chip() const {
    SBD_STRING chip;
    return m_document.get_chip_type_name(chip) ? std::string(chip) : std::string();
  }

  void advise(const DEVICE_RESULT& device, std::size_t kept_before) {
    std::vector<FINDING> advice = give_advice(m_document);
    for (const FINDING& finding : advice) propose_for_missing(finding, kept_before);
    m_advice->add_all(std::move(advice));
    if (device.own_chip.empty()) return;
    m_advice->add_all(list_changes(m_document, m_parameters_before, device.own_chip));
  }

  // A parameter that is missing may be there under a misspelled name.
  void propose_for_missing(const FINDING& misspelled, std::size_t kept_before) {
    if (misspelled.parameter.empty() || misspelled.replacement.empty()) return;
    const std::string_view block = block_of(misspelled.parameter);
    std::string meant(block);
    meant.append(block.empty() ? "" : ".").append(misspelled.replacement);
    std::vector<FINDING>& kept = m_descriptor.findings.list;
    for (std::size_t i = kept_before; i != kept.size(); ++i) {
      FINDING& finding = kept[i];
      if (!equal_ignoring_case(finding.parameter, meant)) continue;
      finding.mend = fmt::format("is it {} in line {}?", quote_name(last_of(misspelled.parameter)),
                                 misspelled.place ? misspelled.place->line : 0);
    }
  }

  // What is wrong with its own chip is not what was asked for.
  void change_chip(DEVICE_RESULT& device) {
    FINDINGS findings;
    const FINDING_COLLECTOR collector(m_document, 1, findings);
    m_document.select_device(device.name.c_str());
    const std::string own_chip = get_chip();
    if (own_chip == m_options.chip) return;
    device.own_chip = own_chip;
    m_parameters_before = list_parameters(m_document);
    assume_chip(m_document, device.name, m_options.chip);
  }

  DESCRIPTOR& m_descriptor;
  SBD_VELDRAN& m_document;
  const CHECK_OPTIONS& m_options;
  ADVICE_FILTER* m_advice;
  std::vector<PARAMETER_VIEW> m_parameters_before;
};

std::vector<std::string> choose_devices(const DESCRIPTOR& descriptor,
                                        const CHECK_OPTIONS& options) {
  return options.devices.empty() ? list_devices(descriptor.document) : options.devices;
}

std::vector<DEVICE_RESULT> check_devices(DESCRIPTOR& descriptor, const CHECK_OPTIONS& options) {
  std::vector<DEVICE_RESULT> devices;
  std::optional<ADVICE_FILTER> advice;
  if (options.has_advice) advice.emplace(descriptor.document, options, descriptor.findings);
  for (const std::string& name : choose_devices(descriptor, options)) {
    DEVICE_CHECK device(descriptor, options, advice ? &*advice : nullptr);
    devices.push_back(device.check(name));
  }
  if (advice) advice->add_waiver_faults();
  return devices;
}

std::vector<CHIP_MATRIX> make_matrices(DESCRIPTOR& descriptor, const CHECK_OPTIONS& options) {
  std::vector<CHIP_MATRIX> matrices;
  for (const std::string& name : choose_devices(descriptor, options)) {
    const auto matrix = make_chip_matrix(descriptor, name, options.finding_limit);
    if (matrix != nullptr) matrices.push_back(std::move(*matrix));
  }
  return matrices;
}

}  // namespace

CHECKED_FILE check_descriptor(DESCRIPTOR& descriptor, const CHECK_OPTIONS& options) {
  CHECKED_FILE file;
  file.has_good_format = descriptor.outcome == EXIT_FINE;
  if (file.has_good_format && options.is_for_all_chips) {
    file.matrices = make_matrices(descriptor, options);
  } else if (file.has_good_format && !options.is_format_only) {
    file.devices = check_devices(descriptor, options);
  }
  file.findings = std::move(descriptor.findings);
  file.outcome = descriptor.outcome;
  if (options.do_warnings_count && file.findings.warning_count != 0) {
    file.outcome = worse_of(file.outcome, EXIT_FAULTS);
  }
  return file;
}

CHECKED_FILE check_file(const std::string& path, const CHECK_OPTIONS& options) {
  const auto descriptor = read_descriptor(path, options.finding_limit);
  CHECKED_FILE file = check_descriptor(*descriptor, options);
  file.name = std::move(descriptor->name);
  if (!file.findings.empty() || !file.findings.waived.empty()) {
    file.source = std::move(descriptor->source);
  }
  return file;
}

}  // namespace sbd_tool
