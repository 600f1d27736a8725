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

// The hash of a whole name, behind which a step of NUL bytes stands. The two words of each step go
// two ways that need not wait for each other, since whole names are long.
std::uint64_t hash_whole_name(std::string_view name) {
  std::uint64_t low = k_hash_seed.value ^ name.size();
  // As secret as the other, or there would be names that collide whatever the seed is.
  std::uint64_t high = sbd_hash_mix(k_hash_seed.value, 1);
  for (std::size_t done = 0; done < name.size(); done += k_hash_step) {
    const char* const step = name.data() + done;
    low = sbd_hash_mix(low, sbd_load_word(step) | k_case_bits);
    high = sbd_hash_mix(high, sbd_load_word(step + 8) | k_case_bits);
  }
  return sbd_hash_mix(low, high);
}

// The names of objects that lie in one block mostly, put together behind their path.
class FULL_NAME {
 public:
  void set_path(std::string_view path) {
    m_text.assign(path);
    m_text += '.';
    m_path_size = m_text.size();
  }
  std::uint64_t hash_with(std::string_view own_name) {
    m_text.resize(m_path_size);
    m_text.append(own_name);
    const std::size_t size = m_text.size();
    m_text.append(k_hash_step, '\0');
    return hash_whole_name({m_text.data(), size});
  }

 private:
  SBD_STRING m_text;
  std::size_t m_path_size = 0;
};

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
  FULL_NAME full_name;
  std::uint32_t path = k_no_path;  // Of the full name.
  while (SBD_NODE* const node = walk.next()) {
    while (!open_blocks.empty() && open_blocks.back().node != walk.parent()) open_blocks.pop_back();
    const OPEN_BLOCK* const block = open_blocks.empty() ? nullptr : &open_blocks.back();
    const auto* const symbol = sbd_symbol_of(node);
    if (symbol == nullptr) continue;
    if (block != nullptr && block->path != k_no_path) {
      if (path != block->path) full_name.set_path(path_at(block->path));
      path = block->path;
      enter(node, full_name.hash_with(symbol->name), path);
    }
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
  if (!has_path || !is_short) return {block, k_no_path};

  m_texts.resize(place + 1 + begin + name.size());
  char* const text = m_texts.data() + place + 1;
  text[-1] = static_cast<char>(begin + name.size());
  if (begin != 0) {
    std::memcpy(text, path_at(enclosing->path).data(), begin - 1);
    text[begin - 1] = '.';
  }
  std::memcpy(text + begin, name.data(), name.size());
  return {block, static_cast<std::uint32_t>(place)};
}

void SBD_PATH_INDEX::enter(SBD_NODE* node, std::uint64_t hash, std::uint32_t path) {
  std::size_t slot = slot_of(hash);
  while (m_slots[slot].node != nullptr) slot = slot + 1 == m_slots.size() ? 0 : slot + 1;
  m_slots[slot] = {node, sbd_symbol_of(node)->name, static_cast<std::uint32_t>(hash), path};
}

SBD_NODE* SBD_PATH_INDEX::find(std::string_view name) const {
  const std::uint64_t hash = hash_whole_name(name);
  std::size_t slot = slot_of(hash);
  for (; m_slots[slot].node != nullptr; slot = slot + 1 == m_slots.size() ? 0 : slot + 1) {
    const ENTRY& entry = m_slots[slot];
    if (entry.hash != static_cast<std::uint32_t>(hash)) continue;
    // All that is needed next, to be fetched at once and not one after the other. The reader puts
    // an object's symbol behind its node, and a value in front of it.
    sbd_prefetch(entry.name, 0, 1);
    sbd_prefetch(entry.node, -1, 3);
    if (is_name_of(entry, name)) return entry.node;
  }
  return nullptr;
}

bool SBD_PATH_INDEX::is_name_of(const ENTRY& entry, std::string_view name) const {
  const std::string_view path = path_at(entry.path);
  if (name.size() <= path.size() || name[path.size()] != '.') return false;
  const std::string_view given_path = name.substr(0, path.size());
  return (sbd_equal_bytes(path.data(), given_path.data(), path.size()) ||
          sbd_equal_ignoring_case(path, given_path)) &&
         sbd_has_name(entry.name, name.substr(path.size() + 1));
}

std::string_view SBD_PATH_INDEX::path_at(std::uint32_t place) const {
  const char* const text = m_texts.data() + place;
  return {text + 1, static_cast<unsigned char>(*text)};
}

// The upper half of the hash, scaled down to the number of slots.
std::size_t SBD_PATH_INDEX::slot_of(std::uint64_t hash) const {
  return static_cast<std::size_t>(((hash >> 32) * m_slots.size()) >> 32);
}
