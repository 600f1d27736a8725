#include "tools/near_names.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace sbd_tool {

namespace {

constexpr std::size_t k_most_suggestions = 3;
constexpr std::size_t k_most_exact = 10;
// Help must not take longer than the question is worth.
constexpr std::size_t k_most_members = 100000;
constexpr std::size_t k_most_nodes = 1000000;
constexpr std::size_t k_longest_name = 64;
constexpr std::size_t k_most_candidates = 20;
constexpr std::size_t k_most_repairs = 4;

char to_lower(char c) {
  return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

// A name split where it stops making sense.
struct BROKEN_NAME {
  const NODE* scope = nullptr;  // What the components in front name; null for none.
  std::string_view component;   // The first one that names nothing.
  std::string_view rest;        // Behind it, with the "." in front.
};

BROKEN_NAME break_name(const SBD_FILE_PARSER& document, const std::string& name) {
  BROKEN_NAME broken;
  const std::string_view whole = name;
  for (std::size_t begin = 0;;) {
    const std::size_t end = std::min(whole.find('.', begin), whole.size());
    broken.component = whole.substr(begin, end - begin);
    const NODE* const node = find_node(document, std::string(broken.component), broken.scope);
    if (node == nullptr || end == whole.size()) {
      broken.rest = whole.substr(end);
      return broken;
    }
    broken.scope = node;
    begin = end + 1;
  }
}

const NODE* first_member(const SBD_FILE_PARSER& document, const NODE* scope) {
  if (scope == nullptr) return document.get_parser_para().root;
  return scope->type == NODE::NT_BLOCK ? scope->block->members : nullptr;
}

struct CANDIDATE {
  std::size_t distance = 0;
  const NODE* node = nullptr;
};

// The members of the scope whose names are near the component, the nearest first.
std::vector<CANDIDATE> find_candidates(const NODE* member, std::string_view component) {
  std::vector<CANDIDATE> candidates;
  if (component.empty() || component.size() > k_longest_name) return candidates;
  const std::size_t farthest = (component.size() + 1) / 3;
  for (std::size_t i = 0; member != nullptr && i < k_most_members; ++i, member = member->next) {
    const std::string_view declared = declared_name(*member);
    const bool is_too_long = declared.size() > component.size() + farthest;
    const bool is_too_short = declared.empty() || declared.size() + farthest < component.size();
    if (is_too_long || is_too_short) continue;
    const std::size_t distance = edit_distance(component, declared);
    if (distance <= farthest) candidates.push_back({distance, member});
  }
  std::stable_sort(candidates.begin(), candidates.end(),
                   [](const auto& a, const auto& b) { return a.distance < b.distance; });
  if (candidates.size() > k_most_candidates) candidates.resize(k_most_candidates);
  return candidates;
}

std::vector<std::string> find_misspelled(const SBD_FILE_PARSER& document, std::string name,
                                         WANTED wanted) {
  std::vector<std::string> names;
  // Each round puts one component right.
  for (std::size_t round = 0; round < k_most_repairs; ++round) {
    const BROKEN_NAME broken = break_name(document, name);
    const std::vector<CANDIDATE> candidates =
        find_candidates(first_member(document, broken.scope), broken.component);
    if (candidates.empty()) return {};
    for (const CANDIDATE& candidate : candidates) {
      const std::string repaired = full_name(document, *candidate.node).append(broken.rest);
      const NODE* const node = find_node(document, repaired, nullptr);
      if (node == nullptr || !is_wanted(*node, wanted)) continue;
      names.push_back(full_name(document, *node));
      if (names.size() == k_most_suggestions) return names;
    }
    if (!names.empty()) return names;
    name = full_name(document, *candidates.front().node).append(broken.rest);
  }
  return names;
}

// Names that end in the component that was asked for, wherever they stand.
std::vector<std::string> find_misplaced(const SBD_FILE_PARSER& document, std::string_view name,
                                        WANTED wanted) {
  std::vector<std::string> names;
  const std::string_view last = name.substr(name.rfind('.') + 1);
  TREE_WALK walk(document.get_parser_para().root, TREE_WALK::EXTENT::WITH_SIBLINGS);
  for (std::size_t i = 0; i < k_most_nodes && names.size() < k_most_suggestions; ++i) {
    const TREE_WALK::STEP step = walk.next();
    if (step == TREE_WALK::STEP::END) break;
    if (step != TREE_WALK::STEP::ENTER || !is_wanted(*walk.node(), wanted)) continue;
    if (!equal_ignoring_case(declared_name(*walk.node()), last)) continue;
    names.push_back(full_name(document, *walk.node()));
  }
  return names;
}

std::vector<std::string> find_similar(const std::vector<std::string>& names,
                                      std::string_view name) {
  if (name.empty() || name.size() > k_longest_name) return {};
  const bool has_blocks = name.find('.') != std::string_view::npos;
  const std::size_t farthest = (name.size() + 1) / 3;
  std::vector<std::pair<std::size_t, std::string_view>> found;
  for (const std::string_view one : names) {
    std::size_t distance = edit_distance(one, name);
    const std::string_view last = one.substr(one.rfind('.') + 1);
    if (!has_blocks) distance = std::min(distance, edit_distance(last, name));
    if (distance <= farthest) found.emplace_back(distance, one);
  }
  std::stable_sort(found.begin(), found.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<std::string> near;
  for (const auto& [distance, one] : found) {
    // What fits exactly is listed as far as anybody reads it, and what fits best hides the rest.
    const std::size_t most = distance == 0 ? k_most_exact : k_most_suggestions;
    if (near.size() >= most || distance != found.front().first) break;
    near.emplace_back(one);
  }
  return near;
}

}  // namespace

bool equal_ignoring_case(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return to_lower(x) == to_lower(y); });
}

std::size_t edit_distance(std::string_view a, std::string_view b) {
  // Rows of the table of distances between all beginnings of a and b.
  std::vector<std::size_t> before_last(b.size() + 1);
  std::vector<std::size_t> last(b.size() + 1);
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    before_last.swap(last);
    last.swap(row);
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const char x = to_lower(a[i - 1]);
      const char y = to_lower(b[j - 1]);
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (x == y ? 0U : 1U)});
      const bool is_swap = i > 1 && j > 1 && x == to_lower(b[j - 2]) && y == to_lower(a[i - 2]);
      if (is_swap) row[j] = std::min(row[j], before_last[j - 2] + 1);
    }
  }
  return row[b.size()];
}

std::vector<std::string> find_near_texts(const std::vector<std::string>& names,
                                         std::string_view name) {
  for (;;) {
    std::vector<std::string> near = find_similar(names, name);
    const std::size_t dot = name.find('.');
    if (!near.empty() || dot == std::string_view::npos) return near;
    name.remove_prefix(dot + 1);
  }
}

std::vector<std::string> find_near_names(const SBD_FILE_PARSER& document, const std::string& name,
                                         WANTED wanted) {
  std::vector<std::string> names = find_misspelled(document, name, wanted);
  if (names.empty()) names = find_misplaced(document, name, wanted);
  return names;
}

}  // namespace sbd_tool
