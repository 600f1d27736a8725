#include "sbd/reading/sbd_path_index.h"

#include <cstring>
#include <limits>

#include "sbd/reading/sbd_address.h"
#include "sbd/reading/sbd_hash.h"
#include "sbd/reading/sbd_run.h"
#include "sbd/reading/sbd_scope_table.h"
#include "sbd/reading/sbd_scratch.h"
#include "sbd/reading/sbd_tree.h"

using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;

namespace {

// Deeply nested blocks would have paths of any length.
constexpr std::size_t k_longest_path = std::numeric_limits<std::uint8_t>::max();
constexpr std::uint32_t k_no_path = std::numeric_limits<std::uint32_t>::max();

// Of the path of an object's block and its own name: two hashes that need not wait for each other.
std::uint64_t join_hashes(std::uint64_t path, std::uint64_t name) {
  return sbd_hash_mix(path, name);
}

std::size_t find_last_dot(std::string_view name) {
#if SBD_HAS_SSE2
  // An object's own name usually fits into a step.
  if (name.size() >= k_run_step) {
    const std::size_t begin = name.size() - k_run_step;
    const __m128i step = sbd_load_step(name.data() + begin);
    const unsigned dots = sbd_mask_of(_mm_cmpeq_epi8(step, _mm_set1_epi8('.')));
    if (dots != 0) return begin + sbd_last_set_bit(dots);
  }
#endif
  return name.rfind('.');
}

bool is_same_path(std::string_view one, std::string_view other) {
  return one.size() == other.size() && (sbd_equal_bytes(one.data(), other.data(), one.size()) ||
                                        sbd_equal_ignoring_case(one, other));
}

}  // namespace

SBD_PATH_INDEX::SBD_PATH_INDEX(SBD_NODE* root) {
  std::size_t count = 0;
  SBD_TREE_WALK counting_walk(root);
  while (const SBD_NODE* const node = counting_walk.next()) {
    if (node->type != SBD_NODE::NT_COMMENT) ++count;
  }
  m_slots.resize(count + count / 2 + 1);

  SBD_SCRATCH<OPEN_BLOCK, 32> open_blocks;
  SBD_TREE_WALK walk(root);
  while (SBD_NODE* const node = walk.next()) {
    while (!open_blocks.empty() && open_blocks.back().node != walk.parent()) open_blocks.pop_back();
    const OPEN_BLOCK* const block = open_blocks.empty() ? nullptr : &open_blocks.back();
    if (sbd_symbol_of(node) == nullptr) continue;
    if (block != nullptr && block->path != k_no_path) enter(node, *block);
    if (node->type == SBD_NODE::NT_BLOCK) open_blocks.push_back(open(node, block));
  }
  m_texts.resize(m_texts.size() + k_run_step);
}

// Begins a block with its path: its length and its text.
SBD_PATH_INDEX::OPEN_BLOCK SBD_PATH_INDEX::open(const SBD_NODE* block,
                                                const OPEN_BLOCK* enclosing) {
  const bool is_top_level = enclosing == nullptr;
  const std::string_view name = sbd_symbol_of(block)->name;
  const bool has_path = is_top_level || enclosing->path != k_no_path;
  const std::size_t begin = has_path && !is_top_level ? path_at(enclosing->path).size() + 1 : 0;
  const std::size_t place = m_texts.size();
  const bool is_short = begin + name.size() <= k_longest_path && place < k_no_path - k_longest_path;
  if (!has_path || !is_short) return {block, k_no_path, 0};

  m_texts.resize(place + 1 + begin + name.size());
  char* const text = m_texts.data() + place + 1;
  text[-1] = static_cast<char>(begin + name.size());
  if (begin != 0) {
    std::memcpy(text, path_at(enclosing->path).data(), begin - 1);
    text[begin - 1] = '.';
  }
  std::memcpy(text + begin, name.data(), name.size());
  const auto path = static_cast<std::uint32_t>(place);
  return {block, path, sbd_hash_name(path_at(path))};
}

void SBD_PATH_INDEX::enter(SBD_NODE* node, const OPEN_BLOCK& block) {
  const char* const name = sbd_symbol_of(node)->name;
  const std::uint64_t hash = join_hashes(block.path_hash, sbd_hash_name(name));
  std::size_t slot = slot_of(hash);
  while (m_slots[slot].node != nullptr) slot = slot + 1 == m_slots.size() ? 0 : slot + 1;
  m_slots[slot] = {node, name, static_cast<std::uint32_t>(hash), block.path};
}

SBD_NODE* SBD_PATH_INDEX::find(std::string_view name) const {
  const std::size_t dot = find_last_dot(name);
  if (dot == std::string_view::npos) return nullptr;
  const std::string_view path = name.substr(0, dot);
  const std::string_view own_name = name.substr(dot + 1);
  const std::uint64_t hash =
      join_hashes(sbd_hash_padded_name(path), sbd_hash_padded_name(own_name));
  std::size_t slot = slot_of(hash);
  for (; m_slots[slot].node != nullptr; slot = slot + 1 == m_slots.size() ? 0 : slot + 1) {
    const ENTRY& entry = m_slots[slot];
    if (entry.hash != static_cast<std::uint32_t>(hash)) continue;
    // All that is needed next, to be fetched at once and not one after the other. The reader puts
    // an object's symbol behind its node, and a value in front of it.
    sbd_prefetch(entry.name, 0, 1);
    sbd_prefetch(entry.node, -1, 3);
    if (is_same_path(path_at(entry.path), path) && sbd_has_name(entry.name, own_name)) {
      return entry.node;
    }
  }
  return nullptr;
}

std::string_view SBD_PATH_INDEX::path_at(std::uint32_t place) const {
  const char* const text = m_texts.data() + place;
  return {text + 1, static_cast<unsigned char>(*text)};
}

// The upper half of the hash, scaled down to the number of slots.
std::size_t SBD_PATH_INDEX::slot_of(std::uint64_t hash) const {
  return static_cast<std::size_t>(((hash >> 32) * m_slots.size()) >> 32);
}
