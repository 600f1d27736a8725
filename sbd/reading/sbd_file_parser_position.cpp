// Where in the text that was read something stands.
//
// Records keep where they begin; where they end is found by looking at the text again.
#include <algorithm>
#include <array>

#include "sbd/reading/sbd_chars.h"
#include "sbd/reading/sbd_store.h"
#include "sbd/reading/sbd_tree.h"
#include "sbd/sbd_file_parser.h"

using SBD_PARA_VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;

namespace {

std::size_t skip_blank_space(std::string_view text, std::size_t at) {
  while (at < text.size() && (sbd_is(text[at], CC_BLANK) || text[at] == '\n')) ++at;
  return at;
}

std::size_t skip_string(std::string_view text, std::size_t at) {
  return std::min(text.find('"', at + 1), text.size() - 1) + 1;
}

constexpr std::array<bool, 256> make_item_ends() {
  std::array<bool, 256> ends{};
  for (const char c : std::string_view(" \t\r\n=;,{}<>[]#\"")) {
    ends[static_cast<unsigned char>(c)] = true;
  }
  return ends;
}
constexpr std::array<bool, 256> k_item_ends = make_item_ends();

// Behind the name or number that begins at `at`. The text was parsed without fault, so
// what may follow need not be looked for.
std::size_t skip_item(std::string_view text, std::size_t at) {
  for (;;) {
    while (at < text.size() && !k_item_ends[static_cast<unsigned char>(text[at])]) ++at;
    const bool is_index = text.size() - at > 2 && text[at] == '[' && text[at + 2] == ']' &&
                          sbd_is(text[at + 1], CC_DIGIT);
    if (!is_index) return at;
    at += 3;
  }
}

// Behind the ";" of the statement that begins at `at`.
std::size_t skip_statement(std::string_view text, std::size_t at) {
  while (at < text.size() && text[at] != ';') at = text[at] == '"' ? skip_string(text, at) : at + 1;
  return std::min(at + 1, text.size());
}

// How long a value of the reader's is. Of a list the document knows it: lists may be nested deeply,
// and each of them would have to be looked through.
std::size_t source_length(const SBD_PARA_VALUE& value, std::string_view text) {
  if (value.m_length != SBD_PARA_VALUE::k_long) return value.m_length;
  if (value.type == SBD_PARA_VALUE::VT_LIST) {
    return value.list != nullptr ? SBD_STORE::source_length(*value.list) : 0;
  }
  const std::size_t begin = value.m_position - std::size_t{1};
  return (text[begin] == '"' ? skip_string(text, begin) : skip_item(text, begin)) - begin;
}

}  // namespace

std::uint32_t SBD_STORE::name_position(const SBD_NODE* node) const {
  const SBD_SYMBOL* const symbol = sbd_symbol_of(node);
  if (symbol == nullptr || symbol->m_tag == 0 || node->m_position == 0) return 0;
  if (node->type == SBD_NODE::NT_STATEMENT) return node->m_position;
  const std::string_view text = source.text();
  const std::size_t type_end = skip_item(text, node->m_position - std::size_t{1});
  return static_cast<std::uint32_t>(skip_blank_space(text, type_end)) + 1;
}

bool SBD_FILE_PARSER::make_range(std::uint32_t position, std::size_t end,
                                 SBD_SOURCE_RANGE& range) const {
  const std::size_t offset = position - std::size_t{1};
  range = m_store->source.range(offset, end - offset);
  return true;
}

bool SBD_FILE_PARSER::get_range(const SBD_NODE* node, SBD_SOURCE_RANGE& range) const {
  if (m_store == nullptr || node == nullptr || node->m_position == 0) return false;
  const std::string_view text = m_store->source.text();
  const std::size_t begin = node->m_position - std::size_t{1};
  switch (node->type) {
    case SBD_NODE::NT_BLOCK:
      if (node->block == nullptr || node->block->m_end_position == 0) return false;
      return make_range(node->m_position, node->block->m_end_position, range);
    case SBD_NODE::NT_STATEMENT:
      return make_range(node->m_position, skip_statement(text, begin), range);
    case SBD_NODE::NT_COMMENT:
      return make_range(node->m_position, line_end(begin), range);
    default:
      return false;
  }
}

std::size_t SBD_FILE_PARSER::line_end(std::size_t begin) const {
  const std::string_view text = m_store->source.text();
  const std::size_t end = std::min(text.find('\n', begin), text.size());
  return end > begin && text[end - 1] == '\r' ? end - 1 : end;
}

bool SBD_FILE_PARSER::get_name_range(const SBD_NODE* node, SBD_SOURCE_RANGE& range) const {
  if (m_store == nullptr || node == nullptr) return false;
  const std::uint32_t position = m_store->name_position(node);
  if (position == 0) return false;
  return make_range(position, skip_item(m_store->source.text(), position - std::size_t{1}), range);
}

bool SBD_FILE_PARSER::get_type_range(const SBD_NODE* node, SBD_SOURCE_RANGE& range) const {
  if (m_store == nullptr || node == nullptr || node->type != SBD_NODE::NT_BLOCK) return false;
  if (node->m_position == 0) return false;
  const std::size_t begin = node->m_position - std::size_t{1};
  return make_range(node->m_position, skip_item(m_store->source.text(), begin), range);
}

bool SBD_FILE_PARSER::get_comment_range(const SBD_NODE* node, SBD_SOURCE_RANGE& range) const {
  if (m_store == nullptr || node == nullptr || node->type != SBD_NODE::NT_STATEMENT) return false;
  if (node->m_position == 0 || node->statement == nullptr) return false;
  if (node->statement->comment == nullptr || !m_store->pool.owns(node->statement->comment)) {
    return false;
  }
  const std::string_view text = m_store->source.text();
  const std::size_t begin =
      skip_blank_space(text, skip_statement(text, node->m_position - std::size_t{1}));
  return make_range(static_cast<std::uint32_t>(begin) + 1, line_end(begin), range);
}

bool SBD_FILE_PARSER::get_range(const SBD_PARA_VALUE* value, SBD_SOURCE_RANGE& range) const {
  if (m_store == nullptr || value == nullptr || value->m_position == 0) return false;
  const std::size_t begin = value->m_position - std::size_t{1};
  const std::size_t end = begin + source_length(*value, m_store->source.text());
  return make_range(value->m_position, end, range);
}

bool SBD_FILE_PARSER::get_range(const SBD_PARA_ATTR* attribute, SBD_SOURCE_RANGE& range) const {
  if (m_store == nullptr || attribute == nullptr || attribute->m_position == 0) return false;
  const std::string_view text = m_store->source.text();
  std::size_t end = skip_item(text, attribute->m_position - std::size_t{1});
  if (attribute->attr_value != nullptr) end = skip_item(text, skip_blank_space(text, end));
  return make_range(attribute->m_position, end, range);
}

bool SBD_FILE_PARSER::get_range(const SBD_PARA_REF* reference, SBD_SOURCE_RANGE& range) const {
  if (m_store == nullptr || reference == nullptr || reference->m_position == 0) return false;
  const std::size_t begin = reference->m_position - std::size_t{1};
  return make_range(reference->m_position, skip_item(m_store->source.text(), begin), range);
}

bool SBD_FILE_PARSER::get_fault_range(SBD_SOURCE_RANGE& range) const {
  if (m_store == nullptr || !m_store->has_fault_range) return false;
  range = m_store->fault_range;
  return true;
}

std::string_view SBD_FILE_PARSER::get_source() const {
  return m_store == nullptr ? std::string_view() : m_store->source.text();
}

void SBD_FILE_PARSER::set_fault_place(const SBD_NODE* node) const {
  if (m_store == nullptr) return;
  const bool is_block = node != nullptr && node->type == SBD_NODE::NT_BLOCK;
  SBD_SOURCE_RANGE& range = m_store->fault_range;
  m_store->has_fault_range = is_block ? get_name_range(node, range) : get_range(node, range);
}
