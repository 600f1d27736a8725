#include "tests/device/expected_model.h"

#include <cctype>

#include "tests/device/exact_arithmetic.h"

namespace {

std::string lower_case(const std::string& text) {
  std::string result = text;
  for (char& letter : result) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return result;
}

// What `written` gives a parameter of the kind; a value of another kind gives none.
void take_written(const WRITTEN& written, EXPECTED_VALUE& value) {
  value.has_value = false;
  switch (value.kind) {
    case KIND::BOOL:
      value.flag = false;
      if (written.form != WRITTEN::FLAG) return;
      value.flag = written.flag;
      break;
    case KIND::DWORD:
    case KIND::DOUBLE: {
      value.dword = 0;
      value.number = 0;
      if (written.form != WRITTEN::NUMBER) return;
      const WIDE_NUMBER product =
          WIDE_NUMBER(written.number).times(static_cast<std::uint32_t>(written.multiplier));
      if (value.kind == KIND::DWORD) value.dword = product.to_dword();
      if (value.kind == KIND::DOUBLE) value.number = product.to_double();
      break;
    }
    case KIND::STRING:
      value.text.clear();
      if (written.form != WRITTEN::TEXT) return;
      value.text = lower_case(written.text);
      break;
  }
  value.has_value = true;
}

EXPECTED_VALUE read(const PARAMETER_ROW& row, const SETTINGS& settings) {
  EXPECTED_VALUE value;
  value.kind = row.kind;
  const bool is_block_there = row.block == nullptr || settings.has_block(row.block);
  const DEFAULTS& defaults = row.defaults;
  const char* const text = is_block_there ? defaults.first_text : defaults.second_text;
  const unsigned long number = is_block_there ? defaults.first_number : defaults.second_number;
  if (defaults.are_given) {
    value.has_value = row.kind != KIND::STRING || text != nullptr;
    if (row.kind == KIND::BOOL) value.flag = number == 1;
    if (row.kind == KIND::DWORD) value.dword = number;
    if (row.kind == KIND::STRING && text) value.text = text;
  }
  const WRITTEN* const written = settings.find(row.reference());
  if (written) {
    value.is_defined = true;
    take_written(*written, value);
  }
  // A text always counts as written and known.
  if (row.kind == KIND::STRING) value.is_defined = value.has_value = true;
  return value;
}

}  // namespace

std::string text_of(const FINDING& finding) {
  const std::string start = "System Build Descriptor File ";
  const std::string fault = finding.number == 12 ? "must contain parameter \""
                                                 : "contains invalid setting for parameter \"";
  return start + fault + finding.parameter + "\"";
}

EXPECTED_DEVICE::EXPECTED_DEVICE(const SETTINGS& settings, CHIP chip) : m_chip(chip) {
  const std::vector<PARAMETER_ROW>& rows = rows_of(chip);
  for (const PARAMETER_ROW& row : rows) m_values.emplace(row.reference(), read(row, settings));
  for (const PARAMETER_ROW& row : rows) check(row);
}

std::vector<std::string> EXPECTED_DEVICE::texts() const {
  std::vector<std::string> texts;
  for (const FINDING& finding : m_findings) texts.push_back(text_of(finding));
  return texts;
}

void EXPECTED_DEVICE::check(const PARAMETER_ROW& row) {
  const std::string name = row.reference();
  const EXPECTED_VALUE& value = m_values.at(name);
  const bool is_needed = is_required(row);
  if (!value.is_defined) {
    if (is_needed) m_findings.push_back({12, name});
    return;
  }
  const bool is_looked_at =
      row.is_value_checked && (row.requirement != REQUIREMENT::BY_RULE || is_needed);
  if (!value.has_value || (is_looked_at && !is_accepted(name))) m_findings.push_back({13, name});
}

bool EXPECTED_DEVICE::is_required(const PARAMETER_ROW& row) const {
  if (row.requirement != REQUIREMENT::BY_RULE) return row.requirement == REQUIREMENT::ALWAYS;
  const REQUIREMENT_RULE* const rule = find_requirement_rule(row.reference());
  switch (rule->condition) {
    case REQUIREMENT_RULE::IS_TRUE:
      return is_true(rule->condition_parameter);
    case REQUIREMENT_RULE::IS_FALSE:
      return !is_true(rule->condition_parameter);
    case REQUIREMENT_RULE::IS_PORT_USED:
      return value(rule->condition_parameter).text != "no_ports";
  }
  return false;
}

bool EXPECTED_DEVICE::is_accepted(const std::string& parameter) const {
  const VALUE_RULE* const rule = find_value_rule(parameter, m_chip);
  if (!rule) return true;
  const EXPECTED_VALUE& checked = value(parameter);
  if (!rule->freeing_mode.empty() && value(rule->freeing_mode).text == "no_ports") return true;
  switch (rule->check) {
    case VALUE_RULE::ANYTHING:
      return true;
    case VALUE_RULE::ONLY_FALSE:
      return !checked.flag;
    case VALUE_RULE::RANGE: {
      unsigned long low = rule->numbers.front();
      if (rule->low_when_bypassed != 0 && is_true("clocks.pll_ahb_bypass") &&
          is_true("clocks.pll_sdram_bypass")) {
        low = rule->low_when_bypassed;
      }
      return low <= checked.dword && checked.dword <= rule->numbers.back();
    }
    case VALUE_RULE::ONE_OF:
      for (const unsigned long number : rule->numbers) {
        if (number == checked.dword) return true;
      }
      return false;
    case VALUE_RULE::KEYWORD:
      for (const std::string& text : rule->keywords) {
        if (text == checked.text) return true;
      }
      return false;
  }
  return false;
}

// A flag without a value counts as false.
bool EXPECTED_DEVICE::is_true(const std::string& parameter) const {
  return value(parameter).has_value && value(parameter).flag;
}

std::uint32_t EXPECTED_DEVICE::dword(const std::string& parameter) const {
  return static_cast<std::uint32_t>(value(parameter).dword);
}

bool EXPECTED_DEVICE::have_values(const std::vector<std::string>& parameters) const {
  for (const std::string& parameter : parameters) {
    if (!value(parameter).has_value) return false;
  }
  return true;
}

// ---- Clocks and widths ---------------------------------------------------------------------

namespace {

WIDE_NUMBER pll_output(std::uint32_t input, std::uint32_t m, std::uint32_t n, std::uint32_t k) {
  return WIDE_NUMBER::of_whole(input).times(m).divided_by(n * k);
}

}  // namespace

bool EXPECTED_DEVICE::ahb_clock_frequency(int bus, double& frequency) const {
  const std::string divider = bus == 1 ? "clocks.ahb1_divide" : "clocks.ahb2_divide";
  if (!have_values({"clocks.input_clock_frequency", "clocks.pll_ahb_bypass", divider})) {
    return false;
  }
  WIDE_NUMBER output = WIDE_NUMBER::of_whole(dword("clocks.input_clock_frequency"));
  if (!is_true("clocks.pll_ahb_bypass")) {
    if (!have_values({"clocks.pll_ahb_m", "clocks.pll_ahb_n", "clocks.pll_ahb_k"})) return false;
    output = pll_output(dword("clocks.input_clock_frequency"), dword("clocks.pll_ahb_m"),
                        dword("clocks.pll_ahb_n"), dword("clocks.pll_ahb_k"));
  }
  frequency = output.divided_by(dword(divider)).to_double();
  return true;
}

bool EXPECTED_DEVICE::sdram_clock_frequency(double& frequency) const {
  if (!have_values({"clocks.input_clock_frequency", "clocks.pll_sdram_bypass"})) return false;
  WIDE_NUMBER output = WIDE_NUMBER::of_whole(dword("clocks.input_clock_frequency"));
  if (!is_true("clocks.pll_sdram_bypass")) {
    if (!have_values({"clocks.pll_sdram_m", "clocks.pll_sdram_n", "clocks.pll_sdram_k"})) {
      return false;
    }
    output = pll_output(dword("clocks.input_clock_frequency"), dword("clocks.pll_sdram_m"),
                        dword("clocks.pll_sdram_n"), dword("clocks.pll_sdram_k"));
  }
  frequency = output.halved().to_double();
  return true;
}

bool EXPECTED_DEVICE::dpram_data_width(int port, unsigned long& width) const {
  const int ports = m_chip == CHIP::QMXA1 ? 1 : 2;
  if (port >= ports) return true;
  bool is_known = true;
  if (ports == 2 && is_true("dpram.combined_mode")) {
    is_known = value("dpram.combined_data_width").has_value;
    width = value("dpram.combined_data_width").dword;
    if (width == 64) width = 32;
  } else {
    const std::string index = "[" + std::to_string(port) + "]";
    width = 32;
    if (value("dpram.mode" + index).text != "no_ports") {
      is_known = value("dpram.data_width" + index).has_value;
      width = value("dpram.data_width" + index).dword;
    }
  }
  if (!is_known) width = 0;
  return is_known;
}
