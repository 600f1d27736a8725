// Dotted names: from a name to its node and back.
#include <cstring>

#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/reading/sbd_joined_name.h"
#include "sbd/reading/sbd_lookup.h"
#include "sbd/reading/sbd_run.h"
#include "sbd/reading/sbd_store.h"
#include "sbd/reading/sbd_tree.h"
#include "sbd/sbd_file_parser.h"

using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
using SBD_STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;
using SBD_SYMBOL = SBD_FILE_PARSER::SBD_SYMBOL;

namespace {

// The first "." or NUL from `next` on, behind which a step can be read.
const char* find_part_end(const char* next) {
#if SBD_HAS_SSE2
  const __m128i dot = _mm_set1_epi8('.');
  for (;; next += k_run_step) {
    const __m128i bytes = sbd_load_step(next);
    const __m128i ends =
        _mm_or_si128(_mm_cmpeq_epi8(bytes, dot), _mm_cmpeq_epi8(bytes, _mm_setzero_si128()));
    const unsigned mask = sbd_mask_of(ends);
    if (mask != 0) return next + sbd_first_clear_bit(~mask);
  }
#else
  while (*next != '.' && *next != '\0') ++next;
  return next;
#endif
}

}  // namespace

SBD_FILE_PARSER::SBD_NODE* SBD_FILE_PARSER::first_member(const SBD_NODE* scope) const {
  return scope == nullptr ? m_parser_para.root : sbd_members_of(scope);
}

SBD_FILE_PARSER::SBD_NODE* SBD_FILE_PARSER::get_ref_object(const char* ref,
                                                           const SBD_NODE* scope) const {
  return sbd_guarded(k_source_file_parser, static_cast<SBD_NODE*>(nullptr),
                     [=] { return SBD_LOOKUP::find(*this, ref, scope); });
}

SBD_NODE* SBD_LOOKUP::find(const SBD_FILE_PARSER& document, const char* name,
                           const SBD_NODE* scope) {
  if (document.m_store == nullptr || name == nullptr) return nullptr;
  return resolve(document, SBD_JOINED_NAME(nullptr, name), scope);
}

SBD_NODE* SBD_LOOKUP::find_member(const SBD_FILE_PARSER& document, const char* block,
                                  const char* parameter) {
  if (document.m_store == nullptr || block == nullptr || parameter == nullptr) return nullptr;
  return resolve(document, SBD_JOINED_NAME(block, parameter), nullptr);
}

SBD_NODE* SBD_LOOKUP::resolve(const SBD_FILE_PARSER& document, const SBD_JOINED_NAME& name,
                              const SBD_NODE* scope) {
  const std::string_view whole = name.view();
  if (scope == nullptr) {
    SBD_NODE* const found = document.m_store->names.find_path(document.m_parser_para.root, whole,
                                                              document.m_store->pool);
    if (found != nullptr) return found;
  }
  const char* const end = whole.data() + whole.size();
  for (const char* part = whole.data();;) {
    const char* const part_end = find_part_end(part);
    const bool is_last = part_end == end;
    if (part_end == whole.data() || (!is_last && part_end + 1 == end)) {
      SBD_CHECK(!is_last, "ref[p1] == '.'", k_source_file_parser);
      return nullptr;
    }
    const SBD_SYMBOL* const symbol = document.m_store->names.find(
        scope, document.first_member(scope),
        std::string_view(part, static_cast<std::size_t>(part_end - part)));
    if (symbol == nullptr) return nullptr;
    if (is_last) return symbol->node;
    scope = symbol->node;
    part = part_end + 1;
  }
}

bool SBD_FILE_PARSER::get_ref_name(const SBD_NODE* node, SBD_STRING& name) const {
  return sbd_guarded(k_source_file_parser, false,
                     [node, &name] { return SBD_LOOKUP::make_full_name(node, name); });
}

bool SBD_LOOKUP::make_full_name(const SBD_NODE* node, SBD_STRING& name) {
  if (node == nullptr || node->type == SBD_NODE::NT_COMMENT) return false;
  const bool is_statement = node->type == SBD_NODE::NT_STATEMENT;
  const bool is_known = is_statement || node->type == SBD_NODE::NT_BLOCK;
  const bool has_known_type = is_known && (!is_statement || node->statement == nullptr ||
                                           node->statement->type == SBD_STATEMENT::ST_ASSIGNMENT ||
                                           node->statement->type == SBD_STATEMENT::ST_REFERENCE);
  if (!SBD_CHECK(has_known_type, "Invalid statement type", k_source_file_parser)) return false;

  // Upwards once to measure, and once more to write the name from its end.
  std::size_t length = 0;
  for (const SBD_SYMBOL* symbol = sbd_symbol_of(node);;) {
    if (symbol == nullptr || symbol->name == nullptr) return false;
    length += std::strlen(symbol->name) + 1;
    if (symbol->parent == symbol->node) break;
    symbol = symbol->parent == nullptr ? nullptr : sbd_symbol_of(symbol->parent);
  }
  SBD_STRING full_name(length - 1, '.');
  std::size_t begin = length;
  for (const SBD_SYMBOL* symbol = sbd_symbol_of(node); begin != 0;
       symbol = sbd_symbol_of(symbol->parent)) {
    const std::size_t size = std::strlen(symbol->name);
    begin -= size + 1;
    full_name.replace(begin, size, symbol->name, size);
  }
  name = std::move(full_name);
  return true;
}
