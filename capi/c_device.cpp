// Devices: reading, parameters, clocks.
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "capi/c_findings.h"
#include "capi/c_listing.h"
#include "capi/sbd_c.h"
#include "sbd/sbd_parameter_rules.h"
#include "sbd/sbd_veldran.h"

using sbd_c::FINDINGS;
using sbd_c::guarded;
using sbd_c::RECORDER;
using PARAMETER_VALUE = SBD_PARAMETER_READER::SBD_PARAMETER_VALUE;

struct sbdc_device {
  explicit sbdc_device(const char* name) : veldran(name) {}

  SBD_VELDRAN veldran;
  FINDINGS findings;
  std::string chip;
  std::string module;
  std::vector<sbdc_parameter> parameters;
  std::vector<std::size_t> by_name;  // Places in `parameters`, in the order of the names.
  sbd_c::TEXT_ARENA texts;
};

namespace {

constexpr int k_file_error = 1;

static_assert(SBDC_TYPE_BOOL == int{PARAMETER_VALUE::BOOL_VALUE} &&
              SBDC_TYPE_INTEGER == int{PARAMETER_VALUE::DWORD_VALUE} &&
              SBDC_TYPE_FLOAT == int{PARAMETER_VALUE::DOUBLE_VALUE} &&
              SBDC_TYPE_TEXT == int{PARAMETER_VALUE::STRING_VALUE});
static_assert(SBDC_NO_ORIGIN == int{PO_NONE} && SBDC_STATED == int{PO_STATEMENT} &&
              SBDC_PRESENT_BLOCK_DEFAULT == int{PO_PRESENT_BLOCK_DEFAULT} &&
              SBDC_ABSENT_BLOCK_DEFAULT == int{PO_ABSENT_BLOCK_DEFAULT});

double number_of(const PARAMETER_VALUE& value) {
  switch (value.m_value_type) {
    case PARAMETER_VALUE::BOOL_VALUE:
      return value.m_bool_value ? 1 : 0;
    case PARAMETER_VALUE::DWORD_VALUE:
      return value.m_dword_value;
    case PARAMETER_VALUE::DOUBLE_VALUE:
      return value.m_double_value;
    case PARAMETER_VALUE::STRING_VALUE:
      break;
  }
  return 0;
}

const char* copy_allowed(sbdc_device& device, const char* reference) {
  SBD_PARAMETER_RULE rule;
  SBD_STRING text;
  const bool is_known = sbd_get_parameter_rule(device.veldran.get_chip_type(), reference, rule) &&
                        sbd_get_values_text(rule, text);
  return is_known ? device.texts.copy(text) : "";
}

void add_parameter(sbdc_device& device, const SBD_STRING& reference) {
  SBD_PARAMETER_STATE state;
  if (!sbd_get_parameter_state(device.veldran, reference.c_str(), state)) return;

  sbdc_parameter parameter{};
  parameter.name = device.texts.copy(reference);
  parameter.type = static_cast<sbdc_parameter_type>(state.value.m_value_type);
  parameter.origin = static_cast<sbdc_origin>(state.origin);
  // A text always counts as having a value; without any origin it has none that is worth the name.
  parameter.has_value = state.value.m_has_value && state.origin != PO_NONE ? 1 : 0;
  parameter.is_required = state.is_required ? 1 : 0;
  parameter.number = parameter.has_value != 0 ? number_of(state.value) : 0;
  parameter.text = device.texts.copy(state.value.m_string_value);
  parameter.allowed = copy_allowed(device, reference.c_str());
  SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
  if (device.veldran.get_range(state.statement, range)) {
    parameter.position = sbd_c::to_position(range);
  }
  device.parameters.push_back(parameter);
}

void sort_names(sbdc_device& device) {
  const auto& parameters = device.parameters;
  device.by_name.resize(parameters.size());
  for (std::size_t i = 0; i < parameters.size(); i++) device.by_name[i] = i;
  std::sort(device.by_name.begin(), device.by_name.end(),
            [&parameters](std::size_t left, std::size_t right) {
              return std::string_view(parameters[left].name) < parameters[right].name;
            });
}

void forget(sbdc_device& device) {
  device.findings.clear();
  device.chip.clear();
  device.module.clear();
  device.parameters.clear();
  device.by_name.clear();
  device.texts = sbd_c::TEXT_ARENA();
}

// What is asked for later is found out at once, so that questions change nothing.
void take_settings(sbdc_device& device) {
  if (device.veldran.get_device_name().empty()) return;
  SBD_STRING chip;
  if (device.veldran.get_chip_type_name(chip)) device.chip = chip;
  if (device.veldran.get_parameter_reader() == nullptr) return;

  device.module = device.veldran.get_parameter_reader()->get_module_name();
  SBD_STRING_LIST references;
  sbd_get_parameter_names(device.veldran.get_chip_type(), references);
  for (const SBD_STRING& reference : references) add_parameter(device, reference);
  sort_names(device);
}

template <class READ>
sbdc_status read_into(sbdc_device* device, READ&& read) noexcept {
  const sbdc_status status = guarded([&] {
    forget(*device);
    const RECORDER recorder(device->findings, &device->veldran, &device->veldran);
    const bool is_good = read(device->veldran);
    const bool is_unreadable = !is_good && recorder.has_seen(k_file_error);
    if (!is_unreadable) take_settings(*device);
    if (!is_good && device->findings.size() == 0) {
      device->findings.add_error("There are no rules for the chip '" + device->chip + "'.");
    }
    if (is_good) return recorder.judge(SBDC_OK);
    return recorder.judge(is_unreadable ? SBDC_UNREADABLE : SBDC_FAULTY);
  });
  return status;
}

std::string to_lower_case(const char* name) {
  std::string lower = name;
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

}  // namespace

// ---- Life and reading --------------------------------------------------------------------------

sbdc_status sbdc_device_new(const char* device_name, sbdc_device** device) {
  if (device_name == nullptr || *device_name == '\0' || device == nullptr) return SBDC_MISUSE;
  return guarded([=] {
    FINDINGS findings;
    const RECORDER recorder(findings, nullptr, nullptr);
    auto made = std::make_unique<sbdc_device>(device_name);
    const sbdc_status status = recorder.judge(SBDC_OK);
    if (status == SBDC_OK) *device = made.release();
    return status;
  });
}

void sbdc_device_free(sbdc_device* device) {
  delete device;
}

sbdc_status sbdc_device_read(sbdc_device* device, const char* path) {
  if (device == nullptr || path == nullptr) return SBDC_MISUSE;
  return read_into(device, [path](SBD_VELDRAN& veldran) { return veldran.read(path); });
}

sbdc_status sbdc_device_read_text(sbdc_device* device, const char* text, size_t length,
                                  const char* name) {
  if (device == nullptr || text == nullptr || name == nullptr) return SBDC_MISUSE;
  return read_into(device, [text, length, name](SBD_VELDRAN& veldran) {
    return veldran.read_text(text, length, name);
  });
}

size_t sbdc_device_finding_count(const sbdc_device* device) {
  return device == nullptr ? 0 : device->findings.size();
}

size_t sbdc_device_omitted_finding_count(const sbdc_device* device) {
  return device == nullptr ? 0 : device->findings.omitted();
}

const sbdc_finding* sbdc_device_finding_at(const sbdc_device* device, size_t index) {
  return device == nullptr ? nullptr : device->findings.at(index);
}

// ---- Settings ----------------------------------------------------------------------------------

const char* sbdc_device_chip(const sbdc_device* device) {
  return device == nullptr ? nullptr : device->chip.c_str();
}

const char* sbdc_device_module(const sbdc_device* device) {
  return device == nullptr ? nullptr : device->module.c_str();
}

size_t sbdc_device_parameter_count(const sbdc_device* device) {
  return device == nullptr ? 0 : device->parameters.size();
}

const sbdc_parameter* sbdc_device_parameter(const sbdc_device* device, size_t index) {
  if (device == nullptr || index >= device->parameters.size()) return nullptr;
  return &device->parameters[index];
}

const sbdc_parameter* sbdc_device_find_parameter(const sbdc_device* device, const char* name) {
  if (device == nullptr || name == nullptr) return nullptr;
  const sbdc_parameter* found = nullptr;
  guarded([device, name, &found] {
    const std::string wanted = to_lower_case(name);
    const auto& parameters = device->parameters;
    const auto place = std::lower_bound(device->by_name.begin(), device->by_name.end(), wanted,
                                        [&parameters](std::size_t index, const std::string& other) {
                                          return std::string_view(parameters[index].name) < other;
                                        });
    if (place != device->by_name.end() && wanted == parameters[*place].name) {
      found = &parameters[*place];
    }
    return SBDC_OK;
  });
  return found;
}

sbdc_status sbdc_device_clock(const sbdc_device* device, sbdc_clock clock, double* frequency) {
  if (device == nullptr || frequency == nullptr) return SBDC_MISUSE;
  if (clock != SBDC_AHB1 && clock != SBDC_AHB2 && clock != SBDC_SDRAM) return SBDC_MISUSE;
  return guarded([=] {
    if (device->veldran.get_parameter_reader() == nullptr) return SBDC_NOT_FOUND;
    FINDINGS findings;
    const RECORDER recorder(findings, nullptr, nullptr);
    double found = 0;
    const bool is_found = clock == SBDC_SDRAM
                              ? device->veldran.get_sdram_clock_frequency(found)
                              : device->veldran.get_ahb_clock_frequency(clock, found);
    // A divider of 0, which the rules refuse, gives what is no frequency.
    if (!is_found || !std::isfinite(found)) return recorder.judge(SBDC_NOT_FOUND);
    *frequency = found;
    return recorder.judge(SBDC_OK);
  });
}

sbdc_status sbdc_device_dpram_width(const sbdc_device* device, int port, uint32_t* width) {
  if (device == nullptr || width == nullptr) return SBDC_MISUSE;
  return guarded([=] {
    if (device->veldran.get_parameter_reader() == nullptr) return SBDC_NOT_FOUND;
    FINDINGS findings;
    const RECORDER recorder(findings, nullptr, nullptr);
    // A port that is not there leaves the number as it was.
    constexpr unsigned long k_none = std::numeric_limits<unsigned long>::max();
    unsigned long found = k_none;
    if (!device->veldran.get_dpram_data_width(port, found) || found == k_none) {
      return recorder.judge(SBDC_NOT_FOUND);
    }
    *width = static_cast<std::uint32_t>(found);
    return recorder.judge(SBDC_OK);
  });
}
