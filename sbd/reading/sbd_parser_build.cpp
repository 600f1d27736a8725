// The tree builders: one action of the grammar each.
#include <algorithm>
#include <cstring>
#include <string>

#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/reading/sbd_hash.h"
#include "sbd/reading/sbd_numbers.h"
#include "sbd/reading/sbd_parser_build.h"
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

// A record that belongs to where the token comes from: the document being read, or a caller.
template <class T>
T* make_record(const SBD_TOKEN_INFO* token) {
  if (token == nullptr || token->origin == nullptr) return new T;
  return token->origin->make<T>();
}

char* copy_token_text(const SBD_TOKEN_INFO& token) {
  if (token.origin != nullptr) return token.origin->copy(token.text);
  return sbd_copy_text(std::string(token.text).c_str());
}

// A copy of a string or a comment, the only tokens that NUL bytes can stand in. They become blanks,
// since a text of the tree ends at its first NUL, and what stands behind it would be lost.
char* copy_free_text(const SBD_TOKEN_INFO& token) {
  if (token.text.find('\0') == std::string_view::npos) return copy_token_text(token);
  std::string text(token.text);
  std::replace(text.begin(), text.end(), '\0', ' ');
  if (token.origin == nullptr) return sbd_copy_text(text.c_str());
  auto* const copy = static_cast<char*>(token.origin->pool.take(text.size() + 1));
  std::memcpy(copy, text.c_str(), text.size() + 1);
  return copy;
}

std::uint32_t position_of(const SBD_TOKEN_INFO& token) {
  return token.origin == nullptr ? 0 : token.origin->position_of(token.text.data());
}

// The records of something that declares a name.
template <class CONTENT>
struct DECLARATION {
  SBD_NODE* node;
  CONTENT* content;
  SBD_SYMBOL* symbol;  // Null where it is still to be made.
};

template <class CONTENT>
DECLARATION<CONTENT> make_declaration(const SBD_TOKEN_INFO* name) {
  if (name == nullptr || name->origin == nullptr) return {new SBD_NODE, new CONTENT, nullptr};
  struct RECORDS {
    SBD_NODE node;
    CONTENT content;
    SBD_SYMBOL symbol;
  };
  auto* const records = name->origin->make<RECORDS>();
  return {&records->node, &records->content, &records->symbol};
}

bool is_being_read(const SBD_TOKEN_INFO& token) {
  return token.origin != nullptr && token.origin->reading != nullptr;
}

// Enters a symbol of the reader's, which has all but its name.
void enter_read_symbol(SBD_SYMBOL* symbol, const SBD_TOKEN_INFO& name,
                       SBD_SYMBOL_TABLE& symbol_table) {
  SBD_STORE& store = *name.origin;
  const auto& known = store.reading->known_names.know(
      name.text, [&store](std::string_view text) { return store.copy(text); });
  symbol->name = known.text;
  symbol->m_tag = known.tag;
  store.reading->open_members.push_back({symbol, known.hash});
  SBD_SYMBOL*& head = symbol_table[known.bucket];
  symbol->next = head;
  head = symbol;
}

// The digits behind 0x or 0b.
std::string_view without_prefix(std::string_view number) {
  return number.substr(std::min<std::size_t>(number.size(), 2));
}

// The symbol of a new node, which nothing else can have declared yet; made unless it is given.
SBD_SYMBOL* enter_new_symbol(SBD_SYMBOL* symbol, SBD_SYMBOL::SYMBOL_TYPE type, SBD_NODE* node,
                             const SBD_TOKEN_INFO& name, SBD_SYMBOL_TABLE& symbol_table) {
  if (symbol == nullptr) symbol = make_record<SBD_SYMBOL>(&name);
  symbol->line = name.line;
  symbol->type = type;
  symbol->node = node;
  if (is_being_read(name)) {
    enter_read_symbol(symbol, name, symbol_table);
  } else {
    symbol->name = copy_token_text(name);
    sbd_enter_foreign_symbol(symbol, symbol_table);
  }
  return symbol;
}

// A statement node with everything but its value or references.
SBD_STATEMENT* make_statement(SBD_STATEMENT::STATEMENT_TYPE type, const SBD_TOKEN_INFO* name,
                              const SBD_TOKEN_INFO* comment, SBD_SYMBOL_TABLE* symbol_table,
                              SBD_NODE*& node) {
  const auto made = make_declaration<SBD_STATEMENT>(name);
  node = made.node;
  node->type = SBD_NODE::NT_STATEMENT;
  node->statement = made.content;
  made.content->type = type;
  const bool has_table =
      SBD_CHECK(symbol_table != nullptr, "symbol_table != NULL", k_source_parser);
  if (SBD_CHECK(name != nullptr, "para_name != NULL", k_source_parser) && has_table) {
    node->m_position = position_of(*name);
    made.content->name =
        enter_new_symbol(made.symbol, SBD_SYMBOL::SYM_PARAMETER, node, *name, *symbol_table);
  }
  if (comment != nullptr) made.content->comment = copy_free_text(*comment);
  return made.content;
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
  return {scanner.lineno(), scanner.yytext(), scanner.origin()};
}

SBD_SYMBOL* sbd_create_symbol(SBD_SYMBOL::SYMBOL_TYPE type, SBD_NODE* node,
                              const SBD_TOKEN_INFO* name, SBD_SYMBOL_TABLE* symbol_table) {
  if (!SBD_CHECK(symbol_table != nullptr, "symbol_table != NULL", k_source_parser)) return nullptr;
  if (!SBD_CHECK(name != nullptr, "name != NULL", k_source_parser)) return nullptr;
  SBD_SYMBOL* const symbol = enter_new_symbol(nullptr, type, node, *name, *symbol_table);
  for (const SBD_SYMBOL* other = symbol->next; other != nullptr; other = other->next) {
    const bool is_twin = other->node == node && other->type == type && other->name != nullptr &&
                         std::string_view(other->name) == name->text;
    SBD_CHECK(!is_twin, "Error in symbol table", k_source_parser);
  }
  return symbol;
}

SBD_NODE* sbd_do_block(const SBD_TOKEN_INFO* type, const SBD_TOKEN_INFO* name, SBD_NODE* members,
                       SBD_SYMBOL_TABLE* symbol_table) {
  const auto made = make_declaration<SBD_BLOCK>(name);
  SBD_NODE* const node = made.node;
  SBD_BLOCK* const block = made.content;
  node->type = SBD_NODE::NT_BLOCK;
  node->block = block;
  block->members = members;
  if (type != nullptr) {
    node->m_position = position_of(*type);
    block->type = copy_token_text(*type);
    block->block_type = SBD_FILE_PARSER::lookup_block_type(block->type);
  }
  const bool has_table =
      SBD_CHECK(symbol_table != nullptr, "symbol_table != NULL", k_source_parser);
  if (SBD_CHECK(name != nullptr, "block_name != NULL", k_source_parser) && has_table) {
    block->name = enter_new_symbol(made.symbol, SBD_SYMBOL::SYM_BLOCK, node, *name, *symbol_table);
  }
  return node;
}

SBD_NODE* sbd_do_assignment(const SBD_TOKEN_INFO* name, SBD_PARA_VALUE* value,
                            SBD_PARA_ATTR* attributes, const SBD_TOKEN_INFO* comment,
                            SBD_SYMBOL_TABLE* symbol_table) {
  SBD_NODE* node = nullptr;
  SBD_STATEMENT* const statement =
      make_statement(SBD_STATEMENT::ST_ASSIGNMENT, name, comment, symbol_table, node);
  statement->value = value;
  statement->attributes = attributes;
  return node;
}

SBD_NODE* sbd_do_reference(const SBD_TOKEN_INFO* name, SBD_PARA_REF* references,
                           const SBD_TOKEN_INFO* comment, SBD_SYMBOL_TABLE* symbol_table) {
  SBD_NODE* node = nullptr;
  SBD_STATEMENT* const statement =
      make_statement(SBD_STATEMENT::ST_REFERENCE, name, comment, symbol_table, node);
  statement->reference = references;
  return node;
}

SBD_NODE* sbd_do_comment(const SBD_TOKEN_INFO* comment) {
  if (!SBD_CHECK(comment != nullptr, "comment != NULL", k_source_parser)) return nullptr;
  auto* const node = make_record<SBD_NODE>(comment);
  node->type = SBD_NODE::NT_COMMENT;
  node->m_position = position_of(*comment);
  node->comment = copy_free_text(*comment);
  return node;
}

SBD_PARA_VALUE* sbd_do_para_value(int code, const SBD_TOKEN_INFO* token) {
  if (!SBD_CHECK(token != nullptr, "token != NULL", k_source_parser)) return nullptr;
  auto* const value = make_record<SBD_PARA_VALUE>(token);
  const std::string_view text = token->text;
  value->m_position = position_of(*token);
  value->m_length = static_cast<std::uint32_t>(text.size());
  const bool is_padded = token->origin != nullptr;  // As all sources are.
  switch (code) {
    case SBD_TOK_UDECIMAL:
      value->type = SBD_PARA_VALUE::VT_UDECIMAL;
      value->number = is_padded ? sbd_convert_padded_decimal(text) : sbd_convert_decimal(text);
      return value;
    case SBD_TOK_OCTAL:
      value->type = SBD_PARA_VALUE::VT_OCTAL;
      value->number = sbd_convert_octal(text);
      return value;
    case SBD_TOK_HEXAL:
      value->type = SBD_PARA_VALUE::VT_HEXAL;
      value->number = is_padded ? sbd_convert_padded_hexadecimal(without_prefix(text))
                                : sbd_convert_hexadecimal(without_prefix(text));
      return value;
    case SBD_TOK_BINARY:
      value->type = SBD_PARA_VALUE::VT_BINARY;
      value->number = sbd_convert_binary(without_prefix(text));
      return value;
    case SBD_TOK_FLOAT:
      value->type = SBD_PARA_VALUE::VT_FLOAT;
      value->number = sbd_convert_float(text);
      return value;
    case SBD_TOK_TRUE:
    case SBD_TOK_FALSE:
      value->type = SBD_PARA_VALUE::VT_BOOL;
      value->flag = code == SBD_TOK_TRUE ? 1 : 0;
      return value;
    case SBD_TOK_STRING:
    case SBD_TOK_IDENTIFIER:
      value->type = SBD_PARA_VALUE::VT_STRING;
      value->text = copy_free_text(*token);
      return value;
    default:
      sbd_report_internal_error("Invalid token id\n", k_source_parser, __LINE__);
      if (token->origin == nullptr) delete value;
      return nullptr;
  }
}

SBD_PARA_REF* sbd_do_para_ref(const SBD_TOKEN_INFO* name) {
  if (!SBD_CHECK(name != nullptr, "name != NULL", k_source_parser)) return nullptr;
  auto* const reference = make_record<SBD_PARA_REF>(name);
  reference->name = copy_token_text(*name);
  reference->m_position = position_of(*name);
  return reference;
}

SBD_PARA_ATTR* sbd_do_para_attr(const SBD_TOKEN_INFO* key, const SBD_TOKEN_INFO* value) {
  auto* const attribute = make_record<SBD_PARA_ATTR>(key);
  if (SBD_CHECK(key != nullptr, "attr_key != NULL", k_source_parser)) {
    attribute->attr_key = copy_token_text(*key);
    attribute->m_position = position_of(*key);
  }
  if (value != nullptr) attribute->attr_value = copy_token_text(*value);
  return attribute;
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
