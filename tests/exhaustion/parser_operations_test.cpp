// Scanner, parser, tree builders and messages, used directly.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include "sbd/msg_sbd.h"
#include "sbd/sbd_parser.h"
#include "tests/exhaustion/operations.h"
#include "tests/support/tree_builder.h"
#include "tests/support/tree_outline.h"

namespace {

constexpr std::string_view k_long_word = "a_word_that_is_longer_than_any_string_keeps_in_itself";
constexpr std::string_view k_text =
    "device d {\n"
    "  # comment\n"
    "  a = {1, \"text\", {2, word}} [key .value, bare];  # tail\n"
    "  bus b { r <d.a, .x>; x = 5MHz; }\n"
    "}\n";
constexpr std::string_view k_faulty_text = "device d { a = 5 }\nx @ ; device e { b = $; c ; }\n";

SBD_TOKEN_INFO token_of(std::string_view text) {
  SBD_TOKEN_INFO token;
  token.line = 7;
  token.text = text;
  return token;
}

// ---- Builders ----------------------------------------------------------------------------------

// A document, and arguments of builders that are its caller's.
struct WORKSHOP {
  WORKSHOP() = default;
  WORKSHOP(const WORKSHOP&) = delete;
  WORKSHOP& operator=(const WORKSHOP&) = delete;
  ~WORKSHOP() {
    document.free_node(members);
    document.free_para_val(value);
    document.free_para_val(list);
    const std::unique_ptr<SBD_PARA_ATTR> attribute(attributes);
    const std::unique_ptr<SBD_PARA_REF> reference(references);
    if (attributes != nullptr) sbd_free_text(attributes->attr_key);
    if (references != nullptr) sbd_free_text(references->name);
  }

  SBD_FILE_PARSER::SBD_SYMBOL_TABLE* table() { return document.get_parser_para().symbol_table; }

  // What a builder made, which has what it was given.
  std::string take(SBD_NODE* node) {
    if (node == nullptr) return "null";
    if (node->type == SBD_NODE::NT_BLOCK) {
      members = nullptr;
    } else if (node->type == SBD_NODE::NT_STATEMENT &&
               node->statement->type == SBD_STATEMENT::ST_REFERENCE) {
      references = nullptr;
    } else if (node->type == SBD_NODE::NT_STATEMENT) {
      value = nullptr;
      attributes = nullptr;
    }
    document.add_node(node, nullptr);
    return outline(document);
  }

  std::string state() const {
    return outline(document) + std::to_string(count_symbols(document)) + outline(*list) +
           find_inconsistency(document);
  }

  SBD_FILE_PARSER document;
  SBD_TOKEN_INFO type = token_of("module");
  SBD_TOKEN_INFO name = token_of(k_long_word);
  SBD_TOKEN_INFO comment = token_of("# a comment that is longer than any string keeps in itself\n");
  SBD_TOKEN_INFO torn_comment = token_of(std::string_view("# a comment\0that is cut in two\n", 31));
  SBD_NODE* members = make_comment("# member\n");
  SBD_PARA_VALUE* value = make_number(5);
  SBD_PARA_VALUE* list =
      make_list({make_number(1), make_number(2), make_number(3), make_number(4)});
  SBD_PARA_ATTR* attributes = make_attributes({{"key", nullptr}});
  SBD_PARA_REF* references = make_element();

 private:
  static SBD_PARA_REF* make_element() {
    auto* const reference = new SBD_PARA_REF;
    reference->name = sbd_copy_text("d.x");
    return reference;
  }
};

std::string take_value(WORKSHOP& shop, int code, std::string_view text) {
  const SBD_TOKEN_INFO token = token_of(text);
  SBD_PARA_VALUE* const value = sbd_do_para_value(code, &token);
  if (value == nullptr) return "null";
  const std::string answer = outline(*value);
  shop.document.free_para_val(value);
  return answer;
}

const OPERATION<WORKSHOP> k_builders[] = {
    {"block",
     [](WORKSHOP& shop) {
       return shop.take(sbd_do_block(&shop.type, &shop.name, shop.members, shop.table()));
     },
     "null"},
    {"assignment",
     [](WORKSHOP& shop) {
       return shop.take(
           sbd_do_assignment(&shop.name, shop.value, shop.attributes, &shop.comment, shop.table()));
     },
     "null"},
    {"reference",
     [](WORKSHOP& shop) {
       return shop.take(
           sbd_do_reference(&shop.name, shop.references, &shop.torn_comment, shop.table()));
     },
     "null"},
    {"comment", [](WORKSHOP& shop) { return shop.take(sbd_do_comment(&shop.comment)); }, "null"},
    {"comment with a NUL",
     [](WORKSHOP& shop) { return shop.take(sbd_do_comment(&shop.torn_comment)); }, "null"},
    {"symbol",
     [](WORKSHOP& shop) {
       SBD_SYMBOL* const symbol =
           sbd_create_symbol(SBD_SYMBOL::SYM_PARAMETER, nullptr, &shop.name, shop.table());
       const std::string answer = told(symbol);
       shop.document.delete_symbol(symbol);
       return answer;
     },
     "null"},
    {"decimal", [](WORKSHOP& shop) { return take_value(shop, SBD_TOK_UDECIMAL, "77"); }, "null"},
    {"octal", [](WORKSHOP& shop) { return take_value(shop, SBD_TOK_OCTAL, "077"); }, "null"},
    {"hexadecimal", [](WORKSHOP& shop) { return take_value(shop, SBD_TOK_HEXAL, "0x7F"); }, "null"},
    {"binary", [](WORKSHOP& shop) { return take_value(shop, SBD_TOK_BINARY, "0b11"); }, "null"},
    {"float", [](WORKSHOP& shop) { return take_value(shop, SBD_TOK_FLOAT, "7.5"); }, "null"},
    {"boolean", [](WORKSHOP& shop) { return take_value(shop, SBD_TOK_TRUE, "true"); }, "null"},
    {"word", [](WORKSHOP& shop) { return take_value(shop, SBD_TOK_IDENTIFIER, k_long_word); },
     "null"},
    {"element",
     [](WORKSHOP& shop) {
       SBD_PARA_REF* const reference = sbd_do_para_ref(&shop.name);
       if (reference == nullptr) return std::string("null");
       std::string answer = reference->name;
       sbd_free_text(reference->name);
       delete reference;
       return answer;
     },
     "null"},
    {"attribute",
     [](WORKSHOP& shop) {
       SBD_PARA_ATTR* const attribute = sbd_do_para_attr(&shop.name, &shop.comment);
       if (attribute == nullptr) return std::string("null");
       std::string answer = std::string(attribute->attr_key) + attribute->attr_value;
       sbd_free_text(attribute->attr_key);
       sbd_free_text(attribute->attr_value);
       delete attribute;
       return answer;
     },
     "null"},
    {"joining",
     [](WORKSHOP& shop) {
       return told(sbd_join_node(shop.members, nullptr)) +
              told(sbd_join_para_ref(nullptr, shop.references)) +
              told(sbd_join_para_attr(shop.attributes, nullptr));
     },
     ""},
    {"copy of a text",
     [](WORKSHOP&) {
       char* const copy = sbd_copy_text(k_long_word.data());
       const std::string answer = copy != nullptr ? copy : "null";
       sbd_free_text(copy);
       return answer;
     },
     "null"},
    {"element of a full list",
     [](WORKSHOP& shop) {
       const bool is_kept = shop.list->list->push_back(shop.value);
       if (is_kept) shop.value = nullptr;
       return told(is_kept);
     },
     "false"},
    {"block type and bucket",
     [](WORKSHOP&) {
       return std::to_string(SBD_FILE_PARSER::lookup_block_type("device")) +
              std::to_string(SBD_FILE_PARSER::hash_pjw("device", 211));
     },
     ""},
};

TEST(BUILDER_EXHAUSTION, LeavesWhatItWasGiven) {
  expect_all_to_survive(k_builders);
}

// ---- Scanner and parser
// --------------------------------------------------------------------------

// An empty document and scanners of a caller's.
struct READING {
  std::string state() const {
    return outline(document) + std::to_string(count_symbols(document)) +
           find_inconsistency(document);
  }

  SBD_FILE_PARSER document;
  sbd_yyFlexLexer scanner{k_text.data(), k_text.size()};
  sbd_yyFlexLexer faulty_scanner{k_faulty_text.data(), k_faulty_text.size()};
};

// What the parser answers, and whether it has left anything of a text that it refused.
std::string parse(READING& reading, sbd_yyFlexLexer& scanner) {
  auto& para = reading.document.get_parser_para();
  return std::to_string(sbd_yyparse(&scanner, &para));
}

const OPERATION<READING> k_readings[] = {
    {"parsing", [](READING& reading) { return parse(reading, reading.scanner); }, "1"},
    {"parsing faulty text", [](READING& reading) { return parse(reading, reading.faulty_scanner); },
     "1"},
    {"parsing again",
     [](READING& reading) {
       std::string answer = parse(reading, reading.scanner);
       if (answer == "1") {
         // What a caller does when there is memory again.
         sbd_host::fail_allocation("SBD", 0, false);
         sbd_yyFlexLexer again(k_text.data(), k_text.size());
         if (parse(reading, again) != "0") answer = "no second try";
         reading.document.clear();
       }
       return answer;
     },
     "1"},
    {"error routine",
     [](READING& reading) {
       (void)reading.scanner.yylex();
       sbd_yyerror(&reading.scanner, &reading.document.get_parser_para());
       return std::to_string(reading.document.get_parser_para().error_count);
     },
     "1"},
    {"scanning",
     [](READING& reading) {
       std::string tokens;
       while (const int code = reading.scanner.yylex()) tokens += std::to_string(code) + " ";
       return tokens;
     },
     ""},
};

TEST(PARSER_EXHAUSTION, LeavesADocumentEmpty) {
  expect_all_to_survive(k_readings);
}

// A scanner that nobody parses with goes on behind what it could not report, each time.
TEST(PARSER_EXHAUSTION, ScannerGoesOn) {
  constexpr std::string_view k_odd = "a @ b $ c";
  for (const std::size_t count : {1U, 2U, 3U, 4U}) {
    MESSAGE_RECORDER recorder;
    sbd_yyFlexLexer scanner(k_odd.data(), k_odd.size());
    sbd_host::fail_allocation("SBD", count, false);
    std::string names;
    EXPECT_NO_THROW({
      while (scanner.yylex() != 0) names += scanner.yytext();
    });
    sbd_host::fail_allocation("SBD", 0, false);
    EXPECT_EQ(names, "abc");
    EXPECT_EQ(recorder.messages().size() + recorder.conditions().size(), 2U) << count;
  }
}

// ---- Messages
// ------------------------------------------------------------------------------------

struct NOTHING {
  static std::string state() { return ""; }
};

std::string take(MSG_POST* message) {
  const std::unique_ptr<MSG_POST> owned(message);
  return told(message);
}

const OPERATION<NOTHING> k_messages[] = {
    {"file", [](NOTHING&) { return take(MSG_SBD::E::SBD_FILE_ERROR("f")); }, "null"},
    {"syntax", [](NOTHING&) { return take(MSG_SBD::E::SBD_SYNTAX_ERROR("f", "t", 1)); }, "null"},
    {"declaration", [](NOTHING&) { return take(MSG_SBD::E::SBD_DECLARATION_ERROR("f", "n", 1)); },
     "null"},
    {"reference", [](NOTHING&) { return take(MSG_SBD::E::SBD_REFERENCE_ERROR("f", "n", 1)); },
     "null"},
    {"block", [](NOTHING&) { return take(MSG_SBD::E::SBD_BLOCK_ERROR("f", "b", 1)); }, "null"},
    {"device", [](NOTHING&) { return take(MSG_SBD::E::SBD_VEL_DEVICE_ERROR("r")); }, "null"},
    {"module", [](NOTHING&) { return take(MSG_SBD::E::SBD_VEL_MODULE_ERROR("r")); }, "null"},
    {"error", [](NOTHING&) { return take(MSG_SBD::E::SBD_ERROR("t")); }, "null"},
    {"warning", [](NOTHING&) { return take(MSG_SBD::W::SBD_WARNING("t")); }, "null"},
    {"no device", [](NOTHING&) { return take(MSG_SBD::E::SBD_NO_DEVICE_BLOCK_ERROR()); }, "null"},
    {"no module", [](NOTHING&) { return take(MSG_SBD::E::SBD_VELDRAN_MODULE_BLOCK_ERROR()); },
     "null"},
    {"missing", [](NOTHING&) { return take(MSG_SBD::E::SBD_PARAMETER_MISSING_ERROR("p")); },
     "null"},
    {"value", [](NOTHING&) { return take(MSG_SBD::E::SBD_PARAMETER_VALUE_ERROR("p")); }, "null"},
    {"family", [](NOTHING&) { return take(MSG_SBD::E::UNSUPPORTED_FAMILY_ERROR("f")); }, "null"},
    {"no family", [](NOTHING&) { return take(MSG_SBD::E::FAMILY_NOT_DEFINED_ERROR("d")); }, "null"},
    {"debug", [](NOTHING&) { return take(MSG_SBD::DEBUG_MSG("%d", 5)); }, "null"},
};

TEST(MESSAGE_EXHAUSTION, MessagesAreNull) {
  expect_all_to_survive(k_messages);
}

TEST(MESSAGE_EXHAUSTION, InternalErrorNamesTheSource) {
  const MESSAGE_RECORDER recorder;
  sbd_host::fail_allocation("SBD", 1, true);
  EXPECT_EQ(MSG_SBD::E::SBD_NO_DEVICE_BLOCK_ERROR(), nullptr);
  sbd_host::fail_allocation("SBD", 0, false);
  ASSERT_EQ(recorder.internal_errors().size(), 1U);
  EXPECT_EQ(recorder.internal_errors()[0].source, "msg_sbd");
}

}  // namespace
