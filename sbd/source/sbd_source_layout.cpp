#include "sbd/source/sbd_source_layout.h"

#include <algorithm>

#include "sbd/reading/sbd_chars.h"
#include "sbd/reading/sbd_tree.h"

namespace {

using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;

// Blanks beyond this are not taken for indentation.
constexpr std::size_t k_most_indent = 1000;
constexpr std::string_view k_default_step = "    ";

// The enclosing block; null at the top level.
const SBD_NODE* enclosing(const SBD_NODE* node) {
  const auto* const symbol = sbd_symbol_of(node);
  return symbol == nullptr || symbol->parent == node ? nullptr : symbol->parent;
}

// What is left of `inner` behind `outer`; false when it does not begin with that, or nothing is.
bool get_step(const SBD_STRING& outer, const SBD_STRING& inner, SBD_STRING& step) {
  if (inner.size() <= outer.size() || inner.compare(0, outer.size(), outer) != 0) return false;
  step = inner.substr(outer.size());
  return true;
}

}  // namespace

SBD_STRING SBD_STYLE::head() const {
  if (mode == INLINE) return " ";
  SBD_STRING text;
  if (mode == LEADING) text += line_end();
  text += indent;
  return text;
}

void SBD_SOURCE_LAYOUT::reset(std::string_view text, const SBD_NODE* root) {
  m_text = text;
  const std::size_t newline = text.find('\n');
  m_usual_crlf = newline != std::string_view::npos && has_crlf(newline);
  m_usual_brace_below = true;
  m_usual_step = k_default_step;
  const SBD_NODE* block = root;
  while (block != nullptr && block->type != SBD_NODE::NT_BLOCK) block = block->next;
  if (block == nullptr) return;
  m_usual_brace_below = has_brace_below(block);
  SBD_STRING indent;
  if (block->block->members == nullptr || !get_indent(block->block->members, indent)) return;
  get_step(block_indent(block), indent, m_usual_step);
}

SBD_PART SBD_SOURCE_LAYOUT::range(const SBD_NODE* node) const {
  const std::size_t begin = node->m_position - std::size_t{1};
  if (node->type == SBD_NODE::NT_BLOCK) return {begin, node->block->m_end_position};
  std::size_t end = begin;
  if (node->type == SBD_NODE::NT_STATEMENT) {
    end = sbd_statement_end(m_text, begin);
    const std::size_t comment = sbd_skip_blanks(m_text, end);
    if (comment == m_text.size() || m_text[comment] != '#') return {begin, end};
    end = comment;
  }
  end = std::min(m_text.find('\n', end), m_text.size());
  return {begin, end != begin && m_text[end - 1] == '\r' ? end - 1 : end};
}

SBD_PART SBD_SOURCE_LAYOUT::block_name(const SBD_NODE* block) const {
  const std::size_t type = block->m_position - std::size_t{1};
  const std::size_t begin = sbd_skip_space(m_text, sbd_name_end(m_text, type));
  return {begin, sbd_name_end(m_text, begin)};
}

std::size_t SBD_SOURCE_LAYOUT::open_brace(const SBD_NODE* block) const {
  return sbd_skip_space(m_text, block_name(block).end);
}

bool SBD_SOURCE_LAYOUT::get_indent(const SBD_NODE* node, SBD_STRING& indent) const {
  const std::size_t end = node->m_position - std::size_t{1};
  const std::size_t limit = end - std::min(end, k_most_indent);
  std::size_t begin = end;
  while (begin != limit && sbd_is(m_text[begin - 1], CC_BLANK)) --begin;
  if (begin != 0 && m_text[begin - 1] != '\n') return false;
  indent = m_text.substr(begin, end - begin);
  return true;
}

SBD_STRING SBD_SOURCE_LAYOUT::block_indent(const SBD_NODE* block) const {
  SBD_STRING indent;
  for (const SBD_NODE* one = block; one != nullptr; one = enclosing(one)) {
    if (get_indent(one, indent)) break;
  }
  return indent;
}

SBD_STRING SBD_SOURCE_LAYOUT::indent_step(const SBD_NODE* block) const {
  SBD_STRING step;
  const SBD_NODE* const outer = enclosing(block);
  if (outer != nullptr && get_step(block_indent(outer), block_indent(block), step)) return step;
  return m_usual_step;
}

bool SBD_SOURCE_LAYOUT::has_brace_below(const SBD_NODE* block) const {
  const std::size_t begin = block_name(block).end;
  const std::size_t end = sbd_skip_space(m_text, begin);
  return m_text.substr(begin, end - begin).find('\n') != std::string_view::npos;
}

bool SBD_SOURCE_LAYOUT::has_empty_behind(std::size_t newline) const {
  const std::size_t end = sbd_skip_blanks(m_text, newline + 1);
  return end != m_text.size() && m_text[end] == '\n';
}

bool SBD_SOURCE_LAYOUT::has_empty_before(std::size_t line) const {
  if (line < 2) return false;
  std::size_t end = line - 1;
  while (end != 0 && sbd_is(m_text[end - 1], CC_BLANK)) --end;
  return end != 0 && m_text[end - 1] == '\n';
}
