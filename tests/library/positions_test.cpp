#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "sbd/sbd_file_parser.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/tree_builder.h"

namespace {

using SBD_SOURCE_RANGE = SBD_FILE_PARSER::SBD_SOURCE_RANGE;

// What a range should be, counted the plain way.
SBD_SOURCE_RANGE range_in(std::string_view text, std::size_t offset, std::size_t length) {
  const std::string_view before = text.substr(0, offset);
  SBD_SOURCE_RANGE range;
  range.offset = offset;
  range.length = length;
  range.line = 1 + static_cast<unsigned long>(std::count(before.begin(), before.end(), '\n'));
  range.column = offset - (before.rfind('\n') == before.npos ? 0 : before.rfind('\n') + 1) + 1;
  return range;
}

void expect_equal(const SBD_SOURCE_RANGE& range, const SBD_SOURCE_RANGE& expected) {
  EXPECT_EQ(range.offset, expected.offset);
  EXPECT_EQ(range.length, expected.length);
  EXPECT_EQ(range.line, expected.line);
  EXPECT_EQ(range.column, expected.column);
}

// Expects a range to be the first place where `part` stands in the text, from `after` on.
void expect_part(const SBD_FILE_PARSER& document, const SBD_SOURCE_RANGE& range,
                 std::string_view part, std::string_view after = "") {
  SCOPED_TRACE(part);
  const std::string_view text = document.get_source();
  const std::size_t offset = text.find(part, text.find(after));
  ASSERT_NE(offset, text.npos);
  expect_equal(range, range_in(text, offset, part.size()));
}

// Every record's range in texts with either line end.
class POSITION : public testing::TestWithParam<std::string> {
 protected:
  // Reads the text, in which each "\n" becomes the line end.
  void read(const std::string& text) {
    m_text.clear();
    for (const char c : text) {
      if (c == '\n') {
        m_text += GetParam();
      } else {
        m_text += c;
      }
    }
    ASSERT_TRUE(read_text(m_document, m_text)) << m_text;
  }

  // The parts are given with "\n" too.
  std::string with_line_ends(const std::string& text) const {
    std::string result;
    for (const char c : text) result += c == '\n' ? GetParam() : std::string(1, c);
    return result;
  }

  SBD_NODE* node(const char* name) const { return m_document.get_ref_object(name, nullptr); }

  template <class RECORD>
  void expect_range(const RECORD* record, const std::string& part, const char* after = "") {
    SBD_SOURCE_RANGE range;
    ASSERT_TRUE(m_document.get_range(record, range)) << part;
    expect_part(m_document, range, with_line_ends(part), after);
  }

  std::string m_text;
  SBD_FILE_PARSER m_document;
};

TEST_P(POSITION, OfABlockIsFromItsTypeToItsBrace) {
  read(
      "# c\n  device\n D\n{\n x = {1, 2};\n bus b { y = 1; }\n }\n# not here }\n"
      "device e { x = \"}\"; }\n");
  expect_range(node("d"), "device\n D\n{\n x = {1, 2};\n bus b { y = 1; }\n }");
  expect_range(node("d.b"), "bus b { y = 1; }");
  expect_range(node("e"), "device e { x = \"}\"; }");
}

TEST_P(POSITION, OfAStatementIsFromItsNameToItsSemicolon) {
  read("device d {\n  x = 5K [k .v] ; # c\n  y\n  =\n  \";\"\n  ;  r < d ,\n .x > ;z=1;}");
  expect_range(node("d.x"), "x = 5K [k .v] ;");
  expect_range(node("d.y"), "y\n  =\n  \";\"\n  ;");
  expect_range(node("d.r"), "r < d ,\n .x > ;");
  expect_range(node("d.z"), "z=1;");
}

TEST_P(POSITION, OfNamesAndTypes) {
  read("device\n  Dev[1] {\n  Ab_c[2] = 5; bus bus { a < .a > ; } }");
  const auto expect_name = [&](const char* name, const char* part, const char* after) {
    SBD_SOURCE_RANGE range;
    ASSERT_TRUE(m_document.get_name_range(node(name), range)) << name;
    expect_part(m_document, range, part, after);
  };
  const auto expect_type = [&](const char* name, const char* part, const char* after) {
    SBD_SOURCE_RANGE range;
    ASSERT_TRUE(m_document.get_type_range(node(name), range)) << name;
    expect_part(m_document, range, part, after);
  };
  ASSERT_TRUE(m_document.is_block_defined("dev[1]"));
  expect_type("dev[1]", "device", "");
  expect_name("dev[1]", "Dev[1]", "");
  expect_name("dev[1].ab_c[2]", "Ab_c[2]", "");
  expect_type("dev[1].bus", "bus", "");
  expect_name("dev[1].bus", "bus", "bus {");
  expect_name("dev[1].bus.a", "a", "a <");
}

TEST_P(POSITION, OfValuesIncludesTheirUnits) {
  read(
      "device d { a = 5 ; b = +64KB; c = 0x1fMHz [k]; d=-1.5; e = tRue; f = True;\n"
      "g =\n\"a\nb\"; h = 010hz; }");
  expect_range(m_document.get_para_value("d", "a"), "5");
  expect_range(m_document.get_para_value("d", "b"), "+64KB");
  expect_range(m_document.get_para_value("d", "c"), "0x1fMHz");
  expect_range(m_document.get_para_value("d", "d"), "-1.5");
  expect_range(m_document.get_para_value("d", "e"), "tRue");
  expect_range(m_document.get_para_value("d", "f"), "True");
  expect_range(m_document.get_para_value("d", "g"), "\"a\nb\"");
  expect_range(m_document.get_para_value("d", "h"), "010hz");
}

TEST_P(POSITION, OfListsAndTheirElements) {
  read("device d {\n x = { 1K ,\n {\"}\", { a, 2 } } , 3 };\n}");
  const SBD_PARA_VALUE* const list = m_document.get_para_value("d", "x");
  expect_range(list, "{ 1K ,\n {\"}\", { a, 2 } } , 3 }");
  expect_range((*list->list)[0], "1K");
  expect_range((*list->list)[2], "3");
  const SBD_PARA_VALUE* const inner = (*list->list)[1];
  expect_range(inner, "{\"}\", { a, 2 } }");
  expect_range((*inner->list)[0], "\"}\"");
  const SBD_PARA_VALUE* const innermost = (*inner->list)[1];
  expect_range(innermost, "{ a, 2 }");
  expect_range((*innermost->list)[0], "a", "{ a");
  expect_range((*innermost->list)[1], "2");
}

TEST_P(POSITION, OfAttributesIsFromTheirKeyToTheirValue) {
  read("device d { x = 1 [ one , two\n  .x, three d.x[1] ,four]; }");
  const SBD_PARA_ATTR* attribute = m_document.get_para_attr("d", "x");
  for (const char* const part : {"one", "two\n  .x", "three d.x[1]", "four"}) {
    expect_range(attribute, part);
    attribute = attribute->next;
  }
}

TEST_P(POSITION, OfReferencesIsTheirName) {
  read("device d {\n r <\n d.S , .r,\n\t.s >; s <d>; }");
  const SBD_PARA_REF* reference = m_document.get_para_ref("d", "r");
  for (const char* const part : {"d.S", ".r", ".s"}) {
    expect_range(reference, part);
    reference = reference->next;
  }
  expect_range(m_document.get_para_ref("d", "s"), "d", "<d>");
}

TEST_P(POSITION, OfACommentBehindAStatementHasNoLineEnd) {
  read("device d {\n x = 1; # one \n r <d>;# two\n y = {1, 2}; #\n}");
  const auto expect_comment = [&](const char* name, const char* part) {
    SBD_SOURCE_RANGE range;
    ASSERT_TRUE(m_document.get_comment_range(node(name), range)) << name;
    expect_part(m_document, range, part, part);
  };
  expect_comment("d.x", "# one ");
  expect_comment("d.r", "# two");
  SBD_SOURCE_RANGE range;
  ASSERT_TRUE(m_document.get_comment_range(node("d.y"), range));
  EXPECT_EQ(range.length, 1U);
  EXPECT_EQ(range.line, 4U);
}

TEST_P(POSITION, OfACommentLineStartsAtItsMark) {
  read("# one\ndevice d {\n   # two\n x = 1;\n}\n# three\n");
  const std::vector<SBD_NODE*> top = members_of(m_document, nullptr);
  const std::vector<std::pair<SBD_NODE*, const char*>> comments = {
      {top[0], "# one"}, {top[1]->block->members, "# two"}, {top[2], "# three"}};
  for (const auto& [comment, part] : comments) {
    SBD_SOURCE_RANGE range;
    ASSERT_TRUE(m_document.get_range(comment, range));
    expect_part(m_document, range, part);
  }
}

TEST_P(POSITION, BehindManyLinesIsExact) {
  std::string text = "device d {\n";
  for (int i = 0; i < 2100; i++) {
    text += std::string(static_cast<std::size_t>(i % 7), ' ') + "p" + std::to_string(i) + " = " +
            std::to_string(i) + "0K" + (i % 5 == 0 ? "\n\n;" : ";") + (i % 3 == 0 ? " # c" : "") +
            (i % 11 == 0 ? "\n\n\n" : "\n");
  }
  read(text + "}");
  for (int i = 2099; i >= 0; i--) {
    const std::string name = "p" + std::to_string(i);
    const std::string part = name + " = " + std::to_string(i) + "0K";
    expect_range(node(("d." + name).c_str()), part + (i % 5 == 0 ? "\n\n;" : ";"));
    SBD_SOURCE_RANGE range;
    ASSERT_TRUE(m_document.get_range(m_document.get_para_value("d", name.c_str()), range));
    EXPECT_EQ(m_text.substr(range.offset, range.length), std::to_string(i) + "0K");
    if (HasFailure()) return;
  }
}

// Lines around the places where tables of line starts tend to have their borders.
TEST_P(POSITION, OfEveryLineIsExact) {
  std::string text;
  for (int line = 1; line <= 1200; line++)
    text += "#" + std::string(line % 3 == 0 ? 0 : 2, 'c') + "\n";
  read(text);
  unsigned long line = 1;
  for (const SBD_NODE* const comment : members_of(m_document, nullptr)) {
    SBD_SOURCE_RANGE range;
    ASSERT_TRUE(m_document.get_range(comment, range));
    ASSERT_EQ(range.line, line);
    ASSERT_EQ(range.column, 1U);
    line++;
  }
  EXPECT_EQ(line, 1201U);
}

TEST_P(POSITION, InStringsOfManyLinesIsExact) {
  read("device d { x = \"" + std::string(300, '\n') + "\"; y = 1;\nz = \"" +
       std::string(1500, '\n') + "\"; r <.x>; }");
  SBD_SOURCE_RANGE range;
  ASSERT_TRUE(m_document.get_range(node("d.y"), range));
  EXPECT_EQ(range.line, 301U);
  EXPECT_EQ(range.column, 4U);
  ASSERT_TRUE(m_document.get_range(m_document.get_para_ref("d", "r"), range));
  EXPECT_EQ(range.line, 1802U);
  EXPECT_EQ(range.column, 7U);
}

TEST_P(POSITION, InALongLineIsExact) {
  read("device d { x = \"" + std::string(100000, 's') + "\"; y = 1; }");
  expect_range(node("d.y"), "y = 1;");
}

// Values that are so long that their records can't tell.
TEST_P(POSITION, OfALongValueIsExact) {
  for (const std::size_t size : {65533U, 65534U, 65535U, 65536U, 65537U, 200000U}) {
    SCOPED_TRACE(size);
    const auto filled = [size](const std::string& begin, char filling, const std::string& end) {
      return begin + std::string(size - begin.size() - end.size(), filling) + end;
    };
    const std::vector<std::string> values = {
        filled("", '0', ""),
        filled("1.", '0', "MHz"),
        filled("w_", 'w', ""),
        filled("\"", ' ', "{}; # [1]\""),
        filled("{1, {2, {\"}\", \"{\"}}, ", ' ', "{{3, 4}, 5}}"),
        filled("{1,", ' ', "{true,\n{false, \"{\"}}\n}"),
    };
    std::string text = "device d {\n";
    for (std::size_t i = 0; i != values.size(); i++) {
      text += "  x" + std::to_string(i) + " = " + values[i] + " [key .value];\n";
    }
    read(text + "  z = 2;\n}");
    for (std::size_t i = 0; i != values.size(); i++) {
      const std::string name = "x" + std::to_string(i);
      expect_range(m_document.get_para_value("d", name.c_str()), values[i], name.c_str());
      expect_range(m_document.get_para_attr("d", name.c_str()), "key .value", name.c_str());
    }
    expect_range(node("d.z"), "z = 2;");
    if (HasFailure()) return;
  }
}

TEST_P(POSITION, OfALongListThatWasTakenOutIsItsBeginning) {
  read("device d { x = {1," + std::string(70000, ' ') + "2}; }");
  SBD_PARA_VALUE* const value = m_document.get_para_value("d", "x");
  value->list = nullptr;
  SBD_SOURCE_RANGE range;
  ASSERT_TRUE(m_document.get_range(value, range));
  EXPECT_EQ(range.column, 16U);
  EXPECT_EQ(range.length, 0U);
}

INSTANTIATE_TEST_SUITE_P(With, POSITION, testing::Values(std::string("\n"), std::string("\r\n")),
                         [](const testing::TestParamInfo<std::string>& line_end) {
                           return line_end.param == "\n" ? "Newlines" : "CarriageReturns";
                         });

// ---- What has no position ----------------------------------------------------------------------

class NO_POSITION : public testing::Test {
 protected:
  template <class RECORD>
  void expect_none(const RECORD* record) {
    EXPECT_FALSE(m_document.get_range(record, m_range));
  }
  void TearDown() override {
    EXPECT_EQ(m_range.offset, 1U);
    EXPECT_EQ(m_range.length, 2U);
    EXPECT_EQ(m_range.line, 3U);
    EXPECT_EQ(m_range.column, 4U);
  }

  SBD_FILE_PARSER m_document;
  SBD_SOURCE_RANGE m_range{1, 2, 3, 4};
};

TEST_F(NO_POSITION, Null) {
  ASSERT_TRUE(read_text(m_document, "device d { x = 1; }"));
  expect_none<SBD_NODE>(nullptr);
  expect_none<SBD_PARA_VALUE>(nullptr);
  expect_none<SBD_PARA_ATTR>(nullptr);
  expect_none<SBD_PARA_REF>(nullptr);
  EXPECT_FALSE(m_document.get_name_range(nullptr, m_range));
  EXPECT_FALSE(m_document.get_type_range(nullptr, m_range));
  EXPECT_FALSE(m_document.get_comment_range(nullptr, m_range));
}

TEST_F(NO_POSITION, WhatACallerMade) {
  ASSERT_TRUE(read_text(m_document, "device d { x = 1; # c\n }"));
  SBD_NODE* const device = root_of(m_document);
  SBD_NODE* const block = enter(m_document, make_block("bus", "b"), device);
  SBD_NODE* const assignment =
      enter(m_document,
            make_assignment("a", make_list({make_number(1), make_string("s")}),
                            make_attributes({{"k", ".v"}}), "# c\n"),
            block);
  SBD_NODE* const reference = enter(m_document, make_reference("r", {"d"}), block);
  SBD_NODE* const comment = make_comment("# c\n");
  m_document.add_node(comment, nullptr);
  for (const SBD_NODE* const node : {block, assignment, reference, comment}) {
    expect_none(node);
    EXPECT_FALSE(m_document.get_name_range(node, m_range));
    EXPECT_FALSE(m_document.get_type_range(node, m_range));
    EXPECT_FALSE(m_document.get_comment_range(node, m_range));
  }
  expect_none(assignment->statement->value);
  expect_none((*assignment->statement->value->list)[0]);
  expect_none(assignment->statement->attributes);
  expect_none(reference->statement->reference);
}

TEST_F(NO_POSITION, PartsThatANodeHasNot) {
  ASSERT_TRUE(read_text(m_document, "# c\ndevice d { x = 1; r <d>; }"));
  SBD_NODE* const comment = root_of(m_document);
  SBD_NODE* const device = comment->next;
  for (const SBD_NODE* const node : {device->block->members, device->block->members->next}) {
    EXPECT_FALSE(m_document.get_type_range(node, m_range));
    EXPECT_FALSE(m_document.get_comment_range(node, m_range));
  }
  EXPECT_FALSE(m_document.get_name_range(comment, m_range));
  EXPECT_FALSE(m_document.get_type_range(comment, m_range));
  EXPECT_FALSE(m_document.get_comment_range(device, m_range));
}

TEST_F(NO_POSITION, FaultOfAReadWithoutFault) {
  ASSERT_TRUE(read_text(m_document, "device d { x = 1; }"));
  EXPECT_FALSE(m_document.get_fault_range(m_range));
}

TEST(POSITION_AFTER_EDITS, OfWhatWasReadStays) {
  auto document = document_of("device d {\n  x = 1;\n  y = 2;\n}\n");
  SBD_NODE* const device = root_of(*document);
  SBD_NODE* const y = device->block->members->next;
  document->delete_node(device->block->members, device);
  enter(*document, make_assignment("z", make_number(3)), device);
  SBD_SOURCE_RANGE range;
  ASSERT_TRUE(document->get_range(y, range));
  expect_part(*document, range, "y = 2;");
  ASSERT_TRUE(document->get_range(device, range));
  expect_part(*document, range, "device d {\n  x = 1;\n  y = 2;\n}");
}

// ---- Faults ------------------------------------------------------------------------------------

// The places that a read's messages are about, as a handler asks for them.
struct FAULT {
  int number;
  bool has_range;
  SBD_SOURCE_RANGE range;
};

std::vector<FAULT> faults_of(const std::string& text) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  std::vector<FAULT> faults;
  recorder.on_message = [&](const RECORDED_MESSAGE& message) {
    FAULT fault{message.number, false, {}};
    fault.has_range = document.get_fault_range(fault.range);
    faults.push_back(fault);
  };
  EXPECT_FALSE(read_text(document, text));
  return faults;
}

// Expects faults of one number at the marked places: each "^" stands before a part up to "$".
void expect_faults(int number, const std::string& marked) {
  std::string text;
  std::vector<std::pair<std::size_t, std::size_t>> parts;
  for (const char c : marked) {
    if (c == '^') {
      parts.emplace_back(text.size(), 0);
    } else if (c == '$') {
      parts.back().second = text.size() - parts.back().first;
    } else {
      text += c;
    }
  }
  SCOPED_TRACE(marked);
  const std::vector<FAULT> faults = faults_of(text);
  ASSERT_EQ(faults.size(), parts.size());
  for (std::size_t i = 0; i < faults.size(); i++) {
    EXPECT_EQ(faults[i].number, number);
    ASSERT_TRUE(faults[i].has_range);
    expect_equal(faults[i].range, range_in(text, parts[i].first, parts[i].second));
  }
}

TEST(FAULT_POSITION, OfASyntaxErrorIsItsToken) {
  expect_faults(2, "device d {\n  x ^55$;\n  y = 1;\n  z ^\"a\nb\"$;\n}");
  expect_faults(2, "device d { x = 1; } ^# c\n$");
  expect_faults(2, "device d {\r\n  x = ^=$ 1;\r\n}");
}

TEST(FAULT_POSITION, OfAnUnexpectedCharacterIsTheCharacter) {
  expect_faults(2, "device d {\n  x = ^@$1^\x80$;\n ^?$ }");
}

TEST(FAULT_POSITION, AtTheEndIsEmpty) {
  expect_faults(2, "device d {\n  x = 1;\n^$");
  expect_faults(2, "device^$");
}

TEST(FAULT_POSITION, OfADeclarationIsTheName) {
  expect_faults(3,
                "device d {\n  x = 1;\n  ^X$ = 2; bus\n ^x$ { y = 1; }\n}\n"
                "device ^d$ { x = 1; }");
}

TEST(FAULT_POSITION, OfAReferenceIsTheElement) {
  expect_faults(4, "device d {\n  r < d, ^no$ ,\n ^.no$ >; s <^d.no$>;\n}");
}

TEST(FAULT_POSITION, OfABlockIsItsType) {
  const std::string text = "device d {\n x = 1;\n  device\n Inner { x = 1; }\n}";
  const std::vector<FAULT> faults = faults_of(text);
  ASSERT_EQ(faults.size(), 1U);
  EXPECT_EQ(faults[0].number, 5);
  ASSERT_TRUE(faults[0].has_range);
  EXPECT_EQ(text.substr(faults[0].range.offset, faults[0].range.length), "device");
}

TEST(FAULT_POSITION, BehindManyLinesIsExact) {
  std::string text = "device d {\n";
  for (int i = 0; i < 1500; i++) text += i % 100 == 0 ? " x ^5$;\n" : " y = 1;\n";
  expect_faults(2, text + "}");
}

TEST(FAULT_POSITION, OfAFileThatCannotBeOpenedIsNone) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  bool has_range = true;
  recorder.on_message = [&](const RECORDED_MESSAGE& message) {
    SBD_SOURCE_RANGE range;
    if (message.number == 1) has_range = document.get_fault_range(range);
  };
  EXPECT_FALSE(read_text(document, "device"));
  EXPECT_FALSE(document.read("/nowhere/at/all.sbd"));
  EXPECT_FALSE(has_range);
}

}  // namespace
