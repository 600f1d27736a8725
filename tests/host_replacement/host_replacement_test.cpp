#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "sbd/msg_sbd.h"
#include "sbd/sbd_file_parser.h"
#include "tests/host_replacement/replacement_host.h"

namespace {

using replacement_host::record;

class HOST_REPLACEMENT : public testing::Test {
 protected:
  void SetUp() override {
    record().messages.clear();
    record().internal_errors.clear();
  }
  // Everything that the library took has come back.
  void TearDown() override {
    for (const auto& [tag, count] : record().live_blocks) EXPECT_EQ(count, 0) << tag;
  }

  static bool read(SBD_FILE_PARSER& document, std::string_view text) {
    return document.read_text(text.data(), text.size(), "f.sbd");
  }
  static std::vector<std::string> filled() {
    std::vector<std::string> result;
    for (const auto& message : record().messages) result.push_back(message.filled);
    return result;
  }
};

TEST_F(HOST_REPLACEMENT, ReceivesTheTagWhenTheLibraryIsLoaded) {
  EXPECT_EQ(record().registered_tags, std::vector<std::string>{"SBD"});
}

TEST_F(HOST_REPLACEMENT, GivesTheMemoryOfADocument) {
  SBD_FILE_PARSER document;
  ASSERT_TRUE(read(document, "device d { a = {1, \"s\"} [k .v]; r <.a>; }"));
  EXPECT_GT(record().live_blocks["SBD"], 0);
  EXPECT_EQ(record().live_blocks.size(), 1U);
  EXPECT_TRUE(record().messages.empty());
  SBD_STRING name;
  EXPECT_TRUE(document.get_ref_name(document.get_para_ref("d", "r")->target, name));
  EXPECT_STREQ(name.c_str(), "d.a");
}

TEST_F(HOST_REPLACEMENT, ReceivesSyntaxErrors) {
  SBD_FILE_PARSER document;
  EXPECT_FALSE(read(document, "device d {\n x 5; y = 1;\n @ }"));
  const std::string text =
      "System Build Descriptor File %1!s! contains syntax error \"%2!s!\" at line %3!d!"
      "/ESBD_SBD_SYNTAX_ERROR";
  EXPECT_EQ(filled(), (std::vector<std::string>{text + "|f.sbd|5|2", text + "|f.sbd|@|3"}));
  for (const auto& message : record().messages) {
    EXPECT_EQ(message.severity, 'E');
    EXPECT_EQ(message.number, 2);
    EXPECT_FALSE(message.has_parent);
    EXPECT_FALSE(message.has_target);
  }
}

TEST_F(HOST_REPLACEMENT, ReceivesFaultsOfTheChecks) {
  SBD_FILE_PARSER document;
  EXPECT_FALSE(read(document, "module m { r <no>; }"));
  EXPECT_FALSE(read(document, "device d { x = 1;\nx = 2; }"));
  EXPECT_FALSE(document.read("/nowhere/at/all.sbd"));
  std::vector<int> numbers;
  for (const auto& message : record().messages) numbers.push_back(message.number);
  EXPECT_EQ(numbers, (std::vector<int>{5, 4, 3, 1}));
}

TEST_F(HOST_REPLACEMENT, ReceivesInternalErrors) {
  SBD_FILE_PARSER document;
  EXPECT_EQ(SBD_FILE_PARSER::hash_pjw(nullptr, 211), 0U);
  ASSERT_EQ(record().internal_errors.size(), 1U);
  EXPECT_EQ(record().internal_errors[0].condition, "name != NULL");
  EXPECT_EQ(record().internal_errors[0].module, "SBD");
  EXPECT_EQ(record().internal_errors[0].source, "sbd_file_parser");
}

TEST_F(HOST_REPLACEMENT, ReceivesWarningsAndDebugMessages) {
  SBD_FILE_PARSER::post_message(MSG_SBD::W::SBD_WARNING("hm"));
  SBD_FILE_PARSER::post_message(MSG_SBD::DEBUG_MSG("%s %d", "x", 5));
  ASSERT_EQ(record().messages.size(), 2U);
  EXPECT_EQ(record().messages[0].severity, 'W');
  EXPECT_EQ(record().messages[0].number, 9);
  EXPECT_EQ(record().messages[1].severity, 'D');
  EXPECT_EQ(record().messages[1].filled, "x 5");
  EXPECT_EQ(record().messages[1].module, "SBD");
  EXPECT_FALSE(record().messages[1].has_parent);
}

TEST_F(HOST_REPLACEMENT, OwnsTheRecordsOfACaller) {
  SBD_FILE_PARSER document;
  auto* const comment = new SBD_FILE_PARSER::SBD_NODE;
  comment->comment = sbd_copy_text("# c\n");
  EXPECT_EQ(record().live_blocks.size(), 1U);
  document.add_node(comment, nullptr);
  document.clear();
  EXPECT_EQ(document.get_parser_para().root, nullptr);
}

}  // namespace
