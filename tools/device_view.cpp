#include "tools/device_view.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

#include "sbd/msg_sbd.h"
#include "tools/fault_cause.h"
#include "tools/names.h"
#include "tools/notation.h"
#include "tools/parameter_kind.h"
#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

constexpr std::size_t k_most_names = 20;

const NODE* find_device(const SBD_VELDRAN& device) {
  return find_node(device, std::string(device.get_device_name()), nullptr);
}

// A finding of the tool's own about the device block.
FINDING make_device_finding(const SBD_VELDRAN& device, SEVERITY severity, const char* key,
                            std::string text) {
  FINDING finding;
  finding.severity = severity;
  finding.key = key;
  finding.text = std::move(text);
  SOURCE_RANGE place;
  if (device.get_name_range(find_device(device), place)) finding.place = place;
  return finding;
}

FINDING make_no_rules_finding(const SBD_VELDRAN& device) {
  SBD_STRING chip;
  device.get_chip_type_name(chip);
  FINDING finding = make_device_finding(
      device, SEVERITY::ERROR, k_no_rules_key,
      fmt::format("Device block \"{}\" can't be validated: there are no parameter rules for the "
                  "MIPS-based chip {}",
                  device.get_device_name().c_str(), chip.c_str()));
  finding.note = "the format is fine; --format-only checks nothing else";
  return finding;
}

FINDING make_no_stripe_finding(const SBD_VELDRAN& device) {
  FINDING finding = make_device_finding(
      device, SEVERITY::WARNING, k_no_stripe_key,
      fmt::format("Device block \"{}\" has no module block of type veldran_stripe, so it has no "
                  "parameters",
                  device.get_device_name().c_str()));
  finding.note = "the module that describes the stripe states: type = veldran_stripe;";
  return finding;
}

// A device block that does not exist is best told by those that do.
std::string name_other_devices(const SBD_VELDRAN& device) {
  const std::vector<std::string> names = list_devices(device);
  return names.empty() ? "the file has no device block"
                       : "device blocks of the file: " + join_device_names(names);
}

// A file without blocks is good to the library, whatever device is asked for. Who names one wants
// it to be there.
void post_no_device(const std::string& name) {
  const std::string reason = fmt::format("No device block '{}' is defined.", name);
  SBD_FILE_PARSER::post_message(MSG_SBD::E::SBD_VEL_DEVICE_ERROR(reason.c_str()));
}

// What helps with a message about the device block.
struct DEVICE_NOTE {
  const char* key;
  const char* note;
};
constexpr std::array<DEVICE_NOTE, 4> k_device_notes = {
    {{"ESBD_SBD_VEL_DEVICE_ERROR",
      "types of family veldran_arm: qmxa1, qmxa4, qmxa10; of veldran_mips: qmxm1, qmxm4, qmxm10"},
     {"ESBD_UNSUPPORTED_FAMILY_ERROR", "families: veldran_arm, veldran_mips"},
     {"ESBD_FAMILY_NOT_DEFINED_ERROR", "families: veldran_arm, veldran_mips"},
     {"ESBD_SBD_VEL_MODULE_ERROR", "parameters are checked once a single one is left"}}};

std::string_view find_device_note(std::string_view key) {
  for (const DEVICE_NOTE& row : k_device_notes) {
    if (row.key == key) return row.note;
  }
  return {};
}

void explain(const SBD_VELDRAN& device, FINDING& finding) {
  finding.device = device.get_device_name();
  if (!device.get_parameter_faults().empty()) {
    finding.parameter = device.get_parameter_faults().back().reference;
    explain_fault(device, finding);
  } else {
    const bool has_device = find_device(device) != nullptr;
    finding.note = has_device ? find_device_note(finding.key) : name_other_devices(device);
  }
}

PARAMETER_VIEW::FAULT find_fault(const SBD_VELDRAN& device, const SBD_STRING& reference) {
  for (const SBD_PARAMETER_FAULT& fault : device.get_parameter_faults()) {
    if (fault.reference != reference) continue;
    return fault.is_missing ? PARAMETER_VIEW::FAULT::MISSING : PARAMETER_VIEW::FAULT::INVALID;
  }
  return PARAMETER_VIEW::FAULT::NONE;
}

std::string make_written(const SBD_FILE_PARSER& document, const NODE& statement) {
  const bool is_assignment = statement.statement->type == STATEMENT::ST_ASSIGNMENT;
  return is_assignment ? get_notation(document, *statement.statement->value)
                       : std::string(get_written(document, statement));
}

}  // namespace

std::vector<std::string> list_devices(const SBD_FILE_PARSER& document) {
  std::vector<std::string> names;
  for (const NODE* node = document.get_parser_para().root; node != nullptr; node = node->next) {
    const bool is_device = node->type == NODE::NT_BLOCK &&
                           node->block->block_type == SBD_FILE_PARSER::SBD_BLOCK::BT_DEVICE;
    if (is_device) names.emplace_back(declared_name(*node));
  }
  return names;
}

std::string join_device_names(const std::vector<std::string>& names) {
  std::string text;
  for (std::size_t i = 0; i != std::min(names.size(), k_most_names); ++i) {
    text.append(text.empty() ? "" : ", ").append(names[i]);
  }
  if (names.size() > k_most_names) {
    text += fmt::format(" and {} more", names.size() - k_most_names);
  }
  return text;
}

bool open_device(DESCRIPTOR& descriptor, const std::string& name, std::size_t finding_limit) {
  SBD_VELDRAN& device = descriptor.document;
  FINDINGS& findings = descriptor.findings;
  const std::size_t error_count = findings.error_count;
  const FINDING_COLLECTOR collector(device, finding_limit, findings,
                                    [&device](FINDING& finding) { explain(device, finding); });
  const bool is_good = device.select_device(name.c_str());
  const bool has_parameters = device.get_parameter_reader() != nullptr;
  if (is_good && find_device(device) == nullptr) post_no_device(name);
  if (!has_parameters && findings.error_count == error_count) {
    FINDING finding = is_good ? make_no_stripe_finding(device) : make_no_rules_finding(device);
    finding.device = name;
    findings.add(std::move(finding), finding_limit);
  }
  if (!is_good || findings.error_count != error_count) {
    descriptor.outcome = worse_of(descriptor.outcome, EXIT_FAULTS);
  }
  return has_parameters;
}

std::string device_title(const DESCRIPTOR& descriptor) {
  constexpr std::size_t k_widest_name = 40;
  const std::string_view name = descriptor.document.get_device_name();
  SBD_STRING chip;
  descriptor.document.get_chip_type_name(chip);
  return fmt::format("{} ({})", make_visible(name, k_widest_name), make_visible(chip));
}

std::vector<PARAMETER_VIEW> list_parameters(const SBD_VELDRAN& device) {
  std::vector<PARAMETER_VIEW> views;
  SBD_STRING_LIST names;
  sbd_get_parameter_names(device.get_chip_type(), names);
  for (const SBD_STRING& name : names) views.push_back(view_parameter(device, std::string(name)));
  return views;
}

PARAMETER_VIEW view_parameter(const SBD_VELDRAN& device, const std::string& name) {
  PARAMETER_VIEW view;
  SBD_PARAMETER_RULE rule;
  SBD_PARAMETER_STATE state;
  if (!sbd_get_parameter_rule(device.get_chip_type(), name.c_str(), rule)) return view;
  if (!sbd_get_parameter_state(device, name.c_str(), state)) return view;
  view.name = rule.reference;
  view.value = state.value;
  SBD_STRING text;
  if (sbd_get_value_text(state.value, text)) view.text = text;
  view.origin = state.origin;
  view.is_required = state.is_required;
  view.fault = find_fault(device, rule.reference);
  view.statement = state.statement;
  if (state.statement != nullptr) {
    view.place = place_of(device, state.statement);
    view.written = make_written(device, *state.statement);
  }
  return view;
}

std::string_view name_of(SBD_PARAMETER_ORIGIN origin) {
  switch (origin) {
    case PO_STATEMENT:
      return "file";
    case PO_PRESENT_BLOCK_DEFAULT:
      return "default";
    case PO_ABSENT_BLOCK_DEFAULT:
      return "absent block";
    case PO_NONE:
      break;
  }
  return "none";
}

std::string_view name_of(PARAMETER_VALUE::VALUE_TYPE type) {
  switch (type) {
    case PARAMETER_VALUE::BOOL_VALUE:
      return "boolean";
    case PARAMETER_VALUE::DWORD_VALUE:
      return "integer";
    case PARAMETER_VALUE::DOUBLE_VALUE:
      return "number";
    case PARAMETER_VALUE::STRING_VALUE:
      break;
  }
  return "text";
}

std::string_view name_of(PARAMETER_VIEW::FAULT fault) {
  switch (fault) {
    case PARAMETER_VIEW::FAULT::MISSING:
      return "missing";
    case PARAMETER_VIEW::FAULT::INVALID:
      return "invalid";
    case PARAMETER_VIEW::FAULT::NONE:
      break;
  }
  return "";
}

std::optional<SOURCE_RANGE> place_of(const SBD_FILE_PARSER& document, const NODE* node) {
  SOURCE_RANGE place;
  if (node == nullptr || !document.get_range(node, place)) return std::nullopt;
  return place;
}

}  // namespace sbd_tool
