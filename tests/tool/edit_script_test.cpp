#include "tools/edit_script.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace {

using sbd_tool::EDIT;
using sbd_tool::read_edit_script;
using sbd_tool::split_words;
using WORDS = std::vector<std::string>;

WORDS words_of(std::string_view line) {
  WORDS words;
  std::string fault;
  EXPECT_TRUE(split_words(line, words, fault)) << fault;
  return words;
}

std::vector<EDIT> edits_of(std::string_view script) {
  std::vector<EDIT> edits;
  std::string fault;
  EXPECT_TRUE(read_edit_script(script, "s", edits, fault)) << fault;
  return edits;
}

// The only edit of a line.
EDIT edit_of(std::string_view line) {
  const std::vector<EDIT> edits = edits_of(line);
  EXPECT_EQ(edits.size(), 1U);
  return edits.empty() ? EDIT() : edits.front();
}

std::string fault_of(std::string_view script) {
  std::vector<EDIT> edits;
  std::string fault;
  EXPECT_FALSE(read_edit_script(script, "s", edits, fault));
  return fault;
}

TEST(SPLIT_WORDS, AtBlanks) {
  EXPECT_EQ(words_of(""), WORDS());
  EXPECT_EQ(words_of(" \t a\t b  c\r"), (WORDS{"a", "b", "c"}));
}

TEST(SPLIT_WORDS, ValuesStayWhole) {
  EXPECT_EQ(words_of("a \"b c\" d"), (WORDS{"a", "\"b c\"", "d"}));
  EXPECT_EQ(words_of("{1, {2, 3}} x={ 4, \"}\" }y z"),
            (WORDS{"{1, {2, 3}}", "x={ 4, \"}\" }y", "z"}));
  EXPECT_EQ(words_of("a=\"b # c\""), WORDS{"a=\"b # c\""});
  EXPECT_EQ(words_of("a} b"), (WORDS{"a}", "b"}));
}

TEST(SPLIT_WORDS, Comments) {
  EXPECT_EQ(words_of("# a"), WORDS());
  EXPECT_EQ(words_of("a #b \"c"), WORDS{"a"});
  EXPECT_EQ(words_of("a#b"), WORDS{"a#b"});
}

TEST(SPLIT_WORDS, OpenEnds) {
  WORDS words;
  std::string fault;
  EXPECT_FALSE(split_words("a \"b c", words, fault));
  EXPECT_EQ(fault, "the quotes of '\"b c' stay open");
  EXPECT_FALSE(split_words("a {1, {2}", words, fault));
  EXPECT_EQ(fault, "the braces of '{1, {2}' stay open");
}

TEST(EDIT_SCRIPT, Set) {
  const EDIT edit = edit_of("set a.b \"x y\" --after c");
  EXPECT_EQ(edit.kind, EDIT::KIND::SET);
  EXPECT_EQ(edit.name, "a.b");
  EXPECT_EQ(edit.value, "\"x y\"");
  EXPECT_EQ(edit.place, SBD_PLACE::BEHIND);
  EXPECT_EQ(edit.sibling, "c");
  EXPECT_EQ(edit_of("set a.b -1.5").value, "-1.5");
  EXPECT_EQ(edit_of("set a.b 1 --before c").place, SBD_PLACE::BEFORE);
  EXPECT_EQ(edit_of("set a.b 1").place, SBD_PLACE::AT_END);
}

TEST(EDIT_SCRIPT, Unset) {
  EXPECT_EQ(edit_of("unset a.b").kind, EDIT::KIND::UNSET);
  EXPECT_FALSE(edit_of("unset a.b").with_references);
  EXPECT_TRUE(edit_of("unset a.b --with-references").with_references);
}

TEST(EDIT_SCRIPT, References) {
  const EDIT edit = edit_of("ref a.r b c.d --before x");
  EXPECT_EQ(edit.kind, EDIT::KIND::SET_REFERENCES);
  EXPECT_EQ(edit.targets, (WORDS{"b", "c.d"}));
  EXPECT_EQ(edit.place, SBD_PLACE::BEFORE);
  EXPECT_EQ(edit_of("ref --remove a").kind, EDIT::KIND::REMOVE_REFERENCES);
  EXPECT_EQ(edit_of("ref --remove a").name, "a");
}

TEST(EDIT_SCRIPT, Attributes) {
  const EDIT edit = edit_of("attr a.b k=.v l");
  EXPECT_EQ(edit.kind, EDIT::KIND::SET_ATTRIBUTES);
  ASSERT_EQ(edit.attributes.size(), 2U);
  EXPECT_EQ(edit.attributes[0].key, "k");
  EXPECT_EQ(edit.attributes[0].value, ".v");
  EXPECT_EQ(edit.attributes[1].key, "l");
  EXPECT_FALSE(edit.attributes[1].value);
  EXPECT_TRUE(edit_of("attr a.b --clear").attributes.empty());
}

TEST(EDIT_SCRIPT, Blocks) {
  const EDIT edit = edit_of("block add module a.m --set x=1 --after y --set z={1, 2}");
  EXPECT_EQ(edit.kind, EDIT::KIND::ADD_BLOCK);
  EXPECT_EQ(edit.value, "module");
  EXPECT_EQ(edit.name, "a.m");
  EXPECT_EQ(edit.sibling, "y");
  ASSERT_EQ(edit.members.size(), 2U);
  EXPECT_EQ(edit.members[1].key, "z");
  EXPECT_EQ(edit.members[1].value, "{1, 2}");
  EXPECT_EQ(edit_of("block remove a").kind, EDIT::KIND::REMOVE_BLOCK);
  EXPECT_TRUE(edit_of("block remove a --with-references").with_references);
}

TEST(EDIT_SCRIPT, Rename) {
  EXPECT_EQ(edit_of("rename a b").kind, EDIT::KIND::RENAME);
  EXPECT_EQ(edit_of("rename a b").value, "b");
  EXPECT_TRUE(edit_of("rename a b").with_references);
  EXPECT_FALSE(edit_of("rename a b --no-references").with_references);
}

TEST(EDIT_SCRIPT, LinesAreNumbered) {
  const std::vector<EDIT> edits = edits_of("# first\n\nunset a\r\n   unset b # there");
  ASSERT_EQ(edits.size(), 2U);
  EXPECT_EQ(edits[0].name, "a");
  EXPECT_EQ(edits[0].origin, "s:3");
  EXPECT_EQ(edits[1].name, "b");
  EXPECT_EQ(edits[1].origin, "s:4");
}

TEST(EDIT_SCRIPT, NulBytesDoNotCutWordsOff) {
  constexpr std::string_view k_script("unset a\nset b.c\0d 1", 19);
  EXPECT_EQ(fault_of(k_script), "s:2: a NUL byte can't be part of an edit");
}

TEST(EDIT_SCRIPT, Faults) {
  EXPECT_EQ(fault_of("set a 1\nset b"), "s:2: a value is missing");
  EXPECT_EQ(fault_of("set"), "s:1: the name of a parameter is missing");
  EXPECT_EQ(fault_of("set a 1 2"), "s:1: '2' is too much");
  EXPECT_EQ(fault_of("unset a --all"), "s:1: '--all' is too much");
  EXPECT_EQ(fault_of("ref a"), "s:1: a target is missing");
  EXPECT_EQ(fault_of("attr a"), "s:1: an attribute or --clear is missing");
  EXPECT_EQ(fault_of("block move a"), "s:1: 'move' is neither \"add\" nor \"remove\"");
  EXPECT_EQ(fault_of("block add module a --set x"), "s:1: 'x' has no value");
  EXPECT_EQ(fault_of("set a 1 --after"), "s:1: the name of a sibling is missing");
  EXPECT_EQ(fault_of("\nset a \"b"), "s:2: the quotes of '\"b' stay open");
  EXPECT_EQ(fault_of("delete a"),
            "s:1: 'delete' is no edit: set, unset, ref, attr, block add, block remove or rename");
}

}  // namespace
