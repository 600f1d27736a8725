// When the host's memory ends at any point, that is a status, and nothing else has changed.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <functional>
#include <string>

#include "capi/sbd_c.h"
#include "host/sbd_host.h"

namespace {

constexpr char k_text[] =
    "device board { family = veldran_arm; type = qmxa1;\n"
    "  module stripe { type = veldran_stripe; list_of_numbers = {1, {2, 3}} [k board.family]; "
    "reference_with_long_name <board.stripe.list_of_numbers>; "
    "}\n"
    "}\n";

// Runs `body` with the first allocation failing, then the second, and so on until it succeeds.
void expect_no_memory_until_good(const std::function<sbdc_status()>& body,
                                 const std::function<void()>& check_unchanged) {
  constexpr std::size_t k_enough = 5000;
  std::size_t failing = 1;
  for (; failing < k_enough; failing++) {
    sbd_host::fail_allocation("SBD", failing, true);
    const sbdc_status status = body();
    sbd_host::fail_allocation("SBD", 0, false);
    if (status == SBDC_OK) break;
    ASSERT_EQ(status, SBDC_NO_MEMORY) << "allocation " << failing;
    check_unchanged();
  }
  EXPECT_GT(failing, 1U);
  EXPECT_LT(failing, k_enough);
}

class C_INTERFACE_MEMORY : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(sbdc_document_new(&m_document), SBDC_OK);
    ASSERT_EQ(sbdc_read_text(m_document, k_text, sizeof k_text - 1, "f.sbd"), SBDC_OK);
  }
  void TearDown() override { sbdc_document_free(m_document); }

  sbdc_document* m_document = nullptr;
};

TEST_F(C_INTERFACE_MEMORY, EndsWhileADocumentIsMade) {
  sbdc_document* made = nullptr;
  expect_no_memory_until_good([&] { return sbdc_document_new(&made); },
                              [&] { EXPECT_EQ(made, nullptr); });
  sbdc_document_free(made);
}

TEST_F(C_INTERFACE_MEMORY, EndsWhileReading) {
  expect_no_memory_until_good(
      [&] { return sbdc_read_text(m_document, k_text, sizeof k_text - 1, "f.sbd"); }, [] {});
}

TEST_F(C_INTERFACE_MEMORY, EndsWhileListing) {
  sbdc_listing* listing = nullptr;
  expect_no_memory_until_good(
      [&] { return sbdc_list(m_document, "board.stripe", SBDC_REFERENCE_STATEMENT, &listing); },
      [&] { EXPECT_EQ(listing, nullptr); });
  sbdc_listing_free(listing);
}

TEST_F(C_INTERFACE_MEMORY, EndsDuringAWalk) {
  sbdc_walk* walk = nullptr;
  ASSERT_EQ(sbdc_walk_new(m_document, "board.stripe", SBDC_REFERENCE_STATEMENT, &walk), SBDC_OK);
  sbdc_listing* part = nullptr;
  sbd_host::fail_allocation("SBD", 1, true);
  EXPECT_EQ(sbdc_walk_next(walk, 1, &part), SBDC_NO_MEMORY);
  sbd_host::fail_allocation("SBD", 0, false);
  EXPECT_EQ(part, nullptr);
  EXPECT_EQ(sbdc_walk_next(walk, 1, &part), SBDC_NOT_FOUND);  // It was the only one.
  sbdc_walk_free(walk);
}

TEST_F(C_INTERFACE_MEMORY, EndsDuringAnEdit) {
  expect_no_memory_until_good(
      [&] { return sbdc_set_value(m_document, "board.stripe.list_of_numbers", "{4, 5, \"six\"}"); },
      [&] { EXPECT_STREQ(sbdc_text(m_document, nullptr), k_text); });
  EXPECT_NE(std::strstr(sbdc_text(m_document, nullptr), "{4, 5, \"six\"}"), nullptr);
}

TEST_F(C_INTERFACE_MEMORY, EndsWhileADeviceIsRead) {
  sbdc_device* device = nullptr;
  expect_no_memory_until_good([&] { return sbdc_device_new("board", &device); },
                              [&] { EXPECT_EQ(device, nullptr); });
  constexpr char text[] = "device board { family = veldran_arm; type = qmxa1; }";
  expect_no_memory_until_good(
      [&] { return sbdc_device_read_text(device, text, sizeof text - 1, "f.sbd"); }, [] {});
  sbdc_device_free(device);
}

}  // namespace
