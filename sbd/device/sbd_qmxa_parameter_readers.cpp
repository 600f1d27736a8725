// The hooks of family and chips: each finds the row of a parameter and asks what it says.
#include "sbd/device/sbd_rules.h"
#include "sbd/sbd_veldran_parameter_reader.h"

namespace {

bool has_bit_of(SBD_VELDRAN::CHIP_TYPE type, unsigned long device_mask) {
  const SBD_CHIP* const chip = sbd_chip(type);
  return chip != nullptr && (device_mask & chip->device_mask) != 0;
}

// False, and nothing written, when there is no rule.
bool apply(const SBD_VALUE_RULE* rule, const SBD_PARAMETER_READER& reader, bool& valid) {
  if (rule == nullptr) return false;
  valid = sbd_is_value_allowed(*rule, reader);
  return true;
}

const SBD_VALUE_RULE* chip_rule(SBD_VELDRAN::CHIP_TYPE type, std::string_view name) {
  const SBD_CHIP* const chip = sbd_chip(type);
  return chip != nullptr ? chip->value_rule(name) : nullptr;
}

}  // namespace

// ---- Family ----------------------------------------------------------------------------------

SBD_QMXA_BASE_PARAMETER_READER::SBD_QMXA_BASE_PARAMETER_READER(
    const SBD_VELDRAN& device, const SBD_STRING& module_name) noexcept
    : SBD_VELDRAN_PARAMETER_READER(device, module_name) {}

SBD_QMXA_BASE_PARAMETER_READER::~SBD_QMXA_BASE_PARAMETER_READER() = default;

bool SBD_QMXA_BASE_PARAMETER_READER::is_family_specific_parameter_required(const SBD_STRING& name,
                                                                           bool& required) const {
  const SBD_REQUIREMENT_RULE* const rule = sbd_family_requirement(name);
  if (rule == nullptr) return is_device_specific_parameter_required(name, required);
  required = sbd_holds(rule->condition, *this);
  return true;
}

bool SBD_QMXA_BASE_PARAMETER_READER::validate_family_specific_parameter(const SBD_STRING& name,
                                                                        bool& valid) const {
  return apply(sbd_family_value_rule(name), *this, valid) ||
         validate_device_specific_parameter(name, valid);
}

// ---- QMXA1 -----------------------------------------------------------------------------------

SBD_QMXA1_PARAMETER_READER::SBD_QMXA1_PARAMETER_READER(const SBD_VELDRAN& device,
                                                       const SBD_STRING& module_name) noexcept
    : SBD_QMXA_BASE_PARAMETER_READER(device, module_name) {}

SBD_QMXA1_PARAMETER_READER::~SBD_QMXA1_PARAMETER_READER() = default;

bool SBD_QMXA1_PARAMETER_READER::is_device_specific_parameter_required(const SBD_STRING&,
                                                                       bool&) const {
  return false;
}

bool SBD_QMXA1_PARAMETER_READER::validate_device_specific_parameter(const SBD_STRING& name,
                                                                    bool& valid) const {
  return apply(chip_rule(SBD_VELDRAN::CT_QMXA1, name), *this, valid);
}

bool SBD_QMXA1_PARAMETER_READER::is_for_this_device(unsigned long device_mask) const {
  return has_bit_of(SBD_VELDRAN::CT_QMXA1, device_mask);
}

// ---- QMXA4 -----------------------------------------------------------------------------------

SBD_QMXA4_PARAMETER_READER::SBD_QMXA4_PARAMETER_READER(const SBD_VELDRAN& device,
                                                       const SBD_STRING& module_name) noexcept
    : SBD_QMXA_BASE_PARAMETER_READER(device, module_name) {}

SBD_QMXA4_PARAMETER_READER::~SBD_QMXA4_PARAMETER_READER() = default;

bool SBD_QMXA4_PARAMETER_READER::is_device_specific_parameter_required(const SBD_STRING&,
                                                                       bool&) const {
  return false;
}

bool SBD_QMXA4_PARAMETER_READER::validate_device_specific_parameter(const SBD_STRING& name,
                                                                    bool& valid) const {
  return apply(chip_rule(SBD_VELDRAN::CT_QMXA4, name), *this, valid);
}

bool SBD_QMXA4_PARAMETER_READER::is_for_this_device(unsigned long device_mask) const {
  return has_bit_of(SBD_VELDRAN::CT_QMXA4, device_mask);
}

// ---- QMXA10 ----------------------------------------------------------------------------------

SBD_QMXA10_PARAMETER_READER::SBD_QMXA10_PARAMETER_READER(const SBD_VELDRAN& device,
                                                         const SBD_STRING& module_name) noexcept
    : SBD_QMXA_BASE_PARAMETER_READER(device, module_name) {}

SBD_QMXA10_PARAMETER_READER::~SBD_QMXA10_PARAMETER_READER() = default;

bool SBD_QMXA10_PARAMETER_READER::is_device_specific_parameter_required(const SBD_STRING&,
                                                                        bool&) const {
  return false;
}

bool SBD_QMXA10_PARAMETER_READER::validate_device_specific_parameter(const SBD_STRING& name,
                                                                     bool& valid) const {
  return apply(chip_rule(SBD_VELDRAN::CT_QMXA10, name), *this, valid);
}

bool SBD_QMXA10_PARAMETER_READER::is_for_this_device(unsigned long device_mask) const {
  return has_bit_of(SBD_VELDRAN::CT_QMXA10, device_mask);
}
