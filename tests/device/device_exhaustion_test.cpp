// The host's memory may run out while a device is read, asked or explained.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "sbd/sbd_parameter_rules.h"
#include "sbd/sbd_veldran.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"

namespace {

const std::string k_file = std::string(SBD_EXAMPLES) + "/qmxa10_full.sbd";
const std::string k_faulty_file = std::string(SBD_EXAMPLES) + "/faulty_device.sbd";

// Runs the work with the n-th allocation failing, for growing n until it is not reached.
void for_each_failure(const std::function<void(MESSAGE_RECORDER&)>& work) {
  for (const bool and_later : {false, true}) {
    for (std::size_t count = 1;; ++count) {
      SCOPED_TRACE(count);
      ASSERT_LT(count, 20000U);
      MESSAGE_RECORDER recorder;
      const std::size_t made = sbd_host::get_memory_account("SBD").total_allocations;
      sbd_host::fail_allocation("SBD", count, and_later);
      EXPECT_NO_THROW(work(recorder));
      sbd_host::fail_allocation("SBD", 0, false);
      for (const std::string& condition : recorder.conditions()) {
        EXPECT_EQ(condition, "out of memory");
      }
      const std::size_t now_made = sbd_host::get_memory_account("SBD").total_allocations;
      if (recorder.conditions().empty() && now_made - made < count) return;
      if (testing::Test::HasFailure()) return;
    }
  }
}

TEST(DEVICE_EXHAUSTION, Reading) {
  for_each_failure([](MESSAGE_RECORDER& recorder) {
    SBD_VELDRAN device("board");
    const bool is_read = device.read(k_file.c_str());
    sbd_host::fail_allocation("SBD", 0, false);
    EXPECT_EQ(is_read, recorder.conditions().empty());
    if (!is_read) return;
    unsigned long factor = 0;
    EXPECT_TRUE(device.get_parameter("clocks", "pll_ahb_m", factor));
    EXPECT_EQ(factor, 8u);
  });
}

TEST(DEVICE_EXHAUSTION, ReadingAgain) {
  SBD_VELDRAN device("board");
  ASSERT_TRUE(device.read(k_file.c_str()));
  for_each_failure([&device](MESSAGE_RECORDER& recorder) {
    const bool is_read = device.read(k_file.c_str());
    EXPECT_EQ(is_read, recorder.conditions().empty());
  });
  EXPECT_TRUE(device.read(k_file.c_str()));
}

TEST(DEVICE_EXHAUSTION, ReportingFaults) {
  for_each_failure([](MESSAGE_RECORDER&) {
    SBD_VELDRAN device("board");
    EXPECT_FALSE(device.read(k_faulty_file.c_str()));
  });
}

TEST(DEVICE_EXHAUSTION, Asking) {
  SBD_VELDRAN device("board");
  ASSERT_TRUE(device.read(k_file.c_str()));
  for_each_failure([&device](MESSAGE_RECORDER&) {
    bool flag = true;
    unsigned long number = 77;
    double frequency = 0;
    SBD_STRING text;
    (void)device.get_parameter("boot_from_flash", flag);
    (void)device.get_parameter("sdram", "active_to_read_or_write_delay", frequency);
    (void)device.get_parameter("sdram.data_width", number);
    (void)device.get_parameter("dpram", "mode[0]", text);
    (void)device.get_ahb_clock_frequency(1, frequency);
    (void)device.get_sdram_clock_frequency(frequency);
    (void)device.get_dpram_data_width(0, number);
    (void)device.get_chip_type_name(text);
    (void)device.get_module_ref_name(text);
    (void)device.check_device();
    sbd_host::fail_allocation("SBD", 0, false);
  });
}

}  // namespace
