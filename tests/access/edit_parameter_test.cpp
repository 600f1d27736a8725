// Setting and deleting parameters, their values and their attributes.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "sbd/sbd_file_parser.h"
#include "tests/access/access_support.h"
#include "tests/access/second_model.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/tree_builder.h"

namespace {

using TEXTS = std::vector<std::string>;

constexpr auto k_no_unit = SBD_PARA_VALUE::QU_NONE;

constexpr char k_null_names[] = "Cannot set parameter value. NULL block/parameter name.";
constexpr char k_illegal_name[] = "Cannot set parameter value. Illegal parameter name.";
constexpr char k_no_block[] = "Block does not exit.";
constexpr char k_other_statement[] =
    "The parameter name has already been used in other type of statement.";
constexpr char k_is_block[] = "The parameter name has already been used as a block name.";
constexpr char k_other_value[] = "Incompatible value type.";
constexpr char k_bad_base[] =
    "Specified base for the unsigned integer is not supported. Use default base (10)";
constexpr char k_bad_reference[] = "Invalid input reference value.";
constexpr char k_in_use[] = "Parameter is being used (referenced) by other block/parameter";

std::string set_text(const std::string& block, const std::string& parameter,
                     const std::string& reason) {
  return "Cannot set value to the parameter: '" + parameter + "' in the block: '" + block + "'. " +
         reason;
}

std::string delete_text(const std::string& block, const std::string& parameter,
                        const std::string& reason) {
  return "Cannot delete parameter: '" + parameter + "' from block: '" + block + "'. " + reason;
}

// A parameter of each kind, with attribute and comment, and a reference, with a comment.
constexpr char k_source[] = R"(# head
device d {
  dec = 5 [k .dec]; # dec
  oct = 017 [k .oct]; # oct
  hex = 0x1F [k .hex]; # hex
  bin = 0b101 [k .bin]; # bin
  flt = 1.5MHz [k .flt]; # flt
  yes = true [k .yes]; # yes
  str = "text" [k .str]; # str
  lst = {1, {2K, abc}} [k .lst]; # lst
  ref < d.dec, .m.x, d.m >; # ref
  module m {
    x = 1;
    bus b { y = 2; }
  }
}
)";

// The line of one statement of the written document, without indentation and line end.
std::string line_of(const SBD_FILE_PARSER& document, const std::string& name) {
  const std::string text = written(document);
  for (const char* const follower : {" = ", " < "}) {
    const std::size_t place = text.find(" " + name + follower);
    if (place != std::string::npos) {
      return text.substr(place + 1, text.find('\n', place) - place - 1);
    }
  }
  return "";
}

// All the setting operations, with values that suit a new parameter of k_source.
struct SETTER {
  const char* name;
  std::function<bool(SBD_FILE_PARSER&, const char*, const char*)> set;
  const char* line;      // What a new parameter "n" is written as.
  unsigned acceptance;   // Which kinds of value give way, one bit for each kind.
  const char* new_text;  // What stands where the value was.
};

constexpr unsigned k_numbers_and_lists = 0x9f;

const std::vector<SETTER>& value_setters() {
  static const std::vector<SETTER> k_setters = {
      {"unsigned",
       [](SBD_FILE_PARSER& document, const char* block, const char* parameter) {
         return document.set_value(block, parameter, 77UL, 16, SBD_PARA_VALUE::QU_KB);
       },
       "n = 0x4DK; ", k_numbers_and_lists, "0x4DK"},
      {"double",
       [](SBD_FILE_PARSER& document, const char* block, const char* parameter) {
         return document.set_value(block, parameter, 2.5, SBD_PARA_VALUE::QU_HZ);
       },
       "n = 2.500000Hz; ", k_numbers_and_lists, "2.500000Hz"},
      {"flag",
       [](SBD_FILE_PARSER& document, const char* block, const char* parameter) {
         return document.set_value(block, parameter, 0);
       },
       "n = false; ", 0x20, "false"},
      {"text",
       [](SBD_FILE_PARSER& document, const char* block, const char* parameter) {
         return document.set_value(block, parameter, SBD_STRING("\"new\""));
       },
       "n = \"new\"; ", 0x40, "\"new\""},
      {"any number",
       [](SBD_FILE_PARSER& document, const char* block, const char* parameter) {
         const std::unique_ptr<SBD_PARA_VALUE> value(
             make_number(9, SBD_PARA_VALUE::QU_GB, SBD_PARA_VALUE::VT_OCTAL));
         return document.set_para_value(block, parameter, *value);
       },
       "n = 011G; ", k_numbers_and_lists, "011G"},
      {"any flag",
       [](SBD_FILE_PARSER& document, const char* block, const char* parameter) {
         const std::unique_ptr<SBD_PARA_VALUE> value(make_bool(false));
         return document.set_para_value(block, parameter, *value);
       },
       "n = false; ", 0x20, "false"},
      {"any text",
       [](SBD_FILE_PARSER& document, const char* block, const char* parameter) {
         SBD_PARA_VALUE* const value = make_string("word");
         const bool is_set = document.set_para_value(block, parameter, *value);
         document.free_para_val(value);
         return is_set;
       },
       "n = word; ", 0x40, "word"},
      {"any list",
       [](SBD_FILE_PARSER& document, const char* block, const char* parameter) {
         SBD_PARA_VALUE* const value =
             make_list({make_number(3), make_list({make_string("s"), make_bool(true)})});
         const bool is_set = document.set_para_value(block, parameter, *value);
         document.free_para_val(value);
         return is_set;
       },
       "n = {3,{s,true}}; ", k_numbers_and_lists, "{3,{s,true}}"}};
  return k_setters;
}

const SETTER& reference_setter() {
  static const SETTER k_setter = {
      "references",
      [](SBD_FILE_PARSER& document, const char* block, const char* parameter) {
        return document.set_value(block, parameter, string_list({"D.HEX", "d.m"}));
      },
      "n < D.HEX, d.m >;", 0, ""};
  return k_setter;
}

std::vector<SETTER> all_setters() {
  std::vector<SETTER> setters = value_setters();
  setters.push_back(reference_setter());
  return setters;
}

class EDIT_PARAMETER : public testing::Test {
 protected:
  std::unique_ptr<SBD_FILE_PARSER> m_document = document_of(k_source);
  MESSAGE_RECORDER m_recorder;

  void refuse(const std::string& text, const std::function<bool(SBD_FILE_PARSER&)>& edit,
              int number = k_error) {
    expect_refusal(*m_document, m_recorder, number, text, [&] { return edit(*m_document); });
  }

  std::string line(const std::string& name) const { return line_of(*m_document, name); }
};

using SET_CHECK = EDIT_PARAMETER;
using SET_VALUE = EDIT_PARAMETER;
using SET_REFERENCES = EDIT_PARAMETER;
using ATTRIBUTES = EDIT_PARAMETER;
using DELETE_PARAMETER = EDIT_PARAMETER;

// ---- The common check --------------------------------------------------------------------------

TEST_F(SET_CHECK, RefusesNullNames) {
  for (const SETTER& setter : all_setters()) {
    SCOPED_TRACE(setter.name);
    refuse(k_null_names, [&](auto& document) { return setter.set(document, nullptr, "n"); });
    refuse(k_null_names, [&](auto& document) { return setter.set(document, "d", nullptr); });
    refuse(k_null_names, [&](auto& document) { return setter.set(document, nullptr, nullptr); });
    refuse(k_null_names, [&](auto& document) { return setter.set(document, nullptr, "9x"); });
  }
}

TEST_F(SET_CHECK, RefusesIllegalNamesBeforeItLooksAtTheBlock) {
  for (const SETTER& setter : all_setters()) {
    SCOPED_TRACE(setter.name);
    for (const char* const name : {"", "a.b", "9x", "_x", "a-b", "a b", "r[0", "r]", "r[a]",
                                   "r[0]x", "r[0]_", "r[0]1", "r[[0]]", "[0]", "\xc3\xa4", "a\n"}) {
      for (const char* const block : {"d", "no", "", "d.dec"}) {
        refuse(k_illegal_name, [&](auto& document) { return setter.set(document, block, name); });
      }
    }
  }
}

TEST_F(SET_CHECK, TakesAllLegalNames) {
  for (const char* const name :
       {"a", "Z", "a_b", "a1", "r[0]", "r[12]", "r[]", "r[1][2]", "true", "a__", "x[0][][99]"}) {
    EXPECT_TRUE(m_document->set_value("d", name, 1UL, 10, k_no_unit)) << name;
    EXPECT_EQ(line(name), std::string(name) + " = 1; ");
  }
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(SET_CHECK, RefusesWhatIsNoBlock) {
  for (const SETTER& setter : all_setters()) {
    SCOPED_TRACE(setter.name);
    for (const char* const block :
         {"no", "d.no", "no.d", "", ".", ".d", "d.", "d..m", "m", "d.dec", "d.ref", "d.dec.x"}) {
      refuse(set_text(block, "n", k_no_block),
             [&](auto& document) { return setter.set(document, block, "n"); });
    }
  }
}

TEST_F(SET_CHECK, RefusesNamesOfOtherStatements) {
  for (const SETTER& setter : value_setters()) {
    refuse(set_text("d", "REF", k_other_statement),
           [&](auto& document) { return setter.set(document, "d", "REF"); });
  }
  refuse(set_text("D", "dec", k_other_statement),
         [&](auto& document) { return reference_setter().set(document, "D", "dec"); });
}

TEST_F(SET_CHECK, RefusesNamesOfBlocks) {
  for (const SETTER& setter : all_setters()) {
    SCOPED_TRACE(setter.name);
    refuse(set_text("d", "M", k_is_block),
           [&](auto& document) { return setter.set(document, "d", "M"); });
    refuse(set_text("d.m", "b", k_is_block),
           [&](auto& document) { return setter.set(document, "d.m", "b"); });
  }
}

TEST_F(SET_CHECK, LooksAtTheStatementBeforeTheReferences) {
  refuse(set_text("d", "dec", k_other_statement),
         [](auto& document) { return document.set_value("d", "dec", string_list({"no.such"})); });
}

TEST_F(SET_CHECK, PostsOnlyTheRefusalWhenTheBaseIsUnsupportedToo) {
  const auto set = [](const char* block, const char* parameter) {
    return [=](SBD_FILE_PARSER& document) {
      return document.set_value(block, parameter, 1UL, 3, k_no_unit);
    };
  };
  refuse(k_null_names, set(nullptr, "n"));
  refuse(k_illegal_name, set("d", "9x"));
  refuse(set_text("no", "n", k_no_block), set("no", "n"));
  refuse(set_text("d", "m", k_is_block), set("d", "m"));
  refuse(set_text("d", "ref", k_other_statement), set("d", "ref"));
  refuse(set_text("d", "str", k_other_value), set("d", "str"));
}

TEST_F(SET_CHECK, KeepsPercentSignsAndLongNames) {
  const std::string name(5000, 'n');
  refuse(set_text("%1!s!%s", name, k_no_block),
         [&](auto& document) { return document.set_value("%1!s!%s", name.c_str(), 1); });
}

TEST_F(SET_CHECK, HandsOutBothNodes) {
  SBD_NODE* block = nullptr;
  SBD_NODE* parameter = nullptr;
  const SBD_FILE_PARSER& document = *m_document;
  const auto check = [&](const char* block_name, const char* name,
                         SBD_STATEMENT::STATEMENT_TYPE type) {
    return document.set_value_check(block_name, name, type, &block, &parameter);
  };
  EXPECT_TRUE(check("D.m", "X", SBD_STATEMENT::ST_ASSIGNMENT));
  EXPECT_EQ(block, document.get_ref_object("d.m", nullptr));
  EXPECT_EQ(parameter, document.get_ref_object("d.m.x", nullptr));
  EXPECT_TRUE(check("d", "ref", SBD_STATEMENT::ST_REFERENCE));
  EXPECT_EQ(block, document.get_ref_object("d", nullptr));
  EXPECT_EQ(parameter, document.get_ref_object("d.ref", nullptr));
  EXPECT_TRUE(check("d.m", "new", SBD_STATEMENT::ST_REFERENCE));
  EXPECT_EQ(block, document.get_ref_object("d.m", nullptr));
  EXPECT_EQ(parameter, nullptr);
  EXPECT_TRUE(m_recorder.is_silent());
  refuse(set_text("d", "m", k_is_block),
         [&](auto&) { return check("d", "m", SBD_STATEMENT::ST_ASSIGNMENT); });
  refuse(set_text("d", "dec", k_other_statement),
         [&](auto&) { return check("d", "dec", SBD_STATEMENT::ST_REFERENCE); });
}

TEST_F(SET_CHECK, ReportsMissingOutputs) {
  SBD_NODE* node = nullptr;
  const std::string before = state_of(*m_document);
  const std::pair<SBD_NODE**, SBD_NODE**> cases[] = {
      {nullptr, &node}, {&node, nullptr}, {nullptr, nullptr}};
  for (const auto& [block, parameter] : cases) {
    m_recorder.forget();
    EXPECT_FALSE(
        m_document->set_value_check("d", "dec", SBD_STATEMENT::ST_ASSIGNMENT, block, parameter));
    EXPECT_EQ(m_recorder.conditions(), TEXTS{"block_node != NULL && para_node != NULL"});
    EXPECT_TRUE(m_recorder.messages().empty());
    EXPECT_EQ(m_recorder.internal_errors().front().source, "sbd_file_parser");
  }
  EXPECT_EQ(state_of(*m_document), before);
}

// ---- Values ------------------------------------------------------------------------------------

constexpr std::pair<const char*, const char*> k_kinds[] = {
    {"dec", "5"},           {"oct", "017"},  {"hex", "0x1F"},     {"bin", "0b101"},
    {"flt", "1.500000MHz"}, {"yes", "true"}, {"str", "\"text\""}, {"lst", "{1,{2K,abc}}"}};

TEST_F(SET_VALUE, ReplacesOnlyKindsThatGiveWay) {
  for (const SETTER& setter : value_setters()) {
    for (unsigned kind = 0; kind < 8; kind++) {
      const auto& [name, old_text] = k_kinds[kind];
      SCOPED_TRACE(std::string(setter.name) + " over " + name);
      m_document = document_of(k_source);
      const auto line_with = [&name = name](const std::string& text) {
        return std::string(name) + " = " + text + " [k ." + name + "]; \t# " + name;
      };
      ASSERT_EQ(line(name), line_with(old_text));
      if ((setter.acceptance >> kind & 1) == 0) {
        refuse(set_text("d", name, k_other_value),
               [&, name = name](auto& document) { return setter.set(document, "d", name); });
        continue;
      }
      // All but the one line stays as it is, attribute and comment included.
      std::string wanted = state_of(*m_document);
      wanted.replace(wanted.find(line_with(old_text)), line_with(old_text).size(),
                     line_with(setter.new_text));
      m_recorder.forget();
      EXPECT_TRUE(setter.set(*m_document, "D", name));
      EXPECT_TRUE(m_recorder.is_silent());
      EXPECT_EQ(state_of(*m_document), wanted);
    }
  }
}

TEST_F(SET_VALUE, AddsNewParametersAtTheEndOfTheBlock) {
  for (const SETTER& setter : all_setters()) {
    for (const char* const block : {"d", "D.M", "d.m.b"}) {
      SCOPED_TRACE(setter.name);
      m_document = document_of(k_source);
      const std::size_t count = count_symbols(*m_document);
      EXPECT_TRUE(setter.set(*m_document, block, "n"));
      EXPECT_EQ(line("n"), setter.line);
      SBD_NODE* const block_node = m_document->get_ref_object(block, nullptr);
      SBD_NODE* const node = members_of(*m_document, block_node).back();
      EXPECT_EQ(node, m_document->get_ref_object("N", block_node));
      EXPECT_EQ(node->type, SBD_NODE::NT_STATEMENT);
      EXPECT_EQ(node->statement->attributes, nullptr);
      EXPECT_EQ(node->statement->comment, nullptr);
      EXPECT_EQ(count_symbols(*m_document), count + 1);
      EXPECT_TRUE(m_recorder.is_silent());
    }
  }
}

TEST_F(SET_VALUE, EntersTheNewNameAsItIsAtTheHeadOfItsBucket) {
  ASSERT_TRUE(m_document->set_value("d", "Mixed_Case", 1));
  const std::vector<SBD_SYMBOL*> chain = chain_of(*m_document, "mixed_case");
  ASSERT_FALSE(chain.empty());
  const SBD_SYMBOL& symbol = *chain.front();
  SBD_NODE* const device = m_document->get_ref_object("d", nullptr);
  EXPECT_STREQ(symbol.name, "Mixed_Case");
  EXPECT_EQ(symbol.line, 0U);
  EXPECT_EQ(symbol.type, SBD_SYMBOL::SYM_PARAMETER);
  EXPECT_EQ(symbol.parent, device);
  EXPECT_EQ(symbol.node, m_document->get_ref_object("d.mixed_case", nullptr));
  EXPECT_EQ(symbol.node->statement->name, &symbol);

  ASSERT_TRUE(m_document->set_value("d.m", "MIXED_CASE", string_list({"d"})));
  EXPECT_EQ(chain_of(*m_document, "mixed_case").size(), chain.size() + 1);
  EXPECT_EQ(chain_of(*m_document, "mixed_case").front()->parent,
            m_document->get_ref_object("d.m", nullptr));
  EXPECT_EQ(chain_of(*m_document, "mixed_case")[1], &symbol);

  // Setting again, in any case, makes no new symbol.
  ASSERT_TRUE(m_document->set_value("d", "mixed_CASE", 0));
  EXPECT_EQ(chain_of(*m_document, "mixed_case").size(), chain.size() + 1);
  EXPECT_EQ(first_of_chain(*m_document, "mixed_case"), "MIXED_CASE");
  EXPECT_EQ(line("Mixed_Case"), "Mixed_Case = false; ");
}

TEST_F(SET_VALUE, ChoosesTheKindByTheBase) {
  const std::pair<unsigned char, const char*> cases[] = {
      {2, "0b1100100"}, {8, "0144"}, {10, "100"}, {16, "0x64"}};
  for (const auto& [base, text] : cases) {
    EXPECT_TRUE(m_document->set_value("d", "dec", 100UL, base, k_no_unit));
    EXPECT_EQ(line("dec"), "dec = " + std::string(text) + " [k .dec]; \t# dec");
  }
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(SET_VALUE, TakesTenForAnyOtherBaseWithAWarning) {
  for (unsigned base = 0; base < 256; base++) {
    if (base == 2 || base == 8 || base == 10 || base == 16) continue;
    const auto narrow = static_cast<unsigned char>(base);
    EXPECT_TRUE(m_document->set_value("d", "hex", base, narrow, SBD_PARA_VALUE::QU_MB));
    EXPECT_TRUE(posted(m_recorder, k_warning, k_bad_base));
    EXPECT_EQ(line("hex"), "hex = " + std::to_string(base) + "M [k .hex]; \t# hex");
  }
  EXPECT_TRUE(m_document->set_value("d", "n", 7UL, 3, k_no_unit));
  EXPECT_TRUE(posted(m_recorder, k_warning, k_bad_base));
  EXPECT_EQ(line("n"), "n = 7; ");
}

TEST_F(SET_VALUE, KeepsTheDoubleOfLargeIntegers) {
  constexpr std::uint64_t k_integers[] = {4294967295, 4294967296, 4294967301, 0xfffffffffffff800};
  for (const std::uint64_t wide : k_integers) {
    const auto value = static_cast<unsigned long>(wide);
    if (value != wide) continue;  // Where such integers have 32 bits.
    ASSERT_TRUE(m_document->set_value("d", "dec", value, 10, k_no_unit));
    EXPECT_EQ(m_document->get_para_value("d", "dec")->number, static_cast<double>(value));
    EXPECT_EQ(line("dec"),
              "dec = " + std::to_string(static_cast<std::uint32_t>(value)) + " [k .dec]; \t# dec");
  }
  // As a double 2^64, or the largest of 32 bits.
  ASSERT_TRUE(m_document->set_value("d", "dec", ~0UL, 16, k_no_unit));
  const std::string digits = sizeof(unsigned long) > 4 ? "0x0" : "0xFFFFFFFF";
  EXPECT_EQ(line("dec"), "dec = " + digits + " [k .dec]; \t# dec");
}

TEST_F(SET_VALUE, KeepsEveryDouble) {
  for (const double value :
       {0.0, -0.0, 0.1, -5.0, 1e300, 5e-324, std::numeric_limits<double>::infinity()}) {
    ASSERT_TRUE(m_document->set_value("d", "flt", value, SBD_PARA_VALUE::QU_GB));
    EXPECT_EQ(m_document->get_para_value("d", "flt")->number, value);
    EXPECT_EQ(m_document->get_para_value("d", "flt")->type, SBD_PARA_VALUE::VT_FLOAT);
    EXPECT_EQ(m_document->get_para_value("d", "flt")->unit, SBD_PARA_VALUE::QU_GB);
  }
}

TEST_F(SET_VALUE, KeepsEveryFlagAndWritesAllButOneAsFalse) {
  for (const int flag : {2, 0, -1, 1, 256, std::numeric_limits<int>::min()}) {
    ASSERT_TRUE(m_document->set_value("d", "yes", flag));
    EXPECT_EQ(m_document->get_para_value("d", "yes")->flag, static_cast<std::uint32_t>(flag));
    EXPECT_EQ(line("yes"),
              std::string(flag == 1 ? "yes = true" : "yes = false") + " [k .yes]; \t# yes");
    int value = 99;
    EXPECT_TRUE(m_document->get_value("d", "yes", value));
    EXPECT_EQ(value, flag);
  }
}

TEST_F(SET_VALUE, KeepsTextsAsTheyAre) {
  for (const char* const text : {"", "word", "\"a b\"", "a\"b;}", "%s", "two\nlines"}) {
    ASSERT_TRUE(m_document->set_value("d", "str", SBD_STRING(text)));
    EXPECT_STREQ(m_document->get_para_value("d", "str")->text, text);
    EXPECT_NE(written(*m_document).find("str = " + std::string(text) + " [k .str]; \t# str\n"),
              std::string::npos);
  }
}

TEST_F(SET_VALUE, ReplacesAListByANumberAndANumberByAList) {
  EXPECT_TRUE(m_document->set_value("d", "lst", 1.25, SBD_PARA_VALUE::QU_MHZ));
  EXPECT_EQ(line("lst"), "lst = 1.250000MHz [k .lst]; \t# lst");
  SBD_PARA_VALUE* list = make_list({make_number(1), make_list({make_list({}), make_bool(true)})});
  list->unit = SBD_PARA_VALUE::QU_KB;
  EXPECT_TRUE(m_document->set_para_value("d", "lst", *list));
  EXPECT_TRUE(m_document->set_para_value("d", "n", *list));
  m_document->free_para_val(list);
  EXPECT_EQ(line("lst"), "lst = {1,{{},true}}K [k .lst]; \t# lst");
  EXPECT_TRUE(m_document->set_value("d", "lst", 5UL, 8, k_no_unit));
  EXPECT_EQ(line("lst"), "lst = 05 [k .lst]; \t# lst");
  EXPECT_EQ(line("n"), "n = {1,{{},true}}K; ");
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(SET_VALUE, CopiesValuesDeeply) {
  SBD_PARA_VALUE* const list = make_list({make_string("abc"), make_list({make_string("x")})});
  ASSERT_TRUE(m_document->set_para_value("d", "lst", *list));
  (*list->list)[0]->text[0] = 'Z';
  (*(*list->list)[1]->list)[0]->text[0] = 'Z';
  m_document->free_para_val(list);
  EXPECT_EQ(line("lst"), "lst = {abc,{x}} [k .lst]; \t# lst");
}

TEST_F(SET_VALUE, CopiesLongAndDeepLists) {
  SBD_PARA_VALUE* wide = make_list({});
  for (int i = 0; i < 10000; i++) wide->list->push_back(make_number(i));
  SBD_PARA_VALUE* deep = make_number(1);
  for (int i = 0; i < 2000; i++) deep = make_list({make_number(2), deep});
  ASSERT_TRUE(m_document->set_para_value("d", "wide", *wide));
  ASSERT_TRUE(m_document->set_para_value("d", "deep", *deep));
  EXPECT_TRUE(line("wide") == "wide = " + written(*wide) + "; ");
  EXPECT_TRUE(line("deep") == "deep = " + written(*deep) + "; ");
  m_document->free_para_val(wide);
  m_document->free_para_val(deep);
  ASSERT_TRUE(m_document->set_value("d", "deep", 1UL, 10, k_no_unit));
  EXPECT_EQ(line("deep"), "deep = 1; ");
}

TEST_F(SET_VALUE, TakesValuesOfTheDocumentItself) {
  ASSERT_TRUE(m_document->set_para_value("d", "n", *m_document->get_para_value("d", "lst")));
  EXPECT_EQ(line("n"), "n = {1,{2K,abc}}; ");
  ASSERT_TRUE(m_document->set_para_value("d", "lst", *m_document->get_para_value("d", "lst")));
  EXPECT_EQ(line("lst"), "lst = {1,{2K,abc}} [k .lst]; \t# lst");
  ASSERT_TRUE(m_document->set_para_value("d", "str", *m_document->get_para_value("d", "str")));
  EXPECT_EQ(line("str"), "str = \"text\" [k .str]; \t# str");
  // A list gives way to its own element.
  for (const char* const name : {"lst", "n"}) {
    const SBD_PARA_VALUE& inner = *(*m_document->get_para_value("d", name)->list)[1];
    ASSERT_TRUE(m_document->set_para_value("d", name, inner));
    const SBD_PARA_VALUE& number = *(*m_document->get_para_value("d", name)->list)[0];
    ASSERT_TRUE(m_document->set_para_value("d", name, number));
  }
  EXPECT_EQ(line("lst"), "lst = 2K [k .lst]; \t# lst");
  EXPECT_EQ(line("n"), "n = 2K; ");
}

TEST_F(SET_VALUE, TakesNamesOfTheDocumentItself) {
  SBD_NODE* const device = m_document->get_ref_object("d", nullptr);
  SBD_NODE* const node = m_document->get_ref_object("d.str", nullptr);
  EXPECT_TRUE(m_document->set_value(device->block->name->name, node->statement->name->name,
                                    SBD_STRING("word")));
  EXPECT_EQ(line("str"), "str = word [k .str]; \t# str");
  m_document->delete_parameter(device->block->name->name, node->statement->name->name);
  EXPECT_FALSE(m_document->is_parameter_defined("d.str"));
  EXPECT_TRUE(m_document->rename(device->block->name->name, "e", nullptr));
  m_document->delete_block(device->block->name->name);
  EXPECT_EQ(written(*m_document), "# head\n");
}

TEST_F(SET_VALUE, HasNoPlaceInTheSource) {
  ASSERT_TRUE(m_document->set_value("d", "n", 1UL, 10, k_no_unit));
  ASSERT_TRUE(m_document->set_value("d", "r", string_list({"d.n"})));
  SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
  for (const char* const name : {"d.n", "d.r"}) {
    const SBD_NODE* const node = m_document->get_ref_object(name, nullptr);
    EXPECT_FALSE(m_document->get_range(node, range));
    EXPECT_FALSE(m_document->get_name_range(node, range));
    EXPECT_FALSE(m_document->get_comment_range(node, range));
  }
  EXPECT_FALSE(m_document->get_range(m_document->get_para_value("d", "n"), range));
  EXPECT_FALSE(m_document->get_range(m_document->get_para_ref("d", "r"), range));
  EXPECT_TRUE(m_document->get_range(m_document->get_ref_object("d.dec", nullptr), range));
}

TEST_F(SET_VALUE, WorksOnDocumentsThatWereNeverRead) {
  SBD_FILE_PARSER document;
  expect_refusal(document, m_recorder, k_error, set_text("d", "n", k_no_block),
                 [&] { return document.set_value("d", "n", 1); });
  ASSERT_TRUE(document.create_block("device", "d", nullptr));
  ASSERT_TRUE(document.set_value("d", "n", 1));
  EXPECT_EQ(written(document), "device d\n{\n    n = true; \n}\n\n");
  document.clear();
  EXPECT_EQ(written(document), "");
  ASSERT_TRUE(read_text(document, k_source));
  ASSERT_TRUE(document.set_value("d", "n", 0));
  ASSERT_TRUE(read_text(document, k_source));
  EXPECT_FALSE(document.is_parameter_defined("d.n"));
}

// ---- References --------------------------------------------------------------------------------

TEST_F(SET_REFERENCES, ReplacesTheElementsAndKeepsTheComment) {
  ASSERT_TRUE(m_document->set_value("d", "REF", string_list({"D.M.X", "d", "d.m.x"})));
  EXPECT_EQ(line("ref"), "ref < D.M.X, d, d.m.x >;\t# ref");
  const SBD_PARA_REF* element = m_document->get_para_ref("d", "ref");
  for (const char* const name : {"d.m.x", "d", "d.m.x"}) {
    ASSERT_NE(element, nullptr);
    EXPECT_EQ(element->target, m_document->get_ref_object(name, nullptr));
    element = element->next;
  }
  EXPECT_EQ(element, nullptr);
  // What was referenced before is so no more.
  EXPECT_FALSE(m_document->is_referenced("d.dec"));
  EXPECT_FALSE(m_document->is_referenced("d.m"));
  EXPECT_TRUE(m_document->is_referenced("d.m.x"));
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(SET_REFERENCES, RefusesAListWithOneUnknownName) {
  for (const char* const name :
       {"no", "d.no", "", ".", ".m", ".dec", "d.", "d..m", "dec", "d.dec.x"}) {
    for (const char* const statement : {"ref", "n"}) {
      for (const auto& names :
           {TEXTS{name}, TEXTS{"d.m", name}, TEXTS{name, "d.m"}, TEXTS{"d", name, name, "d.dec"}}) {
        refuse(set_text("d", statement, k_bad_reference), [&](auto& document) {
          return document.set_value("d", statement, string_list(names));
        });
      }
    }
  }
}

TEST_F(SET_REFERENCES, TakesAnEmptyList) {
  ASSERT_TRUE(m_document->set_value("d", "ref", string_list({})));
  ASSERT_TRUE(m_document->set_value("d", "n", string_list({})));
  EXPECT_EQ(line("ref"), "ref <  >;\t# ref");
  EXPECT_EQ(line("n"), "n <  >;");
  EXPECT_EQ(m_document->get_para_ref("d", "ref"), nullptr);
  SBD_STRING_LIST names;
  EXPECT_FALSE(m_document->get_value("d", "ref", names));
  EXPECT_TRUE(m_document->is_parameter_defined("d.n"));
  EXPECT_FALSE(m_document->is_referenced("d.dec"));
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(SET_REFERENCES, MayReferToTheStatementItselfOnceItExists) {
  refuse(set_text("d", "n", k_bad_reference),
         [](auto& document) { return document.set_value("d", "n", string_list({"d.n"})); });
  ASSERT_TRUE(m_document->set_value("d", "n", string_list({"d"})));
  ASSERT_TRUE(m_document->set_value("d", "n", string_list({"d.n"})));
  EXPECT_FALSE(m_document->is_referenced("d.n"));
  m_document->delete_parameter("d", "n");
  EXPECT_FALSE(m_document->is_parameter_defined("d.n"));
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(SET_REFERENCES, FindTheBlockOfTwoThingsOfOneName) {
  ASSERT_TRUE(m_document->create_block("bus", "dec", "d"));
  ASSERT_TRUE(m_document->set_value("d", "n", string_list({"d.dec"})));
  EXPECT_EQ(m_document->get_para_ref("d", "n")->target->type, SBD_NODE::NT_BLOCK);
}

// ---- Attributes --------------------------------------------------------------------------------

std::string attribute_text(const std::string& block, const std::string& parameter,
                           const std::string& reason) {
  return "Cannot set the attribute to the parameter: '" + parameter + "' in the block: '" + block +
         "'. " + reason;
}

std::string no_attribute_text(const std::string& block, const std::string& parameter,
                              const std::string& reason) {
  return "Cannot delete attributes of the parameter: '" + parameter + "' in the block: '" + block +
         "'. " + reason;
}

constexpr char k_not_defined[] = "Parameter is not defined.";
constexpr char k_no_attributes[] = "Parameter can not be associated with attributes.";

// A chain of its own, freed at the end.
class CHAIN {
 public:
  CHAIN(std::initializer_list<std::pair<const char*, const char*>> attributes)
      : m_first(make_attributes(attributes)) {}
  ~CHAIN() {
    while (m_first != nullptr) {
      SBD_PARA_ATTR* const next = m_first->next;
      sbd_free_text(m_first->attr_key);
      sbd_free_text(m_first->attr_value);
      delete m_first;
      m_first = next;
    }
  }
  CHAIN(const CHAIN&) = delete;
  CHAIN& operator=(const CHAIN&) = delete;
  SBD_PARA_ATTR* first() const { return m_first; }

 private:
  SBD_PARA_ATTR* m_first;
};

TEST_F(ATTRIBUTES, RefusesNullNames) {
  const CHAIN chain{{"a", "b.c"}};
  const std::pair<const char*, const char*> cases[] = {
      {nullptr, "dec"}, {"d", nullptr}, {nullptr, nullptr}};
  for (const auto& [block, parameter] : cases) {
    expect_refusal(
        *m_document, m_recorder, k_error, "Cannot set the attribute. NULL block/parameter name",
        [&, b = block, p = parameter] { return m_document->set_attribute(b, p, chain.first()); });
    expect_refusal(*m_document, m_recorder, k_warning,
                   "Cannot delete attributes. NULL block/parameter name",
                   [&, b = block, p = parameter] {
                     m_document->delete_attribute(b, p);
                     return false;
                   });
  }
}

TEST_F(ATTRIBUTES, AreForParametersOnly) {
  const CHAIN chain{{"a", "b.c"}};
  struct {
    const char* block;
    const char* parameter;
    const char* reason;
  } const cases[] = {{"d", "no", k_not_defined},    {"no", "dec", k_not_defined},
                     {"d", "m", k_not_defined},     {"", "d", k_not_defined},
                     {"d", "", k_not_defined},      {"d.", "dec", k_not_defined},
                     {"d", "9x", k_not_defined},    {"d.dec", "x", k_not_defined},
                     {"d", "ref", k_no_attributes}, {"D", "REF", k_no_attributes}};
  for (const auto& [block, parameter, reason] : cases) {
    for (SBD_PARA_ATTR* const first : {chain.first(), static_cast<SBD_PARA_ATTR*>(nullptr)}) {
      expect_refusal(
          *m_document, m_recorder, k_error, attribute_text(block, parameter, reason),
          [&, b = block, p = parameter] { return m_document->set_attribute(b, p, first); });
    }
    expect_refusal(*m_document, m_recorder, k_warning, no_attribute_text(block, parameter, reason),
                   [&, b = block, p = parameter] {
                     m_document->delete_attribute(b, p);
                     return false;
                   });
  }
}

TEST_F(ATTRIBUTES, AreReplacedAsAWhole) {
  const CHAIN chain{{"a", "b.c"}, {"bare", nullptr}, {"k", ".z"}, {"a", nullptr}};
  EXPECT_TRUE(m_document->set_attribute("D", "DEC", chain.first()));
  EXPECT_EQ(line("dec"), "dec = 5 [a b.c,bare,k .z,a]; \t# dec");
  EXPECT_TRUE(m_document->set_attribute("d.m", "x", chain.first()));
  EXPECT_EQ(line("x"), "x = 1 [a b.c,bare,k .z,a]; ");
  const SBD_PARA_ATTR* const copy = m_document->get_para_attr("d", "dec");
  EXPECT_NE(copy, chain.first());
  EXPECT_NE(copy->attr_key, chain.first()->attr_key);
  EXPECT_EQ(copy->next->attr_value, nullptr);

  const CHAIN one{{"one", nullptr}};
  EXPECT_TRUE(m_document->set_attribute("d", "dec", one.first()));
  EXPECT_EQ(line("dec"), "dec = 5 [one]; \t# dec");
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(ATTRIBUTES, GoAwayWithANullChain) {
  EXPECT_TRUE(m_document->set_attribute("d", "dec", nullptr));
  EXPECT_EQ(line("dec"), "dec = 5; \t# dec");
  EXPECT_TRUE(m_document->set_attribute("d", "dec", nullptr));
  EXPECT_EQ(m_document->get_para_attr("d", "dec"), nullptr);
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(ATTRIBUTES, CanBeDeleted) {
  m_document->delete_attribute("d", "Lst");
  EXPECT_EQ(line("lst"), "lst = {1,{2K,abc}}; \t# lst");
  m_document->delete_attribute("d", "lst");
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(ATTRIBUTES, AreFoundByAnySplitOfTheName) {
  const CHAIN chain{{"a", nullptr}};
  EXPECT_TRUE(m_document->set_attribute("d", "m.b.y", chain.first()));
  EXPECT_EQ(line("y"), "y = 2 [a]; ");
  m_document->delete_attribute("d.m", "b.y");
  EXPECT_EQ(line("y"), "y = 2; ");
}

TEST_F(ATTRIBUTES, MayBeSetToThePresentOnes) {
  const CHAIN chain{{"a", "b.c"}, {"bare", nullptr}, {"k", ".z"}};
  ASSERT_TRUE(m_document->set_attribute("d", "dec", chain.first()));
  EXPECT_TRUE(m_document->set_attribute("d", "dec", m_document->get_para_attr("d", "dec")));
  EXPECT_EQ(line("dec"), "dec = 5 [a b.c,bare,k .z]; \t# dec");
  EXPECT_TRUE(m_document->set_attribute("d", "dec", m_document->get_para_attr("d", "dec")->next));
  EXPECT_EQ(line("dec"), "dec = 5 [bare,k .z]; \t# dec");
  EXPECT_TRUE(m_document->set_attribute("d", "hex", m_document->get_para_attr("d", "dec")));
  EXPECT_EQ(line("hex"), "hex = 0x1F [bare,k .z]; \t# hex");
}

TEST_F(ATTRIBUTES, ComeInAnyNumber) {
  CHAIN chain{{"first", nullptr}};
  SBD_PARA_ATTR* last = chain.first();
  std::string wanted = "dec = 5 [first";
  for (int i = 0; i < 20000; i++) {
    last->next = make_attributes({{"k", ".v"}});
    last = last->next;
    wanted += ",k .v";
  }
  ASSERT_TRUE(m_document->set_attribute("d", "dec", chain.first()));
  EXPECT_TRUE(line("dec") == wanted + "]; \t# dec");
}

// ---- Deleting ----------------------------------------------------------------------------------

TEST_F(DELETE_PARAMETER, WarnsOfNullNames) {
  const std::pair<const char*, const char*> cases[] = {
      {nullptr, "dec"}, {"d", nullptr}, {nullptr, nullptr}};
  for (const auto& [block, parameter] : cases) {
    expect_refusal(*m_document, m_recorder, k_warning,
                   "Cannot delete parameter. NULL block/parameter name",
                   [&, b = block, p = parameter] {
                     m_document->delete_parameter(b, p);
                     return false;
                   });
  }
}

TEST_F(DELETE_PARAMETER, IsSilentWhenThereIsNone) {
  const std::pair<const char*, const char*> cases[] = {{"d", "no"},   {"no", "dec"}, {"", "dec"},
                                                       {"d", ""},     {"d", "9x"},   {"d.", "dec"},
                                                       {"d.dec", "x"}};
  for (const auto& [block, parameter] : cases) {
    expect_silent_refusal(*m_document, m_recorder, [&, b = block, p = parameter] {
      m_document->delete_parameter(b, p);
      return false;
    });
  }
}

TEST_F(DELETE_PARAMETER, WarnsOfABlock) {
  expect_refusal(*m_document, m_recorder, k_warning,
                 delete_text("D", "M", "Parameter does not exist."), [&] {
                   m_document->delete_parameter("D", "M");
                   return false;
                 });
  // Even of one that is referenced.
  EXPECT_TRUE(m_document->is_referenced("d.m"));
}

TEST_F(DELETE_PARAMETER, RefusesWhatIsReferenced) {
  const std::pair<const char*, const char*> cases[] = {{"d", "Dec"}, {"d.m", "x"}, {"d", "m.x"}};
  for (const auto& [block, parameter] : cases) {
    expect_refusal(*m_document, m_recorder, k_error, delete_text(block, parameter, k_in_use),
                   [&, b = block, p = parameter] {
                     m_document->delete_parameter(b, p);
                     return false;
                   });
  }
  ASSERT_TRUE(m_document->set_value("d", "n", string_list({"d.ref"})));
  expect_refusal(*m_document, m_recorder, k_error, delete_text("d", "ref", k_in_use), [&] {
    m_document->delete_parameter("d", "ref");
    return false;
  });
}

TEST_F(DELETE_PARAMETER, DeletesOnceTheReferencesAreGone) {
  const auto delete_dec = [this] { m_document->delete_parameter("d", "dec"); };
  ASSERT_TRUE(m_document->set_value("d.m", "r", string_list({"d.dec", "d.dec"})));
  delete_dec();
  EXPECT_TRUE(posted(m_recorder, k_error, delete_text("d", "dec", k_in_use)));
  m_document->delete_parameter("d", "ref");
  delete_dec();
  EXPECT_TRUE(posted(m_recorder, k_error, delete_text("d", "dec", k_in_use)));
  ASSERT_TRUE(m_document->set_value("d.m", "r", string_list({"d"})));
  delete_dec();
  EXPECT_TRUE(m_recorder.is_silent());
  EXPECT_FALSE(m_document->is_parameter_defined("d.dec"));
}

TEST_F(DELETE_PARAMETER, TakesTheStatementOutWithItsSymbol) {
  const std::string source = written(*m_document);
  for (const char* const name : {"ref", "dec", "oct", "lst", "str", "flt", "yes", "bin", "hex"}) {
    const std::size_t count = count_symbols(*m_document);
    const std::string old_line = "    " + line(name) + "\n";
    std::string wanted = written(*m_document);
    wanted.erase(wanted.find(old_line), old_line.size());
    m_document->delete_parameter("d", name);
    EXPECT_EQ(written(*m_document), wanted);
    EXPECT_EQ(count_symbols(*m_document), count - 1);
    EXPECT_EQ(m_document->get_statement("d", name), nullptr);
    // The name is free again.
    ASSERT_TRUE(m_document->set_value("d", name, 1));
    m_document->delete_parameter("d", name);
    EXPECT_EQ(written(*m_document), wanted);
  }
  EXPECT_TRUE(m_recorder.is_silent());
  EXPECT_EQ(written(*m_document),
            "# head\ndevice d\n{\n    module m\n    {\n        x = 1; \n        bus b\n        {\n"
            "            y = 2; \n        }\n\n    }\n\n}\n\n");
}

TEST_F(DELETE_PARAMETER, UncoversAStatementBelowABlockOfItsName) {
  ASSERT_TRUE(m_document->create_block("bus", "OCT", "d"));
  refuse(set_text("d", "oct", k_is_block),
         [](auto& document) { return document.set_value("d", "oct", 1UL, 10, k_no_unit); });
  expect_refusal(*m_document, m_recorder, k_warning,
                 delete_text("d", "oct", "Parameter does not exist."), [&] {
                   m_document->delete_parameter("d", "oct");
                   return false;
                 });
  m_document->delete_block("d.oct");
  EXPECT_TRUE(m_document->set_value("d", "oct", 1UL, 10, k_no_unit));
  EXPECT_EQ(line("oct"), "oct = 1 [k .oct]; \t# oct");
}

// ---- Many references ---------------------------------------------------------------------------

// More than any counter of 16 bits holds.
constexpr std::size_t k_many = 70000;

TEST(MANY_REFERENCES, ToOneParameterAreAllFound) {
  const auto document = document_of("device d { x = 1; y = 2; r < d.y >; s < d.y >; }");
  MESSAGE_RECORDER recorder;
  const auto delete_x = [&] { document->delete_parameter("d", "x"); };
  ASSERT_TRUE(document->set_value("d", "r", string_list(TEXTS(k_many, "d.x"))));
  ASSERT_TRUE(document->set_value("d", "s", string_list(TEXTS(k_many, "d.x"))));
  delete_x();
  EXPECT_TRUE(posted(recorder, k_error, delete_text("d", "x", k_in_use)));
  ASSERT_TRUE(document->set_value("d", "r", string_list({"d.y"})));
  EXPECT_TRUE(document->is_referenced("d.x"));
  delete_x();
  EXPECT_TRUE(posted(recorder, k_error, delete_text("d", "x", k_in_use)));
  ASSERT_TRUE(document->set_value("d", "s", string_list({"d.x"})));
  EXPECT_TRUE(document->is_referenced("d.x"));
  delete_x();
  EXPECT_TRUE(posted(recorder, k_error, delete_text("d", "x", k_in_use)));
  ASSERT_TRUE(document->set_value("d", "s", string_list({})));
  EXPECT_FALSE(document->is_referenced("d.x"));
  delete_x();
  EXPECT_TRUE(recorder.is_silent());
  EXPECT_EQ(written(*document), "device d\n{\n    y = 2; \n    r < d.y >;\n    s <  >;\n}\n\n");
}

TEST(MANY_REFERENCES, AreAllDeleted) {
  const auto document = document_of("device d { x = 1; y = 2; r < d.y >; s < d.y >; }");
  const MESSAGE_RECORDER recorder;
  TEXTS names(k_many, "d.x");
  names.insert(names.begin() + 10, "d.y");
  names.emplace_back("d.y");
  ASSERT_TRUE(document->set_value("d", "r", string_list(names)));
  ASSERT_TRUE(document->set_value("d", "s", string_list(TEXTS(k_many, "d.x"))));
  document->delete_reference("d.x");
  EXPECT_EQ(written(*document),
            "device d\n{\n    x = 1; \n    y = 2; \n    r < d.y, d.y >;\n}\n\n");
  EXPECT_FALSE(document->is_referenced("d.x"));
  document->delete_parameter("d", "x");
  EXPECT_FALSE(document->is_parameter_defined("d.x"));
  EXPECT_TRUE(recorder.is_silent());
}

TEST(MANY_REFERENCES, MayStandInAFile) {
  std::string source = "device d { x = 1; y = 2;";
  for (std::size_t i = 0; i < k_many; i++) source += "r" + std::to_string(i) + "<.x>;";
  const auto document = document_of(source + "}");
  MESSAGE_RECORDER recorder;
  for (std::size_t i = 0; i < k_many; i++) {
    if (i % 10000 == 0 || i == k_many - 1) {
      EXPECT_TRUE(document->is_referenced("d.x")) << i;
    }
    document->delete_parameter("d", ("r" + std::to_string(i)).c_str());
  }
  EXPECT_FALSE(document->is_referenced("d.x"));
  document->delete_parameter("d", "x");
  EXPECT_TRUE(recorder.is_silent());
  EXPECT_EQ(written(*document), "device d\n{\n    y = 2; \n}\n\n");
}

// ---- Many edits --------------------------------------------------------------------------------

TEST(MANY_EDITS, DoNotPileUpMemory) {
  const auto document = document_of(k_source);
  SBD_PARA_VALUE* const list = make_list({make_string("a text of some length"), make_number(1)});
  const CHAIN chain{{"key", "value.of.some.length"}, {"l", nullptr}};
  const auto edit_all = [&](int round) {
    const std::string text = "\"text " + std::to_string(round) + "\"";
    EXPECT_TRUE(document->set_value("d", "str", SBD_STRING(text.c_str())));
    EXPECT_TRUE(document->set_value("d", "dec", 1UL, 10, k_no_unit));
    EXPECT_TRUE(document->set_para_value("d", "lst", *list));
    EXPECT_TRUE(document->set_attribute("d", "hex", chain.first()));
    EXPECT_TRUE(document->set_value("d", "ref", string_list({"d.m", "d.m.x", "d.dec"})));
    EXPECT_TRUE(document->set_value("d", "n", 5UL, 16, k_no_unit));
    EXPECT_TRUE(document->rename("n", "other", "d"));
    document->delete_parameter("d", "other");
    EXPECT_TRUE(document->create_block("bus", "n", "d"));
    EXPECT_TRUE(document->set_value("d.n", "x", 1));
    document->delete_block("d.n");
  };
  for (int round = 0; round < 1000; round++) edit_all(round);
  const std::size_t before = sbd_host::get_memory_account("SBD").live_bytes;
  for (int round = 0; round < 20000; round++) edit_all(round);
  const std::size_t after = sbd_host::get_memory_account("SBD").live_bytes;
  EXPECT_LT(after, before + 200000);
  document->free_para_val(list);
}

}  // namespace
