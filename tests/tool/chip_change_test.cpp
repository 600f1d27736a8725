#include "tools/chip_change.h"

#include <gmock/gmock.h>

#include <string>

#include "tests/tool/advice_support.h"

namespace {

using sbd_tool::CHIP_MATRIX;
using sbd_tool::SEVERITY;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char k_wide[] = "parameters pld { use_gpio_port = true; gpio_port_width = 8; }";

class CHIP_CHANGE_TEST : public ADVICE_TEST {
 protected:
  std::unique_ptr<CHIP_MATRIX> make_matrix(const std::string& text, sbd_tool::FINDINGS& findings) {
    const auto descriptor = read(text);
    auto matrix = sbd_tool::make_chip_matrix(*descriptor, "board", 0);
    findings = std::move(descriptor->findings);
    return matrix;
  }
};

TEST_F(CHIP_CHANGE_TEST, RulesOfTheOtherChipCount) {
  EXPECT_EQ(check(k_wide, "qmxa4").findings.error_count, 0U);
  m_options.chip = "qmxa1";
  const auto narrow = check(k_wide, "qmxa4");
  ASSERT_EQ(narrow.findings.error_count, 1U);
  EXPECT_EQ(narrow.findings.list[0].note, "valid on qmxa1: 4");
  ASSERT_TRUE(narrow.findings.list[0].place);
  EXPECT_EQ(narrow.outcome, sbd_tool::EXIT_FAULTS);
  ASSERT_EQ(narrow.devices.size(), 1U);
  EXPECT_EQ(narrow.devices[0].chip, "qmxa1");
  EXPECT_EQ(narrow.devices[0].own_chip, "qmxa4");
}

TEST_F(CHIP_CHANGE_TEST, FaultsOfTheOwnChipAreNotTold) {
  EXPECT_EQ(check(k_wide, "QMXA1").findings.error_count, 1U);
  m_options.chip = "qmxa4";
  EXPECT_TRUE(check(k_wide, "QMXA1").findings.empty());
}

TEST_F(CHIP_CHANGE_TEST, TheOwnChipIsNoChange) {
  m_options.chip = "qmxa4";
  EXPECT_EQ(check(k_wide, "QMXA4").devices[0].own_chip, "");
}

TEST_F(CHIP_CHANGE_TEST, PlacesStayThoseOfTheFile) {
  const std::string text = std::string(k_wide) + "\nenabeld = 1;";
  const auto before = check(text, "qmxa4").findings;
  m_options.chip = "qmxa10";
  const auto after = check(text, "qmxa4").findings;
  ASSERT_EQ(before.list.size(), 1U);
  EXPECT_EQ(after.list.back().place->offset, before.list[0].place->offset);
}

TEST_F(CHIP_CHANGE_TEST, DefaultsThatDifferAreTold) {
  const std::string text = "parameters trace { output_pin_standard = fast_slew; }";
  m_options.chip = "qmxa1";
  EXPECT_THAT(
      find("TOOL_VALUE_CHANGES", text, "qmxa10"),
      ElementsAre("Parameter \"trace.enabled\" is false on qmxa1, but true on qmxa10; it is "
                  "not stated, and the chips have different defaults"));
  m_options.chip = "qmxa4";
  EXPECT_THAT(find("TOOL_VALUE_CHANGES", text, "qmxa10"), IsEmpty());
}

TEST_F(CHIP_CHANGE_TEST, OtherFamiliesCanBeTried) {
  std::string text = board_with(k_good_clocks, "board", "qmxm4");
  text.replace(text.find("veldran_arm"), 11, "veldran_mips");
  const TEMPORARY_DIRECTORY folder;
  const std::string path = folder.write("a.sbd", text);
  EXPECT_EQ(sbd_tool::check_file(path, m_options).findings.error_count, 1U);
  m_options.chip = "qmxa4";
  EXPECT_TRUE(sbd_tool::check_file(path, m_options).findings.empty());
}

TEST_F(CHIP_CHANGE_TEST, WhatIsNoChipAtAllIsToldAsUsual) {
  m_options.chip = "qmxa4";
  EXPECT_EQ(check("", "12").findings.list[0].key, "ESBD_SBD_VEL_DEVICE_ERROR");
  m_options.devices = {"other"};
  EXPECT_EQ(check("").findings.list[0].key, "ESBD_SBD_VEL_DEVICE_ERROR");
}

TEST_F(CHIP_CHANGE_TEST, MatrixHasTheFaultsOfEachChip) {
  sbd_tool::FINDINGS findings;
  const auto matrix = make_matrix(
      board_with(std::string(k_good_clocks) + k_wide + "endian = middle;", "board", "QMXA4"),
      findings);
  ASSERT_NE(matrix, nullptr);
  EXPECT_TRUE(findings.empty());
  EXPECT_EQ(matrix->own_chip, "qmxa4");
  EXPECT_THAT(matrix->chips, ElementsAre("qmxa1", "qmxa4", "qmxa10"));
  EXPECT_THAT(matrix->fault_counts, ElementsAre(2U, 1U, 2U));
  ASSERT_EQ(matrix->rows.size(), 3U);
  EXPECT_EQ(matrix->rows[0].parameter, "pld.gpio_port_width");
  EXPECT_THAT(
      matrix->rows[0].faults,
      ElementsAre(CHIP_MATRIX::FAULT::INVALID, CHIP_MATRIX::FAULT::NONE, CHIP_MATRIX::FAULT::NONE));
}

TEST_F(CHIP_CHANGE_TEST, NoMatrixWithoutParameters) {
  sbd_tool::FINDINGS findings;
  EXPECT_EQ(make_matrix("device board { type = qmxa4; x = 1; }", findings), nullptr);
  EXPECT_EQ(findings.error_count, 1U);
  EXPECT_EQ(make_matrix("device board { family = veldran_arm; type = qmxa4; }", findings), nullptr);
  ASSERT_EQ(findings.list.size(), 1U);
  EXPECT_EQ(findings.list[0].severity, SEVERITY::WARNING);
}

}  // namespace
