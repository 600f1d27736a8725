// Edits of very large documents, one object at a time. A step that looked at all the others would
// take minutes to hours; the tests' time limit is the check.
//
// SBD_TEST_SCALE multiplies the number of objects.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "sbd/sbd_file_parser.h"
#include "tests/access/access_support.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/tree_builder.h"

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t k_largest = 100000;
#else
constexpr std::size_t k_largest = 1000000;
#endif

constexpr auto k_no_unit = SBD_PARA_VALUE::QU_NONE;

enum class ORDER { FRONT, BACK, RANDOM };

std::string name(const std::string& start, std::size_t number) {
  return start + std::to_string(number);
}

class EDIT_SCALE : public testing::TestWithParam<ORDER> {
 protected:
  // The numbers below `count` in the order of the test.
  void set_count(std::size_t count) {
    ASSERT_TRUE(m_document.create_block("device", "d", nullptr));
    m_order.resize(count);
    std::iota(m_order.begin(), m_order.end(), std::size_t{0});
    if (GetParam() == ORDER::BACK) std::reverse(m_order.begin(), m_order.end());
    if (GetParam() == ORDER::RANDOM) {
      std::shuffle(m_order.begin(), m_order.end(), std::mt19937_64(1));
    }
  }

  // Calls `edit` with each number. It must be accepted every time.
  template <class EDIT>
  void for_each(EDIT&& edit) {
    for (const std::size_t number : m_order) {
      if (!edit(number)) FAIL() << number << ": " << testing::PrintToString(m_recorder.texts());
    }
    ASSERT_TRUE(m_recorder.is_silent()) << m_recorder.texts().front();
  }

  void expect_empty_device() {
    EXPECT_EQ(written(m_document), "device d\n{\n}\n\n");
    EXPECT_EQ(count_symbols(m_document), 1U);
  }

  SBD_FILE_PARSER m_document;
  MESSAGE_RECORDER m_recorder;
  std::vector<std::size_t> m_order;
};

std::string order_name(const testing::TestParamInfo<ORDER>& parameter) {
  if (parameter.param == ORDER::RANDOM) return "random";
  return parameter.param == ORDER::FRONT ? "front" : "back";
}

INSTANTIATE_TEST_SUITE_P(ORDERS, EDIT_SCALE,
                         testing::Values(ORDER::FRONT, ORDER::BACK, ORDER::RANDOM), order_name);

TEST_P(EDIT_SCALE, ParametersOfOneBlock) {
  const std::size_t count = scaled(60000);
  set_count(count);
  for (std::size_t i = 0; i < count; i++) {
    ASSERT_TRUE(m_document.set_value("d", name("p", i).c_str(), i, 10, k_no_unit));
  }
  for_each([this](std::size_t i) {
    return m_document.set_value("d", name("p", i).c_str(), static_cast<double>(i), k_no_unit);
  });
  for_each([this](std::size_t i) {
    return m_document.rename(name("p", i).c_str(), name("q", i).c_str(), "d");
  });
  unsigned long value = 0;
  for (const std::size_t i : {std::size_t{0}, count / 2, count - 1}) {
    EXPECT_TRUE(m_document.get_value("d", name("Q", i).c_str(), value));
    EXPECT_EQ(value, i);
  }
  for_each([this](std::size_t i) {
    m_document.delete_parameter("d", name("q", i).c_str());
    return true;
  });
  expect_empty_device();
}

TEST_P(EDIT_SCALE, ParametersInBlocksOfTheirOwn) {
  const std::size_t count = scaled(30000);
  set_count(count);
  for (std::size_t i = 0; i < count; i++) {
    ASSERT_TRUE(m_document.create_block("bus", name("b", i).c_str(), "d"));
    ASSERT_TRUE(m_document.set_value(name("d.b", i).c_str(), "p", i, 16, k_no_unit));
  }
  // One name for all, and thus one bucket.
  for_each([this](std::size_t i) { return m_document.set_value(name("d.b", i).c_str(), "r", 1); });
  for_each([this](std::size_t i) { return m_document.rename("p", "q", name("d.b", i).c_str()); });
  for_each([this](std::size_t i) {
    return m_document.rename(name("b", i).c_str(), name("c", i).c_str(), "d");
  });
  for_each([this](std::size_t i) {
    m_document.delete_parameter(name("d.c", i).c_str(), "q");
    return true;
  });
  for_each([this](std::size_t i) {
    m_document.delete_block(name("d.c", i).c_str());
    return true;
  });
  expect_empty_device();
}

TEST_P(EDIT_SCALE, ParametersThatAreReferenced) {
  const std::size_t count = scaled(30000);
  set_count(count);
  for (std::size_t i = 0; i < count; i++) {
    ASSERT_TRUE(m_document.set_value("d", name("p", i).c_str(), 1));
    ASSERT_TRUE(m_document.set_value("d", name("r", i).c_str(),
                                     string_list({name("d.p", i), name("d.p", i / 2)})));
  }
  for_each([this](std::size_t i) {
    return m_document.set_value("d", name("r", i).c_str(), string_list({name("d.p", i)}));
  });
  for_each([this](std::size_t i) { return m_document.is_referenced(name("d.p", i).c_str()); });
  for_each([this](std::size_t i) {
    m_document.delete_parameter("d", name("r", i).c_str());
    m_document.delete_parameter("d", name("p", i).c_str());
    return true;
  });
  expect_empty_device();
}

TEST_P(EDIT_SCALE, DevicesOfTheTopLevel) {
  const std::size_t count = scaled(30000);
  set_count(count);
  for (std::size_t i = 0; i < count; i++) {
    ASSERT_TRUE(m_document.create_block("device", name("t", i).c_str(), nullptr));
  }
  for_each([this](std::size_t i) {
    return m_document.rename(name("t", i).c_str(), name("u", i).c_str(), nullptr);
  });
  for_each([this](std::size_t i) {
    m_document.delete_block(name("u", i).c_str());
    return true;
  });
  expect_empty_device();
}

// Edits from both ends of the largest block.
TEST(EDIT_SCALE_ENDS, ParametersOfOneBlock) {
  SBD_FILE_PARSER document;
  const MESSAGE_RECORDER recorder;
  ASSERT_TRUE(document.create_block("device", "d", nullptr));
  for (std::size_t i = 0; i < k_largest; i++) {
    ASSERT_TRUE(document.set_value("d", name("p", i).c_str(), i, 10, k_no_unit));
  }
  const auto number_at = [](std::size_t step) {
    return step % 2 == 0 ? step / 2 : k_largest - 1 - step / 2;
  };
  for (std::size_t step = 0; step < k_largest; step++) {
    const std::size_t i = number_at(step);
    ASSERT_TRUE(document.set_value("d", name("p", i).c_str(), 0.5, k_no_unit));
    ASSERT_TRUE(document.rename(name("p", i).c_str(), name("q", i).c_str(), "d"));
  }
  for (std::size_t step = 0; step < k_largest; step++) {
    document.delete_parameter("d", name("q", number_at(step)).c_str());
  }
  EXPECT_EQ(written(document), "device d\n{\n}\n\n");
  EXPECT_TRUE(recorder.is_silent());
}

TEST(EDIT_SCALE_READ, ParametersOfADocumentThatWasRead) {
  std::string source = "device d {";
  for (std::size_t i = 0; i < k_largest / 4; i++) source += "p" + std::to_string(i) + "=1;";
  const auto document = document_of(source + "}");
  const MESSAGE_RECORDER recorder;
  for (std::size_t i = 0; i < k_largest / 4; i++) {
    const std::string old_name = "p" + std::to_string(i);
    const std::string new_name = "q" + std::to_string(i);
    ASSERT_TRUE(document->rename(old_name.c_str(), new_name.c_str(), "d"));
    ASSERT_TRUE(document->set_value("d", new_name.c_str(), i, 2, k_no_unit));
  }
  for (std::size_t i = k_largest / 4; i > 0; i--) {
    document->delete_parameter("d", ("q" + std::to_string(i - 1)).c_str());
  }
  EXPECT_EQ(written(*document), "device d\n{\n}\n\n");
  EXPECT_TRUE(recorder.is_silent());
}

}  // namespace
