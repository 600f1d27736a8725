// What callers do wrong with the parser, with documents that keep the text, and with devices.
#include <gtest/gtest.h>

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
    EXPECT_FALSE(source.commit());
    EXPECT_FALSE(source.roll_back());
    EXPECT_EQ(source.text(), text);
    EXPECT_EQ(outline(source.document()), is_read ? outline(*document_of(k_text)) : "");
  }
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

}  // namespace
