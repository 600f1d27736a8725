#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sbd/sbd_parser.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"

namespace {

using TEXTS = std::vector<std::string>;
using SCANNER = sbd_yyFlexLexer;

static_assert(SBD_TOK_IDENTIFIER == 258 && SBD_TOK_UDECIMAL == 259 && SBD_TOK_OCTAL == 260 &&
              SBD_TOK_HEXAL == 261 && SBD_TOK_BINARY == 262 && SBD_TOK_FLOAT == 263);
static_assert(SBD_TOK_KB == 264 && SBD_TOK_MB == 265 && SBD_TOK_GB == 266 && SBD_TOK_HZ == 267 &&
              SBD_TOK_MHZ == 268);
static_assert(SBD_TOK_TRUE == 269 && SBD_TOK_FALSE == 270 && SBD_TOK_STRING == 271 &&
              SBD_TOK_COMMENT_LINE == 272 && SBD_TOK_COMMENT_TAIL == 273 &&
              SBD_TOK_INDEXED_NAME == 274 && SBD_TOK_QUALIFIED_NAME == 275);

// Marks a character that was reported as unexpected in a list of tokens.
constexpr int UNEXPECTED = -1;

struct TOKEN {
  int code;
  std::string text;
  bool operator==(const TOKEN& other) const { return code == other.code && text == other.text; }
};

void PrintTo(const TOKEN& token, std::ostream* stream) {
  *stream << token.code << " '" << token.text << "'";
}

using TOKENS = std::vector<TOKEN>;

// All tokens of the text and, in their places, the unexpected characters.
TOKENS scan(std::string_view text, SCANNER::START_CONDITION condition = SCANNER::NORMAL) {
  MESSAGE_RECORDER recorder;
  SCANNER scanner(text.data(), text.size());
  scanner.set_file_name("f");
  scanner.begin(condition);

  TOKENS tokens;
  recorder.on_message = [&](const RECORDED_MESSAGE& message) {
    const std::string character(scanner.yytext());
    EXPECT_EQ(message.text, syntax_error_text("f", character, scanner.lineno()));
    tokens.push_back({UNEXPECTED, character});
  };
  while (const int code = scanner.yylex()) tokens.push_back({code, std::string(scanner.yytext())});
  EXPECT_TRUE(recorder.internal_errors().empty());
  return tokens;
}

// The text is one token, of this code.
void expect_one(int code, const char* text, SCANNER::START_CONDITION condition = SCANNER::NORMAL) {
  EXPECT_EQ(scan(text, condition), (TOKENS{{code, text}})) << text;
}

// The condition after the first token of the text.
SCANNER::START_CONDITION condition_after(std::string_view text, SCANNER::START_CONDITION before) {
  SCANNER scanner(text.data(), text.size());
  scanner.begin(before);
  EXPECT_NE(scanner.yylex(), 0) << text;
  return scanner.start_condition();
}

// ---- Tokens ------------------------------------------------------------------------------------

TEST(TOKEN, Identifier) {
  for (const char* const text : {"a", "Z", "_", "_1", "a_b9", "Abc", "K", "KB", "Hz", "MHz", "e5",
                                 "truex", "x0b1", "device"}) {
    expect_one(SBD_TOK_IDENTIFIER, text);
  }
}

TEST(TOKEN, BooleanWordsInThreeSpellings) {
  for (const char* const text : {"true", "TRUE", "True"}) expect_one(SBD_TOK_TRUE, text);
  for (const char* const text : {"false", "FALSE", "False"}) expect_one(SBD_TOK_FALSE, text);
  for (const char* const text : {"tRue", "tRUE", "TRue", "falsE", "fALSE", "FAlse"}) {
    expect_one(SBD_TOK_IDENTIFIER, text);
  }
}

TEST(TOKEN, BooleanWordIsPartOfALongerName) {
  expect_one(SBD_TOK_IDENTIFIER, "true1");
  expect_one(SBD_TOK_IDENTIFIER, "_false");
  expect_one(SBD_TOK_INDEXED_NAME, "true[0]");
  expect_one(SBD_TOK_QUALIFIED_NAME, "false.x");
}

TEST(TOKEN, UnsignedDecimal) {
  for (const char* const text : {"0", "7", "10", "+0", "+5", "+123", "4294967296"}) {
    expect_one(SBD_TOK_UDECIMAL, text);
  }
}

TEST(TOKEN, Octal) {
  for (const char* const text : {"00", "01", "010", "07654321"}) expect_one(SBD_TOK_OCTAL, text);
}

TEST(TOKEN, Hexadecimal) {
  for (const char* const text : {"0x0", "0X1F", "0xabcdefABCDEF0123456789"}) {
    expect_one(SBD_TOK_HEXAL, text);
  }
}

TEST(TOKEN, Binary) {
  for (const char* const text : {"0b0", "0B1", "0b0101"}) expect_one(SBD_TOK_BINARY, text);
}

TEST(TOKEN, Float) {
  for (const char* const text :
       {"1.5", "5.", "-.5", "+.5", "-1.5", "+1.5", "-5.", "00.50", "019.8", "-007."}) {
    expect_one(SBD_TOK_FLOAT, text);
  }
}

TEST(TOKEN, NegativeIntegerIsAFloat) {
  for (const char* const text : {"-0", "-5", "-1234567890123"}) expect_one(SBD_TOK_FLOAT, text);
}

TEST(TOKEN, String) {
  for (const char* const text : {"\"\"", "\"a b\"", "\"a\nb\r\n\"", "\"\\\"", "\"#;{\x80\xff\""}) {
    expect_one(SBD_TOK_STRING, text);
  }
}

TEST(TOKEN, StringMayHoldNulBytes) {
  const std::string text("\"a\0b\"", 5);
  EXPECT_EQ(scan(text), (TOKENS{{SBD_TOK_STRING, text}}));
}

TEST(TOKEN, IndexedName) {
  for (const char* const text : {"a[0]", "r[1][2]", "_[9]", "Ab_1[0][1][2]"}) {
    expect_one(SBD_TOK_INDEXED_NAME, text);
  }
}

TEST(TOKEN, QualifiedName) {
  for (const char* const text : {".", "..", "a.", ".a", "a.b", "clocks.pll_ahb_m", "a[1].b[2]",
                                 ".5", ".5a", "a.1", "a..b", ".[1]", "a[1]b.c", "_.[0][1]"}) {
    expect_one(SBD_TOK_QUALIFIED_NAME, text);
  }
}

TEST(TOKEN, PunctuationIsItsCharacter) {
  for (const char* const text : {"{", "}", "=", ";", "[", "]", "<", ">", ","}) {
    expect_one(text[0], text);
  }
}

TEST(TOKEN, UnitsInUpperCaseLetters) {
  expect_one(SBD_TOK_KB, "K", SCANNER::UNIT);
  expect_one(SBD_TOK_KB, "KB", SCANNER::UNIT);
  expect_one(SBD_TOK_MB, "M", SCANNER::UNIT);
  expect_one(SBD_TOK_MB, "MB", SCANNER::UNIT);
  expect_one(SBD_TOK_GB, "G", SCANNER::UNIT);
  expect_one(SBD_TOK_GB, "GB", SCANNER::UNIT);
}

TEST(TOKEN, FrequencyUnitsInAnyCase) {
  for (const char* const text : {"hz", "hZ", "Hz", "HZ"}) {
    expect_one(SBD_TOK_HZ, text, SCANNER::UNIT);
  }
  for (const char* const text : {"mhz", "mhZ", "mHz", "mHZ", "Mhz", "MhZ", "MHz", "MHZ"}) {
    expect_one(SBD_TOK_MHZ, text, SCANNER::UNIT);
  }
}

TEST(TOKEN, CommentReachesThroughTheEndOfTheLine) {
  expect_one(SBD_TOK_COMMENT_LINE, "#\n");
  expect_one(SBD_TOK_COMMENT_LINE, "# a; \"b\" #c\r\n");
  EXPECT_EQ(scan("#a\n#b\n"),
            (TOKENS{{SBD_TOK_COMMENT_LINE, "#a\n"}, {SBD_TOK_COMMENT_LINE, "#b\n"}}));
}

TEST(TOKEN, CommentMayHoldAnyBytes) {
  const std::string text("#\0\x80\xff\n", 5);
  EXPECT_EQ(scan(text), (TOKENS{{SBD_TOK_COMMENT_LINE, text}}));
}

// ---- Borders of tokens -------------------------------------------------------------------------

struct SPLIT {
  const char* name;
  const char* text;
  TOKENS tokens;
};

void PrintTo(const SPLIT& split, std::ostream* stream) {
  *stream << split.name;
}

const SPLIT SPLITS[] = {
    {"OctalEndsAtAnEight", "08", {{SBD_TOK_UDECIMAL, "0"}, {SBD_TOK_UDECIMAL, "8"}}},
    {"OctalEndsAtANine", "0179", {{SBD_TOK_OCTAL, "017"}, {SBD_TOK_UDECIMAL, "9"}}},
    {"SignedZeroIsNoOctal", "+010", {{SBD_TOK_UDECIMAL, "+0"}, {SBD_TOK_UDECIMAL, "10"}}},
    {"NegativeZeroIsNoOctal", "-010", {{SBD_TOK_FLOAT, "-0"}, {SBD_TOK_UDECIMAL, "10"}}},
    {"NegativeZerosAreTwoNumbers", "-00", {{SBD_TOK_FLOAT, "-0"}, {SBD_TOK_UDECIMAL, "0"}}},
    {"PointMakesAnOctalAFloat", "010.8", {{SBD_TOK_FLOAT, "010.8"}}},
    {"HexadecimalNeedsADigit", "0x", {{SBD_TOK_UDECIMAL, "0"}, {UNEXPECTED, "x"}}},
    {"HexadecimalEndsAtAUnit", "0x1G", {{SBD_TOK_HEXAL, "0x1"}, {SBD_TOK_GB, "G"}}},
    {"HexadecimalTakesB", "0x1B", {{SBD_TOK_HEXAL, "0x1B"}}},
    {"HexadecimalHasNoSign",
     "-0x1",
     {{SBD_TOK_FLOAT, "-0"}, {UNEXPECTED, "x"}, {SBD_TOK_UDECIMAL, "1"}}},
    {"HexadecimalHasNoFraction", "0x1.5", {{SBD_TOK_HEXAL, "0x1"}, {SBD_TOK_FLOAT, ".5"}}},
    {"BinaryNeedsADigit",
     "0b2",
     {{SBD_TOK_UDECIMAL, "0"}, {UNEXPECTED, "b"}, {SBD_TOK_UDECIMAL, "2"}}},
    {"BinaryEndsAtATwo", "0b102", {{SBD_TOK_BINARY, "0b10"}, {SBD_TOK_UDECIMAL, "2"}}},
    {"FloatHasOnePoint", "1.5.5", {{SBD_TOK_FLOAT, "1.5"}, {SBD_TOK_FLOAT, ".5"}}},
    {"FloatsMeetAtTwoPoints", "1..5", {{SBD_TOK_FLOAT, "1."}, {SBD_TOK_FLOAT, ".5"}}},
    {"FloatHasNoExponent",
     "1e5",
     {{SBD_TOK_UDECIMAL, "1"}, {UNEXPECTED, "e"}, {SBD_TOK_UDECIMAL, "5"}}},
    {"MinusNeedsADigit", "-a", {{UNEXPECTED, "-"}, {SBD_TOK_IDENTIFIER, "a"}}},
    {"PlusNeedsADigit", "+.", {{UNEXPECTED, "+"}, {SBD_TOK_QUALIFIED_NAME, "."}}},
    {"SignDoesNotRepeat", "--5", {{UNEXPECTED, "-"}, {SBD_TOK_FLOAT, "-5"}}},
    {"SignStartsTheNextNumber",
     "5-5+5",
     {{SBD_TOK_UDECIMAL, "5"}, {SBD_TOK_FLOAT, "-5"}, {SBD_TOK_UDECIMAL, "+5"}}},
    {"NameDoesNotStartWithADigit", "1a", {{SBD_TOK_UDECIMAL, "1"}, {UNEXPECTED, "a"}}},
    {"QualifiedNameDoesNotStartWithADigit", "1.a", {{SBD_TOK_FLOAT, "1."}, {UNEXPECTED, "a"}}},
    {"QualifiedNameDoesNotStartWithAnIndex",
     "[1].a",
     {{'[', "["}, {SBD_TOK_UDECIMAL, "1"}, {']', "]"}, {UNEXPECTED, "."}, {UNEXPECTED, "a"}}},
    {"IndexIsOneDigit",
     "a[12]",
     {{SBD_TOK_IDENTIFIER, "a"}, {'[', "["}, {SBD_TOK_UDECIMAL, "12"}, {']', "]"}}},
    {"IndexHasNoBlanks",
     "a[ 1]",
     {{SBD_TOK_IDENTIFIER, "a"}, {'[', "["}, {SBD_TOK_UDECIMAL, "1"}, {']', "]"}}},
    {"IndexIsNotSeparated",
     "a [1]",
     {{SBD_TOK_IDENTIFIER, "a"}, {'[', "["}, {SBD_TOK_UDECIMAL, "1"}, {']', "]"}}},
    {"IndexIsClosed", "a[1", {{SBD_TOK_IDENTIFIER, "a"}, {'[', "["}, {SBD_TOK_UDECIMAL, "1"}}},
    {"IndexIsNotEmpty", "a[]", {{SBD_TOK_IDENTIFIER, "a"}, {'[', "["}, {']', "]"}}},
    {"SecondIndexIsOneDigit",
     "a[1][23]",
     {{SBD_TOK_INDEXED_NAME, "a[1]"}, {'[', "["}, {SBD_TOK_UDECIMAL, "23"}, {']', "]"}}},
    {"NameEndsAfterItsIndices",
     "a[1]b",
     {{SBD_TOK_INDEXED_NAME, "a[1]"}, {SBD_TOK_IDENTIFIER, "b"}}},
    {"QualifiedNameEndsAtALongIndex",
     "a.b[12]",
     {{SBD_TOK_QUALIFIED_NAME, "a.b"}, {'[', "["}, {SBD_TOK_UDECIMAL, "12"}, {']', "]"}}},
    {"QualifiedNameEndsAtABlank",
     "a. b",
     {{SBD_TOK_QUALIFIED_NAME, "a."}, {SBD_TOK_IDENTIFIER, "b"}}},
    {"StringHasNoEscapes", "\"a\\\"b", {{SBD_TOK_STRING, "\"a\\\""}, {SBD_TOK_IDENTIFIER, "b"}}},
    {"StringIsClosed",
     "\"a b",
     {{UNEXPECTED, "\""}, {SBD_TOK_IDENTIFIER, "a"}, {SBD_TOK_IDENTIFIER, "b"}}},
    {"StringsMayTouch", "\"a\"\"b\"", {{SBD_TOK_STRING, "\"a\""}, {SBD_TOK_STRING, "\"b\""}}},
    {"CommentNeedsANewline", "# a", {{UNEXPECTED, "#"}, {SBD_TOK_IDENTIFIER, "a"}}},
    {"CarriageReturnEndsNoComment",
     "#a\rb",
     {{UNEXPECTED, "#"}, {SBD_TOK_IDENTIFIER, "a"}, {SBD_TOK_IDENTIFIER, "b"}}},
    {"PunctuationMayTouch",
     "{}==<>,;",
     {{'{', "{"},
      {'}', "}"},
      {'=', "="},
      {'=', "="},
      {'<', "<"},
      {'>', ">"},
      {',', ","},
      {';', ";"}}},
};

class TOKEN_BORDER : public testing::TestWithParam<SPLIT> {};

TEST_P(TOKEN_BORDER, FollowsTheLongestMatch) {
  EXPECT_EQ(scan(GetParam().text), GetParam().tokens) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(Of, TOKEN_BORDER, testing::ValuesIn(SPLITS),
                         [](const testing::TestParamInfo<SPLIT>& split) {
                           return std::string(split.param.name);
                         });

TEST(TOKEN_SCAN, LongTokensAreComplete) {
  const std::string name(300000, 'n');
  const std::string digits(300000, '7');
  const std::string string = "\"" + std::string(300000, '\n') + "\"";
  EXPECT_EQ(
      scan(name + " " + digits + " " + string),
      (TOKENS{{SBD_TOK_IDENTIFIER, name}, {SBD_TOK_UDECIMAL, digits}, {SBD_TOK_STRING, string}}));
}

// ---- Units -------------------------------------------------------------------------------------

TEST(UNIT, FollowsItsNumberAtOnce) {
  EXPECT_EQ(scan("100MHz"), (TOKENS{{SBD_TOK_UDECIMAL, "100"}, {SBD_TOK_MHZ, "MHz"}}));
  EXPECT_EQ(scan("0b1K"), (TOKENS{{SBD_TOK_BINARY, "0b1"}, {SBD_TOK_KB, "K"}}));
  EXPECT_EQ(scan("017MB"), (TOKENS{{SBD_TOK_OCTAL, "017"}, {SBD_TOK_MB, "MB"}}));
  EXPECT_EQ(scan("1.Hz"), (TOKENS{{SBD_TOK_FLOAT, "1."}, {SBD_TOK_HZ, "Hz"}}));
  EXPECT_EQ(scan("-5GB"), (TOKENS{{SBD_TOK_FLOAT, "-5"}, {SBD_TOK_GB, "GB"}}));
}

TEST(UNIT, IsAnIdentifierBehindABlank) {
  for (const char* const blank : {" ", "\t", "\r", "\n", " \t"}) {
    EXPECT_EQ(scan("64" + std::string(blank) + "K"),
              (TOKENS{{SBD_TOK_UDECIMAL, "64"}, {SBD_TOK_IDENTIFIER, "K"}}));
  }
}

TEST(UNIT, IsTheLongestMatch) {
  EXPECT_EQ(scan("5KBB"),
            (TOKENS{{SBD_TOK_UDECIMAL, "5"}, {SBD_TOK_KB, "KB"}, {SBD_TOK_IDENTIFIER, "B"}}));
  EXPECT_EQ(scan("5KHz"),
            (TOKENS{{SBD_TOK_UDECIMAL, "5"}, {SBD_TOK_KB, "K"}, {SBD_TOK_IDENTIFIER, "Hz"}}));
  EXPECT_EQ(scan("5MH"),
            (TOKENS{{SBD_TOK_UDECIMAL, "5"}, {SBD_TOK_MB, "M"}, {SBD_TOK_IDENTIFIER, "H"}}));
  EXPECT_EQ(scan("5Mb"),
            (TOKENS{{SBD_TOK_UDECIMAL, "5"}, {SBD_TOK_MB, "M"}, {SBD_TOK_IDENTIFIER, "b"}}));
}

TEST(UNIT, IsOnlyOne) {
  EXPECT_EQ(scan("5KK"),
            (TOKENS{{SBD_TOK_UDECIMAL, "5"}, {SBD_TOK_KB, "K"}, {SBD_TOK_IDENTIFIER, "K"}}));
}

TEST(UNIT, OfSizesIsNotWrittenInLowerCase) {
  EXPECT_EQ(scan("5kB"), (TOKENS{{SBD_TOK_UDECIMAL, "5"}, {UNEXPECTED, "k"}, {UNEXPECTED, "B"}}));
  EXPECT_EQ(scan("5mg"), (TOKENS{{SBD_TOK_UDECIMAL, "5"}, {UNEXPECTED, "m"}, {UNEXPECTED, "g"}}));
}

// ---- Start conditions --------------------------------------------------------------------------

TEST(CONDITION, StartsNormal) {
  const SCANNER scanner("", 0);
  EXPECT_EQ(scanner.start_condition(), SCANNER::NORMAL);
}

TEST(CONDITION, NumberSwitchesToUnit) {
  for (const char* const number : {"0", "+5", "010", "0x1", "0b1", "1.5", "-5"}) {
    for (const auto before : {SCANNER::NORMAL, SCANNER::TAIL, SCANNER::UNIT}) {
      EXPECT_EQ(condition_after(number, before), SCANNER::UNIT) << number;
    }
  }
}

TEST(CONDITION, UnitReturnsToNormal) {
  for (const char* const unit : {"K", "KB", "M", "MB", "G", "GB", "Hz", "MHz"}) {
    EXPECT_EQ(condition_after(unit, SCANNER::UNIT), SCANNER::NORMAL) << unit;
  }
}

TEST(CONDITION, SemicolonAndBraceSwitchToTail) {
  for (const auto before : {SCANNER::NORMAL, SCANNER::TAIL, SCANNER::UNIT}) {
    EXPECT_EQ(condition_after(";", before), SCANNER::TAIL);
    EXPECT_EQ(condition_after("}", before), SCANNER::TAIL);
  }
}

TEST(CONDITION, CommaReturnsFromUnitToNormal) {
  EXPECT_EQ(condition_after(",", SCANNER::UNIT), SCANNER::NORMAL);
  EXPECT_EQ(condition_after(",", SCANNER::NORMAL), SCANNER::NORMAL);
}

TEST(CONDITION, CommaKeepsTail) {
  EXPECT_EQ(scan(";,#a\n"), (TOKENS{{';', ";"}, {',', ","}, {SBD_TOK_COMMENT_TAIL, "#a\n"}}));
}

TEST(CONDITION, OtherPunctuationKeepsIt) {
  for (const char* const text : {"{", "=", "[", "]", "<", ">"}) {
    for (const auto before : {SCANNER::NORMAL, SCANNER::TAIL, SCANNER::UNIT}) {
      EXPECT_EQ(condition_after(text, before), before) << text;
    }
  }
}

TEST(CONDITION, WordsKeepTail) {
  for (const char* const text : {"a", "true", "\"s\"", "a[1]", "a.b"}) {
    EXPECT_EQ(condition_after(text, SCANNER::TAIL), SCANNER::TAIL) << text;
  }
}

TEST(CONDITION, CommentReturnsToNormal) {
  EXPECT_EQ(condition_after("#\n", SCANNER::NORMAL), SCANNER::NORMAL);
  EXPECT_EQ(condition_after("#\n", SCANNER::TAIL), SCANNER::NORMAL);
}

TEST(CONDITION, CommentIsATailBehindSemicolonOrBrace) {
  EXPECT_EQ(scan(";#a\n#b\n"),
            (TOKENS{{';', ";"}, {SBD_TOK_COMMENT_TAIL, "#a\n"}, {SBD_TOK_COMMENT_LINE, "#b\n"}}));
  EXPECT_EQ(scan("} \t\r#a\n"), (TOKENS{{'}', "}"}, {SBD_TOK_COMMENT_TAIL, "#a\n"}}));
}

TEST(CONDITION, CommentIsATailBehindTheNumberOfAStatement) {
  EXPECT_EQ(scan("5;#a\n"),
            (TOKENS{{SBD_TOK_UDECIMAL, "5"}, {';', ";"}, {SBD_TOK_COMMENT_TAIL, "#a\n"}}));
}

TEST(CONDITION, CommentIsATailBehindAWordOnTheSameLine) {
  EXPECT_EQ(scan("; a #b\n"),
            (TOKENS{{';', ";"}, {SBD_TOK_IDENTIFIER, "a"}, {SBD_TOK_COMMENT_TAIL, "#b\n"}}));
}

TEST(CONDITION, CommentIsALineBehindANumberOnTheSameLine) {
  EXPECT_EQ(scan("; 5 #b\n"),
            (TOKENS{{';', ";"}, {SBD_TOK_UDECIMAL, "5"}, {SBD_TOK_COMMENT_LINE, "#b\n"}}));
}

TEST(CONDITION, NewlineReturnsFromTailToNormal) {
  EXPECT_EQ(scan(";\n#a\n"), (TOKENS{{';', ";"}, {SBD_TOK_COMMENT_LINE, "#a\n"}}));
}

TEST(CONDITION, NewlineInAStringDoesNotReturnFromTail) {
  EXPECT_EQ(scan(";\"\n\"#a\n"),
            (TOKENS{{';', ";"}, {SBD_TOK_STRING, "\"\n\""}, {SBD_TOK_COMMENT_TAIL, "#a\n"}}));
}

TEST(CONDITION, CommentIsALineAnywhereElse) {
  EXPECT_EQ(scan("a { #b\n"),
            (TOKENS{{SBD_TOK_IDENTIFIER, "a"}, {'{', "{"}, {SBD_TOK_COMMENT_LINE, "#b\n"}}));
}

TEST(CONDITION, UnitKnowsNoWordsAndNoComments) {
  EXPECT_EQ(scan("a", SCANNER::UNIT), (TOKENS{{UNEXPECTED, "a"}}));
  EXPECT_EQ(scan("\"", SCANNER::UNIT), (TOKENS{{UNEXPECTED, "\""}}));
  EXPECT_EQ(scan("\"\"", SCANNER::UNIT), (TOKENS{{UNEXPECTED, "\""}, {UNEXPECTED, "\""}}));
  EXPECT_EQ(scan("a.b", SCANNER::UNIT),
            (TOKENS{{UNEXPECTED, "a"}, {UNEXPECTED, "."}, {UNEXPECTED, "b"}}));
  EXPECT_EQ(scan("#x\ny", SCANNER::UNIT),
            (TOKENS{{UNEXPECTED, "#"}, {UNEXPECTED, "x"}, {SBD_TOK_IDENTIFIER, "y"}}));
  EXPECT_EQ(scan("true", SCANNER::UNIT),
            (TOKENS{{UNEXPECTED, "t"}, {UNEXPECTED, "r"}, {UNEXPECTED, "u"}, {UNEXPECTED, "e"}}));
}

TEST(CONDITION, UnitKnowsNumbersAndPunctuation) {
  EXPECT_EQ(scan("=1[2", SCANNER::UNIT),
            (TOKENS{{'=', "="}, {SBD_TOK_UDECIMAL, "1"}, {'[', "["}, {SBD_TOK_UDECIMAL, "2"}}));
}

TEST(CONDITION, UnitReadsAPointAndDigitsAsAFloat) {
  expect_one(SBD_TOK_FLOAT, ".5", SCANNER::UNIT);
  expect_one(SBD_TOK_QUALIFIED_NAME, ".5", SCANNER::NORMAL);
  expect_one(SBD_TOK_QUALIFIED_NAME, ".5", SCANNER::TAIL);
}

TEST(CONDITION, NormalAndTailKnowNoUnits) {
  expect_one(SBD_TOK_IDENTIFIER, "MHz", SCANNER::NORMAL);
  expect_one(SBD_TOK_IDENTIFIER, "MHz", SCANNER::TAIL);
}

TEST(CONDITION, UnexpectedCharacterKeepsIt) {
  EXPECT_EQ(scan("5@K"), (TOKENS{{SBD_TOK_UDECIMAL, "5"}, {UNEXPECTED, "@"}, {SBD_TOK_KB, "K"}}));
  EXPECT_EQ(scan(";@#a\n"),
            (TOKENS{{';', ";"}, {UNEXPECTED, "@"}, {SBD_TOK_COMMENT_TAIL, "#a\n"}}));
}

TEST(CONDITION, InputEndsInEveryOne) {
  for (const auto condition : {SCANNER::NORMAL, SCANNER::TAIL, SCANNER::UNIT}) {
    SCANNER scanner(" ", 1);
    scanner.begin(condition);
    EXPECT_EQ(scanner.yylex(), 0);
    EXPECT_EQ(scanner.yytext(), "");
    EXPECT_EQ(scanner.yylex(), 0);
  }
}

// ---- Unexpected characters ---------------------------------------------------------------------

TEST(UNEXPECTED_CHARACTER, IsEveryOtherByte) {
  const std::string known =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.{}=;[]<>, \t\r\n";
  for (int byte = 1; byte < 256; byte++) {
    const std::string text(1, static_cast<char>(byte));
    const bool is_known = known.find(text) != std::string::npos;
    EXPECT_EQ(scan(text) == (TOKENS{{UNEXPECTED, text}}), !is_known) << byte;
  }
}

TEST(UNEXPECTED_CHARACTER, NulIsReportedAndSkipped) {
  MESSAGE_RECORDER recorder;
  const std::string_view text("a\0b", 3);
  SCANNER scanner(text.data(), text.size());
  scanner.set_file_name("f");
  EXPECT_EQ(scanner.yylex(), SBD_TOK_IDENTIFIER);
  EXPECT_TRUE(recorder.is_silent());
  EXPECT_EQ(scanner.yylex(), SBD_TOK_IDENTIFIER);
  EXPECT_EQ(scanner.yytext(), "b");
  EXPECT_EQ(recorder.texts(), TEXTS{syntax_error_text("f", "", 1)});
}

TEST(UNEXPECTED_CHARACTER, IsReportedOneByOneWithItsLine) {
  MESSAGE_RECORDER recorder;
  const std::string text = "@\n$\n\n$$";
  SCANNER scanner(text.data(), text.size());
  scanner.set_file_name("f");
  EXPECT_EQ(scanner.yylex(), 0);
  EXPECT_EQ(recorder.texts(),
            (TEXTS{syntax_error_text("f", "@", 1), syntax_error_text("f", "$", 2),
                   syntax_error_text("f", "$", 4), syntax_error_text("f", "$", 4)}));
}

TEST(UNEXPECTED_CHARACTER, IsCountedInTheDocument) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  SCANNER scanner("@ a $", 5);
  scanner.set_parser_para(&document.get_parser_para());
  EXPECT_EQ(scanner.yylex(), SBD_TOK_IDENTIFIER);
  EXPECT_EQ(document.get_parser_para().error_count, 1U);
  EXPECT_EQ(scanner.yylex(), 0);
  EXPECT_EQ(document.get_parser_para().error_count, 2U);
  EXPECT_EQ(recorder.numbers(), (std::vector<int>{2, 2}));
}

// ---- Lines and locations -----------------------------------------------------------------------

TEST(LINE_COUNTER, CountsNewlinesInEveryMatch) {
  const std::string text = "a\n\n \"x\ny\n\" #c\nb\r\nc\rd";
  const std::vector<std::pair<std::string, std::uint32_t>> expected = {
      {"a", 1}, {"\"x\ny\n\"", 5}, {"#c\n", 6}, {"b", 6}, {"c", 7}, {"d", 7}, {"", 7}};
  SCANNER scanner(text.data(), text.size());
  EXPECT_EQ(scanner.lineno(), 1U);
  for (const auto& [token, line] : expected) {
    scanner.yylex();
    EXPECT_EQ(scanner.yytext(), token);
    EXPECT_EQ(scanner.lineno(), line) << token;
  }
}

TEST(LINE_COUNTER, CountsPastSmallIntegers) {
  const std::string text = std::string(70000, '\n') + "a";
  SCANNER scanner(text.data(), text.size());
  EXPECT_EQ(scanner.yylex(), SBD_TOK_IDENTIFIER);
  EXPECT_EQ(scanner.lineno(), 70001U);
}

void expect_location(const FlexLexer::LOCATION& location, std::size_t offset, std::size_t length,
                     std::uint32_t first_line, std::size_t column, std::uint32_t line) {
  EXPECT_EQ(location.offset, offset);
  EXPECT_EQ(location.length, length);
  EXPECT_EQ(location.first_line, first_line);
  EXPECT_EQ(location.column, column);
  EXPECT_EQ(location.line, line);
}

TEST(LOCATION, IsThatOfTheMatch) {
  const std::string text = " ab\n  =\"\n\n\";";
  SCANNER scanner(text.data(), text.size());
  scanner.yylex();
  expect_location(scanner.yy_location(), 1, 2, 1, 2, 1);
  scanner.yylex();
  expect_location(scanner.yy_location(), 6, 1, 2, 3, 2);
  scanner.yylex();
  expect_location(scanner.yy_location(), 7, 4, 2, 4, 4);
  scanner.yylex();
  expect_location(scanner.yy_location(), 11, 1, 4, 2, 4);
}

TEST(LOCATION, OfTheMatchBeforeIsKeptApart) {
  SCANNER scanner("ab;", 3);
  scanner.yylex();
  scanner.yylex();
  EXPECT_EQ(scanner.prev_location().offset, 0U);
  EXPECT_EQ(scanner.prev_location().length, 2U);
  scanner.set_prev_location();
  EXPECT_EQ(scanner.prev_location().offset, 2U);
}

TEST(LOCATION, StartsAgain) {
  SCANNER scanner("ab\n;", 4);
  scanner.yylex();
  scanner.yylex();
  scanner.init_yy_location();
  expect_location(scanner.yy_location(), 0, 0, 1, 1, 1);
  expect_location(scanner.prev_location(), 0, 0, 1, 1, 1);
}

TEST(TOKEN_COPY, HoldsTextAndLine) {
  const std::string text = "\n\n  name[1] = 5;";
  SCANNER scanner(text.data(), text.size());
  scanner.yylex();
  const SBD_FILE_PARSER::SBD_TOKEN_INFO token = sbd_copy_token(scanner);
  scanner.yylex();
  EXPECT_EQ(token.text, "name[1]");
  EXPECT_EQ(token.line, 3U);
}

TEST(SCANNER_FAILURE, IsAnInternalError) {
  MESSAGE_RECORDER recorder;
  SCANNER scanner("", 0);
  scanner.LexerError("fatal flex scanner internal error--no action found");
  ASSERT_EQ(recorder.conditions(), TEXTS{"fatal flex scanner internal error--no action found"});
  EXPECT_EQ(recorder.internal_errors().front().module, "SBD");
  EXPECT_EQ(recorder.internal_errors().front().source, "sbd_parser");
}

}  // namespace
