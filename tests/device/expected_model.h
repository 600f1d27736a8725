// What a descriptor has to come to, from its settings alone.
#ifndef TESTS_DEVICE_EXPECTED_MODEL_H
#define TESTS_DEVICE_EXPECTED_MODEL_H

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "tests/device/descriptor_text.h"
#include "tests/device/expected_tables.h"

// What is known of one parameter after reading.
struct EXPECTED_VALUE {
  KIND kind = KIND::BOOL;
  bool is_defined = false;
  bool has_value = false;
  bool flag = false;
  unsigned long dword = 0;
  double number = 0;
  std::string text;
};

// One message: 12 for a missing parameter, 13 for an invalid value.
struct FINDING {
  int number;
  std::string parameter;
};

std::string text_of(const FINDING& finding);

class EXPECTED_DEVICE {
 public:
  EXPECTED_DEVICE(const SETTINGS& settings, CHIP chip);

  // In the order in which they are posted.
  const std::vector<FINDING>& findings() const { return m_findings; }
  std::vector<std::string> texts() const;
  bool is_good() const { return m_findings.empty(); }

  // By reference relative to the stripe.
  const std::unordered_map<std::string, EXPECTED_VALUE>& values() const { return m_values; }
  const EXPECTED_VALUE& value(const std::string& parameter) const { return m_values.at(parameter); }

  bool is_required(const PARAMETER_ROW& row) const;
  // Whether the rules accept the value; a parameter without a rule may have any.
  bool is_accepted(const std::string& parameter) const;

  // As the queries of the same names: false leaves the result as it was, except that a width then
  // becomes 0.
  bool ahb_clock_frequency(int bus, double& frequency) const;
  bool sdram_clock_frequency(double& frequency) const;
  bool dpram_data_width(int port, unsigned long& width) const;

 private:
  void check(const PARAMETER_ROW& row);
  bool is_true(const std::string& parameter) const;
  std::uint32_t dword(const std::string& parameter) const;
  bool have_values(const std::vector<std::string>& parameters) const;

  CHIP m_chip;
  std::unordered_map<std::string, EXPECTED_VALUE> m_values;
  std::vector<FINDING> m_findings;
};

#endif
