#include "tools/message_help.h"

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "sbd/msg_sbd.h"
#include "tests/support/message_recorder.h"
#include "tests/tool/device_support.h"
#include "tools/file_check.h"

namespace {

using sbd_tool::DESCRIPTOR;
using sbd_tool::find_message;
using sbd_tool::FINDING;
using sbd_tool::list_messages;
using sbd_tool::MESSAGE_HELP;

// Number and key of every message that the library can make.
std::vector<std::pair<int, std::string>> make_all_messages() {
  MESSAGE_RECORDER recorder;
  const auto post = [](MSG_POST* message) { SBD_FILE_PARSER::post_message(message); };
  post(MSG_SBD::E::SBD_FILE_ERROR("f"));
  post(MSG_SBD::E::SBD_SYNTAX_ERROR("f", "t", 1));
  post(MSG_SBD::E::SBD_DECLARATION_ERROR("f", "n", 1));
  post(MSG_SBD::E::SBD_REFERENCE_ERROR("f", "n", 1));
  post(MSG_SBD::E::SBD_BLOCK_ERROR("f", "b", 1));
  post(MSG_SBD::E::SBD_VEL_DEVICE_ERROR("r"));
  post(MSG_SBD::E::SBD_VEL_MODULE_ERROR("r"));
  post(MSG_SBD::E::SBD_ERROR("t"));
  post(MSG_SBD::W::SBD_WARNING("t"));
  post(MSG_SBD::E::SBD_NO_DEVICE_BLOCK_ERROR());
  post(MSG_SBD::E::SBD_VELDRAN_MODULE_BLOCK_ERROR());
  post(MSG_SBD::E::SBD_PARAMETER_MISSING_ERROR("p"));
  post(MSG_SBD::E::SBD_PARAMETER_VALUE_ERROR("p"));
  post(MSG_SBD::E::UNSUPPORTED_FAMILY_ERROR("f"));
  post(MSG_SBD::E::FAMILY_NOT_DEFINED_ERROR("d"));
  std::vector<std::pair<int, std::string>> messages;
  for (const RECORDED_MESSAGE& message : recorder.messages()) {
    messages.emplace_back(message.number, message.key);
  }
  return messages;
}

TEST(MESSAGE_HELP_TEST, EveryMessageOfTheLibraryIsExplained) {
  const auto messages = make_all_messages();
  ASSERT_EQ(messages.size(), 15U);
  for (std::size_t i = 0; i != messages.size(); ++i) {
    EXPECT_EQ(list_messages()[i].number, messages[i].first);
    EXPECT_EQ(list_messages()[i].key, messages[i].second);
  }
  EXPECT_EQ(sbd_tool::greatest_message_number(), 15);
}

TEST(MESSAGE_HELP_TEST, IsFoundByNumberAndKey) {
  for (const MESSAGE_HELP& message : list_messages()) {
    EXPECT_EQ(find_message(message.key), &message);
    if (message.number == 0) continue;
    EXPECT_EQ(find_message(std::to_string(message.number)), &message);
  }
  for (const char* const topic : {"esbd_sbd_syntax_error", "SBD_SYNTAX_ERROR", "syntax_error"}) {
    ASSERT_NE(find_message(topic), nullptr) << topic;
    EXPECT_EQ(find_message(topic)->number, 2) << topic;
  }
  for (const char* const topic : {"", "0", "16", "02", "2 ", "syntax", "BD_SYNTAX_ERROR"}) {
    EXPECT_EQ(find_message(topic), nullptr) << topic;
  }
}

class MESSAGE_EXAMPLE : public DEVICE_TEST {
 protected:
  // A stripe that is good, but for clocks.
  static std::string complete(const MESSAGE_HELP& message, const char* example) {
    const bool is_fragment = message.example == MESSAGE_HELP::EXAMPLE::FRAGMENT;
    return is_fragment ? board_with(example) : std::string(example);
  }

  // The keys of all findings about the text. A device that is otherwise not complete has many.
  std::vector<std::string> find_keys(const std::string& text, bool has_infos) {
    const TEMPORARY_DIRECTORY folder;
    const bool is_device =
        text.find("family") != std::string::npos || text.find("type =") != std::string::npos;
    sbd_tool::CHECK_OPTIONS options;
    options.is_format_only = !is_device;
    options.has_infos = has_infos;
    const auto file = sbd_tool::check_file(folder.write("example.sbd", text), options);
    std::vector<std::string> keys;
    for (const FINDING& finding : file.findings.list) keys.push_back(finding.key);
    return keys;
  }
};

TEST_F(MESSAGE_EXAMPLE, FaultyOnesHaveTheFaultAndMendedOnesHaveNot) {
  std::size_t count = 0;
  for (const MESSAGE_HELP& message : list_messages()) {
    const bool is_text = message.example == MESSAGE_HELP::EXAMPLE::FILE ||
                         message.example == MESSAGE_HELP::EXAMPLE::FRAGMENT;
    if (!is_text) continue;
    ++count;
    const bool is_info = message.severity == sbd_tool::SEVERITY::INFO;
    const auto faulty = find_keys(complete(message, message.faulty), is_info);
    const auto mended = find_keys(complete(message, message.mended), is_info);
    EXPECT_GT(std::count(faulty.begin(), faulty.end(), message.key),
              std::count(mended.begin(), mended.end(), message.key))
        << message.key;
    if (is_info) continue;  // The rest of the device has some as well.
    EXPECT_EQ(std::count(mended.begin(), mended.end(), message.key), 0) << message.key;
    // The others are no whole devices.
    const bool is_about_format = message.number >= 1 && message.number <= 5;
    if (is_about_format || message.example == MESSAGE_HELP::EXAMPLE::FRAGMENT) {
      EXPECT_EQ(mended, std::vector<std::string>{}) << message.key;
    }
  }
  EXPECT_EQ(count, 20U);
}

TEST(MESSAGE_HELP_TEST, TextsAreWholeSentences) {
  for (const MESSAGE_HELP& message : list_messages()) {
    EXPECT_EQ(std::string_view(message.meaning).back(), '.') << message.key;
    EXPECT_EQ(std::string_view(message.mend).back(), '.') << message.key;
    EXPECT_NE(std::string_view(message.title).back(), '.') << message.key;
    EXPECT_EQ(message.faulty == nullptr, message.example == MESSAGE_HELP::EXAMPLE::NONE);
    EXPECT_EQ(message.mended == nullptr, message.example == MESSAGE_HELP::EXAMPLE::NONE);
  }
}

}  // namespace
