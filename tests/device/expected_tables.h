// The parameters of the family and their rules, written down a second time for the tests.
#ifndef TESTS_DEVICE_EXPECTED_TABLES_H
#define TESTS_DEVICE_EXPECTED_TABLES_H

#include <string>
#include <vector>

// The chips that have rules, and masks of them.
enum class CHIP : unsigned { QMXA1 = 1, QMXA4 = 2, QMXA10 = 4 };
inline constexpr CHIP ALL_CHIPS[] = {CHIP::QMXA1, CHIP::QMXA4, CHIP::QMXA10};
inline constexpr unsigned A1 = 1, A4 = 2, A10 = 4;
inline constexpr unsigned A1_A4 = 3, A4_A10 = 6, ALL = 7;

const char* name_of(CHIP chip);
inline bool is_in(CHIP chip, unsigned chips) {
  return (static_cast<unsigned>(chip) & chips) != 0;
}

enum class KIND { BOOL, DWORD, DOUBLE, STRING };
inline constexpr KIND ALL_KINDS[] = {KIND::BOOL, KIND::DWORD, KIND::DOUBLE, KIND::STRING};

enum class REQUIREMENT : unsigned { OPTIONAL = 0, ALWAYS = 1, BY_RULE = 2 };

// What a parameter is when it is not written: first in a block that is there, second without it.
struct DEFAULTS {
  bool are_given = false;
  unsigned long first_number = 0, second_number = 0;         // Flags count as 1 and 0.
  const char *first_text = nullptr, *second_text = nullptr;  // Null for none.
};

struct PARAMETER_ROW {
  KIND kind;
  const char* block;  // Null for a parameter of the stripe itself.
  const char* name;
  unsigned chips;
  REQUIREMENT requirement;
  bool is_value_checked;
  DEFAULTS defaults;

  std::string reference() const {
    return block ? std::string(block).append(".").append(name) : name;
  }
};

// All rows of the four tables: flags, whole numbers, numbers, texts.
const std::vector<PARAMETER_ROW>& parameter_rows();

// The rows of one chip, in the order in which they are read and checked.
const std::vector<PARAMETER_ROW>& rows_of(CHIP chip);

// Who knows a rule.
enum class LEVEL { DRIVER, FAMILY, CHIP_READER };

// When a parameter that is required by rule is required.
struct REQUIREMENT_RULE {
  enum CONDITION { IS_TRUE, IS_FALSE, IS_PORT_USED };

  std::vector<std::string> parameters;
  LEVEL level;
  CONDITION condition;
  std::string condition_parameter;
};

// Null when there is none.
const REQUIREMENT_RULE* find_requirement_rule(const std::string& parameter);

// Which values a parameter may have on some chips.
struct VALUE_RULE {
  enum CHECK { ANYTHING, ONLY_FALSE, RANGE, ONE_OF, KEYWORD };

  std::vector<std::string> parameters;
  unsigned chips;
  LEVEL level;
  CHECK check;
  std::vector<unsigned long> numbers = {};  // RANGE: the first and the last; ONE_OF: all.
  std::vector<std::string> keywords = {};

  // A lower start of the range while both PLLs are bypassed; 0 for none.
  unsigned long low_when_bypassed = 0;
  // The mode of a port that frees the value while it is "no_ports"; "" for none.
  std::string freeing_mode = {};
};

const VALUE_RULE* find_value_rule(const std::string& parameter, CHIP chip);

#endif
