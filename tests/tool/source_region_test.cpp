#include "tools/source_region.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using sbd_tool::REGION_FINDER;
using sbd_tool::SOURCE_REGION;

// "line:column-line:column" of a place, whose line and byte column are counted here.
std::string find(REGION_FINDER& finder, const std::string& text, std::size_t offset,
                 std::size_t length) {
  SBD_FILE_PARSER::SBD_SOURCE_RANGE place;
  place.offset = offset;
  place.length = length;
  place.line = 1;
  place.column = 1;
  for (std::size_t i = 0; i != offset; ++i) {
    place.column = text[i] == '\n' ? 1 : place.column + 1;
    place.line += text[i] == '\n' ? 1 : 0;
  }
  const SOURCE_REGION region = finder.find(place);
  return std::to_string(region.start_line) + ":" + std::to_string(region.start_column) + "-" +
         std::to_string(region.end_line) + ":" + std::to_string(region.end_column);
}

std::string find(const std::string& text, std::size_t offset, std::size_t length) {
  REGION_FINDER finder(text);
  return find(finder, text, offset, length);
}

TEST(SOURCE_REGION_TEST, CountsLinesAndCharacters) {
  EXPECT_EQ(find("abc\ndef\n", 0, 1), "1:1-1:2");
  EXPECT_EQ(find("abc\ndef\n", 5, 2), "2:2-2:4");
  EXPECT_EQ(find("abc\ndef\nghi", 1, 9), "1:2-3:3");
  EXPECT_EQ(find("abc", 3, 0), "1:4-1:4");
  EXPECT_EQ(find("", 0, 0), "1:1-1:1");
}

TEST(SOURCE_REGION_TEST, CharactersMayHaveSeveralBytes) {
  const std::string text =
      "gr\xC3\xB6\xC3\x9F"
      "e = \xF0\x9F\x98\x80!\n";
  EXPECT_EQ(find(text, 2, 2), "1:3-1:4");
  EXPECT_EQ(find(text, 10, 4), "1:9-1:10");
  EXPECT_EQ(find(text, 14, 1), "1:10-1:11");
}

TEST(SOURCE_REGION_TEST, BytesThatAreNoCharactersCountByThemselves) {
  EXPECT_EQ(find("a\xFF\xFE"
                 "b",
                 3, 1),
            "1:4-1:5");
}

TEST(SOURCE_REGION_TEST, PlacesBeyondTheTextEndWithIt) {
  REGION_FINDER finder("ab");
  SBD_FILE_PARSER::SBD_SOURCE_RANGE place;
  place.offset = 10;
  place.length = 5;
  place.line = 1;
  place.column = 11;
  EXPECT_EQ(finder.find(place).start_column, 3U);
}

TEST(SOURCE_REGION_TEST, AnyOrderGivesTheSame) {
  const std::string text = "\xC3\xA4 b\xC3\xA4 c\nd \xC3\xA4 e\n";
  REGION_FINDER finder(text);
  for (const std::size_t offset : {3U, 6U, 6U, 3U, 14U, 9U, 0U, 14U}) {
    EXPECT_EQ(find(finder, text, offset, 1), find(text, offset, 1)) << offset;
  }
}

}  // namespace
