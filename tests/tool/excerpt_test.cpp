#include "tools/excerpt.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using sbd_tool::EXCERPT;

EXCERPT excerpt_of(const std::string& source, std::size_t offset, std::size_t length) {
  SBD_FILE_PARSER::SBD_SOURCE_RANGE place;
  place.offset = offset;
  place.length = length;
  return sbd_tool::make_excerpt(source, place);
}

// The part of the line that is marked, without what was cut.
std::string marked(const EXCERPT& excerpt) {
  return excerpt.line.substr(excerpt.mark_column, excerpt.mark_width);
}

TEST(EXCERPT, ShowsTheLineOfThePlace) {
  const EXCERPT excerpt = excerpt_of("first\nx = 08;\nlast\n", 11, 1);
  EXPECT_EQ(excerpt.line, "x = 08;");
  EXPECT_EQ(excerpt.mark_column, 5U);
  EXPECT_EQ(excerpt.mark_width, 1U);
  EXPECT_FALSE(excerpt.is_end_of_input);
}

TEST(EXCERPT, LineEndsAreNotShown) {
  EXPECT_EQ(excerpt_of("a\r\nb\r\n", 0, 1).line, "a");
  EXPECT_EQ(excerpt_of("a\r\nb\r\n", 3, 1).line, "b");
  EXPECT_EQ(excerpt_of("a\rb\r\n", 2, 1).line, "a\\rb");
  EXPECT_EQ(excerpt_of("a\r", 0, 1).line, "a");
}

TEST(EXCERPT, MarksTheWholeToken) {
  const EXCERPT excerpt = excerpt_of("abc defg hi", 4, 4);
  EXPECT_EQ(marked(excerpt), "defg");
}

TEST(EXCERPT, MarkEndsWithTheLine) {
  const EXCERPT excerpt = excerpt_of("x = \"ab\ncd\";\n", 4, 7);
  EXPECT_EQ(excerpt.line, "x = \"ab");
  EXPECT_EQ(marked(excerpt), "\"ab");
}

TEST(EXCERPT, MarkIsAtLeastOneWide) {
  const EXCERPT excerpt = excerpt_of("abc\n", 3, 1);
  EXPECT_EQ(excerpt.mark_column, 3U);
  EXPECT_EQ(excerpt.mark_width, 1U);
}

TEST(EXCERPT, EndOfInput) {
  const EXCERPT behind_newline = excerpt_of("abc\n", 4, 0);
  EXPECT_EQ(behind_newline.line, "");
  EXPECT_EQ(behind_newline.mark_column, 0U);
  EXPECT_TRUE(behind_newline.is_end_of_input);
  const EXCERPT in_line = excerpt_of("abc", 3, 0);
  EXPECT_EQ(in_line.line, "abc");
  EXPECT_EQ(in_line.mark_column, 3U);
  EXPECT_TRUE(excerpt_of("", 0, 0).is_end_of_input);
}

TEST(EXCERPT, PlacesOutsideTheSourceDoNoHarm) {
  EXPECT_EQ(excerpt_of("abc", 100, 100).line, "abc");
  EXPECT_EQ(marked(excerpt_of("abc", 1, std::string::npos)), "bc");
}

TEST(EXCERPT, TabsBecomeBlanks) {
  const EXCERPT excerpt = excerpt_of("\tab\tc", 4, 1);
  EXPECT_EQ(excerpt.line, "    ab  c");
  EXPECT_EQ(marked(excerpt), "c");
  EXPECT_EQ(excerpt_of("abc\td", 0, 1).line, "abc d");
  EXPECT_EQ(excerpt_of("abcd\te", 0, 1).line, "abcd    e");
}

TEST(EXCERPT, CharactersCountOnce) {
  const EXCERPT excerpt = excerpt_of("\"\u00e4\u20ac\U0001F600\" x", 12, 1);
  EXPECT_EQ(excerpt.mark_column, 6U);
  const EXCERPT wide = excerpt_of("\"\u00e4\u20ac\" x", 0, 7);
  EXPECT_EQ(wide.mark_width, 4U);
}

TEST(EXCERPT, PlaceInsideACharacterMarksIt) {
  EXPECT_EQ(excerpt_of("a\u20acb", 1, 1).mark_column, 1U);
  EXPECT_EQ(excerpt_of("a\u20acb", 2, 1).mark_column, 1U);
  EXPECT_EQ(excerpt_of("a\u20acb", 3, 1).mark_column, 1U);
  EXPECT_EQ(excerpt_of("a\u20acb", 4, 1).mark_column, 2U);
}

TEST(EXCERPT, InvisibleCharactersAreEscaped) {
  const EXCERPT excerpt = excerpt_of("a\x1b\xff?", 3, 1);
  EXPECT_EQ(excerpt.line, "a\\x1b\\xff?");
  EXPECT_EQ(marked(excerpt), "?");
  EXPECT_EQ(marked(excerpt_of("a\x1b?", 1, 1)), "\\x1b");
}

TEST(EXCERPT, LongLinesAreCutAroundThePlace) {
  const std::string line = std::string(500, 'a') + "X" + std::string(500, 'b');
  const EXCERPT excerpt = excerpt_of("first\n" + line + "\nlast", 506, 1);
  EXPECT_EQ(excerpt.line, "..." + std::string(60, 'a') + "X" + std::string(39, 'b') + "...");
  EXPECT_EQ(marked(excerpt), "X");
}

TEST(EXCERPT, LongLinesAreCutAtOneEndOnly) {
  const EXCERPT at_begin = excerpt_of("X" + std::string(500, 'b'), 0, 1);
  EXPECT_EQ(at_begin.line, "X" + std::string(99, 'b') + "...");
  EXPECT_EQ(marked(at_begin), "X");
  const EXCERPT at_end = excerpt_of(std::string(500, 'a') + "X", 500, 1);
  EXPECT_EQ(at_end.line, "..." + std::string(60, 'a') + "X");
  EXPECT_EQ(marked(at_end), "X");
}

TEST(EXCERPT, LinesThatFitAreNotCut) {
  const std::string line(100, 'a');
  EXPECT_EQ(excerpt_of(line, 99, 1).line, line);
  EXPECT_EQ(excerpt_of(line, 0, 1).line, line);
}

TEST(EXCERPT, LongTokensAreMarkedAsFarAsTheyShow) {
  const EXCERPT excerpt = excerpt_of("ab" + std::string(1000, 'x'), 2, 1000);
  EXPECT_EQ(excerpt.line, "ab" + std::string(98, 'x') + "...");
  EXPECT_EQ(excerpt.mark_column, 2U);
  EXPECT_EQ(excerpt.mark_width, 98U);
}

TEST(EXCERPT, CutKeepsCharactersWhole) {
  std::string line;
  for (int i = 0; i < 1000; ++i) line += "\U0001F600";
  const EXCERPT excerpt = excerpt_of(line, 2000, 4);
  EXPECT_EQ(excerpt.line.find("\\x"), std::string::npos);
  EXPECT_EQ(excerpt.mark_column, 63U);
}

}  // namespace
