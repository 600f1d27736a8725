#include "tools/file_check.h"

#include <utility>

#include "tools/device_view.h"

namespace sbd_tool {

namespace {

std::size_t count_parameters(const SBD_VELDRAN& device) {
  SBD_STRING_LIST parameters;
  sbd_get_parameter_names(device.get_chip_type(), parameters);
  return parameters.size();
}

DEVICE_RESULT check_device(DESCRIPTOR& descriptor, const std::string& name,
                           const CHECK_OPTIONS& options) {
  DEVICE_RESULT device;
  device.name = name;
  const std::size_t findings_before = descriptor.findings.count();
  if (open_device(descriptor, name, options.finding_limit)) {
    device.parameter_count = count_parameters(descriptor.document);
  }
  SBD_STRING chip;
  if (descriptor.document.get_chip_type_name(chip)) device.chip = chip;
  device.finding_count = descriptor.findings.count() - findings_before;
  return device;
}

}  // namespace

CHECKED_FILE check_file(const std::string& path, const CHECK_OPTIONS& options) {
  const auto descriptor = read_descriptor(path, options.finding_limit);
  CHECKED_FILE file;
  file.has_good_format = descriptor->outcome == EXIT_FINE;
  if (file.has_good_format && !options.is_format_only) {
    const bool is_each = options.devices.empty();
    for (const std::string& name : is_each ? list_devices(descriptor->document) : options.devices) {
      file.devices.push_back(check_device(*descriptor, name, options));
    }
  }
  file.name = std::move(descriptor->name);
  file.findings = std::move(descriptor->findings);
  file.outcome = descriptor->outcome;
  if (!file.findings.empty() || !file.findings.waived.empty()) {
    file.source = std::move(descriptor->source);
  }
  return file;
}

}  // namespace sbd_tool
