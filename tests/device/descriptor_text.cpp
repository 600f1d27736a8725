#include "tests/device/descriptor_text.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

std::string formatted(const char* format, unsigned long value) {
  char text[64];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

WRITTEN number(double value, const std::string& digits, const std::string& unit) {
  WRITTEN written;
  written.form = WRITTEN::NUMBER;
  written.text = digits + unit;
  written.number = value;
  written.multiplier = multiplier_of(unit);
  return written;
}

WRITTEN other(WRITTEN::FORM form, const std::string& text) {
  WRITTEN written;
  written.form = form;
  written.text = text;
  return written;
}

bool is_inside(const std::string& name, const std::string& block) {
  return name.size() > block.size() && name[block.size()] == '.' &&
         name.compare(0, block.size(), block) == 0;
}

}  // namespace

WRITTEN flag(bool value) {
  WRITTEN written = other(WRITTEN::FLAG, value ? "true" : "false");
  written.flag = value;
  return written;
}

WRITTEN whole(std::uint64_t value, const std::string& unit) {
  return number(static_cast<double>(value), std::to_string(value), unit);
}

WRITTEN hexadecimal(unsigned long value, const std::string& unit) {
  return number(static_cast<double>(value), formatted("0x%lX", value), unit);
}

WRITTEN octal(unsigned long value) {
  return number(static_cast<double>(value), formatted("0%lo", value), "");
}

WRITTEN binary(unsigned long value) {
  std::string digits;
  for (unsigned long rest = value; rest != 0; rest >>= 1) {
    digits.insert(digits.begin(), (rest & 1) != 0 ? '1' : '0');
  }
  return number(static_cast<double>(value), "0b" + (digits.empty() ? "0" : digits), "");
}

WRITTEN fraction(const std::string& digits, const std::string& unit) {
  return number(std::strtod(digits.c_str(), nullptr), digits, unit);
}

WRITTEN keyword(const std::string& text) {
  return other(WRITTEN::TEXT, text);
}
WRITTEN list(const std::string& text) {
  return other(WRITTEN::LIST, text);
}
WRITTEN reference() {
  return other(WRITTEN::REFERENCE, "");
}

unsigned long multiplier_of(const std::string& unit) {
  if (unit == "K" || unit == "KB") return 1024;
  if (unit == "M" || unit == "MB") return 1048576;
  if (unit == "G" || unit == "GB") return 1073741824;
  std::string lower = unit;
  for (char& letter : lower) letter = static_cast<char>(std::tolower(letter));
  return lower == "mhz" ? 1000000 : 1;
}

SETTINGS& SETTINGS::set(const std::string& parameter, const WRITTEN& value) {
  values[parameter] = value;
  return *this;
}

SETTINGS& SETTINGS::remove(const std::string& parameter) {
  const std::size_t point = parameter.rfind('.');
  if (point != std::string::npos) blocks.insert(parameter.substr(0, point));
  values.erase(parameter);
  return *this;
}

SETTINGS& SETTINGS::add_block(const std::string& block) {
  blocks.insert(block);
  return *this;
}

SETTINGS& SETTINGS::remove_block(const std::string& block) {
  for (auto value = values.begin(); value != values.end();) {
    value = is_inside(value->first, block) ? values.erase(value) : std::next(value);
  }
  for (auto other_block = blocks.begin(); other_block != blocks.end();) {
    other_block = *other_block == block || is_inside(*other_block, block)
                      ? blocks.erase(other_block)
                      : std::next(other_block);
  }
  return *this;
}

const WRITTEN* SETTINGS::find(const std::string& parameter) const {
  const auto found = values.find(parameter);
  return found == values.end() ? nullptr : &found->second;
}

bool SETTINGS::has_block(const std::string& block) const {
  const auto value = values.lower_bound(block + ".");
  if (value != values.end() && is_inside(value->first, block)) return true;
  for (const std::string& name : blocks) {
    if (name == block || is_inside(name, block)) return true;
  }
  return false;
}

SETTINGS minimal_settings() {
  SETTINGS settings;
  settings.set("clocks.input_clock_frequency", whole(20, "MHz"))
      .set("clocks.pll_ahb_bypass", flag(true))
      .set("clocks.pll_sdram_bypass", flag(true))
      .set("ebi.enabled", flag(false))
      .set("dpram.mode[0]", keyword("no_ports"));
  return settings;
}

SETTINGS full_settings(CHIP chip) {
  SETTINGS settings;
  for (const PARAMETER_ROW& row : rows_of(chip)) {
    const std::string name = row.reference();
    const VALUE_RULE* const rule = find_value_rule(name, chip);
    switch (row.kind) {
      case KIND::BOOL: {
        const bool is_bypass = name.find("bypass") != std::string::npos;
        const bool is_off = name == "boot_from_flash" ||
                            (row.is_value_checked && rule->check == VALUE_RULE::ONLY_FALSE);
        settings.set(name, flag(!is_bypass && !is_off));
        break;
      }
      case KIND::DWORD:
        settings.set(name, rule->check == VALUE_RULE::ANYTHING ? hexadecimal(4096)
                                                               : whole(rule->numbers.back()));
        break;
      case KIND::DOUBLE:
        settings.set(name, fraction("7.5"));
        break;
      case KIND::STRING:
        settings.set(name, keyword(rule->check == VALUE_RULE::ANYTHING ? "one_port"
                                                                       : rule->keywords.back()));
        break;
    }
  }
  return settings;
}

std::string mixed_case(const std::string& name, std::mt19937_64& random) {
  std::string result = name;
  for (char& letter : result) {
    if (random() % 2 == 0) letter = static_cast<char>(std::toupper(letter));
  }
  return result;
}

// ---- The text ------------------------------------------------------------------------------

namespace {

// The members of one block, as pieces of text that may stand in any order.
class BLOCK_WRITER {
 public:
  BLOCK_WRITER(const SETTINGS& settings, const STYLE& style)
      : m_settings(settings), m_style(style) {}

  // What is inside `block`; "" for the stripe itself.
  std::string members(const std::string& block, int depth) {
    std::vector<std::string> pieces;
    std::set<std::string> inner;
    const std::string start = block.empty() ? "" : block + ".";
    for (auto value = m_settings.values.lower_bound(start); value != m_settings.values.end();
         ++value) {
      if (!block.empty() && !is_inside(value->first, block)) break;
      collect(block, value->first, inner, &value->second, pieces);
    }
    for (const std::string& name : m_settings.blocks) {
      collect(block, name + ".", inner, nullptr, pieces);
    }
    for (const std::string& name : inner) {
      const std::string path = block.empty() ? name : block + "." + name;
      pieces.push_back(block_type() + " " + spelled(name) + "\n" + "{\n" +
                       members(path, depth + 1) + "}\n");
    }
    if (pieces.empty() || chance(20)) pieces.push_back("# enabled = true;\n");
    if (chance(10)) pieces.push_back("other_" + std::to_string(depth) + " = {1, {a, 2K}};\n");
    if (m_style.variety) std::shuffle(pieces.begin(), pieces.end(), *m_style.variety);
    std::string text;
    for (const std::string& piece : pieces) text += piece;
    return text;
  }

  std::string spelled(const std::string& name) {
    return m_style.variety && chance(3) ? mixed_case(name, *m_style.variety) : name;
  }

 private:
  // Enters what `name` stands for when it lies inside `block`: a statement of its own, or the
  // block directly below that holds it.
  void collect(const std::string& block, const std::string& name, std::set<std::string>& inner,
               const WRITTEN* value, std::vector<std::string>& pieces) {
    if (!block.empty() && !is_inside(name, block)) return;
    const std::string rest = block.empty() ? name : name.substr(block.size() + 1);
    const std::size_t point = rest.find('.');
    if (point != std::string::npos) {
      inner.insert(rest.substr(0, point));
    } else if (value) {
      pieces.push_back(statement(rest, *value));
    }
  }

  std::string statement(const std::string& name, const WRITTEN& value) {
    std::string text = spelled(name);
    if (value.form == WRITTEN::REFERENCE) {
      text += blank() + "<" + blank() + m_style.device + ".family" + blank() + ">" + blank() + ";";
    } else {
      text += blank() + "=" + blank() + value_text(value);
      if (chance(12)) text += " [checked, source .clock]";
      text += blank() + ";";
    }
    return text + (chance(8) ? " # = 7;\n" : "\n");
  }

  std::string value_text(const WRITTEN& value) {
    if (value.form == WRITTEN::TEXT) {
      // In other letters these would be flags.
      return value.text == "tRue" || value.text == "fALSE" ? value.text : spelled(value.text);
    }
    if (value.form != WRITTEN::FLAG || !m_style.variety) return value.text;
    const char* const spellings[2][3] = {{"false", "FALSE", "False"}, {"true", "TRUE", "True"}};
    return spellings[value.flag ? 1 : 0][(*m_style.variety)() % 3];
  }

  std::string block_type() {
    const char* const types[] = {"parameters", "region", "bus", "slave", "master", "Parameters"};
    return types[m_style.variety ? (*m_style.variety)() % 6 : 0];
  }

  std::string blank() {
    if (!m_style.variety) return " ";
    const char* const blanks[] = {" ", "", "  ", "\t", " \r\n", "\n"};
    return blanks[(*m_style.variety)() % 6];
  }

  // True in one of `count` cases; never without variety.
  bool chance(unsigned count) { return m_style.variety && (*m_style.variety)() % count == 0; }

  const SETTINGS& m_settings;
  const STYLE& m_style;
};

}  // namespace

std::string descriptor_text(const SETTINGS& settings, CHIP chip, const STYLE& style) {
  BLOCK_WRITER writer(settings, style);
  const std::string type = style.type.empty() ? name_of(chip) : style.type;
  return "device " + writer.spelled(style.device) + "\n{\n" + writer.spelled("family") + " = " +
         writer.spelled(style.family) + ";\n" + writer.spelled("type") + " = " +
         writer.spelled(type) + ";\nmodule " + writer.spelled(style.module) + "\n{\n" +
         writer.spelled("type") + " = " + writer.spelled("veldran_stripe") + ";\n" +
         writer.members("", 0) + "}\n}\n";
}
