#include "tools/unified_diff.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <cstddef>
#include <cstdio>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using sbd_tool::make_unified_diff;

std::vector<std::string> split(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
    lines.emplace_back(text.substr(0, length));
    text.remove_prefix(length);
  }
  return lines;
}

// Puts lines of a diff onto a text, as strictly as can be: every number and every line of context
// has to be right.
class APPLIER {
 public:
  APPLIER(std::string_view old_text, std::string_view diff)
      : m_old(split(old_text)), m_diff(split(diff)) {}

  std::string apply() {
    if (m_diff.empty()) return join_rest();
    expect_head("--- ");
    expect_head("+++ ");
    while (m_at < m_diff.size()) apply_hunk();
    return join_rest();
  }

 private:
  struct RANGE {
    std::size_t first = 0;  // From 0.
    std::size_t count = 0;
  };

  void expect_head(const std::string& mark) {
    ASSERT_LT(m_at, m_diff.size());
    EXPECT_EQ(m_diff[m_at++].rfind(mark, 0), 0U);
  }

  static RANGE parse(const std::string& text) {
    RANGE range;
    const std::size_t comma = text.find(',');
    range.count = comma == std::string::npos ? 1 : std::stoul(text.substr(comma + 1));
    const std::size_t line = std::stoul(text);
    range.first = range.count == 0 ? line : line - 1;
    return range;
  }

  void apply_hunk() {
    char old_range[64];
    char new_range[64];
    const std::string& head = m_diff[m_at++];
    ASSERT_EQ(std::sscanf(head.c_str(), "@@ -%63[0-9,] +%63[0-9,] @@\n", old_range, new_range), 2);
    const RANGE taken = parse(old_range);
    const RANGE given = parse(new_range);
    ASSERT_GE(taken.first, m_old_at);
    while (m_old_at < taken.first) copy_line();
    ASSERT_EQ(m_new_count, given.first);
    while (m_old_at < taken.first + taken.count || m_new_count < given.first + given.count) {
      ASSERT_LT(m_at, m_diff.size());
      apply_line();
    }
    EXPECT_EQ(m_old_at, taken.first + taken.count);
    EXPECT_EQ(m_new_count, given.first + given.count);
  }

  void apply_line() {
    std::string line = m_diff[m_at++];
    const char mark = line.at(0);
    line.erase(0, 1);
    if (m_at < m_diff.size() && m_diff[m_at] == "\\ No newline at end of file\n") {
      ++m_at;
      line.pop_back();
    }
    if (mark != '+') {
      ASSERT_LT(m_old_at, m_old.size());
      ASSERT_EQ(m_old[m_old_at], line);
      ++m_old_at;
    }
    if (mark != '-') {
      m_new += line;
      ++m_new_count;
    }
  }

  void copy_line() {
    ASSERT_LT(m_old_at, m_old.size());
    m_new += m_old[m_old_at++];
    ++m_new_count;
  }

  std::string join_rest() {
    while (m_old_at < m_old.size()) copy_line();
    return m_new;
  }

  std::vector<std::string> m_old;
  std::vector<std::string> m_diff;
  std::size_t m_at = 0;
  std::size_t m_old_at = 0;
  std::string m_new;
  std::size_t m_new_count = 0;
};

std::string apply_diff(std::string_view old_text, std::string_view diff) {
  return APPLIER(old_text, diff).apply();
}

void expect_round_trip(const std::string& old_text, const std::string& new_text) {
  EXPECT_EQ(apply_diff(old_text, make_unified_diff("f", old_text, new_text)), new_text);
}

std::size_t count_changed(const std::string& diff) {
  std::size_t count = 0;
  for (const std::string& line : split(diff)) count += line[0] == '-' || line[0] == '+' ? 1 : 0;
  return count - 2;  // The heads.
}

TEST(UNIFIED_DIFF, SameTextsHaveNone) {
  EXPECT_EQ(make_unified_diff("f", "", ""), "");
  EXPECT_EQ(make_unified_diff("f", "a\nb", "a\nb"), "");
}

TEST(UNIFIED_DIFF, OneLine) {
  EXPECT_EQ(
      make_unified_diff("x/f.sbd", "1\n2\n3\n4\n5\n6\n7\n8\n9\n", "1\n2\n3\n4\nV\n6\n7\n8\n9\n"),
      "--- a/x/f.sbd\n+++ b/x/f.sbd\n"
      "@@ -2,7 +2,7 @@\n 2\n 3\n 4\n-5\n+V\n 6\n 7\n 8\n");
}

TEST(UNIFIED_DIFF, NearChangesShareAHunk) {
  const std::string old_text = "a\n1\n2\n3\n4\n5\n6\nb\n";
  EXPECT_EQ(make_unified_diff("f", old_text, "A\n1\n2\n3\n4\n5\n6\nB\n"),
            "--- a/f\n+++ b/f\n@@ -1,8 +1,8 @@\n-a\n+A\n 1\n 2\n 3\n 4\n 5\n 6\n-b\n+B\n");
}

TEST(UNIFIED_DIFF, FarChangesDoNot) {
  const std::string old_text = "a\n1\n2\n3\n4\n5\n6\n7\nb\n";
  EXPECT_EQ(make_unified_diff("f", old_text, "A\n1\n2\n3\n4\n5\n6\n7\nB\n"),
            "--- a/f\n+++ b/f\n@@ -1,4 +1,4 @@\n-a\n+A\n 1\n 2\n 3\n"
            "@@ -6,4 +6,4 @@\n 5\n 6\n 7\n-b\n+B\n");
}

TEST(UNIFIED_DIFF, EmptyTexts) {
  EXPECT_EQ(make_unified_diff("f", "", "a\n"), "--- a/f\n+++ b/f\n@@ -0,0 +1 @@\n+a\n");
  EXPECT_EQ(make_unified_diff("f", "a\nb\n", ""), "--- a/f\n+++ b/f\n@@ -1,2 +0,0 @@\n-a\n-b\n");
}

TEST(UNIFIED_DIFF, MissingLineEnds) {
  constexpr char k_mark[] = "\\ No newline at end of file\n";
  EXPECT_EQ(make_unified_diff("f", "a\nb", "a\nb\n"),
            std::string("--- a/f\n+++ b/f\n@@ -1,2 +1,2 @@\n a\n-b\n") + k_mark + "+b\n");
  EXPECT_EQ(make_unified_diff("f", "a\nb", "c\nb"),
            std::string("--- a/f\n+++ b/f\n@@ -1,2 +1,2 @@\n-a\n+c\n b\n") + k_mark);
  expect_round_trip("a", "b");
  expect_round_trip("a\n", "a");
  expect_round_trip("", "\n\n\nx");
}

TEST(UNIFIED_DIFF, CarriageReturnsBelongToTheirLines) {
  EXPECT_EQ(make_unified_diff("f", "a\r\n", "a\n"), "--- a/f\n+++ b/f\n@@ -1 +1 @@\n-a\r\n+a\n");
}

TEST(UNIFIED_DIFF, NamesThatPatchCanRead) {
  EXPECT_EQ(make_unified_diff("/t/f", "", "a\n").substr(0, 18), "--- a/t/f\n+++ b/t/");
  EXPECT_EQ(make_unified_diff("a b", "", "a\n").substr(0, 20), "--- a/a b\t\n+++ b/a b");
  EXPECT_EQ(make_unified_diff("a\nb", "", "a\n").substr(0, 15), "--- \"a/a\\012b\"\n");
}

TEST(UNIFIED_DIFF, IsAsShortAsCanBe) {
  EXPECT_EQ(count_changed(make_unified_diff("f", "a\nb\nc\na\nb\nb\na\n", "c\nb\na\nb\na\nc\n")),
            5U);
  EXPECT_EQ(count_changed(make_unified_diff("f", "{\n  a\n}\n", "{\n  a\n}\n{\n  b\n}\n")), 3U);
}

TEST(UNIFIED_DIFF, RandomTexts) {
  std::mt19937 random(1);
  for (int round = 0; round < 3000; ++round) {
    const auto make_text = [&random] {
      std::string text;
      const std::size_t count = random() % 30;
      for (std::size_t i = 0; i < count; ++i) text += std::string(1, "abcd"[random() % 4]) + "\n";
      if (random() % 4 == 0) text += "e";
      return text;
    };
    const std::string old_text = make_text();
    expect_round_trip(old_text, make_text());
  }
}

TEST(UNIFIED_DIFF, MoreChangesThanAreLookedAtTogether) {
  std::mt19937 random(2);
  std::string old_text;
  std::string new_text;
  std::size_t changed = 0;
  for (int i = 0; i < 20000; ++i) {
    const std::string line = "line " + std::to_string(i) + "\n";
    const bool is_changed = random() % 3 == 0;
    old_text += line;
    new_text += is_changed ? "changed " + line : line;
    changed += is_changed ? 2 : 0;
  }
  const std::string diff = make_unified_diff("f", old_text, new_text);
  EXPECT_EQ(apply_diff(old_text, diff), new_text);
  EXPECT_LE(count_changed(diff), changed + changed / 100);
}

TEST(UNIFIED_DIFF, NothingInCommon) {
  std::string old_text;
  std::string new_text;
  for (int i = 0; i < 20000; ++i) {
    old_text += "old " + std::to_string(i) + "\n";
    new_text += "new " + std::to_string(i) + "\n";
  }
  expect_round_trip(old_text, new_text);
}

}  // namespace
