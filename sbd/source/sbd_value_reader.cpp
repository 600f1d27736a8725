#include "sbd/source/sbd_value_reader.h"

#include <algorithm>

#include "sbd/reading/sbd_chars.h"
#include "sbd/reading/sbd_parser_fast.h"
#include "sbd/reading/sbd_store.h"

namespace {

using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;

constexpr std::string_view k_before = "device d{v=";
constexpr std::string_view k_behind = ";}";

bool is_space(char c) {
  return sbd_is(c, CC_BLANK) || c == '\n';
}

// The value of the assignment that the document begins with; null when there is more than that: a
// second member or block, or attributes. (A comment would hide what stands behind.)
const SBD_FILE_PARSER::SBD_PARA_VALUE* only_value(const SBD_NODE* root) {
  const SBD_NODE* const member = root->block->members;
  if (root->next != nullptr || member->next != nullptr) return nullptr;
  return member->statement->attributes == nullptr ? member->statement->value : nullptr;
}

}  // namespace

std::string_view sbd_trim(std::string_view text) {
  while (!text.empty() && is_space(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_space(text.back())) text.remove_suffix(1);
  return text;
}

// The value is parsed as part of the smallest document around it. The quick parser posts nothing.
const SBD_FILE_PARSER::SBD_PARA_VALUE* SBD_VALUE_READER::read(std::string_view text) {
  auto& para = m_document.get_parser_para();
  if (para.symbol_table == nullptr) return nullptr;
  const std::size_t length = k_before.size() + text.size() + k_behind.size();
  if (length > SBD_SOURCE::k_longest) return nullptr;
  m_document.clear();
  char* const buffer = SBD_SOURCE::allocate(length);
  char* end = std::copy(k_before.begin(), k_before.end(), buffer);
  end = std::copy(text.begin(), text.end(), end);
  std::copy(k_behind.begin(), k_behind.end(), end);

  SBD_STORE& store = *para.symbol_table->store();
  store.source.adopt(buffer, length);
  if (!sbd_parse_faultless(store.source.text(), store, para)) return nullptr;
  return only_value(para.root);
}
