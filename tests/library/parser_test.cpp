#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "sbd/sbd_parser.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/tree_builder.h"
#include "tests/support/tree_outline.h"

namespace {

using TEXTS = std::vector<std::string>;

// Runs the parser alone, without the checks that reading adds; true without syntax errors.
bool parse(SBD_FILE_PARSER& document, std::string_view text) {
  sbd_yyFlexLexer scanner(text.data(), text.size());
  scanner.set_file_name(TEST_FILE);
  EXPECT_EQ(sbd_yyparse(&scanner, &document.get_parser_para()), 0);
  return document.get_parser_para().error_count == 0;
}

std::string in_device(const std::string& members) {
  return "device d {\n" + members + "\n}\n";
}

// ---- Accepted texts ----------------------------------------------------------------------------

struct ACCEPTED {
  const char* name;
  std::string text;
  std::string tree;
};

void PrintTo(const ACCEPTED& accepted, std::ostream* stream) {
  *stream << accepted.name;
}

// A text with members of a device, and the outlines of these, all on the second line.
ACCEPTED members(const char* name, const std::string& text, const std::string& tree) {
  return {name, in_device(text), "device d @1\n  " + tree + "\n"};
}

// A text with the assignment of a value.
ACCEPTED value(const char* name, const std::string& text, const std::string& tree) {
  return members(name, "x = " + text + ";", "x = " + tree + " @2");
}

const ACCEPTED ACCEPTED_TEXTS[] = {
    // Top level
    {"Nothing", "", ""},
    {"Blanks", " \t\r\n\n ", ""},
    {"OneComment", "# c\n", "'# c\\n'\n"},
    {"OneBlock", "device d { x = 1; }", "device d @1\n  x = 1 @1\n"},
    {"SeveralObjects", "# a\ndevice d { x = 1; }\n# b\n# c\ndevice e { x = 2; }\n",
     "'# a\\n'\ndevice d @2\n  x = 1 @2\n'# b\\n'\n'# c\\n'\ndevice e @5\n  x = 2 @5\n"},
    {"BlocksOnOneLine", "device d{x=1;}device e{x=2;}",
     "device d @1\n  x = 1 @1\ndevice e @1\n  x = 2 @1\n"},
    {"IndentedComment", "  \t# c\n", "'# c\\n'\n"},
    // Blocks
    {"BlockWithAnIndexedName", "device d[0][1] { x = 1; }", "device d[0][1] @1\n  x = 1 @1\n"},
    {"BlockOverManyLines", "DEVICE\n\nDev\n{\nx\n=\n1\n;\n}", "DEVICE Dev @3\n  x = 1 @5\n"},
    {"BlockOfAComment", "device d { # c\n}", "device d @1\n  '# c\\n'\n"},
    {"BlockWithATypeAsItsName", "device device { x = 1; }", "device device @1\n  x = 1 @1\n"},
    members("NestedBlocks", "bus b { slave s[3] { x = 1; } }",
            "bus b @2\n    slave s[3] @2\n      x = 1 @2"),
    members("BlocksBetweenStatements", "x = 1; bus b { y = 2; } z = 3;",
            "x = 1 @2\n  bus b @2\n    y = 2 @2\n  z = 3 @2"),
    members("CommentsBetweenStatements", "# a\nx = 1;\n# b\n", "'# a\\n'\n  x = 1 @3\n  '# b\\n'"),
    members("CommentBehindABlockOnItsOwnLine", "bus b { x = 1; }\n# c\n",
            "bus b @2\n    x = 1 @2\n  '# c\\n'"),
    // Statements
    members("Assignment", "x = 1;", "x = 1 @2"),
    members("AssignmentWithAComment", "x = 1; # c\n", "x = 1 @2 '# c\\n'"),
    members("AssignmentWithAttributes", "x = 1 [k];", "x = 1 [k] @2"),
    members("AssignmentWithAttributesAndAComment", "x = 1 [k]; # c\n", "x = 1 [k] @2 '# c\\n'"),
    members("Reference", "x <d>;", "x < d > @2"),
    members("ReferenceWithAComment", "x <d>; # c\n", "x < d > @2 '# c\\n'"),
    members("StatementWithAnIndexedName", "x[0][1] = 1;", "x[0][1] = 1 @2"),
    members("ReferenceWithAnIndexedName", "x[0] <d>;", "x[0] < d > @2"),
    members("CommentThatFollowsATailComment", "x = 1; # a\n# b\n", "x = 1 @2 '# a\\n'\n  '# b\\n'"),
    members("CommentOfTheLastStatementOnALine", "x = 1; y = 2; # c\n",
            "x = 1 @2\n  y = 2 @2 '# c\\n'"),
    members("CommentOnTheNextLine", "x = 1;\n# c\n", "x = 1 @2\n  '# c\\n'"),
    members("CommentBehindAList", "x = {1, 2}; # c\n", "x = {1, 2} @2 '# c\\n'"),
    // Values
    value("Decimal", "10", "10"),
    value("DecimalWithAPlus", "+5", "5"),
    value("Octal", "010", "0o8"),
    value("Hexadecimal", "0x1F", "0x31"),
    value("Binary", "0b101", "0b5"),
    value("Float", "1.5", "1.5f"),
    value("FloatWithoutFraction", "5.", "5f"),
    value("FloatWithAMinus", "-.5", "-0.5f"),
    value("NegativeInteger", "-5", "-5f"),
    value("Kilobytes", "64K", "64 K"),
    value("KilobytesInFull", "0x40KB", "0x64 K"),
    value("Megabytes", "07M", "0o7 M"),
    value("MegabytesInFull", "1.5MB", "1.5f M"),
    value("Gigabytes", "0b1G", "0b1 G"),
    value("GigabytesInFull", "4GB", "4 G"),
    value("Hertz", "50hz", "50 Hz"),
    value("Megahertz", "33MHZ", "33 MHz"),
    value("UnitOfANegativeNumber", "-5MHz", "-5f MHz"),
    value("True", "True", "true"),
    value("False", "FALSE", "false"),
    value("String", "\"a b\"", "'\"a b\"'"),
    value("StringOfLines", "\"a\nb\"", "'\"a\\nb\"'"),
    value("Identifier", "tRue", "'tRue'"),
    value("IdentifierThatLooksLikeAUnit", "MHz", "'MHz'"),
    // Lists
    value("ListOfTwo", "{1, 2}", "{1, 2}"),
    value("ListOfMany", "{1,2,3,4,5}", "{1, 2, 3, 4, 5}"),
    value("ListOfAllKinds", "{010, 0x1, 0b1, -1, true, \"s\", i}",
          "{0o8, 0x1, 0b1, -1f, true, '\"s\"', 'i'}"),
    value("ListWithUnits", "{1K,2MHz , 3}", "{1 K, 2 MHz, 3}"),
    value("ListWithoutBlanksBehindNumbers", "{1,a,2,\"s\",3}", "{1, 'a', 2, '\"s\"', 3}"),
    value("ListThatStartsWithAList", "{{1, 2}, 3}", "{{1, 2}, 3}"),
    value("ListThatEndsWithAList", "{1, {2, 3}}", "{1, {2, 3}}"),
    value("ListOfLists", "{{1, 2}, {3, {4, 5}}, {6, 7}}", "{{1, 2}, {3, {4, 5}}, {6, 7}}"),
    // References
    members("ReferenceToIdentifiers", "x < d , d >;", "x < d, d > @2"),
    members("ReferenceToQualifiedNames", "y = 1; x <d.y, .y,D.Y>;",
            "y = 1 @2\n  x < d.y, .y, D.Y > @2"),
    members("ReferenceToAnIndexedNameInAQualifiedOne", "y[0] = 1; x <d.y[0]>;",
            "y[0] = 1 @2\n  x < d.y[0] > @2"),
    // Attributes
    members("AttributeWithAValue", "x = 1 [k a.b];", "x = 1 [k a.b] @2"),
    members("SeveralAttributes", "x = true[a,b .b , c , d c.d[1]];",
            "x = true [a, b .b, c, d c.d[1]] @2"),
    members("AttributeBehindAUnit", "x = 5K[k];", "x = 5 K [k] @2"),
    members("AttributeWithALonePoint", "x = 1 [k .];", "x = 1 [k .] @2"),
};

class ACCEPTED_TEXT : public testing::TestWithParam<ACCEPTED> {};

TEST_P(ACCEPTED_TEXT, GivesItsTreeWhenParsed) {
  SCOPED_TRACE(GetParam().text);
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  EXPECT_TRUE(parse(document, GetParam().text));
  EXPECT_EQ(outline(document), GetParam().tree);
  EXPECT_TRUE(recorder.is_silent());
}

TEST_P(ACCEPTED_TEXT, GivesItsTreeWhenRead) {
  SCOPED_TRACE(GetParam().text);
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  EXPECT_TRUE(read_text(document, GetParam().text));
  EXPECT_EQ(outline(document), GetParam().tree);
  EXPECT_EQ(find_inconsistency(document), "");
  EXPECT_TRUE(recorder.is_silent());
}

INSTANTIATE_TEST_SUITE_P(Of, ACCEPTED_TEXT, testing::ValuesIn(ACCEPTED_TEXTS),
                         [](const testing::TestParamInfo<ACCEPTED>& accepted) {
                           return std::string(accepted.param.name);
                         });

// ---- Refused texts -----------------------------------------------------------------------------

struct REFUSED {
  const char* name;
  std::string text;
  std::vector<std::pair<const char*, int>> faults;  // Offending texts and their lines.
};

void PrintTo(const REFUSED& refused, std::ostream* stream) {
  *stream << refused.name;
}

// A text with one faulty member of a device, where the fault is on the second line.
REFUSED faulty(const char* name, const std::string& text, const char* token) {
  return {name, in_device(text), {{token, 2}}};
}

const REFUSED REFUSED_TEXTS[] = {
    // Top level
    {"StatementAtTopLevel", "x = 1;", {{"=", 1}}},
    {"ReferenceAtTopLevel", "x <d>;", {{"<", 1}}},
    {"NumberAtTopLevel", "5", {{"5", 1}}},
    {"BraceAtTopLevel", "device d { x = 1; }\n}", {{"}", 2}}},
    {"IndexedTypeAtTopLevel", "device[0] d { x = 1; }", {{"device[0]", 1}}},
    {"SemicolonBehindABlock", "device d { x = 1; };", {{";", 1}}},
    // Blocks
    {"EmptyBlock", "device d\n{ }", {{"}", 2}}},
    {"BlockWithoutName", "device { x = 1; }", {{"{", 1}}},
    {"BlockWithTwoNames", "device d e { x = 1; }", {{"e", 1}}},
    {"BlockWithAQualifiedName", "device a.b { x = 1; }", {{"a.b", 1}}},
    {"BlockWithAStringAsItsName", "device \"d\" { x = 1; }", {{"\"d\"", 1}}},
    {"BlockWithABooleanAsItsType", "true d { x = 1; }", {{"true", 1}}},
    {"BlockWithABooleanAsItsName", "device false { x = 1; }", {{"false", 1}}},
    {"BlockWithoutEnd", "device d {\n x = 1;\n", {{"", 3}}},
    {"BlockWithoutBeginning", "device d\n", {{"", 2}}},
    {"TailCommentBehindABlock", "device d { x = 1; } # c\n", {{"# c\n", 2}}},
    // Comments; what ends in one has the line behind it
    {"CommentInAStatement", in_device("x = # c\n 1;"), {{"# c\n", 3}}},
    {"CommentInABlockHead", "device # c\n d { x = 1; }", {{"# c\n", 2}}},
    {"CommentInAList", in_device("x = {1, # c\n 2};"), {{"# c\n", 3}}},
    {"TailCommentBehindAnInnerBlock", in_device("bus b { x = 1; } # c\n y = 1;"), {{"# c\n", 3}}},
    // Statements
    faulty("StatementWithoutName", "= 1;", "="),
    faulty("StatementWithABooleanAsItsName", "true = 1;", "true"),
    faulty("StatementWithAQualifiedName", "a.b = 1;", "a.b"),
    faulty("StatementWithoutOperator", "x 1;", "1"),
    faulty("StatementWithoutValue", "x = ;", ";"),
    faulty("StatementWithTwoValues", "x = 1 2;", "2"),
    faulty("StatementWithTwoOperators", "x = = 1;", "="),
    {"StatementWithoutSemicolon", in_device("x = 1"), {{"}", 3}}},
    faulty("TwoSemicolons", "x = 1;;", ";"),
    faulty("BlockWithAnIndexedType", "bus[0] b;", "b"),
    // Values
    faulty("UnitBehindABlank", "x = 64 K;", "K"),
    faulty("OctalWithAnEight", "x = 08;", "8"),
    faulty("NegativeOctal", "x = -010;", "10"),
    faulty("QualifiedNameAsAValue", "x = a.b;", "a.b"),
    faulty("IndexedNameAsAValue", "x = a[0];", "a[0]"),
    faulty("PointAndDigitsAsAValue", "x = .5;", ".5"),
    faulty("UnitOfAList", "x = {1, 2}K;", "K"),
    faulty("UnitOfAString", "x = \"s\"K;", "K"),
    // Lists
    faulty("EmptyList", "x = {};", "}"),
    faulty("ListOfOne", "x = {1};", "}"),
    faulty("ListOfOneList", "x = {{1, 2}};", "}"),
    faulty("ListThatEndsWithAComma", "x = {1, 2,};", "}"),
    faulty("ListThatStartsWithAComma", "x = {,1};", ","),
    faulty("ListWithoutComma", "x = {1 2};", "2"),
    faulty("ListWithoutEnd", "x = {1, 2;", ";"),
    faulty("ListOfReferences", "x = {a.b, c.d};", "a.b"),
    // References
    faulty("EmptyReference", "x <>;", ">"),
    faulty("ReferenceThatEndsWithAComma", "x <d,>;", ">"),
    faulty("ReferenceWithoutComma", "x <d d>;", "d"),
    faulty("ReferenceToABareIndexedName", "x <a[0]>;", "a[0]"),
    faulty("ReferenceToAString", "x <\"d\">;", "\"d\""),
    faulty("ReferenceToANumber", "x <5>;", "5"),
    faulty("ReferenceToABoolean", "x <true>;", "true"),
    faulty("ReferenceWithAttributes", "x <d> [k];", "["),
    faulty("ReferenceAsAValue", "x = <d>;", "<"),
    // Attributes
    faulty("EmptyAttributes", "x = 1 [];", "]"),
    faulty("AttributesThatEndWithAComma", "x = 1 [k,];", "]"),
    faulty("AttributeWithABareValue", "x = 1 [k v];", "v"),
    faulty("AttributeWithAnIndexedValue", "x = 1 [k v[0]];", "v[0]"),
    faulty("AttributeWithANumber", "x = 1 [k 5];", "5"),
    faulty("AttributeWithAQualifiedKey", "x = 1 [.k];", ".k"),
    faulty("AttributesTwice", "x = 1 [k] [l];", "["),
    faulty("AttributesWithoutEnd", "x = 1 [k;", ";"),
    // Several faults
    {"NumberThatTouchesItsAttributes", in_device("x = 5[k];"), {{"k", 2}, {"]", 2}}},
    {"CommentWithoutNewline", "device d { x = 1; }\n#", {{"#", 2}}},
    {"UnexpectedCharacter", in_device("x = 1 @;"), {{"@", 2}}},
    {"UnexpectedCharacters", "@\ndevice d { x = $1; }\n\x80", {{"@", 1}, {"$", 2}, {"\x80", 3}}},
    {"FaultsApart", in_device("x 5;\ny = 1;\nz 6;"), {{"5", 2}, {"6", 4}}},
    {"FaultsInSeveralBlocks",
     "device d { x 5; a = 1; }\ndevice e { bus b { y 6; a = 1; } z = 7 8; }",
     {{"5", 1}, {"6", 2}, {"8", 2}}},
};

class REFUSED_TEXT : public testing::TestWithParam<REFUSED> {
 protected:
  static TEXTS expected_texts() {
    TEXTS texts;
    for (const auto& [token, line] : GetParam().faults) {
      texts.push_back(syntax_error_text(TEST_FILE, token, line));
    }
    return texts;
  }
};

TEST_P(REFUSED_TEXT, IsReportedWithItsTokensAndLines) {
  SCOPED_TRACE(GetParam().text);
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  EXPECT_FALSE(read_text(document, GetParam().text));
  EXPECT_EQ(recorder.texts(), expected_texts());
  EXPECT_EQ(recorder.texts(2), recorder.texts());
  EXPECT_TRUE(recorder.internal_errors().empty());
  EXPECT_EQ(root_of(document), nullptr);
  EXPECT_EQ(count_symbols(document), 0U);
  EXPECT_EQ(document.get_parser_para().error_count, 0U);
}

TEST_P(REFUSED_TEXT, IsCountedByTheParser) {
  SCOPED_TRACE(GetParam().text);
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  sbd_yyFlexLexer scanner(GetParam().text.data(), GetParam().text.size());
  scanner.set_file_name(TEST_FILE);
  sbd_yyparse(&scanner, &document.get_parser_para());
  EXPECT_EQ(document.get_parser_para().error_count, GetParam().faults.size());
  EXPECT_EQ(recorder.texts(), expected_texts());
}

INSTANTIATE_TEST_SUITE_P(Of, REFUSED_TEXT, testing::ValuesIn(REFUSED_TEXTS),
                         [](const testing::TestParamInfo<REFUSED>& refused) {
                           return std::string(refused.param.name);
                         });

// ---- More about faults -------------------------------------------------------------------------

TEST(SYNTAX_ERROR, QuotesALongTokenCompletely) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  const std::string token = "\"" + std::string(100000, 's') + "\"";
  EXPECT_FALSE(read_text(document, token));
  EXPECT_EQ(recorder.texts(), TEXTS{syntax_error_text(TEST_FILE, token, 1)});
}

TEST(SYNTAX_ERROR, AtAStringHasTheLineOfItsEnd) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  EXPECT_FALSE(read_text(document, in_device("x \"a\nb\nc\";")));
  EXPECT_EQ(recorder.texts(), TEXTS{syntax_error_text(TEST_FILE, "\"a\nb\nc\"", 4)});
}

TEST(SYNTAX_ERROR, IsReportedAsOftenAsThereAreFaults) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  std::string text;
  TEXTS expected;
  for (int i = 0; i < 200; i++) {
    text += "bad 5;\ngood = 1;\n";
    expected.push_back(syntax_error_text(TEST_FILE, "5", 2 * i + 2));
  }
  EXPECT_FALSE(read_text(document, in_device(text)));
  EXPECT_EQ(recorder.texts(), expected);
}

TEST(SYNTAX_ERROR, PreventsTheChecks) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  EXPECT_FALSE(read_text(document, "stripe s { x = 1; x = 2; r <nowhere>; y 5; }"));
  EXPECT_EQ(recorder.texts(), TEXTS{syntax_error_text(TEST_FILE, "5", 1)});
}

TEST(SYNTAX_ERROR, LeavesNothingForTheNextRead) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  EXPECT_FALSE(read_text(document, in_device("x 5;")));
  EXPECT_TRUE(read_text(document, in_device("x = 5;")));
  EXPECT_EQ(outline(document), "device d @1\n  x = 5 @2\n");
}

TEST(ERROR_ROUTINE, CountsAndPostsTheCurrentMatch) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  const std::string text = "a\nb";
  sbd_yyFlexLexer scanner(text.data(), text.size());
  scanner.set_file_name("my.sbd");
  scanner.yylex();
  scanner.yylex();
  sbd_yyerror(&scanner, &document.get_parser_para());
  EXPECT_EQ(document.get_parser_para().error_count, 1U);
  EXPECT_EQ(recorder.texts(), TEXTS{syntax_error_text("my.sbd", "b", 2)});
}

// ---- Symbols -----------------------------------------------------------------------------------

TEST(PARSED_SYMBOLS, HaveNoParentBeforeTheChecks) {
  SBD_FILE_PARSER document;
  ASSERT_TRUE(parse(document, "device d { x = 1; }"));
  EXPECT_EQ(chain_of(document, "d").front()->parent, nullptr);
  EXPECT_EQ(chain_of(document, "x").front()->parent, nullptr);
}

TEST(PARSED_SYMBOLS, HaveTheLineOfTheirName) {
  SBD_FILE_PARSER document;
  ASSERT_TRUE(parse(document, "device\n\nd\n{\n# c\nx\n=\n1; # c\nr\n<\nd>;\n}"));
  EXPECT_EQ(chain_of(document, "d").front()->line, 3U);
  EXPECT_EQ(chain_of(document, "x").front()->line, 6U);
  EXPECT_EQ(chain_of(document, "r").front()->line, 9U);
}

TEST(PARSED_SYMBOLS, AreEnteredForMembersBeforeTheirBlock) {
  SBD_FILE_PARSER document;
  ASSERT_TRUE(parse(document, "device n { N = 1; bus nN { Nn = 2; } }"));
  EXPECT_EQ(chain_names(document, "n"), (TEXTS{"n", "N"}));
  EXPECT_EQ(chain_names(document, "nn"), (TEXTS{"nN", "Nn"}));
}

TEST(PARSED_REFERENCES, HaveNoTargetBeforeTheChecks) {
  SBD_FILE_PARSER document;
  ASSERT_TRUE(parse(document, "device d { r <d>; }"));
  EXPECT_EQ(root_of(document)->block->members->statement->reference->target, nullptr);
}

TEST(PARSED_BLOCKS, KeepTheSpellingOfTheirType) {
  const auto document = document_of("DeViCe d { ParaMeters p { x = 1; } }");
  EXPECT_EQ(document->get_block("d")->block_type, SBD_BLOCK::BT_DEVICE);
  EXPECT_STREQ(document->get_block("d")->type, "DeViCe");
  EXPECT_EQ(document->get_block("d.p")->block_type, SBD_BLOCK::BT_PARAMETERS);
  EXPECT_STREQ(document->get_block("d.p")->type, "ParaMeters");
}

}  // namespace
