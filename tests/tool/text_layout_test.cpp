// Tables, wrapped text and patterns of names.
#include <gtest/gtest.h>

#include <string>

#include "tests/tool/captured_output.h"
#include "tools/name_pattern.h"
#include "tools/text_table.h"
#include "tools/wrapped_text.h"

namespace {

using sbd_tool::matches_pattern;
using sbd_tool::PAINTER;
using sbd_tool::STYLE;
using sbd_tool::TEXT_TABLE;
using sbd_tool::wrap_text;

std::string print(const TEXT_TABLE& table, std::size_t indent = 0, bool has_colors = false) {
  CAPTURED_OUTPUT captured;
  table.print(captured.output(), PAINTER(has_colors), indent);
  return captured.text();
}

TEST(TEXT_TABLE_TEST, AlignsColumnsWithoutBlanksAtLineEnds) {
  TEXT_TABLE table;
  table.add_column("NAME");
  table.add_column("N", TEXT_TABLE::ALIGN::RIGHT);
  table.add_column("REST");
  table.add_row({{"a"}, {"1"}, {"x"}});
  table.add_row({{"longer"}, {"100"}, {""}});
  table.add_row({{"b"}, {""}, {"y"}});
  EXPECT_EQ(print(table, 1),
            " NAME      N  REST\n"
            " a         1  x\n"
            " longer  100\n"
            " b            y\n");
}

TEST(TEXT_TABLE_TEST, LeavesOutEmptyColumnsAndHeadings) {
  TEXT_TABLE table;
  table.add_column("");
  table.add_column("");
  table.add_column("");
  table.add_row({{"a"}, {""}, {"b"}});
  EXPECT_EQ(print(table), "a  b\n");
  TEXT_TABLE empty;
  empty.add_column("NAME");
  EXPECT_EQ(print(empty), "");
}

TEST(TEXT_TABLE_TEST, CountsCharactersAndHidesWhatATerminalWouldObey) {
  TEXT_TABLE table;
  table.add_column("");
  table.add_column("");
  table.add_row({{"\xc3\xa4"}, {"1"}});
  table.add_row({{"a\x1b"}, {"2"}});
  EXPECT_EQ(print(table), "\xc3\xa4      1\na\\x1b  2\n");
}

TEST(TEXT_TABLE_TEST, ColorsDoNotMoveColumns) {
  TEXT_TABLE table;
  table.add_column("");
  table.add_column("");
  table.add_row({{"a", STYLE::NAME}, {"1"}});
  table.add_row({{"bb"}, {"2"}});
  EXPECT_EQ(print(table, 0, true), "\x1b[36ma\x1b[0m   1\nbb  2\n");
}

TEST(WRAP_TEXT, BreaksBetweenWords) {
  EXPECT_EQ(wrap_text("", 10, 2), "");
  EXPECT_EQ(wrap_text("one two three", 9, 2), "  one two\n  three\n");
  EXPECT_EQ(wrap_text("one two three", 8, 2), "  one\n  two\n  three\n");
  EXPECT_EQ(wrap_text(" one  two ", 80, 0), "one two\n");
  EXPECT_EQ(wrap_text("a_word_that_is_too_long b", 5, 0), "a_word_that_is_too_long\nb\n");
}

TEST(NAME_PATTERN, PartsOfNames) {
  EXPECT_TRUE(matches_pattern("sdram.data_width", ""));
  EXPECT_TRUE(matches_pattern("sdram.data_width", "data"));
  EXPECT_TRUE(matches_pattern("sdram.data_width", "SDRAM."));
  EXPECT_TRUE(matches_pattern("sram[0].enabled", "[0]"));
  EXPECT_FALSE(matches_pattern("sdram.data_width", "width."));
  EXPECT_FALSE(matches_pattern("", "a"));
}

TEST(NAME_PATTERN, WholeNames) {
  EXPECT_TRUE(matches_pattern("sdram.data_width", "*"));
  EXPECT_TRUE(matches_pattern("sdram.data_width", "sdram.*"));
  EXPECT_TRUE(matches_pattern("sdram.data_width", "*.DATA_*th"));
  EXPECT_TRUE(matches_pattern("sdram.data_width", "*a*a*a*"));
  EXPECT_TRUE(matches_pattern("sram[0].enabled", "sram[?].enabled"));
  EXPECT_TRUE(matches_pattern("ab", "**a?**"));
  EXPECT_TRUE(matches_pattern("", "*"));
  EXPECT_FALSE(matches_pattern("sdram.data_width", "data*"));
  EXPECT_FALSE(matches_pattern("sdram.data_width", "*data"));
  EXPECT_FALSE(matches_pattern("sram[10].enabled", "sram[?].enabled"));
  EXPECT_FALSE(matches_pattern("ab", "a?b"));
  EXPECT_FALSE(matches_pattern("", "?"));
}

TEST(NAME_PATTERN, ManyStarsTakeNoTime) {
  std::string pattern;
  for (int i = 0; i != 5000; ++i) pattern += "*a";
  EXPECT_FALSE(matches_pattern(std::string(20000, 'a'), pattern + "*b"));
}

}  // namespace
