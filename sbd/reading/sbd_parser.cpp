// The parser's entry and its error routine.
#include "sbd/sbd_parser.h"

#include <algorithm>

#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/diagnostics/sbd_messages.h"
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

// Tells sbd_yyerror where what the host throws is caught.
struct PARSING_MARK {
  explicit PARSING_MARK(SBD_STORE& marked) : store(marked) { store.is_parsing = true; }
  ~PARSING_MARK() { store.is_parsing = false; }
  PARSING_MARK(const PARSING_MARK&) = delete;
  PARSING_MARK& operator=(const PARSING_MARK&) = delete;

  SBD_STORE& store;
};

SBD_STORE* store_of(const SBD_PARSER_PARA* para) {
  return para != nullptr && para->symbol_table != nullptr ? para->symbol_table->store() : nullptr;
}

void drop_tree(SBD_STORE& store, SBD_PARSER_PARA& para) {
  para.root = nullptr;
  para.symbol_table->assign(SBD_FILE_PARSER::SBD_SYMBOL_TABLE::k_bucket_count, nullptr);
  store.clear_records();
}

int parse(sbd_yyFlexLexer& scanner, SBD_STORE& store, SBD_PARSER_PARA& para) {
  const PARSING_MARK mark(store);
  keep_text(scanner, store);
  if (sbd_parse_faultless(store.source.text(), store, para)) return 0;
  drop_tree(store, para);
  scanner.set_parser_para(&para);
  return sbd_run_automaton(scanner, &para);
}

void post_syntax_error(const FlexLexer& lexer) {
  const char* const file = lexer.file_name() != nullptr ? lexer.file_name() : "";
  const SBD_STRING text(lexer.yytext());
  SBD_FILE_PARSER::post_message(sbd_make_message<MSG_E>(k_msg_syntax_error, file, text.c_str(),
                                                        static_cast<int>(lexer.lineno())));
}

}  // namespace

int sbd_yyparse(FlexLexer* lexer, void* parser_para) {
  auto* const scanner = static_cast<sbd_yyFlexLexer*>(lexer);
  auto* const para = static_cast<SBD_PARSER_PARA*>(parser_para);
  if (!SBD_CHECK(scanner != nullptr && para != nullptr, "scanner != NULL && parser_para != NULL",
                 k_source_parser)) {
    return 1;
  }
  SBD_STORE* const store = store_of(para);
  if (!SBD_CHECK(store != nullptr, "symbol_table != NULL", k_source_parser)) return 1;
  if (!SBD_CHECK(para->root == nullptr && scanner->yy_location().length == 0,
                 "root == NULL && yy_location.length == 0", k_source_parser)) {
    return 1;
  }
  constexpr int k_no_memory = -1;
  const int result =
      sbd_guarded(k_source_parser, k_no_memory, [=] { return parse(*scanner, *store, *para); });
  if (result != k_no_memory) return result;
  drop_tree(*store, *para);
  return 1;
}

void sbd_yyerror(FlexLexer* lexer, void* parser_para) {
  auto* const para = static_cast<SBD_PARSER_PARA*>(parser_para);
  if (!SBD_CHECK(lexer != nullptr, "scanner != NULL", k_source_parser)) return;
  if (para != nullptr) ++para->error_count;
  SBD_STORE* const store = store_of(para);
  if (store != nullptr) {
    const FlexLexer::LOCATION& place = lexer->yy_location();
    store->has_fault_range = true;
    store->fault_range = {place.offset, place.length, place.first_line, place.column};
    if (store->is_parsing) return post_syntax_error(*lexer);
  }
  sbd_guarded(k_source_parser, false, [lexer] {
    post_syntax_error(*lexer);
    return true;
  });
}
