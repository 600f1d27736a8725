#include "tools/device_view.h"

#include <string>
#include <vector>

#include "tests/tool/device_support.h"

namespace {

using sbd_tool::DESCRIPTOR;
using sbd_tool::FINDING;
using sbd_tool::list_devices;
using sbd_tool::open_device;
using sbd_tool::PARAMETER_VIEW;
using sbd_tool::SEVERITY;
using sbd_tool::SOURCE_RANGE;
using sbd_tool::view_parameter;

using NAMES = std::vector<std::string>;

std::string text_at(const DESCRIPTOR& descriptor, const std::optional<SOURCE_RANGE>& place) {
  return place ? descriptor.source.substr(place->offset, place->length) : "(no place)";
}

// The finding about the parameter; it must be the only one.
const FINDING& finding_about(const DESCRIPTOR& descriptor, const std::string& parameter) {
  static const FINDING k_none;
  const FINDING* found = nullptr;
  for (const FINDING& finding : descriptor.findings.list) {
    if (finding.text.find("\"" + parameter + "\"") == std::string::npos) continue;
    EXPECT_EQ(found, nullptr) << parameter;
    found = &finding;
  }
  EXPECT_NE(found, nullptr) << parameter;
  return found != nullptr ? *found : k_none;
}

TEST_F(DEVICE_TEST, DevicesAreListedInFileOrder) {
  EXPECT_EQ(list_devices(read("device b { x = 1; }\n# no\ndevice A[1] { x = 1; }\n")->document),
            (NAMES{"b", "A[1]"}));
  EXPECT_EQ(list_devices(read("")->document), NAMES{});
}

TEST_F(DEVICE_TEST, LongListsOfDevicesAreCut) {
  EXPECT_EQ(sbd_tool::join_device_names({"a", "b"}), "a, b");
  EXPECT_EQ(sbd_tool::join_device_names({}), "");
  const std::string text = sbd_tool::join_device_names(NAMES(25, "d"));
  EXPECT_EQ(text.substr(text.size() - 10), "and 5 more");
}

TEST_F(DEVICE_TEST, GoodDeviceHasParametersAndNoFindings) {
  auto descriptor = read(board_with(k_good_clocks));
  EXPECT_TRUE(open_device(*descriptor, "Board", 0));
  EXPECT_TRUE(descriptor->findings.empty());
  EXPECT_EQ(descriptor->outcome, sbd_tool::EXIT_FINE);
  EXPECT_EQ(sbd_tool::list_parameters(descriptor->document).size(), 148U);
}

TEST_F(DEVICE_TEST, MissingParameterIsMarkedWhereItBelongs) {
  auto descriptor =
      open_board(board_with("parameters clocks { input_clock_frequency = 20MHz; "
                            "pll_sdram_bypass = true; pll_ahb_n = 1; }\n"
                            "boot_from_flash = false;"));
  EXPECT_EQ(descriptor->outcome, sbd_tool::EXIT_FAULTS);
  const FINDING& in_block = finding_about(*descriptor, "clocks.pll_ahb_m");
  EXPECT_EQ(in_block.key, "ESBD_SBD_PARAMETER_MISSING_ERROR");
  EXPECT_EQ(in_block.device, "board");
  EXPECT_EQ(text_at(*descriptor, in_block.place), "clocks");
  EXPECT_EQ(in_block.note,
            "required because clocks.pll_ahb_bypass is false, default of a present block");
  EXPECT_FALSE(in_block.note_place);
  const FINDING& in_module = finding_about(*descriptor, "programming_clock_frequency");
  EXPECT_EQ(text_at(*descriptor, in_module.place), "stripe");
  EXPECT_EQ(in_module.note, "required because boot_from_flash is false");
  EXPECT_EQ(text_at(*descriptor, in_module.note_place), "boot_from_flash = false;");
}

TEST_F(DEVICE_TEST, MissingParameterOfAnAbsentBlockIsMarkedAtTheModule) {
  auto descriptor = open_board(board_with(""));
  const FINDING& always = finding_about(*descriptor, "clocks.input_clock_frequency");
  EXPECT_EQ(text_at(*descriptor, always.place), "stripe");
  EXPECT_EQ(always.note, "always required");
  EXPECT_EQ(finding_about(*descriptor, "clocks.pll_ahb_m").note,
            "required because clocks.pll_ahb_bypass is false, default of an absent block");
}

struct INVALID_CASE {
  const char* statements;
  const char* parameter;
  const char* place;
  const char* note;
};

TEST_F(DEVICE_TEST, InvalidValueSaysWhatIsValidAndWhatIsNotPlainToSee) {
  const INVALID_CASE cases[] = {
      {"endian = middle;", "endian", "endian = middle;", "valid on qmxa10: one of: little, big"},
      {"endian = \"BIG\";", "endian", "endian = \"BIG\";",
       "valid on qmxa10: one of: little, big; without the quotes"},
      {"endian = \"middle\";", "endian", "endian = \"middle\";",
       "valid on qmxa10: one of: little, big"},
      {"hold_processor = 1;", "hold_processor", "hold_processor = 1;",
       "valid on qmxa10: true or false; this is a number"},
      {"hold_processor < .endian >; endian = big;", "hold_processor", "hold_processor < .endian >;",
       "valid on qmxa10: true or false; this is a reference"},
      {"parameters sdram { burst_length = 3; }", "sdram.burst_length", "burst_length = 3;",
       "valid on qmxa10: one of: 1, 2, 4, 8"},
      {"parameters sdram { burst_length = 0x3; }", "sdram.burst_length", "burst_length = 0x3;",
       "valid on qmxa10: one of: 1, 2, 4, 8; 0x3 is 3"},
      {"parameters sdram { burst_length = {1, 2}; }", "sdram.burst_length",
       "burst_length = {1, 2};", "valid on qmxa10: one of: 1, 2, 4, 8; this is a list"},
      {"parameters uart { input_pin_standard = sstl_2; }", "uart.output_pin_standard", "uart",
       "not stated, but required because uart.enabled is true, default of a present block; valid "
       "on qmxa10: one of: slow_slew, fast_slew, pci_diode, open_drain"}};
  for (const INVALID_CASE& one : cases) {
    auto descriptor = open_board(board_with(std::string(k_good_clocks) + one.statements));
    const FINDING& finding = finding_about(*descriptor, one.parameter);
    EXPECT_EQ(finding.key, "ESBD_SBD_PARAMETER_VALUE_ERROR") << one.statements;
    EXPECT_EQ(text_at(*descriptor, finding.place), one.place) << one.statements;
    EXPECT_EQ(finding.note, one.note) << one.statements;
  }
}

TEST_F(DEVICE_TEST, LimitCountsTheFindingsOfAllDevices) {
  auto descriptor = read(board_with("", "a") + board_with("", "b"));
  open_device(*descriptor, "a", 5);
  const std::size_t errors_of_one = descriptor->findings.error_count;
  EXPECT_GT(errors_of_one, 5U);
  open_device(*descriptor, "b", 5);
  EXPECT_EQ(descriptor->findings.list.size(), 5U);
  EXPECT_EQ(descriptor->findings.error_count, 2 * errors_of_one);
  EXPECT_EQ(descriptor->findings.omitted_count, 2 * errors_of_one - 5);
}

TEST_F(DEVICE_TEST, ChipWithoutRulesIsTold) {
  auto descriptor = read(
      "device board { family = veldran_mips; type = QMXM1;\nmodule m { type = veldran_stripe; } }");
  EXPECT_FALSE(open_device(*descriptor, "board", 0));
  ASSERT_EQ(descriptor->findings.list.size(), 1U);
  EXPECT_EQ(descriptor->findings.list[0].key, sbd_tool::k_no_rules_key);
  EXPECT_EQ(descriptor->findings.list[0].severity, SEVERITY::ERROR);
  EXPECT_EQ(text_at(*descriptor, descriptor->findings.list[0].place), "board");
  EXPECT_EQ(descriptor->outcome, sbd_tool::EXIT_FAULTS);
}

TEST_F(DEVICE_TEST, DeviceWithoutStripeIsAWarning) {
  auto descriptor = read("device board { family = veldran_arm; type = qmxa1; }");
  EXPECT_FALSE(open_device(*descriptor, "board", 0));
  ASSERT_EQ(descriptor->findings.list.size(), 1U);
  EXPECT_EQ(descriptor->findings.list[0].key, sbd_tool::k_no_stripe_key);
  EXPECT_EQ(descriptor->findings.warning_count, 1U);
  EXPECT_EQ(descriptor->outcome, sbd_tool::EXIT_FINE);
}

TEST_F(DEVICE_TEST, UnknownDeviceIsAnErrorInAnyFile) {
  for (const std::string text : {"", "device other { x = 1; }"}) {
    auto descriptor = read(text);
    EXPECT_FALSE(open_device(*descriptor, "board", 0));
    ASSERT_EQ(descriptor->findings.list.size(), 1U) << text;
    EXPECT_EQ(descriptor->findings.list[0].key, "ESBD_SBD_VEL_DEVICE_ERROR");
    EXPECT_FALSE(descriptor->findings.list[0].place);
    EXPECT_EQ(descriptor->outcome, sbd_tool::EXIT_FAULTS);
  }
}

TEST_F(DEVICE_TEST, ParametersTellValueAndOrigin) {
  auto descriptor =
      open_board(board_with("hold_processor = TRUE; endian = 5;\n"
                            "parameters clocks { input_clock_frequency = 0x10K; }"));
  const SBD_VELDRAN& device = descriptor->document;
  const PARAMETER_VIEW stated = view_parameter(device, "Clocks.Input_Clock_Frequency");
  EXPECT_EQ(stated.name, "clocks.input_clock_frequency");
  EXPECT_EQ(stated.text, "16384");
  EXPECT_EQ(stated.written, "0x10K");
  EXPECT_EQ(stated.origin, PO_STATEMENT);
  EXPECT_EQ(text_at(*descriptor, stated.place), "input_clock_frequency = 0x10K;");
  EXPECT_TRUE(stated.is_required);
  EXPECT_EQ(stated.fault, PARAMETER_VIEW::FAULT::INVALID);

  const PARAMETER_VIEW missing = view_parameter(device, "clocks.pll_ahb_m");
  EXPECT_EQ(missing.text, "");
  EXPECT_EQ(missing.origin, PO_NONE);
  EXPECT_FALSE(missing.place);
  EXPECT_EQ(missing.fault, PARAMETER_VIEW::FAULT::MISSING);

  const PARAMETER_VIEW defaulted = view_parameter(device, "clocks.ahb1_divide");
  EXPECT_EQ(defaulted.text, "2");
  EXPECT_EQ(defaulted.origin, PO_PRESENT_BLOCK_DEFAULT);
  EXPECT_EQ(defaulted.fault, PARAMETER_VIEW::FAULT::NONE);
  EXPECT_FALSE(defaulted.is_required);

  EXPECT_EQ(view_parameter(device, "uart.enabled").text, "false");
  EXPECT_EQ(view_parameter(device, "uart.enabled").origin, PO_ABSENT_BLOCK_DEFAULT);
  EXPECT_EQ(view_parameter(device, "hold_processor").text, "true");
  EXPECT_EQ(view_parameter(device, "hold_processor").written, "TRUE");
  EXPECT_EQ(view_parameter(device, "endian").text, "");
  EXPECT_EQ(view_parameter(device, "endian").written, "5");
  EXPECT_EQ(view_parameter(device, "no.such").name, "");
}

}  // namespace
