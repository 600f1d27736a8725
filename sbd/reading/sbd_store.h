// What a document keeps besides the records that callers see.
#ifndef SBD_READING_SBD_STORE_H
#define SBD_READING_SBD_STORE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <string_view>

#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/reading/sbd_back_links.h"
#include "sbd/reading/sbd_file_name.h"
#include "sbd/reading/sbd_name_index.h"
#include "sbd/reading/sbd_pool.h"
#include "sbd/reading/sbd_run.h"
#include "sbd/reading/sbd_scratch.h"
#include "sbd/reading/sbd_source.h"
#include "sbd/reading/sbd_texts.h"
#include "sbd/reading/sbd_usual_names.h"
#include "sbd/sbd_file_parser.h"

// What the parser noticed while it built the tree. The checks that post messages run only when
// there is something to say.
struct SBD_PARSE_FACTS {
  // Whether the parser gives the symbols their parents: the reader asks for it, since its checks
  // would do nothing else for most documents.
  bool gives_parents = false;
  bool has_duplicate_names = false;
  bool has_misplaced_blocks = false;
  SBD_SCRATCH<SBD_FILE_PARSER::SBD_STATEMENT*, 16> references;  // In file order.

  void clear() noexcept {
    gives_parents = false;
    has_duplicate_names = false;
    has_misplaced_blocks = false;
    references.release();
  }
};

class SBD_STORE {
 public:
  using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
  using SBD_SYMBOL = SBD_FILE_PARSER::SBD_SYMBOL;
  using SBD_PARA_VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;
  using SBD_VALUE_LIST = SBD_FILE_PARSER::SBD_VALUE_LIST;

  SBD_STORE() = default;
  SBD_STORE(const SBD_STORE&) = delete;
  SBD_STORE& operator=(const SBD_STORE&) = delete;

  static void* operator new(std::size_t size) { return SBD_RECORD::operator new(size); }
  static void operator delete(void* store) noexcept { SBD_RECORD::operator delete(store); }

  // A record of the reader's, in the pool.
  template <class T>
  T* make() {
    pool.fetch_ahead<sizeof(T)>();
    return ::new (pool.take(sizeof(T))) T;
  }
  // A copy of a token's text, which lies in the source, in the pool.
  char* copy(std::string_view text) {
    auto* const copy = static_cast<char*>(pool.take(text.size() + 1));
    // Most texts are short; source and pool have room behind them.
    constexpr std::size_t k_step = 16;
    static_assert(k_step <= SBD_POOL::k_slack && k_step <= SBD_SOURCE::k_padding);
    for (std::size_t done = 0; done <= text.size(); done += k_step) {
      std::memcpy(copy + done, text.data() + done, k_step);
    }
    copy[text.size()] = '\0';
    return copy;
  }
  // A copy of a string or a comment, the only tokens that NUL bytes can stand in. They become
  // blanks, since a text of the tree ends at its first NUL, and what stands behind it would be
  // lost.
  char* copy_free_text(std::string_view text) {
    char* const copied = copy(text);
    if (sbd_has_nul(text.data(), text.size())) {
      std::replace(copied, copied + text.size(), '\0', ' ');
    }
    return copied;
  }
  // As SBD_VALUE_LIST::push_back, but throws what the host's memory manager throws.
  static void append(SBD_VALUE_LIST& list, SBD_PARA_VALUE* value);
  // A list of the values, in the pool.
  SBD_VALUE_LIST* make_list(SBD_PARA_VALUE* const* first, std::size_t count,
                            std::size_t source_length);
  // How long a list is in the source.
  static std::size_t source_length(const SBD_VALUE_LIST& list) { return list.m_length; }

  // Give back what a record holds. What lies in the pool stays there until it is released.
  void free_text(char* text) const noexcept {
    if (text != nullptr && !pool.owns(text) && !sbd_is_usual_name(text)) sbd_free_text(text);
  }
  template <class T>
  void free_record(T* record) const noexcept {
    if (!pool.owns(record)) delete record;
  }
  void free_value(SBD_PARA_VALUE* value) const noexcept;
  // Frees what a value holds, and leaves its record.
  void free_content(SBD_PARA_VALUE& value) const noexcept;
  void free_attributes(SBD_FILE_PARSER::SBD_PARA_ATTR* first) const noexcept;
  void free_references(SBD_FILE_PARSER::SBD_PARA_REF* first) const noexcept;

  // Frees a chain of nodes with all that they hold except their symbols, each of which is given
  // to `symbol_done` (nothing may be linked to it any more).
  template <class SYMBOL_DONE>
  void free_nodes(SBD_NODE* chain, SYMBOL_DONE&& symbol_done) noexcept;

  // Frees what does not lie in the pool, of the chain and of all symbols.
  void free_foreign(SBD_NODE* root) noexcept;

  // 1 + the offset of a node's declared name; 0 when it was not read.
  std::uint32_t name_position(const SBD_NODE* node) const;

  // Notes where the next message belongs: nowhere for a position of 0.
  void set_fault(std::uint32_t position, std::size_t length) {
    has_fault_range = position != 0;
    if (has_fault_range) fault_range = source.range(position - std::size_t{1}, length);
  }

  // Count the references to a node. The counts can be relied on as long as only the reader and the
  // document's own edits have made references, and none of them outlived its target.
  static constexpr std::uint16_t k_many_references = 0xFFFF;
  static void add_reference(SBD_NODE* target) {
    if (target->m_references != k_many_references) ++target->m_references;
  }
  void drop_reference(SBD_NODE* target) const {
    if (target == nullptr || !has_reference_counts) return;
    if (target->m_references != k_many_references && target->m_references != 0) {
      --target->m_references;
    }
  }
  bool counts_references(const SBD_NODE* target) const {
    return has_reference_counts && target->m_references != k_many_references;
  }
  // Take back the references of a statement, or of a node and all below it, before they are freed.
  void drop_references_of(const SBD_FILE_PARSER::SBD_STATEMENT& statement) const;
  void drop_references_of(SBD_NODE* node) noexcept;

  // Empties everything but the source.
  void clear_records() noexcept;

  SBD_POOL pool;
  SBD_SOURCE source;
  SBD_FILE_PARSER::SBD_SYMBOL_TABLE symbols{this};
  SBD_FILE_NAME file_name;
  SBD_NAME_INDEX names;
  SBD_BACK_LINKS<SBD_NODE> node_links;
  SBD_BACK_LINKS<SBD_SYMBOL> symbol_links;
  SBD_PARSE_FACTS facts;
  SBD_NODE* last_root = nullptr;  // Last top-level node, as far as known.
  bool has_foreign = false;       // Something in the tree or the table lies outside the pool.
  bool has_reference_counts = true;

  bool is_parsing = false;  // What the host throws ends where the parser was called.

  bool has_fault_range = false;  // Where the message posted last belongs.
  SBD_FILE_PARSER::SBD_SOURCE_RANGE fault_range;

 private:
  void free_statement(SBD_FILE_PARSER::SBD_STATEMENT* statement) const noexcept;
};

template <class SYMBOL_DONE>
void SBD_STORE::free_nodes(SBD_NODE* chain, SYMBOL_DONE&& symbol_done) noexcept {
  // Members are put in front of what is left to free, so that depth costs no stack.
  SBD_NODE* left = chain;
  while (left != nullptr) {
    SBD_NODE* const node = left;
    left = node->next;
    node_links.drop(node);
    if (node->m_references != 0) has_reference_counts = false;  // They dangle from now on.
    switch (node->type) {
      case SBD_NODE::NT_BLOCK:
        if (node->block == nullptr) break;
        if (node->block->members != nullptr) {
          SBD_NODE* last = node->block->members;
          while (last->next != nullptr) last = last->next;
          last->next = left;
          left = node->block->members;
        }
        symbol_done(node->block->name);
        free_text(node->block->type);
        free_record(node->block);
        break;
      case SBD_NODE::NT_STATEMENT:
        if (node->statement == nullptr) break;
        symbol_done(node->statement->name);
        free_statement(node->statement);
        break;
      case SBD_NODE::NT_COMMENT:
        free_text(node->comment);
        break;
      default:
        sbd_report_internal_error("Invalid node type\n", k_source_file_parser, __LINE__);
        break;
    }
    free_record(node);
  }
}

#endif
