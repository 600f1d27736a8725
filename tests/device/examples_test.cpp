// The examples at device level, as their README promises.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "sbd/sbd_veldran.h"
#include "tests/device/device_support.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"

namespace {

struct EXAMPLE {
  const char* file;
  const char* device;
  bool is_good;
  std::size_t messages;
};

const std::vector<EXAMPLE> EXAMPLES = {
    {"qmxa1_minimal.sbd", "board", true, 0},
    {"qmxa4_minimal.sbd", "board", true, 0},
    {"qmxa10_minimal.sbd", "board", true, 0},
    {"qmxa1_full.sbd", "board", true, 0},
    {"qmxa4_full.sbd", "board", true, 0},
    {"qmxa10_full.sbd", "board", true, 0},
    {"multi_device.sbd", "control_board", true, 0},
    {"multi_device.sbd", "io_board", true, 0},
    {"multi_device.sbd", "display_board", false, 0},
    {"faulty_syntax.sbd", "board", false, 26},
    {"faulty_declarations.sbd", "board", false, 9},
    {"faulty_blocks_and_references.sbd", "board", false, 15},
    {"faulty_device.sbd", "board", false, 54},
};

std::string path_of(const std::string& file) {
  return std::string(SBD_EXAMPLES) + "/" + file;
}

TEST(EXAMPLES, AreAsTheirReadmePromises) {
  for (const EXAMPLE& example : EXAMPLES) {
    SCOPED_TRACE(std::string(example.file) + " " + example.device);
    SBD_VELDRAN device(example.device);
    MESSAGE_RECORDER recorder;
    EXPECT_EQ(device.read(path_of(example.file).c_str()), example.is_good);
    EXPECT_EQ(recorder.messages().size(), example.messages);
    EXPECT_EQ(recorder.conditions(), TEXTS{});
    EXPECT_EQ(device.get_parameter_reader() != nullptr,
              example.is_good || std::string(example.file) == "faulty_device.sbd");
  }
}

TEST(EXAMPLES, AreGoodAsFilesWithoutADevice) {
  for (const EXAMPLE& example : EXAMPLES) {
    SCOPED_TRACE(example.file);
    SBD_VELDRAN device("");
    MESSAGE_RECORDER recorder;
    const bool is_good = example.messages == 0 || std::string(example.file) == "faulty_device.sbd";
    EXPECT_EQ(device.read(path_of(example.file).c_str()), is_good);
    EXPECT_EQ(recorder.messages().size(), is_good ? 0 : example.messages);
  }
}

TEST(EXAMPLES, FaultyDeviceHasTheFaultsThatItsCommentsName) {
  SBD_VELDRAN device("board");
  MESSAGE_RECORDER recorder;
  EXPECT_FALSE(device.read(path_of("faulty_device.sbd").c_str()));
  const TEXTS expected = {
      // Flags
      invalid("hold_processor"),
      invalid("ebi.timeout_enable"),
      invalid("pld.use_gpio_port"),
      invalid("sram[1].prefetch"),
      // Whole numbers
      missing("programming_clock_frequency"),
      invalid("clocks.input_clock_frequency"),
      invalid("clocks.pll_ahb_m"),
      invalid("clocks.pll_ahb_n"),
      invalid("clocks.pll_ahb_k"),
      missing("clocks.pll_sdram_m"),
      invalid("clocks.pll_sdram_n"),
      invalid("clocks.pll_sdram_k"),
      invalid("clocks.ahb1_divide"),
      invalid("clocks.ahb2_divide"),
      invalid("ebi.clock_divide"),
      invalid("ebi.timeout_clock_cycles"),
      invalid("sdram.data_width"),
      invalid("sdram.burst_length"),
      invalid("sdram.row_address_bits"),
      invalid("sdram.column_address_bits"),
      invalid("sdram.bank_address_bits"),
      invalid("dpram.combined_data_width"),
      missing("dpram.combined_address_range"),
      invalid("dpram.data_width[0]"),
      missing("dpram.address_range[1]"),
      missing("registers.address_base"),
      invalid("registers.address_size"),
      missing("sram[1].address_size"),
      missing("ebi.region[0].address_base"),
      invalid("ebi.region[0].wait_cycles"),
      invalid("ebi.region[0].data_width"),
      invalid("ebi.region[1].address_base"),
      missing("ebi.region[2].address_base"),
      missing("ebi.region[2].address_size"),
      missing("ebi.region[2].data_width"),
      invalid("sdram.region[0].address_base"),
      // Numbers
      missing("sdram.active_to_read_or_write_delay"),
      invalid("sdram.refresh_period"),
      missing("sdram.active_to_read_or_write_delay"),
      missing("sdram.cas_latency"),
      // Texts
      invalid("endian"),
      invalid("configuration_device"),
      invalid("ebi.input_pin_standard"),
      invalid("ebi.output_pin_standard"),
      invalid("ebi.byte_enable_polarity"),
      invalid("sdram.input_pin_standard"),
      invalid("sdram.output_pin_standard"),
      invalid("sdram.type"),
      invalid("dpram.mode[0]"),
      invalid("uart.input_pin_standard"),
      invalid("uart.output_pin_standard"),
      invalid("trace.output_pin_standard"),
      invalid("pld.pld_to_stripe_interrupt_mode"),
      invalid("ebi.region[0].chip_select_polarity"),
  };
  EXPECT_EQ(posted(recorder), expected);
}

// ---- What the comments in the files work out ---------------------------------------------------

double ahb(const SBD_VELDRAN& device, int bus) {
  double frequency = -1;
  EXPECT_TRUE(device.get_ahb_clock_frequency(bus, frequency));
  return frequency;
}

double sdram(const SBD_VELDRAN& device) {
  double frequency = -1;
  EXPECT_TRUE(device.get_sdram_clock_frequency(frequency));
  return frequency;
}

unsigned long width(const SBD_VELDRAN& device, int port) {
  unsigned long width = 77777;
  EXPECT_TRUE(device.get_dpram_data_width(port, width));
  return width;
}

TEST(EXAMPLES, Clocks) {
  MESSAGE_RECORDER recorder;
  SBD_VELDRAN motor("board");
  EXPECT_TRUE(motor.read(path_of("qmxa1_full.sbd").c_str()));
  EXPECT_EQ(ahb(motor, 1), 100e6);
  EXPECT_EQ(ahb(motor, 2), 50e6);
  EXPECT_DOUBLE_EQ(sdram(motor), 25e6 * 32 / 3 / 2);

  SBD_VELDRAN image("Board");
  EXPECT_TRUE(image.read(path_of("qmxa10_full.sbd").c_str()));
  EXPECT_EQ(ahb(image, 1), 200e6);
  EXPECT_EQ(ahb(image, 2), 100e6);
  EXPECT_EQ(sdram(image), 125e6);

  SBD_VELDRAN sensor("board");
  EXPECT_TRUE(sensor.read(path_of("qmxa1_minimal.sbd").c_str()));
  EXPECT_EQ(ahb(sensor, 1), 6e6);
  EXPECT_EQ(ahb(sensor, 2), 3e6);

  SBD_VELDRAN control("control_board"), io("io_board");
  EXPECT_TRUE(control.read(path_of("multi_device.sbd").c_str()));
  EXPECT_EQ(ahb(control, 1), 100e6);
  EXPECT_TRUE(io.read(path_of("multi_device.sbd").c_str()));
  EXPECT_EQ(ahb(io, 1), 12.5e6);
  EXPECT_EQ(ahb(io, 2), 6.25e6);
  EXPECT_TRUE(recorder.is_silent());
}

TEST(EXAMPLES, Widths) {
  MESSAGE_RECORDER recorder;
  SBD_VELDRAN motor("board"), gateway("board"), image("board"), sensor("board");
  EXPECT_TRUE(motor.read(path_of("qmxa1_full.sbd").c_str()));
  EXPECT_EQ(width(motor, 0), 32u);
  EXPECT_EQ(width(motor, 1), 77777u);
  // One buffer of 64 bits.
  EXPECT_TRUE(gateway.read(path_of("qmxa4_full.sbd").c_str()));
  EXPECT_EQ(width(gateway, 0), 32u);
  EXPECT_EQ(width(gateway, 1), 32u);
  EXPECT_TRUE(image.read(path_of("qmxa10_full.sbd").c_str()));
  EXPECT_EQ(width(image, 0), 32u);
  EXPECT_EQ(width(image, 1), 16u);
  EXPECT_TRUE(sensor.read(path_of("qmxa10_minimal.sbd").c_str()));
  EXPECT_EQ(width(sensor, 1), 32u);
  EXPECT_TRUE(recorder.is_silent());
}

TEST(EXAMPLES, ParametersOfTheBoards) {
  MESSAGE_RECORDER recorder;
  SBD_VELDRAN io("io_board");
  EXPECT_TRUE(io.read(path_of("multi_device.sbd").c_str()));
  bool flag = false;
  EXPECT_TRUE(io.get_parameter("pld", "use_gpio_port", flag));
  EXPECT_TRUE(flag);
  EXPECT_TRUE(io.get_parameter("trace.enabled", flag));
  EXPECT_FALSE(flag);
  unsigned long number = 0;
  EXPECT_TRUE(io.get_parameter("sram[0]", "address_size", number));
  EXPECT_EQ(number, 16384u);
  SBD_STRING text;
  EXPECT_TRUE(io.get_parameter("configuration_device", text));
  EXPECT_EQ(plain(text), "kvp2");
  EXPECT_TRUE(io.get_chip_type_name(text));
  EXPECT_EQ(plain(text), "qmxa1");
  EXPECT_TRUE(recorder.is_silent());
}

}  // namespace
