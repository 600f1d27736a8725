// The actions of the grammar, to be compiled into the parser that calls them for every statement as
// well as into the public tree builders. What the host throws passes through; what was made of a
// caller's token is freed before, and what was handed over stays the caller's.
#ifndef SBD_READING_SBD_GRAMMAR_ACTIONS_H
#define SBD_READING_SBD_GRAMMAR_ACTIONS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/reading/sbd_numbers.h"
#include "sbd/reading/sbd_parser_build.h"
#include "sbd/reading/sbd_store.h"
#include "sbd/sbd_parser.h"

// A call would cost as much as what it does.
#if defined(__GNUC__)
#define SBD_ALWAYS_INLINE [[gnu::always_inline]] inline
#else
#define SBD_ALWAYS_INLINE inline
#endif

struct SBD_GRAMMAR_ACTIONS {
  using SBD_BLOCK = SBD_FILE_PARSER::SBD_BLOCK;
  using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
  using SBD_PARA_ATTR = SBD_FILE_PARSER::SBD_PARA_ATTR;
  using SBD_PARA_REF = SBD_FILE_PARSER::SBD_PARA_REF;
  using SBD_PARA_VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;
  using SBD_STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;
  using SBD_SYMBOL = SBD_FILE_PARSER::SBD_SYMBOL;
  using SBD_SYMBOL_TABLE = SBD_FILE_PARSER::SBD_SYMBOL_TABLE;
  using SBD_TOKEN_INFO = SBD_FILE_PARSER::SBD_TOKEN_INFO;

  // Whether a token is a caller's; what is made of a document's lies in its memory.
  SBD_ALWAYS_INLINE static bool is_foreign(const SBD_TOKEN_INFO* token) {
    return token == nullptr || token->origin == nullptr;
  }

  // A record that belongs to where the token comes from. Freed again unless it is kept.
  template <class T>
  class NEW_RECORD {
   public:
    SBD_ALWAYS_INLINE explicit NEW_RECORD(const SBD_TOKEN_INFO* token)
        : m_is_foreign(is_foreign(token)),
          m_record(m_is_foreign ? new T : token->origin->template make<T>()) {}
    SBD_ALWAYS_INLINE ~NEW_RECORD() {
      if (m_is_foreign) delete m_record;
    }
    NEW_RECORD(const NEW_RECORD&) = delete;
    NEW_RECORD& operator=(const NEW_RECORD&) = delete;

    SBD_ALWAYS_INLINE T* operator->() const { return m_record; }
    SBD_ALWAYS_INLINE T* get() const { return m_record; }
    SBD_ALWAYS_INLINE T* keep() { return std::exchange(m_record, nullptr); }

   private:
    const bool m_is_foreign;
    T* m_record;
  };

  // A text made from a token, or none. Freed again unless it is kept.
  class NEW_TEXT {
   public:
    SBD_ALWAYS_INLINE NEW_TEXT(char* text, const SBD_TOKEN_INFO* token)
        : m_is_foreign(is_foreign(token)), m_text(text) {}
    SBD_ALWAYS_INLINE ~NEW_TEXT() {
      if (m_is_foreign && m_text != nullptr) sbd_free_text(m_text);
    }
    NEW_TEXT(const NEW_TEXT&) = delete;
    NEW_TEXT& operator=(const NEW_TEXT&) = delete;

    SBD_ALWAYS_INLINE char* get() const { return m_text; }
    SBD_ALWAYS_INLINE char* keep() { return std::exchange(m_text, nullptr); }

   private:
    const bool m_is_foreign;
    char* m_text;
  };

  SBD_ALWAYS_INLINE static std::uint32_t position_of(const SBD_TOKEN_INFO& token) {
    return token.origin == nullptr ? 0 : token.origin->position_of(token.text.data());
  }

  static char* copy_token_text(const SBD_TOKEN_INFO& token);

  // A copy of a string or a comment, the only tokens that NUL bytes can stand in. They become
  // blanks, since a text of the tree ends at its first NUL, and what stands behind it would be
  // lost.
  static char* copy_free_text(const SBD_TOKEN_INFO& token);

  // What the parser keeps for the document that the token comes from; null unless it is being read.
  // The parser itself knows it, and hands it to what follows.
  static SBD_READING_STATE* reading_of(const SBD_TOKEN_INFO* token) {
    return token != nullptr && token->origin != nullptr ? token->origin->reading : nullptr;
  }

  // Makes and enters the symbol of a token that is not being read.
  static SBD_SYMBOL* enter_other_symbol(SBD_SYMBOL::SYMBOL_TYPE type, SBD_NODE* node,
                                        const SBD_TOKEN_INFO& name, SBD_SYMBOL_TABLE& symbol_table);

  SBD_ALWAYS_INLINE static SBD_NODE* do_block(const SBD_TOKEN_INFO* type,
                                              const SBD_TOKEN_INFO* name, SBD_NODE* members,
                                              SBD_SYMBOL_TABLE* symbol_table,
                                              SBD_READING_STATE* reading) {
    DECLARATION<SBD_BLOCK> made(name);
    SBD_NODE* const node = made.node;
    SBD_BLOCK* const block = made.content;
    node->type = SBD_NODE::NT_BLOCK;
    node->block = block;
    block->members = members;
    if (type != nullptr) {
      node->m_position = position_of(*type);
      set_type(*block, *type, reading);
    }
    NEW_TEXT type_text(block->type, type);
    const bool has_table =
        SBD_CHECK(symbol_table != nullptr, "symbol_table != NULL", k_source_parser);
    if (SBD_CHECK(name != nullptr, "block_name != NULL", k_source_parser) && has_table) {
      block->name =
          enter_name(made.symbol, SBD_SYMBOL::SYM_BLOCK, node, *name, *symbol_table, reading);
    }
    (void)type_text.keep();
    return made.keep();
  }

  // A statement node with everything but its value or references.
  SBD_ALWAYS_INLINE static SBD_NODE* do_statement(SBD_STATEMENT::STATEMENT_TYPE type,
                                                  const SBD_TOKEN_INFO* name,
                                                  const SBD_TOKEN_INFO* comment,
                                                  SBD_SYMBOL_TABLE* symbol_table,
                                                  SBD_READING_STATE* reading) {
    DECLARATION<SBD_STATEMENT> made(name);
    SBD_NODE* const node = made.node;
    node->type = SBD_NODE::NT_STATEMENT;
    node->statement = made.content;
    made.content->type = type;
    NEW_TEXT comment_text(comment != nullptr ? copy_free_text(*comment) : nullptr, comment);
    made.content->comment = comment_text.get();
    const bool has_table =
        SBD_CHECK(symbol_table != nullptr, "symbol_table != NULL", k_source_parser);
    if (SBD_CHECK(name != nullptr, "para_name != NULL", k_source_parser) && has_table) {
      node->m_position = position_of(*name);
      made.content->name =
          enter_name(made.symbol, SBD_SYMBOL::SYM_PARAMETER, node, *name, *symbol_table, reading);
    }
    (void)comment_text.keep();
    return made.keep();
  }

  SBD_ALWAYS_INLINE static SBD_NODE* do_assignment(const SBD_TOKEN_INFO* name,
                                                   SBD_PARA_VALUE* value, SBD_PARA_ATTR* attributes,
                                                   const SBD_TOKEN_INFO* comment,
                                                   SBD_SYMBOL_TABLE* symbol_table,
                                                   SBD_READING_STATE* reading) {
    SBD_NODE* const node =
        do_statement(SBD_STATEMENT::ST_ASSIGNMENT, name, comment, symbol_table, reading);
    node->statement->value = value;
    node->statement->attributes = attributes;
    return node;
  }

  SBD_ALWAYS_INLINE static SBD_PARA_VALUE* do_para_value(int code, const SBD_TOKEN_INFO* token) {
    if (!SBD_CHECK(token != nullptr, "token != NULL", k_source_parser)) return nullptr;
    NEW_RECORD<SBD_PARA_VALUE> value(token);
    const std::string_view text = token->text;
    value->m_position = position_of(*token);
    value->m_length = static_cast<std::uint32_t>(text.size());
    const bool is_padded = token->origin != nullptr;  // As all sources are.
    switch (code) {
      case SBD_TOK_UDECIMAL:
        value->type = SBD_PARA_VALUE::VT_UDECIMAL;
        value->number = is_padded ? sbd_convert_padded_decimal(text) : sbd_convert_decimal(text);
        return value.keep();
      case SBD_TOK_OCTAL:
        value->type = SBD_PARA_VALUE::VT_OCTAL;
        value->number = sbd_convert_octal(text);
        return value.keep();
      case SBD_TOK_HEXAL:
        value->type = SBD_PARA_VALUE::VT_HEXAL;
        value->number = is_padded ? sbd_convert_padded_hexadecimal(without_prefix(text))
                                  : sbd_convert_hexadecimal(without_prefix(text));
        return value.keep();
      case SBD_TOK_BINARY:
        value->type = SBD_PARA_VALUE::VT_BINARY;
        value->number = sbd_convert_binary(without_prefix(text));
        return value.keep();
      case SBD_TOK_FLOAT:
        value->type = SBD_PARA_VALUE::VT_FLOAT;
        value->number = sbd_convert_float(text);
        return value.keep();
      case SBD_TOK_TRUE:
      case SBD_TOK_FALSE:
        value->type = SBD_PARA_VALUE::VT_BOOL;
        value->flag = code == SBD_TOK_TRUE ? 1 : 0;
        return value.keep();
      case SBD_TOK_STRING:
      case SBD_TOK_IDENTIFIER:
        value->type = SBD_PARA_VALUE::VT_STRING;
        value->text = copy_free_text(*token);
        return value.keep();
      default:
        sbd_report_internal_error("Invalid token id\n", k_source_parser, __LINE__);
        return nullptr;
    }
  }

 private:
  // The records of something that declares a name. Freed again unless they are kept.
  template <class CONTENT>
  class DECLARATION {
   public:
    SBD_ALWAYS_INLINE explicit DECLARATION(const SBD_TOKEN_INFO* name)
        : m_is_foreign(is_foreign(name)) {
      if (m_is_foreign) {
        auto new_node = std::make_unique<SBD_NODE>();
        content = new CONTENT;
        node = new_node.release();
        return;
      }
      struct RECORDS {
        SBD_NODE node;
        CONTENT content;
        SBD_SYMBOL symbol;
      };
      auto* const records = name->origin->template make<RECORDS>();
      node = &records->node;
      content = &records->content;
      symbol = &records->symbol;
    }
    SBD_ALWAYS_INLINE ~DECLARATION() {
      if (!m_is_foreign || node == nullptr) return;
      delete node;
      delete content;
    }
    DECLARATION(const DECLARATION&) = delete;
    DECLARATION& operator=(const DECLARATION&) = delete;

    SBD_ALWAYS_INLINE SBD_NODE* keep() { return std::exchange(node, nullptr); }

    SBD_NODE* node;
    CONTENT* content;
    SBD_SYMBOL* symbol = nullptr;  // Null where it is still to be made.

   private:
    const bool m_is_foreign;
  };

  static void describe_symbol(SBD_SYMBOL& symbol, SBD_SYMBOL::SYMBOL_TYPE type, SBD_NODE* node,
                              const SBD_TOKEN_INFO& name) {
    symbol.line = name.line;
    symbol.type = type;
    symbol.node = node;
  }

  // The symbol of a new node, which nothing else can have declared yet: `symbol` for one that is
  // being read. It is entered when nothing else can fail any more.
  SBD_ALWAYS_INLINE static SBD_SYMBOL* enter_name(SBD_SYMBOL* symbol, SBD_SYMBOL::SYMBOL_TYPE type,
                                                  SBD_NODE* node, const SBD_TOKEN_INFO& name,
                                                  SBD_SYMBOL_TABLE& symbol_table,
                                                  SBD_READING_STATE* reading) {
    if (reading == nullptr) return enter_other_symbol(type, node, name, symbol_table);
    describe_symbol(*symbol, type, node, name);
    enter_read_symbol(symbol, name, symbol_table, *reading);
    return symbol;
  }

  SBD_ALWAYS_INLINE static void set_type(SBD_BLOCK& block, const SBD_TOKEN_INFO& type,
                                         SBD_READING_STATE* reading) {
    if (reading == nullptr || type.origin == nullptr || type.text.empty()) {
      block.type = copy_token_text(type);
      block.block_type = SBD_FILE_PARSER::lookup_block_type(block.type);
      return;
    }
    SBD_STORE& store = *type.origin;
    const auto& known = reading->known_types.know(
        type.text, [&store](std::string_view text) { return store.copy(text); });
    block.type = known.text;
    block.block_type = known.type;
  }

  // Enters a symbol of the reader's, which has all but its name.
  SBD_ALWAYS_INLINE static void enter_read_symbol(SBD_SYMBOL* symbol, const SBD_TOKEN_INFO& name,
                                                  SBD_SYMBOL_TABLE& symbol_table,
                                                  SBD_READING_STATE& reading) {
    SBD_STORE& store = *name.origin;
    const auto& known = reading.known_names.know(
        name.text, [&store](std::string_view text) { return store.copy(text); });
    symbol->name = known.text;
    symbol->m_tag = known.tag;
    reading.open_members.push_back({symbol, known.hash, known.tag});
    SBD_SYMBOL*& head = symbol_table[known.bucket];
    symbol->next = head;
    head = symbol;
  }

  // The digits behind 0x or 0b.
  static std::string_view without_prefix(std::string_view number) {
    return number.substr(std::min<std::size_t>(number.size(), 2));
  }
};

#endif
