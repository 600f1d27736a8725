// The parser's entry and its error routine.
#include "sbd/sbd_parser.h"

#include <algorithm>
#include <string>

#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/msg_sbd.h"
#include "sbd/reading/sbd_parser_automaton.h"
#include "sbd/reading/sbd_parser_fast.h"
#include "sbd/reading/sbd_store.h"

using SBD_PARSER_PARA = SBD_FILE_PARSER::SBD_PARSER_PARA;

namespace {

// Makes the document keep the scanner's text, unless it does already.
void keep_text(sbd_yyFlexLexer& scanner, SBD_STORE& store) {
  const std::string_view input = scanner.input();
  if (input.data() != nullptr && store.source.text().data() == input.data()) return;
  char* const buffer = SBD_SOURCE::allocate(input.size());
  std::copy(input.begin(), input.end(), buffer);
  store.source.adopt(buffer, input.size());
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
  if (!SBD_CHECK(para->symbol_table != nullptr && para->symbol_table->store() != nullptr,
                 "symbol_table != NULL", k_source_parser)) {
    return 1;
  }
  if (!SBD_CHECK(para->root == nullptr && scanner->yy_location().length == 0,
                 "root == NULL && yy_location.length == 0", k_source_parser)) {
    return 1;
  }
  SBD_STORE& store = *para->symbol_table->store();
  keep_text(*scanner, store);
  if (sbd_parse_faultless(store.source.text(), store, *para)) return 0;
  drop_tree(store, *para);
  scanner->set_parser_para(para);
  return sbd_run_automaton(*scanner, para);
}

void sbd_yyerror(FlexLexer* lexer, void* parser_para) {
  auto* const para = static_cast<SBD_PARSER_PARA*>(parser_para);
  if (!SBD_CHECK(lexer != nullptr, "scanner != NULL", k_source_parser)) return;
  if (para != nullptr) ++para->error_count;
  if (para != nullptr && para->symbol_table != nullptr && para->symbol_table->store() != nullptr) {
    SBD_STORE& store = *para->symbol_table->store();
    const FlexLexer::LOCATION& place = lexer->yy_location();
    store.has_fault_range = true;
    store.fault_range = {place.offset, place.length, place.first_line, place.column};
  }
  const char* const file = lexer->file_name() != nullptr ? lexer->file_name() : "";
  const std::string text(lexer->yytext());
  SBD_FILE_PARSER::post_message(
      MSG_SBD::E::SBD_SYNTAX_ERROR(file, text.c_str(), static_cast<int>(lexer->lineno())));
}
