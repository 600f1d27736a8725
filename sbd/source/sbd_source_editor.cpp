// The edits: each is performed on the tree by the document's own operation, which checks it and
// says what is wrong, and then on the text.
#include "sbd/source/sbd_source_editor.h"

#include <algorithm>

#include "sbd/access/sbd_refusal.h"
#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/reading/sbd_chars.h"
#include "sbd/reading/sbd_lookup.h"
#include "sbd/reading/sbd_store.h"
#include "sbd/reading/sbd_tree.h"

using EDIT = SBD_SOURCE_EDIT;
using PLACE = SBD_SOURCE_DOCUMENT::PLACE;

namespace {

using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
using SBD_PARA_ATTR = SBD_FILE_PARSER::SBD_PARA_ATTR;
using SBD_PARA_REF = SBD_FILE_PARSER::SBD_PARA_REF;
using SBD_STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;

bool refuse_value(const EDIT& edit, std::initializer_list<const char*> reason) {
  return sbd_refuse({"Cannot set value to the parameter: '", edit.name.c_str(), "' in the block: '",
                     edit.scope.c_str(), "'. ", sbd_join_texts(reason).c_str()});
}

bool refuse_sibling(const EDIT& edit) {
  const SBD_STRING reason = sbd_join_texts({"There is no member: '", edit.sibling.c_str(), "'."});
  if (edit.kind != EDIT::ADD_BLOCK) return refuse_value(edit, {reason.c_str()});
  const SBD_STRING head = sbd_join_texts(
      {"Cannot create a block: '", edit.name.c_str(), "' with type: '", edit.text.c_str()});
  if (edit.scope.empty()) return sbd_refuse({head.c_str(), "' at top-level. ", reason.c_str()});
  return sbd_refuse(
      {head.c_str(), "' within the parenet block: '", edit.scope.c_str(), "'. ", reason.c_str()});
}

// What a check has said yes to did not happen: the host has no memory for it, and knows.
void require(bool is_done) {
  if (!is_done) throw SBD_REPORTED();
}

const char* text_or_null(const SBD_STRING& text) {
  return text.empty() ? nullptr : text.c_str();
}

SBD_STRING attributes_text(const SBD_VECTOR<EDIT::ATTRIBUTE>& attributes) {
  SBD_STRING text;
  for (const EDIT::ATTRIBUTE& attribute : attributes) {
    text += text.empty() ? "[" : ", ";
    text += attribute.key;
    if (!attribute.has_value) continue;
    text += ' ';
    text += attribute.value;
  }
  if (!text.empty()) text += ']';
  return text;
}

bool begins_with_ignoring_case(std::string_view text, std::string_view begin) {
  if (text.size() < begin.size()) return false;
  for (std::size_t i = 0; i != begin.size(); ++i) {
    if (sbd_to_lower(text[i]) != sbd_to_lower(begin[i])) return false;
  }
  return true;
}

}  // namespace

void SBD_SOURCE_EDITOR::reset() {
  m_new_nodes.clear();
  m_edits.reset(m_document.get_source());
  m_layout.reset(m_edits.original(), m_document.get_parser_para().root);
}

bool SBD_SOURCE_EDITOR::apply(const EDIT& edit) {
  switch (edit.kind) {
    case EDIT::SET_VALUE:
    case EDIT::ADD_VALUE:
      return set_value(edit);
    case EDIT::SET_REFERENCES:
      return set_references(edit);
    case EDIT::SET_ATTRIBUTES:
      return set_attributes(edit);
    case EDIT::REMOVE_ATTRIBUTES:
      return remove_attributes(edit);
    case EDIT::REMOVE_PARAMETER:
      return remove_parameter(edit);
    case EDIT::ADD_BLOCK:
      return add_block(edit);
    case EDIT::REMOVE_BLOCK:
      return remove_block(edit);
    case EDIT::REMOVE_REFERENCES:
      return remove_references(edit);
    case EDIT::RENAME:
      return rename(edit);
  }
  return false;
}

// ---- Common steps -----------------------------------------------------------------------------

// The document's own check; the top level, which it can't be asked about, is no block.
bool SBD_SOURCE_EDITOR::check_statement(const EDIT& edit, SBD_STATEMENT::STATEMENT_TYPE type,
                                        SBD_NODE*& block, SBD_NODE*& present) const {
  if (edit.scope.empty() && m_document.is_valid_parameter_name(edit.name.c_str())) {
    return refuse_value(edit, {"Block does not exit."});
  }
  return m_document.set_value_check(edit.scope.c_str(), edit.name.c_str(), type, &block, &present);
}

// The sibling that the place names; null when there is none.
SBD_NODE* SBD_SOURCE_EDITOR::find_sibling(const EDIT& edit, const SBD_NODE* block) const {
  if (edit.place == PLACE::AT_END || edit.sibling.empty()) return nullptr;
  if (sbd_equal_ignoring_case(edit.sibling.c_str(), edit.name)) return nullptr;
  if (edit.sibling.find('.') != SBD_STRING::npos) return nullptr;
  return SBD_LOOKUP::find(m_document, edit.sibling.c_str(), block);
}

// Everything new is made at the end of its scope.
void SBD_SOURCE_EDITOR::move_to_place(const EDIT& edit) {
  if (edit.place == PLACE::AT_END) return;
  EDIT sibling;
  sibling.scope = edit.scope;
  sibling.name = edit.sibling;
  require(m_document.move_member(edit.full_name().c_str(), sibling.full_name().c_str(),
                                 edit.place == PLACE::BEHIND));
}

SBD_FILE_PARSER::SBD_NODE* SBD_SOURCE_EDITOR::last_member(const SBD_NODE* block) const {
  const auto& para = m_document.get_parser_para();
  SBD_NODE* last = nullptr;
  if (block != nullptr) {
    last = block->block->m_last != nullptr ? block->block->m_last : block->block->members;
    if (block->block->members == nullptr) return nullptr;
  } else {
    SBD_NODE* const last_root = para.symbol_table->store()->last_root;
    last = last_root != nullptr ? last_root : para.root;
    if (para.root == nullptr) return nullptr;
  }
  while (last->next != nullptr) last = last->next;
  return last;
}

// ---- Parameters -------------------------------------------------------------------------------

bool SBD_SOURCE_EDITOR::set_value(const EDIT& edit) {
  SBD_NODE* block = nullptr;
  SBD_NODE* present = nullptr;
  if (!check_statement(edit, SBD_STATEMENT::ST_ASSIGNMENT, block, present)) return false;
  if (present != nullptr && edit.kind == EDIT::ADD_VALUE) {
    return refuse_value(edit, {"Parameter already exists."});
  }
  const auto* const value = m_value_reader.read(edit.text);
  if (value == nullptr) return refuse_value(edit, {"Not a value: '", edit.text.c_str(), "'."});
  const char* const scope = edit.scope.c_str();
  const char* const name = edit.name.c_str();
  if (present != nullptr) {
    if (!m_document.set_para_value(scope, name, *value)) return false;
    text_of(present).put_value(edit.text);
    return true;
  }

  SBD_NODE* const sibling = find_sibling(edit, block);
  if (edit.place != PLACE::AT_END && sibling == nullptr) return refuse_sibling(edit);
  SPOT spot = find_spot(edit, block, sibling);
  if (!m_document.set_para_value(scope, name, *value)) return false;
  SBD_NODE* const node = last_member(block);
  move_to_place(edit);
  SBD_EDITED_TEXT text = SBD_EDITED_TEXT::of_assignment(spot.style.head(), edit.name, edit.text,
                                                        spot.style.last_tail());
  insert_statement(node, std::move(spot), std::move(text));
  return true;
}

bool SBD_SOURCE_EDITOR::set_references(const EDIT& edit) {
  SBD_NODE* block = nullptr;
  SBD_NODE* present = nullptr;
  if (!check_statement(edit, SBD_STATEMENT::ST_REFERENCE, block, present)) return false;
  for (const SBD_STRING& name : edit.names) {
    if (name.empty()) return refuse_value(edit, {"Invalid input reference value."});
  }
  const char* const scope = edit.scope.c_str();
  const char* const name = edit.name.c_str();
  if (present != nullptr) {
    if (!m_document.set_value(scope, name, edit.names)) return false;
    text_of(present).put_references(edit.names);
    return true;
  }

  SBD_NODE* const sibling = find_sibling(edit, block);
  if (edit.place != PLACE::AT_END && sibling == nullptr) return refuse_sibling(edit);
  SPOT spot = find_spot(edit, block, sibling);
  if (!m_document.set_value(scope, name, edit.names)) return false;
  SBD_NODE* const node = last_member(block);
  move_to_place(edit);
  SBD_EDITED_TEXT text = SBD_EDITED_TEXT::of_references(spot.style.head(), edit.name, edit.names,
                                                        spot.style.last_tail());
  insert_statement(node, std::move(spot), std::move(text));
  return true;
}

bool SBD_SOURCE_EDITOR::set_attributes(const EDIT& edit) {
  SBD_VECTOR<SBD_PARA_ATTR> chain(edit.attributes.size());
  for (std::size_t i = 0; i != chain.size(); ++i) {
    const EDIT::ATTRIBUTE& attribute = edit.attributes[i];
    chain[i].attr_key = const_cast<char*>(attribute.key.c_str());
    if (attribute.has_value) chain[i].attr_value = const_cast<char*>(attribute.value.c_str());
    if (i != 0) chain[i - 1].next = &chain[i];
  }
  const SBD_PARA_ATTR* const first = chain.empty() ? nullptr : chain.data();
  if (!m_document.set_attribute(edit.scope.c_str(), edit.name.c_str(), first)) return false;
  const SBD_NODE* const node = SBD_LOOKUP::find(m_document, edit.full_name().c_str(), nullptr);
  text_of(node).put_attributes(attributes_text(edit.attributes));
  return true;
}

bool SBD_SOURCE_EDITOR::remove_attributes(const EDIT& edit) {
  m_document.delete_attribute(edit.scope.c_str(), edit.name.c_str());
  const SBD_NODE* const node =
      SBD_LOOKUP::find_member(m_document, edit.scope.c_str(), edit.name.c_str());
  if (node == nullptr || node->type != SBD_NODE::NT_STATEMENT) return false;
  const SBD_STATEMENT* const statement = node->statement;
  if (statement->type == SBD_STATEMENT::ST_REFERENCE) return false;
  require(statement->attributes == nullptr);
  text_of(node).put_attributes({});
  return true;
}

bool SBD_SOURCE_EDITOR::remove_parameter(const EDIT& edit) {
  const SBD_STRING full_name = edit.full_name();
  SBD_NODE* const node = SBD_LOOKUP::find(m_document, full_name.c_str(), nullptr);
  if (node == nullptr) return false;
  const REMOVAL removal = plan_removal(node);
  m_document.delete_parameter(edit.scope.c_str(), edit.name.c_str());
  if (SBD_LOOKUP::find(m_document, full_name.c_str(), nullptr) == node) return false;
  remove(removal);
  return true;
}

// ---- Blocks -----------------------------------------------------------------------------------

bool SBD_SOURCE_EDITOR::add_block(const EDIT& edit) {
  const char* const scope = text_or_null(edit.scope);
  SBD_NODE* const block = scope != nullptr ? SBD_LOOKUP::find(m_document, scope, nullptr) : nullptr;
  const bool has_scope =
      scope == nullptr || (block != nullptr && block->type == SBD_NODE::NT_BLOCK);
  if (!has_scope) return m_document.create_block(edit.text.c_str(), edit.name.c_str(), scope);
  SBD_NODE* const sibling = find_sibling(edit, block);
  if (edit.place != PLACE::AT_END && sibling == nullptr) return refuse_sibling(edit);
  SPOT spot = find_spot(edit, block, sibling);
  if (!m_document.create_block(edit.text.c_str(), edit.name.c_str(), scope)) return false;
  SBD_NODE* const node = last_member(block);
  move_to_place(edit);
  insert_block(node, std::move(spot), edit);
  return true;
}

bool SBD_SOURCE_EDITOR::remove_block(const EDIT& edit) {
  const SBD_STRING full_name = edit.full_name();
  SBD_NODE* const node = SBD_LOOKUP::find(m_document, full_name.c_str(), nullptr);
  if (node == nullptr) return false;
  const REMOVAL removal = plan_removal(node);
  m_document.delete_block(full_name.c_str());
  if (SBD_LOOKUP::find(m_document, full_name.c_str(), nullptr) == node) return false;
  remove(removal);
  return true;
}

// ---- References and names ---------------------------------------------------------------------

bool SBD_SOURCE_EDITOR::remove_references(const EDIT& edit) {
  const SBD_STRING full_name = edit.full_name();
  SBD_NODE* const target = SBD_LOOKUP::find(m_document, full_name.c_str(), nullptr);
  if (target == nullptr) return false;
  const SBD_NODE* const root = m_document.get_parser_para().root;
  if (!SBD_LOOKUP::is_referenced(m_document, target, root)) return true;
  const SBD_VECTOR<DROPPED_REFERENCES> all_dropped = find_all_dropped(target);
  m_document.delete_reference(full_name.c_str());
  require(!SBD_LOOKUP::is_referenced(m_document, target, m_document.get_parser_para().root));
  for (const DROPPED_REFERENCES& dropped : all_dropped) {
    if (dropped.is_all) {
      remove(dropped.removal);
      continue;
    }
    SBD_EDITED_TEXT& text = text_of(dropped.node);
    for (auto index = dropped.indices.rbegin(); index != dropped.indices.rend(); ++index) {
      text.remove_reference(*index);
    }
  }
  return true;
}

// All statements outside the target that refer to it.
SBD_VECTOR<SBD_SOURCE_EDITOR::DROPPED_REFERENCES> SBD_SOURCE_EDITOR::find_all_dropped(
    const SBD_NODE* target) const {
  SBD_VECTOR<DROPPED_REFERENCES> all_dropped;
  SBD_TREE_WALK walk(m_document.get_parser_para().root);
  while (const SBD_NODE* const node = walk.next()) {
    DROPPED_REFERENCES dropped;
    if (node == target) {
      walk.skip_members();
    } else if (find_dropped(node, target, dropped)) {
      all_dropped.push_back(std::move(dropped));
    }
  }
  return all_dropped;
}

bool SBD_SOURCE_EDITOR::find_dropped(const SBD_NODE* node, const SBD_NODE* target,
                                     DROPPED_REFERENCES& dropped) const {
  if (node->type != SBD_NODE::NT_STATEMENT) return false;
  if (node->statement->type != SBD_STATEMENT::ST_REFERENCE) return false;
  std::size_t count = 0;
  for (const auto* reference = node->statement->reference; reference != nullptr;
       reference = reference->next, ++count) {
    if (reference->target == target) dropped.indices.push_back(count);
  }
  if (dropped.indices.empty()) return false;
  dropped.node = node;
  dropped.is_all = dropped.indices.size() == count;
  if (dropped.is_all) dropped.removal = plan_removal(node);
  return true;
}

bool SBD_SOURCE_EDITOR::rename(const EDIT& edit) {
  const SBD_STRING full_name = edit.full_name();
  SBD_NODE* const node = SBD_LOOKUP::find(m_document, full_name.c_str(), nullptr);
  if (node == nullptr || edit.text.empty()) return false;
  SBD_VECTOR<RENAMED_REFERENCE> references;
  if (edit.with_references) references = find_renamed(node, full_name, edit.text);
  if (!m_document.rename(edit.name.c_str(), edit.text.c_str(), text_or_null(edit.scope))) {
    return false;
  }
  put_new_name(node, edit.text);
  for (const RENAMED_REFERENCE& reference : references) put_reference(reference);
  return true;
}

void SBD_SOURCE_EDITOR::put_new_name(SBD_NODE* node, const SBD_STRING& name) {
  if (node->type == SBD_NODE::NT_STATEMENT || new_node(node) != nullptr) {
    text_of(node).put_name(name);
    return;
  }
  const SBD_PART part = m_layout.block_name(node);
  m_edits.replace_name(part.begin, part.end, name);
}

// A reference names the object when its full name, which for a relative one begins with that of the
// block around it, begins with the object's.
SBD_VECTOR<SBD_SOURCE_EDITOR::RENAMED_REFERENCE> SBD_SOURCE_EDITOR::find_renamed(
    const SBD_NODE* node, const SBD_STRING& full_name, const SBD_STRING& new_name) const {
  // The blocks around the object, and how much of its name is theirs.
  SBD_VECTOR<std::pair<const SBD_NODE*, std::size_t>> scopes;
  std::size_t length = full_name.size();
  for (const SBD_NODE* inner = node; sbd_symbol_of(inner)->parent != inner;) {
    inner = sbd_symbol_of(inner)->parent;
    length = full_name.rfind('.', length - 1);
    scopes.push_back({inner, length});
  }
  const std::size_t last_dot = full_name.rfind('.');
  const std::size_t old_name = last_dot == SBD_STRING::npos ? 0 : last_dot + 1;

  SBD_VECTOR<RENAMED_REFERENCE> renamed;
  SBD_TREE_WALK walk(m_document.get_parser_para().root);
  while (SBD_NODE* const one = walk.next()) {
    if (one->type != SBD_NODE::NT_STATEMENT) continue;
    if (one->statement->type != SBD_STATEMENT::ST_REFERENCE) continue;
    const auto scope = std::find_if(scopes.begin(), scopes.end(), [&walk](const auto& candidate) {
      return candidate.first == walk.parent();
    });
    std::size_t index = 0;
    for (auto* reference = one->statement->reference; reference != nullptr;
         reference = reference->next, ++index) {
      const std::string_view text = reference->name;
      std::size_t implied = 0;
      if (!text.empty() && text.front() == '.') {
        if (scope == scopes.end()) continue;
        implied = scope->second;
      }
      const std::string_view named = std::string_view(full_name).substr(implied);
      if (!begins_with_ignoring_case(text, named)) continue;
      if (text.size() != named.size() && text[named.size()] != '.') continue;
      SBD_STRING name(text.substr(0, old_name - implied));
      name += new_name;
      name += text.substr(named.size());
      renamed.push_back({one, index, reference, std::move(name)});
    }
  }
  return renamed;
}

void SBD_SOURCE_EDITOR::put_reference(const RENAMED_REFERENCE& renamed) {
  text_of(renamed.node).put_reference(renamed.index, renamed.name);
  SBD_STORE& store = *m_document.get_parser_para().symbol_table->store();
  char* const name = sbd_duplicate_text(renamed.name.c_str());
  store.free_text(renamed.reference->name);
  renamed.reference->name = name;
  renamed.reference->m_position = 0;
  store.has_foreign = true;
}
