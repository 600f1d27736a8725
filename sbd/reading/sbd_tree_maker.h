// Makes the tree of a text that is read: what the tree builders make of the tokens of callers, all
// of it in the document's own memory (usual names have no owner), where nothing has to be freed
// again, and each record written once, when everything that belongs into it is known.
//
// What the host throws passes through. The document is to be emptied then, as it is when the text
// turns out to be faulty.
#ifndef SBD_READING_SBD_TREE_MAKER_H
#define SBD_READING_SBD_TREE_MAKER_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "sbd/reading/sbd_known_names.h"
#include "sbd/reading/sbd_scratch.h"
#include "sbd/reading/sbd_store.h"
#include "sbd/reading/sbd_usual_names.h"
#include "sbd/sbd_file_parser.h"

class SBD_TREE_MAKER {
 public:
  using SBD_BLOCK = SBD_FILE_PARSER::SBD_BLOCK;
  using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
  using SBD_PARA_ATTR = SBD_FILE_PARSER::SBD_PARA_ATTR;
  using SBD_PARA_REF = SBD_FILE_PARSER::SBD_PARA_REF;
  using SBD_PARA_VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;
  using SBD_PARSER_PARA = SBD_FILE_PARSER::SBD_PARSER_PARA;
  using SBD_STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;
  using SBD_SYMBOL = SBD_FILE_PARSER::SBD_SYMBOL;

  // A name where it is declared. All texts that are handed over lie in the source.
  struct NAME {
    std::string_view text;
    std::uint32_t line;
  };

  SBD_TREE_MAKER(SBD_STORE& store, SBD_PARSER_PARA& para)
      : m_store(store),
        m_source(store.source.text().data()),
        m_gives_parents(store.facts.gives_parents),
        m_para(para),
        m_buckets(para.symbol_table->data()) {}

  bool is_in_block() const { return !m_open_blocks.empty(); }
  // Whether nothing stands so far in the innermost open block.
  bool is_empty() const { return m_last == nullptr; }

  void add_comment(std::string_view comment) {
    char* const text = m_store.copy_free_text(comment);
    auto* const node = m_store.make<SBD_NODE>();
    node->type = SBD_NODE::NT_COMMENT;
    node->m_position = position_of(comment);
    node->comment = text;
    append(node);
    ++m_comments;
  }

  // The comments behind statements are null where there is none.
  void add_assignment(const NAME& name, SBD_PARA_VALUE* value, SBD_PARA_ATTR* attributes,
                      std::string_view comment) {
    SBD_STATEMENT* const statement = add_statement(name, comment);
    statement->type = SBD_STATEMENT::ST_ASSIGNMENT;
    statement->value = value;
    statement->attributes = attributes;
  }

  void add_reference(const NAME& name, SBD_PARA_REF* references, std::string_view comment) {
    SBD_STATEMENT* const statement = add_statement(name, comment);
    statement->type = SBD_STATEMENT::ST_REFERENCE;
    statement->reference = references;
    m_store.facts.references.push_back(statement);
  }

  void open_block(std::string_view type, const NAME& name) {
    const auto copy = [this](std::string_view text) { return m_store.copy(text); };
    const SBD_KNOWN_TYPES::TYPE& known_type = m_known_types.know(type, copy);
    const SBD_KNOWN_NAMES::NAME& known_name = m_known_names.know(name.text, copy);
    DECLARATION<SBD_BLOCK>& block =
        make_declaration<SBD_BLOCK>(SBD_SYMBOL::SYM_BLOCK, name, known_name);
    block.node.type = SBD_NODE::NT_BLOCK;
    block.node.m_position = position_of(type);
    block.node.block = &block.content;
    block.content.type = known_type.text;
    block.content.block_type = known_type.type;
    m_open_blocks.push_back(
        {&block, m_last, m_comments, m_first_name, known_name.hash, known_name.bucket});
    m_last = nullptr;
    m_comments = 0;
    m_first_name = static_cast<std::uint32_t>(m_open_names.size());
  }

  // Closes the innermost open block, in which something has to be, with the "}" before `end`.
  void close_block(const char* end) {
    const OPEN_BLOCK open = m_open_blocks.back();
    SBD_NODE* const node = &open.block->node;
    SBD_BLOCK& block = open.block->content;
    block.m_last = m_last;
    block.m_end_position = m_store.source.offset_of(end);
    close_scope(node);
    m_open_blocks.pop_back();
    m_last = open.last_before;
    m_comments = open.comments_before;
    m_first_name = open.first_name_before;
    append(node);
    enter(open.block->symbol, open.hash, open.bucket);
    if (block.block_type == SBD_BLOCK::BT_UNKNOWN ||
        (block.block_type == SBD_BLOCK::BT_DEVICE) == is_in_block()) {
      m_store.facts.has_misplaced_blocks = true;
    }
  }

  // To be called behind the last node, when no block is open any more.
  void finish() {
    close_scope(nullptr);
    m_store.last_root = m_last;
  }

  // ---- Values ----------------------------------------------------------------------------------

  SBD_PARA_VALUE* make_number(SBD_PARA_VALUE::VALUE_TYPE type, double number,
                              SBD_PARA_VALUE::QUANTITY_UNIT unit, std::string_view text) {
    SBD_PARA_VALUE* const value = make_value(type, text);
    value->number = number;
    value->unit = unit;
    return value;
  }

  SBD_PARA_VALUE* make_bool(bool flag, std::string_view text) {
    SBD_PARA_VALUE* const value = make_value(SBD_PARA_VALUE::VT_BOOL, text);
    value->flag = flag ? 1 : 0;
    return value;
  }

  SBD_PARA_VALUE* make_word(std::string_view text) {
    char* const copy = m_store.copy(text);
    SBD_PARA_VALUE* const value = make_value(SBD_PARA_VALUE::VT_STRING, text);
    value->text = copy;
    return value;
  }

  SBD_PARA_VALUE* make_string(std::string_view text) {
    char* const copy = m_store.copy_free_text(text);
    SBD_PARA_VALUE* const value = make_value(SBD_PARA_VALUE::VT_STRING, text);
    value->text = copy;
    return value;
  }

  SBD_PARA_VALUE* make_list(SBD_PARA_VALUE* const* first, std::size_t count,
                            std::string_view text) {
    SBD_FILE_PARSER::SBD_VALUE_LIST* const list = m_store.make_list(first, count, text.size());
    SBD_PARA_VALUE* const value = make_value(SBD_PARA_VALUE::VT_LIST, text);
    value->list = list;
    return value;
  }

  SBD_PARA_REF* make_reference(std::string_view name) {
    char* const copy = m_store.copy(name);
    auto* const reference = m_store.make<SBD_PARA_REF>();
    reference->name = copy;
    reference->m_position = position_of(name);
    return reference;
  }

  // `value` is null where there is none.
  SBD_PARA_ATTR* make_attribute(std::string_view key, std::string_view value) {
    char* const key_copy = m_store.copy(key);
    char* const value_copy = value.data() != nullptr ? m_store.copy(value) : nullptr;
    auto* const attribute = m_store.make<SBD_PARA_ATTR>();
    attribute->attr_key = key_copy;
    attribute->attr_value = value_copy;
    attribute->m_position = position_of(key);
    return attribute;
  }

 private:
  // The records of something that declares a name, in one piece.
  template <class CONTENT>
  struct DECLARATION {
    SBD_NODE node;
    CONTENT content;
    SBD_SYMBOL symbol;
  };

  // A block whose "}" has not come yet, and where the list of nodes around it has got to.
  struct OPEN_BLOCK {
    DECLARATION<SBD_BLOCK>* block;
    SBD_NODE* last_before;
    std::uint32_t comments_before;
    std::uint32_t first_name_before;
    std::uint32_t hash;   // Of its name, which is entered behind those of its members,
    std::uint8_t bucket;  // and in which bucket.
  };

  // 1 + the offset of a text in the source.
  std::uint32_t position_of(std::string_view text) const {
    return static_cast<std::uint32_t>(text.data() - m_source) + 1;
  }

  SBD_PARA_VALUE* make_value(SBD_PARA_VALUE::VALUE_TYPE type, std::string_view text) {
    auto* const value = m_store.make<SBD_PARA_VALUE>();
    value->type = type;
    value->m_position = position_of(text);
    value->m_length =
        static_cast<std::uint16_t>(std::min<std::size_t>(text.size(), SBD_PARA_VALUE::k_long));
    return value;
  }

  template <class CONTENT>
  DECLARATION<CONTENT>& make_declaration(SBD_SYMBOL::SYMBOL_TYPE type, const NAME& name,
                                         const SBD_KNOWN_NAMES::NAME& known) {
    auto& made = *m_store.make<DECLARATION<CONTENT>>();
    made.content.name = &made.symbol;
    made.symbol.line = name.line;
    made.symbol.type = type;
    made.symbol.m_tag = known.tag;
    made.symbol.name = known.text;
    made.symbol.node = &made.node;
    if (m_gives_parents) {
      made.symbol.parent = is_in_block() ? &m_open_blocks.back().block->node : &made.node;
    }
    return made;
  }

  // Everything but the value or references.
  SBD_STATEMENT* add_statement(const NAME& name, std::string_view comment) {
    char* const comment_copy =
        comment.data() != nullptr ? m_store.copy_free_text(comment) : nullptr;
    const SBD_KNOWN_NAMES::NAME& known =
        m_known_names.know(name.text, [this](std::string_view text) { return m_store.copy(text); });
    DECLARATION<SBD_STATEMENT>& statement =
        make_declaration<SBD_STATEMENT>(SBD_SYMBOL::SYM_PARAMETER, name, known);
    statement.node.type = SBD_NODE::NT_STATEMENT;
    statement.node.m_position = position_of(name.text);
    statement.node.statement = &statement.content;
    statement.content.comment = comment_copy;
    append(&statement.node);
    enter(statement.symbol, known.hash, known.bucket);
    return &statement.content;
  }

  void append(SBD_NODE* node) {
    if (m_last != nullptr) {
      m_last->next = node;
    } else if (is_in_block()) {
      m_open_blocks.back().block->content.members = node;
    } else {
      m_para.root = node;
    }
    m_last = node;
  }

  // Enters a symbol at the head of its bucket and among the names of the open scope.
  void enter(SBD_SYMBOL& symbol, std::uint32_t hash, std::size_t bucket) {
    m_open_names.push_back({&symbol, hash, symbol.m_tag});
    symbol.next = m_buckets[bucket];
    m_buckets[bucket] = &symbol;
  }

  // Takes the names of the innermost open scope from the open ones.
  void close_scope(SBD_NODE* block) {
    const SBD_OPEN_MEMBER* const first = m_open_names.begin() + m_first_name;
    const bool is_unique =
        m_store.names.close_scope(block, first, m_open_names.end(), m_comments, m_store.pool);
    if (!is_unique) m_store.facts.has_duplicate_names = true;
    m_open_names.truncate(m_first_name);
  }

  SBD_STORE& m_store;
  const char* const m_source;
  const bool m_gives_parents;
  SBD_PARSER_PARA& m_para;
  SBD_SYMBOL** const m_buckets;
  SBD_NODE* m_last = nullptr;      // The last node of the innermost open block, or at top level,
  std::uint32_t m_comments = 0;    // the comments there,
  std::uint32_t m_first_name = 0;  // and the index of its first name among the open ones.
  SBD_SCRATCH<OPEN_BLOCK, 16> m_open_blocks;
  SBD_SCRATCH<SBD_OPEN_MEMBER, 64> m_open_names;  // The names whose scope is open.
  SBD_KNOWN_NAMES m_known_names{sbd_known_usual_names()};
  SBD_KNOWN_TYPES m_known_types;
};

#endif
