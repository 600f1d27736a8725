// The driver: walks the tables, reads and judges one parameter after the other.
#include "sbd/sbd_veldran_parameter_reader.h"

#include <utility>

#include "sbd/device/sbd_device_sources.h"
#include "sbd/device/sbd_parameter_place.h"
#include "sbd/device/sbd_row_names.h"
#include "sbd/device/sbd_rules.h"
#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/diagnostics/sbd_messages.h"
#include "sbd/parameter/sbd_parameter_store.h"
#include "sbd/sbd_veldran.h"

namespace {

using READER = SBD_VELDRAN_PARAMETER_READER;

// ---- One row of each table -------------------------------------------------------------------

template <class VALUE>
const VALUE* default_of(const SBD_PARAMETER_ROW<VALUE>& row, const VALUE& value) {
  return row.has_default ? &value : nullptr;
}

void read_row(READER& reader, const READER::BOOL_ROW& row) {
  reader.read_bool_parameter(row.block_name, row.parameter_name, default_of(row, row.default_value),
                             default_of(row, row.absent_block_value));
}

void read_row(READER& reader, const READER::DWORD_ROW& row) {
  reader.read_dword_parameter(row.block_name, row.parameter_name,
                              default_of(row, row.default_value),
                              default_of(row, row.absent_block_value));
}

void read_row(READER& reader, const READER::DOUBLE_ROW& row) {
  reader.read_double_parameter(row.block_name, row.parameter_name,
                               default_of(row, row.default_value),
                               default_of(row, row.absent_block_value));
}

void read_row(READER& reader, const READER::STRING_ROW& row) {
  reader.read_string_parameter(row.block_name, row.parameter_name,
                               row.has_default ? row.default_value : nullptr,
                               row.has_default ? row.absent_block_value : nullptr);
}

void look_up_row(const READER& reader, const READER::BOOL_ROW&, const char* name, bool& is_defined,
                 bool& has_value) {
  reader.lookup_bool_parameter(name, is_defined, has_value, false);
}

void look_up_row(const READER& reader, const READER::DWORD_ROW&, const char* name, bool& is_defined,
                 bool& has_value) {
  reader.lookup_dword_parameter(name, is_defined, has_value, false);
}

void look_up_row(const READER& reader, const READER::DOUBLE_ROW&, const char* name,
                 bool& is_defined, bool& has_value) {
  reader.lookup_double_parameter(name, is_defined, has_value, false);
}

void look_up_row(const READER& reader, const READER::STRING_ROW&, const char* name,
                 bool& is_defined, bool& has_value) {
  // Every string counts as stated, and a copy of it would take memory.
  is_defined = has_value = reader.find_parameter(name) != nullptr;
  if (is_defined) return;
  reader.lookup_string_parameter(name, is_defined, has_value, false);
}

// False when something could not be kept; what is behind it is then left alone.
template <class ROW>
bool read_rows(READER& reader, SBD_PARAMETER_WALK& walk, const ROW* row,
               const SBD_PREPARED_NAME* name) {
  for (; row->parameter_name != nullptr; ++row, ++name) {
    if (!reader.is_for_this_device(row->device_mask)) continue;
    walk.move_to(*name);
    read_row(reader, *row);
    if (!walk.is_good()) return false;
  }
  return true;
}

void report_without_rule(const char* before, const SBD_STRING& name, const char* behind) {
  SBD_STRING text = before;
  text += name;
  text += behind;
  sbd_report_internal_error(text.c_str(), k_source_veldran_parameter_reader, __LINE__);
}

}  // namespace

SBD_VELDRAN_PARAMETER_READER::SBD_VELDRAN_PARAMETER_READER(const SBD_VELDRAN& device,
                                                           const SBD_STRING& module_name) noexcept
    : SBD_PARAMETER_READER(device, module_name) {
  m_report_unread = true;
}

SBD_VELDRAN_PARAMETER_READER::~SBD_VELDRAN_PARAMETER_READER() = default;

bool SBD_VELDRAN_PARAMETER_READER::read_all_parameters() {
  return sbd_guarded(k_source_veldran_parameter_reader, false, [this] {
    const SBD_ROW_NAMES& names = SBD_ROW_NAMES::get();
    SBD_PARAMETER_WALK walk(*this, SBD_ROW_NAMES::k_count);
    return read_rows(*this, walk, sbd_veldran_bool_parameters, names.bools()) &&
           read_rows(*this, walk, sbd_veldran_dword_parameters, names.dwords()) &&
           read_rows(*this, walk, sbd_veldran_double_parameters, names.doubles()) &&
           read_rows(*this, walk, sbd_veldran_string_parameters, names.strings());
  });
}

template <class ROW>
bool SBD_VELDRAN_PARAMETER_READER::validate_rows(const ROW* row, const SBD_PREPARED_NAME* names) {
  SBD_PARAMETER_REVIEW review(*this);
  SBD_STRING name;
  bool is_good = true;
  for (; row->parameter_name != nullptr; ++row, ++names) {
    if (!is_for_this_device(row->device_mask)) continue;
    name = names->reference;
    review.move_to(*names, name.c_str());
    bool is_defined = false;
    bool has_value = false;
    look_up_row(*this, *row, name.c_str(), is_defined, has_value);
    const auto requirement = static_cast<REQUIRED>(row->requirement);
    if (!judge_parameter(name, is_defined, has_value, requirement, row->validate_value)) {
      is_good = false;
    }
  }
  return is_good;
}

bool SBD_VELDRAN_PARAMETER_READER::validate_all_parameters() {
  return sbd_guarded(k_source_veldran_parameter_reader, false, [this] {
    const SBD_ROW_NAMES& names = SBD_ROW_NAMES::get();
    bool is_good = validate_rows(sbd_veldran_bool_parameters, names.bools());
    is_good = validate_rows(sbd_veldran_dword_parameters, names.dwords()) && is_good;
    is_good = validate_rows(sbd_veldran_double_parameters, names.doubles()) && is_good;
    return validate_rows(sbd_veldran_string_parameters, names.strings()) && is_good;
  });
}

bool SBD_VELDRAN_PARAMETER_READER::is_parameter_required(const SBD_STRING& name) const noexcept {
  return sbd_guarded(k_source_veldran_parameter_reader, true, [this, &name] {
    const SBD_REQUIREMENT_RULE* const own_rule = sbd_driver_requirement(name);
    if (own_rule != nullptr) return sbd_holds(own_rule->condition, *this);
    bool is_required = true;
    if (!is_family_specific_parameter_required(name, is_required)) {
      report_without_rule("No code to check if parameter ", name, " is required.");
    }
    return is_required;
  });
}

bool SBD_VELDRAN_PARAMETER_READER::validate_parameter(const SBD_STRING& name, bool is_defined,
                                                      bool has_value, REQUIRED requirement,
                                                      bool validate_value) noexcept {
  return sbd_guarded(k_source_veldran_parameter_reader, false, [&] {
    return judge_parameter(name, is_defined, has_value, requirement, validate_value);
  });
}

bool SBD_VELDRAN_PARAMETER_READER::judge_parameter(const SBD_STRING& name, bool is_defined,
                                                   bool has_value, REQUIRED requirement,
                                                   bool validate_value) {
  const bool is_by_rule = requirement == RQ_BY_RULE;
  const bool is_required = requirement == RQ_ALWAYS || (is_by_rule && is_parameter_required(name));
  if (!is_defined) {
    if (is_required) report_fault(name, true);
    mark_parameter_as_validated(name.c_str());
    return !is_required;
  }
  bool is_good = has_value;
  if (has_value && validate_value && (!is_by_rule || is_required)) {
    is_good = is_parameter_value_valid(name);
  } else {
    mark_parameter_as_validated(name.c_str());
  }
  if (!is_good) report_fault(name, false);
  return is_good;
}

bool SBD_VELDRAN_PARAMETER_READER::is_parameter_value_valid(const SBD_STRING& name) noexcept {
  return sbd_guarded(k_source_veldran_parameter_reader, false, [this, &name] {
    bool is_valid = true;
    const SBD_VALUE_RULE* const own_rule = sbd_driver_value_rule(name);
    if (own_rule != nullptr) {
      is_valid = sbd_is_value_allowed(*own_rule, *this);
    } else if (!validate_family_specific_parameter(name, is_valid)) {
      report_without_rule("No code to validate parameter ", name, "");
      return is_valid;
    }
    mark_parameter_as_validated(name.c_str());
    return is_valid;
  });
}

void SBD_VELDRAN_PARAMETER_READER::report_fault(const SBD_STRING& name, bool is_missing) {
  // The document of such a reader is the device that it was made with.
  const auto& device = static_cast<const SBD_VELDRAN&>(m_parser);
  const SBD_PARAMETER_PLACE place = sbd_find_place(device, m_module_name, name);

  SBD_PARAMETER_FAULT fault;
  fault.reference = name;
  fault.is_missing = is_missing;
  fault.statement = place.statement;
  fault.block = place.block;
  add_fault(std::move(fault));

  device.set_fault_place(place.statement != nullptr ? place.statement : place.innermost_block);
  if (!m_post_messages) return;
  post_message(is_missing ? sbd_make_message<MSG_E>(k_msg_parameter_missing_error, name.c_str())
                          : sbd_make_message<MSG_E>(k_msg_parameter_value_error, name.c_str()));
}
