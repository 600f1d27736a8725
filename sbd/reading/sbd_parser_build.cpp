// The tree builders: one action of the grammar each. What the host throws ends in them; what was
// made of a caller's token is freed then, and what was handed over stays the caller's.
#include "sbd/reading/sbd_parser_build.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/reading/sbd_numbers.h"
#include "sbd/reading/sbd_store.h"
#include "sbd/sbd_parser.h"

using SBD_BLOCK = SBD_FILE_PARSER::SBD_BLOCK;
using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
using SBD_PARA_ATTR = SBD_FILE_PARSER::SBD_PARA_ATTR;
using SBD_PARA_REF = SBD_FILE_PARSER::SBD_PARA_REF;
using SBD_PARA_VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;
using SBD_STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;
using SBD_SYMBOL = SBD_FILE_PARSER::SBD_SYMBOL;
using SBD_SYMBOL_TABLE = SBD_FILE_PARSER::SBD_SYMBOL_TABLE;
using SBD_TOKEN_INFO = SBD_FILE_PARSER::SBD_TOKEN_INFO;

namespace {

// What a builder makes, or null where the host has no memory for it.
template <class BODY>
auto build(const BODY& body) -> decltype(body()) {
  return sbd_guarded(k_source_parser, decltype(body())(nullptr), body);
}

struct TEXT_FREER {
  void operator()(char* text) const { sbd_free_text(text); }
};
using NEW_TEXT = std::unique_ptr<char, TEXT_FREER>;

char* copy_token_text(const SBD_TOKEN_INFO& token) {
  return sbd_duplicate_text(SBD_STRING(token.text).c_str());
}

// As SBD_STORE::copy_free_text.
char* copy_free_text(const SBD_TOKEN_INFO& token) {
  SBD_STRING text(token.text);
  std::replace(text.begin(), text.end(), '\0', ' ');
  return sbd_duplicate_text(text.c_str());
}

// The symbol of a new node. It is entered when nothing else can fail any more.
SBD_SYMBOL* enter_symbol(SBD_SYMBOL::SYMBOL_TYPE type, SBD_NODE* node, const SBD_TOKEN_INFO& name,
                         SBD_SYMBOL_TABLE& symbol_table) {
  auto symbol = std::make_unique<SBD_SYMBOL>();
  symbol->line = name.line;
  symbol->type = type;
  symbol->node = node;
  NEW_TEXT text(copy_token_text(name));
  symbol->name = text.get();
  sbd_enter_foreign_symbol(symbol.get(), symbol_table);
  (void)text.release();
  return symbol.release();
}

// The digits behind 0x or 0b.
std::string_view without_prefix(std::string_view number) {
  return number.substr(std::min<std::size_t>(number.size(), 2));
}

SBD_NODE* make_block(const SBD_TOKEN_INFO* type, const SBD_TOKEN_INFO* name, SBD_NODE* members,
                     SBD_SYMBOL_TABLE* symbol_table) {
  auto node = std::make_unique<SBD_NODE>();
  auto block = std::make_unique<SBD_BLOCK>();
  node->type = SBD_NODE::NT_BLOCK;
  node->block = block.get();
  block->members = members;
  if (type != nullptr) {
    block->type = copy_token_text(*type);
    block->block_type = SBD_FILE_PARSER::lookup_block_type(block->type);
  }
  NEW_TEXT type_text(block->type);
  const bool has_table =
      SBD_CHECK(symbol_table != nullptr, "symbol_table != NULL", k_source_parser);
  if (SBD_CHECK(name != nullptr, "block_name != NULL", k_source_parser) && has_table) {
    block->name = enter_symbol(SBD_SYMBOL::SYM_BLOCK, node.get(), *name, *symbol_table);
  }
  (void)type_text.release();
  (void)block.release();
  return node.release();
}

// A statement node with everything but its value or references.
SBD_NODE* make_statement(SBD_STATEMENT::STATEMENT_TYPE type, const SBD_TOKEN_INFO* name,
                         const SBD_TOKEN_INFO* comment, SBD_SYMBOL_TABLE* symbol_table) {
  auto node = std::make_unique<SBD_NODE>();
  auto statement = std::make_unique<SBD_STATEMENT>();
  node->type = SBD_NODE::NT_STATEMENT;
  node->statement = statement.get();
  statement->type = type;
  NEW_TEXT comment_text(comment != nullptr ? copy_free_text(*comment) : nullptr);
  statement->comment = comment_text.get();
  const bool has_table =
      SBD_CHECK(symbol_table != nullptr, "symbol_table != NULL", k_source_parser);
  if (SBD_CHECK(name != nullptr, "para_name != NULL", k_source_parser) && has_table) {
    statement->name = enter_symbol(SBD_SYMBOL::SYM_PARAMETER, node.get(), *name, *symbol_table);
  }
  (void)comment_text.release();
  (void)statement.release();
  return node.release();
}

SBD_PARA_VALUE* make_value(int code, const SBD_TOKEN_INFO* token) {
  if (!SBD_CHECK(token != nullptr, "token != NULL", k_source_parser)) return nullptr;
  auto value = std::make_unique<SBD_PARA_VALUE>();
  const std::string_view text = token->text;
  switch (code) {
    case SBD_TOK_UDECIMAL:
      value->type = SBD_PARA_VALUE::VT_UDECIMAL;
      value->number = sbd_convert_decimal(text);
      return value.release();
    case SBD_TOK_OCTAL:
      value->type = SBD_PARA_VALUE::VT_OCTAL;
      value->number = sbd_convert_octal(text);
      return value.release();
    case SBD_TOK_HEXAL:
      value->type = SBD_PARA_VALUE::VT_HEXAL;
      value->number = sbd_convert_hexadecimal(without_prefix(text));
      return value.release();
    case SBD_TOK_BINARY:
      value->type = SBD_PARA_VALUE::VT_BINARY;
      value->number = sbd_convert_binary(without_prefix(text));
      return value.release();
    case SBD_TOK_FLOAT:
      value->type = SBD_PARA_VALUE::VT_FLOAT;
      value->number = sbd_convert_float(text);
      return value.release();
    case SBD_TOK_TRUE:
    case SBD_TOK_FALSE:
      value->type = SBD_PARA_VALUE::VT_BOOL;
      value->flag = code == SBD_TOK_TRUE ? 1 : 0;
      return value.release();
    case SBD_TOK_STRING:
    case SBD_TOK_IDENTIFIER:
      value->type = SBD_PARA_VALUE::VT_STRING;
      value->text = copy_free_text(*token);
      return value.release();
    default:
      sbd_report_internal_error("Invalid token id\n", k_source_parser, __LINE__);
      return nullptr;
  }
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
  return {scanner.lineno(), scanner.yytext()};
}

SBD_SYMBOL* sbd_create_symbol(SBD_SYMBOL::SYMBOL_TYPE type, SBD_NODE* node,
                              const SBD_TOKEN_INFO* name, SBD_SYMBOL_TABLE* symbol_table) {
  if (!SBD_CHECK(symbol_table != nullptr, "symbol_table != NULL", k_source_parser)) return nullptr;
  if (!SBD_CHECK(name != nullptr, "name != NULL", k_source_parser)) return nullptr;
  SBD_SYMBOL* const symbol = sbd_guarded(k_source_parser, static_cast<SBD_SYMBOL*>(nullptr), [=] {
    return enter_symbol(type, node, *name, *symbol_table);
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
  return build([=] { return make_block(type, name, members, symbol_table); });
}

SBD_NODE* sbd_do_assignment(const SBD_TOKEN_INFO* name, SBD_PARA_VALUE* value,
                            SBD_PARA_ATTR* attributes, const SBD_TOKEN_INFO* comment,
                            SBD_SYMBOL_TABLE* symbol_table) {
  SBD_NODE* const node = build(
      [=] { return make_statement(SBD_STATEMENT::ST_ASSIGNMENT, name, comment, symbol_table); });
  if (node == nullptr) return nullptr;
  node->statement->value = value;
  node->statement->attributes = attributes;
  return node;
}

SBD_NODE* sbd_do_reference(const SBD_TOKEN_INFO* name, SBD_PARA_REF* references,
                           const SBD_TOKEN_INFO* comment, SBD_SYMBOL_TABLE* symbol_table) {
  SBD_NODE* const node = build(
      [=] { return make_statement(SBD_STATEMENT::ST_REFERENCE, name, comment, symbol_table); });
  if (node != nullptr) node->statement->reference = references;
  return node;
}

SBD_NODE* sbd_do_comment(const SBD_TOKEN_INFO* comment) {
  if (!SBD_CHECK(comment != nullptr, "comment != NULL", k_source_parser)) return nullptr;
  return build([comment] {
    auto node = std::make_unique<SBD_NODE>();
    node->type = SBD_NODE::NT_COMMENT;
    node->comment = copy_free_text(*comment);
    return node.release();
  });
}

SBD_PARA_VALUE* sbd_do_para_value(int code, const SBD_TOKEN_INFO* token) {
  return build([=] { return make_value(code, token); });
}

SBD_PARA_REF* sbd_do_para_ref(const SBD_TOKEN_INFO* name) {
  if (!SBD_CHECK(name != nullptr, "name != NULL", k_source_parser)) return nullptr;
  return build([name] {
    auto reference = std::make_unique<SBD_PARA_REF>();
    reference->name = copy_token_text(*name);
    return reference.release();
  });
}

SBD_PARA_ATTR* sbd_do_para_attr(const SBD_TOKEN_INFO* key, const SBD_TOKEN_INFO* value) {
  return build([=] {
    auto attribute = std::make_unique<SBD_PARA_ATTR>();
    NEW_TEXT key_text(key != nullptr ? copy_token_text(*key) : nullptr);
    if (SBD_CHECK(key != nullptr, "attr_key != NULL", k_source_parser)) {
      attribute->attr_key = key_text.get();
    }
    if (value != nullptr) attribute->attr_value = copy_token_text(*value);
    (void)key_text.release();
    return attribute.release();
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
