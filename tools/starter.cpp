#include "tools/starter.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "sbd/sbd_parameter_rules.h"
#include "tools/parameter_help.h"

namespace sbd_tool {

namespace {

constexpr std::size_t k_comment_column = 56;
constexpr std::size_t k_indent = 4;

// ---- What is stated ----------------------------------------------------------------------------

enum class WHEN { ALWAYS, WITH, WITHOUT };

// A statement for those who ask for a feature, or for those who don't. The values keep the rules of
// every chip that has the feature.
struct STATEMENT_ROW {
  WHEN when;
  const char* feature;
  const char* block;  // Below the stripe's module.
  const char* parameter;
  const char* value;
  const char* comment;  // Null: what the chip allows.
};

constexpr STATEMENT_ROW k_statements[] = {
    {WHEN::ALWAYS, "", "clocks", "input_clock_frequency", "50MHz", nullptr},
    {WHEN::WITHOUT, "pll", "clocks", "pll_ahb_bypass", "true", "AHB1 and AHB2 from the input"},
    {WHEN::WITHOUT, "pll", "clocks", "pll_sdram_bypass", "true", "SDRAM from the input"},
    {WHEN::WITH, "pll", "clocks", "pll_ahb_m", "4", nullptr},
    {WHEN::WITH, "pll", "clocks", "pll_ahb_n", "1", nullptr},
    {WHEN::WITH, "pll", "clocks", "pll_ahb_k", "1", nullptr},
    {WHEN::WITH, "pll", "clocks", "pll_sdram_m", "5", nullptr},
    {WHEN::WITH, "pll", "clocks", "pll_sdram_n", "1", nullptr},
    {WHEN::WITH, "pll", "clocks", "pll_sdram_k", "1", nullptr},

    {WHEN::WITH, "sdram", "sdram", "enabled", "true", nullptr},
    {WHEN::WITH, "sdram", "sdram", "type", "ddr", nullptr},
    {WHEN::WITH, "sdram", "sdram", "data_width", "32", nullptr},
    {WHEN::WITH, "sdram", "sdram", "row_address_bits", "13", nullptr},
    {WHEN::WITH, "sdram", "sdram", "column_address_bits", "10", nullptr},
    {WHEN::WITH, "sdram", "sdram", "active_to_read_or_write_delay", "20.0",
     "ns, from the data sheet"},
    {WHEN::WITH, "sdram", "sdram", "active_to_precharge_command", "45.0", "ns"},
    {WHEN::WITH, "sdram", "sdram", "active_banka_to_bankb_command", "15.0", "ns"},
    {WHEN::WITH, "sdram", "sdram", "precharge_command_period", "20.0", "ns"},
    {WHEN::WITH, "sdram", "sdram", "write_recovery_time", "15.0", "ns"},
    {WHEN::WITH, "sdram", "sdram", "active_to_active_command_period", "65.0", "ns"},
    {WHEN::WITH, "sdram", "sdram", "auto_refresh_command_period", "75.0", "ns"},
    {WHEN::WITH, "sdram", "sdram", "refresh_period", "7812.5", "ns, 64 ms over 8192 rows"},
    {WHEN::WITH, "sdram", "sdram", "cas_latency", "2.5", "clocks"},
    {WHEN::WITH, "sdram", "sdram", "input_pin_standard", "sstl_2", nullptr},
    {WHEN::WITH, "sdram", "sdram", "output_pin_standard", "fast_slew", nullptr},
    {WHEN::WITH, "sdram", "sdram.region[0]", "address_base", "0x00000000", nullptr},
    {WHEN::WITH, "sdram", "sdram.region[0]", "address_size", "64M", "bytes"},

    {WHEN::WITHOUT, "ebi", "ebi", "enabled", "false", nullptr},
    {WHEN::WITH, "ebi", "ebi", "enabled", "true", nullptr},
    {WHEN::WITH, "ebi", "ebi", "input_pin_standard", "lvttl_3v3", nullptr},
    {WHEN::WITH, "ebi", "ebi", "output_pin_standard", "slow_slew", nullptr},
    {WHEN::WITH, "ebi", "ebi.region[0]", "address_base", "0x40000000", nullptr},
    {WHEN::WITH, "ebi", "ebi.region[0]", "address_size", "4M", "bytes"},
    {WHEN::WITH, "ebi", "ebi.region[0]", "data_width", "16", nullptr},

    {WHEN::WITHOUT, "dpram", "dpram", "mode[0]", "no_ports", nullptr},
    {WHEN::WITH, "dpram", "dpram", "mode[0]", "one_port", nullptr},
    {WHEN::WITH, "dpram", "dpram", "address_range[0]", "4K", "words"},
    {WHEN::WITH, "dpram", "dpram.region[0]", "address_base", "0x20040000", nullptr},
    {WHEN::WITH, "dpram", "dpram.region[0]", "address_size", "16K", "bytes"},

    {WHEN::WITH, "uart", "uart", "enabled", "true", nullptr},
    {WHEN::WITH, "uart", "uart", "input_pin_standard", "lvttl_3v3", nullptr},
    {WHEN::WITH, "uart", "uart", "output_pin_standard", "slow_slew", nullptr},

    {WHEN::WITH, "trace", "trace", "enabled", "true", nullptr},
    {WHEN::WITH, "trace", "trace", "output_pin_standard", "fast_slew", nullptr},

    {WHEN::WITH, "gpio", "pld", "use_gpio_port", "true", nullptr},
    {WHEN::WITH, "gpio", "pld", "gpio_port_width", "4", nullptr},
    {WHEN::WITH, "interrupts", "pld", "use_pld_to_stripe_interrupts", "true", nullptr},

    {WHEN::WITH, "registers", "registers", "address_base", "0x7FFFC000", nullptr},
    {WHEN::WITH, "registers", "registers", "address_size", "16K", "bytes"},
    {WHEN::WITH, "sram", "sram[0]", "address_base", "0x20000000", nullptr},
    {WHEN::WITH, "sram", "sram[0]", "address_size", "16K", "bytes"},
    {WHEN::WITH, "pld", "pld[0]", "address_base", "0x80000000", nullptr},
    {WHEN::WITH, "pld", "pld[0]", "address_size", "1M", "bytes"},
};

// The blocks in which statements are, a block before those in it.
struct BLOCK_ROW {
  const char* name;
  const char* type;
  const char* comment;
};

constexpr BLOCK_ROW k_blocks[] = {
    {"clocks", "parameters",
     "The input clock, the PLLs, the dividers of the buses. \"sbd clocks\" tells what they come to "
     "and finds settings for other frequencies."},
    {"sdram", "parameters", "External memory."},
    {"sdram.region[0]", "region", "Its first window."},
    {"ebi", "parameters",
     "The expansion bus. The block has to be there even if the bus is not in use: without it, the "
     "polarities of its signals have no default."},
    {"ebi.region[0]", "region", "The window of the first chip select, which may boot."},
    {"dpram", "parameters",
     "The dual-port RAM. The block has to be there even if no port is in use: without it, the "
     "modes "
     "of the ports have no default."},
    {"dpram.region[0]", "region", "The window of port 0."},
    {"uart", "parameters", "The serial port."},
    {"trace", "parameters", "The trace port of the processor."},
    {"pld", "parameters", "What runs between stripe and programmable logic."},
    {"registers", "region", "The window of the stripe's own registers."},
    {"sram[0]", "region", "The window of the first on-chip SRAM."},
    {"pld[0]", "region", "The first window to the programmable logic."},
};

using FEATURES = std::vector<std::string>;

bool applies(const STATEMENT_ROW& row, const FEATURES& features) {
  const bool is_with = std::find(features.begin(), features.end(), row.feature) != features.end();
  return row.when == WHEN::ALWAYS || is_with == (row.when == WHEN::WITH);
}

// ---- The text ----------------------------------------------------------------------------------

class STARTER_WRITER {
 public:
  STARTER_WRITER(std::string_view chip, const FEATURES& features)
      : m_chip(find_chip_type(chip)), m_chip_name(chip), m_features(features) {
    SBD_STRING_LIST names;
    sbd_get_parameter_names(m_chip, names);
    for (const SBD_STRING& name : names) {
      SBD_PARAMETER_RULE rule;
      if (sbd_get_parameter_rule(m_chip, name.c_str(), rule)) m_rules.push_back(rule);
    }
  }

  std::string write(std::string_view name) {
    add_line(
        "# A descriptor to begin with: the values are examples. Lines behind \"#\" are what may");
    add_line("# be stated besides, with what counts if it is not.");
    add_line("");
    open("device", std::string(name));
    add_line("family = veldran_arm;");
    add_line(fmt::format("type = {};", m_chip_name));
    add_line("");
    open("module", "stripe");
    add_line("type = veldran_stripe;");
    add_line("");
    add_optional("");
    for (const BLOCK_ROW& block : k_blocks) {
      if (has_statement(block.name)) add_block(block);
    }
    while (!m_open.empty()) close();
    return std::move(m_text);
  }

 private:
  // ---- Lines ----

  void add_line(std::string_view line) {
    if (!line.empty()) m_text.append(m_open.size() * k_indent, ' ');
    m_text.append(line).append("\n");
  }

  void add_with_comment(const std::string& statement, const std::string& comment) {
    const std::size_t column = m_open.size() * k_indent;
    const std::size_t width = k_comment_column > column ? k_comment_column - column : 0;
    add_line(comment.empty() ? statement : fmt::format("{:<{}} # {}", statement, width, comment));
  }

  void open(const std::string& type, const std::string& name) {
    add_line(fmt::format("{} {}", type, name));
    add_line("{");
    m_open.push_back(name);
  }

  void close() {
    m_open.pop_back();
    add_line("}");
  }

  void add_running_comment(std::string_view comment) {
    constexpr std::size_t k_width = 76;
    const std::size_t width = k_width - m_open.size() * k_indent;
    std::string line = "#";
    for (std::size_t begin = 0; begin < comment.size();) {
      const std::size_t end = std::min(comment.find(' ', begin), comment.size());
      const std::string_view word = comment.substr(begin, end - begin);
      if (line.size() + 1 + word.size() > width) {
        add_line(line);
        line = "#";
      }
      line.append(" ").append(word);
      begin = end + 1;
    }
    add_line(line);
  }

  // ---- Blocks ----

  bool has_statement(std::string_view block) const {
    return std::any_of(std::begin(k_statements), std::end(k_statements),
                       [this, block](const STATEMENT_ROW& row) {
                         return row.block == block && applies(row, m_features);
                       });
  }

  // "ebi.region[0]" stands in "ebi", which is open then.
  void add_block(const BLOCK_ROW& block) {
    const std::string name = block.name;
    const std::size_t dot = name.find('.');
    const std::string outer = name.substr(0, dot == std::string::npos ? 0 : dot);
    while (m_open.size() > k_stripe_depth && m_open.back() != outer) close();
    add_line("");
    add_running_comment(block.comment);
    open(block.type, dot == std::string::npos ? name : name.substr(dot + 1));
    for (const STATEMENT_ROW& row : k_statements) {
      if (name == row.block && applies(row, m_features)) add_statement(row);
    }
    add_optional(name);
  }

  // Where anything of the type goes, there is nothing to say.
  static std::string describe_values(const SBD_PARAMETER_RULE& rule) {
    if (rule.value_rule == nullptr) return {};
    if (rule.value_rule->values.kind == SBD_VALUE_SET::VS_ANY) return {};
    SBD_STRING text;
    return sbd_get_values_text(*rule.value_rule, text) ? std::string(text) : std::string();
  }

  void add_statement(const STATEMENT_ROW& row) {
    SBD_PARAMETER_RULE rule;
    const std::string reference = fmt::format("{}.{}", row.block, row.parameter);
    if (!sbd_get_parameter_rule(m_chip, reference.c_str(), rule)) return;
    const std::string comment = row.comment != nullptr ? row.comment : describe_values(rule);
    add_with_comment(fmt::format("{} = {};", row.parameter, row.value), comment);
  }

  bool is_stated(std::string_view block, std::string_view parameter) const {
    return std::any_of(std::begin(k_statements), std::end(k_statements),
                       [this, block, parameter](const STATEMENT_ROW& row) {
                         return block == row.block && parameter == row.parameter &&
                                applies(row, m_features);
                       });
  }

  // What the block may state besides and has a default for.
  void add_optional(std::string_view block) {
    for (const SBD_PARAMETER_RULE& rule : m_rules) {
      const std::string_view place = rule.block_name != nullptr ? rule.block_name : "";
      if (place != block || is_stated(place, rule.parameter_name)) continue;
      SBD_STRING value;
      if (!rule.present_block_default.m_has_value ||
          !sbd_get_value_text(rule.present_block_default, value) || value.empty()) {
        continue;
      }
      add_with_comment(fmt::format("# {} = {};", rule.parameter_name, value.c_str()),
                       describe_values(rule));
    }
  }

  static constexpr std::size_t k_stripe_depth = 2;  // Blocks open while one is in the stripe.

  SBD_VELDRAN::CHIP_TYPE m_chip;
  std::string_view m_chip_name;
  const FEATURES& m_features;
  std::vector<SBD_PARAMETER_RULE> m_rules;
  std::vector<std::string> m_open;  // Names of the blocks around the next line.
  std::string m_text;
};

}  // namespace

const std::vector<STARTER_FEATURE>& starter_features() {
  static const std::vector<STARTER_FEATURE> k_features = {
      {"pll", "clocks from the PLLs"},
      {"sdram", "external memory"},
      {"ebi", "the expansion bus"},
      {"dpram", "port 0 of the dual-port RAM"},
      {"uart", "the serial port"},
      {"trace", "the trace port"},
      {"registers", "a window for the registers"},
      {"sram", "a window for on-chip SRAM 0"},
      {"pld", "a window to the programmable logic"},
      {"gpio", "the general-purpose port"},
      {"interrupts", "interrupts from the programmable logic"}};
  return k_features;
}

// A chip without a feature allows nothing but false for what would enable it.
std::vector<std::string> list_chip_features(std::string_view chip) {
  std::vector<std::string> names;
  for (const STARTER_FEATURE& feature : starter_features()) {
    const auto is_refused = [&feature, chip](const STATEMENT_ROW& row) {
      const bool is_switch = row.when == WHEN::WITH && std::string_view(row.value) == "true";
      if (!is_switch || std::string_view(row.feature) != feature.name) return false;
      SBD_PARAMETER_RULE rule;
      const std::string reference = fmt::format("{}.{}", row.block, row.parameter);
      if (!sbd_get_parameter_rule(find_chip_type(chip), reference.c_str(), rule)) return true;
      return rule.value_rule != nullptr && rule.value_rule->values.kind == SBD_VALUE_SET::VS_FALSE;
    };
    if (std::any_of(std::begin(k_statements), std::end(k_statements), is_refused)) continue;
    names.emplace_back(feature.name);
  }
  return names;
}

std::string make_starter(std::string_view chip, std::string_view name,
                         const std::vector<std::string>& features) {
  return STARTER_WRITER(chip, features).write(name);
}

}  // namespace sbd_tool
