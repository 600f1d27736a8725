#include "sbd/reading/sbd_name_index.h"

#include <chrono>
#include <limits>
#include <new>

#include "sbd/reading/sbd_hash.h"
#include "sbd/reading/sbd_joined_name.h"
#include "sbd/reading/sbd_run.h"
#include "sbd/reading/sbd_tree.h"

using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
using SBD_SYMBOL = SBD_FILE_PARSER::SBD_SYMBOL;

namespace {

// Up to so many members are looked through one by one, which takes no longer than a list would.
constexpr std::size_t k_small_scope = 4;

std::uint64_t make_seed() noexcept {
  const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
  const auto place = reinterpret_cast<std::uintptr_t>(&k_hash_seed);
  return sbd_hash_mix(static_cast<std::uint64_t>(now), place);
}

}  // namespace

// Hashes are kept, so the seed must be there before any initialiser of a program that the library
// is linked into reads a document.
#if defined(__GNUC__)
__attribute__((init_priority(101)))
#endif
const SBD_HASH_SEED k_hash_seed{make_seed()};

namespace {

#if defined(__GNUC__)
[[gnu::noinline]]  // Seldom called, it would only be in the way.
#endif
bool has_twin(const SBD_OPEN_MEMBER* first, const SBD_OPEN_MEMBER* last,
              const SBD_OPEN_MEMBER& member) {
  for (const auto* other = first; other != last; ++other) {
    if (other->hash != member.hash) continue;
    if (sbd_equal_ignoring_case(member.symbol->name, other->symbol->name)) return true;
  }
  return false;
}

// Two symbols of a scope with one name are rare, and so are members that a few bits of their hashes
// don't tell from all before.
bool has_twins(const SBD_OPEN_MEMBER* first, const SBD_OPEN_MEMBER* last) {
  std::uint64_t seen = 0;
  for (const auto* member = first; member != last; ++member) {
    const std::uint64_t bit = std::uint64_t{1} << (member->hash % 64);
    if ((seen & bit) != 0 && has_twin(first, member, *member)) return true;
    seen |= bit;
  }
  return false;
}

}  // namespace

bool SBD_NAME_INDEX::close_scope(SBD_NODE* block, const SBD_OPEN_MEMBER* first,
                                 const SBD_OPEN_MEMBER* last, std::size_t unnamed, SBD_POOL& pool) {
  const auto count = static_cast<std::size_t>(last - first);
  if (count + unnamed <= k_small_scope) return !has_twins(first, last);
  if (count != 0 && count <= SBD_SCOPE_LIST::k_most_members) {
    SBD_SCOPE_LIST* const list = SBD_SCOPE_LIST::make(first, count, pool);
    if (list != nullptr) {
      set_table(block, list);
      return !has_twins(first, last);
    }
  }

  SBD_SCOPE_HASH* const table = SBD_SCOPE_HASH::make(count, pool);
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

void SBD_NAME_INDEX::set_table(SBD_NODE* block, SBD_SCOPE_TABLE* table) {
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
  SBD_SCOPE_HASH* const table = SBD_SCOPE_HASH::make(count, pool);
  for (const SBD_NODE* node = members; node != nullptr; node = node->next) {
    SBD_SYMBOL* const symbol = sbd_symbol_of(node);
    if (symbol == nullptr || symbol->m_tag == 0) continue;
    const auto hash = static_cast<std::uint32_t>(sbd_hash_name(symbol->name));
    *table->find_slot(hash, symbol->m_tag, symbol->name) = symbol;
  }
  set_table(block, table);
}

SBD_SYMBOL* SBD_NAME_INDEX::find_unlisted(const SBD_SCOPE_TABLE* table, const SBD_NODE* members,
                                          std::uint64_t hash, std::string_view name) {
  const std::uint16_t tag = sbd_name_tag(hash);
  if (table != nullptr) {
    auto* const slots = const_cast<SBD_SCOPE_HASH*>(static_cast<const SBD_SCOPE_HASH*>(table));
    return *slots->find_slot(static_cast<std::uint32_t>(hash), tag, name);
  }
  // What the reader made stands before what was added later.
  for (const SBD_NODE* node = members; node != nullptr && node->m_position != 0;
       node = node->next) {
    SBD_SYMBOL* const symbol = sbd_symbol_of(node);
    if (symbol != nullptr && symbol->m_tag == tag && sbd_has_name(symbol->name, name)) {
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

SBD_SYMBOL* SBD_NAME_INDEX::find_any(const SBD_NODE* scope, const SBD_NODE* members,
                                     std::string_view name) const {
  const auto* const entry = last_entered(scope, name);
  return entry != nullptr ? entry->second
                          : find_read(scope, members, name, sbd_hash_padded_name(name));
}

bool SBD_NAME_INDEX::has_earlier(const SBD_SYMBOL* symbol, const SBD_NODE* members) const {
  if (symbol->parent == nullptr) return false;
  const SBD_NODE* const scope = scope_of(symbol);
  const SBD_JOINED_NAME padded(nullptr, symbol->name);
  const SBD_SYMBOL* const read =
      find_read(scope, members, padded.view(), sbd_hash_padded_name(padded.view()));
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
  drop_paths();
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
  drop_paths();
  const auto entry = m_entries.find(symbol);
  if (entry != m_entries.end()) {
    m_by_name.erase(entry->second);
    m_entries.erase(entry);
    return;
  }
  SBD_SCOPE_TABLE* const table = table_of(scope_of(symbol));
  if (table == nullptr) return;
  if (table->listed != 0) {
    static_cast<SBD_SCOPE_LIST*>(table)->remove(symbol);
  } else {
    static_cast<SBD_SCOPE_HASH*>(table)->remove(symbol);
  }
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

// Making the index takes as long as some searches for each of the objects save, so there have to be
// some for every few of them.
SBD_NODE* SBD_NAME_INDEX::count_search(SBD_NODE* root, const SBD_POOL& pool) const noexcept {
  constexpr std::uint32_t k_fewest = 64;
  constexpr std::size_t k_bytes_per_search = 1024;
  const std::size_t enough = k_fewest + pool.size() / k_bytes_per_search;
  // The one that counts up to just that number makes it; without memory there is none.
  if (m_searches.fetch_add(1, std::memory_order_relaxed) + std::size_t{1} != enough) return nullptr;
  try {
    m_paths.store(new SBD_PATH_INDEX(root), std::memory_order_release);
  } catch (...) {
    return nullptr;
  }
  return nullptr;
}

void SBD_NAME_INDEX::drop_paths() noexcept {
  delete m_paths.load(std::memory_order_relaxed);
  m_paths.store(nullptr, std::memory_order_relaxed);
  m_searches.store(0, std::memory_order_relaxed);
  m_has_paths = false;
}

void SBD_NAME_INDEX::clear() noexcept {
  drop_paths();
  m_by_name.clear();
  m_entries.clear();
  m_top_table = nullptr;
}
