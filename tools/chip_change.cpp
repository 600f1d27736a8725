#include "tools/chip_change.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "sbd/sbd_veldran_keywords.h"
#include "tools/advice.h"
#include "tools/names.h"
#include "tools/parameter_help.h"
#include "tools/parameter_kind.h"

namespace sbd_tool {

namespace {

// The statement of a text in the device block; null for one that is missing or of another kind.
const NODE* find_text(const SBD_FILE_PARSER& document, const std::string& device,
                      const char* parameter) {
  const NODE* const node = find_node(document, device + "." + parameter, nullptr);
  const bool is_text = node != nullptr && node->type == NODE::NT_STATEMENT &&
                       kind_of_parameter(*node->statement) == PARAMETER_KIND::STRING;
  return is_text ? node : nullptr;
}

bool is_known_family(const NODE& family) {
  const std::string_view text = family.statement->value->text;
  return text == SBD_VEL_VELDRAN_ARM || text == SBD_VEL_VELDRAN_MIPS;
}

// Where a parameter stands, or would stand.
std::optional<SOURCE_RANGE> find_place(const SBD_VELDRAN& device, const std::string& parameter) {
  SBD_PARAMETER_STATE state;
  SOURCE_RANGE place;
  const bool has_block =
      sbd_get_parameter_state(device, parameter.c_str(), state) && state.block != nullptr;
  if (!has_block || !device.get_name_range(state.block, place)) return std::nullopt;
  return place;
}

// In lower case; empty if there is none.
std::string find_own_chip(SBD_VELDRAN& document, const std::string& device) {
  FINDINGS findings;  // They come again when the device is opened.
  const FINDING_COLLECTOR collector(document, 1, findings);
  document.select_device(device.c_str());
  SBD_STRING chip;
  return document.get_chip_type_name(chip) ? std::string(chip) : std::string();
}

CHIP_MATRIX::ROW& find_row(CHIP_MATRIX& matrix, const std::string& parameter) {
  for (CHIP_MATRIX::ROW& row : matrix.rows) {
    if (row.parameter == parameter) return row;
  }
  matrix.rows.push_back({parameter, std::vector<CHIP_MATRIX::FAULT>(matrix.chips.size())});
  return matrix.rows.back();
}

void take_faults(const SBD_VELDRAN& device, std::size_t chip, CHIP_MATRIX& matrix) {
  for (const SBD_PARAMETER_FAULT& fault : device.get_parameter_faults()) {
    CHIP_MATRIX::FAULT& cell = find_row(matrix, std::string(fault.reference)).faults[chip];
    if (cell == CHIP_MATRIX::FAULT::NONE) ++matrix.fault_counts[chip];
    cell = fault.is_missing ? CHIP_MATRIX::FAULT::MISSING : CHIP_MATRIX::FAULT::INVALID;
  }
}

}  // namespace

void assume_chip(SBD_VELDRAN& document, const std::string& device, const std::string& chip) {
  const NODE* const family = find_text(document, device, SBD_VEL_FAMILY);
  if (family != nullptr && is_known_family(*family)) {
    document.set_value(device.c_str(), SBD_VEL_FAMILY, SBD_STRING(SBD_VEL_VELDRAN_ARM));
  }
  if (find_text(document, device, SBD_VEL_TYPE) != nullptr) {
    document.set_value(device.c_str(), SBD_VEL_TYPE, SBD_STRING(chip));
  }
}

std::vector<FINDING> list_changes(const SBD_VELDRAN& device,
                                  const std::vector<PARAMETER_VIEW>& before,
                                  const std::string& chip_before) {
  std::vector<FINDING> changes;
  SBD_STRING chip;
  device.get_chip_type_name(chip);
  for (const PARAMETER_VIEW& old_view : before) {
    const PARAMETER_VIEW view = view_parameter(device, old_view.name);
    const bool is_changed = view.origin != PO_STATEMENT && view.text != old_view.text;
    const bool is_good =
        view.fault == PARAMETER_VIEW::FAULT::NONE && old_view.fault == PARAMETER_VIEW::FAULT::NONE;
    if (!is_changed || !is_good) continue;
    FINDING finding;
    finding.severity = SEVERITY::WARNING;
    finding.key = k_value_changes_key;
    finding.text = fmt::format("Parameter \"{}\" is {} on {}, but {} on {}", view.name, view.text,
                               chip.c_str(), old_view.text, chip_before);
    finding.note = "it is not stated, and the chips have different defaults";
    finding.place = find_place(device, view.name);
    finding.device = device.get_device_name();
    finding.parameter = view.name;
    changes.push_back(std::move(finding));
  }
  return changes;
}

std::unique_ptr<CHIP_MATRIX> make_chip_matrix(DESCRIPTOR& descriptor, const std::string& device,
                                              std::size_t finding_limit) {
  auto matrix = std::make_unique<CHIP_MATRIX>();
  matrix->device = device;
  matrix->chips = list_chips();
  matrix->fault_counts.assign(matrix->chips.size(), 0);
  matrix->own_chip = find_own_chip(descriptor.document, device);
  for (std::size_t chip = 0; chip != matrix->chips.size(); ++chip) {
    assume_chip(descriptor.document, device, matrix->chips[chip]);
    FINDINGS findings;
    std::swap(findings, descriptor.findings);
    const bool has_parameters = open_device(descriptor, device, finding_limit);
    std::swap(findings, descriptor.findings);
    if (!has_parameters) {
      for (FINDING& finding : findings.list) {
        descriptor.findings.add(std::move(finding), finding_limit);
      }
      return nullptr;
    }
    take_faults(descriptor.document, chip, *matrix);
  }
  return matrix;
}

}  // namespace sbd_tool
