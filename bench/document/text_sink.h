// What the texts of all formats have in common.
#ifndef BENCH_DOCUMENT_TEXT_SINK_H
#define BENCH_DOCUMENT_TEXT_SINK_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "bench/document/document_sink.h"

class TEXT_SINK : public DOCUMENT_SINK {
 public:
  // How a format without units writes values.
  struct VALUE_STYLE {
    std::string_view separator;  // Between the elements of a list.
    bool has_hexadecimal;        // Otherwise such numbers are written in decimal.
    bool marks_large;            // An "L" behind numbers of more than 31 bits.
  };

  std::string take_text() { return std::move(m_text); }

 protected:
  void indent() { m_text.append(4 * m_level, ' '); }
  void add_quoted(std::string_view text) { ((m_text += '"') += text) += '"'; }
  void add_number(std::uint64_t number) { m_text += std::to_string(number); }
  void add_hexadecimal(std::uint64_t number);
  void add_plain_value(const GENERATED_VALUE& value, const VALUE_STYLE& style);
  void add_tenths(std::uint64_t tenths) {
    add_number(tenths / 10);
    m_text += '.';
    add_number(tenths % 10);
  }

  // Adds the items, separated, each by a call of `add`.
  template <class ITEMS, class ADD>
  void add_joined(const ITEMS& items, std::string_view separator, ADD&& add) {
    bool is_first = true;
    for (const auto& item : items) {
      if (!is_first) m_text += separator;
      is_first = false;
      add(item);
    }
  }

  std::string m_text;
  std::size_t m_level = 0;
};

#endif
