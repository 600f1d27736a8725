#include "tools/visible_text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using sbd_tool::make_visible;
using sbd_tool::width_of;

TEST(VISIBLE_TEXT, PlainTextStays) {
  EXPECT_EQ(make_visible(""), "");
  EXPECT_EQ(make_visible("a \\ \"b\" ~"), "a \\ \"b\" ~");
  EXPECT_EQ(make_visible("Gr\u00f6\u00dfe \u2192 \U0001F600"), "Gr\u00f6\u00dfe \u2192 \U0001F600");
}

TEST(VISIBLE_TEXT, ControlCharactersAreEscaped) {
  EXPECT_EQ(make_visible("a\tb\nc\rd"), "a\\tb\\nc\\rd");
  EXPECT_EQ(make_visible("\x1b[31m\x07\x7f"), "\\x1b[31m\\x07\\x7f");
  EXPECT_EQ(make_visible(std::string(1, '\0')), "\\x00");
  EXPECT_EQ(make_visible("\u0085\u009b"), "\\u0085\\u009b");
}

TEST(VISIBLE_TEXT, DeceptiveCharactersAreEscaped) {
  EXPECT_EQ(make_visible("\u202e\u2066\u200f\u2028\ufeff"), "\\u202e\\u2066\\u200f\\u2028\\ufeff");
}

TEST(VISIBLE_TEXT, InvalidBytesAreEscaped) {
  EXPECT_EQ(make_visible("\xff\x80"), "\\xff\\x80");
  EXPECT_EQ(make_visible("\xc3"), "\\xc3");
  EXPECT_EQ(make_visible("\xe2\x82 "), "\\xe2\\x82 ");
  EXPECT_EQ(make_visible("\xc0\xaf"), "\\xc0\\xaf");           // A longer form than need be.
  EXPECT_EQ(make_visible("\xed\xa0\x80"), "\\xed\\xa0\\x80");  // Half of a pair.
  EXPECT_EQ(make_visible("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");  // Beyond the last one.
}

TEST(VISIBLE_TEXT, WidthCountsCharacters) {
  EXPECT_EQ(width_of(""), 0U);
  EXPECT_EQ(width_of("abc"), 3U);
  EXPECT_EQ(width_of("\u00f6\u2192\U0001F600"), 3U);
}

TEST(VISIBLE_TEXT, WideTextLosesItsMiddle) {
  EXPECT_EQ(make_visible("abcdefghij", 10), "abcdefghij");
  EXPECT_EQ(make_visible("abcdefghijk", 10), "abcde...ghijk");
  EXPECT_EQ(make_visible("abcdefghijkl", 10), "abcde...hijkl");
  EXPECT_EQ(make_visible(std::string(1000000, 'x') + "end", 10), "xxxxx...xxend");
  EXPECT_EQ(make_visible("\u00f6\u00f6\u00f6\u00f6\u00f6\u00fc\u00fc", 4),
            "\u00f6\u00f6...\u00fc\u00fc");
}

TEST(VISIBLE_TEXT, CutKeepsCharactersWhole) {
  std::string text = "a";
  for (int i = 0; i < 1000; ++i) text += "\u20ac";
  EXPECT_EQ(make_visible(text, 6), "a\u20ac\u20ac...\u20ac\u20ac\u20ac");
}

}  // namespace
