#include "sbd/reading/sbd_target_search.h"

#include "sbd/reading/sbd_address.h"
#include "sbd/reading/sbd_hash.h"
#include "sbd/reading/sbd_tree.h"

void SBD_TARGET_SEARCH::fetch(const SBD_STATEMENT* statement) {
  // The reader puts the references of a statement, and their names, in front of it.
  sbd_prefetch(statement, -2, 4);
}

void SBD_TARGET_SEARCH::answer(QUESTION* first, std::size_t count) {
  m_count = count;
  for (std::size_t i = 0; i != count; ++i) m_searches[i] = start(first[i]);
  // Each step finds in the cache what the one before had fetched.
  while (m_count != 0) {
    go_on([this](SEARCH& search) {
      if (!search.take_part()) return false;
      m_names.fetch_table(search.scope);
      return true;
    });
    go_on([this](SEARCH& search) {
      m_names.fetch_symbol(search.scope, search.hash);
      return true;
    });
    go_on([this](SEARCH& search) { return find_part(search); });
  }
}

// Lets every search take a step, and drops those that it ends for.
template <class STEP>
void SBD_TARGET_SEARCH::go_on(STEP&& step) {
  std::size_t left = 0;
  for (std::size_t i = 0; i != m_count; ++i) {
    if (step(m_searches[i])) m_searches[left++] = m_searches[i];
  }
  m_count = left;
}

SBD_TARGET_SEARCH::SEARCH SBD_TARGET_SEARCH::start(QUESTION& question) {
  question.target = nullptr;
  const std::string_view name = question.reference->name;
  const bool is_relative = name.front() == '.';
  SEARCH search{};
  search.question = &question;
  search.scope = is_relative ? question.statement->name->parent : nullptr;
  search.left = name.substr(is_relative ? 1 : 0);
  return search;
}

bool SBD_TARGET_SEARCH::SEARCH::take_part() {
  const std::size_t dot = left.find('.');
  is_last = dot == std::string_view::npos;
  part = left.substr(0, dot);
  left.remove_prefix(is_last ? left.size() : dot + 1);
  hash = sbd_hash_padded_name(part);
  return !part.empty();
}

// True when the search goes on in what was found.
bool SBD_TARGET_SEARCH::find_part(SEARCH& search) const {
  const SBD_NODE* const members = search.scope != nullptr ? sbd_members_of(search.scope) : m_root;
  const auto* const symbol = m_names.find(search.scope, members, search.part, search.hash);
  if (symbol == nullptr) return false;
  if (search.is_last) search.question->target = symbol->node;
  search.scope = symbol->node;
  return !search.is_last;
}
