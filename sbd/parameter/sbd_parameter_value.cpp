// The record of one parameter.
#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/parameter/sbd_parameter_source.h"
#include "sbd/sbd_parameter_reader.h"

using SBD_PARAMETER_VALUE = SBD_PARAMETER_READER::SBD_PARAMETER_VALUE;

namespace {

void copy_text(SBD_STRING& copy, const SBD_STRING& text) noexcept {
  sbd_guarded(k_source_parameter_reader, false, [&copy, &text] {
    copy = text;
    return true;
  });
}

constexpr unsigned long k_dword_bits = 0xFFFFFFFFUL;

}  // namespace

SBD_PARAMETER_VALUE::SBD_PARAMETER_VALUE(bool value, bool is_defined, bool has_value) noexcept
    : m_value_type(BOOL_VALUE),
      m_has_value(has_value),
      m_is_defined(is_defined),
      m_bool_value(value) {}

SBD_PARAMETER_VALUE::SBD_PARAMETER_VALUE(unsigned long value, bool is_defined,
                                         bool has_value) noexcept
    : m_value_type(DWORD_VALUE),
      m_has_value(has_value),
      m_is_defined(is_defined),
      m_dword_value(static_cast<std::uint32_t>(value & k_dword_bits)) {}

SBD_PARAMETER_VALUE::SBD_PARAMETER_VALUE(double value, bool is_defined, bool has_value) noexcept
    : m_value_type(DOUBLE_VALUE),
      m_has_value(has_value),
      m_is_defined(is_defined),
      m_double_value(value) {}

SBD_PARAMETER_VALUE::SBD_PARAMETER_VALUE(const SBD_STRING& value, bool is_defined,
                                         bool has_value) noexcept
    : m_value_type(STRING_VALUE), m_has_value(has_value), m_is_defined(is_defined) {
  copy_text(m_string_value, value);
}

SBD_PARAMETER_VALUE::SBD_PARAMETER_VALUE(const SBD_PARAMETER_VALUE& other) noexcept
    : m_value_type(other.m_value_type),
      m_has_value(other.m_has_value),
      m_is_defined(other.m_is_defined),
      m_is_validated(other.m_is_validated),
      m_bool_value(other.m_bool_value),
      m_dword_value(other.m_dword_value),
      m_double_value(other.m_double_value) {
  copy_text(m_string_value, other.m_string_value);
}

SBD_PARAMETER_VALUE::SBD_PARAMETER_VALUE(SBD_PARAMETER_VALUE&& other) noexcept = default;

SBD_PARAMETER_VALUE& SBD_PARAMETER_VALUE::operator=(const SBD_PARAMETER_VALUE& other) noexcept {
  if (this != &other) *this = SBD_PARAMETER_VALUE(other);
  return *this;
}

SBD_PARAMETER_VALUE& SBD_PARAMETER_VALUE::operator=(SBD_PARAMETER_VALUE&& other) noexcept = default;

SBD_PARAMETER_VALUE::~SBD_PARAMETER_VALUE() = default;
