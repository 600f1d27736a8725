#include "bench/document/text_sink.h"

#include <cstdio>

#include "bench/document/document_texts.h"

namespace {

constexpr std::uint64_t LARGEST_UNMARKED = 0x7FFFFFFF;

}  // namespace

void TEXT_SINK::add_hexadecimal(std::uint64_t number) {
  char digits[24];
  std::snprintf(digits, sizeof digits, "0x%08llX", static_cast<unsigned long long>(number));
  m_text += digits;
}

void TEXT_SINK::add_plain_value(const GENERATED_VALUE& value, const VALUE_STYLE& style) {
  const bool is_hexadecimal = value.kind == GENERATED_VALUE::HEXADECIMAL && style.has_hexadecimal;
  switch (value.kind) {
    case GENERATED_VALUE::DECIMAL:
    case GENERATED_VALUE::HEXADECIMAL:
      is_hexadecimal ? add_hexadecimal(value.number) : add_number(value.scaled_number());
      if (style.marks_large && value.scaled_number() > LARGEST_UNMARKED) m_text += 'L';
      break;
    case GENERATED_VALUE::TENTHS:
      add_tenths(value.number);
      break;
    case GENERATED_VALUE::BOOLEAN:
      m_text += value.number != 0 ? "true" : "false";
      break;
    case GENERATED_VALUE::WORD:
    case GENERATED_VALUE::TEXT:
      add_quoted(value.text);
      break;
    case GENERATED_VALUE::LIST:
      m_text += '[';
      add_joined(value.elements, style.separator, [this](std::uint64_t item) { add_number(item); });
      m_text += ']';
      break;
    case GENERATED_VALUE::REFERENCES:
      if (value.names.size() > 1) m_text += '[';
      add_joined(value.names, style.separator,
                 [this](const std::string& name) { add_quoted(plain_name(name)); });
      if (value.names.size() > 1) m_text += ']';
      break;
  }
}
