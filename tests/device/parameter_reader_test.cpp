// The generic reader, with a derived class of the tests' own.
#include "sbd/sbd_parameter_reader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/sbd_host.h"
#include "sbd/msg_sbd.h"
#include "sbd/reading/sbd_extended.h"
#include "sbd/reading/sbd_hash.h"
#include "tests/device/descriptor_text.h"
#include "tests/device/exact_arithmetic.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/tree_builder.h"

namespace {

using TEXTS = std::vector<std::string>;
using VALUE = SBD_PARAMETER_READER::SBD_PARAMETER_VALUE;

// Of any of the library's types of strings.
template <class STRING>
std::string plain(const STRING& text) {
  return std::string(text.data(), text.size());
}

class TEST_READER : public SBD_PARAMETER_READER {
 public:
  using SBD_PARAMETER_READER::m_module_name;
  using SBD_PARAMETER_READER::m_parameters;
  using SBD_PARAMETER_READER::m_parser;
  using SBD_PARAMETER_READER::m_post_messages;
  using SBD_PARAMETER_READER::m_report_unread;

  explicit TEST_READER(const SBD_FILE_PARSER& document, const char* module = "Stripe0")
      : SBD_PARAMETER_READER(document, SBD_STRING(module)) {}

  bool read_all_parameters() override {
    calls += "read ";
    return on_read ? on_read() : true;
  }
  bool validate_all_parameters() override {
    calls += "validate ";
    return on_validate ? on_validate() : true;
  }

  // The record under a full reference name.
  const VALUE* record(const std::string& name) const {
    const auto found = m_parameters.find(SBD_PARAMETER_MAP::key_type(name.c_str()));
    return found == m_parameters.end() ? nullptr : &found->second;
  }

  std::function<bool()> on_read, on_validate;
  std::string calls;
};

// What the tests want to know of a record, on one line.
std::string told(const VALUE* record) {
  if (!record) return "none";
  const char* const types[] = {"bool", "dword", "double", "string"};
  char number[64];
  std::snprintf(number, sizeof number, "%.17g", record->m_double_value);
  return std::string(types[record->m_value_type]) + (record->m_is_defined ? " defined" : "") +
         (record->m_has_value ? " known" : "") + (record->m_is_validated ? " validated" : "") +
         (record->m_bool_value ? " true " : " false ") + std::to_string(record->m_dword_value) +
         " " + number + " '" + plain(record->m_string_value) + "'";
}

constexpr char TEXT[] =
    "device Stripe0 {\n"
    "  Flag = true; cleared = FALSE; number = 5; text = BIG; quoted = \"A b\"; items = {1, 2};\n"
    "  link < Stripe0.sdram >; word = Yes; negative = -5; scaled = 1.5K;\n"
    "  parameters sdram {\n"
    "    Width = 32; on = True; period = 7.5; Type = SDR; items[0] = 3;\n"
    "    region region[0] { address_base = 0x10; enabled = false; }\n"
    "    parameters block_of_a_name { x = 1; }\n"
    "  }\n"
    "  statement = 1;\n"
    "}\n"
    "device other { sdram_only = 1; }\n";

class PARAMETER_READER : public testing::Test {
 protected:
  PARAMETER_READER() : m_document(document_of(TEXT)), m_reader(*m_document) {}

  void TearDown() override {
    EXPECT_EQ(m_recorder.conditions(), m_expected_conditions);
    for (const RECORDED_ERROR& error : m_recorder.internal_errors()) {
      EXPECT_EQ(error.module, "SBD");
      EXPECT_EQ(error.source, "sbd_parameter_reader");
      EXPECT_GT(error.line, 0);
    }
    EXPECT_EQ(m_recorder.texts(), m_expected_messages);
  }

  // Reads a flag and so on, with defaults or, for an empty optional, without.
  std::string read_bool(const char* block, const char* name, std::optional<bool> first = {},
                        std::optional<bool> second = {}) {
    m_reader.read_bool_parameter(block, name, first ? &*first : nullptr,
                                 second ? &*second : nullptr);
    return told_of(block, name);
  }
  std::string read_dword(const char* block, const char* name,
                         std::optional<unsigned long> first = {},
                         std::optional<unsigned long> second = {}) {
    m_reader.read_dword_parameter(block, name, first ? &*first : nullptr,
                                  second ? &*second : nullptr);
    return told_of(block, name);
  }
  std::string read_double(const char* block, const char* name, std::optional<double> first = {},
                          std::optional<double> second = {}) {
    m_reader.read_double_parameter(block, name, first ? &*first : nullptr,
                                   second ? &*second : nullptr);
    return told_of(block, name);
  }
  std::string read_string(const char* block, const char* name, const char* first = nullptr,
                          const char* second = nullptr) {
    m_reader.read_string_parameter(block, name, first, second);
    return told_of(block, name);
  }

  std::string told_of(const char* block, const char* name) const {
    const std::string reference = block ? std::string(block) + "." + name : name;
    return told(m_reader.record(plain(m_reader.to_full_reference_name(reference.c_str()))));
  }

  std::unique_ptr<SBD_FILE_PARSER> m_document;
  MESSAGE_RECORDER m_recorder;
  TEXTS m_expected_conditions, m_expected_messages;
  TEST_READER m_reader;
};

// ---- The record --------------------------------------------------------------------------------

TEST_F(PARAMETER_READER, RecordHoldsOneValueAndClearsTheOthers) {
  const VALUE flag(true, false, true);
  EXPECT_EQ(told(&flag), "bool known true 0 0 ''");
  const VALUE dword(4294967295UL, true, false);
  EXPECT_EQ(told(&dword), "dword defined false 4294967295 0 ''");
  const VALUE number(-2.5, false, false);
  EXPECT_EQ(told(&number), "double false 0 -2.5 ''");
  const VALUE text(SBD_STRING("Ab c"), true, true);
  EXPECT_EQ(told(&text), "string defined known false 0 0 'Ab c'");
  const VALUE zero(false, true, true);
  EXPECT_EQ(told(&zero), "bool defined known false 0 0 ''");
}

TEST_F(PARAMETER_READER, KindsAreNumbered) {
  EXPECT_EQ(static_cast<int>(VALUE::BOOL_VALUE), 0);
  EXPECT_EQ(static_cast<int>(VALUE::DWORD_VALUE), 1);
  EXPECT_EQ(static_cast<int>(VALUE::DOUBLE_VALUE), 2);
  EXPECT_EQ(static_cast<int>(VALUE::STRING_VALUE), 3);
}

TEST_F(PARAMETER_READER, CopyOfARecordHasAllOfIt) {
  VALUE text(SBD_STRING("a text that is too long to lie in the string itself"), true, true);
  text.m_is_validated = true;
  text.m_bool_value = true;
  text.m_dword_value = 7;
  text.m_double_value = 1.5;
  const VALUE copy(text);
  EXPECT_EQ(told(&copy), told(&text));
  EXPECT_EQ(told(&copy),
            "string defined known validated true 7 1.5 "
            "'a text that is too long to lie in the string itself'");
  VALUE assigned(5UL, false, false);
  assigned = text;
  EXPECT_EQ(told(&assigned), told(&text));
  text.m_string_value = "changed";
  EXPECT_EQ(told(&assigned), told(&copy));
}

// ---- Construction and names --------------------------------------------------------------------

TEST_F(PARAMETER_READER, StartsEmptyAndPosting) {
  EXPECT_TRUE(m_reader.m_parameters.empty());
  EXPECT_TRUE(m_reader.m_post_messages);
  EXPECT_FALSE(m_reader.m_report_unread);
  EXPECT_EQ(&m_reader.m_parser, m_document.get());
  EXPECT_EQ(plain(m_reader.m_module_name), "Stripe0");
}

TEST_F(PARAMETER_READER, FullReferenceNameIsModulePointReferenceInLowerCase) {
  EXPECT_EQ(plain(m_reader.to_full_reference_name("sdram.Width")), "stripe0.sdram.width");
  EXPECT_EQ(plain(m_reader.to_full_reference_name("Width")), "stripe0.width");
  EXPECT_EQ(plain(m_reader.to_full_reference_name("dpram.MODE[0]")), "stripe0.dpram.mode[0]");
  EXPECT_EQ(plain(m_reader.to_full_reference_name("")), "stripe0.");
  const TEST_READER inner(*m_document, "Board.Stripe");
  EXPECT_EQ(plain(inner.to_full_reference_name("A.b")), "board.stripe.a.b");
}

TEST_F(PARAMETER_READER, BlockAndParameterNameAreJoinedAsTheyAre) {
  EXPECT_EQ(plain(m_reader.join_block_and_parameter_name("Ebi.region[0]", "Enabled")),
            "Ebi.region[0].Enabled");
  EXPECT_EQ(plain(m_reader.join_block_and_parameter_name("", "")), ".");
  EXPECT_TRUE(m_recorder.is_silent());
  EXPECT_EQ(plain(m_reader.join_block_and_parameter_name(nullptr, "a")), "");
  EXPECT_EQ(plain(m_reader.join_block_and_parameter_name("a", nullptr)), "");
  EXPECT_EQ(plain(m_reader.join_block_and_parameter_name(nullptr, nullptr)), "");
  m_expected_conditions.assign(3, "block_name != NULL && parameter_name != NULL");
}

// ---- Reading and validating together -----------------------------------------------------------

TEST_F(PARAMETER_READER, ReadingIsFollowedByValidation) {
  EXPECT_TRUE(m_reader.read_and_validate_parameters());
  EXPECT_EQ(m_reader.calls, "read validate ");
}

TEST_F(PARAMETER_READER, FailedReadingIsNotValidated) {
  m_reader.on_read = [] { return false; };
  EXPECT_FALSE(m_reader.read_and_validate_parameters());
  EXPECT_EQ(m_reader.calls, "read ");
}

TEST_F(PARAMETER_READER, FailedValidationIsTheResult) {
  m_reader.on_validate = [] { return false; };
  EXPECT_FALSE(m_reader.read_and_validate_parameters());
  EXPECT_EQ(m_reader.calls, "read validate ");
}

// ---- Flags -------------------------------------------------------------------------------------

TEST_F(PARAMETER_READER, FlagIsRead) {
  EXPECT_EQ(read_bool(nullptr, "flag"), "bool defined known true 0 0 ''");
  EXPECT_EQ(read_bool(nullptr, "CLEARED", true, true), "bool defined known false 0 0 ''");
  EXPECT_EQ(read_bool("SDRAM", "On"), "bool defined known true 0 0 ''");
  EXPECT_EQ(read_bool("sdram.region[0]", "enabled", true, true), "bool defined known false 0 0 ''");
  EXPECT_EQ(m_reader.m_parameters.size(), 4u);
  EXPECT_NE(m_reader.record("stripe0.sdram.region[0].enabled"), nullptr);
}

TEST_F(PARAMETER_READER, FlagThatIsNotWrittenHasTheFirstDefault) {
  EXPECT_EQ(read_bool("sdram", "a", true, false), "bool known true 0 0 ''");
  EXPECT_EQ(read_bool("sdram", "b", false, true), "bool known false 0 0 ''");
  EXPECT_EQ(read_bool("sdram", "c", {}, true), "bool false 0 0 ''");
  EXPECT_EQ(read_bool(nullptr, "d", true, false), "bool known true 0 0 ''");
  EXPECT_EQ(read_bool(nullptr, "e"), "bool false 0 0 ''");
}

TEST_F(PARAMETER_READER, FlagOfAnAbsentBlockHasTheSecondDefault) {
  EXPECT_EQ(read_bool("uart", "a", true, false), "bool known false 0 0 ''");
  EXPECT_EQ(read_bool("uart", "b", false, true), "bool known true 0 0 ''");
  EXPECT_EQ(read_bool("uart", "c", true, {}), "bool false 0 0 ''");
  EXPECT_EQ(read_bool("sdram.region[1]", "enabled", true, {}), "bool false 0 0 ''");
}

TEST_F(PARAMETER_READER, FlagOfTheWrongKindHasNoValue) {
  for (const char* const name :
       {"number", "text", "quoted", "items", "link", "word", "scaled", "statement"}) {
    EXPECT_EQ(read_bool(nullptr, name, true, true), "bool defined false 0 0 ''") << name;
  }
}

// ---- Whole numbers -----------------------------------------------------------------------------

TEST_F(PARAMETER_READER, NumberIsRead) {
  EXPECT_EQ(read_dword(nullptr, "Number"), "dword defined known false 5 0 ''");
  EXPECT_EQ(read_dword("sdram", "width", 1, 2), "dword defined known false 32 0 ''");
  EXPECT_EQ(read_dword("sdram.Region[0]", "address_base"), "dword defined known false 16 0 ''");
  EXPECT_EQ(read_dword("sdram", "items[0]"), "dword defined known false 3 0 ''");
  EXPECT_EQ(read_dword(nullptr, "scaled"), "dword defined known false 1536 0 ''");
  EXPECT_EQ(read_dword(nullptr, "negative"), "dword defined known false 4294967291 0 ''");
}

TEST_F(PARAMETER_READER, NumberThatIsNotWrittenHasADefault) {
  EXPECT_EQ(read_dword("sdram", "a", 4294967295, 2), "dword known false 4294967295 0 ''");
  EXPECT_EQ(read_dword("sdram", "b", {}, 2), "dword false 0 0 ''");
  EXPECT_EQ(read_dword("uart", "c", 1, 2), "dword known false 2 0 ''");
  EXPECT_EQ(read_dword("uart", "d", 1, {}), "dword false 0 0 ''");
  EXPECT_EQ(read_dword(nullptr, "e", 1, 2), "dword known false 1 0 ''");
}

TEST_F(PARAMETER_READER, NumberOfTheWrongKindHasNoValue) {
  for (const char* const name : {"flag", "cleared", "text", "quoted", "items", "link", "word"}) {
    EXPECT_EQ(read_dword(nullptr, name, 7, 8), "dword defined false 0 0 ''") << name;
  }
}

// ---- Numbers -----------------------------------------------------------------------------------

TEST_F(PARAMETER_READER, DoubleIsRead) {
  EXPECT_EQ(read_double("sdram", "Period"), "double defined known false 0 7.5 ''");
  EXPECT_EQ(read_double("sdram", "width", 1.0, 2.0), "double defined known false 0 32 ''");
  EXPECT_EQ(read_double(nullptr, "scaled"), "double defined known false 0 1536 ''");
  EXPECT_EQ(read_double(nullptr, "negative"), "double defined known false 0 -5 ''");
}

TEST_F(PARAMETER_READER, DoubleThatIsNotWrittenHasADefault) {
  EXPECT_EQ(read_double("sdram", "a", 0.5, 2), "double known false 0 0.5 ''");
  EXPECT_EQ(read_double("sdram", "b", {}, 2), "double false 0 0 ''");
  EXPECT_EQ(read_double("uart", "c", 0.5, 2.5), "double known false 0 2.5 ''");
  EXPECT_EQ(read_double("uart", "d", 0.5, {}), "double false 0 0 ''");
  EXPECT_EQ(read_double(nullptr, "e", 0.5, {}), "double known false 0 0.5 ''");
}

TEST_F(PARAMETER_READER, DoubleOfTheWrongKindHasNoValue) {
  for (const char* const name : {"flag", "cleared", "text", "quoted", "items", "link", "word"}) {
    EXPECT_EQ(read_double(nullptr, name, 7, 8), "double defined false 0 0 ''") << name;
  }
}

// ---- Texts -------------------------------------------------------------------------------------

TEST_F(PARAMETER_READER, TextIsReadInLowerCase) {
  EXPECT_EQ(read_string(nullptr, "text"), "string defined known false 0 0 'big'");
  EXPECT_EQ(read_string("Sdram", "type", "x", "y"), "string defined known false 0 0 'sdr'");
  EXPECT_EQ(read_string(nullptr, "word"), "string defined known false 0 0 'yes'");
}

TEST_F(PARAMETER_READER, QuotesBelongToTheText) {
  EXPECT_EQ(read_string(nullptr, "quoted"), "string defined known false 0 0 '\"a b\"'");
}

TEST_F(PARAMETER_READER, DefaultTextIsLowerCasedToo) {
  EXPECT_EQ(read_string("sdram", "a", "LOW", "HIGH"), "string defined known false 0 0 'low'");
  EXPECT_EQ(read_string("uart", "b", "LOW", "HIGH"), "string defined known false 0 0 'high'");
  EXPECT_EQ(read_string(nullptr, "c", "LOW", nullptr), "string defined known false 0 0 'low'");
}

TEST_F(PARAMETER_READER, TextAlwaysCountsAsDefinedAndKnown) {
  EXPECT_EQ(read_string("sdram", "a"), "string defined known false 0 0 ''");
  EXPECT_EQ(read_string("sdram", "b", nullptr, "HIGH"), "string defined known false 0 0 ''");
  EXPECT_EQ(read_string("uart", "c"), "string defined known false 0 0 ''");
  EXPECT_EQ(read_string("uart", "d", "LOW", nullptr), "string defined known false 0 0 ''");
  EXPECT_EQ(read_string(nullptr, "e"), "string defined known false 0 0 ''");
}

TEST_F(PARAMETER_READER, TextOfTheWrongKindIsEmpty) {
  for (const char* const name : {"flag", "cleared", "number", "scaled", "items", "link"}) {
    EXPECT_EQ(read_string(nullptr, name, "low", "high"), "string defined known false 0 0 ''")
        << name;
  }
}

// ---- All kinds ---------------------------------------------------------------------------------

TEST_F(PARAMETER_READER, BlockMustBeABlock) {
  // "statement" is a parameter; what seems to be inside it does not exist.
  EXPECT_EQ(read_bool("statement", "a", true, {}), "bool false 0 0 ''");
  EXPECT_EQ(read_dword("statement", "b", 1, 2), "dword known false 2 0 ''");
  EXPECT_EQ(read_double("statement", "c", 1, 2), "double known false 0 2 ''");
  EXPECT_EQ(read_string("statement", "d", "x", "y"), "string defined known false 0 0 'y'");
}

TEST_F(PARAMETER_READER, BlockIsNoParameter) {
  const char* const name = "block_of_a_name";
  EXPECT_EQ(read_dword("sdram", name, 1, 2), "dword known false 1 0 ''");
  EXPECT_EQ(read_string(nullptr, "sdram", "LOW", "HIGH"), "string defined known false 0 0 'low'");
  EXPECT_EQ(read_bool("sdram", "region[0]", {}, true), "bool false 0 0 ''");
}

TEST_F(PARAMETER_READER, OnlyTheModulesOwnBlocksCount) {
  EXPECT_EQ(read_dword("other", "sdram_only", 1, 2), "dword known false 2 0 ''");
  EXPECT_EQ(read_dword("region[0]", "address_base", 1, 2), "dword known false 2 0 ''");
}

TEST_F(PARAMETER_READER, ModuleOfAnUnknownNameHasNothing) {
  TEST_READER reader(*m_document, "nowhere");
  const bool flag = true;
  const unsigned long number = 5;
  reader.read_bool_parameter(nullptr, "flag", &flag, nullptr);
  reader.read_dword_parameter("sdram", "width", &number, nullptr);
  EXPECT_EQ(told(reader.record("nowhere.flag")), "bool known true 0 0 ''");
  EXPECT_EQ(told(reader.record("nowhere.sdram.width")), "dword false 0 0 ''");
}

TEST_F(PARAMETER_READER, FirstReadOfANameWins) {
  EXPECT_EQ(read_dword("sdram", "width"), "dword defined known false 32 0 ''");
  EXPECT_EQ(read_double("sdram", "width"), "dword defined known false 32 0 ''");
  EXPECT_EQ(read_bool("SDRAM", "WIDTH", true, true), "dword defined known false 32 0 ''");
  EXPECT_EQ(read_string("sdram", "Width"), "dword defined known false 32 0 ''");
  EXPECT_EQ(m_reader.m_parameters.size(), 1u);
  EXPECT_EQ(read_dword("sdram", "a", 1), "dword known false 1 0 ''");
  EXPECT_EQ(read_dword("sdram", "a", 2), "dword known false 1 0 ''");
  EXPECT_EQ(m_reader.m_parameters.size(), 2u);
}

TEST_F(PARAMETER_READER, SecondReadKeepsTheMarkOfTheFirst) {
  EXPECT_EQ(read_dword("sdram", "width"), "dword defined known false 32 0 ''");
  m_reader.mark_parameter_as_validated("sdram.width");
  EXPECT_EQ(read_dword("sdram", "width"), "dword defined known validated false 32 0 ''");
}

TEST_F(PARAMETER_READER, RecordsAreOrderedByTheBytesOfTheirNames) {
  for (const char* const name : {"b_", "ba", "b", "b[1]", "b1", "A"}) read_bool(nullptr, name);
  TEXTS names;
  for (const auto& [name, record] : m_reader.m_parameters) names.push_back(plain(name));
  EXPECT_EQ(names, (TEXTS{"stripe0.a", "stripe0.b", "stripe0.b1", "stripe0.b[1]", "stripe0.b_",
                          "stripe0.ba"}));
}

// Two names of one length and one hash, as readers look for them; the second is the higher one by 1
// at the first letter in which they differ.
std::pair<std::string, std::string> names_of_one_hash() {
  const auto hash_of = [](const std::string& name) { return sbd_hash_name(name, 0) >> 32; };
  std::unordered_map<std::uint64_t, std::string> lower_names;
  for (int number = 100000; number != 200000; ++number) {
    std::string name = "a" + std::to_string(number);
    lower_names.emplace(hash_of(name), std::move(name));
  }
  for (int number = 100000;; ++number) {
    std::string name = "b" + std::to_string(number);
    const auto found = lower_names.find(hash_of(name));
    if (found != lower_names.end() && name.size() == found->second.size()) {
      return {found->second, std::move(name)};
    }
  }
}

TEST_F(PARAMETER_READER, NamesOfOneHashAreToldApart) {
  const auto [lower, higher] = names_of_one_hash();
  EXPECT_EQ(read_dword(nullptr, higher.c_str(), 1), "dword known false 1 0 ''");
  EXPECT_EQ(m_reader.find_parameter(lower.c_str()), nullptr);
  EXPECT_EQ(read_dword(nullptr, lower.c_str(), 2), "dword known false 2 0 ''");
  EXPECT_EQ(told(m_reader.find_parameter(higher.c_str())), "dword known false 1 0 ''");
  EXPECT_EQ(told(m_reader.find_parameter(lower.c_str())), "dword known false 2 0 ''");
}

// The hash takes no notice of the bit that makes capital letters small ones.
TEST_F(PARAMETER_READER, OnlyLettersHaveACase) {
  EXPECT_EQ(read_dword(nullptr, "_a[0]", 1), "dword known false 1 0 ''");
  EXPECT_NE(m_reader.find_parameter("_A[0]"), nullptr);
  EXPECT_EQ(m_reader.find_parameter("\177a[0]"), nullptr);
  EXPECT_EQ(m_reader.find_parameter("_a{0]"), nullptr);
  EXPECT_EQ(m_reader.find_parameter("_a[0}"), nullptr);
}

TEST_F(PARAMETER_READER, ParameterNameMustNotBeNull) {
  EXPECT_FALSE(m_reader.read_bool_parameter("sdram", nullptr, nullptr, nullptr));
  EXPECT_FALSE(m_reader.read_dword_parameter("sdram", nullptr, nullptr, nullptr));
  EXPECT_FALSE(m_reader.read_double_parameter("sdram", nullptr, nullptr, nullptr));
  EXPECT_FALSE(m_reader.read_string_parameter("sdram", nullptr, nullptr, nullptr));
  // What else is reported on the way is not laid down.
  TEXTS conditions;
  for (const std::string& condition : m_recorder.conditions()) {
    if (condition == "parameter_name != NULL") conditions.push_back(condition);
  }
  EXPECT_EQ(conditions, TEXTS(4, "parameter_name != NULL"));
  m_recorder.forget();
  m_reader.read_bool_parameter(nullptr, nullptr, nullptr, nullptr);
  ASSERT_FALSE(m_recorder.conditions().empty());
  EXPECT_EQ(m_recorder.conditions().front(), "parameter_name != NULL");
  m_expected_conditions = m_recorder.conditions();
}

// What is read again takes no memory again, however often.
TEST_F(PARAMETER_READER, WhatWasReadTakesNoMoreMemory) {
  read_dword("sdram", "a_parameter_with_a_rather_long_name", 7);
  const auto read_often = [this] {
    for (int i = 0; i != 1000; i++) {
      read_dword("sdram", "A_parameter_with_a_rather_long_name", 8);
      read_string(nullptr, "text");
    }
  };
  read_often();  // The document makes itself an index when it is asked often.
  const std::size_t kept = sbd_host::get_memory_account("SBD").live_bytes;
  read_often();
  EXPECT_EQ(told_of("sdram", "a_parameter_with_a_rather_long_name"), "dword known false 7 0 ''");
  EXPECT_EQ(sbd_host::get_memory_account("SBD").live_bytes, kept);
}

// Many times more of them than any chip has.
TEST_F(PARAMETER_READER, ThousandsOfParametersAreAllFound) {
  constexpr unsigned long k_count = 3000;
  for (unsigned long i = 0; i != k_count; i++) {
    const unsigned long value = i * 3;
    m_reader.read_dword_parameter(nullptr, ("p" + std::to_string(i)).c_str(), &value, nullptr);
  }
  for (unsigned long i = 0; i != k_count; i++) {
    bool is_defined = true, has_value = false;
    const std::string name = "P" + std::to_string(i);
    EXPECT_EQ(m_reader.lookup_dword_parameter(name.c_str(), is_defined, has_value, false), i * 3);
    EXPECT_TRUE(has_value && !is_defined);
  }
  EXPECT_EQ(m_reader.find_parameter("p3000"), nullptr);
}

TEST_F(PARAMETER_READER, DocumentIsNotChangedAndNotAskedAgain) {
  read_dword("sdram", "width");
  read_string(nullptr, "text");
  EXPECT_TRUE(m_document->set_value("stripe0.sdram", "width", 16UL, 10, SBD_PARA_VALUE::QU_NONE));
  m_document->clear();
  bool is_defined = false, has_value = false;
  EXPECT_EQ(m_reader.lookup_dword_parameter("sdram.width", is_defined, has_value, false), 32u);
  EXPECT_TRUE(is_defined);
  EXPECT_EQ(plain(m_reader.lookup_string_parameter("text", is_defined, has_value, false)), "big");
}

TEST_F(PARAMETER_READER, DescriptorMayBeReadAfterTheReaderIsMade) {
  SBD_FILE_PARSER document;
  TEST_READER reader(document);
  EXPECT_TRUE(read_text(document, TEXT));
  reader.read_dword_parameter("sdram", "width", nullptr, nullptr);
  EXPECT_EQ(told(reader.record("stripe0.sdram.width")), "dword defined known false 32 0 ''");
}

// ---- Rounding ----------------------------------------------------------------------------------

// The parameter `x` of a document that writes it as `value`.
unsigned long dword_of(const std::string& value) {
  const auto document = document_of("device d { x = " + value + "; }");
  TEST_READER reader(*document, "d");
  reader.read_dword_parameter(nullptr, "x", nullptr, nullptr);
  const VALUE* const record = reader.record("d.x");
  EXPECT_TRUE(record->m_has_value) << value;
  return record->m_dword_value;
}

double double_of(const std::string& value) {
  const auto document = document_of("device d { x = " + value + "; }");
  TEST_READER reader(*document, "d");
  reader.read_double_parameter(nullptr, "x", nullptr, nullptr);
  const VALUE* const record = reader.record("d.x");
  EXPECT_TRUE(record->m_has_value) << value;
  return record->m_double_value;
}

struct ROUNDING {
  const char* value;
  unsigned long dword;
};

TEST(PARAMETER_ROUNDING, NumbersAreScaledAndRoundedToTheNearestEvenOnTies) {
  for (const ROUNDING& rounding : std::vector<ROUNDING>{
           {"0", 0},
           {"0.", 0},
           {"0.4999", 0},
           {"0.5", 0},
           {"0.5001", 1},
           {"1.5", 2},
           {"2.5", 2},
           {"2.50001", 3},
           {"3.5", 4},
           {"2.49999", 2},
           {"-0.5", 0},
           {"-0.75", 4294967295},
           {"-1", 4294967295},
           {"-1.5", 4294967294},
           {"-2.5", 4294967294},
           {"-3.5", 4294967292},
           {"-1K", 4294966272},
           {"-4294967295", 1},
           {"010", 8},
           {"0x1F", 31},
           {"0b101", 5},
           {"0b101K", 5120},
           {"010K", 8192},
           {"+7", 7},
           {"64K", 65536},
           {"64KB", 65536},
           {"2M", 2097152},
           {"2MB", 2097152},
           {"1G", 1073741824},
           {"3GB", 3221225472},
           {"4G", 0},
           {"5G", 1073741824},
           {"4.5G", 536870912},
           {"0x40K", 65536},
           {"33MHz", 33000000},
           {"33mhz", 33000000},
           {"33hZ", 33},
           {"33.5Hz", 34},
           {"32.5Hz", 32},
           {"5000MHz", 705032704},
           {"1.5K", 1536},
           {"0.00048828125K", 0},
           {"0.00146484375K", 2},
           {"0.00244140625K", 2},
           {"0.0000004M", 0},
           {"0.000000476837158203125M", 0},
           {"0.000001430511474609375M", 2},
           {"33.333333MHz", 33333333},
           {"66.0000005MHz", 66000000},
           {"66.0000015MHz", 66000001},
           {"4294967295", 4294967295},
           {"4294967294.5", 4294967294},
           {"4294967295.5", 0},
           {"4294967296.", 0},
           {"4294967297.", 1},
           {"4294967297.5", 2},
           {"8589934593.", 1},
           {"9007199254740993.", 0},
           {"9007199254740994.", 2},
           {"9223372036854775808.", 0},
           {"9223372036854779904.", 4096},
           {"-9223372036854779904.", 4294963200},
           {"18446744073709555712.", 0},
           {"36893488147419111424.", 0},
           {"79228162514264337593543950336.", 0},
       }) {
    EXPECT_EQ(dword_of(rounding.value), rounding.dword) << rounding.value;
  }
}

// Between the product and the rounding lie 64 bits: fewer make ties of numbers that are none, more
// would keep apart what is a tie.
TEST(PARAMETER_ROUNDING, ProductsHave64Bits) {
  for (const ROUNDING& rounding : std::vector<ROUNDING>{{"0.0000025MHz", 3},
                                                        {"0.0000035MHz", 3},
                                                        {"0.0000045MHz", 5},
                                                        {"0.0000055MHz", 5},
                                                        {"3.7436585MHz", 3743658},
                                                        {"3.0688415MHz", 3068842},
                                                        {"0.1194355MHz", 119436},
                                                        {"3.5641235MHz", 3564124},
                                                        {"-3.7436585MHz", 4291223638}}) {
    EXPECT_EQ(dword_of(rounding.value), rounding.dword) << rounding.value;
  }
  EXPECT_EQ(double_of("33.131914MHz"), 0x1.f98d8a0000000p+24);
  EXPECT_EQ(double_of("67.091953MHz"), 0x1.ffdef88000000p+25);
  EXPECT_EQ(double_of("66.972227MHz"), 0x1.fef5218000000p+25);
  EXPECT_EQ(double_of("64.279453MHz"), 0x1.ea69ce8000000p+25);
}

// What machines with a wider type need is tried with the types that are narrower here.
TEST(PARAMETER_ROUNDING, FewerDigitsAreThoseOfTheNarrowerType) {
  std::mt19937_64 random(7);
  for (int count = 0; count != 100000; ++count) {
    const auto integer = static_cast<long double>(random() >> (random() % 64));
    const long double number =
        std::ldexp(random() % 2 == 0 ? integer : -integer, static_cast<int>(random() % 80) - 60);
    ASSERT_EQ(sbd_round_to_digits<53>(number), static_cast<double>(number));
    ASSERT_EQ(sbd_round_to_digits<24>(number), static_cast<float>(number));
  }
  constexpr long double k_infinity = std::numeric_limits<long double>::infinity();
  EXPECT_EQ(sbd_round_to_digits<53>(k_infinity), k_infinity);
  EXPECT_EQ(sbd_round_to_digits<53>(-k_infinity), -k_infinity);
  EXPECT_TRUE(std::isnan(sbd_round_to_digits<53>(std::numeric_limits<long double>::quiet_NaN())));
  EXPECT_EQ(sbd_extended(1.5L), 1.5L);
}

TEST(PARAMETER_ROUNDING, DoublesAreScaledButNotRounded) {
  EXPECT_EQ(double_of("7.5"), 7.5);
  EXPECT_EQ(double_of("-7.25"), -7.25);
  EXPECT_EQ(double_of("1.5K"), 1536);
  EXPECT_EQ(double_of("4G"), 4294967296.0);
  EXPECT_EQ(double_of("33MHz"), 33e6);
  EXPECT_EQ(double_of("0.5Hz"), 0.5);
  EXPECT_EQ(double_of("0x10"), 16);
  EXPECT_EQ(double_of("0b11M"), 3145728);
  EXPECT_EQ(double_of("017"), 15);
}

TEST(PARAMETER_ROUNDING, AgreesWithExactArithmetic) {
  std::mt19937_64 random(20240229);
  const char* const units[] = {"", "K", "M", "G", "Hz", "MHz", "MHz", "MHz"};
  std::string text = "device d {\n";
  std::vector<WRITTEN> numbers;
  for (int count = 0; count < 4000; ++count) {
    const std::string unit = units[random() % 8];
    const std::uint64_t whole_part = random() % (std::uint64_t{1} << (random() % 33));
    std::string digits = std::to_string(whole_part) + ".";
    for (std::uint64_t length = random() % 12; length > 0; --length) {
      digits += static_cast<char>('0' + random() % 10);
    }
    if (random() % 3 == 0) digits += "5";
    if (random() % 8 == 0) digits.insert(0, "-");
    numbers.push_back(fraction(digits, unit));
    text += "x" + std::to_string(count) + " = " + numbers.back().text + ";\n";
  }
  const auto document = document_of(text + "}\n");
  TEST_READER dwords(*document, "d"), doubles(*document, "d");
  for (std::size_t index = 0; index < numbers.size(); ++index) {
    const std::string name = "x" + std::to_string(index);
    dwords.read_dword_parameter(nullptr, name.c_str(), nullptr, nullptr);
    doubles.read_double_parameter(nullptr, name.c_str(), nullptr, nullptr);
    const WIDE_NUMBER product = WIDE_NUMBER(numbers[index].number)
                                    .times(static_cast<std::uint32_t>(numbers[index].multiplier));
    EXPECT_EQ(dwords.record("d." + name)->m_dword_value, product.to_dword()) << numbers[index].text;
    EXPECT_EQ(doubles.record("d." + name)->m_double_value, product.to_double())
        << numbers[index].text;
  }
}

// ---- Lookups -----------------------------------------------------------------------------------

class PARAMETER_LOOKUP : public PARAMETER_READER {
 protected:
  PARAMETER_LOOKUP() {
    read_bool(nullptr, "flag");
    read_bool(nullptr, "unknown_flag");
    read_dword("sdram", "width");
    read_dword("sdram", "default_width", 7);
    read_double("sdram", "period");
    read_string("sdram", "type");
    read_string("sdram", "no_text");
    read_bool(nullptr, "number", true);
  }

  void validate_all() {
    for (const char* const name : {"flag", "unknown_flag", "sdram.width", "sdram.default_width",
                                   "sdram.period", "sdram.type", "sdram.no_text", "number"}) {
      m_reader.mark_parameter_as_validated(name);
    }
  }

  // Both flags are set the other way round before.
  std::string told_bool(const char* name, bool check_validated) {
    bool is_defined = !m_is_defined, has_value = !m_has_value;
    const bool value = m_reader.lookup_bool_parameter(name, is_defined, has_value, check_validated);
    return remember(is_defined, has_value, value ? "true" : "false");
  }
  std::string told_dword(const char* name, bool check_validated) {
    bool is_defined = !m_is_defined, has_value = !m_has_value;
    const unsigned long value =
        m_reader.lookup_dword_parameter(name, is_defined, has_value, check_validated);
    return remember(is_defined, has_value, std::to_string(value));
  }
  std::string told_double(const char* name, bool check_validated) {
    bool is_defined = !m_is_defined, has_value = !m_has_value;
    const double value =
        m_reader.lookup_double_parameter(name, is_defined, has_value, check_validated);
    return remember(is_defined, has_value, std::to_string(value));
  }
  std::string told_string(const char* name, bool check_validated) {
    bool is_defined = !m_is_defined, has_value = !m_has_value;
    const SBD_STRING value =
        m_reader.lookup_string_parameter(name, is_defined, has_value, check_validated);
    return remember(is_defined, has_value, "'" + plain(value) + "'");
  }

 private:
  std::string remember(bool is_defined, bool has_value, const std::string& value) {
    m_is_defined = is_defined;
    m_has_value = has_value;
    return std::string(is_defined ? "defined " : "") + (has_value ? "known " : "") + value;
  }

  bool m_is_defined = false, m_has_value = false;
};

TEST_F(PARAMETER_LOOKUP, GivesValueAndFlags) {
  EXPECT_EQ(told_bool("flag", false), "defined known true");
  EXPECT_EQ(told_bool("unknown_flag", false), "false");
  EXPECT_EQ(told_bool("number", false), "defined false");
  EXPECT_EQ(told_dword("sdram.width", false), "defined known 32");
  EXPECT_EQ(told_dword("sdram.default_width", false), "known 7");
  EXPECT_EQ(told_double("sdram.period", false), "defined known 7.500000");
  EXPECT_EQ(told_string("sdram.type", false), "defined known 'sdr'");
  EXPECT_EQ(told_string("sdram.no_text", false), "defined known ''");
}

TEST_F(PARAMETER_LOOKUP, LetterCaseOfTheNameDoesNotMatter) {
  EXPECT_EQ(told_bool("FLAG", false), "defined known true");
  EXPECT_EQ(told_dword("Sdram.WIDTH", false), "defined known 32");
  EXPECT_EQ(told_double("SDRAM.Period", false), "defined known 7.500000");
  EXPECT_EQ(told_string("sdram.tYPE", false), "defined known 'sdr'");
}

TEST_F(PARAMETER_LOOKUP, NameMustNotBeNull) {
  m_reader.m_report_unread = false;
  EXPECT_EQ(told_bool(nullptr, false), "false");
  EXPECT_EQ(told_dword(nullptr, false), "0");
  EXPECT_EQ(told_double(nullptr, true), "0.000000");
  EXPECT_EQ(told_string(nullptr, true), "''");
  m_expected_conditions.assign(4, "reference_name != NULL");
}

TEST_F(PARAMETER_LOOKUP, NullGoesOnAsTheEmptyName) {
  m_reader.m_report_unread = true;
  EXPECT_EQ(told_bool(nullptr, false), "false");
  m_expected_conditions = {"reference_name != NULL",
                           "Parameter stripe0. has not been read from the SBD file"};
}

TEST_F(PARAMETER_LOOKUP, UnreadNameIsSilentlyZero) {
  EXPECT_EQ(told_bool("never", true), "false");
  EXPECT_EQ(told_dword("sdram.never", true), "0");
  EXPECT_EQ(told_double("never", true), "0.000000");
  EXPECT_EQ(told_string("sdram", true), "''");
  EXPECT_EQ(told_string("", true), "''");
}

TEST_F(PARAMETER_LOOKUP, UnreadNameIsReportedWhereThatIsAskedFor) {
  m_reader.m_report_unread = true;
  EXPECT_EQ(told_bool("Never", true), "false");
  EXPECT_EQ(told_dword("sdram.never[2]", true), "0");
  EXPECT_EQ(told_double("never", false), "0.000000");
  EXPECT_EQ(told_string("SDRAM", false), "''");
  m_expected_conditions = {"Parameter stripe0.never has not been read from the SBD file",
                           "Parameter stripe0.sdram.never[2] has not been read from the SBD file",
                           "Parameter stripe0.never has not been read from the SBD file",
                           "Parameter stripe0.sdram has not been read from the SBD file"};
}

TEST_F(PARAMETER_LOOKUP, LongNamesAreReportedInFull) {
  m_reader.m_report_unread = true;
  const std::string name(5000, 'x');
  EXPECT_EQ(told_bool(name.c_str(), true), "false");
  m_expected_conditions = {"Parameter stripe0." + name + " has not been read from the SBD file"};
}

TEST_F(PARAMETER_LOOKUP, NamesAreNoFormats) {
  m_reader.m_report_unread = true;
  EXPECT_EQ(told_bool("%s%n%d", true), "false");
  m_expected_conditions = {"Parameter stripe0.%s%n%d has not been read from the SBD file"};
}

TEST_F(PARAMETER_LOOKUP, OtherKindIsReportedAndZero) {
  EXPECT_EQ(told_bool("sdram.width", false), "defined known false");
  EXPECT_EQ(told_dword("flag", false), "defined known 0");
  EXPECT_EQ(told_double("sdram.default_width", false), "known 0.000000");
  EXPECT_EQ(told_string("sdram.period", false), "defined known ''");
  EXPECT_EQ(told_bool("sdram.type", false), "defined known false");
  EXPECT_EQ(told_string("unknown_flag", false), "''");
  m_expected_conditions = {"m_value_type == BOOL_VALUE",   "m_value_type == DWORD_VALUE",
                           "m_value_type == DOUBLE_VALUE", "m_value_type == STRING_VALUE",
                           "m_value_type == BOOL_VALUE",   "m_value_type == STRING_VALUE"};
}

TEST_F(PARAMETER_LOOKUP, OtherKindAndMissingValidationAreBothReported) {
  EXPECT_EQ(told_bool("sdram.width", true), "defined known false");
  m_expected_conditions = {"m_value_type == BOOL_VALUE",
                           "Parameter stripe0.sdram.width has not been validated."};
}

TEST_F(PARAMETER_LOOKUP, MissingValidationIsReportedAndTheValueStillGiven) {
  EXPECT_EQ(told_bool("Flag", true), "defined known true");
  EXPECT_EQ(told_dword("sdram.width", true), "defined known 32");
  EXPECT_EQ(told_double("sdram.period", true), "defined known 7.500000");
  EXPECT_EQ(told_string("sdram.type", true), "defined known 'sdr'");
  EXPECT_EQ(told_bool("unknown_flag", true), "false");
  m_expected_conditions = {"Parameter stripe0.flag has not been validated.",
                           "Parameter stripe0.sdram.width has not been validated.",
                           "Parameter stripe0.sdram.period has not been validated.",
                           "Parameter stripe0.sdram.type has not been validated.",
                           "Parameter stripe0.unknown_flag has not been validated."};
}

TEST_F(PARAMETER_LOOKUP, ValidatedParametersAreSilent) {
  validate_all();
  EXPECT_EQ(told_bool("flag", true), "defined known true");
  EXPECT_EQ(told_dword("sdram.width", true), "defined known 32");
  EXPECT_EQ(told_double("sdram.period", true), "defined known 7.500000");
  EXPECT_EQ(told_string("sdram.type", true), "defined known 'sdr'");
  EXPECT_EQ(told_string("sdram.no_text", true), "defined known ''");
}

// ---- Marking -----------------------------------------------------------------------------------

TEST_F(PARAMETER_LOOKUP, MarkIsSetForOneParameterInAnyLetterCase) {
  m_reader.mark_parameter_as_validated("SDRAM.width");
  EXPECT_TRUE(m_reader.record("stripe0.sdram.width")->m_is_validated);
  for (const auto& [name, record] : m_reader.m_parameters) {
    EXPECT_EQ(record.m_is_validated, plain(name) == "stripe0.sdram.width") << plain(name);
  }
  m_reader.mark_parameter_as_validated("sdram.width");
  EXPECT_TRUE(m_reader.record("stripe0.sdram.width")->m_is_validated);
}

TEST_F(PARAMETER_LOOKUP, MarkOfAnUnreadNameIsIgnored) {
  m_reader.m_report_unread = true;
  m_reader.mark_parameter_as_validated("never");
  m_reader.mark_parameter_as_validated("");
  m_reader.mark_parameter_as_validated("stripe0.sdram.width");
  EXPECT_EQ(m_reader.m_parameters.size(), 8u);
  EXPECT_FALSE(m_reader.record("stripe0.sdram.width")->m_is_validated);
}

TEST_F(PARAMETER_LOOKUP, MarkOfNullIsAnInternalError) {
  m_reader.mark_parameter_as_validated(nullptr);
  for (const auto& [name, record] : m_reader.m_parameters) EXPECT_FALSE(record.m_is_validated);
  m_expected_conditions = {"reference_name != NULL"};
}

// ---- Typed queries -----------------------------------------------------------------------------

TEST_F(PARAMETER_LOOKUP, QueriesGiveValidatedValues) {
  validate_all();
  bool flag = false;
  EXPECT_TRUE(m_reader.get_parameter("flag", flag));
  EXPECT_TRUE(flag);
  unsigned long dword = 0;
  EXPECT_TRUE(m_reader.get_parameter("sdram.width", dword));
  EXPECT_EQ(dword, 32u);
  EXPECT_TRUE(m_reader.get_parameter("Sdram", "Default_Width", dword));
  EXPECT_EQ(dword, 7u);
  double number = 0;
  EXPECT_TRUE(m_reader.get_parameter("sdram", "period", number));
  EXPECT_EQ(number, 7.5);
  SBD_STRING text;
  EXPECT_TRUE(m_reader.get_parameter("sdram", "TYPE", text));
  EXPECT_EQ(plain(text), "sdr");
  text = "before";
  EXPECT_TRUE(m_reader.get_parameter("sdram.no_text", text));
  EXPECT_EQ(plain(text), "");
}

TEST_F(PARAMETER_LOOKUP, QueriesAlwaysWriteTheirOutput) {
  validate_all();
  bool flag = true;
  EXPECT_FALSE(m_reader.get_parameter("unknown_flag", flag));
  EXPECT_FALSE(flag);
  flag = true;
  EXPECT_FALSE(m_reader.get_parameter("number", flag));
  EXPECT_FALSE(flag);
  flag = true;
  EXPECT_FALSE(m_reader.get_parameter("never", flag));
  EXPECT_FALSE(flag);
  unsigned long dword = 5;
  EXPECT_FALSE(m_reader.get_parameter("sdram", "never", dword));
  EXPECT_EQ(dword, 0u);
  double number = 5;
  EXPECT_FALSE(m_reader.get_parameter("never", number));
  EXPECT_EQ(number, 0.0);
  SBD_STRING text = "before";
  EXPECT_FALSE(m_reader.get_parameter("never", text));
  EXPECT_EQ(plain(text), "");
}

TEST_F(PARAMETER_LOOKUP, QueriesInsistOnValidation) {
  bool flag = false;
  EXPECT_TRUE(m_reader.get_parameter("flag", flag));
  EXPECT_TRUE(flag);
  SBD_STRING text;
  EXPECT_TRUE(m_reader.get_parameter("sdram", "type", text));
  EXPECT_EQ(plain(text), "sdr");
  unsigned long dword = 0;
  EXPECT_TRUE(m_reader.get_parameter("sdram", "width", dword));
  EXPECT_TRUE(m_reader.get_parameter("sdram", "width", dword));
  m_expected_conditions = {"Parameter stripe0.flag has not been validated.",
                           "Parameter stripe0.sdram.type has not been validated.",
                           "Parameter stripe0.sdram.width has not been validated.",
                           "Parameter stripe0.sdram.width has not been validated."};
}

TEST_F(PARAMETER_LOOKUP, QueryOfANullNameGoesOnWithTheEmptyName) {
  bool flag = true;
  EXPECT_FALSE(m_reader.get_parameter(nullptr, flag));
  EXPECT_FALSE(flag);
  unsigned long dword = 5;
  EXPECT_FALSE(m_reader.get_parameter(nullptr, "width", dword));
  EXPECT_EQ(dword, 0u);
  double number = 5;
  EXPECT_FALSE(m_reader.get_parameter("sdram", nullptr, number));
  EXPECT_EQ(number, 0.0);
  m_reader.m_report_unread = true;
  SBD_STRING text = "before";
  EXPECT_FALSE(m_reader.get_parameter(nullptr, nullptr, text));
  EXPECT_EQ(plain(text), "");
  m_expected_conditions = {"reference_name != NULL", "block_name != NULL && parameter_name != NULL",
                           "block_name != NULL && parameter_name != NULL",
                           "block_name != NULL && parameter_name != NULL",
                           "Parameter stripe0. has not been read from the SBD file"};
}

// ---- Posting -----------------------------------------------------------------------------------

TEST_F(PARAMETER_READER, MessagesArePostedAndDestroyed) {
  m_reader.post_message(MSG_SBD::E::SBD_PARAMETER_MISSING_ERROR("a.b"));
  m_reader.post_message(nullptr);
  EXPECT_EQ(m_recorder.numbers(), std::vector<int>{12});
  m_expected_messages = {"System Build Descriptor File must contain parameter \"a.b\""};
}

TEST_F(PARAMETER_READER, NothingIsPostedWhilePostingIsOff) {
  m_reader.m_post_messages = false;
  MSG_E* const message = MSG_SBD::E::SBD_PARAMETER_MISSING_ERROR("a.b");
  m_reader.post_message(message);
  m_reader.post_message(nullptr);
  EXPECT_TRUE(m_recorder.is_silent());
  delete message;  // It has stayed the caller's.
}

// ---- Where values come from --------------------------------------------------------------------

TEST_F(PARAMETER_READER, OriginTellsWhereAValueCameFrom) {
  read_bool(nullptr, "flag", false, false);
  read_dword("sdram", "a", 1, 2);
  read_dword("uart", "a", 1, 2);
  read_dword("uart", "b", 1, {});
  read_dword("sdram", "b", {}, 2);
  EXPECT_EQ(m_reader.get_parameter_origin("FLAG"), PO_STATEMENT);
  EXPECT_EQ(m_reader.get_parameter_origin("sdram.a"), PO_PRESENT_BLOCK_DEFAULT);
  EXPECT_EQ(m_reader.get_parameter_origin("uart.a"), PO_ABSENT_BLOCK_DEFAULT);
  EXPECT_EQ(m_reader.get_parameter_origin("uart.b"), PO_NONE);
  EXPECT_EQ(m_reader.get_parameter_origin("sdram.b"), PO_NONE);
  EXPECT_EQ(m_reader.get_parameter_origin("never"), PO_NONE);
  EXPECT_EQ(m_reader.get_parameter_origin(nullptr), PO_NONE);
}

TEST_F(PARAMETER_READER, WrongKindComesFromAStatement) {
  read_bool(nullptr, "number", true, true);
  read_string(nullptr, "items", "a", "b");
  read_dword(nullptr, "link", 1, 2);
  EXPECT_EQ(m_reader.get_parameter_origin("number"), PO_STATEMENT);
  EXPECT_EQ(m_reader.get_parameter_origin("items"), PO_STATEMENT);
  EXPECT_EQ(m_reader.get_parameter_origin("link"), PO_STATEMENT);
}

TEST_F(PARAMETER_READER, OriginOfTextsIsTold) {
  read_string("sdram", "type", "a", "b");
  read_string("sdram", "c", "a", "b");
  read_string("uart", "c", "a", "b");
  read_string("uart", "d", "a", nullptr);
  EXPECT_EQ(m_reader.get_parameter_origin("sdram.type"), PO_STATEMENT);
  EXPECT_EQ(m_reader.get_parameter_origin("sdram.c"), PO_PRESENT_BLOCK_DEFAULT);
  EXPECT_EQ(m_reader.get_parameter_origin("uart.c"), PO_ABSENT_BLOCK_DEFAULT);
  EXPECT_EQ(m_reader.get_parameter_origin("uart.d"), PO_NONE);
}

TEST_F(PARAMETER_READER, RecordsAreFoundByReference) {
  m_reader.m_report_unread = true;
  read_dword("sdram", "width");
  EXPECT_EQ(m_reader.find_parameter("SDRAM.width"), m_reader.record("stripe0.sdram.width"));
  EXPECT_EQ(m_reader.find_parameter("width"), nullptr);
  EXPECT_EQ(m_reader.find_parameter(nullptr), nullptr);
  EXPECT_TRUE(m_reader.get_faults().empty());
}

TEST_F(PARAMETER_READER, ReadingTellsWhetherThereIsAValue) {
  const bool flag = true;
  EXPECT_TRUE(m_reader.read_bool_parameter(nullptr, "flag", nullptr, nullptr));
  EXPECT_FALSE(m_reader.read_bool_parameter(nullptr, "a", nullptr, nullptr));
  EXPECT_TRUE(m_reader.read_bool_parameter(nullptr, "b", &flag, nullptr));
  EXPECT_FALSE(m_reader.read_bool_parameter(nullptr, "text", &flag, &flag));
  EXPECT_FALSE(m_reader.read_dword_parameter("sdram", "on", nullptr, nullptr));
  EXPECT_TRUE(m_reader.read_string_parameter("uart", "x", nullptr, nullptr));
}

// ---- Many parameters ---------------------------------------------------------------------------

TEST(PARAMETER_READER_SCALE, ManyParametersAreReadAndFound) {
  std::string text = "device d {\n";
  for (int index = 0; index < 20000; ++index) {
    text += "x" + std::to_string(index) + " = " + std::to_string(index) + ";\n";
  }
  const auto document = document_of(text + "}\n");
  TEST_READER reader(*document, "D");
  for (int index = 0; index < 20000; ++index) {
    const std::string name = "x" + std::to_string(index);
    reader.read_dword_parameter(nullptr, name.c_str(), nullptr, nullptr);
    reader.mark_parameter_as_validated(name.c_str());
  }
  for (int index = 0; index < 20000; ++index) {
    unsigned long value = 0;
    ASSERT_TRUE(reader.get_parameter(("X" + std::to_string(index)).c_str(), value));
    ASSERT_EQ(value, static_cast<unsigned long>(index));
  }
}

TEST(PARAMETER_READER_SCALE, ManyParametersTakeMemoryInFewPieces) {
  const auto document = document_of("device d { x = 1; }");
  TEST_READER reader(*document, "d");
  const std::size_t made = sbd_host::get_memory_account("SBD").total_allocations;
  for (int index = 0; index < 20000; ++index) {
    reader.read_bool_parameter(nullptr, ("x" + std::to_string(index)).c_str(), nullptr, nullptr);
  }
  EXPECT_EQ(reader.m_parameters.size(), 20000U);
  EXPECT_LT(sbd_host::get_memory_account("SBD").total_allocations - made, 100U);
}

}  // namespace
