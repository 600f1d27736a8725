#include "tools/clock_view.h"

#include <string>
#include <vector>

#include "tests/tool/device_support.h"

namespace {

using sbd_tool::derive_clocks;
using sbd_tool::derive_widths;
using sbd_tool::DERIVED_VIEW;
using sbd_tool::format_frequency;

using NAMES = std::vector<std::string>;

NAMES setting_names(const DERIVED_VIEW& view) {
  NAMES names;
  for (const auto& setting : view.settings) names.push_back(setting.name);
  return names;
}

TEST_F(DEVICE_TEST, ClocksOfTheirPlls) {
  const auto descriptor = open_board(
      board_with("parameters clocks { input_clock_frequency = 50MHz; pll_ahb_m = 4; pll_ahb_n = 1; "
                 "pll_ahb_k = 2; pll_sdram_m = 3; pll_sdram_n = 1; pll_sdram_k = 1; }"));
  const std::vector<DERIVED_VIEW> clocks = derive_clocks(descriptor->document);
  ASSERT_EQ(clocks.size(), 3U);
  EXPECT_EQ(clocks[0].name, "ahb1");
  EXPECT_EQ(clocks[0].value, 50e6);
  EXPECT_EQ(clocks[0].formula,
            "input_clock_frequency x pll_ahb_m / (pll_ahb_n x pll_ahb_k) / ahb1_divide");
  EXPECT_EQ(clocks[0].calculation, "50 MHz x 4 / (1 x 2) / 2");
  EXPECT_EQ(setting_names(clocks[0]),
            (NAMES{"clocks.input_clock_frequency", "clocks.pll_ahb_bypass", "clocks.pll_ahb_m",
                   "clocks.pll_ahb_n", "clocks.pll_ahb_k", "clocks.ahb1_divide"}));
  EXPECT_EQ(clocks[1].name, "ahb2");
  EXPECT_EQ(clocks[1].value, 25e6);
  EXPECT_EQ(clocks[2].name, "sdram");
  EXPECT_EQ(clocks[2].value, 75e6);
  EXPECT_EQ(clocks[2].calculation, "50 MHz x 3 / (1 x 1) / 2");
  EXPECT_EQ(clocks[2].remark, "not in use: sdram.enabled is false");
}

TEST_F(DEVICE_TEST, BypassedPllsHaveNoPartInTheFormula) {
  const auto descriptor = open_board(board_with(k_good_clocks));
  const std::vector<DERIVED_VIEW> clocks = derive_clocks(descriptor->document);
  EXPECT_EQ(clocks[0].value, 10e6);
  EXPECT_EQ(clocks[0].formula, "input_clock_frequency / ahb1_divide");
  EXPECT_EQ(clocks[1].calculation, "20 MHz / 4");
  EXPECT_EQ(clocks[2].value, 10e6);
  EXPECT_EQ(clocks[2].formula, "input_clock_frequency / 2");
}

TEST_F(DEVICE_TEST, ClocksWithoutValueSayWhy) {
  const auto descriptor = open_board(
      board_with("parameters clocks { input_clock_frequency = 50MHz; pll_ahb_m = 4; pll_ahb_n = 0; "
                 "pll_ahb_k = 2; pll_sdram_m = 3; pll_sdram_n = 1; ahb2_divide = 0; }"));
  const std::vector<DERIVED_VIEW> clocks = derive_clocks(descriptor->document);
  for (const std::size_t i : {0U, 1U}) {
    EXPECT_FALSE(clocks[i].value);
    EXPECT_EQ(clocks[i].problem, "division by 0");
  }
  EXPECT_FALSE(clocks[2].value);
  EXPECT_EQ(clocks[2].problem, "clocks.pll_sdram_k has no value");
  EXPECT_EQ(clocks[2].calculation, "50 MHz x 3 / (1 x ?) / 2");
}

TEST_F(DEVICE_TEST, ProductOfDividersIsToldWhereItWraps) {
  const auto descriptor = open_board(board_with(
      "parameters clocks { input_clock_frequency = 50MHz; pll_ahb_m = 1; pll_ahb_n = 65537; "
      "pll_ahb_k = 64K; pll_sdram_bypass = true; }"));
  const std::vector<DERIVED_VIEW> clocks = derive_clocks(descriptor->document);
  EXPECT_EQ(clocks[0].value, 50e6 / 65536 / 2);
  EXPECT_EQ(clocks[0].remark, "of pll_ahb_n x pll_ahb_k the low 32 bits count: 65536");
}

TEST_F(DEVICE_TEST, ChipsHaveTheirPorts) {
  for (const auto& [chip, count] : {std::pair{"qmxa1", 1U}, {"qmxa4", 2U}, {"qmxa10", 2U}}) {
    const auto descriptor = open_board(board_with(k_good_clocks, "board", chip));
    const std::vector<DERIVED_VIEW> widths = derive_widths(descriptor->document);
    ASSERT_EQ(widths.size(), count) << chip;
    EXPECT_EQ(widths[0].name, "dpram[0]");
    EXPECT_EQ(widths[0].value, 32.0);
    EXPECT_EQ(widths[0].remark, "not in use: dpram.mode[0] is no_ports");
  }
}

std::string dpram_board(const std::string& dpram) {
  return "device board {\nfamily = veldran_arm; type = qmxa10;\nmodule stripe {\n"
         "type = veldran_stripe;\nparameters dpram { " +
         dpram + " }\n}\n}\n";
}

TEST_F(DEVICE_TEST, WidthsOfPortsByThemselvesAndCombined) {
  const auto alone = open_board(dpram_board("mode[0] = one_port; data_width[0] = 8;"));
  EXPECT_EQ(derive_widths(alone->document)[0].value, 8.0);
  EXPECT_EQ(derive_widths(alone->document)[0].formula, "data_width[0]");
  EXPECT_EQ(setting_names(derive_widths(alone->document)[0]),
            (NAMES{"dpram.combined_mode", "dpram.mode[0]", "dpram.data_width[0]"}));

  const auto narrow = open_board(dpram_board("combined_mode = true; combined_data_width = 16;"));
  EXPECT_EQ(derive_widths(narrow->document)[1].value, 16.0);
  EXPECT_EQ(derive_widths(narrow->document)[1].formula, "combined_data_width");

  const auto wide = open_board(dpram_board("combined_mode = true; combined_data_width = 64;"));
  EXPECT_EQ(derive_widths(wide->document)[1].value, 32.0);
  EXPECT_EQ(derive_widths(wide->document)[1].calculation, "64 / 2");

  const auto none = open_board(dpram_board("mode[0] = one_port; data_width[0] = wide;"));
  EXPECT_FALSE(derive_widths(none->document)[0].value);
  EXPECT_EQ(derive_widths(none->document)[0].problem, "dpram.data_width[0] has no value");
}

TEST_F(DEVICE_TEST, SettingsAreCollectedOnce) {
  const auto descriptor = open_board(board_with(k_good_clocks));
  const auto settings = sbd_tool::collect_settings(derive_clocks(descriptor->document),
                                                   derive_widths(descriptor->document));
  NAMES names;
  for (const auto& setting : settings) names.push_back(setting.name);
  EXPECT_EQ(names,
            (NAMES{"clocks.input_clock_frequency", "clocks.pll_ahb_bypass", "clocks.ahb1_divide",
                   "clocks.ahb2_divide", "clocks.pll_sdram_bypass", "sdram.enabled",
                   "dpram.combined_mode", "dpram.mode[0]", "dpram.mode[1]"}));
}

TEST(FORMAT_FREQUENCY, ChoosesTheUnit) {
  EXPECT_EQ(format_frequency(0), "0 Hz");
  EXPECT_EQ(format_frequency(0.5), "0.5 Hz");
  EXPECT_EQ(format_frequency(999), "999 Hz");
  EXPECT_EQ(format_frequency(1000), "1 kHz");
  EXPECT_EQ(format_frequency(32768), "32.768 kHz");
  EXPECT_EQ(format_frequency(1e6), "1 MHz");
  EXPECT_EQ(format_frequency(1e8 / 3), "33.3333333 MHz");
  EXPECT_EQ(format_frequency(4294967295.0), "4294.9673 MHz");
}

}  // namespace
