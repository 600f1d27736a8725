// The document's records: making, linking and freeing them.
#include <new>
#include <string_view>

#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/reading/sbd_hash.h"
#include "sbd/reading/sbd_parser_build.h"
#include "sbd/reading/sbd_store.h"
#include "sbd/sbd_file_parser.h"

namespace {

struct BLOCK_TYPE_ROW {
  std::string_view keyword;
  SBD_FILE_PARSER::SBD_BLOCK::BLOCK_TYPE type;
};

constexpr BLOCK_TYPE_ROW k_block_types[] = {
    {"device", SBD_FILE_PARSER::SBD_BLOCK::BT_DEVICE},
    {"bus", SBD_FILE_PARSER::SBD_BLOCK::BT_BUS},
    {"module", SBD_FILE_PARSER::SBD_BLOCK::BT_MODULE},
    {"slave", SBD_FILE_PARSER::SBD_BLOCK::BT_SLAVE},
    {"master", SBD_FILE_PARSER::SBD_BLOCK::BT_MASTER},
    {"region", SBD_FILE_PARSER::SBD_BLOCK::BT_REGION},
    {"parameters", SBD_FILE_PARSER::SBD_BLOCK::BT_PARAMETERS},
};

}  // namespace

const char* sbd_version() noexcept {
#define SBD_TEXT_OF(number) #number
#define SBD_VERSION_TEXT(major, minor, patch) \
  SBD_TEXT_OF(major) "." SBD_TEXT_OF(minor) "." SBD_TEXT_OF(patch)
  return SBD_VERSION_TEXT(SBD_VERSION_MAJOR, SBD_VERSION_MINOR, SBD_VERSION_PATCH);
}

SBD_FILE_PARSER::SBD_FILE_PARSER() noexcept {
  try {
    m_store = new SBD_STORE;
    m_parser_para.symbol_table = &m_store->symbols;
  } catch (...) {
    sbd_report_internal_error("out of memory", k_source_file_parser, __LINE__);
  }
}

SBD_FILE_PARSER::~SBD_FILE_PARSER() {
  if (m_store != nullptr && m_store->has_foreign) m_store->free_foreign(m_parser_para.root);
  delete m_store;
}

void SBD_FILE_PARSER::clear() noexcept {
  if (m_store == nullptr) return;
  if (m_store->has_foreign) m_store->free_foreign(m_parser_para.root);
  m_parser_para.symbol_table->assign(SBD_SYMBOL_TABLE::k_bucket_count, nullptr);
  m_store->clear_records();
  m_store->source.release();
  m_parser_para.root = nullptr;
  m_parser_para.error_count = 0;
}

void SBD_FILE_PARSER::add_node(SBD_NODE* node, SBD_NODE* parent) {
  if (m_store == nullptr) return;
  if (!SBD_CHECK(node != nullptr, "node != NULL", k_source_file_parser)) return;
  const bool is_block = parent == nullptr || parent->type == SBD_NODE::NT_BLOCK;
  if (!SBD_CHECK(is_block, "parent->type == SBD_FILE_PARSER::SBD_NODE::NT_BLOCK",
                 k_source_file_parser)) {
    return;
  }
  if (parent != nullptr &&
      !SBD_CHECK(parent->block != nullptr, "parent->block != NULL", k_source_file_parser)) {
    return;
  }
  m_store->has_reference_counts = false;  // Nobody knows what a caller's node refers to.
  link_node(node, parent);
}

void SBD_FILE_PARSER::link_node(SBD_NODE* node, SBD_NODE* parent) noexcept {
  SBD_NODE*& first = parent != nullptr ? parent->block->members : m_parser_para.root;
  SBD_NODE*& last = parent != nullptr ? parent->block->m_last : m_store->last_root;
  node->next = nullptr;
  m_store->has_foreign = true;
  if (first == nullptr) {
    first = last = node;
    return;
  }
  if (last == nullptr) last = first;
  while (last->next != nullptr) last = last->next;
  last->next = node;
  m_store->node_links.note_tail(last, node);
  last = node;
}

void SBD_FILE_PARSER::delete_node(SBD_NODE* node, SBD_NODE* parent) {
  if (m_store == nullptr || node == nullptr) return;
  if (parent != nullptr && (parent->type != SBD_NODE::NT_BLOCK || parent->block == nullptr)) return;
  SBD_NODE*& first = parent != nullptr ? parent->block->members : m_parser_para.root;
  SBD_NODE*& last = parent != nullptr ? parent->block->m_last : m_store->last_root;
  SBD_NODE* previous = nullptr;
  if (!m_store->node_links.unlink(first, node, &previous)) return;
  if (last == node) last = previous;
  free_node(node);
}

void SBD_FILE_PARSER::free_node(SBD_NODE* node) noexcept {
  if (m_store == nullptr || node == nullptr) return;
  node->next = nullptr;
  m_store->drop_references_of(node);
  m_store->free_nodes(node, [this](SBD_SYMBOL* symbol) { delete_symbol(symbol); });
}

void SBD_FILE_PARSER::free_para_val(SBD_PARA_VALUE* value) const noexcept {
  if (m_store == nullptr) return;
  m_store->free_value(value);
  m_store->has_foreign = true;  // Something of the caller's will take its place.
}

void SBD_FILE_PARSER::add_symbol(SBD_SYMBOL* symbol) {
  if (m_store == nullptr || symbol == nullptr) return;
  if (!SBD_CHECK(symbol->name != nullptr, "name != NULL", k_source_file_parser)) return;
  const bool is_new = symbol->m_tag == 0 && !m_store->names.is_entered(symbol);
  if (!SBD_CHECK(is_new, "symbol is not entered", k_source_file_parser)) return;
  sbd_guarded(k_source_file_parser, false, [this, symbol] {
    sbd_enter_foreign_symbol(symbol, *m_parser_para.symbol_table);
    return true;
  });
}

void SBD_FILE_PARSER::delete_symbol(SBD_SYMBOL* symbol) noexcept {
  if (m_store == nullptr || symbol == nullptr) return;
  const bool is_read = m_store->pool.owns(symbol) && symbol->m_tag != 0;
  if (!is_read && !m_store->names.is_entered(symbol)) return;
  SBD_SYMBOL_TABLE& table = *m_parser_para.symbol_table;
  m_store->symbol_links.unlink(table[hash_pjw(symbol->name, table.size())], symbol);
  m_store->names.remove(symbol);
  symbol->m_tag = 0;
  m_store->free_text(symbol->name);
  m_store->free_record(symbol);
}

unsigned long SBD_FILE_PARSER::hash_pjw(const char* name, unsigned long size) noexcept {
  if (!SBD_CHECK(name != nullptr, "name != NULL", k_source_file_parser)) return 0;
  return size == 0 ? 0 : sbd_hash_pjw(name) % size;
}

SBD_FILE_PARSER::SBD_BLOCK::BLOCK_TYPE SBD_FILE_PARSER::lookup_block_type(
    const char* keyword) noexcept {
  if (keyword == nullptr) return SBD_BLOCK::BT_UNKNOWN;
  const std::string_view text = keyword;
  // Nearly all are written as they stand in the table.
  for (const BLOCK_TYPE_ROW& row : k_block_types) {
    if (text == row.keyword) return row.type;
  }
  for (const BLOCK_TYPE_ROW& row : k_block_types) {
    if (sbd_equal_ignoring_case(text, row.keyword)) return row.type;
  }
  return SBD_BLOCK::BT_UNKNOWN;
}

void SBD_FILE_PARSER::post_message(MSG_POST* message) noexcept {
  if (message == nullptr) return;
  sbd_guarded(k_source_file_parser, false, [message] {
    message->post(nullptr);
    return true;
  });
  delete message;
}
