#include "tests/device/value_choices.h"

#include <cstdint>
#include <random>
#include <set>
#include <string>

namespace {

std::vector<WRITTEN> flag_values() {
  return {flag(true),       flag(false),           whole(0),
          whole(1),         keyword("yes"),        keyword("tRue"),
          keyword("fALSE"), fraction("1.0"),       keyword("\"true\""),
          list(),           list("{true, false}"), reference()};
}

std::vector<WRITTEN> number_values(const VALUE_RULE* rule) {
  std::set<std::uint64_t> numbers = {0, 1, 2, 4096, 4294967295};
  if (rule) {
    for (const unsigned long number : rule->numbers) {
      const std::uint64_t one = number;
      numbers.insert({one - (one > 0 ? 1 : 0), one, one + 1, 2 * one});
    }
  }
  std::vector<WRITTEN> values;
  for (const std::uint64_t number : numbers) {
    if (number <= 4294967295) values.push_back(whole(number));
  }
  if (rule) {
    // The limits in other notations, and where rounding decides.
    for (const unsigned long number : rule->numbers) {
      const std::string digits = std::to_string(number);
      values.push_back(hexadecimal(number));
      values.push_back(octal(number));
      values.push_back(binary(number));
      values.push_back(fraction(digits + ".4375"));
      values.push_back(fraction(digits + ".5"));
      if (number > 0) values.push_back(fraction(std::to_string(number - 1) + ".5"));
      if (number % 1024 == 0 && number > 0) values.push_back(whole(number / 1024, "K"));
      if (number % 1000000 == 0 && number > 0) values.push_back(whole(number / 1000000, "mHZ"));
    }
  }
  for (const WRITTEN& value :
       {whole(2, "Hz"), fraction("0.00390625", "KB"), whole(4, "GB"), fraction("-1"),
        fraction("-0.25"), flag(true), flag(false), keyword("two"), keyword("\"2\""), list(),
        list("{2, {2, 2}}"), reference()}) {
    values.push_back(value);
  }
  return values;
}

std::vector<WRITTEN> text_values(const VALUE_RULE* rule) {
  std::vector<WRITTEN> values;
  std::mt19937_64 random(7);
  if (rule) {
    for (const std::string& text : rule->keywords) {
      values.push_back(keyword(text));
      values.push_back(keyword(mixed_case(text, random)));
    }
    if (!rule->keywords.empty()) {
      const std::string& text = rule->keywords.front();
      for (const std::string& wrong :
           {text + "_", text.substr(0, text.size() - 1), "\"" + text + "\"", "x" + text}) {
        values.push_back(keyword(wrong));
      }
    }
  }
  for (const WRITTEN& value :
       {keyword("wrong"), keyword("\"\""), keyword("no_ports"), whole(2), whole(0), fraction("7.5"),
        flag(true), flag(false), list("{low, high}"), reference()}) {
    values.push_back(value);
  }
  return values;
}

}  // namespace

std::vector<WRITTEN> values_to_try(const PARAMETER_ROW& row, CHIP chip) {
  const VALUE_RULE* const rule = find_value_rule(row.reference(), chip);
  switch (row.kind) {
    case KIND::BOOL:
      return flag_values();
    case KIND::DWORD:
      return number_values(rule);
    case KIND::DOUBLE:
      return number_values(nullptr);
    case KIND::STRING:
      break;
  }
  return text_values(rule);
}
