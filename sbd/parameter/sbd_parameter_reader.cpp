// The reader's table: names, lookups, typed queries, marks.
#include "sbd/sbd_parameter_reader.h"

#include <utility>

#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/parameter/sbd_parameter_source.h"
#include "sbd/parameter/sbd_parameter_store.h"
#include "sbd/reading/sbd_joined_name.h"

namespace {

using SBD_PARAMETER_VALUE = SBD_PARAMETER_READER::SBD_PARAMETER_VALUE;

// What tells the types of value apart: their mark, what is reported when a record has another one,
// and the field of the record.
template <class VALUE>
struct TYPE_TRAITS;

template <>
struct TYPE_TRAITS<bool> {
  static constexpr auto k_type = SBD_PARAMETER_VALUE::BOOL_VALUE;
  static constexpr char k_condition[] = "m_value_type == BOOL_VALUE";
  static bool value_of(const SBD_PARAMETER_VALUE& record) { return record.m_bool_value; }
};

template <>
struct TYPE_TRAITS<unsigned long> {
  static constexpr auto k_type = SBD_PARAMETER_VALUE::DWORD_VALUE;
  static constexpr char k_condition[] = "m_value_type == DWORD_VALUE";
  static unsigned long value_of(const SBD_PARAMETER_VALUE& record) { return record.m_dword_value; }
};

template <>
struct TYPE_TRAITS<double> {
  static constexpr auto k_type = SBD_PARAMETER_VALUE::DOUBLE_VALUE;
  static constexpr char k_condition[] = "m_value_type == DOUBLE_VALUE";
  static double value_of(const SBD_PARAMETER_VALUE& record) { return record.m_double_value; }
};

template <>
struct TYPE_TRAITS<SBD_STRING> {
  static constexpr auto k_type = SBD_PARAMETER_VALUE::STRING_VALUE;
  static constexpr char k_condition[] = "m_value_type == STRING_VALUE";
  static const SBD_STRING& value_of(const SBD_PARAMETER_VALUE& record) {
    return record.m_string_value;
  }
};

constexpr char k_names_are_given[] = "block_name != NULL && parameter_name != NULL";

void clear_value(SBD_STRING& value) {
  value.clear();
}

template <class VALUE>
void clear_value(VALUE& value) {
  value = VALUE{};
}

}  // namespace

// ---- Life --------------------------------------------------------------------------------------

SBD_PARAMETER_STORE* SBD_PARAMETER_READER::make_store(const SBD_FILE_PARSER& parser,
                                                      const SBD_STRING& module_name) {
  return sbd_guarded(k_source_parameter_reader, static_cast<SBD_PARAMETER_STORE*>(nullptr),
                     [&] { return new SBD_PARAMETER_STORE(parser, module_name); });
}

SBD_PARAMETER_READER::SBD_PARAMETER_READER(const SBD_FILE_PARSER& parser,
                                           const SBD_STRING& module_name) noexcept
    : SBD_PARAMETER_READER(parser, make_store(parser, module_name)) {
  if (m_store == nullptr) return;
  const bool has_name = sbd_guarded(k_source_parameter_reader, false, [this, &module_name] {
    m_module_name = module_name;
    return true;
  });
  if (has_name) return;
  // Without its name it could not tell the parameters of the module from others.
  delete m_store;
  m_store = nullptr;
}

SBD_PARAMETER_READER::SBD_PARAMETER_READER(const SBD_FILE_PARSER& parser,
                                           SBD_PARAMETER_STORE* store) noexcept
    : m_parameters(SBD_PARAMETER_MAP::allocator_type(store != nullptr ? &store->pool : nullptr)),
      m_parser(parser),
      m_store(store) {}

SBD_PARAMETER_READER::~SBD_PARAMETER_READER() {
  m_parameters.clear();  // Its memory lies in the store.
  delete m_store;
}

void* SBD_PARAMETER_READER::operator new(std::size_t size) {
  return SBD_RECORD::operator new(size);
}

void SBD_PARAMETER_READER::operator delete(void* reader) noexcept {
  SBD_RECORD::operator delete(reader);
}

SBD_PARAMETER_STORE& SBD_PARAMETER_READER::store() {
  if (m_store == nullptr) throw SBD_REPORTED();  // When it was not made.
  return *m_store;
}

bool SBD_PARAMETER_READER::read_and_validate_parameters() {
  return read_all_parameters() && validate_all_parameters();
}

// ---- Names -----------------------------------------------------------------------------------

SBD_STRING SBD_PARAMETER_READER::make_full_name(const char* reference) const {
  SBD_STRING name = m_module_name;
  name += '.';
  if (reference != nullptr) name += reference;
  sbd_lower(name);
  return name;
}

SBD_STRING SBD_PARAMETER_READER::to_full_reference_name(const char* reference) const noexcept {
  return sbd_guarded(k_source_parameter_reader, SBD_STRING(),
                     [this, reference] { return make_full_name(reference); });
}

SBD_STRING SBD_PARAMETER_READER::join_block_and_parameter_name(
    const char* block_name, const char* parameter_name) noexcept {
  if (!SBD_CHECK(block_name != nullptr && parameter_name != nullptr, k_names_are_given,
                 k_source_parameter_reader)) {
    return {};
  }
  return sbd_guarded(k_source_parameter_reader, SBD_STRING(), [block_name, parameter_name] {
    return SBD_STRING(SBD_JOINED_NAME(block_name, parameter_name).view());
  });
}

// ---- Lookups ---------------------------------------------------------------------------------

void SBD_PARAMETER_READER::report_about(const char* before, const char* reference,
                                        const char* behind) const {
  SBD_STRING text = before;
  text += make_full_name(reference);
  text += behind;
  sbd_report_internal_error(text.c_str(), k_source_parameter_reader, __LINE__);
}

template <class VALUE>
void SBD_PARAMETER_READER::look_up(const char* reference_name, bool& is_defined, bool& has_value,
                                   bool check_validated, VALUE& value) const {
  using TRAITS = TYPE_TRAITS<VALUE>;
  const bool is_named =
      SBD_CHECK(reference_name != nullptr, "reference_name != NULL", k_source_parameter_reader);
  const char* const reference = is_named ? reference_name : "";
  is_defined = false;
  has_value = false;

  const SBD_PARAMETER_VALUE* const record = find_parameter(reference);
  if (record == nullptr) {
    if (m_report_unread) {
      report_about("Parameter ", reference, " has not been read from the SBD file");
    }
    return clear_value(value);
  }
  SBD_CHECK(record->m_value_type == TRAITS::k_type, TRAITS::k_condition, k_source_parameter_reader);
  if (check_validated && !record->m_is_validated) {
    report_about("Parameter ", reference, " has not been validated.");
  }
  is_defined = record->m_is_defined;
  // Last, since the name that was asked for may lie in the value.
  if (!record->m_has_value) return clear_value(value);
  value = TRAITS::value_of(*record);
  has_value = true;
}

bool SBD_PARAMETER_READER::lookup_bool_parameter(const char* reference_name, bool& is_defined,
                                                 bool& has_value,
                                                 bool check_validated) const noexcept {
  return look_up_guarded<bool>(reference_name, is_defined, has_value, check_validated);
}

unsigned long SBD_PARAMETER_READER::lookup_dword_parameter(const char* reference_name,
                                                           bool& is_defined, bool& has_value,
                                                           bool check_validated) const noexcept {
  return look_up_guarded<unsigned long>(reference_name, is_defined, has_value, check_validated);
}

double SBD_PARAMETER_READER::lookup_double_parameter(const char* reference_name, bool& is_defined,
                                                     bool& has_value,
                                                     bool check_validated) const noexcept {
  return look_up_guarded<double>(reference_name, is_defined, has_value, check_validated);
}

SBD_STRING SBD_PARAMETER_READER::lookup_string_parameter(const char* reference_name,
                                                         bool& is_defined, bool& has_value,
                                                         bool check_validated) const noexcept {
  return look_up_guarded<SBD_STRING>(reference_name, is_defined, has_value, check_validated);
}

template <class VALUE>
VALUE SBD_PARAMETER_READER::look_up_guarded(const char* reference_name, bool& is_defined,
                                            bool& has_value, bool check_validated) const noexcept {
  VALUE value{};
  sbd_guarded(k_source_parameter_reader, false, [&] {
    look_up(reference_name, is_defined, has_value, check_validated, value);
    return true;
  });
  return value;
}

const SBD_PARAMETER_VALUE* SBD_PARAMETER_READER::find_parameter(
    const char* reference) const noexcept {
  if (m_store == nullptr || reference == nullptr) return nullptr;
  const SBD_PARAMETER_STORE::RECORD* const record = m_store->find(reference);
  return record != nullptr ? record->value : nullptr;
}

SBD_PARAMETER_ORIGIN SBD_PARAMETER_READER::get_parameter_origin(
    const char* reference) const noexcept {
  if (m_store == nullptr || reference == nullptr) return PO_NONE;
  const SBD_PARAMETER_STORE::RECORD* const record = m_store->find(reference);
  return record != nullptr ? record->origin : PO_NONE;
}

// ---- Typed queries -----------------------------------------------------------------------------

template <class VALUE>
bool SBD_PARAMETER_READER::get_value(const char* reference, VALUE& value) const noexcept {
  bool has_value = false;
  const bool is_done = sbd_guarded(k_source_parameter_reader, false, [&] {
    bool is_defined = false;
    look_up(reference, is_defined, has_value, true, value);
    return true;
  });
  if (!is_done) clear_value(value);
  return is_done && has_value;
}

template <class VALUE>
bool SBD_PARAMETER_READER::get_value(const char* block, const char* parameter,
                                     VALUE& value) const noexcept {
  if (!SBD_CHECK(block != nullptr && parameter != nullptr, k_names_are_given,
                 k_source_parameter_reader)) {
    return get_value("", value);
  }
  bool has_value = false;
  const bool is_done =
      sbd_guarded(k_source_parameter_reader, false, [this, block, parameter, &value, &has_value] {
        has_value = get_value(SBD_JOINED_NAME(block, parameter).c_str(), value);
        return true;
      });
  if (!is_done) clear_value(value);
  return has_value;
}

bool SBD_PARAMETER_READER::get_parameter(const char* reference, bool& value) const noexcept {
  return get_value(reference, value);
}

bool SBD_PARAMETER_READER::get_parameter(const char* block, const char* parameter,
                                         bool& value) const noexcept {
  return get_value(block, parameter, value);
}

bool SBD_PARAMETER_READER::get_parameter(const char* reference,
                                         unsigned long& value) const noexcept {
  return get_value(reference, value);
}

bool SBD_PARAMETER_READER::get_parameter(const char* block, const char* parameter,
                                         unsigned long& value) const noexcept {
  return get_value(block, parameter, value);
}

bool SBD_PARAMETER_READER::get_parameter(const char* reference, double& value) const noexcept {
  return get_value(reference, value);
}

bool SBD_PARAMETER_READER::get_parameter(const char* block, const char* parameter,
                                         double& value) const noexcept {
  return get_value(block, parameter, value);
}

bool SBD_PARAMETER_READER::get_parameter(const char* reference, SBD_STRING& value) const noexcept {
  return get_value(reference, value);
}

bool SBD_PARAMETER_READER::get_parameter(const char* block, const char* parameter,
                                         SBD_STRING& value) const noexcept {
  return get_value(block, parameter, value);
}

// ---- Validation --------------------------------------------------------------------------------

void SBD_PARAMETER_READER::mark_parameter_as_validated(const char* reference_name) noexcept {
  if (!SBD_CHECK(reference_name != nullptr, "reference_name != NULL", k_source_parameter_reader)) {
    return;
  }
  if (m_store == nullptr) return;
  const SBD_PARAMETER_STORE::RECORD* const record = m_store->find(reference_name);
  if (record != nullptr) record->value->m_is_validated = true;
}

void SBD_PARAMETER_READER::post_message(MSG_POST* message) const noexcept {
  if (m_post_messages) SBD_FILE_PARSER::post_message(message);
}

void SBD_PARAMETER_READER::add_fault(SBD_PARAMETER_FAULT&& fault) {
  store().faults.push_back(std::move(fault));
}

const SBD_VECTOR<SBD_PARAMETER_FAULT>& SBD_PARAMETER_READER::get_faults() const noexcept {
  static const SBD_VECTOR<SBD_PARAMETER_FAULT> no_faults;
  return m_store != nullptr ? m_store->faults : no_faults;
}
