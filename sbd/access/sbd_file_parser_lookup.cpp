// Dotted names: from a name to its node and back.
#include <cstring>

#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/reading/sbd_store.h"
#include "sbd/reading/sbd_tree.h"
#include "sbd/sbd_file_parser.h"

SBD_FILE_PARSER::SBD_NODE* SBD_FILE_PARSER::first_member(const SBD_NODE* scope) const {
  return scope == nullptr ? m_parser_para.root : sbd_members_of(scope);
}

SBD_FILE_PARSER::SBD_NODE* SBD_FILE_PARSER::get_ref_object(const char* ref,
                                                           const SBD_NODE* scope) const {
  if (m_store == nullptr || ref == nullptr) return nullptr;
  return resolve_name(ref, scope);
}

SBD_FILE_PARSER::SBD_NODE* SBD_FILE_PARSER::resolve_name(std::string_view ref,
                                                         const SBD_NODE* scope) const {
  std::size_t begin = 0;
  for (;;) {
    const std::size_t dot = ref.find('.', begin);
    const bool has_dot = dot != std::string_view::npos;
    const std::size_t end = has_dot ? dot : ref.size();
    if (end == 0 || (has_dot && dot + 1 == ref.size())) {
      SBD_CHECK(has_dot, "ref[p1] == '.'", k_source_file_parser);
      return nullptr;
    }
    const SBD_SYMBOL* const symbol =
        m_store->names.find(scope, first_member(scope), ref.substr(begin, end - begin));
    if (symbol == nullptr) return nullptr;
    if (!has_dot) return symbol->node;
    scope = symbol->node;
    begin = dot + 1;
  }
}

bool SBD_FILE_PARSER::get_ref_name(const SBD_NODE* node, SBD_STRING& name) const {
  if (node == nullptr || node->type == SBD_NODE::NT_COMMENT) return false;
  const bool is_statement = node->type == SBD_NODE::NT_STATEMENT;
  const bool is_known = is_statement || node->type == SBD_NODE::NT_BLOCK;
  const bool has_known_type = is_known && (!is_statement || node->statement == nullptr ||
                                           node->statement->type == SBD_STATEMENT::ST_ASSIGNMENT ||
                                           node->statement->type == SBD_STATEMENT::ST_REFERENCE);
  if (!SBD_CHECK(has_known_type, "Invalid statement type", k_source_file_parser)) return false;

  return sbd_guarded(k_source_file_parser, false, [node, &name] {
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
  });
}
