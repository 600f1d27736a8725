#include "sbd/reading/sbd_scope_table.h"

#include "sbd/reading/sbd_hash.h"
#include "sbd/reading/sbd_wraps.h"

using SBD_SYMBOL = SBD_FILE_PARSER::SBD_SYMBOL;

namespace {

// Stands in a hash table for a symbol that is gone.
const SBD_SYMBOL k_removed;

}  // namespace

SBD_WRAPS SBD_SCOPE_LIST* SBD_SCOPE_LIST::make(const SBD_OPEN_MEMBER* first, std::size_t count,
                                               SBD_POOL& pool) {
  // The number of members and the tags fill up whole places.
  const std::size_t places = count / 2 + 1 + count;
  auto* const list = static_cast<SBD_SCOPE_LIST*>(pool.take(places * sizeof(PLACE)));
  list->listed = static_cast<std::uint16_t>(count);
  TAG* const tags = list->tags();
  PLACE* const list_places = list->places();
  const std::int64_t here = sbd_address_of(list);
  // Whether any distance is more than places can tell, in either direction.
  constexpr std::uint64_t k_reach = std::uint64_t{k_unit} << 31;
  std::uint64_t far_bits = 0;
  for (std::size_t i = 0; i != count; ++i) {
    const auto distance = static_cast<std::uint64_t>(sbd_address_of(first[i].symbol) - here);
    far_bits |= distance + k_reach;
    tags[i] = first[i].tag;
    list_places[i] = static_cast<PLACE>(static_cast<std::uint32_t>(distance / k_unit));
  }
  return far_bits < 2 * k_reach ? list : nullptr;
}

void SBD_SCOPE_LIST::remove(const SBD_SYMBOL* symbol) {
  for (std::size_t i = 0; i != listed; ++i) {
    if (symbol_of(i) == symbol) tags()[i] = 0;  // No name has this tag.
  }
}

SBD_SCOPE_HASH* SBD_SCOPE_HASH::make(std::size_t count, SBD_POOL& pool) {
  const std::size_t capacity = count + count / 2 + 1;
  const std::size_t size = sizeof(SBD_SCOPE_HASH) + (capacity - 1) * sizeof(SBD_SYMBOL*);
  auto* const table = static_cast<SBD_SCOPE_HASH*>(pool.take(size));
  table->listed = 0;
  table->m_capacity = static_cast<std::uint32_t>(capacity);
  std::fill_n(table->m_slots, capacity, nullptr);
  return table;
}

SBD_SYMBOL** SBD_SCOPE_HASH::find_slot(std::uint32_t hash, std::uint16_t tag,
                                       std::string_view name) {
  auto index = static_cast<std::size_t>((static_cast<std::uint64_t>(hash) * m_capacity) >> 32);
  while (true) {
    SBD_SYMBOL* const symbol = m_slots[index];
    if (symbol == nullptr) return &m_slots[index];
    if (symbol->m_tag == tag && sbd_has_name(symbol->name, name)) return &m_slots[index];
    index = index + 1 == m_capacity ? 0 : index + 1;
  }
}

void SBD_SCOPE_HASH::remove(const SBD_SYMBOL* symbol) {
  const auto hash = static_cast<std::uint32_t>(sbd_hash_name(symbol->name));
  SBD_SYMBOL** const slot = find_slot(hash, symbol->m_tag, symbol->name);
  if (*slot == symbol) *slot = const_cast<SBD_SYMBOL*>(&k_removed);
}
