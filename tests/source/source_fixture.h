// What the tests of text-keeping edits share.
#ifndef TESTS_SOURCE_SOURCE_FIXTURE_H
#define TESTS_SOURCE_SOURCE_FIXTURE_H

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "sbd/sbd_source_document.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/tree_builder.h"

// A document that was read from a text, with a record of what is posted.
class SOURCE_FIXTURE : public testing::Test {
 protected:
  void read(std::string_view text) {
    ASSERT_TRUE(source.read_text(text.data(), text.size(), TEST_FILE));
  }

  std::string text() const { return std::string(source.text()); }

  // The text is `expected`, and it means the tree.
  void expect_text(std::string_view expected) {
    EXPECT_EQ(text(), expected);
    SBD_STRING why;
    EXPECT_TRUE(source.verify(why)) << why;
    EXPECT_EQ(messages.texts(), std::vector<std::string>());
  }

  // Nothing has changed, and these messages were posted.
  void expect_refused(bool is_done, std::string_view unchanged,
                      std::initializer_list<const char*> texts) {
    EXPECT_FALSE(is_done);
    EXPECT_EQ(text(), unchanged);
    std::vector<std::string> expected;
    for (const char* const one : texts) {
      expected.push_back(std::string("System Build Descriptor File error: ") + one);
    }
    EXPECT_EQ(messages.texts(), expected);
    EXPECT_EQ(messages.conditions(), std::vector<std::string>());
    messages.forget();
    SBD_STRING why;
    EXPECT_TRUE(source.verify(why)) << why;
  }

  std::string fault() const {
    SBD_STRING why;
    return source.verify(why) ? "" : std::string(why);
  }

  MESSAGE_RECORDER messages;
  SBD_SOURCE_DOCUMENT source;
};

#endif
