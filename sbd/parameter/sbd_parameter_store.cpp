#include "sbd/parameter/sbd_parameter_store.h"

#include <cstring>

#include "sbd/reading/sbd_hash.h"
#include "sbd/reading/sbd_joined_name.h"
#include "sbd/reading/sbd_lookup.h"
#include "sbd/reading/sbd_store.h"
#include "sbd/reading/sbd_tree.h"

namespace {

using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;

SBD_STRING make_key_prefix(const SBD_STRING& module_name) {
  SBD_STRING prefix = module_name;
  sbd_lower(prefix);
  prefix += '.';
  return prefix;
}

// `lower` is in lower case; most callers write their names so too.
bool is_same_reference(std::string_view lower, std::string_view reference) {
  if (lower.size() != reference.size()) return false;
  if (std::memcmp(lower.data(), reference.data(), lower.size()) == 0) return true;
  for (std::size_t i = 0; i != lower.size(); ++i) {
    if (lower[i] != sbd_to_lower(reference[i])) return false;
  }
  return true;
}

const SBD_NODE* if_block(const SBD_NODE* node) {
  return node != nullptr && node->type == SBD_NODE::NT_BLOCK ? node : nullptr;
}

const SBD_NODE* if_statement(const SBD_NODE* node) {
  const bool is_statement =
      node != nullptr && node->type == SBD_NODE::NT_STATEMENT && node->statement != nullptr;
  return is_statement ? node : nullptr;
}

}  // namespace

// ---- The document --------------------------------------------------------------------------

void SBD_MODULE_LOOKUP::begin_walk() {
  // No object has an empty name; asking for one would be reported.
  const SBD_STRING module_name(m_prefix, 0, m_prefix.size() - 1);
  const bool has_name = !module_name.empty();
  m_module = has_name ? SBD_LOOKUP::find(m_parser, module_name.c_str(), nullptr) : nullptr;
  m_last_block = {nullptr, nullptr};
  m_is_walking = true;
}

const SBD_NODE* SBD_MODULE_LOOKUP::find(const SBD_NODE* scope, const char* name) const {
  if (m_is_walking) return scope != nullptr ? SBD_LOOKUP::find(m_parser, name, scope) : nullptr;
  const SBD_STRING full_name = m_prefix + name;
  return SBD_LOOKUP::find(m_parser, full_name.c_str(), nullptr);
}

const SBD_NODE* SBD_MODULE_LOOKUP::find_block(const char* block_name) {
  if (!m_is_walking) return if_block(find(nullptr, block_name));
  // The tables take each block's name from one place, and list its parameters in a row.
  if (block_name == m_last_block.name) return m_last_block.node;
  for (const KNOWN_BLOCK& known : m_known_blocks) {
    if (known.name != block_name) continue;
    m_last_block = known;
    return known.node;
  }
  m_last_block = {block_name, if_block(find(m_module, block_name))};
  m_known_blocks.push_back(m_last_block);
  return m_last_block.node;
}

const SBD_NODE* SBD_MODULE_LOOKUP::find_statement(const char* block_name,
                                                  const char* parameter_name) {
  if (block_name == nullptr) return if_statement(find(m_module, parameter_name));
  if (m_is_walking) return if_statement(find(find_block(block_name), parameter_name));
  const SBD_JOINED_NAME reference(block_name, parameter_name);
  return if_statement(find(nullptr, reference.c_str()));
}

const SBD_NODE* SBD_MODULE_LOOKUP::find_prepared(const SBD_NODE* block,
                                                 const SBD_PREPARED_NAME& name) const {
  const SBD_NODE* const scope = block == nullptr ? m_module : block;
  if (scope == nullptr) return nullptr;
  const SBD_NAME_INDEX& names = m_parser.get_parser_para().symbol_table->store()->names;
  const auto* const symbol =
      names.find(scope, sbd_members_of(scope), name.own_name, name.name_hash);
  return symbol != nullptr ? if_statement(symbol->node) : nullptr;
}

// ---- Memory ----------------------------------------------------------------------------------

void* sbd_take_parameter_memory(SBD_POOL* pool, std::size_t size) {
  return pool != nullptr ? pool->take(size) : SBD_RECORD::operator new(size);
}

void sbd_give_parameter_memory(SBD_POOL* pool, void* memory) noexcept {
  if (pool == nullptr) SBD_RECORD::operator delete(memory);
}

// ---- The index -----------------------------------------------------------------------------

SBD_PARAMETER_STORE::SBD_PARAMETER_STORE(const SBD_FILE_PARSER& parser,
                                         const SBD_STRING& module_name)
    : key_prefix(make_key_prefix(module_name)), lookup(parser, key_prefix) {}

std::uint32_t SBD_PARAMETER_STORE::hash_of(std::string_view reference) {
  constexpr std::uint64_t k_seed = 0;  // The same in every run, since prepared names keep the hash.
  return static_cast<std::uint32_t>(sbd_hash_name(reference, k_seed) >> 32);
}

void SBD_PARAMETER_STORE::expect(const SBD_PREPARED_NAME& name, const char* text) {
  const std::size_t next =
      m_expected != nullptr ? static_cast<std::size_t>(m_expected - m_records.data()) + 1 : 0;
  m_expected = nullptr;
  const bool is_next = next < m_records.size() && m_records[next].prepared == &name;
  m_expected = is_next ? &m_records[next] : find(name.reference, name.hash);
  m_expected_text = text;
}

const SBD_PARAMETER_STORE::RECORD* SBD_PARAMETER_STORE::find(std::string_view reference) const {
  if (m_expected != nullptr && is_same_reference(m_expected->reference, reference)) {
    return m_expected;
  }
  return find(reference, hash_of(reference));
}

const SBD_PARAMETER_STORE::RECORD* SBD_PARAMETER_STORE::find(std::string_view reference,
                                                             std::uint32_t hash) const {
  if (m_slots.empty()) return nullptr;
  const std::size_t mask = m_slots.size() - 1;
  for (std::size_t slot = hash & mask; m_slots[slot] != 0; slot = (slot + 1) & mask) {
    const RECORD& record = m_records[m_slots[slot] - 1];
    if (record.hash == hash && is_same_reference(record.reference, reference)) return &record;
  }
  return nullptr;
}

void SBD_PARAMETER_STORE::make_more_room() {
  constexpr std::size_t k_first_room = 160;   // Enough for every parameter of a chip,
  constexpr std::size_t k_first_slots = 512;  // of which there are never twice as many.
  constexpr std::size_t k_usual_node = 208;   // With its key.
  if (m_room == 0) pool.reserve(k_first_room * k_usual_node);
  const std::size_t room = m_room == 0 ? k_first_room : m_room * 2;
  m_records.reserve(room);
  rebuild(m_room == 0 ? k_first_slots : m_slots.size() * 2);
  m_room = room;
}

void SBD_PARAMETER_STORE::rebuild(std::size_t slot_count) {
  SBD_VECTOR<std::uint32_t>(slot_count, 0).swap(m_slots);
  for (std::uint32_t number = 0; number != m_records.size(); ++number) enter(number);
}

void SBD_PARAMETER_STORE::enter(std::uint32_t number) noexcept {
  const std::size_t mask = m_slots.size() - 1;
  std::size_t slot = m_records[number].hash & mask;
  while (m_slots[slot] != 0) slot = (slot + 1) & mask;
  m_slots[slot] = number + 1;
}

void SBD_PARAMETER_STORE::add(const RECORD& record) noexcept {
  expect_nothing();  // Records may have moved.
  m_records.push_back(record);
  enter(static_cast<std::uint32_t>(m_records.size() - 1));
}

// ---- The walk ----------------------------------------------------------------------------------

SBD_PARAMETER_WALK::SBD_PARAMETER_WALK(SBD_PARAMETER_READER& reader, std::size_t name_count)
    : m_store(reader.store()),
      m_is_first(reader.m_parameters.empty()),
      m_places(name_count + 1, reader.m_parameters.end()) {
  m_store.lookup.begin_walk();  // May fail, and then there is no walk.
  m_store.has_failed = false;
  m_store.walk = this;
}

SBD_PARAMETER_WALK::~SBD_PARAMETER_WALK() {
  m_store.lookup.end_walk();
  m_store.walk = nullptr;
}
