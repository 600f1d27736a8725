// Editing the structure: blocks, names, and the references that point at an object.
#include "sbd/access/sbd_new_records.h"
#include "sbd/access/sbd_refusal.h"
#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/reading/sbd_lookup.h"
#include "sbd/reading/sbd_parser_build.h"
#include "sbd/reading/sbd_store.h"
#include "sbd/reading/sbd_tree.h"
#include "sbd/sbd_file_parser.h"

namespace {

using SBD_BLOCK = SBD_FILE_PARSER::SBD_BLOCK;
using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
using SBD_PARA_REF = SBD_FILE_PARSER::SBD_PARA_REF;
using SBD_STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;
using SBD_SYMBOL = SBD_FILE_PARSER::SBD_SYMBOL;

bool refuse_block(const char* type, const char* name, const char* parent, const char* reason) {
  if (parent == nullptr) {
    return sbd_refuse(
        {"Cannot create a block: '", name, "' with type: '", type, "' at top-level. ", reason});
  }
  return sbd_refuse({"Cannot create a block: '", name, "' with type: '", type,
                     "' within the parenet block: '", parent, "'. ", reason});
}

// "scope." + name, or the name alone.
SBD_STRING full_name_of(const char* scope, const char* name) {
  return scope != nullptr ? sbd_join_texts({scope, ".", name}) : SBD_STRING(name);
}

}  // namespace

bool SBD_FILE_PARSER::create_block(const char* type, const char* name, const char* parent) {
  if (m_store == nullptr) return false;
  return sbd_guarded(k_source_file_parser, false, [=] {
    if (name == nullptr || type == nullptr) {
      return sbd_refuse({"Cannot create block. NULL block name or block type name."});
    }
    if (!is_valid_parameter_name(name)) {
      return sbd_refuse({"Cannot create block. Illegal block name."});
    }
    const SBD_BLOCK::BLOCK_TYPE block_type = lookup_block_type(type);
    if (block_type == SBD_BLOCK::BT_UNKNOWN) {
      return refuse_block(type, name, parent, "Invaid block type.");
    }
    SBD_NODE* const parent_node =
        parent != nullptr ? SBD_LOOKUP::find(*this, parent, nullptr) : nullptr;
    if (parent == nullptr && block_type != SBD_BLOCK::BT_DEVICE) {
      return refuse_block(type, name, parent, "Invalid block hierarchy.");
    }
    if (parent != nullptr && (parent_node == nullptr || parent_node->type != SBD_NODE::NT_BLOCK)) {
      return refuse_block(type, name, parent, "Parent block does not exist.");
    }
    const SBD_NODE* const present =
        SBD_LOOKUP::find(*this, full_name_of(parent, name).c_str(), nullptr);
    if (present != nullptr && present->type == SBD_NODE::NT_BLOCK) {
      return refuse_block(type, name, parent, "Block already exists.");
    }
    add_block(block_type, type, name, parent_node);
    return true;
  });
}

void SBD_FILE_PARSER::add_block(SBD_BLOCK::BLOCK_TYPE block_type, const char* type,
                                const char* name, SBD_NODE* parent) {
  auto node = std::make_unique<SBD_NODE>();
  auto block = std::make_unique<SBD_BLOCK>();
  SBD_NEW_TEXT type_text = sbd_new_text(type);
  SBD_NEW_SYMBOL symbol(name, SBD_SYMBOL::SYM_BLOCK, node.get(),
                        parent != nullptr ? parent : node.get());
  node->type = SBD_NODE::NT_BLOCK;
  node->block = block.get();
  block->block_type = block_type;
  block->type = type_text.get();
  block->name = symbol.record.get();
  sbd_enter_foreign_symbol(symbol.record.get(), *m_parser_para.symbol_table);
  (void)symbol.release();
  (void)type_text.release();
  (void)block.release();
  link_node(node.release(), parent);
}

void SBD_FILE_PARSER::delete_block(const char* name) {
  if (m_store == nullptr) return;
  if (!SBD_CHECK(name != nullptr, "block_ref_name != NULL", k_source_file_parser)) return;
  sbd_guarded(k_source_file_parser, false, [this, name] {
    SBD_NODE* const node = SBD_LOOKUP::find(*this, name, nullptr);
    if (node == nullptr) return false;
    if (node->type != SBD_NODE::NT_BLOCK) {
      sbd_warn({"Cannot delete block: '", name, "'. ", "Specified block does not exist."});
      return false;
    }
    if (SBD_LOOKUP::is_referenced(*this, node, m_parser_para.root)) {
      return sbd_refuse({"Cannot delete block: '", name, "'. ",
                         "Block is being used (referenced) by other block/parameter"});
    }
    const SBD_SYMBOL* const symbol = node->block->name;
    delete_node(node, symbol->parent == node ? nullptr : symbol->parent);
    return true;
  });
}

bool SBD_FILE_PARSER::rename(const char* old_name, const char* new_name, const char* scope) {
  if (m_store == nullptr || old_name == nullptr || new_name == nullptr) return false;
  return sbd_guarded(k_source_file_parser, false, [=] {
    if (SBD_LOOKUP::find(*this, full_name_of(scope, new_name).c_str(), nullptr) != nullptr) {
      return false;
    }
    SBD_NODE* const node = SBD_LOOKUP::find(*this, full_name_of(scope, old_name).c_str(), nullptr);
    if (node == nullptr || !is_valid_parameter_name(new_name)) return false;
    SBD_SYMBOL** const slot = name_slot(node);
    if (slot == nullptr || *slot == nullptr) return false;
    SBD_SYMBOL* const old_symbol = *slot;
    SBD_NEW_SYMBOL symbol(new_name, old_symbol->type, node, old_symbol->parent);
    sbd_enter_foreign_symbol(symbol.record.get(), *m_parser_para.symbol_table);
    *slot = symbol.release();
    delete_symbol(old_symbol);
    return true;
  });
}

SBD_FILE_PARSER::SBD_SYMBOL** SBD_FILE_PARSER::name_slot(SBD_NODE* node) const {
  if (node->type == SBD_NODE::NT_BLOCK) return &node->block->name;
  if (!SBD_CHECK(node->type == SBD_NODE::NT_STATEMENT, "Try to rename an un-named object",
                 k_source_file_parser)) {
    return nullptr;
  }
  const bool is_known = node->statement->type == SBD_STATEMENT::ST_ASSIGNMENT ||
                        node->statement->type == SBD_STATEMENT::ST_REFERENCE;
  if (!SBD_CHECK(is_known, "Unsupported statement type", k_source_file_parser)) return nullptr;
  return &node->statement->name;
}

bool SBD_FILE_PARSER::move_member(const char* name, const char* sibling, bool is_behind) {
  return sbd_guarded(k_source_file_parser, false, [=] {
    SBD_NODE* const node = SBD_LOOKUP::find(*this, name, nullptr);
    SBD_NODE* const mark = SBD_LOOKUP::find(*this, sibling, nullptr);
    if (node == nullptr || mark == nullptr || node == mark) return false;
    const SBD_SYMBOL* const symbol = sbd_symbol_of(node);
    const SBD_SYMBOL* const mark_symbol = sbd_symbol_of(mark);
    if (symbol == nullptr || mark_symbol == nullptr) return false;
    const SBD_NODE* const scope = SBD_NAME_INDEX::scope_of(symbol);
    if (scope != SBD_NAME_INDEX::scope_of(mark_symbol)) return false;

    SBD_NODE* const parent = scope != nullptr ? symbol->parent : nullptr;
    SBD_NODE*& first = parent != nullptr ? parent->block->members : m_parser_para.root;
    SBD_NODE*& last = parent != nullptr ? parent->block->m_last : m_store->last_root;
    m_store->names.index_scope(parent, first, m_store->pool);
    SBD_NODE* previous = nullptr;
    if (!m_store->node_links.unlink(first, node, &previous)) return false;
    if (last == node) last = previous;
    m_store->node_links.link(first, node, mark, is_behind);
    if (node->next == nullptr) last = node;
    m_store->has_foreign = true;
    return true;
  });
}

void SBD_FILE_PARSER::delete_reference(const char* name) {
  delete_reference(get_ref_object(name, nullptr), m_parser_para.root);
}

void SBD_FILE_PARSER::delete_reference(const SBD_NODE* target, SBD_NODE* first) {
  if (m_store == nullptr || target == nullptr || first == nullptr) return;
  sbd_guarded(k_source_file_parser, false, [this, target, first] {
    if (first == m_parser_para.root && !SBD_LOOKUP::is_referenced(*this, target, first)) {
      return true;
    }
    // Statements that lose their last reference go when the walk is over, which needs them linked.
    SBD_SCRATCH<SBD_NODE*, 16> emptied;
    SBD_TREE_WALK walk(first);
    while (SBD_NODE* const node = walk.next()) {
      if (node == target) {
        walk.skip_members();
      } else if (node->type == SBD_NODE::NT_STATEMENT && node->statement != nullptr &&
                 node->statement->type == SBD_STATEMENT::ST_REFERENCE &&
                 remove_references(*node->statement, target)) {
        emptied.push_back(node);
      }
    }
    for (SBD_NODE* const node : emptied) {
      const SBD_SYMBOL* const symbol = node->statement->name;
      delete_node(node, symbol == nullptr || symbol->parent == node ? nullptr : symbol->parent);
    }
    return true;
  });
}

// True when the statement has lost its last reference by this.
bool SBD_FILE_PARSER::remove_references(SBD_STATEMENT& statement, const SBD_NODE* target) {
  if (statement.reference == nullptr) return false;
  for (SBD_PARA_REF** link = &statement.reference; *link != nullptr;) {
    SBD_PARA_REF* const reference = *link;
    if (reference->target != target) {
      link = &reference->next;
      continue;
    }
    *link = reference->next;
    m_store->drop_reference(reference->target);
    m_store->free_text(reference->name);
    m_store->free_record(reference);
  }
  return statement.reference == nullptr;
}
