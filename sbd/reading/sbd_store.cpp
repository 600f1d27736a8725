#include "sbd/reading/sbd_store.h"

#include <algorithm>
#include <cstring>

#include "sbd/reading/sbd_tree.h"

using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
using SBD_PARA_VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;
using SBD_STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;
using SBD_VALUE_LIST = SBD_FILE_PARSER::SBD_VALUE_LIST;

char* sbd_copy_text(const char* text) noexcept {
  return sbd_guarded(k_source_file_parser, static_cast<char*>(nullptr),
                     [text] { return sbd_duplicate_text(text); });
}

char* sbd_duplicate_text(const char* text) {
  if (text == nullptr) return nullptr;
  const std::size_t size = std::strlen(text) + 1;
  char* const copy = SBD_ALLOCATOR<char>().allocate(size);
  std::memcpy(copy, text, size);
  return copy;
}

void sbd_free_text(char* text) noexcept {
  SBD_ALLOCATOR<char>().deallocate(text, 0);
}

SBD_VALUE_LIST* SBD_STORE::make_list(SBD_PARA_VALUE* const* first, std::size_t count,
                                     std::size_t source_length) {
  auto* const list = make<SBD_VALUE_LIST>();
  list->m_items = static_cast<SBD_PARA_VALUE**>(pool.take(count * sizeof(SBD_PARA_VALUE*)));
  std::copy_n(first, count, list->m_items);
  list->m_size = static_cast<std::uint32_t>(count);
  list->m_grown = &has_foreign;
  list->m_length = static_cast<std::uint32_t>(source_length);
  return list;
}

bool SBD_VALUE_LIST::push_back(SBD_PARA_VALUE* value) noexcept {
  return sbd_guarded(k_source_file_parser, false, [this, value] {
    SBD_STORE::append(*this, value);
    return true;
  });
}

void SBD_STORE::append(SBD_VALUE_LIST& list, SBD_PARA_VALUE* value) {
  if (list.m_size >= list.m_capacity) {
    // A list of the reader's leaves its items in the document's memory when it grows.
    const std::uint32_t capacity = std::max<std::uint32_t>(4, list.m_size * 2);
    auto** const items = SBD_ALLOCATOR<SBD_PARA_VALUE*>().allocate(capacity);
    std::copy_n(list.m_items, list.m_size, items);
    if (list.m_capacity != 0) {
      SBD_ALLOCATOR<SBD_PARA_VALUE*>().deallocate(list.m_items, list.m_capacity);
    }
    list.m_items = items;
    list.m_capacity = capacity;
  }
  list.m_items[list.m_size++] = value;
  if (list.m_grown != nullptr) *list.m_grown = true;
}

void SBD_STORE::free_value(SBD_PARA_VALUE* value) const noexcept {
  if (value == nullptr) return;
  free_content(*value);
  free_record(value);
}

void SBD_STORE::free_content(SBD_PARA_VALUE& value) const noexcept {
  SBD_VALUE_LIST* left = nullptr;  // Lists whose elements are still to be freed.
  const auto free_one = [this, &left](SBD_PARA_VALUE& one) {
    if (one.type == SBD_PARA_VALUE::VT_STRING) free_text(one.text);
    if (one.type == SBD_PARA_VALUE::VT_LIST && one.list != nullptr) {
      one.list->m_next_to_free = left;
      left = one.list;
    }
  };

  free_one(value);
  while (left != nullptr) {
    SBD_VALUE_LIST* const list = left;
    left = list->m_next_to_free;
    for (SBD_PARA_VALUE* const element : *list) {
      if (element == nullptr) continue;
      free_one(*element);
      free_record(element);
    }
    if (list->m_capacity != 0) {
      SBD_ALLOCATOR<SBD_PARA_VALUE*>().deallocate(list->m_items, list->m_capacity);
    }
    free_record(list);
  }
}

void SBD_STORE::free_attributes(SBD_FILE_PARSER::SBD_PARA_ATTR* first) const noexcept {
  while (first != nullptr) {
    auto* const attribute = first;
    first = first->next;
    free_text(attribute->attr_key);
    free_text(attribute->attr_value);
    free_record(attribute);
  }
}

void SBD_STORE::free_references(SBD_FILE_PARSER::SBD_PARA_REF* first) const noexcept {
  while (first != nullptr) {
    auto* const reference = first;
    first = first->next;
    free_text(reference->name);
    free_record(reference);
  }
}

void SBD_STORE::free_statement(SBD_STATEMENT* statement) const noexcept {
  free_text(statement->comment);
  if (statement->type == SBD_STATEMENT::ST_ASSIGNMENT) {
    free_value(statement->value);
    free_attributes(statement->attributes);
  } else if (statement->type == SBD_STATEMENT::ST_REFERENCE) {
    free_references(statement->reference);
  } else {
    sbd_report_internal_error("Invalid statement type", k_source_file_parser, __LINE__);
  }
  free_record(statement);
}

void SBD_STORE::free_foreign(SBD_NODE* root) noexcept {
  // Whatever is declared is in the table, and is freed from there.
  free_nodes(root, [](SBD_SYMBOL*) {});
  for (SBD_SYMBOL* symbol : symbols) {
    while (symbol != nullptr) {
      SBD_SYMBOL* const next = symbol->next;
      free_text(symbol->name);
      free_record(symbol);
      symbol = next;
    }
  }
}

void SBD_STORE::drop_references_of(const SBD_STATEMENT& statement) const {
  if (statement.type != SBD_STATEMENT::ST_REFERENCE) return;
  for (auto* reference = statement.reference; reference != nullptr; reference = reference->next) {
    drop_reference(reference->target);
  }
}

void SBD_STORE::drop_references_of(SBD_NODE* node) noexcept {
  if (!has_reference_counts) return;
  try {
    SBD_TREE_WALK walk(node);
    while (const SBD_NODE* const one = walk.next()) {
      if (one->type != SBD_NODE::NT_STATEMENT || one->statement == nullptr) continue;
      drop_references_of(*one->statement);
    }
  } catch (...) {
    has_reference_counts = false;  // Without them it is only slower.
  }
}

void SBD_STORE::clear_records() noexcept {
  names.clear();
  node_links.clear();
  symbol_links.clear();
  facts.clear();
  pool.release();
  last_root = nullptr;
  has_foreign = false;
  has_reference_counts = true;
  has_fault_range = false;
}
