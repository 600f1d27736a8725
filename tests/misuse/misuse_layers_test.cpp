// What callers do wrong with the parser, with documents that keep the text, and with devices.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "sbd/sbd_parameter_rules.h"
#include "sbd/sbd_parser.h"
#include "sbd/sbd_source_document.h"
#include "sbd/sbd_veldran.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/tree_builder.h"
#include "tests/support/tree_outline.h"

namespace {

using TEXTS = std::vector<std::string>;

constexpr char k_text[] = "device d {\n  a = 1 [k .v]; # t\n  r <d.a>;\n}\n";
constexpr const char* k_null = nullptr;

// ---- Scanner and parser ------------------------------------------------------------------------

TEST(MISUSED_PARSER, OfNoTextMakesAnEmptyDocument) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  sbd_yyFlexLexer scanner(nullptr, 0);
  EXPECT_EQ(sbd_yyparse(&scanner, &document.get_parser_para()), 0);
  EXPECT_EQ(root_of(document), nullptr);
  EXPECT_TRUE(recorder.is_silent());
}

TEST(MISUSED_PARSER, OfANullTextWithALengthReadsNothing) {
  MESSAGE_RECORDER recorder;
  sbd_yyFlexLexer scanner(nullptr, 5);
  EXPECT_EQ(scanner.yylex(), 0);
  EXPECT_EQ(recorder.conditions(), TEXTS{"text != NULL"});
}

TEST(MISUSED_PARSER, OfNullsGivesUp) {
  MESSAGE_RECORDER recorder;
  sbd_yyFlexLexer scanner("", 0);
  EXPECT_EQ(sbd_yyparse(nullptr, nullptr), 1);
  EXPECT_EQ(sbd_yyparse(&scanner, nullptr), 1);
  SBD_FILE_PARSER::SBD_PARSER_PARA para;
  EXPECT_EQ(sbd_yyparse(&scanner, &para), 1);
  sbd_yyerror(nullptr, nullptr);
  EXPECT_EQ(recorder.conditions(), (TEXTS{"scanner != NULL && parser_para != NULL",
                                          "scanner != NULL && parser_para != NULL",
                                          "symbol_table != NULL", "scanner != NULL"}));
}

TEST(MISUSED_BUILDERS, OfNullsReportAndGoOn) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  EXPECT_EQ(sbd_do_comment(nullptr), nullptr);
  EXPECT_EQ(sbd_do_para_value(SBD_TOK_UDECIMAL, nullptr), nullptr);
  EXPECT_EQ(sbd_do_para_ref(nullptr), nullptr);
  EXPECT_EQ(sbd_join_node(nullptr, nullptr), nullptr);
  EXPECT_EQ(sbd_join_para_ref(nullptr, nullptr), nullptr);
  EXPECT_EQ(sbd_join_para_attr(nullptr, nullptr), nullptr);
  EXPECT_EQ(recorder.internal_errors().size(), 3U);
  recorder.forget();
  SBD_PARA_ATTR* const attribute = sbd_do_para_attr(nullptr, nullptr);
  ASSERT_NE(attribute, nullptr);
  EXPECT_EQ(attribute->attr_key, nullptr);
  delete attribute;
  EXPECT_EQ(recorder.conditions(), TEXTS{"attr_key != NULL"});
  document.free_node(sbd_do_block(nullptr, nullptr, nullptr, nullptr));
  document.free_node(sbd_do_assignment(nullptr, nullptr, nullptr, nullptr, nullptr));
  document.free_node(sbd_do_reference(nullptr, nullptr, nullptr, nullptr));
  EXPECT_EQ(sbd_create_symbol(SBD_SYMBOL::SYM_BLOCK, nullptr, nullptr, nullptr), nullptr);
  EXPECT_TRUE(recorder.messages().empty());
}

TEST(MISUSED_BUILDERS, SymbolsNeedAName) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  auto* const table = document.get_parser_para().symbol_table;
  EXPECT_EQ(sbd_create_symbol(SBD_SYMBOL::SYM_BLOCK, nullptr, nullptr, table), nullptr);
  EXPECT_EQ(recorder.conditions(), TEXTS{"name != NULL"});
}

// Without a document, a table just keeps what is entered.
TEST(MISUSED_BUILDERS, TablesOfNoDocumentKeepSymbols) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER::SBD_SYMBOL_TABLE table(nullptr);
  SBD_TOKEN_INFO lower;
  lower.text = "name";
  SBD_TOKEN_INFO upper;
  upper.text = "NAME";
  SBD_SYMBOL* const first = sbd_create_symbol(SBD_SYMBOL::SYM_PARAMETER, nullptr, &lower, &table);
  SBD_SYMBOL* const second = sbd_create_symbol(SBD_SYMBOL::SYM_PARAMETER, nullptr, &upper, &table);
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(second->next, first);
  EXPECT_TRUE(recorder.is_silent());
  free_symbol(first);
  free_symbol(second);
}

TEST(MISUSED_PARSER, FilledDocumentsAndUsedScannersAreRefused) {
  MESSAGE_RECORDER recorder;
  const auto document = document_of(k_text);
  const std::string before = outline(*document);
  sbd_yyFlexLexer scanner(k_text, sizeof k_text - 1);
  EXPECT_EQ(sbd_yyparse(&scanner, &document->get_parser_para()), 1);
  EXPECT_EQ(outline(*document), before);
  SBD_FILE_PARSER empty;
  (void)scanner.yylex();
  EXPECT_EQ(sbd_yyparse(&scanner, &empty.get_parser_para()), 1);
  EXPECT_EQ(root_of(empty), nullptr);
  EXPECT_EQ(recorder.conditions(), TEXTS(2, "root == NULL && yy_location.length == 0"));
}

TEST(MISUSED_PARSER, UnknownStartConditionsAreReported) {
  MESSAGE_RECORDER recorder;
  sbd_yyFlexLexer scanner("a # c\n", 6);
  scanner.begin(static_cast<sbd_yyFlexLexer::START_CONDITION>(99));
  EXPECT_EQ(scanner.yylex(), SBD_TOK_IDENTIFIER);
  EXPECT_EQ(recorder.conditions(), TEXTS{"fatal flex scanner internal error--no action found"});
  EXPECT_EQ(scanner.start_condition(), sbd_yyFlexLexer::NORMAL);
}

// A scanner of a caller's may make tokens that the grammar does not have.
class ODD_SCANNER : public sbd_yyFlexLexer {
 public:
  using sbd_yyFlexLexer::sbd_yyFlexLexer;
  int yylex() override {
    const int code = sbd_yyFlexLexer::yylex();
    return code == '=' ? 9999 : code;
  }
};

TEST(MISUSED_PARSER, UnknownTokensAreSyntaxErrors) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  constexpr char k_faulty[] = "device d { a = 1; b 2; }";
  ODD_SCANNER scanner(k_faulty, sizeof k_faulty - 1);
  (void)sbd_yyparse(&scanner, &document.get_parser_para());
  EXPECT_EQ(root_of(document), nullptr);
  ASSERT_FALSE(recorder.messages().empty());
  EXPECT_EQ(recorder.texts().front(), syntax_error_text("", "=", 1));
}

// ---- Documents that keep the text --------------------------------------------------------------

// Edits on a document that was never read.
TEST(MISUSED_SOURCE, NullsChangeNothing) {
  for (const bool is_read : {false, true}) {
    SCOPED_TRACE(is_read);
    MESSAGE_RECORDER recorder;
    SBD_SOURCE_DOCUMENT source;
    const std::string text = is_read ? k_text : "";
    if (is_read) {
      ASSERT_TRUE(source.read_text(k_text, sizeof k_text - 1, TEST_FILE));
    }
    EXPECT_FALSE(source.read(nullptr));
    EXPECT_FALSE(source.read_text(nullptr, 0, nullptr));
    EXPECT_FALSE(source.set_value(nullptr, "1"));
    EXPECT_FALSE(source.set_value("d.a", nullptr));
    EXPECT_FALSE(source.set_value(nullptr, nullptr));
    EXPECT_FALSE(source.add_value(nullptr, nullptr));
    EXPECT_FALSE(source.add_value("d.new", nullptr));
    EXPECT_FALSE(source.add_value("d.new", "1", SBD_PLACE::before(nullptr)));
    EXPECT_FALSE(source.add_value("d.new", "1", {static_cast<SBD_PLACE::KIND>(3), "a"}));
    EXPECT_FALSE(source.set_references(nullptr, {}));
    EXPECT_FALSE(source.set_references("d.new", {"d.a"}, SBD_PLACE::behind(nullptr)));
    EXPECT_FALSE(source.set_attributes(nullptr, nullptr));
    EXPECT_FALSE(source.remove_attributes(nullptr));
    EXPECT_FALSE(source.remove_parameter(nullptr));
    EXPECT_FALSE(source.add_block(nullptr, nullptr, nullptr));
    EXPECT_FALSE(source.add_block("module", nullptr, "d"));
    EXPECT_FALSE(source.remove_block(nullptr));
    EXPECT_FALSE(source.remove_references(nullptr));
    EXPECT_FALSE(source.rename(nullptr, nullptr, true));
    EXPECT_FALSE(source.rename("d.a", nullptr, false));
    EXPECT_FALSE(source.add_block("module", "n", "d", {static_cast<SBD_PLACE::KIND>(3), "a"}));
    EXPECT_FALSE(source.set_references("d.new", {"d.a"}, {static_cast<SBD_PLACE::KIND>(3), "a"}));
    EXPECT_FALSE(source.remove_references(""));
    EXPECT_FALSE(source.rename("", "x", true));
    EXPECT_FALSE(source.rename("d.a", "", true));
    const SBD_PARA_ATTR no_key;
    EXPECT_FALSE(source.set_attributes("d.a", &no_key));
    EXPECT_FALSE(source.remove_attributes("d.r"));
    EXPECT_FALSE(source.remove_attributes("d"));
    EXPECT_FALSE(source.add_value("1", "1"));
    EXPECT_FALSE(source.add_value("x", "1"));
    EXPECT_FALSE(source.add_block("module", "n", "d.a"));
    EXPECT_FALSE(source.commit());
    EXPECT_FALSE(source.roll_back());
    EXPECT_EQ(source.text(), text);
    EXPECT_EQ(outline(source.document()), is_read ? outline(*document_of(k_text)) : "");
  }
}

TEST(MISUSED_SOURCE, ValuesAreOneValue) {
  for (const char* const value : {"1;}device e{w=2", "1;b=2", "1 [k]", "1;# c", "1;# c\n", "", "{",
                                  "1 2", "d.a", "[k]", ";", "}"}) {
    SCOPED_TRACE(value);
    MESSAGE_RECORDER recorder;
    SBD_SOURCE_DOCUMENT source;
    ASSERT_TRUE(source.read_text(k_text, sizeof k_text - 1, TEST_FILE));
    EXPECT_FALSE(source.set_value("d.a", value));
    EXPECT_EQ(source.text(), k_text);
    ASSERT_EQ(recorder.texts().size(), 1U);
    EXPECT_NE(recorder.texts().front().find("Not a value: '"), std::string::npos);
  }
}

TEST(MISUSED_SOURCE, TransactionsDoNotNest) {
  MESSAGE_RECORDER recorder;
  SBD_SOURCE_DOCUMENT source;
  ASSERT_TRUE(source.read_text(k_text, sizeof k_text - 1, TEST_FILE));
  EXPECT_TRUE(source.begin());
  EXPECT_FALSE(source.begin());
  EXPECT_TRUE(source.roll_back());
  EXPECT_FALSE(source.commit());
  EXPECT_EQ(source.text(), k_text);
  EXPECT_TRUE(recorder.is_silent());
}

TEST(MISUSED_SOURCE, SavingWhatWasNeverReadNeedsAPath) {
  MESSAGE_RECORDER recorder;
  SBD_SOURCE_DOCUMENT source;
  EXPECT_FALSE(source.save(nullptr));
  EXPECT_FALSE(source.save_canonical(nullptr));
  EXPECT_EQ(recorder.conditions(), (TEXTS{"path != NULL", "path != NULL"}));
  SBD_STRING why;
  EXPECT_FALSE(sbd_save_document(source.document(), nullptr, why));
  EXPECT_EQ(recorder.conditions().size(), 3U);
  EXPECT_TRUE(source.verify(why));
}

// ---- The device layer --------------------------------------------------------------------------

constexpr char k_no_reader[] = "m_parameter_reader != NULL";

// Every query of a device, none of which has an answer.
void ask_device(const SBD_VELDRAN& device, const char* block, const char* name) {
  bool flag = true;
  unsigned long whole = 77;
  double number = 77;
  SBD_STRING text = "before";
  EXPECT_FALSE(device.get_parameter(name, flag));
  EXPECT_FALSE(device.get_parameter(name, whole));
  EXPECT_FALSE(device.get_parameter(name, number));
  EXPECT_FALSE(device.get_parameter(name, text));
  EXPECT_FALSE(device.get_parameter(block, name, flag));
  EXPECT_FALSE(device.get_parameter(block, name, whole));
  EXPECT_FALSE(device.get_parameter(block, name, number));
  EXPECT_FALSE(device.get_parameter(block, name, text));
  EXPECT_FALSE(flag);
  EXPECT_EQ(whole, 0U);
  EXPECT_EQ(number, 0.0);
  EXPECT_EQ(text, "");
}

TEST(MISUSED_DEVICE, QueriesBeforeReadingAreInternalErrors) {
  MESSAGE_RECORDER recorder;
  for (const char* const name : {"board", "", k_null}) {
    const SBD_VELDRAN device(name);
    recorder.forget();
    ask_device(device, "clocks", "input_clock_frequency");
    ask_device(device, nullptr, nullptr);
    EXPECT_EQ(recorder.conditions(), TEXTS(16, k_no_reader));
    EXPECT_TRUE(recorder.messages().empty());
    EXPECT_TRUE(device.get_parameter_faults().empty());
    EXPECT_EQ(device.get_parameter_reader(), nullptr);
    SBD_PARAMETER_STATE state;
    EXPECT_FALSE(sbd_get_parameter_state(device, "clocks.input_clock_frequency", state));
    EXPECT_FALSE(sbd_get_parameter_state(device, nullptr, state));
  }
}

TEST(MISUSED_DEVICE, QueriesAfterAFailedReadAreInternalErrors) {
  MESSAGE_RECORDER recorder;
  SBD_VELDRAN device("board");
  EXPECT_FALSE(device.read_text("device board { x 5; }", 21, TEST_FILE));
  EXPECT_FALSE(device.read(nullptr));
  EXPECT_FALSE(device.read_text(nullptr, 5, nullptr));
  recorder.forget();
  ask_device(device, "clocks", "input_clock_frequency");
  EXPECT_EQ(recorder.conditions(), TEXTS(8, k_no_reader));
}

TEST(MISUSED_DEVICE, ClocksAndWidthsBeforeReadingAreLeftAsTheyAre) {
  MESSAGE_RECORDER recorder;
  const SBD_VELDRAN device("board");
  double frequency = 77;
  unsigned long width = 77;
  for (const int bus : {0, 1, 2, 3, -1}) {
    EXPECT_FALSE(device.get_ahb_clock_frequency(bus, frequency)) << bus;
  }
  EXPECT_FALSE(device.get_sdram_clock_frequency(frequency));
  EXPECT_EQ(frequency, 77);
  EXPECT_FALSE(device.get_dpram_data_width(0, width));
  EXPECT_EQ(width, 0U);
  EXPECT_FALSE(recorder.conditions().empty());
  EXPECT_TRUE(recorder.messages().empty());
}

TEST(MISUSED_DEVICE, ChecksWithoutADeviceNameAreInternalErrors) {
  MESSAGE_RECORDER recorder;
  SBD_VELDRAN device(nullptr);
  SBD_STRING text = "before";
  EXPECT_FALSE(device.check_device());
  EXPECT_FALSE(device.get_module_ref_name(text));
  EXPECT_FALSE(device.get_chip_type_name(text));
  EXPECT_EQ(text, "before");
  // Both go on, and look for a block without a name.
  const std::string no_name = "(!m_device_name.empty())";
  EXPECT_EQ(recorder.conditions(), (TEXTS{no_name, "ref[p1] == '.'", no_name, "ref[p1] == '.'"}));
}

TEST(MISUSED_RULES, UnknownChipsAndNamesHaveNone) {
  MESSAGE_RECORDER recorder;
  SBD_PARAMETER_RULE rule;
  rule.reference = "before";
  SBD_STRING_LIST names{"before"};
  constexpr auto k_unknown_chip = static_cast<SBD_VELDRAN::CHIP_TYPE>(99);
  for (const auto chip : {SBD_VELDRAN::CT_UNKNOWN, SBD_VELDRAN::CT_QMXM4, k_unknown_chip}) {
    EXPECT_FALSE(sbd_get_parameter_rule(chip, "ebi.enabled", rule));
    names = {"before"};
    EXPECT_FALSE(sbd_get_parameter_names(chip, names));
    EXPECT_TRUE(names.empty());
  }
  EXPECT_FALSE(sbd_get_parameter_rule(SBD_VELDRAN::CT_QMXA4, nullptr, rule));
  EXPECT_FALSE(sbd_get_parameter_rule(SBD_VELDRAN::CT_QMXA4, "", rule));
  EXPECT_FALSE(sbd_get_parameter_rule(SBD_VELDRAN::CT_QMXA4, "no.such", rule));
  EXPECT_EQ(rule.reference, "before");
  EXPECT_TRUE(recorder.is_silent());
}

// ---- Texts -------------------------------------------------------------------------------------

TEST(MISUSED_TEXTS, NullsAreIgnored) {
  EXPECT_EQ(sbd_copy_text(nullptr), nullptr);
  sbd_free_text(nullptr);
}

// ---- Rules that a caller made up
// -----------------------------------------------------------------

template <class THING>
std::string in_english(bool (*tell)(const THING&, SBD_STRING&) noexcept, const THING& thing) {
  SBD_STRING text = "before";
  EXPECT_TRUE(tell(thing, text));
  return std::string(text.data(), text.size());
}

TEST(MISUSED_RULES, UnknownKindsAreToldAsFarAsTheyGo) {
  MESSAGE_RECORDER recorder;
  const SBD_RULE_CONDITION condition{"a.b", static_cast<SBD_RULE_CONDITION::TEST>(99), nullptr};
  EXPECT_EQ(in_english(sbd_get_condition_text, condition), "a.b");

  const SBD_VALUE_SET unknown{static_cast<SBD_VALUE_SET::KIND>(99), 0, 0, nullptr, nullptr, 0};
  EXPECT_EQ(in_english<SBD_VALUE_SET>(sbd_get_values_text, unknown), "any value");

  SBD_PARAMETER_RULE rule;
  rule.type = static_cast<SBD_PARAMETER_RULE::VALUE::VALUE_TYPE>(99);
  EXPECT_EQ(in_english<SBD_PARAMETER_RULE>(sbd_get_values_text, rule), "any value");
  rule.requirement = SBD_VELDRAN_PARAMETER_READER::RQ_BY_RULE;
  EXPECT_EQ(in_english(sbd_get_requirement_text, rule), "required");
  rule.requirement = static_cast<SBD_VELDRAN_PARAMETER_READER::REQUIRED>(99);
  EXPECT_EQ(in_english(sbd_get_requirement_text, rule), "optional");

  SBD_PARAMETER_READER::SBD_PARAMETER_VALUE value(5UL, true, true);
  value.m_value_type = static_cast<SBD_PARAMETER_READER::SBD_PARAMETER_VALUE::VALUE_TYPE>(99);
  EXPECT_EQ(in_english(sbd_get_value_text, value), "");
  EXPECT_TRUE(recorder.is_silent());
}

TEST(MISUSED_RULES, AnyValueMayHaveExceptions) {
  const SBD_RULE_CONDITION condition{"a.b", SBD_RULE_CONDITION::RT_IS_TRUE, nullptr};
  const SBD_VALUE_SET any{SBD_VALUE_SET::VS_ANY, 0, 0, nullptr, nullptr, 0};
  const SBD_VALUE_SET range{SBD_VALUE_SET::VS_RANGE, 1, 5, nullptr, nullptr, 0};
  const SBD_VALUE_RULE values{"c", any, &condition, 1, range};
  SBD_PARAMETER_RULE rule;
  rule.value_rule = &values;
  EXPECT_EQ(in_english<SBD_PARAMETER_RULE>(sbd_get_values_text, rule),
            "any value; 1 to 5 when a.b is true");
}

TEST(MISUSED_RULES, NumbersOfEveryLengthAreTold) {
  constexpr unsigned long k_highest = std::numeric_limits<unsigned long>::max();
  const SBD_VALUE_SET range{SBD_VALUE_SET::VS_RANGE, 0, k_highest, nullptr, nullptr, 0};
  EXPECT_EQ(in_english<SBD_VALUE_SET>(sbd_get_values_text, range),
            "0 to " + std::to_string(k_highest));
}

TEST(MISUSED_VALUES, AssignmentToItselfChangesNothing) {
  SBD_PARAMETER_READER::SBD_PARAMETER_VALUE value(SBD_STRING(100, 'x'), true, true);
  const auto& same = value;
  value = same;
  EXPECT_EQ(value.m_string_value, SBD_STRING(100, 'x'));
}

// A reader that validates what it has not read says so for each parameter.
TEST(MISUSED_READER, ValidatingBeforeReading) {
  MESSAGE_RECORDER recorder;
  SBD_VELDRAN device("d");
  SBD_QMXA1_PARAMETER_READER reader(device, SBD_STRING("d.s"));
  EXPECT_FALSE(reader.validate_all_parameters());
  ASSERT_FALSE(recorder.conditions().empty());
  for (const std::string& condition : recorder.conditions()) {
    EXPECT_NE(condition.find(" has not been read from the SBD file"), std::string::npos);
  }
}

}  // namespace
