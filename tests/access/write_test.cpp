// The written form, down to the last blank.
#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <deque>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/access/access_support.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/temporary_files.h"
#include "tests/support/tree_builder.h"

namespace {

using TEXTS = std::vector<std::string>;

// Records that belong to no document and need not be whole.
class LOOSE_RECORDS {
 public:
  char* text(std::string_view characters) {
    m_texts.emplace_back(characters);
    return m_texts.back().data();
  }

  SBD_SYMBOL* symbol(const char* name) {
    SBD_SYMBOL& symbol = m_symbols.emplace_back();
    if (name != nullptr) symbol.name = text(name);
    return &symbol;
  }

  SBD_NODE* comment(const char* characters) {
    SBD_NODE& node = m_nodes.emplace_back();
    node.type = SBD_NODE::NT_COMMENT;
    node.comment = characters == nullptr ? nullptr : text(characters);
    return &node;
  }

  SBD_NODE* block(const char* type, const char* name, SBD_NODE* members = nullptr) {
    SBD_BLOCK& block = m_blocks.emplace_back();
    if (type != nullptr) block.type = text(type);
    block.name = symbol(name);
    block.members = members;
    SBD_NODE& node = m_nodes.emplace_back();
    node.type = SBD_NODE::NT_BLOCK;
    node.block = &block;
    return &node;
  }

  SBD_NODE* assignment(const char* name, SBD_PARA_VALUE* value) {
    SBD_NODE* const node = statement(name, SBD_STATEMENT::ST_ASSIGNMENT);
    node->statement->value = value;
    return node;
  }

  SBD_NODE* references(const char* name, const std::vector<const char*>& names) {
    SBD_NODE* const node = statement(name, SBD_STATEMENT::ST_REFERENCE);
    node->statement->reference = nullptr;
    SBD_PARA_REF** link = &node->statement->reference;
    for (const char* const element : names) {
      *link = &m_references.emplace_back();
      (*link)->name = text(element);
      link = &(*link)->next;
    }
    return node;
  }

  SBD_PARA_ATTR* attribute(const char* key, const char* value, SBD_PARA_ATTR* next = nullptr) {
    SBD_PARA_ATTR& attribute = m_attributes.emplace_back();
    if (key != nullptr) attribute.attr_key = text(key);
    if (value != nullptr) attribute.attr_value = text(value);
    attribute.next = next;
    return &attribute;
  }

  SBD_PARA_VALUE* number(double number, SBD_PARA_VALUE::VALUE_TYPE type, unsigned unit = 0) {
    SBD_PARA_VALUE& value = m_values.emplace_back();
    value.type = type;
    value.number = number;
    value.unit = static_cast<SBD_PARA_VALUE::QUANTITY_UNIT>(unit);
    return &value;
  }

  SBD_PARA_VALUE* five() { return number(5, SBD_PARA_VALUE::VT_UDECIMAL); }

  SBD_PARA_VALUE* flag(std::uint32_t flag, unsigned unit = 0) {
    SBD_PARA_VALUE* const value = number(0, SBD_PARA_VALUE::VT_BOOL, unit);
    value->flag = flag;
    return value;
  }

  SBD_PARA_VALUE* string(const char* characters, unsigned unit = 0) {
    SBD_PARA_VALUE* const value = number(0, SBD_PARA_VALUE::VT_STRING, unit);
    value->text = text(characters);
    return value;
  }

  // Puts the nodes in a row.
  static SBD_NODE* chain(const std::vector<SBD_NODE*>& nodes) {
    for (std::size_t i = 0; i + 1 < nodes.size(); i++) nodes[i]->next = nodes[i + 1];
    return nodes.front();
  }

 private:
  SBD_NODE* statement(const char* name, SBD_STATEMENT::STATEMENT_TYPE type) {
    SBD_STATEMENT& statement = m_statements.emplace_back();
    statement.type = type;
    statement.name = symbol(name);
    SBD_NODE& node = m_nodes.emplace_back();
    node.type = SBD_NODE::NT_STATEMENT;
    node.statement = &statement;
    return &node;
  }

  std::deque<std::string> m_texts;
  std::deque<SBD_SYMBOL> m_symbols;
  std::deque<SBD_NODE> m_nodes;
  std::deque<SBD_BLOCK> m_blocks;
  std::deque<SBD_STATEMENT> m_statements;
  std::deque<SBD_PARA_REF> m_references;
  std::deque<SBD_PARA_ATTR> m_attributes;
  std::deque<SBD_PARA_VALUE> m_values;
};

// A list value and what hangs on it.
class LIST {
 public:
  explicit LIST(std::initializer_list<SBD_PARA_VALUE*> elements, unsigned unit = 0)
      : m_value(make_list(elements)) {
    m_value->unit = static_cast<SBD_PARA_VALUE::QUANTITY_UNIT>(unit);
  }
  ~LIST() { SBD_FILE_PARSER().free_para_val(m_value); }
  LIST(const LIST&) = delete;
  LIST& operator=(const LIST&) = delete;

  SBD_PARA_VALUE* get() const { return m_value; }

 private:
  SBD_PARA_VALUE* m_value;
};

std::string formatted(const char* format, double number) {
  char buffer[512];
  const int length = std::snprintf(buffer, sizeof buffer, format, number);
  return {buffer, static_cast<std::size_t>(length)};
}

// ---- Values ------------------------------------------------------------------------------------

constexpr const char* k_units[] = {"", "K", "M", "G", "Hz", "MHz"};

TEST(WRITE_VALUE, HasAFormForEachKindAndUnit) {
  LOOSE_RECORDS records;
  for (unsigned unit = 0; unit < 6; unit++) {
    const std::string suffix = k_units[unit];
    const std::pair<SBD_PARA_VALUE*, const char*> cases[] = {
        {records.number(100, SBD_PARA_VALUE::VT_UDECIMAL, unit), "100"},
        {records.number(100, SBD_PARA_VALUE::VT_OCTAL, unit), "0144"},
        {records.number(100, SBD_PARA_VALUE::VT_HEXAL, unit), "0x64"},
        {records.number(100, SBD_PARA_VALUE::VT_BINARY, unit), "0b1100100"},
        {records.number(33, SBD_PARA_VALUE::VT_FLOAT, unit), "33.000000"},
        {records.flag(1, unit), "true"},
        {records.flag(0, unit), "false"},
        {records.string("\"a b\"", unit), "\"a b\""},
    };
    for (const auto& [value, text] : cases) EXPECT_EQ(written(*value), text + suffix);
    const LIST list({make_number(1), make_number(2), make_number(3)}, unit);
    EXPECT_EQ(written(*list.get()), "{1,2,3}" + suffix);
  }
}

TEST(WRITE_VALUE, WritesZeroInEveryBase) {
  LOOSE_RECORDS records;
  EXPECT_EQ(written(*records.number(0, SBD_PARA_VALUE::VT_UDECIMAL)), "0");
  EXPECT_EQ(written(*records.number(0, SBD_PARA_VALUE::VT_OCTAL)), "00");
  EXPECT_EQ(written(*records.number(0, SBD_PARA_VALUE::VT_HEXAL)), "0x0");
  EXPECT_EQ(written(*records.number(0, SBD_PARA_VALUE::VT_BINARY)), "0b0");
  EXPECT_EQ(written(*records.number(0, SBD_PARA_VALUE::VT_FLOAT)), "0.000000");
}

TEST(WRITE_VALUE, WritesTheExamplesWithUnits) {
  LOOSE_RECORDS records;
  EXPECT_EQ(written(*records.number(33, SBD_PARA_VALUE::VT_UDECIMAL, 5)), "33MHz");
  EXPECT_EQ(written(*records.number(64, SBD_PARA_VALUE::VT_HEXAL, 1)), "0x40K");
}

TEST(WRITE_VALUE, WritesTheLargestIntegers) {
  LOOSE_RECORDS records;
  constexpr double k_largest = 4294967295.0;
  EXPECT_EQ(written(*records.number(k_largest, SBD_PARA_VALUE::VT_UDECIMAL)), "4294967295");
  EXPECT_EQ(written(*records.number(k_largest, SBD_PARA_VALUE::VT_OCTAL)), "037777777777");
  EXPECT_EQ(written(*records.number(k_largest, SBD_PARA_VALUE::VT_HEXAL)), "0xFFFFFFFF");
  EXPECT_EQ(written(*records.number(k_largest, SBD_PARA_VALUE::VT_BINARY)),
            "0b11111111111111111111111111111111");
  EXPECT_EQ(written(*records.number(2147483648.0, SBD_PARA_VALUE::VT_UDECIMAL)), "2147483648");
}

TEST(WRITE_VALUE, TruncatesIntegersTowardZero) {
  LOOSE_RECORDS records;
  EXPECT_EQ(written(*records.number(99.999, SBD_PARA_VALUE::VT_UDECIMAL)), "99");
  EXPECT_EQ(written(*records.number(0.999, SBD_PARA_VALUE::VT_HEXAL)), "0x0");
  EXPECT_EQ(written(*records.number(-0.999, SBD_PARA_VALUE::VT_BINARY)), "0b0");
  EXPECT_EQ(written(*records.number(4294967295.75, SBD_PARA_VALUE::VT_UDECIMAL)), "4294967295");
}

TEST(WRITE_VALUE, WritesTheLowBitsOfIntegersBeyond32) {
  LOOSE_RECORDS records;
  EXPECT_EQ(written(*records.number(4294967296.0, SBD_PARA_VALUE::VT_UDECIMAL)), "0");
  EXPECT_EQ(written(*records.number(4294967301.0, SBD_PARA_VALUE::VT_HEXAL)), "0x5");
  EXPECT_EQ(written(*records.number(std::ldexp(1, 53) - 1, SBD_PARA_VALUE::VT_UDECIMAL)),
            "4294967295");
  EXPECT_EQ(written(*records.number(std::ldexp(1, 63), SBD_PARA_VALUE::VT_UDECIMAL)), "0");
  EXPECT_EQ(written(*records.number(std::ldexp(1, 64), SBD_PARA_VALUE::VT_UDECIMAL)), "0");
}

TEST(WRITE_VALUE, OutlivesNumbersThatNoIntegerHas) {
  LOOSE_RECORDS records;
  for (const double number :
       {1e300, -1e300, -1.0, -5e9, std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    for (unsigned type = 0; type < 4; type++) {
      const auto kind = static_cast<SBD_PARA_VALUE::VALUE_TYPE>(type);
      EXPECT_FALSE(written(*records.number(number, kind)).empty());
    }
  }
}

TEST(WRITE_VALUE, WritesStringsAsTheyAre) {
  LOOSE_RECORDS records;
  for (const char* const text : {"", "abc", "\"a b\"", "a\"b", "%s%n%d", "two\nlines", "\t\\x\\",
                                 "\xc3\xa4\xff\x01", "{1}"}) {
    EXPECT_EQ(written(*records.string(text)), text);
  }
  const std::string long_text(100000, 'x');
  EXPECT_EQ(written(*records.string(long_text.c_str())), long_text);
}

TEST(WRITE_VALUE, WritesEveryFlagButOneAsFalse) {
  LOOSE_RECORDS records;
  EXPECT_EQ(written(*records.flag(1)), "true");
  for (const std::uint32_t flag : {0U, 2U, 3U, 256U, 257U, 0x80000001U, 0xffffffffU}) {
    EXPECT_EQ(written(*records.flag(flag)), "false") << flag;
  }
}

TEST(WRITE_VALUE, WritesListsOfAnyLength) {
  EXPECT_EQ(written(*LIST({}).get()), "{}");
  EXPECT_EQ(written(*LIST({make_number(5)}).get()), "{5}");
  EXPECT_EQ(written(*LIST({make_list({}), make_list({make_list({})})}).get()), "{{},{{}}}");
  EXPECT_EQ(written(*LIST({make_number(5)}, 2).get()), "{5}M");
}

TEST(WRITE_VALUE, WritesElementsWithTheirOwnKindsAndUnits) {
  SBD_PARA_VALUE* const inner = make_list({make_number(1, SBD_PARA_VALUE::QU_KB), make_bool(true)});
  inner->unit = SBD_PARA_VALUE::QU_HZ;
  const LIST list({make_number(64, SBD_PARA_VALUE::QU_MHZ, SBD_PARA_VALUE::VT_HEXAL), inner,
                   make_string("\"s\""), make_bool(false),
                   make_number(-0.5, SBD_PARA_VALUE::QU_GB, SBD_PARA_VALUE::VT_FLOAT)},
                  3);
  EXPECT_EQ(written(*list.get()), "{0x40MHz,{1K,true}Hz,\"s\",false,-0.500000G}G");
}

TEST(WRITE_VALUE, WritesDeeplyNestedLists) {
  constexpr std::size_t k_depth = 2000;
  SBD_PARA_VALUE* value = make_number(7);
  for (std::size_t i = 0; i < k_depth; i++) value = make_list({value, make_number(1)});
  std::string text(k_depth, '{');
  text += '7';
  for (std::size_t i = 0; i < k_depth; i++) text += ",1}";
  EXPECT_EQ(written(*value), text);
  SBD_FILE_PARSER().free_para_val(value);
}

TEST(WRITE_VALUE, ReportsAnUnknownKindAndWritesTheUnit) {
  LOOSE_RECORDS records;
  for (const std::uint32_t kind : {8U, 255U, 0xffffffffU}) {
    MESSAGE_RECORDER recorder;
    const auto type = static_cast<SBD_PARA_VALUE::VALUE_TYPE>(kind);
    EXPECT_EQ(written(*records.number(5, type, 5)), "MHz");
    EXPECT_EQ(recorder.conditions(), TEXTS{"Trying to write unknown parameter value type"});
    EXPECT_TRUE(recorder.messages().empty());
  }
}

TEST(WRITE_VALUE, ReportsAnUnknownUnitBehindTheValue) {
  LOOSE_RECORDS records;
  for (const std::uint32_t unit : {6U, 0xffffffffU}) {
    MESSAGE_RECORDER recorder;
    EXPECT_EQ(written(*records.number(5, SBD_PARA_VALUE::VT_UDECIMAL, unit)), "5");
    EXPECT_EQ(recorder.conditions(), TEXTS{"Trying to write value with unknown unit type"});
  }
}

TEST(WRITE_VALUE, ReportsAnUnknownKindBeforeAnUnknownUnit) {
  LOOSE_RECORDS records;
  MESSAGE_RECORDER recorder;
  EXPECT_EQ(written(*records.number(5, static_cast<SBD_PARA_VALUE::VALUE_TYPE>(8), 6)), "");
  EXPECT_EQ(recorder.conditions(), (TEXTS{"Trying to write unknown parameter value type",
                                          "Trying to write value with unknown unit type"}));
}

TEST(WRITE_VALUE, WritesTheRestOfAListWithABrokenElement) {
  SBD_PARA_VALUE* const broken = make_number(5, SBD_PARA_VALUE::QU_KB);
  broken->type = static_cast<SBD_PARA_VALUE::VALUE_TYPE>(9);
  const LIST list({make_number(1), broken, make_number(3)});
  MESSAGE_RECORDER recorder;
  EXPECT_EQ(written(*list.get()), "{1,K,3}");
  EXPECT_EQ(recorder.conditions(), TEXTS{"Trying to write unknown parameter value type"});
  broken->type = SBD_PARA_VALUE::VT_UDECIMAL;
}

// ---- Numbers against the standard formats ------------------------------------------------------

// Compares batches of numbers, so that a stream need not be opened for each.
class NUMBER_COMPARISON {
 public:
  explicit NUMBER_COMPARISON(SBD_PARA_VALUE::VALUE_TYPE type) : m_type(type) {}
  ~NUMBER_COMPARISON() { compare(); }
  NUMBER_COMPARISON(const NUMBER_COMPARISON&) = delete;
  NUMBER_COMPARISON& operator=(const NUMBER_COMPARISON&) = delete;

  void add(double number) {
    m_numbers.push_back(number);
    if (m_numbers.size() == 500) compare();
  }

 private:
  void compare() {
    if (m_numbers.empty() || testing::Test::HasFailure()) return;
    SBD_PARA_VALUE* const list = make_list({});
    std::string wanted;
    for (const double number : m_numbers) {
      list->list->push_back(make_number(number, SBD_PARA_VALUE::QU_NONE, m_type));
      wanted += (wanted.empty() ? "{" : ",") + text_of(number);
    }
    EXPECT_EQ(written(*list), wanted + "}");
    SBD_FILE_PARSER().free_para_val(list);
    m_numbers.clear();
  }

  std::string text_of(double number) const {
    if (m_type == SBD_PARA_VALUE::VT_FLOAT) return formatted("%f", number);
    const auto integer = static_cast<std::uint32_t>(static_cast<std::uint64_t>(number));
    char buffer[64];
    switch (m_type) {
      case SBD_PARA_VALUE::VT_OCTAL:
        std::snprintf(buffer, sizeof buffer, "0%o", integer);
        return buffer;
      case SBD_PARA_VALUE::VT_HEXAL:
        std::snprintf(buffer, sizeof buffer, "0x%X", integer);
        return buffer;
      case SBD_PARA_VALUE::VT_BINARY: {
        std::string digits;
        for (std::uint32_t rest = integer; rest != 0; rest /= 2) {
          digits.insert(digits.begin(), rest % 2 == 0 ? '0' : '1');
        }
        return "0b" + (digits.empty() ? "0" : digits);
      }
      default:
        std::snprintf(buffer, sizeof buffer, "%u", integer);
        return buffer;
    }
  }

  SBD_PARA_VALUE::VALUE_TYPE m_type;
  std::vector<double> m_numbers;
};

TEST(WRITE_NUMBER, WritesFloatsAsTheStandardFormatDoes) {
  LOOSE_RECORDS records;
  constexpr double k_infinity = std::numeric_limits<double>::infinity();
  for (const double number : {0.0,
                              -0.0,
                              0.1,
                              -0.1,
                              1.5,
                              1e300,
                              -1e300,
                              std::numeric_limits<double>::max(),
                              std::numeric_limits<double>::lowest(),
                              std::numeric_limits<double>::min(),
                              std::numeric_limits<double>::denorm_min(),
                              k_infinity,
                              -k_infinity,
                              std::numeric_limits<double>::quiet_NaN(),
                              std::copysign(std::numeric_limits<double>::quiet_NaN(), -1.0),
                              0.0000005,
                              0.00000049999999999999999,
                              0.00000050000000000000001,
                              -0.0000004,
                              0.9999995,
                              0.99999949999999,
                              0.9999996,
                              9.9999999,
                              99999999.9999995,
                              999999999999999.9,
                              4503599627370496.5,
                              9007199254740991.0,
                              9007199254740993.0,
                              18446744073709551615.0,
                              18446744073709551616.0,
                              18446744073709549568.0,
                              9223372036854775807.0,
                              9223372036854774784.0,
                              4294967295.9999999,
                              123456789.123456789,
                              1e15,
                              1e16,
                              1e17,
                              1e18,
                              1e19,
                              1e20,
                              1e21,
                              1e22,
                              1e23,
                              0.3,
                              2.675,
                              1.0000005}) {
    EXPECT_EQ(written(*records.number(number, SBD_PARA_VALUE::VT_FLOAT)), formatted("%f", number));
  }
}

TEST(WRITE_NUMBER, RoundsFloatsInTheMiddleAsTheStandardFormatDoes) {
  NUMBER_COMPARISON comparison(SBD_PARA_VALUE::VT_FLOAT);
  // Multiples of 1/128 have seven decimals, the last of which is 5 for every odd one.
  for (int i = -3000; i < 3000; i++) comparison.add(i / 128.0);
  for (const double base : {1e3, 1e6, 1e9, 1e12, 33554432.0, 4294967296.0, 17179869184.0}) {
    for (int i = 0; i < 256; i++) {
      comparison.add(base + i / 128.0);
      comparison.add(base - i / 128.0);
    }
  }
  for (int i = -2000; i < 2000; i++) {
    for (const double unit : {1e-6, 5e-7, 1e-7}) {
      const double number = i * unit;
      comparison.add(number);
      comparison.add(std::nextafter(number, 1e9));
      comparison.add(std::nextafter(number, -1e9));
    }
  }
}

TEST(WRITE_NUMBER, WritesFloatsNearPowersAsTheStandardFormatDoes) {
  NUMBER_COMPARISON comparison(SBD_PARA_VALUE::VT_FLOAT);
  for (int exponent = -20; exponent <= 308; exponent++) {
    const double power = std::pow(10.0, exponent);
    for (const double number : {power, std::nextafter(power, 0),
                                std::nextafter(power, std::numeric_limits<double>::infinity()),
                                power - 0.0000005, power - 0.000001, power * 9.9999995}) {
      comparison.add(number);
      comparison.add(-number);
    }
  }
  for (int exponent = -1074; exponent < 1024; exponent++) {
    const double power = std::ldexp(1, exponent);
    for (const double number : {power, std::nextafter(power, 0),
                                -std::nextafter(power, std::numeric_limits<double>::infinity())}) {
      comparison.add(number);
    }
  }
}

TEST(WRITE_NUMBER, WritesRandomFloatsAsTheStandardFormatDoes) {
  std::mt19937_64 random(1);
  NUMBER_COMPARISON comparison(SBD_PARA_VALUE::VT_FLOAT);
  const auto fraction = [&random] { return static_cast<double>(random() >> 11) * 0x1p-53; };
  for (std::size_t i = scaled(60000); i > 0; i--) {
    const std::uint64_t bits = random();
    double number = 0;
    std::memcpy(&number, &bits, sizeof number);
    if (i % 8 == 0) comparison.add(number);  // Mostly hundreds of digits.
    comparison.add(fraction());
    comparison.add((fraction() - 0.5) * std::pow(10.0, static_cast<double>(random() % 25)));
    comparison.add(static_cast<double>(random() % 1000000000) / 1e6);
    comparison.add(static_cast<double>(random() % 2000000000) / 2e6);
    comparison.add(static_cast<double>(random() >> random() % 64));
    // A sum of an integer and few binary digits.
    const double places = std::ldexp(1, static_cast<int>(random() % 24));
    comparison.add(static_cast<double>(random() % 100000) +
                   std::floor(fraction() * places) / places);
  }
}

TEST(WRITE_NUMBER, WritesRandomIntegersAsTheStandardFormatsDo) {
  std::mt19937_64 random(2);
  for (const auto type : {SBD_PARA_VALUE::VT_UDECIMAL, SBD_PARA_VALUE::VT_OCTAL,
                          SBD_PARA_VALUE::VT_HEXAL, SBD_PARA_VALUE::VT_BINARY}) {
    NUMBER_COMPARISON comparison(type);
    for (unsigned bit = 0; bit < 63; bit++) {
      const std::uint64_t power = std::uint64_t{1} << bit;
      comparison.add(static_cast<double>(power));
      comparison.add(static_cast<double>(power - 1));
      comparison.add(static_cast<double>(power + 1));
    }
    std::uint64_t power = 1;
    for (int i = 0; i < 18; i++, power *= 10) {
      comparison.add(static_cast<double>(power));
      comparison.add(static_cast<double>(power - 1));
    }
    for (std::size_t i = scaled(20000); i > 0; i--) {
      comparison.add(static_cast<double>(static_cast<std::uint32_t>(random()) >> random() % 32));
      comparison.add(static_cast<double>(random() >> (1 + random() % 63)));
      comparison.add(static_cast<double>(random() >> 16) / 65536.0);
    }
  }
}

TEST(WRITE_NUMBER, DoesNotLookAtTheLocale) {
  const char* found = nullptr;
  for (const char* const name : {"de_DE.UTF-8", "fr_FR.UTF-8", "ru_RU.UTF-8", "pt_BR.UTF-8",
                                 "de_DE.utf8", "de_DE", "fr_FR.utf8"}) {
    if ((found = std::setlocale(LC_ALL, name)) != nullptr) break;
  }
  if (found == nullptr) GTEST_SKIP() << "no locale with a decimal comma";
  const std::string with_comma = formatted("%f", 1234.5);
  LOOSE_RECORDS records;
  const std::string small = written(*records.number(1234.5, SBD_PARA_VALUE::VT_FLOAT));
  const std::string large = written(*records.number(-1e25, SBD_PARA_VALUE::VT_FLOAT));
  const std::string integer = written(*records.number(1234567, SBD_PARA_VALUE::VT_UDECIMAL));
  const auto document = document_of("device d { x = 1.5; }");
  const bool is_set = document->set_value("d", "x", 2.25, SBD_PARA_VALUE::QU_MHZ);
  const std::string whole = written(*document);
  std::setlocale(LC_ALL, "C");
  EXPECT_EQ(with_comma, "1234,500000");
  EXPECT_EQ(small, "1234.500000");
  EXPECT_EQ(large, "-10000000000000000905969664.000000");
  EXPECT_EQ(integer, "1234567");
  EXPECT_TRUE(is_set);
  EXPECT_EQ(whole, "device d\n{\n    x = 2.250000MHz; \n}\n\n");
}

// ---- Statements, comments, blocks --------------------------------------------------------------

TEST(WRITE_NODE, WritesNothingForNoNode) {
  EXPECT_EQ(written(nullptr, 0), "");
  EXPECT_EQ(written(nullptr, 7), "");
}

TEST(WRITE_NODE, EndsAssignmentsWithASemicolonAndABlank) {
  LOOSE_RECORDS records;
  SBD_NODE* const node = records.assignment("clock", records.five());
  EXPECT_EQ(written(node, 0), "clock = 5; \n");
  EXPECT_EQ(written(node, 2), "        clock = 5; \n");
}

TEST(WRITE_NODE, WritesATabBeforeATailCommentAndNoLineEndOfItsOwn) {
  LOOSE_RECORDS records;
  SBD_NODE* const node = records.assignment("a", records.five());
  node->statement->comment = records.text("# five\n");
  EXPECT_EQ(written(node, 1), "    a = 5; \t# five\n");
  node->statement->comment = records.text("# five\r\n");
  EXPECT_EQ(written(node, 0), "a = 5; \t# five\r\n");
  node->statement->comment = records.text("# %s%n");
  EXPECT_EQ(written(node, 0), "a = 5; \t# %s%n");
  node->statement->comment = records.text("");
  EXPECT_EQ(written(node, 0), "a = 5; \t");

  SBD_NODE* const link = records.references("r", {"d.x"});
  link->statement->comment = records.text("# link\n");
  EXPECT_EQ(written(link, 0), "r < d.x >;\t# link\n");
}

TEST(WRITE_NODE, WritesAttributesBehindTheValue) {
  LOOSE_RECORDS records;
  SBD_NODE* const node = records.assignment("a", records.five());
  node->statement->attributes = records.attribute("k", nullptr);
  EXPECT_EQ(written(node, 0), "a = 5 [k]; \n");
  node->statement->attributes = records.attribute("k", "x.y");
  EXPECT_EQ(written(node, 0), "a = 5 [k x.y]; \n");
  node->statement->attributes =
      records.attribute("k", "x.y", records.attribute("l", nullptr, records.attribute("m", ".z")));
  EXPECT_EQ(written(node, 0), "a = 5 [k x.y,l,m .z]; \n");
  node->statement->comment = records.text("# c\n");
  EXPECT_EQ(written(node, 1), "    a = 5 [k x.y,l,m .z]; \t# c\n");
  node->statement->attributes = records.attribute("k", "");
  EXPECT_EQ(written(node, 0), "a = 5 [k ]; \t# c\n");
}

TEST(WRITE_NODE, EndsReferencesWithoutABlank) {
  LOOSE_RECORDS records;
  EXPECT_EQ(written(records.references("r", {"d.x"}), 0), "r < d.x >;\n");
  EXPECT_EQ(written(records.references("r[0]", {"d.x", ".y", "D"}), 1),
            "    r[0] < d.x, .y, D >;\n");
  EXPECT_EQ(written(records.references("r", {}), 0), "r <  >;\n");
}

TEST(WRITE_NODE, WritesCommentsWithTheirOwnLineEnd) {
  LOOSE_RECORDS records;
  EXPECT_EQ(written(records.comment("# a\n"), 0), "# a\n");
  EXPECT_EQ(written(records.comment("# a\r\n"), 2), "        # a\r\n");
  EXPECT_EQ(written(records.comment("# no end"), 0), "# no end");
  EXPECT_EQ(written(records.comment("%d%s\n"), 1), "    %d%s\n");
  EXPECT_EQ(written(records.comment(""), 1), "    ");
}

TEST(WRITE_NODE, WritesABlockWithoutMembers) {
  LOOSE_RECORDS records;
  EXPECT_EQ(written(records.block("device", "d"), 0), "device d\n{\n}\n\n");
  EXPECT_EQ(written(records.block("MODULE", "M[1]"), 1), "    MODULE M[1]\n    {\n    }\n\n");
}

TEST(WRITE_NODE, WritesTheLayoutOfAWholeDocument) {
  const auto document = document_of(
      "# first\n"
      "device  d{ # inside\n"
      "size=100; speed=33MHz[unit a.b,fast];# tail\n"
      "link<d.size,.m.x,d>;\n"
      "Module m{x=0x40K;}}\n"
      "device e { list = {1,{010,0b11},\"s\"}; on=TRUE; word=abc; half=-.5; }\n"
      "# last\n");
  EXPECT_EQ(written(*document),
            "# first\n"
            "device d\n"
            "{\n"
            "    # inside\n"
            "    size = 100; \n"
            "    speed = 33MHz [unit a.b,fast]; \t# tail\n"
            "    link < d.size, .m.x, d >;\n"
            "    Module m\n"
            "    {\n"
            "        x = 0x40K; \n"
            "    }\n"
            "\n"
            "}\n"
            "\n"
            "device e\n"
            "{\n"
            "    list = {1,{010,0b11},\"s\"}; \n"
            "    on = true; \n"
            "    word = abc; \n"
            "    half = -0.500000; \n"
            "}\n"
            "\n"
            "# last\n");
}

TEST(WRITE_NODE, WritesTheSiblingsBehindANodeButNotThoseBeforeIt) {
  LOOSE_RECORDS records;
  SBD_NODE* const second = records.comment("# 2\n");
  LOOSE_RECORDS::chain({records.comment("# 1\n"), second, records.comment("# 3\n")});
  EXPECT_EQ(written(second, 0), "# 2\n# 3\n");
}

TEST(WRITE_NODE, AppendsToTheStreamInOrder) {
  LOOSE_RECORDS records;
  const SBD_FILE_PARSER document;
  char buffer[256] = {};
  std::FILE* const stream = fmemopen(buffer, sizeof buffer, "w");
  ASSERT_NE(stream, nullptr);
  std::fputs("before ", stream);
  EXPECT_TRUE(document.write(stream, records.assignment("a", records.five()), 0));
  std::fputs("between ", stream);
  document.write(stream, records.five());
  std::fputs(" behind", stream);
  std::fclose(stream);
  EXPECT_STREQ(buffer, "before a = 5; \nbetween 5 behind");
}

TEST(WRITE_NODE, ChangesNothing) {
  const auto document = document_of("device d { a = {1,2} [k]; r < d.a >; module m { x = 1; } }");
  const std::string before = state_of(*document);
  EXPECT_EQ(state_of(*document), before);
}

std::string nested_text(std::size_t depth) {
  std::string text;
  for (std::size_t level = 0; level < depth; level++) {
    const std::string prefix(4 * level, ' ');
    text += prefix + (level == 0 ? "device" : "bus") + " b" + std::to_string(level) + "\n";
    text += prefix + "{\n";
  }
  text += std::string(4 * depth, ' ') + "x = 1; \n";
  for (std::size_t level = depth; level > 0; level--) {
    const std::string prefix(4 * (level - 1), ' ');
    text += prefix + "}\n\n";
  }
  return text;
}

TEST(WRITE_NODE, IndentsAtEveryDepth) {
  for (const std::size_t depth : {1U, 2U, 16U, 254U, 255U, 256U, 257U, 300U, 511U, 2000U}) {
    std::string source;
    for (std::size_t level = 0; level < depth; level++) {
      source += level == 0 ? "device b0 {" : "bus b" + std::to_string(level) + " {";
    }
    source += "x = 1;" + std::string(depth, '}');
    const auto document = document_of(source);
    EXPECT_TRUE(written(*document) == nested_text(depth)) << "depth " << depth;
  }
}

TEST(WRITE_NODE, IndentsByTheGivenLevel) {
  LOOSE_RECORDS records;
  SBD_NODE* const node = records.block("bus", "b", records.assignment("x", records.five()));
  for (const unsigned long level : {255UL, 256UL, 1000UL, 100000UL}) {
    const std::string prefix(4 * level, ' ');
    EXPECT_TRUE(written(node, level) ==
                prefix + "bus b\n" + prefix + "{\n" + prefix + "    x = 5; \n" + prefix + "}\n\n")
        << level;
  }
}

// ---- Broken trees ------------------------------------------------------------------------------

void expect_internal_error(const MESSAGE_RECORDER& recorder, const char* condition) {
  ASSERT_EQ(recorder.conditions(), TEXTS{condition});
  const RECORDED_ERROR& error = recorder.internal_errors().front();
  EXPECT_EQ(error.module, "SBD");
  EXPECT_EQ(error.source, "sbd_file_parser");
  EXPECT_GT(error.line, 0);
  EXPECT_TRUE(recorder.messages().empty());
}

// What is written for `node` between two comment lines.
std::string written_between(LOOSE_RECORDS& records, SBD_NODE* node) {
  SBD_NODE* const first = records.comment("# before\n");
  LOOSE_RECORDS::chain({first, node, records.comment("# behind\n")});
  const std::string text = written(first, 1);
  const std::string before = "    # before\n";
  const std::string behind = "    # behind\n";
  EXPECT_EQ(text.substr(0, before.size()), before);
  if (text.size() < before.size() + behind.size() ||
      text.substr(text.size() - behind.size()) != behind) {
    ADD_FAILURE() << "the sibling behind is not written: " << text;
    return text;
  }
  return text.substr(before.size(), text.size() - before.size() - behind.size());
}

constexpr char k_broken_block[] = "bptr != NULL && bptr->type != NULL && bptr->name != NULL";

TEST(WRITE_BROKEN, ReportsABlockWithoutTypeOrName) {
  for (const bool has_type : {false, true}) {
    LOOSE_RECORDS records;
    SBD_NODE* const member = records.assignment("x", records.five());
    SBD_NODE* const node = records.block(has_type ? "bus" : nullptr, "b", member);
    if (has_type) node->block->name = nullptr;
    MESSAGE_RECORDER recorder;
    const std::string text = written_between(records, node);
    expect_internal_error(recorder, k_broken_block);
    // The members are part of the rest of the tree.
    EXPECT_NE(text.find("        x = 5; \n"), std::string::npos) << text;
  }
}

TEST(WRITE_BROKEN, ReportsABlockNodeWithoutBlock) {
  LOOSE_RECORDS records;
  SBD_NODE* const node = records.block("bus", "b");
  node->block = nullptr;
  MESSAGE_RECORDER recorder;
  written_between(records, node);
  expect_internal_error(recorder, k_broken_block);
}

TEST(WRITE_BROKEN, OutlivesNamesWithoutText) {
  LOOSE_RECORDS records;
  const MESSAGE_RECORDER recorder;  // Whether this is reported is left open.
  written_between(records, records.block("bus", nullptr));
  written_between(records, records.assignment(nullptr, records.five()));
  written_between(records, records.references(nullptr, {"d"}));
  SBD_NODE* const node = records.assignment("x", records.five());
  node->statement->name = nullptr;
  written_between(records, node);
  written_between(records, records.assignment("x", nullptr));
}

TEST(WRITE_BROKEN, ReportsACommentWithoutText) {
  LOOSE_RECORDS records;
  SBD_NODE* const node = records.comment(nullptr);
  MESSAGE_RECORDER recorder;
  EXPECT_EQ(written_between(records, node).find_first_not_of(" \n"), std::string::npos);
  expect_internal_error(recorder, "nptr->comment != NULL");
}

TEST(WRITE_BROKEN, ReportsAStatementWithoutBody) {
  LOOSE_RECORDS records;
  SBD_NODE* const node = records.assignment("x", nullptr);
  node->statement = nullptr;
  MESSAGE_RECORDER recorder;
  EXPECT_EQ(written_between(records, node).find_first_not_of(" \n"), std::string::npos);
  expect_internal_error(recorder, "sptr != NULL");
}

TEST(WRITE_BROKEN, ReportsAnUnknownStatementTypeAndWritesTheLineEnd) {
  LOOSE_RECORDS records;
  SBD_NODE* const node = records.assignment("x", records.five());
  node->statement->type = static_cast<SBD_STATEMENT::STATEMENT_TYPE>(2);
  MESSAGE_RECORDER recorder;
  EXPECT_EQ(written_between(records, node), "\n");
  expect_internal_error(recorder, "Invalid statement type");
  recorder.forget();
  node->statement->comment = records.text("# c\n");
  EXPECT_EQ(written_between(records, node), "\t# c\n");
  expect_internal_error(recorder, "Invalid statement type");
}

TEST(WRITE_BROKEN, ReportsAnUnknownNodeTypeAndGoesOn) {
  for (const unsigned type : {3U, 65535U}) {
    LOOSE_RECORDS records;
    SBD_NODE* const node = records.comment("# c\n");
    node->type = static_cast<SBD_NODE::NODE_TYPE>(type);
    MESSAGE_RECORDER recorder;
    EXPECT_EQ(written_between(records, node), "");
    expect_internal_error(recorder, "Invalid node type");
  }
}

TEST(WRITE_BROKEN, ReportsAFirstAttributeWithoutKey) {
  LOOSE_RECORDS records;
  SBD_NODE* const node = records.assignment("x", records.five());
  node->statement->attributes = records.attribute(nullptr, "v.w", records.attribute("l", nullptr));
  MESSAGE_RECORDER recorder;
  const std::string text = written_between(records, node);
  expect_internal_error(recorder, "aptr->attr_key != NULL");
  EXPECT_EQ(text.substr(0, 11), "    x = 5 [");
  EXPECT_EQ(text.substr(text.size() - 10), " v.w,l]; \n");
}

TEST(WRITE_BROKEN, DoesNotCheckLaterAttributes) {
  LOOSE_RECORDS records;
  SBD_NODE* const node = records.assignment("x", records.five());
  node->statement->attributes = records.attribute("k", nullptr, records.attribute(nullptr, "v.w"));
  MESSAGE_RECORDER recorder;
  const std::string text = written_between(records, node);
  EXPECT_TRUE(recorder.is_silent()) << testing::PrintToString(recorder.conditions());
  EXPECT_EQ(text.substr(0, 13), "    x = 5 [k,");
  EXPECT_EQ(text.substr(text.size() - 8), " v.w]; \n");
}

TEST(WRITE_BROKEN, WritesTheStatementAroundABrokenValue) {
  LOOSE_RECORDS records;
  SBD_NODE* const node =
      records.assignment("x", records.number(5, static_cast<SBD_PARA_VALUE::VALUE_TYPE>(8), 1));
  MESSAGE_RECORDER recorder;
  EXPECT_EQ(written_between(records, node), "    x = K; \n");
  expect_internal_error(recorder, "Trying to write unknown parameter value type");
  recorder.forget();
  node->statement->value = records.number(5, SBD_PARA_VALUE::VT_UDECIMAL, 6);
  EXPECT_EQ(written_between(records, node), "    x = 5; \n");
  expect_internal_error(recorder, "Trying to write value with unknown unit type");
}

TEST(WRITE_BROKEN, ReportsEveryFaultOfATree) {
  LOOSE_RECORDS records;
  SBD_NODE* const unknown = records.comment("# c\n");
  unknown->type = static_cast<SBD_NODE::NODE_TYPE>(7);
  SBD_NODE* const members = LOOSE_RECORDS::chain({records.comment(nullptr), unknown});
  SBD_NODE* const first =
      LOOSE_RECORDS::chain({records.block("device", "d", members), records.block(nullptr, "e"),
                            records.block("bus", "f")});
  MESSAGE_RECORDER recorder;
  const std::string text = written(first, 0);
  EXPECT_EQ(recorder.conditions(),
            (TEXTS{"nptr->comment != NULL", "Invalid node type", k_broken_block}));
  EXPECT_NE(text.find("bus f\n{\n}\n\n"), std::string::npos);
}

// ---- Files -------------------------------------------------------------------------------------

TEST(WRITE_FILE, WritesAnEmptyDocumentAsAnEmptyFile) {
  const TEMPORARY_DIRECTORY directory;
  const SBD_FILE_PARSER document;
  MESSAGE_RECORDER recorder;
  EXPECT_TRUE(document.write(directory.path_of("empty.sbd").c_str()));
  EXPECT_EQ(file_content(directory.path_of("empty.sbd")), "");
  EXPECT_TRUE(recorder.is_silent());
}

TEST(WRITE_FILE, ReplacesAnExistingFile) {
  const TEMPORARY_DIRECTORY directory;
  const std::string path = directory.write("old.sbd", std::string(100000, '#'));
  const auto document = document_of("device d { x = 1; }");
  EXPECT_TRUE(document->write(path.c_str()));
  EXPECT_EQ(file_content(path), "device d\n{\n    x = 1; \n}\n\n");
  SBD_FILE_PARSER().write(path.c_str());
  EXPECT_EQ(file_content(path), "");
}

TEST(WRITE_FILE, WritesTheFileThatWasRead) {
  const TEMPORARY_DIRECTORY directory;
  const std::string path = directory.write("own.sbd", "device d{x=1;}\n");
  SBD_FILE_PARSER document;
  ASSERT_TRUE(document.read(path.c_str()));
  EXPECT_TRUE(document.write(path.c_str()));
  EXPECT_EQ(file_content(path), "device d\n{\n    x = 1; \n}\n\n");
  EXPECT_TRUE(document.write(path.c_str()));
  EXPECT_STREQ(document.get_file_name(), path.c_str());
  EXPECT_EQ(written(document), file_content(path));
}

TEST(WRITE_FILE, WritesLargeDocumentsWhole) {
  std::string source = "device d {\n";
  std::string wanted = "device d\n{\n";
  for (int i = 0; i < 200000; i++) {
    const std::string name = "p" + std::to_string(i);
    source += name + "=" + std::to_string(i) + ";\n";
    wanted += "    " + name + " = " + std::to_string(i) + "; \n";
  }
  source += "s = \"" + std::string(1000000, 's') + "\"; }\n";
  wanted += "    s = \"" + std::string(1000000, 's') + "\"; \n}\n\n";
  const TEMPORARY_DIRECTORY directory;
  const auto document = document_of(source);
  EXPECT_TRUE(document->write(directory.path_of("large.sbd").c_str()));
  EXPECT_TRUE(file_content(directory.path_of("large.sbd")) == wanted);
  EXPECT_TRUE(written(*document) == wanted);
}

TEST(WRITE_FILE, RefusesWhatCanNotBeOpened) {
  const TEMPORARY_DIRECTORY directory;
  const auto document = document_of("device d { x = 1; }");
  const std::string before = state_of(*document);
  MESSAGE_RECORDER recorder;
  for (const std::string& path :
       {directory.path_of("no/such/file.sbd"), directory.path(), std::string()}) {
    EXPECT_FALSE(document->write(path.c_str()));
    EXPECT_TRUE(posted(recorder, k_file_error, path));
  }
  EXPECT_EQ(state_of(*document), before);
}

TEST(WRITE_FILE, DoesNotNoticeAFullDisc) {
  if (access("/dev/full", W_OK) != 0) GTEST_SKIP() << "no /dev/full";
  const auto document =
      document_of("device d { x = 1; s = \"" + std::string(100000, 's') + "\"; }");
  MESSAGE_RECORDER recorder;
  EXPECT_TRUE(document->write("/dev/full"));
  EXPECT_TRUE(recorder.is_silent());
}

TEST(WRITE_FILE, LeavesNoFileOpen) {
  const TEMPORARY_DIRECTORY directory;
  const auto document = document_of("device d { x = 1; }");
  const auto next_descriptor = [] {
    const int descriptor = dup(1);
    close(descriptor);
    return descriptor;
  };
  MESSAGE_RECORDER recorder;
  const int before = next_descriptor();
  EXPECT_TRUE(document->write(directory.path_of("a.sbd").c_str()));
  EXPECT_EQ(next_descriptor(), before);
  EXPECT_FALSE(document->write(directory.path_of("no/a.sbd").c_str()));
  EXPECT_EQ(next_descriptor(), before);
}

// Writes to standard output in a process of its own. The exit status tells what was found there.
enum STATUS { ALL_WELL = 0, NOT_WRITTEN = 20, NOT_CLOSED = 21 };

int write_to_standard_output(const SBD_FILE_PARSER& document, const std::string& path) {
  const pid_t child = fork();
  if (child == 0) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(file, STDOUT_FILENO);
    close(file);
    std::fputs("before\n", stdout);
    if (!document.write(static_cast<const char*>(nullptr))) _exit(NOT_WRITTEN);
    _exit(fcntl(STDOUT_FILENO, F_GETFD) == -1 ? ALL_WELL : NOT_CLOSED);
  }
  int status = -1;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(WRITE_FILE, WritesToStandardOutputAndClosesIt) {
  std::fflush(nullptr);
  const TEMPORARY_DIRECTORY directory;
  const std::string path = directory.path_of("out");
  EXPECT_EQ(write_to_standard_output(*document_of("device d { x = 1; }"), path), ALL_WELL);
  EXPECT_EQ(file_content(path), "before\ndevice d\n{\n    x = 1; \n}\n\n");
  EXPECT_EQ(write_to_standard_output(SBD_FILE_PARSER(), path), ALL_WELL);
  EXPECT_EQ(file_content(path), "before\n");
}

// ---- Documents made by hand --------------------------------------------------------------------

TEST(WRITE_HAND_MADE, WritesWhatACallerAdded) {
  SBD_FILE_PARSER document;
  enter(document, make_comment("# made\n"), nullptr);
  SBD_NODE* const device = enter(document, make_block("device", "d"), nullptr);
  enter(document,
        make_assignment("a", make_list({make_number(1), make_bool(true)}),
                        make_attributes({{"k", "v.w"}, {"l", nullptr}}), "# tail\n"),
        device);
  SBD_NODE* const bus = enter(document, make_block("Bus", "b"), device);
  enter(document, make_reference("r", {"d.a", ".b"}), bus);
  enter(document, make_comment("# inside\n"), bus);
  EXPECT_EQ(written(document),
            "# made\n"
            "device d\n"
            "{\n"
            "    a = {1,true} [k v.w,l]; \t# tail\n"
            "    Bus b\n"
            "    {\n"
            "        r < d.a, .b >;\n"
            "        # inside\n"
            "    }\n"
            "\n"
            "}\n"
            "\n");
}

}  // namespace
