// The parser's entry and its error routine.
#include "sbd/sbd_parser.h"

#include <string>

#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/msg_sbd.h"
#include "sbd/reading/sbd_parser_automaton.h"
#include "sbd/reading/sbd_parser_fast.h"
#include "sbd/reading/sbd_store.h"

using SBD_PARSER_PARA = SBD_FILE_PARSER::SBD_PARSER_PARA;

namespace {

// A document that nothing stands in yet, and a text that it keeps: what the quick parser builds on.
bool can_build(const sbd_yyFlexLexer& scanner, const SBD_PARSER_PARA& para) {
  const SBD_STORE* const store = scanner.origin();
  return store != nullptr && para.symbol_table != nullptr && para.symbol_table->store() == store &&
         store->source.text().data() == scanner.input().data() && para.root == nullptr;
}

void drop_tree(SBD_STORE& store, SBD_PARSER_PARA& para) {
  para.root = nullptr;
  para.symbol_table->assign(SBD_FILE_PARSER::SBD_SYMBOL_TABLE::k_bucket_count, nullptr);
  store.clear_records();
}

}  // namespace

int sbd_yyparse(FlexLexer* lexer, void* parser_para) {
  auto* const scanner = static_cast<sbd_yyFlexLexer*>(lexer);
  auto* const para = static_cast<SBD_PARSER_PARA*>(parser_para);
  if (!SBD_CHECK(scanner != nullptr && para != nullptr, "scanner != NULL && parser_para != NULL",
                 k_source_parser)) {
    return 1;
  }
  if (can_build(*scanner, *para)) {
    SBD_STORE& store = *scanner->origin();
    if (sbd_parse_faultless(scanner->input(), store, *para)) return 0;
    drop_tree(store, *para);
  }
  scanner->set_parser_para(para);
  return sbd_run_automaton(*scanner, para);
}

void sbd_yyerror(FlexLexer* lexer, void* parser_para) {
  auto* const para = static_cast<SBD_PARSER_PARA*>(parser_para);
  if (!SBD_CHECK(lexer != nullptr, "scanner != NULL", k_source_parser)) return;
  if (para != nullptr) ++para->error_count;
  if (para != nullptr && para->symbol_table != nullptr && para->symbol_table->store() != nullptr) {
    SBD_STORE& store = *para->symbol_table->store();
    store.has_fault_place = true;
    store.fault_offset = lexer->yy_location().offset;
    store.fault_length = lexer->yytext().size();
  }
  const char* const file = lexer->file_name() != nullptr ? lexer->file_name() : "";
  const std::string text(lexer->yytext());
  SBD_FILE_PARSER::post_message(
      MSG_SBD::E::SBD_SYNTAX_ERROR(file, text.c_str(), static_cast<int>(lexer->lineno())));
}
