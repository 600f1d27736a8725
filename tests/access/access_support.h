// What the tests of writing and editing share.
#ifndef TESTS_ACCESS_ACCESS_SUPPORT_H
#define TESTS_ACCESS_ACCESS_SUPPORT_H

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "sbd/sbd_file_parser.h"
#include "tests/support/message_recorder.h"
#include "tests/support/test_scale.h"

// The numbers of the messages that writing and editing post.
inline constexpr int k_file_error = 1;
inline constexpr int k_error = 8;
inline constexpr int k_warning = 9;

// The internal error that looking up an empty name is.
inline constexpr char k_empty_name[] = "ref[p1] == '.'";

// What the library writes for a document, for a chain of siblings, for a value.
std::string written(const SBD_FILE_PARSER& document);
std::string written(SBD_FILE_PARSER::SBD_NODE* node, unsigned long indent);
std::string written(const SBD_FILE_PARSER::SBD_PARA_VALUE& value);

std::string file_content(const std::string& path);

// All that an edit may change: the text, and every symbol in its place with what it says.
std::string state_of(const SBD_FILE_PARSER& document);

// The text as the message service renders it.
std::string rendered(int number, const std::string& text);

// True when just this message was posted since the recorder last forgot, with the severity that
// belongs to its number, and nothing else, apart from internal errors of empty names. Forgets.
testing::AssertionResult posted(MESSAGE_RECORDER& recorder, int number, const std::string& text);

// Runs an edit that must say no with this message and leave everything as it was.
template <class EDIT>
void expect_refusal(SBD_FILE_PARSER& document, MESSAGE_RECORDER& recorder, int number,
                    const std::string& text, EDIT&& edit) {
  const std::string before = state_of(document);
  recorder.forget();
  EXPECT_FALSE(edit()) << text;
  EXPECT_TRUE(posted(recorder, number, text));
  EXPECT_EQ(state_of(document), before) << text;
}

// Runs an edit that must do nothing and say nothing.
template <class EDIT>
void expect_silent_refusal(SBD_FILE_PARSER& document, MESSAGE_RECORDER& recorder, EDIT&& edit) {
  const std::string before = state_of(document);
  recorder.forget();
  EXPECT_FALSE(edit());
  EXPECT_TRUE(recorder.is_silent()) << testing::PrintToString(recorder.texts());
  EXPECT_EQ(state_of(document), before);
}

SBD_STRING_LIST string_list(const std::vector<std::string>& names);

// The name at the head of the bucket that `name` belongs to; "" for an empty bucket.
std::string first_of_chain(const SBD_FILE_PARSER& document, const char* name);

#endif
