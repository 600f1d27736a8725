#include "tests/support/tree_builder.h"

#include <gtest/gtest.h>

bool read_text(SBD_FILE_PARSER& document, std::string_view text, const char* name) {
  return document.read_text(text.data(), text.size(), name);
}

std::unique_ptr<SBD_FILE_PARSER> document_of(std::string_view text) {
  auto document = std::make_unique<SBD_FILE_PARSER>();
  EXPECT_TRUE(read_text(*document, text)) << text;
  return document;
}

SBD_SYMBOL* make_symbol(const char* name, SBD_SYMBOL::SYMBOL_TYPE type, SBD_NODE* node) {
  auto* const symbol = new SBD_SYMBOL;
  symbol->name = sbd_copy_text(name);
  symbol->type = type;
  symbol->node = node;
  return symbol;
}

SBD_NODE* make_block(const char* type, const char* name) {
  auto* const node = new SBD_NODE;
  node->type = SBD_NODE::NT_BLOCK;
  node->block = new SBD_BLOCK;
  node->block->block_type = SBD_FILE_PARSER::lookup_block_type(type);
  node->block->type = sbd_copy_text(type);
  node->block->name = make_symbol(name, SBD_SYMBOL::SYM_BLOCK, node);
  return node;
}

namespace {

SBD_NODE* make_statement(const char* name, SBD_STATEMENT::STATEMENT_TYPE type,
                         const char* comment) {
  auto* const node = new SBD_NODE;
  node->type = SBD_NODE::NT_STATEMENT;
  node->statement = new SBD_STATEMENT;
  node->statement->type = type;
  node->statement->name = make_symbol(name, SBD_SYMBOL::SYM_PARAMETER, node);
  node->statement->comment = sbd_copy_text(comment);
  return node;
}

}  // namespace

SBD_NODE* make_assignment(const char* name, SBD_PARA_VALUE* value, SBD_PARA_ATTR* attributes,
                          const char* comment) {
  SBD_NODE* const node = make_statement(name, SBD_STATEMENT::ST_ASSIGNMENT, comment);
  node->statement->value = value;
  node->statement->attributes = attributes;
  return node;
}

SBD_NODE* make_reference(const char* name, std::initializer_list<const char*> names,
                         const char* comment) {
  SBD_NODE* const node = make_statement(name, SBD_STATEMENT::ST_REFERENCE, comment);
  node->statement->reference = nullptr;
  SBD_PARA_REF** link = &node->statement->reference;
  for (const char* const element : names) {
    *link = new SBD_PARA_REF;
    (*link)->name = sbd_copy_text(element);
    link = &(*link)->next;
  }
  return node;
}

SBD_NODE* make_comment(const char* text) {
  auto* const node = new SBD_NODE;
  node->type = SBD_NODE::NT_COMMENT;
  node->comment = sbd_copy_text(text);
  return node;
}

SBD_PARA_VALUE* make_number(double number, SBD_PARA_VALUE::QUANTITY_UNIT unit,
                            SBD_PARA_VALUE::VALUE_TYPE type) {
  auto* const value = new SBD_PARA_VALUE;
  value->type = type;
  value->number = number;
  value->unit = unit;
  return value;
}

SBD_PARA_VALUE* make_bool(bool flag) {
  auto* const value = new SBD_PARA_VALUE;
  value->type = SBD_PARA_VALUE::VT_BOOL;
  value->flag = flag ? 1 : 0;
  return value;
}

SBD_PARA_VALUE* make_string(const char* text) {
  auto* const value = new SBD_PARA_VALUE;
  value->type = SBD_PARA_VALUE::VT_STRING;
  value->text = sbd_copy_text(text);
  return value;
}

SBD_PARA_VALUE* make_list(std::initializer_list<SBD_PARA_VALUE*> elements) {
  auto* const value = new SBD_PARA_VALUE;
  value->type = SBD_PARA_VALUE::VT_LIST;
  value->list = new SBD_VALUE_LIST;
  for (SBD_PARA_VALUE* const element : elements) value->list->push_back(element);
  return value;
}

SBD_PARA_ATTR* make_attributes(
    std::initializer_list<std::pair<const char*, const char*>> attributes) {
  SBD_PARA_ATTR* first = nullptr;
  SBD_PARA_ATTR** link = &first;
  for (const auto& [key, value] : attributes) {
    *link = new SBD_PARA_ATTR;
    (*link)->attr_key = sbd_copy_text(key);
    (*link)->attr_value = sbd_copy_text(value);
    link = &(*link)->next;
  }
  return first;
}

SBD_SYMBOL* symbol_of(const SBD_NODE* node) {
  if (node->type == SBD_NODE::NT_BLOCK) return node->block->name;
  if (node->type == SBD_NODE::NT_STATEMENT) return node->statement->name;
  return nullptr;
}

SBD_NODE* enter(SBD_FILE_PARSER& document, SBD_NODE* node, SBD_NODE* parent) {
  document.add_symbol(symbol_of(node));
  document.add_node(node, parent);
  return node;
}

void free_symbol(SBD_SYMBOL* symbol) {
  sbd_free_text(symbol->name);
  delete symbol;
}

SBD_NODE* root_of(const SBD_FILE_PARSER& document) {
  return document.get_parser_para().root;
}

std::vector<SBD_NODE*> members_of(const SBD_FILE_PARSER& document, const SBD_NODE* parent) {
  std::vector<SBD_NODE*> result;
  SBD_NODE* const first = parent == nullptr ? root_of(document) : parent->block->members;
  for (SBD_NODE* node = first; node != nullptr; node = node->next) result.push_back(node);
  return result;
}

std::vector<SBD_SYMBOL*> chain_of(const SBD_FILE_PARSER& document, unsigned long bucket) {
  std::vector<SBD_SYMBOL*> result;
  SBD_SYMBOL* symbol = (*document.get_parser_para().symbol_table)[bucket];
  for (; symbol != nullptr; symbol = symbol->next) result.push_back(symbol);
  return result;
}

std::vector<SBD_SYMBOL*> chain_of(const SBD_FILE_PARSER& document, const char* name) {
  return chain_of(document, SBD_FILE_PARSER::hash_pjw(name, 211));
}

std::vector<std::string> chain_names(const SBD_FILE_PARSER& document, const char* name) {
  std::vector<std::string> result;
  for (const SBD_SYMBOL* const symbol : chain_of(document, name)) result.emplace_back(symbol->name);
  return result;
}

std::size_t count_symbols(const SBD_FILE_PARSER& document) {
  std::size_t count = 0;
  for (const SBD_SYMBOL* head : *document.get_parser_para().symbol_table) {
    for (; head != nullptr; head = head->next) count++;
  }
  return count;
}
