#include "tools/notation.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <string>

#include "sbd/sbd_memory.h"

namespace {

using sbd_tool::get_notation;
using sbd_tool::get_scaled_number;
using sbd_tool::get_unquoted;
using sbd_tool::get_unscaled_number;
using sbd_tool::VALUE;

// The value of the parameter "x" in a document that was read.
class READ_VALUE {
 public:
  explicit READ_VALUE(const std::string& notation) {
    const std::string text = "device d { x = " + notation + "; }";
    EXPECT_TRUE(m_document.read_text(text.data(), text.size(), "test")) << notation;
  }

  const VALUE& value() const {
    static const VALUE k_none{};
    const VALUE* const value = m_document.get_para_value("d", "x");
    EXPECT_NE(value, nullptr);
    return value != nullptr ? *value : k_none;
  }
  std::string notation() const { return get_notation(m_document, value()); }

 private:
  SBD_FILE_PARSER m_document;
};

std::string scaled(const std::string& notation) {
  return get_scaled_number(READ_VALUE(notation).value());
}

std::string write_new(VALUE::VALUE_TYPE type, double number,
                      VALUE::QUANTITY_UNIT unit = VALUE::QU_NONE) {
  const SBD_FILE_PARSER document;
  VALUE value;
  value.type = type;
  value.number = number;
  value.unit = unit;
  return get_notation(document, value);
}

TEST(NOTATION, IsThatOfTheFile) {
  for (const char* const notation :
       {"0", "+7", "007", "0x00fF", "0B0101", "1.50", "-.5", "5.", "64KB", "0x40K", "33mhz", "5HZ",
        "True", "FALSE", "word", "\"a  b\"", "\"\""}) {
    EXPECT_EQ(READ_VALUE(notation).notation(), notation);
  }
}

TEST(NOTATION, ListsComeOnOneLine) {
  EXPECT_EQ(READ_VALUE("{ 1,2 }").notation(), "{1, 2}");
  EXPECT_EQ(READ_VALUE("{{0x1K,\n\t{a ,\"b\"}} , True,{1.0,-2}}").notation(),
            "{{0x1K, {a, \"b\"}}, True, {1.0, -2}}");
}

TEST(NOTATION, IsMadeForNewValues) {
  EXPECT_EQ(write_new(VALUE::VT_UDECIMAL, 4294967295.0), "4294967295");
  EXPECT_EQ(write_new(VALUE::VT_UDECIMAL, 64, VALUE::QU_KB), "64K");
  EXPECT_EQ(write_new(VALUE::VT_OCTAL, 8), "010");
  EXPECT_EQ(write_new(VALUE::VT_HEXAL, 255, VALUE::QU_MB), "0xffM");
  EXPECT_EQ(write_new(VALUE::VT_BINARY, 5, VALUE::QU_GB), "0b101G");
  EXPECT_EQ(write_new(VALUE::VT_FLOAT, 1.5, VALUE::QU_MHZ), "1.5MHz");
  EXPECT_EQ(write_new(VALUE::VT_FLOAT, 5, VALUE::QU_HZ), "5.0Hz");
  EXPECT_EQ(write_new(VALUE::VT_FLOAT, -5), "-5.0");
}

TEST(NOTATION, HasNoExponents) {
  EXPECT_EQ(write_new(VALUE::VT_FLOAT, 1e22), "1" + std::string(22, '0') + ".0");
  EXPECT_EQ(write_new(VALUE::VT_FLOAT, 1e-7), "0.0000001");
  const double least = std::numeric_limits<double>::denorm_min();
  EXPECT_EQ(std::strtod(write_new(VALUE::VT_FLOAT, least).c_str(), nullptr), least);
  EXPECT_EQ(std::stod(write_new(VALUE::VT_FLOAT, -std::numeric_limits<double>::max())),
            -std::numeric_limits<double>::max());
}

TEST(NOTATION, NewFlagsAndTexts) {
  const SBD_FILE_PARSER document;
  VALUE flag;
  flag.type = VALUE::VT_BOOL;
  flag.flag = 1;
  EXPECT_EQ(get_notation(document, flag), "true");
  VALUE text;
  text.type = VALUE::VT_STRING;
  text.text = sbd_copy_text("\"a b\"");
  EXPECT_EQ(get_notation(document, text), "\"a b\"");
  sbd_free_text(text.text);
}

TEST(NUMBER, IntegersHaveNoExponent) {
  EXPECT_EQ(scaled("0"), "0");
  EXPECT_EQ(scaled("4294967295"), "4294967295");
  EXPECT_EQ(scaled("0x40K"), "65536");
  EXPECT_EQ(scaled("4G"), "4294967296");
  EXPECT_EQ(scaled("4294967295G"), "4611686017353646080");
  EXPECT_EQ(scaled("4294967295MHz"), "4294967295000000");
  EXPECT_EQ(scaled("7Hz"), "7");
}

TEST(NUMBER, FloatsRoundTrip) {
  EXPECT_EQ(scaled("0.1"), "0.1");
  EXPECT_EQ(scaled("1.5K"), "1536");
  EXPECT_EQ(scaled("-5"), "-5");
  EXPECT_EQ(scaled("33.333MHz"), "33333000");
  EXPECT_EQ(scaled("0.30000000000000004"), "0.30000000000000004");
  EXPECT_EQ(scaled(std::string(30, '9') + ".0"), "1e+30");
  EXPECT_EQ(scaled(std::string(400, '9') + ".0"), "inf");
}

TEST(NUMBER, UnscaledLeavesTheUnitOut) {
  EXPECT_EQ(get_unscaled_number(READ_VALUE("0x40K").value()), "64");
  EXPECT_EQ(get_unscaled_number(READ_VALUE("33.3MHz").value()), "33.3");
}

TEST(TEXT, LosesItsQuotes) {
  EXPECT_EQ(get_unquoted(READ_VALUE("\"a b\"").value()), "a b");
  EXPECT_EQ(get_unquoted(READ_VALUE("word").value()), "word");
  EXPECT_EQ(get_unquoted(READ_VALUE("\"\"").value()), "");
}

TEST(UNIT, HasAText) {
  EXPECT_EQ(sbd_tool::unit_text(VALUE::QU_NONE), "");
  EXPECT_EQ(sbd_tool::unit_text(VALUE::QU_KB), "K");
  EXPECT_EQ(sbd_tool::unit_text(VALUE::QU_MHZ), "MHz");
  EXPECT_EQ(sbd_tool::unit_text(static_cast<VALUE::QUANTITY_UNIT>(99)), "");
}

}  // namespace
