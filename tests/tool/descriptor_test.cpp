#include "tools/descriptor.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/temporary_files.h"

namespace {

using sbd_tool::DESCRIPTOR;
using sbd_tool::read_descriptor;

class DESCRIPTOR_TEST : public testing::Test {
 protected:
  void SetUp() override { sbd_tool::install_handlers(); }
  void TearDown() override {
    sbd_host::set_message_handler({});
    sbd_host::set_internal_error_handler({});
  }

  TEMPORARY_DIRECTORY m_folder;
};

TEST_F(DESCRIPTOR_TEST, GoodFile) {
  const std::string path = m_folder.write("a.sbd", "device d { x = 1; }\n");
  const auto descriptor = read_descriptor(path, 0);
  EXPECT_EQ(descriptor->outcome, sbd_tool::EXIT_FINE);
  EXPECT_EQ(descriptor->name, path);
  EXPECT_EQ(descriptor->source, "device d { x = 1; }\n");
  EXPECT_TRUE(descriptor->findings.empty());
  EXPECT_NE(descriptor->document.get_para_value("d", "x"), nullptr);
}

TEST_F(DESCRIPTOR_TEST, FaultyFileKeepsItsSource) {
  const auto descriptor = read_descriptor(m_folder.write("a.sbd", "device"), 0);
  EXPECT_EQ(descriptor->outcome, sbd_tool::EXIT_FAULTS);
  EXPECT_EQ(descriptor->source, "device");
  EXPECT_EQ(descriptor->findings.error_count, 1U);
  EXPECT_EQ(descriptor->document.get_parser_para().root, nullptr);
}

TEST_F(DESCRIPTOR_TEST, UnreadableFileSaysWhy) {
  const auto descriptor = read_descriptor(m_folder.path_of("none.sbd"), 0);
  EXPECT_EQ(descriptor->outcome, sbd_tool::EXIT_UNUSABLE);
  ASSERT_EQ(descriptor->findings.list.size(), 1U);
  EXPECT_EQ(descriptor->findings.list[0].key, "ESBD_SBD_FILE_ERROR");
  EXPECT_EQ(descriptor->findings.list[0].note, "No such file or directory");
  EXPECT_FALSE(descriptor->findings.list[0].place);
}

TEST_F(DESCRIPTOR_TEST, DirectoryIsUnreadable) {
  const auto descriptor = read_descriptor(m_folder.path(), 0);
  EXPECT_EQ(descriptor->outcome, sbd_tool::EXIT_UNUSABLE);
  ASSERT_EQ(descriptor->findings.list.size(), 1U);
  EXPECT_EQ(descriptor->findings.list[0].note, "Is a directory");
}

TEST_F(DESCRIPTOR_TEST, FileOfAnySizeIsReadWhole) {
  for (const std::size_t size : {0U, 1U, 65535U, 65536U, 65537U, 131072U, 1000000U}) {
    const std::string content(size, ' ');
    const auto descriptor = read_descriptor(m_folder.write("a.sbd", content), 0);
    EXPECT_EQ(descriptor->outcome, sbd_tool::EXIT_FINE) << size;
    EXPECT_EQ(descriptor->source, content) << size;
  }
}

}  // namespace
