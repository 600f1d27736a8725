// Finds the symbol of a name in a scope without walking the bucket chains, which grow with the
// document.
//
// What the reader enters never changes its scope and comes block by block: a scope has a table of
// its own, made when the block is closed; the members of a very small one are simply looked
// through. What callers and edits enter later goes into one ordered map.
#ifndef SBD_READING_SBD_NAME_INDEX_H
#define SBD_READING_SBD_NAME_INDEX_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string_view>
#include <unordered_map>

#include "sbd/reading/sbd_hash.h"
#include "sbd/reading/sbd_path_index.h"
#include "sbd/reading/sbd_pool.h"
#include "sbd/reading/sbd_scope_table.h"
#include "sbd/sbd_file_parser.h"

class SBD_NAME_INDEX {
 public:
  using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
  using SBD_SYMBOL = SBD_FILE_PARSER::SBD_SYMBOL;

  SBD_NAME_INDEX() = default;
  ~SBD_NAME_INDEX() { drop_paths(); }
  SBD_NAME_INDEX(const SBD_NAME_INDEX&) = delete;
  SBD_NAME_INDEX& operator=(const SBD_NAME_INDEX&) = delete;

  // Scopes are named by their block's node; null is the top level.

  // Closes the scope of `block` (null: the top level) and indexes its symbols. False when two of
  // them have the same name; the first one is then the one to be found. `unnamed` tells how many
  // more members the scope has, which declare no name.
  bool close_scope(SBD_NODE* block, const SBD_OPEN_MEMBER* first, const SBD_OPEN_MEMBER* last,
                   std::size_t unnamed, SBD_POOL& pool);

  // Gives a scope a table if it has none, so that the order of its members does not matter any
  // more.
  void index_scope(SBD_NODE* block, const SBD_NODE* members, SBD_POOL& pool);

  // The symbol of that name, letter case aside, in that scope which was entered last; null if
  // there is none. `members` is the scope's first node. Behind the name a step can be read.
  SBD_SYMBOL* find(const SBD_NODE* scope, const SBD_NODE* members, std::string_view name) const {
    return find(scope, members, name, sbd_hash_padded_name(name));
  }
  // The same for a name whose sbd_hash_name is known.
  SBD_SYMBOL* find(const SBD_NODE* scope, const SBD_NODE* members, std::string_view name,
                   std::uint64_t hash) const {
    return has_entered() ? find_any(scope, members, name) : find_read(scope, members, name, hash);
  }

  // The same among those that the reader entered; of two with one name, the first.
  SBD_SYMBOL* find_read(const SBD_NODE* scope, const SBD_NODE* members, std::string_view name,
                        std::uint64_t hash) const {
    const SBD_SCOPE_TABLE* const table = table_of(scope);
    if (table == nullptr || table->listed == 0) return find_unlisted(table, members, hash, name);
    return static_cast<const SBD_SCOPE_LIST*>(table)->find(sbd_name_tag(hash), name);
  }

  // Let the memory be fetched in which find_read is going to look: first the table of a scope,
  // then, when that has come, the symbol of the name with that sbd_hash_name.
  void fetch_table(const SBD_NODE* scope) const {
    const SBD_SCOPE_TABLE* const table = table_of(scope);
    if (table != nullptr) sbd_prefetch(table, 0, 3);
  }
  void fetch_symbol(const SBD_NODE* scope, std::uint64_t hash) const {
    const SBD_SCOPE_TABLE* const table = table_of(scope);
    if (table == nullptr || table->listed == 0) return;
    static_cast<const SBD_SCOPE_LIST*>(table)->fetch(sbd_name_tag(hash));
  }

  // True when a symbol of the same name and scope was entered before `symbol`, which has a name.
  bool has_earlier(const SBD_SYMBOL* symbol, const SBD_NODE* members) const;

  // Enters a symbol that the reader did not make.
  void enter(SBD_SYMBOL* symbol);
  // True for a symbol that `enter` has entered.
  bool is_entered(const SBD_SYMBOL* symbol) const { return m_entries.count(symbol) != 0; }
  // True when any symbol is entered that the reader did not make.
  bool has_entered() const { return !m_entries.empty(); }
  // Forgets a symbol, whoever made it.
  void remove(SBD_SYMBOL* symbol) noexcept;
  // Takes notice of a symbol's new parent.
  void rescope(SBD_SYMBOL* symbol);

  void clear() noexcept;

  // Lets whole names be found at once from now on, as long as no name comes, goes or moves.
  void begin_paths() noexcept { m_has_paths = true; }
  // The object of a whole name, letter case aside, in the document that begins with `root`; null
  // tells nothing. Behind the name a step of NUL bytes stands. Several threads may ask at a time.
  SBD_NODE* find_path(SBD_NODE* root, std::string_view name, const SBD_POOL& pool) const {
    if (!m_has_paths) return nullptr;
    const SBD_PATH_INDEX* const paths = m_paths.load(std::memory_order_acquire);
    return paths != nullptr ? paths->find(name) : count_search(root, pool);
  }

  // The scope that a symbol's parent stands for: null at top level. A symbol without parent is in
  // no scope at all, not even at top level.
  static const SBD_NODE* scope_of(const SBD_SYMBOL* symbol) {
    return symbol->parent == symbol->node ? nullptr : symbol->parent;
  }

 private:
  struct KEY {
    const SBD_NODE* scope;
    bool is_scoped;
    std::string_view name;
    std::uint64_t serial;  // Grows with every entry.
  };
  struct KEY_LESS {
    bool operator()(const KEY& left, const KEY& right) const;
  };
  using ENTRY_MAP =
      std::map<KEY, SBD_SYMBOL*, KEY_LESS, SBD_ALLOCATOR<std::pair<const KEY, SBD_SYMBOL*>>>;
  using ENTRIES =
      std::unordered_map<const SBD_SYMBOL*, ENTRY_MAP::iterator, std::hash<const SBD_SYMBOL*>,
                         std::equal_to<const SBD_SYMBOL*>,
                         SBD_ALLOCATOR<std::pair<const SBD_SYMBOL* const, ENTRY_MAP::iterator>>>;

  void set_table(SBD_NODE* block, SBD_SCOPE_TABLE* table);
  static KEY key_of(const SBD_SYMBOL* symbol, std::uint64_t serial);
  SBD_SCOPE_TABLE* table_of(const SBD_NODE* scope) const {
    if (scope == nullptr) return m_top_table;
    if (scope->type != SBD_NODE::NT_BLOCK || scope->block == nullptr) return nullptr;
    return static_cast<SBD_SCOPE_TABLE*>(scope->block->m_scope_table);
  }
  static SBD_SYMBOL* find_unlisted(const SBD_SCOPE_TABLE* table, const SBD_NODE* members,
                                   std::uint64_t hash, std::string_view name);
  SBD_SYMBOL* find_any(const SBD_NODE* scope, const SBD_NODE* members, std::string_view name) const;
  SBD_NODE* count_search(SBD_NODE* root, const SBD_POOL& pool) const noexcept;
  void drop_paths() noexcept;
  const ENTRY_MAP::value_type* last_entered(const SBD_NODE* scope, std::string_view name) const;

  SBD_SCOPE_TABLE* m_top_table = nullptr;
  ENTRY_MAP m_by_name;
  ENTRIES m_entries;
  std::uint64_t m_serial = 0;

  // Made when enough was asked for, by one of the threads that ask.
  mutable std::atomic<const SBD_PATH_INDEX*> m_paths{nullptr};
  mutable std::atomic<std::uint32_t> m_searches{0};
  bool m_has_paths = false;
};

#endif
