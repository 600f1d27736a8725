#include "tools/tree_pairing.h"

#include <algorithm>
#include <functional>
#include <string>
#include <utility>

#include "tools/names.h"
#include "tools/parameter_kind.h"
#include "tools/value_meaning.h"

namespace sbd_tool {

namespace {

// Blocks that have at least that part in common are taken for the same one.
constexpr double k_least_likeness = 0.5;

// Every candidate is compared with every other one; trees that would need more than this many nodes
// to be looked at have too many of them for a guess.
constexpr std::size_t k_greatest_effort = 4'000'000;

bool is_block(const NODE* node) {
  return node != nullptr && node->type == NODE::NT_BLOCK;
}

const NODE* members_of(const NODE* node) {
  return is_block(node) ? node->block->members : nullptr;
}

std::size_t combine(std::size_t a, std::size_t b) {
  constexpr auto k_golden = static_cast<std::size_t>(0x9e3779b97f4a7c15U);
  return (a ^ (b + k_golden + (a << 6U) + (a >> 2U))) * k_golden;
}

std::size_t hash_of(const std::string& text) {
  return std::hash<std::string>()(text);
}

std::size_t hash_statement(std::size_t block, const NODE& node) {
  const std::size_t name = combine(block, hash_of(fold_case(declared_name(node))));
  const STATEMENT& statement = *node.statement;
  if (statement.type == STATEMENT::ST_REFERENCE) return combine(name, 1);
  return combine(name, hash_of(get_meaning(*statement.value)));
}

// What the statements of a block say, each with the names of the blocks inside that it stands in.
std::vector<std::size_t> take_prints(const NODE* block, std::size_t& effort) {
  std::vector<std::size_t> prints;
  std::vector<std::size_t> blocks = {0};
  TREE_WALK walk(members_of(block), TREE_WALK::EXTENT::WITH_SIBLINGS);
  for (TREE_WALK::STEP step = walk.next(); step != TREE_WALK::STEP::END; step = walk.next()) {
    const NODE& node = *walk.node();
    ++effort;
    if (step == TREE_WALK::STEP::LEAVE) {
      blocks.pop_back();
    } else if (node.type == NODE::NT_BLOCK) {
      blocks.push_back(combine(blocks.back(), hash_of(fold_case(declared_name(node)))));
    } else if (node.type == NODE::NT_STATEMENT) {
      prints.push_back(hash_statement(blocks.back(), node));
    }
  }
  std::sort(prints.begin(), prints.end());
  return prints;
}

}  // namespace

TREE_PAIRING::TREE_PAIRING(const NODE* old_root, const NODE* new_root) {
  pair_members(old_root, new_root);
  while (!m_open.empty()) {
    const NODE_PAIR pair = m_open.back();
    m_open.pop_back();
    m_pairs.push_back(pair);
    if (pair.old_node != nullptr && pair.new_node != nullptr) {
      m_counterparts[pair.old_node] = pair.new_node;
    }
    if (is_block(pair.old_node) || is_block(pair.new_node)) {
      pair_members(members_of(pair.old_node), members_of(pair.new_node));
    }
  }
}

const NODE* TREE_PAIRING::counterpart(const NODE* old_node) const {
  const auto found = m_counterparts.find(old_node);
  return found == m_counterparts.end() ? nullptr : found->second;
}

void TREE_PAIRING::pair_members(const NODE* old_first, const NODE* new_first) {
  std::unordered_map<std::string, std::size_t> places;
  std::vector<NODE_PAIR> pairs;
  for (const NODE* node = old_first; node != nullptr; node = node->next) {
    if (node->type == NODE::NT_COMMENT) continue;
    places[fold_case(declared_name(*node))] = pairs.size();
    pairs.push_back({node, nullptr});
  }
  for (const NODE* node = new_first; node != nullptr; node = node->next) {
    if (node->type == NODE::NT_COMMENT) continue;
    const auto found = places.find(fold_case(declared_name(*node)));
    const bool is_same = found != places.end() && pairs[found->second].new_node == nullptr &&
                         pairs[found->second].old_node->type == node->type;
    if (is_same) {
      pairs[found->second].new_node = node;
    } else {
      pairs.push_back({nullptr, node});
    }
  }
  pair_renamed(pairs);
  m_open.insert(m_open.end(), pairs.rbegin(), pairs.rend());
}

void TREE_PAIRING::pair_renamed(std::vector<NODE_PAIR>& pairs) {
  std::vector<NODE_PAIR*> candidates;
  for (NODE_PAIR& pair : pairs) {
    if (pair.old_node == nullptr && is_block(pair.new_node)) candidates.push_back(&pair);
  }
  for (NODE_PAIR& pair : pairs) {
    if (m_effort > k_greatest_effort || candidates.empty()) break;
    if (pair.new_node != nullptr || !is_block(pair.old_node)) continue;
    const auto best = find_most_alike(pair.old_node, candidates);
    if (best == candidates.end()) continue;
    pair.new_node = std::exchange((*best)->new_node, nullptr);
    candidates.erase(best);
  }
  const auto is_empty = [](const NODE_PAIR& pair) {
    return pair.old_node == nullptr && pair.new_node == nullptr;
  };
  pairs.erase(std::remove_if(pairs.begin(), pairs.end(), is_empty), pairs.end());
}

std::vector<NODE_PAIR*>::iterator TREE_PAIRING::find_most_alike(
    const NODE* old_block, std::vector<NODE_PAIR*>& candidates) {
  auto best = candidates.end();
  double best_likeness = 0;
  for (auto candidate = candidates.begin(); candidate != candidates.end(); ++candidate) {
    if (m_effort > k_greatest_effort) break;
    const double likeness = compare(old_block, (*candidate)->new_node);
    if (likeness < k_least_likeness || likeness <= best_likeness) continue;
    best = candidate;
    best_likeness = likeness;
  }
  return best;
}

// Which part of what both say they say both: from 0 to 1.
double TREE_PAIRING::compare(const NODE* old_block, const NODE* new_block) {
  ++m_effort;
  if (old_block->block->block_type != new_block->block->block_type) return 0;
  const std::vector<std::size_t> old_prints = take_prints(old_block, m_effort);
  const std::vector<std::size_t> new_prints = take_prints(new_block, m_effort);
  const std::size_t count = old_prints.size() + new_prints.size();
  if (count == 0) return 0;
  std::vector<std::size_t> common;
  std::set_intersection(old_prints.begin(), old_prints.end(), new_prints.begin(), new_prints.end(),
                        std::back_inserter(common));
  return 2 * static_cast<double>(common.size()) / static_cast<double>(count);
}

}  // namespace sbd_tool
