#include "tools/advice.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/tool/advice_support.h"
#include "tools/message_help.h"

namespace {

using sbd_tool::FINDING;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char k_unknown_parameter[] = "TOOL_UNKNOWN_PARAMETER";
constexpr char k_unknown_block[] = "TOOL_UNKNOWN_BLOCK";
constexpr char k_not_read[] = "TOOL_NOT_READ";
constexpr char k_overlap[] = "TOOL_WINDOWS_OVERLAP";
constexpr char k_beyond[] = "TOOL_WINDOW_BEYOND_4G";
constexpr char k_no_effect[] = "TOOL_NO_EFFECT";
constexpr char k_default[] = "TOOL_DEFAULT_STATED";

std::string window(const std::string& name, const std::string& base, const std::string& size,
                   const std::string& more = "") {
  return "region " + name + " { address_base = " + base + "; address_size = " + size + "; " + more +
         " }\n";
}

TEST(ADVICE_KEYS, AreAllExplained) {
  for (const std::string_view key : sbd_tool::list_advice_keys()) {
    const sbd_tool::MESSAGE_HELP* const help = sbd_tool::find_message(key);
    ASSERT_NE(help, nullptr) << key;
    EXPECT_EQ(help->key, key);
    EXPECT_NE(help->severity, sbd_tool::SEVERITY::ERROR) << key;
  }
}

// ---- What nothing looks at ---------------------------------------------------------------------

TEST_F(ADVICE_TEST, GoodDevicesHaveNone) {
  EXPECT_TRUE(check("").findings.empty());
}

TEST_F(ADVICE_TEST, MisspelledParametersAreProposedRight) {
  const auto file = check(
      "parameters clocks { input_clock_frequency = 20MHz; pll_abh_bypass = true;"
      " PLL_AHB_M = 2; pll_ahb_n = 1; pll_ahb_k = 1; pll_sdram_bypass = true; }");
  ASSERT_EQ(file.findings.list.size(), 1U);
  const FINDING& finding = file.findings.list[0];
  EXPECT_EQ(finding.key, k_unknown_parameter);
  EXPECT_EQ(finding.text,
            "Nothing looks at parameter \"clocks.pll_abh_bypass\": qmxa10 has none of that name");
  EXPECT_EQ(finding.mend, "did you mean 'pll_ahb_bypass'?");
  EXPECT_EQ(finding.replacement, "pll_ahb_bypass");
  EXPECT_EQ(finding.device, "board");
  ASSERT_TRUE(finding.place);
  EXPECT_EQ(finding.place->length, std::string("pll_abh_bypass").size());
}

TEST_F(ADVICE_TEST, MissingParametersAreFoundUnderMisspelledNames) {
  const auto file = check(
      "parameters clocks { input_clock_frequency = 20MHz; pll_abh_m = 2;"
      " pll_ahb_n = 1; pll_ahb_k = 1; pll_sdram_bypass = true; }");
  ASSERT_EQ(file.findings.list.size(), 2U);
  EXPECT_EQ(file.findings.list[0].key, "ESBD_SBD_PARAMETER_MISSING_ERROR");
  EXPECT_EQ(file.findings.list[0].parameter, "clocks.pll_ahb_m");
  EXPECT_EQ(file.findings.list[0].mend, "is it 'pll_abh_m' in line 8?");
  EXPECT_EQ(file.findings.list[1].mend, "did you mean 'pll_ahb_m'?");
}

TEST_F(ADVICE_TEST, WhatIsThereAlreadyIsNotProposed) {
  EXPECT_THAT(find(k_unknown_parameter, "parameters uart { enabled = false; enabeld = true; }"),
              ElementsAre("Nothing looks at parameter \"uart.enabeld\": qmxa10 has none of that "
                          "name; \"uart.enabled\" is stated as well"));
}

TEST_F(ADVICE_TEST, ParametersInTheWrongBlockAreToldTheirOwn) {
  EXPECT_THAT(find(k_unknown_parameter, "burst_length = 4;"),
              ElementsAre(HasSubstr("; did you mean 'sdram.burst_length'?")));
}

TEST_F(ADVICE_TEST, AnIndexMayBeLeftOutButIsNoMisspelling) {
  EXPECT_THAT(find(k_unknown_block, "region pld[4] { enabled = false; }"),
              ElementsAre("Nothing looks at block \"pld[4]\" and what is in it: qmxa10 has none of "
                          "that name"));
  EXPECT_THAT(find(k_unknown_block, "region sram { enabled = false; }"),
              ElementsAre(HasSubstr("did you mean 'sram[0]' or 'sram[1]'?")));
}

TEST_F(ADVICE_TEST, MisspelledBlocksAreToldOnce) {
  EXPECT_THAT(find(k_unknown_block,
                   "parameters sdarm { enabled = true; region region[0] { enabled = true; } }"),
              ElementsAre(HasSubstr("\"sdarm\" and what is in it: qmxa10 has none of that name; "
                                    "did you mean 'sdram'?")));
}

TEST_F(ADVICE_TEST, DescriptionsAreInfos) {
  const std::string text = "vantrel_version = \"2.2\"; flash < .dpram >; bus ahb1 { width = 32; }";
  EXPECT_TRUE(check(text).findings.empty());
  EXPECT_EQ(check(text).findings.hidden_count, 4U);  // With one stated default.
  m_options.has_infos = true;
  EXPECT_THAT(find(k_not_read, text),
              ElementsAre("The device does not depend on parameter \"vantrel_version\"",
                          "The device does not depend on parameter \"flash\"",
                          "The device does not depend on block \"ahb1\""));
}

TEST_F(ADVICE_TEST, OutsideTheStripeNothingIsLookedFor) {
  const std::string text = board_with(k_good_clocks);
  const TEMPORARY_DIRECTORY folder;
  const std::string more = "crystal = 12; module other { enabeld = 1; } " + text.substr(15);
  const auto file =
      sbd_tool::check_file(folder.write("a.sbd", text.substr(0, 15) + more), m_options);
  EXPECT_TRUE(file.findings.empty());
}

// ---- Windows -----------------------------------------------------------------------------------

TEST_F(ADVICE_TEST, OverlappingWindowsAreToldAtTheLaterOne) {
  EXPECT_THAT(find(k_overlap, window("sram[0]", "0x20000000", "128K") +
                                  window("sram[1]", "0x2001FFFF", "64K")),
              ElementsAre("Memory window \"sram[1]\" is 0x2001FFFF to 0x2002FFFE and overlaps "
                          "\"sram[0]\"; \"sram[0]\" is 0x20000000 to 0x2001FFFF"));
}

TEST_F(ADVICE_TEST, NeighboursDoNotOverlap) {
  EXPECT_THAT(find(k_overlap, window("sram[0]", "0x20000000", "128K") +
                                  window("sram[1]", "0x20020000", "64K")),
              IsEmpty());
}

TEST_F(ADVICE_TEST, EveryPairIsTold) {
  EXPECT_EQ(find(k_overlap, window("pld[0]", "0", "64K") + window("pld[1]", "0", "64K") +
                                window("pld[2]", "32K", "64K") + window("pld[3]", "1M", "64K"))
                .size(),
            3U);
}

TEST_F(ADVICE_TEST, DisabledWindowsDoNotCount) {
  EXPECT_THAT(find(k_overlap,
                   window("pld[0]", "0", "64K") + window("pld[1]", "0", "64K", "enabled = false;")),
              IsEmpty());
  // The controller of the window is off.
  EXPECT_THAT(
      find(k_overlap, window("pld[0]", "0", "64K") + "parameters sdram { enabled = false; " +
                          window("region[0]", "0", "64K") + "}"),
      IsEmpty());
}

TEST_F(ADVICE_TEST, WindowsEndWithTheLastAddress) {
  EXPECT_THAT(find(k_beyond, window("pld[0]", "0xFFFF0000", "64K")), IsEmpty());
  EXPECT_THAT(find(k_beyond, window("pld[0]", "0xFFFF0000", "65537")),
              ElementsAre("Memory window \"pld[0]\" is 0xFFFF0000 to 0x100000000, beyond the last "
                          "address 0xFFFFFFFF"));
}

// What counts is what the map shows: the 32 bits that a device takes.
TEST_F(ADVICE_TEST, WindowsAreWhereTheDeviceTakesThemToBe) {
  EXPECT_THAT(
      find(k_beyond, window("pld[0]", "4G", "64K")),
      ElementsAre("Memory window \"pld[0]\" is not as stated: pld[0].address_base counts as "
                  "0, not 4294967296"));
  EXPECT_THAT(
      find(k_beyond, window("pld[0]", "0", "4G")),
      ElementsAre("Memory window \"pld[0]\" is not as stated: pld[0].address_size counts as "
                  "0, not 4294967296"));
  EXPECT_THAT(find(k_overlap, window("pld[0]", "4G", "64K") + window("pld[1]", "32K", "64K")),
              ElementsAre("Memory window \"pld[1]\" is 0x00008000 to 0x00017FFF and overlaps "
                          "\"pld[0]\"; \"pld[0]\" is 0x00000000 to 0x0000FFFF"));
  EXPECT_THAT(find(k_overlap, window("pld[0]", "0", "4G") + window("pld[1]", "32K", "64K")),
              IsEmpty());
  EXPECT_THAT(find(k_beyond, window("pld[0]", "4G", "64K", "enabled = false;")), IsEmpty());
  EXPECT_THAT(find(k_beyond, window("pld[0]", "1.5", "64K")), IsEmpty());
}

// ---- Effects -----------------------------------------------------------------------------------

TEST_F(ADVICE_TEST, FactorsOfBypassedPllsHaveNoEffect) {
  EXPECT_THAT(
      find(k_no_effect,
           "parameters clocks { input_clock_frequency = 20MHz; pll_ahb_bypass = true;"
           " pll_sdram_bypass = true; pll_ahb_m = 2; pll_ahb_k = 1; pll_sdram_n = 4; }"),
      ElementsAre(
          "Parameters \"clocks.pll_ahb_m\" and \"clocks.pll_ahb_k\" have no effect; because "
          "clocks.pll_ahb_bypass is true",
          "Parameter \"clocks.pll_sdram_n\" has no effect; because clocks.pll_sdram_bypass "
          "is true"));
}

TEST_F(ADVICE_TEST, ValuesOfDisabledControllersHaveNoEffect) {
  EXPECT_THAT(find(k_no_effect,
                   "parameters sdram { enabled = false; burst_length = 4; data_width = 32;"
                   " cas_latency = 2; region region[0] { enabled = true; address_base = 0; } }"),
              ElementsAre("Parameters \"sdram.burst_length\" and 4 more have no effect; because "
                          "sdram.enabled is false"));
}

TEST_F(ADVICE_TEST, ModesDoWithoutSomeSettings) {
  EXPECT_THAT(find(k_no_effect, "parameters pld { gpio_port_width = 4; }", "qmxa4"),
              ElementsAre("Parameter \"pld.gpio_port_width\" has no effect; because "
                          "pld.use_gpio_port is false by default"));
  EXPECT_THAT(
      find(k_no_effect, "parameters pld { gpio_port_width = 4; use_gpio_port = true; }", "qmxa4"),
      IsEmpty());
}

TEST_F(ADVICE_TEST, ParametersInUseHaveAnEffect) {
  EXPECT_THAT(find(k_no_effect,
                   "parameters uart { enabled = true; input_pin_standard = sstl_2;"
                   " output_pin_standard = fast_slew; }"),
              IsEmpty());
}

TEST_F(ADVICE_TEST, DefaultsAreInfos) {
  m_options.has_infos = true;
  const auto defaults =
      find(k_default,
           "endian = LITTLE; hold_processor = true; configuration_device = kvp4;"
           "parameters clocks { input_clock_frequency = 20MHz; pll_ahb_bypass = true;"
           " pll_sdram_bypass = true; ahb1_divide = 0b10; ahb2_divide = 8; }");
  EXPECT_THAT(defaults, ElementsAre("Parameter \"dpram.mode[0]\" states its default no_ports",
                                    "Parameter \"endian\" states its default little",
                                    "Parameter \"clocks.ahb1_divide\" states its default 2"));
}

// ---- Options -----------------------------------------------------------------------------------

TEST_F(ADVICE_TEST, IsOffWhereItIsNotWanted) {
  const std::string text = "enabeld = true; burst_length = 4;" + window("pld[0]", "4G", "64K");
  EXPECT_EQ(check(text).findings.warning_count, 3U);
  EXPECT_EQ(check(text).outcome, sbd_tool::EXIT_FINE);
  m_options.do_warnings_count = true;
  EXPECT_EQ(check(text).outcome, sbd_tool::EXIT_FAULTS);
  m_options.disabled = {k_unknown_parameter};
  EXPECT_EQ(check(text).findings.warning_count, 1U);
  m_options.has_advice = false;
  EXPECT_TRUE(check(text).findings.empty());
  EXPECT_EQ(check(text).outcome, sbd_tool::EXIT_FINE);
}

TEST_F(ADVICE_TEST, ComesInTheOrderOfTheFile) {
  const auto findings =
      check(window("pld[0]", "4G", "64K") + "enabeld = 1;\n" + window("pld[1]", "4G", "1K"))
          .findings;
  ASSERT_EQ(findings.list.size(), 4U);
  for (std::size_t i = 1; i != findings.list.size(); ++i) {
    EXPECT_LE(findings.list[i - 1].place->offset, findings.list[i].place->offset);
  }
}

}  // namespace
