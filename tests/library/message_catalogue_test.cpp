#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <memory>
#include <string>

#include "sbd/msg_sbd.h"
#include "sbd/sbd_file_parser.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"

namespace {

using sbd_host::SEVERITY;

struct CATALOGUE_ROW {
  const char* key;
  int number;
  SEVERITY severity;
  std::function<MSG_POST*()> make;
  const char* text_template;
  const char* text;
};

void PrintTo(const CATALOGUE_ROW& row, std::ostream* stream) {
  *stream << row.key;
}

const CATALOGUE_ROW CATALOGUE[] = {
    {"ESBD_SBD_FILE_ERROR", 1, SEVERITY::ERROR,
     [] { return MSG_SBD::E::SBD_FILE_ERROR("a/b.sbd"); },
     "Can't open or write to System Build Descriptor File %1!s!/ESBD_SBD_FILE_ERROR",
     "Can't open or write to System Build Descriptor File a/b.sbd"},
    {"ESBD_SBD_SYNTAX_ERROR", 2, SEVERITY::ERROR,
     [] { return MSG_SBD::E::SBD_SYNTAX_ERROR("f.sbd", "{", 12); },
     "System Build Descriptor File %1!s! contains syntax error \"%2!s!\" at line %3!d!"
     "/ESBD_SBD_SYNTAX_ERROR",
     "System Build Descriptor File f.sbd contains syntax error \"{\" at line 12"},
    {"ESBD_SBD_DECLARATION_ERROR", 3, SEVERITY::ERROR,
     [] { return MSG_SBD::E::SBD_DECLARATION_ERROR("f.sbd", "Cpu", 3); },
     "Block or parameter \"%2!s!\" at line number %3!d! in System Build Descriptor File %1!s! "
     "cannot "
     "be specified more than once in block/ESBD_SBD_DECLARATION_ERROR",
     "Block or parameter \"Cpu\" at line number 3 in System Build Descriptor File f.sbd cannot be "
     "specified more than once in block"},
    {"ESBD_SBD_REFERENCE_ERROR", 4, SEVERITY::ERROR,
     [] { return MSG_SBD::E::SBD_REFERENCE_ERROR("f.sbd", "d.clk", 4); },
     "Parameter or block setting \"%2!s!\" at line %3!d! in file %1!s! contains semantic error"
     "/ESBD_SBD_REFERENCE_ERROR",
     "Parameter or block setting \"d.clk\" at line 4 in file f.sbd contains semantic error"},
    {"ESBD_SBD_BLOCK_ERROR", 5, SEVERITY::ERROR,
     [] { return MSG_SBD::E::SBD_BLOCK_ERROR("f.sbd", "module stripe", 5); },
     "Block \"%2!s!\" at line number %3!d! of System Build Descriptor File %1!s! cannot be used "
     "because the block does not have a recognized type or is in an incorrect hierarchical position"
     "/ESBD_SBD_BLOCK_ERROR",
     "Block \"module stripe\" at line number 5 of System Build Descriptor File f.sbd cannot be "
     "used "
     "because the block does not have a recognized type or is in an incorrect hierarchical "
     "position"},
    {"ESBD_SBD_VEL_DEVICE_ERROR", 6, SEVERITY::ERROR,
     [] { return MSG_SBD::E::SBD_VEL_DEVICE_ERROR("it is late"); },
     "Device block in System Build Descriptor File cannot be used because %1!s!"
     "/ESBD_SBD_VEL_DEVICE_ERROR",
     "Device block in System Build Descriptor File cannot be used because it is late"},
    {"ESBD_SBD_VEL_MODULE_ERROR", 7, SEVERITY::ERROR,
     [] { return MSG_SBD::E::SBD_VEL_MODULE_ERROR("there are two"); },
     "Module blocks that define Veldran embedded processor stripe in System Build Descriptor File "
     "cannot be used because %1!s!/ESBD_SBD_VEL_MODULE_ERROR",
     "Module blocks that define Veldran embedded processor stripe in System Build Descriptor File "
     "cannot be used because there are two"},
    {"ESBD_SBD_ERROR", 8, SEVERITY::ERROR,
     [] { return MSG_SBD::E::SBD_ERROR("Block does not exit."); },
     "System Build Descriptor File error: %1!s!/ESBD_SBD_ERROR",
     "System Build Descriptor File error: Block does not exit."},
    {"WSBD_SBD_WARNING", 9, SEVERITY::WARNING, [] { return MSG_SBD::W::SBD_WARNING("hm"); },
     "System Build Descriptor File warning: %1!s!/WSBD_SBD_WARNING",
     "System Build Descriptor File warning: hm"},
    {"ESBD_SBD_NO_DEVICE_BLOCK_ERROR", 10, SEVERITY::ERROR,
     [] { return MSG_SBD::E::SBD_NO_DEVICE_BLOCK_ERROR(); },
     "System Build Descriptor File must contain device block/ESBD_SBD_NO_DEVICE_BLOCK_ERROR",
     "System Build Descriptor File must contain device block"},
    {"ESBD_SBD_VELDRAN_MODULE_BLOCK_ERROR", 11, SEVERITY::ERROR,
     [] { return MSG_SBD::E::SBD_VELDRAN_MODULE_BLOCK_ERROR(); },
     "System Build Descriptor File must contain only one module block that defines Veldran "
     "embedded "
     "processor stripe of ARM-based Veldran device/ESBD_SBD_VELDRAN_MODULE_BLOCK_ERROR",
     "System Build Descriptor File must contain only one module block that defines Veldran "
     "embedded "
     "processor stripe of ARM-based Veldran device"},
    {"ESBD_SBD_PARAMETER_MISSING_ERROR", 12, SEVERITY::ERROR,
     [] { return MSG_SBD::E::SBD_PARAMETER_MISSING_ERROR("pll_ahb_m"); },
     "System Build Descriptor File must contain parameter \"%1!s!\""
     "/ESBD_SBD_PARAMETER_MISSING_ERROR",
     "System Build Descriptor File must contain parameter \"pll_ahb_m\""},
    {"ESBD_SBD_PARAMETER_VALUE_ERROR", 13, SEVERITY::ERROR,
     [] { return MSG_SBD::E::SBD_PARAMETER_VALUE_ERROR("pll_ahb_m"); },
     "System Build Descriptor File contains invalid setting for parameter \"%1!s!\""
     "/ESBD_SBD_PARAMETER_VALUE_ERROR",
     "System Build Descriptor File contains invalid setting for parameter \"pll_ahb_m\""},
    {"ESBD_UNSUPPORTED_FAMILY_ERROR", 14, SEVERITY::ERROR,
     [] { return MSG_SBD::E::UNSUPPORTED_FAMILY_ERROR("nylon"); },
     "System Build Descriptor File contains invalid device family %1!s! for family parameter"
     "/ESBD_UNSUPPORTED_FAMILY_ERROR",
     "System Build Descriptor File contains invalid device family nylon for family parameter"},
    {"ESBD_FAMILY_NOT_DEFINED_ERROR", 15, SEVERITY::ERROR,
     [] { return MSG_SBD::E::FAMILY_NOT_DEFINED_ERROR("chip"); },
     "Device block \"%1!s!\" in System Build Descriptor File must contain family parameter"
     "/ESBD_FAMILY_NOT_DEFINED_ERROR",
     "Device block \"chip\" in System Build Descriptor File must contain family parameter"},
};

class MESSAGE_CATALOGUE : public testing::TestWithParam<CATALOGUE_ROW> {};

TEST_P(MESSAGE_CATALOGUE, ArrivesAsItIsFiled) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER::post_message(GetParam().make());

  ASSERT_EQ(recorder.messages().size(), 1U);
  const RECORDED_MESSAGE& message = recorder.messages().front();
  EXPECT_EQ(message.number, GetParam().number);
  EXPECT_EQ(message.severity, GetParam().severity);
  EXPECT_EQ(message.key, GetParam().key);
  EXPECT_EQ(message.text_template, GetParam().text_template);
  EXPECT_EQ(message.text, GetParam().text);
  EXPECT_TRUE(recorder.internal_errors().empty());
}

TEST_P(MESSAGE_CATALOGUE, IsNotPostedByMakingIt) {
  MESSAGE_RECORDER recorder;
  delete GetParam().make();
  EXPECT_TRUE(recorder.is_silent());
}

INSTANTIATE_TEST_SUITE_P(Rows, MESSAGE_CATALOGUE, testing::ValuesIn(CATALOGUE),
                         [](const testing::TestParamInfo<CATALOGUE_ROW>& row) {
                           return std::string(row.param.key);
                         });

// What arrives when the message is posted.
RECORDED_MESSAGE posted(MSG_POST* message) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER::post_message(message);
  EXPECT_EQ(recorder.messages().size(), 1U);
  return recorder.messages().empty() ? RECORDED_MESSAGE() : recorder.messages().front();
}

TEST(MESSAGE_ARGUMENTS, LinesAreSigned) {
  EXPECT_EQ(posted(MSG_SBD::E::SBD_SYNTAX_ERROR("f", "t", INT_MIN)).text,
            syntax_error_text("f", "t", INT_MIN));
  EXPECT_EQ(posted(MSG_SBD::E::SBD_BLOCK_ERROR("f", "t", INT_MAX)).text,
            block_error_text("f", "t", INT_MAX));
}

TEST(MESSAGE_ARGUMENTS, TextsAreTakenLiterally) {
  EXPECT_EQ(posted(MSG_SBD::E::SBD_SYNTAX_ERROR("%2!s!/%s", "%1!s!/KEY", 1)).text,
            syntax_error_text("%2!s!/%s", "%1!s!/KEY", 1));
}

TEST(MESSAGE_ARGUMENTS, LongTextsAreComplete) {
  const std::string name(100000, 'x');
  EXPECT_EQ(posted(MSG_SBD::E::SBD_FILE_ERROR(name.c_str())).text, file_error_text(name));
}

TEST(MESSAGE_ARGUMENTS, TextsAreCopied) {
  auto name = std::make_unique<std::string>("a name that is gone when the message is posted");
  MSG_POST* const message = MSG_SBD::E::SBD_FILE_ERROR(name->c_str());
  const std::string expected = file_error_text(*name);
  name.reset();
  EXPECT_EQ(posted(message).text, expected);
}

TEST(POSTING, NullIsIgnored) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER::post_message(nullptr);
  EXPECT_TRUE(recorder.is_silent());
}

// A message that tells what becomes of it.
class WATCHED_MESSAGE : public MSG_POST {
 public:
  explicit WATCHED_MESSAGE(std::string& history) : m_history(history) {}
  ~WATCHED_MESSAGE() override { m_history += "destroyed;"; }
  void post(MSG_REPORT* target) override {
    m_history += target == nullptr ? "posted without target;" : "posted to a target;";
  }

 private:
  std::string& m_history;
};

TEST(POSTING, PostsWithoutTargetAndDestroys) {
  std::string history;
  SBD_FILE_PARSER::post_message(new WATCHED_MESSAGE(history));
  EXPECT_EQ(history, "posted without target;destroyed;");
}

TEST(DEBUG_MESSAGE, IsFormattedAndTagged) {
  const RECORDED_MESSAGE message = posted(MSG_SBD::DEBUG_MSG("%s=%d (%5.2f%%)", "x", -7, 12.5));
  EXPECT_EQ(message.severity, SEVERITY::DEBUG);
  EXPECT_EQ(message.text, "x=-7 (12.50%)");
  EXPECT_EQ(message.module, "SBD");
  EXPECT_EQ(message.number, 0);
  EXPECT_EQ(message.key, "");
}

TEST(DEBUG_MESSAGE, KeepsWhatLooksLikeAKeyOrAPlaceholder) {
  EXPECT_EQ(posted(MSG_SBD::DEBUG_MSG("%s", "a %1!s!/ESBD_KEY")).text, "a %1!s!/ESBD_KEY");
}

TEST(DEBUG_MESSAGE, MayBeLong) {
  const std::string text(20000, 'y');
  EXPECT_EQ(posted(MSG_SBD::DEBUG_MSG("<%s>", text.c_str())).text, "<" + text + ">");
}

TEST(VERSION, IsThatOfTheHeaders) {
  EXPECT_EQ(sbd_version(), std::to_string(SBD_VERSION_MAJOR) + "." +
                               std::to_string(SBD_VERSION_MINOR) + "." +
                               std::to_string(SBD_VERSION_PATCH));
}

TEST(MODULE, IsRegisteredAtTheMemoryManager) {
  EXPECT_TRUE(sbd_host::is_module_registered("SBD"));
}

}  // namespace
