// The checks of a parsed document: declarations, blocks, references.
#include <cstring>

#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/diagnostics/sbd_messages.h"
#include "sbd/reading/sbd_lookup.h"
#include "sbd/reading/sbd_store.h"
#include "sbd/reading/sbd_tree.h"
#include "sbd/sbd_file_parser.h"

bool SBD_FILE_PARSER::resolve_symbol(SBD_NODE* parent, SBD_NODE* list) {
  if (m_store == nullptr) return true;
  return sbd_guarded(k_source_file_parser, false, [this, parent, list] {
    bool is_good = true;
    SBD_TREE_WALK walk(list);
    while (SBD_NODE* const node = walk.next()) {
      SBD_NODE* const block = walk.parent();
      // The call for the document's top level is told by both arguments being the same.
      const bool is_top_level = block == nullptr && parent == list;
      is_good = resolve_node(node, block != nullptr ? block : parent, is_top_level) && is_good;
    }
    return is_good;
  });
}

bool SBD_FILE_PARSER::resolve_node(SBD_NODE* node, SBD_NODE* parent, bool is_top_level) {
  switch (node->type) {
    case SBD_NODE::NT_BLOCK:
      break;
    case SBD_NODE::NT_STATEMENT:
      if (node->statement != nullptr && node->statement->type != SBD_STATEMENT::ST_ASSIGNMENT &&
          node->statement->type != SBD_STATEMENT::ST_REFERENCE) {
        sbd_report_internal_error("Invalid statement type", k_source_file_parser, __LINE__);
      }
      SBD_CHECK(!is_top_level, "parent != child", k_source_file_parser);
      break;
    case SBD_NODE::NT_COMMENT:
      return true;
    default:
      sbd_report_internal_error("Invalid SBD_FILE_PARSER node type", k_source_file_parser,
                                __LINE__);
      return true;
  }
  SBD_SYMBOL* const symbol = sbd_symbol_of(node);
  SBD_CHECK(symbol != nullptr && symbol->node == node, "symbol->node == node",
            k_source_file_parser);
  if (symbol == nullptr) return true;
  symbol->parent = is_top_level && node->type == SBD_NODE::NT_BLOCK ? node : parent;
  m_store->names.rescope(symbol);
  return judge_declaration(symbol);
}

bool SBD_FILE_PARSER::check_declaration(SBD_SYMBOL* symbol) {
  return sbd_guarded(k_source_file_parser, false,
                     [this, symbol] { return judge_declaration(symbol); });
}

bool SBD_FILE_PARSER::judge_declaration(SBD_SYMBOL* symbol) {
  if (!SBD_CHECK(symbol != nullptr, "symbol != NULL", k_source_file_parser)) return false;
  if (m_store == nullptr || symbol->name == nullptr) return true;
  const SBD_NODE* const scope = SBD_NAME_INDEX::scope_of(symbol);
  if (!m_store->names.has_earlier(symbol, first_member(scope))) return true;
  const std::uint32_t place = symbol->node != nullptr ? m_store->name_position(symbol->node) : 0;
  m_store->set_fault(place, std::strlen(symbol->name));
  post_message(sbd_make_message<MSG_E>(k_msg_declaration_error, message_file_name(), symbol->name,
                                       static_cast<int>(symbol->line)));
  return false;
}

bool SBD_FILE_PARSER::check_semantic(SBD_NODE* list) {
  if (m_store == nullptr) return true;
  return sbd_guarded(k_source_file_parser, false, [this, list] {
    bool is_good = true;
    SBD_TREE_WALK walk(list);
    while (SBD_NODE* const node = walk.next()) {
      switch (node->type) {
        case SBD_NODE::NT_BLOCK:
          is_good = judge_block(node->block) && is_good;
          break;
        case SBD_NODE::NT_STATEMENT:
          is_good = check_statement(node->statement) && is_good;
          break;
        case SBD_NODE::NT_COMMENT:
          break;
        default:
          sbd_report_internal_error("Invalid SBD_FILE_PARSER node type", k_source_file_parser,
                                    __LINE__);
          break;
      }
    }
    return is_good;
  });
}

bool SBD_FILE_PARSER::check_statement(SBD_STATEMENT* statement) {
  if (!SBD_CHECK(statement != nullptr, "statement != NULL", k_source_file_parser)) return true;
  if (statement->type == SBD_STATEMENT::ST_ASSIGNMENT) return true;
  if (statement->type == SBD_STATEMENT::ST_REFERENCE) return judge_reference(statement);
  sbd_report_internal_error("Invalid statement type", k_source_file_parser, __LINE__);
  return true;
}

bool SBD_FILE_PARSER::check_block(SBD_BLOCK* block) {
  return sbd_guarded(k_source_file_parser, false, [this, block] { return judge_block(block); });
}

bool SBD_FILE_PARSER::judge_block(SBD_BLOCK* block) {
  if (!SBD_CHECK(block != nullptr && block->name != nullptr, "block != NULL && block->name != NULL",
                 k_source_file_parser)) {
    return false;
  }
  const SBD_SYMBOL* const symbol = block->name;
  const bool is_top_level = symbol->parent == symbol->node;
  switch (block->block_type) {
    case SBD_BLOCK::BT_DEVICE:
      if (is_top_level) return true;
      break;
    case SBD_BLOCK::BT_BUS:
    case SBD_BLOCK::BT_MODULE:
    case SBD_BLOCK::BT_SLAVE:
    case SBD_BLOCK::BT_MASTER:
    case SBD_BLOCK::BT_REGION:
    case SBD_BLOCK::BT_PARAMETERS:
      if (!is_top_level) return true;
      break;
    case SBD_BLOCK::BT_UNKNOWN:
      break;
    default:
      sbd_report_internal_error("Invalid block type id", k_source_file_parser, __LINE__);
      return false;
  }
  const char* const type = block->type != nullptr ? block->type : "";
  const char* const name = symbol->name != nullptr ? symbol->name : "";
  if (m_store != nullptr) {
    m_store->set_fault(symbol->node != nullptr ? symbol->node->m_position : 0, std::strlen(type));
  }
  const SBD_STRING text = SBD_STRING(type) + " " + name;
  post_message(sbd_make_message<MSG_E>(k_msg_block_error, message_file_name(), text.c_str(),
                                       static_cast<int>(symbol->line)));
  return false;
}

bool SBD_FILE_PARSER::resolve_reference(SBD_STATEMENT* statement) {
  return sbd_guarded(k_source_file_parser, false,
                     [this, statement] { return judge_reference(statement); });
}

bool SBD_FILE_PARSER::judge_reference(SBD_STATEMENT* statement) {
  if (!SBD_CHECK(statement != nullptr && statement->name != nullptr,
                 "statement != NULL && statement->name != NULL", k_source_file_parser)) {
    return false;
  }
  if (statement->type != SBD_STATEMENT::ST_REFERENCE) return true;
  bool is_good = true;
  for (SBD_PARA_REF* reference = statement->reference; reference != nullptr;
       reference = reference->next) {
    if (find_target(*reference, *statement)) continue;
    const char* const name = reference->name != nullptr ? reference->name : "";
    if (m_store != nullptr) m_store->set_fault(reference->m_position, std::strlen(name));
    post_message(sbd_make_message<MSG_E>(k_msg_reference_error, message_file_name(), name,
                                         static_cast<int>(statement->name->line)));
    is_good = false;
  }
  return is_good;
}

bool SBD_FILE_PARSER::find_target(SBD_PARA_REF& reference, const SBD_STATEMENT& statement) const {
  SBD_NODE* const target = find_named(reference.name, statement.name->parent);
  if (target == nullptr) return false;
  set_target(reference, target);
  return true;
}

void SBD_FILE_PARSER::set_target(SBD_PARA_REF& reference, SBD_NODE* target) const {
  if (reference.target == target) return;
  m_store->drop_reference(reference.target);
  SBD_STORE::add_reference(target);
  reference.target = target;
}

SBD_FILE_PARSER::SBD_NODE* SBD_FILE_PARSER::find_named(const char* name,
                                                       const SBD_NODE* enclosing) const {
  if (name == nullptr || name[0] != '.') return SBD_LOOKUP::find(*this, name, nullptr);
  SBD_STRING full_name;
  // In a document as it was read the enclosing block is what its full name names, and there is no
  // need to spell the way down to it.
  if (m_store != nullptr && !m_store->has_foreign) {
    return name[1] == '\0' ? nullptr : SBD_LOOKUP::find(*this, name + 1, enclosing);
  }
  if (!SBD_LOOKUP::make_full_name(enclosing, full_name)) return nullptr;
  full_name += name;
  return SBD_LOOKUP::find(*this, full_name.c_str(), nullptr);
}
