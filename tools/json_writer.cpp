#include "tools/json_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>

namespace sbd_tool {

namespace {

constexpr std::size_t k_indent = 2;
// The text of a deep tree would be mostly blanks otherwise.
constexpr std::size_t k_deepest_indent = 24;

std::string quote(std::string_view text) {
  constexpr int k_no_indent = -1;
  return nlohmann::json(text).dump(k_no_indent, ' ', false,
                                   nlohmann::json::error_handler_t::replace);
}

}  // namespace

void JSON_WRITER::begin(char opener, char closer, LAYOUT layout) {
  begin_item();
  const bool is_on_line = !m_scopes.empty() && m_scopes.back().layout == LAYOUT::ONE_LINE;
  m_scopes.push_back({closer, is_on_line ? LAYOUT::ONE_LINE : layout, true});
  m_output.write({&opener, 1});
}

void JSON_WRITER::end() {
  const SCOPE scope = m_scopes.back();
  m_scopes.pop_back();
  if (scope.layout == LAYOUT::LINES && !scope.is_empty) begin_line();
  m_output.write({&scope.closer, 1});
}

void JSON_WRITER::key(std::string_view name) {
  begin_item();
  m_output.write(quote(name));
  m_output.write(": ");
  m_has_key = true;
}

void JSON_WRITER::text(std::string_view text) {
  value(quote(text));
}

void JSON_WRITER::boolean(bool value_to_write) {
  value(value_to_write ? "true" : "false");
}

void JSON_WRITER::null() {
  value("null");
}

void JSON_WRITER::count(std::uint64_t number) {
  value(fmt::format("{}", number));
}

void JSON_WRITER::number(std::string_view spelled) {
  const bool is_finite = spelled.find_first_of("in") == std::string_view::npos;
  value(is_finite ? spelled : "null");
}

void JSON_WRITER::finish() {
  m_output.write("\n");
}

void JSON_WRITER::value(std::string_view json) {
  begin_item();
  m_output.write(json);
}

void JSON_WRITER::begin_item() {
  if (m_has_key || m_scopes.empty()) {
    m_has_key = false;
    return;
  }
  SCOPE& scope = m_scopes.back();
  const bool has_line = scope.layout == LAYOUT::LINES;
  if (!scope.is_empty) m_output.write(has_line ? "," : ", ");
  scope.is_empty = false;
  if (has_line) begin_line();
}

void JSON_WRITER::begin_line() {
  const std::size_t depth = std::min(m_scopes.size(), k_deepest_indent);
  m_output.write("\n" + std::string(depth * k_indent, ' '));
}

}  // namespace sbd_tool
