// Whether two trees are the same.
#include <cstring>

#include "sbd/access/sbd_refusal.h"
#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/reading/sbd_lookup.h"
#include "sbd/reading/sbd_tree.h"
#include "sbd/source/sbd_source_verify.h"

namespace {

using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
using SBD_PARA_ATTR = SBD_FILE_PARSER::SBD_PARA_ATTR;
using SBD_PARA_REF = SBD_FILE_PARSER::SBD_PARA_REF;
using SBD_PARA_VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;
using SBD_STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;
using SBD_SYMBOL = SBD_FILE_PARSER::SBD_SYMBOL;

bool is_same_text(const char* one, const char* other) {
  if (one == nullptr || other == nullptr) return one == other;
  return std::strcmp(one, other) == 0;
}

bool is_same_simple_value(const SBD_PARA_VALUE& one, const SBD_PARA_VALUE& other) {
  if (one.type != other.type || one.unit != other.unit) return false;
  switch (one.type) {
    case SBD_PARA_VALUE::VT_BOOL:
      return one.flag == other.flag;
    case SBD_PARA_VALUE::VT_STRING:
      return is_same_text(one.text, other.text);
    case SBD_PARA_VALUE::VT_LIST:
      return one.list->size() == other.list->size();
    default:
      return one.number == other.number;
  }
}

bool is_same_value(const SBD_PARA_VALUE& one, const SBD_PARA_VALUE& other) {
  struct PAIR {
    const SBD_PARA_VALUE* one;
    const SBD_PARA_VALUE* other;
  };
  SBD_SCRATCH<PAIR, 16> left;
  left.push_back({&one, &other});
  while (!left.empty()) {
    const PAIR pair = left.back();
    left.pop_back();
    if (!is_same_simple_value(*pair.one, *pair.other)) return false;
    if (pair.one->type != SBD_PARA_VALUE::VT_LIST) continue;
    for (std::size_t i = 0; i != pair.one->list->size(); ++i) {
      left.push_back({(*pair.one->list)[i], (*pair.other->list)[i]});
    }
  }
  return true;
}

bool is_same_attributes(const SBD_PARA_ATTR* one, const SBD_PARA_ATTR* other) {
  for (; one != nullptr && other != nullptr; one = one->next, other = other->next) {
    if (!is_same_text(one->attr_key, other->attr_key)) return false;
    if (!is_same_text(one->attr_value, other->attr_value)) return false;
  }
  return one == other;
}

// Compares a tree with the one that its text was read into.
class TREE_COMPARISON {
 public:
  // Members and next siblings are compared as far as there are any.
  bool is_same_node(const SBD_NODE& one, const SBD_NODE& other) {
    if (one.type != other.type) return false;
    if ((one.next == nullptr) != (other.next == nullptr)) return false;
    if (one.type == SBD_NODE::NT_COMMENT) return is_same_text(one.comment, other.comment);
    const SBD_SYMBOL* const symbol = sbd_symbol_of(&one);
    const SBD_SYMBOL* const other_symbol = sbd_symbol_of(&other);
    if (!is_same_text(symbol->name, other_symbol->name)) return false;
    if (one.type == SBD_NODE::NT_STATEMENT) {
      return is_same_statement(*one.statement, *other.statement);
    }
    return one.block->block_type == other.block->block_type &&
           is_same_text(one.block->type, other.block->type) &&
           (one.block->members == nullptr) == (other.block->members == nullptr);
  }

 private:
  bool is_same_statement(const SBD_STATEMENT& one, const SBD_STATEMENT& other) {
    if (one.type != other.type || !is_same_text(one.comment, other.comment)) return false;
    if (one.type == SBD_STATEMENT::ST_REFERENCE) {
      return is_same_references(one.reference, other.reference);
    }
    return is_same_value(*one.value, *other.value) &&
           is_same_attributes(one.attributes, other.attributes);
  }

  // Every target is known to be there.
  bool is_same_references(const SBD_PARA_REF* one, const SBD_PARA_REF* other) {
    for (; one != nullptr && other != nullptr; one = one->next, other = other->next) {
      if (!is_same_text(one->name, other->name)) return false;
      if (!SBD_LOOKUP::make_full_name(one->target, m_name)) return false;
      if (!SBD_LOOKUP::make_full_name(other->target, m_other_name)) return false;
      if (m_name != m_other_name) return false;
    }
    return one == other;
  }

  SBD_STRING m_name;
  SBD_STRING m_other_name;
};

bool refuse_node(const SBD_NODE* node, SBD_STRING& why) {
  SBD_STRING name;
  why = "The text does not read back as it was meant";
  if (node != nullptr && SBD_LOOKUP::make_full_name(node, name)) {
    why += sbd_join_texts({", at '", name.c_str(), "'"});
  }
  why += '.';
  return false;
}

}  // namespace

bool sbd_compare_text(const SBD_FILE_PARSER& document, std::string_view text, SBD_STRING& why) {
  SBD_FILE_PARSER reread;
  if (reread.get_parser_para().symbol_table == nullptr) throw SBD_REPORTED();
  const char* const name = document.get_file_name() != nullptr ? document.get_file_name() : "";
  if (!reread.read_text(text.empty() ? "" : text.data(), text.size(), name)) {
    why = "The text can't be read back.";
    return false;
  }
  TREE_COMPARISON comparison;
  SBD_TREE_WALK walk(document.get_parser_para().root);
  SBD_TREE_WALK other_walk(reread.get_parser_para().root);
  for (;;) {
    const SBD_NODE* const node = walk.next();
    const SBD_NODE* const other = other_walk.next();
    if (node == nullptr && other == nullptr) return true;
    if (node == nullptr || other == nullptr || !comparison.is_same_node(*node, *other)) {
      return refuse_node(node, why);
    }
  }
}
