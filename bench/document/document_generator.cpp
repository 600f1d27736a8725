#include "bench/document/document_generator.h"

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t FAN_OUT = 20;

// How a parameter's value is made up.
enum VALUE_RULE { COUNT, MEGAHERTZ, SIZE, ADDRESS, DELAY, FLAG, WORD, TEXT, LIST, REFERENCE, PAIR };

struct PARAMETER_ROW {
  const char* name;
  VALUE_RULE rule;
};

constexpr PARAMETER_ROW STRIPE_ROWS[] = {
    {"type", WORD},
    {"version", TEXT},
    {"endian", WORD},
    {"boot_from_flash", FLAG},
    {"hold_processor", FLAG},
    {"programming_clock_frequency", MEGAHERTZ},
    {"configuration_device", WORD},
};
constexpr PARAMETER_ROW CLOCKS_ROWS[] = {
    {"input_clock_frequency", MEGAHERTZ},
    {"input_clock_units", WORD},
    {"desired_ahb1_clock_frequency", MEGAHERTZ},
    {"desired_ahb2_clock_frequency", MEGAHERTZ},
    {"desired_sdram_clock_frequency", MEGAHERTZ},
    {"pll_ahb_bypass", FLAG},
    {"pll_ahb_m", COUNT},
    {"pll_ahb_n", COUNT},
    {"pll_ahb_k", COUNT},
    {"ahb1_divide", COUNT},
    {"ahb2_divide", COUNT},
    {"pll_sdram_bypass", FLAG},
    {"pll_sdram_m", COUNT},
    {"pll_sdram_n", COUNT},
    {"pll_sdram_k", COUNT},
};
constexpr PARAMETER_ROW SDRAM_ROWS[] = {
    {"enabled", FLAG},
    {"device_name", TEXT},
    {"type", WORD},
    {"data_width", COUNT},
    {"burst_length", COUNT},
    {"row_address_bits", COUNT},
    {"column_address_bits", COUNT},
    {"bank_address_bits", COUNT},
    {"active_to_read_or_write_delay", DELAY},
    {"active_to_precharge_command", DELAY},
    {"precharge_command_period", DELAY},
    {"write_recovery_time", DELAY},
    {"auto_refresh_command_period", DELAY},
    {"refresh_period", DELAY},
    {"cas_latency", DELAY},
    {"input_pin_standard", WORD},
    {"clock_source", REFERENCE},
};
constexpr PARAMETER_ROW WINDOW_ROWS[] = {
    {"enabled", FLAG},
    {"address_base", ADDRESS},
    {"address_size", SIZE},
    {"prefetch", FLAG},
};
constexpr PARAMETER_ROW EBI_ROWS[] = {
    {"enabled", FLAG},
    {"clock_divide", COUNT},
    {"external_clock_enable", FLAG},
    {"timeout_enable", FLAG},
    {"timeout_clock_cycles", COUNT},
    {"split_read", FLAG},
    {"output_pin_standard", WORD},
    {"byte_enable_polarity", WORD},
    {"output_enable_polarity", WORD},
    {"write_enable_polarity", WORD},
    {"input_pin_standard", WORD},
    {"wait_states", LIST},
    {"clock_source", REFERENCE},
};
constexpr PARAMETER_ROW CHIP_SELECT_ROWS[] = {
    {"enabled", FLAG},     {"address_base", ADDRESS}, {"address_size", SIZE}, {"data_width", COUNT},
    {"wait_cycles", LIST}, {"synchronous", FLAG},     {"byte_enable", FLAG},
};
constexpr PARAMETER_ROW MEMORY_ROWS[] = {
    {"enabled", FLAG},
    {"data_width", COUNT},
    {"lock_mode", WORD},
};
constexpr PARAMETER_ROW PORT_ROWS[] = {
    {"enabled", FLAG},
    {"address_base", ADDRESS},
    {"address_size", SIZE},
};
constexpr PARAMETER_ROW BRIDGE_ROWS[] = {
    {"enabled", FLAG}, {"posted_writes", FLAG}, {"arbitration_order", LIST},
    {"masters", PAIR}, {"burst_limit", COUNT},
};
constexpr PARAMETER_ROW UART_ROWS[] = {
    {"enabled", FLAG},  {"baud_rate", COUNT},        {"parity", WORD},    {"stop_bits", DELAY},
    {"label", TEXT},    {"pin_assignment", LIST},    {"slew_rate", WORD}, {"interrupt", COUNT},
    {"buffered", FLAG}, {"clock_source", REFERENCE},
};
constexpr PARAMETER_ROW RESET_ROWS[] = {
    {"enabled", FLAG},  {"watchdog_timeout", COUNT},    {"reset_address", ADDRESS},
    {"polarity", WORD}, {"minimum_pulse_width", DELAY}, {"log_buffer_size", SIZE},
};

// The blocks of a stripe in order; a block of level 1 lies in the one of level 0 before it.
struct BLOCK_ROW {
  int level;
  const char* type;
  const char* name;
  const PARAMETER_ROW* parameters;
  std::size_t count;
};

template <std::size_t SIZE_OF_ROWS>
constexpr BLOCK_ROW block_row(int level, const char* type, const char* name,
                              const PARAMETER_ROW (&rows)[SIZE_OF_ROWS]) {
  return {level, type, name, rows, SIZE_OF_ROWS};
}

constexpr BLOCK_ROW BLOCK_ROWS[] = {
    block_row(0, "parameters", "clocks", CLOCKS_ROWS),
    block_row(0, "parameters", "sdram", SDRAM_ROWS),
    block_row(1, "region", "region[0]", WINDOW_ROWS),
    block_row(1, "region", "region[1]", WINDOW_ROWS),
    block_row(0, "parameters", "ebi", EBI_ROWS),
    block_row(1, "region", "region[0]", CHIP_SELECT_ROWS),
    block_row(1, "region", "region[1]", CHIP_SELECT_ROWS),
    block_row(1, "region", "region[2]", CHIP_SELECT_ROWS),
    block_row(1, "region", "region[3]", CHIP_SELECT_ROWS),
    block_row(0, "parameters", "sram", MEMORY_ROWS),
    block_row(1, "region", "region[0]", PORT_ROWS),
    block_row(1, "region", "region[1]", PORT_ROWS),
    block_row(0, "parameters", "dpram", MEMORY_ROWS),
    block_row(1, "region", "region[0]", PORT_ROWS),
    block_row(1, "region", "region[1]", PORT_ROWS),
    block_row(0, "parameters", "pld_windows", BRIDGE_ROWS),
    block_row(1, "region", "region[0]", WINDOW_ROWS),
    block_row(1, "region", "region[1]", WINDOW_ROWS),
    block_row(1, "region", "region[2]", WINDOW_ROWS),
    block_row(1, "region", "region[3]", WINDOW_ROWS),
    block_row(0, "parameters", "bridge", BRIDGE_ROWS),
    block_row(0, "parameters", "uart", UART_ROWS),
    block_row(0, "parameters", "reset_control", RESET_ROWS),
};
constexpr std::size_t BLOCKS_OF_STRIPE = std::size(BLOCK_ROWS);

constexpr PARAMETER_ROW DEVICE_ROWS[] = {{"family", WORD}, {"revision", TEXT}};

constexpr std::size_t count_stripe_parameters() {
  std::size_t count = std::size(STRIPE_ROWS);
  for (const BLOCK_ROW& row : BLOCK_ROWS) count += row.count;
  return count;
}
static_assert(count_stripe_parameters() + std::size(DEVICE_ROWS) == TYPICAL_PARAMETERS);

constexpr const char* WORDS[] = {"little",    "ddr",    "low",      "high",
                                 "lvttl_3v3", "sstl_2", "fast_slew"};
constexpr const char* TEXTS[] = {"2.2", "512-Mbit DDR SDRAM, x16", "console, front panel", "B"};
constexpr const char* LINE_COMMENTS[] = {"50 MHz x 8 / (1 x 1) = 400 MHz.",
                                         "Two parts side by side, each 32 M x 16.",
                                         "Byte lanes, no prefetch."};
constexpr const char* TAIL_COMMENTS[] = {"in clocks", "64 ms over 8192 rows",
                                         "as fast as the logic closes"};
constexpr unsigned TAIL_COMMENT_EVERY = 8;
constexpr unsigned LINE_COMMENT_EVERY = 3;

class GENERATOR {
 public:
  GENERATOR(std::size_t parameter_count, DOCUMENT_SINK& sink)
      : m_sink(sink), m_left(parameter_count) {}

  void run() {
    begin("device", "board");
    add_parameters(DEVICE_ROWS, std::size(DEVICE_ROWS));
    constexpr std::size_t PER_STRIPE = count_stripe_parameters();
    add_stripes((m_left + PER_STRIPE - 1) / PER_STRIPE);
    end();
  }

 private:
  void add_stripes(std::size_t count) {
    if (count <= FAN_OUT) {
      for (std::size_t i = 0; i < count; i++) add_stripe("stripe_" + std::to_string(i));
      return;
    }
    std::size_t per_bus = FAN_OUT;
    while (per_bus * FAN_OUT < count) per_bus *= FAN_OUT;
    for (std::size_t i = 0; count > 0; i++) {
      const std::size_t part = std::min(per_bus, count);
      begin("bus", "bus_" + std::to_string(i));
      add_stripes(part);
      end();
      count -= part;
    }
  }

  void add_stripe(const std::string& name) {
    begin("module", name);
    add_parameters(STRIPE_ROWS, std::size(STRIPE_ROWS));
    for (std::size_t row = 0; row < BLOCKS_OF_STRIPE && m_left > 0;) row = add_block(row);
    end();
  }

  // Adds the block of a row with those inside it; returns the row behind them.
  std::size_t add_block(std::size_t row) {
    const BLOCK_ROW& block = BLOCK_ROWS[row++];
    begin(block.type, block.name);
    add_parameters(block.parameters, block.count);
    while (row < BLOCKS_OF_STRIPE && BLOCK_ROWS[row].level > block.level && m_left > 0) {
      row = add_block(row);
    }
    end();
    return row;
  }

  void add_parameters(const PARAMETER_ROW* rows, std::size_t count) {
    for (std::size_t i = 0; i < count && m_left > 0; i++, m_left--) {
      const char* const comment = pick(TAIL_COMMENT_EVERY) == 0 ? one_of(TAIL_COMMENTS) : "";
      m_sink.add_parameter(rows[i].name, make_value(rows[i].rule), comment);
    }
  }

  GENERATED_VALUE make_value(VALUE_RULE rule) {
    GENERATED_VALUE value;
    switch (rule) {
      case COUNT:
        value.number = pick(pick(8) == 0 ? 100000 : 32) + 1;
        break;
      case MEGAHERTZ:
        value.number = 10 + pick(400);
        value.unit = GENERATED_VALUE::MEGAHERTZ;
        break;
      case SIZE:
        value.number = std::uint64_t{1} << pick(9);
        value.unit = pick(2) == 0 ? GENERATED_VALUE::KILOBYTES : GENERATED_VALUE::MEGABYTES;
        break;
      case ADDRESS:
        value.kind = GENERATED_VALUE::HEXADECIMAL;
        value.number = pick(0x10000) << 16;
        break;
      case DELAY:
        value.kind = GENERATED_VALUE::TENTHS;
        value.number = pick(100000);
        break;
      case FLAG:
        value.kind = GENERATED_VALUE::BOOLEAN;
        value.number = pick(2);
        break;
      case WORD:
        value.kind = GENERATED_VALUE::WORD;
        value.text = one_of(WORDS);
        break;
      case TEXT:
        value.kind = GENERATED_VALUE::TEXT;
        value.text = one_of(TEXTS);
        break;
      case LIST:
        value.kind = GENERATED_VALUE::LIST;
        for (std::uint64_t left = 2 + pick(4); left > 0; left--) value.elements.push_back(pick(64));
        break;
      case REFERENCE:
        value.kind = GENERATED_VALUE::REFERENCES;
        value.names = {m_previous_block};
        break;
      case PAIR:
        value.kind = GENERATED_VALUE::REFERENCES;
        value.names = {m_previous_block, ".enabled"};
        break;
    }
    return value;
  }

  void begin(const char* type, const std::string& name) {
    const char* const comment = pick(LINE_COMMENT_EVERY) == 0 ? one_of(LINE_COMMENTS) : "";
    m_sink.begin_block(type, name, comment);
    m_path_lengths.push_back(m_path.size());
    if (!m_path.empty()) m_path += '.';
    m_path += name;
    m_previous_block = std::exchange(m_last_block, m_path);
  }

  void end() {
    m_sink.end_block();
    m_path.resize(m_path_lengths.back());
    m_path_lengths.pop_back();
  }

  // From 0 to below `bound`; a generator's raw numbers are the same everywhere.
  std::uint64_t pick(std::uint64_t bound) { return m_random() % bound; }

  template <std::size_t COUNT_OF_TEXTS>
  const char* one_of(const char* const (&texts)[COUNT_OF_TEXTS]) {
    return texts[pick(COUNT_OF_TEXTS)];
  }

  DOCUMENT_SINK& m_sink;
  std::size_t m_left;
  std::string m_path;  // The full name of the block that is open.
  std::vector<std::size_t> m_path_lengths;
  std::string m_last_block;      // The full name of the block begun last,
  std::string m_previous_block;  // and of the one before.
  std::mt19937 m_random{1};
};

}  // namespace

void generate_document(std::size_t parameter_count, DOCUMENT_SINK& sink) {
  GENERATOR(parameter_count, sink).run();
}
