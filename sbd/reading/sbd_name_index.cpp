#include "sbd/reading/sbd_name_index.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <new>

#include "sbd/reading/sbd_hash.h"
#include "sbd/reading/sbd_tree.h"

using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
using SBD_SYMBOL = SBD_FILE_PARSER::SBD_SYMBOL;

namespace {

// Up to so many members are looked through one by one, which takes no longer than a table would.
constexpr std::size_t k_small_scope = 8;

// Stands in a table for a symbol that is gone.
const SBD_SYMBOL k_removed;

std::uint64_t make_seed() noexcept {
  const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
  const auto place = reinterpret_cast<std::uintptr_t>(&k_removed);
  return sbd_hash_mix(static_cast<std::uint64_t>(now), place);
}

}  // namespace

const std::uint64_t k_hash_seed = make_seed();

// Open addressing; a third of the slots stay empty.
struct SBD_NAME_INDEX::SCOPE_TABLE {
  std::uint32_t capacity;
  SBD_SYMBOL* slots[1];

  static SCOPE_TABLE* make(std::size_t count, SBD_POOL& pool) {
    const std::size_t capacity = count + count / 2 + 1;
    const std::size_t size = sizeof(SCOPE_TABLE) + (capacity - 1) * sizeof(SBD_SYMBOL*);
    auto* table = static_cast<SCOPE_TABLE*>(pool.take(size));
    table->capacity = static_cast<std::uint32_t>(capacity);
    std::fill_n(table->slots, capacity, nullptr);
    return table;
  }

  // The slot of that name, or the empty one where it would be.
  SBD_SYMBOL** find_slot(std::uint32_t hash, std::uint16_t tag, std::string_view name) {
    for (auto index = static_cast<std::size_t>((std::uint64_t{hash} * capacity) >> 32);;
         index = index + 1 == capacity ? 0 : index + 1) {
      SBD_SYMBOL* const symbol = slots[index];
      if (symbol == nullptr) return &slots[index];
      if (symbol->m_tag == tag && sbd_equal_ignoring_case(symbol->name, name)) {
        return &slots[index];
      }
    }
  }
};

namespace {

// True unless a few bits of their hashes tell all symbols apart.
bool may_have_twins(const SBD_OPEN_MEMBER* first, const SBD_OPEN_MEMBER* last) {
  std::uint64_t seen = 0;
  bool may_have = false;
  for (const auto* one = first; one != last; ++one) {
    const std::uint64_t bit = std::uint64_t{1} << (one->hash % 64);
    may_have |= (seen & bit) != 0;
    seen |= bit;
  }
  return may_have;
}

// Two symbols of a small scope with one name are rare, and pairs are few.
bool has_twins(const SBD_OPEN_MEMBER* first, const SBD_OPEN_MEMBER* last) {
  if (!may_have_twins(first, last)) return false;
  for (const auto* one = first; one != last; ++one) {
    for (const auto* other = first; other != one; ++other) {
      if (one->hash == other->hash &&
          sbd_equal_ignoring_case(one->symbol->name, other->symbol->name)) {
        return true;
      }
    }
  }
  return false;
}

}  // namespace

bool SBD_NAME_INDEX::close_scope(SBD_NODE* block, const SBD_OPEN_MEMBER* first,
                                 const SBD_OPEN_MEMBER* last, std::size_t unnamed, SBD_POOL& pool) {
  const auto count = static_cast<std::size_t>(last - first);
  if (count + unnamed <= k_small_scope) return !has_twins(first, last);

  SCOPE_TABLE* const table = SCOPE_TABLE::make(count, pool);
  bool is_unique = true;
  for (const auto* member = first; member != last; ++member) {
    SBD_SYMBOL* const symbol = member->symbol;
    SBD_SYMBOL** const slot = table->find_slot(member->hash, symbol->m_tag, symbol->name);
    if (*slot == nullptr) {
      *slot = symbol;
    } else {
      is_unique = false;
    }
  }
  set_table(block, table);
  return is_unique;
}

void SBD_NAME_INDEX::set_table(SBD_NODE* block, SCOPE_TABLE* table) {
  if (block != nullptr) {
    block->block->m_scope_table = table;
  } else {
    m_top_table = table;
  }
}

void SBD_NAME_INDEX::index_scope(SBD_NODE* block, const SBD_NODE* members, SBD_POOL& pool) {
  if (table_of(block) != nullptr) return;
  std::size_t count = 0;
  for (const SBD_NODE* node = members; node != nullptr; node = node->next) ++count;
  SCOPE_TABLE* const table = SCOPE_TABLE::make(count, pool);
  for (const SBD_NODE* node = members; node != nullptr; node = node->next) {
    SBD_SYMBOL* const symbol = sbd_symbol_of(node);
    if (symbol == nullptr || symbol->m_tag == 0) continue;
    const auto hash = static_cast<std::uint32_t>(sbd_hash_name(symbol->name));
    *table->find_slot(hash, symbol->m_tag, symbol->name) = symbol;
  }
  set_table(block, table);
}

const SBD_NAME_INDEX::SCOPE_TABLE* SBD_NAME_INDEX::table_of(const SBD_NODE* scope) const {
  if (scope == nullptr) return m_top_table;
  if (scope->type != SBD_NODE::NT_BLOCK || scope->block == nullptr) return nullptr;
  return static_cast<const SCOPE_TABLE*>(scope->block->m_scope_table);
}

SBD_SYMBOL* SBD_NAME_INDEX::find_read(const SBD_NODE* scope, const SBD_NODE* members,
                                      std::string_view name) const {
  const std::uint64_t hash = sbd_hash_name(name);
  const std::uint16_t tag = sbd_name_tag(hash);
  if (const SCOPE_TABLE* const table = table_of(scope)) {
    return *const_cast<SCOPE_TABLE*>(table)->find_slot(static_cast<std::uint32_t>(hash), tag, name);
  }
  // What the reader made stands before what was added later.
  for (const SBD_NODE* node = members; node != nullptr && node->m_position != 0;
       node = node->next) {
    SBD_SYMBOL* const symbol = sbd_symbol_of(node);
    if (symbol != nullptr && symbol->m_tag == tag && sbd_equal_ignoring_case(symbol->name, name)) {
      return symbol;
    }
  }
  return nullptr;
}

bool SBD_NAME_INDEX::KEY_LESS::operator()(const KEY& left, const KEY& right) const {
  if (left.is_scoped != right.is_scoped) return left.is_scoped;
  if (left.scope != right.scope) return std::less<>()(left.scope, right.scope);
  if (left.name.size() != right.name.size()) return left.name.size() < right.name.size();
  for (std::size_t i = 0; i != left.name.size(); ++i) {
    const char a = sbd_to_lower(left.name[i]);
    const char b = sbd_to_lower(right.name[i]);
    if (a != b) return a < b;
  }
  return left.serial < right.serial;
}

SBD_NAME_INDEX::KEY SBD_NAME_INDEX::key_of(const SBD_SYMBOL* symbol, std::uint64_t serial) {
  return {scope_of(symbol), symbol->parent != nullptr, symbol->name, serial};
}

const SBD_NAME_INDEX::ENTRY_MAP::value_type* SBD_NAME_INDEX::last_entered(
    const SBD_NODE* scope, std::string_view name) const {
  constexpr std::uint64_t k_latest = std::numeric_limits<std::uint64_t>::max();
  const ENTRY_MAP::value_type* last = nullptr;
  // A caller may give a symbol its parent after it was entered; it then still stands among those
  // without scope.
  for (const KEY& key : {KEY{scope, true, name, k_latest}, KEY{nullptr, false, name, k_latest}}) {
    auto entry = m_by_name.upper_bound(key);
    while (entry != m_by_name.begin()) {
      --entry;
      const SBD_SYMBOL* const symbol = entry->second;
      if (entry->first.is_scoped != key.is_scoped || entry->first.scope != key.scope ||
          !sbd_equal_ignoring_case(symbol->name, name)) {
        break;
      }
      if (symbol->parent == nullptr || scope_of(symbol) != scope) continue;
      if (last == nullptr || last->first.serial < entry->first.serial) last = &*entry;
      break;
    }
  }
  return last;
}

SBD_SYMBOL* SBD_NAME_INDEX::find(const SBD_NODE* scope, const SBD_NODE* members,
                                 std::string_view name) const {
  if (has_entered()) {
    const auto* const entry = last_entered(scope, name);
    if (entry != nullptr) return entry->second;
  }
  return find_read(scope, members, name);
}

bool SBD_NAME_INDEX::has_earlier(const SBD_SYMBOL* symbol, const SBD_NODE* members) const {
  if (symbol->parent == nullptr || symbol->name == nullptr) return false;
  const SBD_NODE* const scope = scope_of(symbol);
  const SBD_SYMBOL* const read = find_read(scope, members, symbol->name);
  const auto own = m_entries.find(symbol);
  if (own == m_entries.end()) return symbol->m_tag != 0 && read != nullptr && read != symbol;
  if (read != nullptr) return true;

  for (auto entry = own->second; entry != m_by_name.begin();) {
    --entry;
    const SBD_SYMBOL* const earlier = entry->second;
    if (entry->first.is_scoped != own->second->first.is_scoped ||
        entry->first.scope != own->second->first.scope ||
        !sbd_equal_ignoring_case(earlier->name, symbol->name)) {
      return false;
    }
    if (earlier->parent != nullptr && scope_of(earlier) == scope) return true;
  }
  return false;
}

void SBD_NAME_INDEX::enter(SBD_SYMBOL* symbol) {
  const auto entry = m_by_name.emplace(key_of(symbol, m_serial), symbol).first;
  try {
    m_entries.emplace(symbol, entry);
  } catch (...) {
    m_by_name.erase(entry);
    throw;
  }
  ++m_serial;
}

void SBD_NAME_INDEX::remove(SBD_SYMBOL* symbol) noexcept {
  const auto entry = m_entries.find(symbol);
  if (entry != m_entries.end()) {
    m_by_name.erase(entry->second);
    m_entries.erase(entry);
    return;
  }
  auto* const table = const_cast<SCOPE_TABLE*>(table_of(scope_of(symbol)));
  if (table == nullptr) return;
  const std::uint64_t hash = sbd_hash_name(symbol->name);
  SBD_SYMBOL** const slot =
      table->find_slot(static_cast<std::uint32_t>(hash), symbol->m_tag, symbol->name);
  if (*slot == symbol) *slot = const_cast<SBD_SYMBOL*>(&k_removed);
}

void SBD_NAME_INDEX::rescope(SBD_SYMBOL* symbol) {
  const auto entry = m_entries.find(symbol);
  if (entry == m_entries.end()) return;
  const KEY& old_key = entry->second->first;
  const KEY key = key_of(symbol, old_key.serial);
  if (key.is_scoped == old_key.is_scoped && key.scope == old_key.scope) return;
  auto handle = m_by_name.extract(entry->second);
  handle.key() = key;
  entry->second = m_by_name.insert(std::move(handle)).position;
}

void SBD_NAME_INDEX::clear() noexcept {
  m_by_name.clear();
  m_entries.clear();
  m_top_table = nullptr;
}
