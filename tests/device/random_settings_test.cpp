// Random descriptors, good and bad, against the model. SBD_TEST_SCALE multiplies their number.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "tests/device/descriptor_text.h"
#include "tests/device/device_support.h"
#include "tests/device/expected_model.h"
#include "tests/device/expected_tables.h"
#include "tests/device/value_choices.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/temporary_files.h"

namespace {

class RANDOM_SETTINGS : public testing::TestWithParam<CHIP> {
 protected:
  RANDOM_SETTINGS() : m_random(9000 + static_cast<unsigned>(GetParam())) {
    for (const PARAMETER_ROW& row : rows_of(chip())) {
      m_choices.emplace(row.reference(), values_to_try(row, chip()));
    }
  }

  CHIP chip() const { return GetParam(); }

  std::size_t below(std::size_t end) { return static_cast<std::size_t>(m_random() % end); }

  // True in `percent` of the cases.
  bool chance(unsigned percent) { return m_random() % 100 < percent; }

  WRITTEN random_number() {
    const auto number =
        static_cast<std::uint32_t>(m_random() % (std::uint64_t{1} << (m_random() % 33)));
    const char* const units[] = {"", "", "", "K", "KB", "M", "MB", "G", "GB", "Hz", "MHz", "mhZ"};
    const std::string unit = units[m_random() % 12];
    switch (m_random() % 6) {
      case 0:
        return hexadecimal(number, unit);
      case 1:
        return octal(number);
      case 2:
        return binary(number);
      case 3:
        return fraction(std::to_string(number) + "." + std::to_string(m_random() % 1000000), unit);
      case 4:
        return fraction("-" + std::to_string(number) + ".5", unit);
      default:
        return whole(number, unit);
    }
  }

  // `percent_written` of the parameters are stated, `percent_odd` of these in any odd way.
  SETTINGS random_settings(unsigned percent_written, unsigned percent_odd) {
    SETTINGS settings = chance(80) ? minimal_settings() : SETTINGS();
    const SETTINGS good = full_settings(chip());
    const bool is_plain_pll = chance(50);
    for (const auto& [name, choices] : m_choices) {
      if (!chance(percent_written)) continue;
      if (!chance(percent_odd)) {
        const WRITTEN* const value = good.find(name);
        settings.set(name, *value);
        if (value->form == WRITTEN::FLAG && chance(50)) settings.set(name, flag(chance(50)));
      } else if (choices.front().form == WRITTEN::NUMBER && chance(30)) {
        settings.set(name, random_number());
      } else {
        settings.set(name, choices[below(choices.size())]);
      }
    }
    if (is_plain_pll) {
      settings.set("clocks.pll_ahb_bypass", flag(chance(30)));
      settings.set("clocks.pll_sdram_bypass", flag(chance(30)));
    }
    if (chance(20)) settings.remove_block(random_block());
    if (chance(20)) settings.add_block(random_block());
    return settings;
  }

  std::string random_block() {
    const std::vector<PARAMETER_ROW>& rows = rows_of(chip());
    const PARAMETER_ROW* row = nullptr;
    do {
      row = &rows[below(rows.size())];
    } while (!row->block);
    return row->block;
  }

  STYLE random_style() {
    STYLE style;
    style.variety = &m_random;
    if (chance(30)) style.device = "d[0]";
    if (chance(30)) style.module = "Main_Stripe[3]";
    return style;
  }

  void expect_everything(const SETTINGS& settings) {
    const STYLE style = random_style();
    SBD_VELDRAN device(mixed_case(style.device, m_random).c_str());
    const EXPECTED_DEVICE expected(settings, chip());
    expect_findings(settings, chip(), expected, device, style);
    ++(expected.is_good() ? m_good_count : m_bad_count);
    MESSAGE_RECORDER recorder;
    expect_all_values(device, expected, recorder);
    expect_clocks_and_widths(device, expected, recorder);
  }

  std::mt19937_64 m_random;
  std::map<std::string, std::vector<WRITTEN>> m_choices;
  std::size_t m_good_count = 0, m_bad_count = 0;
};

INSTANTIATE_TEST_SUITE_P(CHIPS, RANDOM_SETTINGS, testing::ValuesIn(ALL_CHIPS),
                         [](const auto& parameter) { return name_of(parameter.param); });

TEST_P(RANDOM_SETTINGS, WildDescriptors) {
  const std::size_t count = scaled(1200);
  for (std::size_t index = 0; index < count && !HasFailure(); ++index) {
    SCOPED_TRACE(index);
    expect_everything(random_settings(static_cast<unsigned>(m_random() % 101),
                                      static_cast<unsigned>(m_random() % 101)));
  }
}

TEST_P(RANDOM_SETTINGS, AlmostGoodDescriptors) {
  const std::size_t count = scaled(1200);
  for (std::size_t index = 0; index < count && !HasFailure(); ++index) {
    SCOPED_TRACE(index);
    SETTINGS settings = full_settings(chip());
    // A few parameters are left out, changed or get another form of their value.
    for (std::size_t changes = m_random() % 4; changes > 0; --changes) {
      auto choice = m_choices.begin();
      std::advance(choice, static_cast<std::ptrdiff_t>(m_random() % m_choices.size()));
      if (chance(30)) {
        settings.remove(choice->first);
      } else {
        settings.set(choice->first, choice->second[below(choice->second.size())]);
      }
    }
    expect_everything(settings);
  }
  EXPECT_GT(m_good_count, count / 10);
  EXPECT_GT(m_bad_count, count / 10);
}

// One object reads one descriptor after the other, from files and from texts.
TEST_P(RANDOM_SETTINGS, OneObjectReadsManyDescriptors) {
  const TEMPORARY_DIRECTORY directory;
  SBD_VELDRAN device("board");
  const std::size_t count = scaled(150);
  for (std::size_t index = 0; index < count && !HasFailure(); ++index) {
    SCOPED_TRACE(index);
    const SETTINGS settings = random_settings(60, 20);
    const CHIP next_chip = ALL_CHIPS[m_random() % 3];
    STYLE style;
    style.variety = &m_random;
    const std::string text = descriptor_text(settings, next_chip, style);
    const EXPECTED_DEVICE expected(settings, next_chip);
    MESSAGE_RECORDER recorder;
    const bool result = index % 2 == 0 ? device.read(directory.write("d.sbd", text).c_str())
                                       : read_text(device, text);
    EXPECT_EQ(result, expected.is_good()) << text;
    EXPECT_EQ(posted(recorder), expected_messages(expected)) << text;
    expect_all_values(device, expected, recorder);
    expect_clocks_and_widths(device, expected, recorder);
  }
}

}  // namespace
