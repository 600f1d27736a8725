#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
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

SBD_TOKEN_INFO token_of(std::string_view text, std::uint32_t line = 1) {
  SBD_TOKEN_INFO token;
  token.line = line;
  token.text = text;
  return token;
}

class BUILDER : public testing::Test {
 protected:
  SBD_FILE_PARSER::SBD_SYMBOL_TABLE* table() { return m_document.get_parser_para().symbol_table; }
  void expect_error(const char* condition) {
    ASSERT_EQ(m_recorder.conditions(), TEXTS{condition});
    EXPECT_EQ(m_recorder.internal_errors().front().module, "SBD");
    EXPECT_EQ(m_recorder.internal_errors().front().source, "sbd_parser");
    EXPECT_TRUE(m_recorder.messages().empty());
  }

  SBD_FILE_PARSER m_document;
  MESSAGE_RECORDER m_recorder;
};

// ---- Blocks and statements ---------------------------------------------------------------------

TEST_F(BUILDER, BlockHasTypeNameAndMembers) {
  const SBD_TOKEN_INFO type = token_of("MoDule", 3);
  const SBD_TOKEN_INFO name = token_of("Name[2]", 4);
  SBD_NODE* const member = make_comment("# c\n");
  SBD_NODE* const node = sbd_do_block(&type, &name, member, table());
  ASSERT_NE(node, nullptr);
  EXPECT_EQ(node->type, SBD_NODE::NT_BLOCK);
  EXPECT_EQ(node->next, nullptr);
  EXPECT_EQ(node->block->block_type, SBD_BLOCK::BT_MODULE);
  EXPECT_STREQ(node->block->type, "MoDule");
  EXPECT_EQ(node->block->members, member);
  m_document.add_node(node, nullptr);
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(BUILDER, BlockEntersItsName) {
  const SBD_TOKEN_INFO type = token_of("stripe", 3);
  const SBD_TOKEN_INFO name = token_of("Name[2]", 4);
  SBD_NODE* const node = sbd_do_block(&type, &name, nullptr, table());
  const SBD_SYMBOL* const symbol = node->block->name;
  EXPECT_EQ(chain_of(m_document, "name[2]").front(), symbol);
  EXPECT_STREQ(symbol->name, "Name[2]");
  EXPECT_EQ(symbol->line, 4U);
  EXPECT_EQ(symbol->type, SBD_SYMBOL::SYM_BLOCK);
  EXPECT_EQ(symbol->node, node);
  EXPECT_EQ(symbol->parent, nullptr);
  EXPECT_EQ(node->block->block_type, SBD_BLOCK::BT_UNKNOWN);
  EXPECT_EQ(node->block->members, nullptr);
  m_document.add_node(node, nullptr);
}

TEST_F(BUILDER, EmptyNumbersAreZero) {
  for (const int code :
       {SBD_TOK_UDECIMAL, SBD_TOK_OCTAL, SBD_TOK_HEXAL, SBD_TOK_BINARY, SBD_TOK_FLOAT}) {
    const SBD_TOKEN_INFO token = token_of("");
    SBD_PARA_VALUE* const value = sbd_do_para_value(code, &token);
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->number, 0) << code;
    m_document.free_para_val(value);
  }
}

TEST_F(BUILDER, BlockIsExtendedAsAnyOther) {
  const SBD_TOKEN_INFO type = token_of("device");
  const SBD_TOKEN_INFO name = token_of("d");
  SBD_NODE* const members = sbd_join_node(make_comment("# 1\n"), make_comment("# 2\n"));
  SBD_NODE* const node = sbd_do_block(&type, &name, members, table());
  m_document.add_node(node, nullptr);
  m_document.add_node(make_comment("# 3\n"), node);
  EXPECT_EQ(outline(m_document), "device d @1\n  '# 1\\n'\n  '# 2\\n'\n  '# 3\\n'\n");
}

TEST_F(BUILDER, AssignmentHasItsParts) {
  const SBD_TOKEN_INFO name = token_of("Name", 9);
  const SBD_TOKEN_INFO comment = token_of("# c\n");
  SBD_PARA_VALUE* const value = make_number(1);
  SBD_PARA_ATTR* const attributes = make_attributes({{"k", ".v"}});
  SBD_NODE* const node = sbd_do_assignment(&name, value, attributes, &comment, table());
  ASSERT_NE(node, nullptr);
  EXPECT_EQ(node->type, SBD_NODE::NT_STATEMENT);
  EXPECT_EQ(node->next, nullptr);
  EXPECT_EQ(node->statement->type, SBD_STATEMENT::ST_ASSIGNMENT);
  EXPECT_EQ(node->statement->value, value);
  EXPECT_EQ(node->statement->attributes, attributes);
  EXPECT_STREQ(node->statement->comment, "# c\n");
  EXPECT_EQ(node->statement->name->type, SBD_SYMBOL::SYM_PARAMETER);
  EXPECT_EQ(node->statement->name->node, node);
  EXPECT_EQ(node->statement->name->line, 9U);
  EXPECT_EQ(chain_of(m_document, "name").front(), node->statement->name);
  m_document.free_node(node);
}

TEST_F(BUILDER, AssignmentNeedsNoAttributesAndNoComment) {
  const SBD_TOKEN_INFO name = token_of("a");
  SBD_NODE* const node = sbd_do_assignment(&name, make_bool(true), nullptr, nullptr, table());
  EXPECT_EQ(node->statement->attributes, nullptr);
  EXPECT_EQ(node->statement->comment, nullptr);
  m_document.free_node(node);
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(BUILDER, ReferenceHasItsParts) {
  const SBD_TOKEN_INFO name = token_of("Name", 9);
  const SBD_TOKEN_INFO target = token_of(".x");
  const SBD_TOKEN_INFO comment = token_of("# c\n");
  SBD_PARA_REF* const references = sbd_do_para_ref(&target);
  SBD_NODE* const node = sbd_do_reference(&name, references, &comment, table());
  ASSERT_NE(node, nullptr);
  EXPECT_EQ(node->type, SBD_NODE::NT_STATEMENT);
  EXPECT_EQ(node->statement->type, SBD_STATEMENT::ST_REFERENCE);
  EXPECT_EQ(node->statement->reference, references);
  EXPECT_EQ(node->statement->attributes, nullptr);
  EXPECT_STREQ(node->statement->comment, "# c\n");
  EXPECT_EQ(node->statement->name->type, SBD_SYMBOL::SYM_PARAMETER);
  EXPECT_EQ(chain_of(m_document, "name").front(), node->statement->name);
  m_document.free_node(node);
}

TEST_F(BUILDER, ReferenceNeedsNoComment) {
  const SBD_TOKEN_INFO name = token_of("a");
  SBD_NODE* const node = sbd_do_reference(&name, nullptr, nullptr, table());
  EXPECT_EQ(node->statement->comment, nullptr);
  EXPECT_EQ(node->statement->reference, nullptr);
  m_document.free_node(node);
}

TEST_F(BUILDER, CommentHoldsItsText) {
  const SBD_TOKEN_INFO comment = token_of("# c\r\n");
  SBD_NODE* const node = sbd_do_comment(&comment);
  ASSERT_NE(node, nullptr);
  EXPECT_EQ(node->type, SBD_NODE::NT_COMMENT);
  EXPECT_EQ(node->next, nullptr);
  EXPECT_STREQ(node->comment, "# c\r\n");
  m_document.free_node(node);
}

TEST_F(BUILDER, ReferenceElementHoldsItsName) {
  const SBD_TOKEN_INFO name = token_of(".A.b[1]");
  SBD_PARA_REF* const element = sbd_do_para_ref(&name);
  ASSERT_NE(element, nullptr);
  EXPECT_STREQ(element->name, ".A.b[1]");
  EXPECT_EQ(element->target, nullptr);
  EXPECT_EQ(element->next, nullptr);
  const SBD_TOKEN_INFO statement = token_of("r");
  m_document.free_node(sbd_do_reference(&statement, element, nullptr, table()));
}

TEST_F(BUILDER, AttributeHoldsKeyAndValue) {
  const SBD_TOKEN_INFO key = token_of("Key");
  const SBD_TOKEN_INFO text = token_of("a.B");
  SBD_PARA_ATTR* const bare = sbd_do_para_attr(&key, nullptr);
  SBD_PARA_ATTR* const full = sbd_do_para_attr(&key, &text);
  EXPECT_STREQ(bare->attr_key, "Key");
  EXPECT_EQ(bare->attr_value, nullptr);
  EXPECT_EQ(bare->next, nullptr);
  EXPECT_STREQ(full->attr_key, "Key");
  EXPECT_STREQ(full->attr_value, "a.B");
  const SBD_TOKEN_INFO name = token_of("a");
  m_document.free_node(
      sbd_do_assignment(&name, make_number(1), sbd_join_para_attr(bare, full), nullptr, table()));
}

TEST_F(BUILDER, TokenTextsAreViewsThatAreCopied) {
  std::string buffer = "moduleNameRest";
  const SBD_TOKEN_INFO type = token_of(std::string_view(buffer).substr(0, 6));
  const SBD_TOKEN_INFO name = token_of(std::string_view(buffer).substr(6, 4));
  SBD_NODE* const node = sbd_do_block(&type, &name, nullptr, table());
  buffer.assign(buffer.size(), 'x');
  EXPECT_STREQ(node->block->type, "module");
  EXPECT_STREQ(node->block->name->name, "Name");
  m_document.free_node(node);
}

// ---- Null arguments ----------------------------------------------------------------------------

// What comes of such a call may be null or a record without that part; it is freed as any other.

TEST_F(BUILDER, BlockWithoutNameIsAnInternalError) {
  const SBD_TOKEN_INFO type = token_of("device");
  SBD_NODE* const node = sbd_do_block(&type, nullptr, nullptr, table());
  expect_error("block_name != NULL");
  m_document.free_node(node);
}

TEST_F(BUILDER, BlockWithoutTableIsAnInternalError) {
  const SBD_TOKEN_INFO type = token_of("device");
  const SBD_TOKEN_INFO name = token_of("d");
  SBD_NODE* const node = sbd_do_block(&type, &name, nullptr, nullptr);
  expect_error("symbol_table != NULL");
  m_document.free_node(node);
}

TEST_F(BUILDER, AssignmentWithoutNameIsAnInternalError) {
  SBD_NODE* const node = sbd_do_assignment(nullptr, nullptr, nullptr, nullptr, table());
  expect_error("para_name != NULL");
  m_document.free_node(node);
}

TEST_F(BUILDER, AssignmentWithoutTableIsAnInternalError) {
  const SBD_TOKEN_INFO name = token_of("a");
  SBD_NODE* const node = sbd_do_assignment(&name, nullptr, nullptr, nullptr, nullptr);
  expect_error("symbol_table != NULL");
  m_document.free_node(node);
}

TEST_F(BUILDER, ReferenceWithoutNameIsAnInternalError) {
  SBD_NODE* const node = sbd_do_reference(nullptr, nullptr, nullptr, table());
  expect_error("para_name != NULL");
  m_document.free_node(node);
}

TEST_F(BUILDER, ReferenceWithoutTableIsAnInternalError) {
  const SBD_TOKEN_INFO name = token_of("a");
  SBD_NODE* const node = sbd_do_reference(&name, nullptr, nullptr, nullptr);
  expect_error("symbol_table != NULL");
  m_document.free_node(node);
}

TEST_F(BUILDER, SymbolWithoutTableIsAnInternalErrorAndNotMade) {
  const SBD_TOKEN_INFO name = token_of("a");
  EXPECT_EQ(sbd_create_symbol(SBD_SYMBOL::SYM_BLOCK, nullptr, &name, nullptr), nullptr);
  expect_error("symbol_table != NULL");
}

TEST_F(BUILDER, AttributeWithoutKeyIsAnInternalError) {
  const SBD_TOKEN_INFO value = token_of("a.b");
  SBD_PARA_ATTR* const attribute = sbd_do_para_attr(nullptr, &value);
  expect_error("attr_key != NULL");
  const SBD_TOKEN_INFO name = token_of("a");
  m_document.free_node(sbd_do_assignment(&name, make_number(1), attribute, nullptr, table()));
}

// ---- Values ------------------------------------------------------------------------------------

// The value's outline.
std::string built(int code, std::string_view text) {
  const SBD_TOKEN_INFO token = token_of(text);
  SBD_PARA_VALUE* const value = sbd_do_para_value(code, &token);
  if (value == nullptr) return "null";
  EXPECT_EQ(value->unit, SBD_PARA_VALUE::QU_NONE);
  const std::string result = outline(*value);
  SBD_FILE_PARSER().free_para_val(value);
  return result;
}

// The number of a value, which must be of this type.
double number_of(int code, std::string_view text, SBD_PARA_VALUE::VALUE_TYPE type) {
  const SBD_TOKEN_INFO token = token_of(text);
  SBD_PARA_VALUE* const value = sbd_do_para_value(code, &token);
  EXPECT_EQ(value->type, type);
  const double number = value->number;
  delete value;
  return number;
}

TEST(VALUE_BUILDER, KeepsTheNotation) {
  EXPECT_EQ(built(SBD_TOK_UDECIMAL, "10"), "10");
  EXPECT_EQ(built(SBD_TOK_OCTAL, "010"), "0o8");
  EXPECT_EQ(built(SBD_TOK_HEXAL, "0x10"), "0x16");
  EXPECT_EQ(built(SBD_TOK_BINARY, "0b10"), "0b2");
  EXPECT_EQ(built(SBD_TOK_FLOAT, "1.5"), "1.5f");
}

TEST(VALUE_BUILDER, ReadsBooleans) {
  EXPECT_EQ(built(SBD_TOK_TRUE, "TRUE"), "true");
  EXPECT_EQ(built(SBD_TOK_FALSE, "False"), "false");
}

TEST(VALUE_BUILDER, KeepsStringsAndIdentifiersAsWritten) {
  EXPECT_EQ(built(SBD_TOK_STRING, "\"a b\""), "'\"a b\"'");
  EXPECT_EQ(built(SBD_TOK_STRING, "\"\""), "'\"\"'");
  EXPECT_EQ(built(SBD_TOK_IDENTIFIER, "Name"), "'Name'");
}

TEST(VALUE_BUILDER, OtherCodesAreInternalErrors) {
  for (const int code :
       {0, 1, int{'{'}, 257, int{SBD_TOK_KB}, int{SBD_TOK_MHZ}, int{SBD_TOK_COMMENT_LINE},
        int{SBD_TOK_INDEXED_NAME}, int{SBD_TOK_QUALIFIED_NAME}, 276, -1}) {
    MESSAGE_RECORDER recorder;
    EXPECT_EQ(built(code, "5"), "null") << code;
    ASSERT_EQ(recorder.conditions(), TEXTS{"Invalid token id\n"}) << code;
    EXPECT_EQ(recorder.internal_errors().front().source, "sbd_parser");
  }
}

TEST(VALUE_BUILDER, ReadsNoFurtherThanItsToken) {
  const std::string buffer = "12345.75";
  EXPECT_EQ(built(SBD_TOK_UDECIMAL, std::string_view(buffer).substr(1, 2)), "23");
  EXPECT_EQ(built(SBD_TOK_OCTAL, std::string_view(buffer).substr(1, 2)), "0o19");
  EXPECT_EQ(built(SBD_TOK_HEXAL, std::string_view("0x12").substr(0, 3)), "0x1");
  EXPECT_EQ(built(SBD_TOK_BINARY, std::string_view("0b11").substr(0, 3)), "0b1");
  EXPECT_EQ(built(SBD_TOK_FLOAT, std::string_view(buffer).substr(4, 3)), "5.7000000000000002f");
}

TEST(VALUE_BUILDER, IntegersKeepTheirLow32Bits) {
  EXPECT_EQ(built(SBD_TOK_UDECIMAL, "4294967295"), "4294967295");
  EXPECT_EQ(built(SBD_TOK_UDECIMAL, "4294967296"), "0");
  EXPECT_EQ(built(SBD_TOK_UDECIMAL, "+4294967299"), "3");
  EXPECT_EQ(built(SBD_TOK_OCTAL, "040000000001"), "0o1");
  EXPECT_EQ(built(SBD_TOK_HEXAL, "0x123456789"), "0x591751049");
  EXPECT_EQ(built(SBD_TOK_BINARY, "0b111111111111111111111111111111111"), "0b4294967295");
}

TEST(VALUE_BUILDER, IntegersSaturateAtTheirLimits) {
  EXPECT_EQ(built(SBD_TOK_UDECIMAL, "9223372036854775806"), "4294967294");
  EXPECT_EQ(built(SBD_TOK_UDECIMAL, "9223372036854775808"), "4294967295");
  EXPECT_EQ(built(SBD_TOK_UDECIMAL, "18446744073709551618"), "4294967295");
  EXPECT_EQ(built(SBD_TOK_OCTAL, "01777777777777777777776"), "0o4294967294");
  EXPECT_EQ(built(SBD_TOK_OCTAL, "02000000000000000000000"), "0o4294967295");
  EXPECT_EQ(built(SBD_TOK_HEXAL, "0xFFFFFFFFFFFFFFFE"), "0x4294967294");
  EXPECT_EQ(built(SBD_TOK_HEXAL, "0x10000000000000000"), "0x4294967295");
}

TEST(VALUE_BUILDER, LeadingZerosDoNotSaturate) {
  EXPECT_EQ(built(SBD_TOK_OCTAL, std::string(60, '0') + "17"), "0o15");
  EXPECT_EQ(built(SBD_TOK_HEXAL, "0x" + std::string(60, '0') + "1f"), "0x31");
  EXPECT_EQ(built(SBD_TOK_BINARY, "0b" + std::string(200, '0') + "101"), "0b5");
}

TEST(VALUE_BUILDER, BinaryKeepsTheLowBitsOfAllDigits) {
  EXPECT_EQ(built(SBD_TOK_BINARY, "0b" + std::string(100, '1') + std::string(30, '0') + "10"),
            "0b2");
}

TEST(VALUE_BUILDER, FloatsKeepTheirSign) {
  EXPECT_EQ(built(SBD_TOK_FLOAT, "-5"), "-5f");
  EXPECT_EQ(built(SBD_TOK_FLOAT, "-.5"), "-0.5f");
  EXPECT_EQ(built(SBD_TOK_FLOAT, "+5."), "5f");
  EXPECT_EQ(built(SBD_TOK_FLOAT, "-0"), "-0f");
  EXPECT_EQ(built(SBD_TOK_FLOAT, "-0.0"), "-0f");
}

TEST(VALUE_BUILDER, HugeFloatsAreInfinite) {
  EXPECT_EQ(number_of(SBD_TOK_FLOAT, std::string(400, '9') + ".", SBD_PARA_VALUE::VT_FLOAT),
            std::numeric_limits<double>::infinity());
  EXPECT_EQ(number_of(SBD_TOK_FLOAT, "-" + std::string(400, '9'), SBD_PARA_VALUE::VT_FLOAT),
            -std::numeric_limits<double>::infinity());
}

TEST(VALUE_BUILDER, TinyFloatsAreSubnormalOrZero) {
  const std::string subnormal = "." + std::string(310, '0') + "7";
  EXPECT_EQ(number_of(SBD_TOK_FLOAT, "0" + subnormal, SBD_PARA_VALUE::VT_FLOAT),
            std::strtod(subnormal.c_str(), nullptr));
  EXPECT_EQ(number_of(SBD_TOK_FLOAT, "0." + std::string(400, '0') + "1", SBD_PARA_VALUE::VT_FLOAT),
            0.0);
}

// ---- Conversion compared with the standard library ---------------------------------------------

constexpr int CONVERSIONS = 20000;

std::string random_digits(std::mt19937& random, std::size_t longest, const char* digits) {
  std::string text(1 + random() % longest, '0');
  for (char& c : text) c = digits[random() % std::strlen(digits)];
  return text;
}

TEST(NUMBER_CONVERSION, OfDecimalsIsThatOfTheStandardLibrary) {
  std::mt19937 random(1);
  for (int i = 0; i < CONVERSIONS; i++) {
    std::string text = "1" + random_digits(random, 24, "0123456789");
    text[0] = static_cast<char>('1' + random() % 9);
    if (random() % 4 == 0) text.insert(0, "+");
    // As many bits as the library takes of them, on any machine.
    const long long expected = std::strtoll(text.c_str(), nullptr, 10);
    ASSERT_EQ(number_of(SBD_TOK_UDECIMAL, text, SBD_PARA_VALUE::VT_UDECIMAL),
              static_cast<std::uint32_t>(expected))
        << text;
  }
}

TEST(NUMBER_CONVERSION, OfOctalsIsThatOfTheStandardLibrary) {
  std::mt19937 random(2);
  for (int i = 0; i < CONVERSIONS; i++) {
    const std::string text = "0" + random_digits(random, 30, "01234567");
    const auto expected = static_cast<std::uint32_t>(std::strtoull(text.c_str(), nullptr, 8));
    ASSERT_EQ(number_of(SBD_TOK_OCTAL, text, SBD_PARA_VALUE::VT_OCTAL), expected) << text;
  }
}

TEST(NUMBER_CONVERSION, OfHexadecimalsIsThatOfTheStandardLibrary) {
  std::mt19937 random(3);
  for (int i = 0; i < CONVERSIONS; i++) {
    const std::string text =
        (random() % 2 == 0 ? "0x" : "0X") + random_digits(random, 24, "0123456789abcdefABCDEF");
    const auto expected = static_cast<std::uint32_t>(std::strtoull(text.c_str(), nullptr, 16));
    ASSERT_EQ(number_of(SBD_TOK_HEXAL, text, SBD_PARA_VALUE::VT_HEXAL), expected) << text;
  }
}

TEST(NUMBER_CONVERSION, OfBinariesIsBaseTwo) {
  std::mt19937 random(4);
  for (int i = 0; i < CONVERSIONS; i++) {
    const std::string digits = random_digits(random, 80, "01");
    std::uint32_t expected = 0;
    for (const char digit : digits) expected = expected * 2 + (digit == '1' ? 1 : 0);
    ASSERT_EQ(number_of(SBD_TOK_BINARY, (random() % 2 == 0 ? "0b" : "0B") + digits,
                        SBD_PARA_VALUE::VT_BINARY),
              expected)
        << digits;
  }
}

void expect_float(const std::string& text) {
  double scanned = 0;
  ASSERT_EQ(std::sscanf(text.c_str(), "%lf", &scanned), 1);
  const double number = number_of(SBD_TOK_FLOAT, text, SBD_PARA_VALUE::VT_FLOAT);
  ASSERT_EQ(std::memcmp(&number, &scanned, sizeof number), 0) << text;
}

TEST(NUMBER_CONVERSION, OfFloatsIsThatOfTheStandardLibrary) {
  std::mt19937 random(5);
  const char* const signs[] = {"", "+", "-"};
  for (int i = 0; i < CONVERSIONS; i++) {
    const std::size_t longest = i % 100 == 0 ? 900 : 24;
    std::string text = signs[random() % 3];
    const auto form = random() % 3;
    if (form != 0) text += random_digits(random, longest, "0123456789");
    text += '.';
    if (form != 1) text += random_digits(random, longest, "0123456789");
    expect_float(text);
  }
}

TEST(NUMBER_CONVERSION, OfNegativeIntegersIsThatOfTheStandardLibrary) {
  std::mt19937 random(6);
  for (int i = 0; i < CONVERSIONS; i++) {
    std::string text = "-1" + random_digits(random, 30, "0123456789");
    text[1] = static_cast<char>('1' + random() % 9);
    expect_float(text);
  }
}

// Numbers whose decimal form lies half-way between two doubles or right beside that.
TEST(NUMBER_CONVERSION, OfFloatsRoundsAsTheStandardLibrary) {
  std::mt19937_64 random(7);
  for (int i = 0; i < 2000; i++) {
    const std::uint64_t odd = ((std::uint64_t{1} << 53) | (random() >> 11)) * 2 + 1;
    const std::string middle = std::to_string(odd);
    expect_float(middle + ".");
    expect_float(middle + ".0000000000000000000000000000000000001");
    expect_float(std::to_string(odd - 1) + ".9999999999999999999999999999999999999");
  }
}

// ---- Joining -----------------------------------------------------------------------------------

TEST(JOIN, NodesAppendsTheSecondListToTheFirst) {
  SBD_FILE_PARSER document;
  SBD_NODE* const a = make_comment("# a\n");
  SBD_NODE* const b = make_comment("# b\n");
  SBD_NODE* const c = make_comment("# c\n");
  SBD_NODE* const d = make_comment("# d\n");
  EXPECT_EQ(sbd_join_node(a, b), a);
  EXPECT_EQ(sbd_join_node(c, d), c);
  EXPECT_EQ(sbd_join_node(a, c), a);
  EXPECT_EQ(a->next, b);
  EXPECT_EQ(b->next, c);
  EXPECT_EQ(c->next, d);
  EXPECT_EQ(d->next, nullptr);
  for (SBD_NODE* const node : {a, b, c, d}) document.free_node(node);
}

TEST(JOIN, NodesGivesTheListThatIsNotNull) {
  SBD_NODE* const node = make_comment("# a\n");
  EXPECT_EQ(sbd_join_node(node, nullptr), node);
  EXPECT_EQ(sbd_join_node(nullptr, node), node);
  EXPECT_EQ(sbd_join_node(nullptr, nullptr), nullptr);
  EXPECT_EQ(node->next, nullptr);
  SBD_FILE_PARSER().free_node(node);
}

TEST(JOIN, ReferencesAppendsTheSecondListToTheFirst) {
  SBD_FILE_PARSER document;
  SBD_NODE* const statement = make_reference("r", {"a", "b"});
  SBD_NODE* const other = make_reference("s", {"c", "d"});
  SBD_PARA_REF* const first = statement->statement->reference;
  EXPECT_EQ(sbd_join_para_ref(first, other->statement->reference), first);
  other->statement->reference = nullptr;
  enter(document, statement, nullptr);
  enter(document, other, nullptr);
  EXPECT_EQ(outline(document), "r < a, b, c, d > @0\ns > @0\n");
}

TEST(JOIN, ReferencesGivesTheListThatIsNotNull) {
  SBD_NODE* const statement = make_reference("r", {"a"});
  SBD_PARA_REF* const list = statement->statement->reference;
  EXPECT_EQ(sbd_join_para_ref(list, nullptr), list);
  EXPECT_EQ(sbd_join_para_ref(nullptr, list), list);
  EXPECT_EQ(sbd_join_para_ref(nullptr, nullptr), nullptr);
  SBD_FILE_PARSER document;
  enter(document, statement, nullptr);
}

TEST(JOIN, AttributesAppendsTheSecondListToTheFirst) {
  SBD_FILE_PARSER document;
  SBD_PARA_ATTR* const first = make_attributes({{"a", nullptr}, {"b", ".b"}});
  EXPECT_EQ(sbd_join_para_attr(first, make_attributes({{"c", ".c"}, {"d", nullptr}})), first);
  enter(document, make_assignment("x", make_number(1), first), nullptr);
  EXPECT_EQ(outline(document), "x = 1 [a, b .b, c .c, d] @0\n");
}

TEST(JOIN, AttributesGivesTheListThatIsNotNull) {
  SBD_PARA_ATTR* const list = make_attributes({{"a", nullptr}});
  EXPECT_EQ(sbd_join_para_attr(list, nullptr), list);
  EXPECT_EQ(sbd_join_para_attr(nullptr, list), list);
  EXPECT_EQ(sbd_join_para_attr(nullptr, nullptr), nullptr);
  SBD_FILE_PARSER document;
  enter(document, make_assignment("x", make_number(1), list), nullptr);
}

// ---- A whole tree ------------------------------------------------------------------------------

TEST_F(BUILDER, TreeEqualsTheOneThatIsRead) {
  const std::string text = "device d {\n  a = 5;\n  r < d.a >; # c\n}\n";
  const SBD_TOKEN_INFO a = token_of("a", 2);
  const SBD_TOKEN_INFO five = token_of("5", 2);
  const SBD_TOKEN_INFO r = token_of("r", 3);
  const SBD_TOKEN_INFO target = token_of("d.a", 3);
  const SBD_TOKEN_INFO comment = token_of("# c\n", 4);
  const SBD_TOKEN_INFO device = token_of("device", 1);
  const SBD_TOKEN_INFO d = token_of("d", 1);
  SBD_NODE* members =
      sbd_do_assignment(&a, sbd_do_para_value(SBD_TOK_UDECIMAL, &five), nullptr, nullptr, table());
  members =
      sbd_join_node(members, sbd_do_reference(&r, sbd_do_para_ref(&target), &comment, table()));
  m_document.add_node(sbd_do_block(&device, &d, members, table()), nullptr);
  SBD_NODE* const root = root_of(m_document);
  ASSERT_TRUE(m_document.resolve_symbol(root, root));
  ASSERT_TRUE(m_document.check_semantic(root));
  EXPECT_EQ(outline(m_document), outline(*document_of(text)));
  EXPECT_EQ(find_inconsistency(m_document), "");
}

}  // namespace
