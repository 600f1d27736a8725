#include "tools/parameter_help.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using sbd_tool::CHIP_HELP;
using sbd_tool::find_near_parameters;
using sbd_tool::find_parameter_help;
using sbd_tool::list_all_parameters;
using sbd_tool::list_block_parameters;

using NAMES = std::vector<std::string>;

TEST(PARAMETER_HELP, TellsTheRuleOfEachChip) {
  const std::vector<CHIP_HELP> helps = find_parameter_help("clocks.pll_ahb_k", "");
  ASSERT_EQ(helps.size(), 3U);
  EXPECT_EQ(helps[0].chip, "qmxa1");
  EXPECT_EQ(helps[0].valid, "1 to 255");
  EXPECT_EQ(helps[1].chip, "qmxa4");
  EXPECT_EQ(helps[1].valid, "1 to 255");
  EXPECT_EQ(helps[2].chip, "qmxa10");
  EXPECT_EQ(helps[2].valid, "1 to 7");
  EXPECT_EQ(helps[2].required, "required when clocks.pll_ahb_bypass is false");
  EXPECT_EQ(helps[2].block, "clocks");
  EXPECT_EQ(helps[2].type, "integer");
  EXPECT_FALSE(helps[2].has_default);
  EXPECT_TRUE(helps[2].is_checked_while_required);
}

TEST(PARAMETER_HELP, TellsTheDefaults) {
  const std::vector<CHIP_HELP> helps = find_parameter_help("EBI.Enabled", "qmxa4");
  ASSERT_EQ(helps.size(), 1U);
  EXPECT_EQ(helps[0].chip, "qmxa4");
  EXPECT_EQ(helps[0].name, "ebi.enabled");
  EXPECT_EQ(helps[0].type, "boolean");
  EXPECT_EQ(helps[0].required, "optional");
  EXPECT_TRUE(helps[0].has_default);
  EXPECT_EQ(helps[0].present_block_default, "true");
  EXPECT_EQ(helps[0].absent_block_default, "false");
  EXPECT_FALSE(helps[0].is_checked_while_required);
}

TEST(PARAMETER_HELP, NamesMayBeginWithDeviceAndModule) {
  ASSERT_EQ(find_parameter_help("board.stripe.sdram.region[0].enabled", "qmxa1").size(), 1U);
  EXPECT_EQ(find_parameter_help("board.stripe.endian", "qmxa1")[0].name, "endian");
  EXPECT_TRUE(find_parameter_help("", "").empty());
  EXPECT_TRUE(find_parameter_help(".", "").empty());
  EXPECT_TRUE(find_parameter_help("enabled", "").empty());
  EXPECT_TRUE(find_parameter_help("endian.", "").empty());
  EXPECT_TRUE(find_parameter_help("endian", "qmxm1").empty());
}

TEST(PARAMETER_HELP, ListsParametersInOrder) {
  const NAMES names = list_all_parameters("");
  EXPECT_EQ(names.size(), 148U);
  EXPECT_EQ(names.front(), "boot_from_flash");
  EXPECT_EQ(list_all_parameters("qmxa1"), names);
  EXPECT_TRUE(list_all_parameters("qmxm1").empty());
  EXPECT_EQ(list_block_parameters("UART", ""),
            (NAMES{"uart.enabled", "uart.input_pin_standard", "uart.output_pin_standard"}));
  EXPECT_EQ(list_block_parameters("sdram.region[1]", "qmxa4").size(), 4U);
  EXPECT_TRUE(list_block_parameters("", "").empty());
  EXPECT_TRUE(list_block_parameters("sd", "").empty());
  EXPECT_TRUE(list_block_parameters("*", "").empty());
}

TEST(PARAMETER_HELP, FindsNearNames) {
  EXPECT_EQ(find_near_parameters("pll_abh_m"), NAMES{"clocks.pll_ahb_m"});
  EXPECT_EQ(find_near_parameters("clock.pll_ahb_m"), NAMES{"clocks.pll_ahb_m"});
  EXPECT_EQ(find_near_parameters("board.stripe.uart.enabld"), NAMES{"uart.enabled"});
  EXPECT_EQ(find_near_parameters("ahb_divide"),
            (NAMES{"clocks.ahb1_divide", "clocks.ahb2_divide"}));
  EXPECT_EQ(find_near_parameters("wait_cycles").size(), 4U);
  EXPECT_TRUE(find_near_parameters("nothing_like_it").empty());
  EXPECT_TRUE(find_near_parameters("").empty());
  EXPECT_TRUE(find_near_parameters(std::string(100000, '.')).empty());
}

}  // namespace
