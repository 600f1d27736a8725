// Reading parameters from the document into the table.
#include <cmath>
#include <cstdint>
#include <utility>

#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/parameter/sbd_parameter_source.h"
#include "sbd/parameter/sbd_parameter_store.h"
#include "sbd/reading/sbd_extended.h"
#include "sbd/reading/sbd_joined_name.h"
#include "sbd/reading/sbd_low_bits.h"
#include "sbd/sbd_parameter_reader.h"

namespace {

using SBD_PARA_VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;
using SBD_STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;
using SBD_PARAMETER_VALUE = SBD_PARAMETER_READER::SBD_PARAMETER_VALUE;

// ---- From a value of the document to one of a parameter; false for the wrong kind --------------

bool convert(const SBD_PARA_VALUE& from, bool& to) {
  if (from.type != SBD_PARA_VALUE::VT_BOOL) return false;
  to = from.flag == 1;
  return true;
}

// The number times its unit, in extended precision, which holds the product of any whole number.
bool multiply(const SBD_PARA_VALUE& from, long double& product) {
  if (from.type > SBD_PARA_VALUE::VT_FLOAT) return false;
  product = sbd_extended(static_cast<long double>(from.number) *
                         static_cast<long double>(SBD_FILE_PARSER::get_unit_value(from.unit)));
  return true;
}

// The nearest integer, of two the even one; of that the low 32 bits.
std::uint32_t round_to_dword(long double number) {
  constexpr long double k_two_to_63 = 9223372036854775808.0L;
  if (number >= 0 && number < k_two_to_63) {
    const auto whole = static_cast<std::int64_t>(number);
    // Most numbers are whole, and need not be rounded.
    if (static_cast<long double>(whole) == number) return static_cast<std::uint32_t>(whole);
  }
  return sbd_low_bits(std::nearbyint(number));
}

bool convert(const SBD_PARA_VALUE& from, unsigned long& to) {
  long double product = 0;
  if (!multiply(from, product)) return false;
  to = round_to_dword(product);
  return true;
}

bool convert(const SBD_PARA_VALUE& from, double& to) {
  long double product = 0;
  if (!multiply(from, product)) return false;
  to = static_cast<double>(product);
  return true;
}

bool convert(const SBD_PARA_VALUE& from, SBD_STRING& to) {
  if (from.type != SBD_PARA_VALUE::VT_STRING || from.text == nullptr) return false;
  to = from.text;
  sbd_lower(to);
  return true;
}

// ---- Defaults; null stands for none ------------------------------------------------------------

template <class VALUE>
bool take_default(const VALUE* from, VALUE& to) {
  if (from == nullptr) return false;
  to = *from;
  return true;
}

bool take_default(const char* from, SBD_STRING& to) {
  if (from == nullptr) return false;
  to = from;
  sbd_lower(to);
  return true;
}

// ---- Records -----------------------------------------------------------------------------------

template <class VALUE>
SBD_PARAMETER_VALUE make_record(const VALUE& value, bool is_defined, bool has_value) {
  return {value, is_defined, has_value};
}

// A string always counts as stated.
SBD_PARAMETER_VALUE make_record(SBD_STRING& value, bool, bool) {
  SBD_PARAMETER_VALUE record(SBD_STRING(), true, true);
  record.m_string_value.swap(value);
  return record;
}

}  // namespace

template <class VALUE, class DEFAULT>
bool SBD_PARAMETER_READER::read_parameter(const char* block_name, const char* parameter_name,
                                          const DEFAULT* default_value,
                                          const DEFAULT* absent_block_value) {
  SBD_MODULE_LOOKUP& lookup = store().lookup;
  const SBD_FILE_PARSER::SBD_NODE* const block =
      block_name != nullptr ? lookup.find_block(block_name) : nullptr;
  const bool has_block = block_name == nullptr || block != nullptr;
  const SBD_FILE_PARSER::SBD_NODE* node = nullptr;
  if (has_block && store().walk != nullptr) {
    node = lookup.find_prepared(block, store().walk->name());
  } else if (has_block) {
    node = lookup.find_statement(block_name, parameter_name);
  }

  VALUE value{};
  bool has_value = false;
  SBD_PARAMETER_ORIGIN origin = PO_NONE;
  if (node != nullptr) {
    const SBD_STATEMENT& statement = *node->statement;
    has_value = statement.type == SBD_STATEMENT::ST_ASSIGNMENT && statement.value != nullptr &&
                convert(*statement.value, value);
    origin = PO_STATEMENT;
  } else {
    has_value = take_default(has_block ? default_value : absent_block_value, value);
    if (has_value) origin = has_block ? PO_PRESENT_BLOCK_DEFAULT : PO_ABSENT_BLOCK_DEFAULT;
  }
  return insert(block_name, parameter_name, make_record(value, node != nullptr, has_value), origin);
}

bool SBD_PARAMETER_READER::insert(const char* block_name, const char* parameter_name,
                                  SBD_PARAMETER_VALUE&& record, SBD_PARAMETER_ORIGIN origin) {
  SBD_PARAMETER_WALK* const walk = store().walk;
  if (walk != nullptr) {
    const SBD_PREPARED_NAME& name = walk->name();
    return insert(name.reference, name.hash, std::move(record), origin);
  }
  const SBD_JOINED_NAME joined(block_name, parameter_name);
  SBD_STRING reference(joined.view());
  sbd_lower(reference);
  return insert(reference, SBD_PARAMETER_STORE::hash_of(reference), std::move(record), origin);
}

bool SBD_PARAMETER_READER::insert(std::string_view reference, std::uint32_t hash,
                                  SBD_PARAMETER_VALUE&& record, SBD_PARAMETER_ORIGIN origin) {
  SBD_PARAMETER_STORE& kept = store();
  if (kept.walk == nullptr || !kept.walk->is_first()) {
    const SBD_PARAMETER_STORE::RECORD* const earlier = kept.find(reference, hash);
    if (earlier != nullptr) return earlier->value->m_has_value;
  }

  kept.make_room();
  SBD_PARAMETER_NAME key(m_parameters.get_allocator());
  key.reserve(kept.key_prefix.size() + reference.size());
  key.append(kept.key_prefix).append(reference);
  const auto hint = kept.walk != nullptr ? kept.walk->place() : m_parameters.end();
  const std::size_t count = m_parameters.size();
  const auto entry = m_parameters.try_emplace(hint, std::move(key), std::move(record));
  if (m_parameters.size() == count) return entry->second.m_has_value;
  if (kept.walk != nullptr) kept.walk->set_place(entry);
  const std::string_view own_reference =
      std::string_view(entry->first).substr(kept.key_prefix.size());
  const SBD_PREPARED_NAME* const prepared = kept.walk != nullptr ? &kept.walk->name() : nullptr;
  kept.add({own_reference, &entry->second, origin, hash, prepared});
  return entry->second.m_has_value;
}

template <class VALUE, class DEFAULT>
bool SBD_PARAMETER_READER::read_guarded(const char* block_name, const char* parameter_name,
                                        const DEFAULT* default_value,
                                        const DEFAULT* absent_block_value) {
  if (!SBD_CHECK(parameter_name != nullptr, "parameter_name != NULL", k_source_parameter_reader)) {
    return false;
  }
  bool is_kept = false;
  const bool has_value = sbd_guarded(k_source_parameter_reader, false, [&] {
    const bool result =
        read_parameter<VALUE>(block_name, parameter_name, default_value, absent_block_value);
    is_kept = true;
    return result;
  });
  if (!is_kept && m_store != nullptr) m_store->has_failed = true;
  return has_value;
}

bool SBD_PARAMETER_READER::read_bool_parameter(const char* block_name, const char* parameter_name,
                                               const bool* default_value,
                                               const bool* absent_block_value) {
  return read_guarded<bool>(block_name, parameter_name, default_value, absent_block_value);
}

bool SBD_PARAMETER_READER::read_dword_parameter(const char* block_name, const char* parameter_name,
                                                const unsigned long* default_value,
                                                const unsigned long* absent_block_value) {
  return read_guarded<unsigned long>(block_name, parameter_name, default_value, absent_block_value);
}

bool SBD_PARAMETER_READER::read_double_parameter(const char* block_name, const char* parameter_name,
                                                 const double* default_value,
                                                 const double* absent_block_value) {
  return read_guarded<double>(block_name, parameter_name, default_value, absent_block_value);
}

bool SBD_PARAMETER_READER::read_string_parameter(const char* block_name, const char* parameter_name,
                                                 const char* default_value,
                                                 const char* absent_block_value) {
  return read_guarded<SBD_STRING>(block_name, parameter_name, default_value, absent_block_value);
}
