// The tree builders: one action of the grammar each.
#include <algorithm>
#include <cstring>

#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/reading/sbd_grammar_actions.h"
#include "sbd/reading/sbd_parser_build.h"
#include "sbd/reading/sbd_store.h"
#include "sbd/sbd_parser.h"

using ACTIONS = SBD_GRAMMAR_ACTIONS;
using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
using SBD_PARA_ATTR = SBD_FILE_PARSER::SBD_PARA_ATTR;
using SBD_PARA_REF = SBD_FILE_PARSER::SBD_PARA_REF;
using SBD_PARA_VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;
using SBD_STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;
using SBD_SYMBOL = SBD_FILE_PARSER::SBD_SYMBOL;
using SBD_SYMBOL_TABLE = SBD_FILE_PARSER::SBD_SYMBOL_TABLE;
using SBD_TOKEN_INFO = SBD_FILE_PARSER::SBD_TOKEN_INFO;

namespace {

// What a builder makes of the token, or null where the host has no memory for it. The reader, which
// gives up the whole tree then, catches that itself.
template <class BODY>
auto build(const SBD_TOKEN_INFO* token, const BODY& body) -> decltype(body()) {
  if (ACTIONS::reading_of(token) != nullptr) return body();
  return sbd_guarded(k_source_parser, decltype(body())(nullptr), body);
}

template <class T>
T* join(T* first, T* second) {
  if (first == nullptr) return second;
  T* last = first;
  while (last->next != nullptr) last = last->next;
  last->next = second;
  return first;
}

}  // namespace

char* SBD_GRAMMAR_ACTIONS::copy_token_text(const SBD_TOKEN_INFO& token) {
  if (token.origin != nullptr) return token.origin->copy(token.text);
  return sbd_duplicate_text(SBD_STRING(token.text).c_str());
}

char* SBD_GRAMMAR_ACTIONS::copy_free_text(const SBD_TOKEN_INFO& token) {
  if (token.text.find('\0') == std::string_view::npos) return copy_token_text(token);
  SBD_STRING text(token.text);
  std::replace(text.begin(), text.end(), '\0', ' ');
  if (token.origin == nullptr) return sbd_duplicate_text(text.c_str());
  auto* const copy = static_cast<char*>(token.origin->pool.take(text.size() + 1));
  std::memcpy(copy, text.c_str(), text.size() + 1);
  return copy;
}

SBD_SYMBOL* SBD_GRAMMAR_ACTIONS::enter_other_symbol(SBD_SYMBOL::SYMBOL_TYPE type, SBD_NODE* node,
                                                    const SBD_TOKEN_INFO& name,
                                                    SBD_SYMBOL_TABLE& symbol_table) {
  NEW_RECORD<SBD_SYMBOL> symbol(&name);
  describe_symbol(*symbol.get(), type, node, name);
  NEW_TEXT text(copy_token_text(name), &name);
  symbol->name = text.get();
  sbd_enter_foreign_symbol(symbol.get(), symbol_table);
  (void)text.keep();
  return symbol.keep();
}

void sbd_enter_foreign_symbol(SBD_SYMBOL* symbol, SBD_SYMBOL_TABLE& symbol_table) {
  SBD_STORE* const store = symbol_table.store();
  if (store != nullptr) {
    store->names.enter(symbol);
    store->has_foreign = true;
  }
  SBD_SYMBOL*& head =
      symbol_table[SBD_FILE_PARSER::hash_pjw(symbol->name, SBD_SYMBOL_TABLE::k_bucket_count)];
  symbol->next = head;
  head = symbol;
  if (store != nullptr) store->symbol_links.note_head(symbol);
}

SBD_TOKEN_INFO sbd_copy_token(const sbd_yyFlexLexer& scanner) {
  return {scanner.lineno(), scanner.yytext(), scanner.origin()};
}

SBD_SYMBOL* sbd_create_symbol(SBD_SYMBOL::SYMBOL_TYPE type, SBD_NODE* node,
                              const SBD_TOKEN_INFO* name, SBD_SYMBOL_TABLE* symbol_table) {
  if (!SBD_CHECK(symbol_table != nullptr, "symbol_table != NULL", k_source_parser)) return nullptr;
  if (!SBD_CHECK(name != nullptr, "name != NULL", k_source_parser)) return nullptr;
  SBD_SYMBOL* const symbol = sbd_guarded(k_source_parser, static_cast<SBD_SYMBOL*>(nullptr), [=] {
    return ACTIONS::enter_other_symbol(type, node, *name, *symbol_table);
  });
  if (symbol == nullptr) return nullptr;
  for (const SBD_SYMBOL* other = symbol->next; other != nullptr; other = other->next) {
    const bool is_twin = other->node == node && other->type == type && other->name != nullptr &&
                         std::string_view(other->name) == name->text;
    SBD_CHECK(!is_twin, "Error in symbol table", k_source_parser);
  }
  return symbol;
}

SBD_NODE* sbd_do_block(const SBD_TOKEN_INFO* type, const SBD_TOKEN_INFO* name, SBD_NODE* members,
                       SBD_SYMBOL_TABLE* symbol_table) {
  return build(name, [=] {
    return ACTIONS::do_block(type, name, members, symbol_table, ACTIONS::reading_of(name));
  });
}

SBD_NODE* sbd_do_assignment(const SBD_TOKEN_INFO* name, SBD_PARA_VALUE* value,
                            SBD_PARA_ATTR* attributes, const SBD_TOKEN_INFO* comment,
                            SBD_SYMBOL_TABLE* symbol_table) {
  return build(name, [=] {
    return ACTIONS::do_assignment(name, value, attributes, comment, symbol_table,
                                  ACTIONS::reading_of(name));
  });
}

SBD_NODE* sbd_do_reference(const SBD_TOKEN_INFO* name, SBD_PARA_REF* references,
                           const SBD_TOKEN_INFO* comment, SBD_SYMBOL_TABLE* symbol_table) {
  SBD_NODE* const node = build(name, [=] {
    return ACTIONS::do_statement(SBD_STATEMENT::ST_REFERENCE, name, comment, symbol_table,
                                 ACTIONS::reading_of(name));
  });
  if (node != nullptr) node->statement->reference = references;
  return node;
}

SBD_NODE* sbd_do_comment(const SBD_TOKEN_INFO* comment) {
  if (!SBD_CHECK(comment != nullptr, "comment != NULL", k_source_parser)) return nullptr;
  return build(comment, [comment] {
    ACTIONS::NEW_RECORD<SBD_NODE> node(comment);
    node->type = SBD_NODE::NT_COMMENT;
    node->m_position = ACTIONS::position_of(*comment);
    node->comment = ACTIONS::copy_free_text(*comment);
    return node.keep();
  });
}

SBD_PARA_VALUE* sbd_do_para_value(int code, const SBD_TOKEN_INFO* token) {
  return build(token, [=] { return ACTIONS::do_para_value(code, token); });
}

SBD_PARA_REF* sbd_do_para_ref(const SBD_TOKEN_INFO* name) {
  if (!SBD_CHECK(name != nullptr, "name != NULL", k_source_parser)) return nullptr;
  return build(name, [name] {
    ACTIONS::NEW_RECORD<SBD_PARA_REF> reference(name);
    reference->name = ACTIONS::copy_token_text(*name);
    reference->m_position = ACTIONS::position_of(*name);
    return reference.keep();
  });
}

SBD_PARA_ATTR* sbd_do_para_attr(const SBD_TOKEN_INFO* key, const SBD_TOKEN_INFO* value) {
  return build(key, [=] {
    ACTIONS::NEW_RECORD<SBD_PARA_ATTR> attribute(key);
    ACTIONS::NEW_TEXT key_text(key != nullptr ? ACTIONS::copy_token_text(*key) : nullptr, key);
    if (SBD_CHECK(key != nullptr, "attr_key != NULL", k_source_parser)) {
      attribute->attr_key = key_text.get();
      attribute->m_position = ACTIONS::position_of(*key);
    }
    if (value != nullptr) attribute->attr_value = ACTIONS::copy_token_text(*value);
    (void)key_text.keep();
    return attribute.keep();
  });
}

SBD_NODE* sbd_join_node(SBD_NODE* first, SBD_NODE* second) {
  return join(first, second);
}

SBD_PARA_REF* sbd_join_para_ref(SBD_PARA_REF* first, SBD_PARA_REF* second) {
  return join(first, second);
}

SBD_PARA_ATTR* sbd_join_para_attr(SBD_PARA_ATTR* first, SBD_PARA_ATTR* second) {
  return join(first, second);
}
