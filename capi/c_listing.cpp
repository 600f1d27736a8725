#include "capi/c_listing.h"

#include <algorithm>
#include <cstring>

#include "capi/c_document.h"
#include "capi/c_listing_builder.h"

using sbd_c::FINDINGS;
using sbd_c::guarded;
using sbd_c::RECORDER;
using NODE = SBD_FILE_PARSER::SBD_NODE;

namespace sbd_c {

const char* TEXT_ARENA::copy(std::string_view text) {
  constexpr std::size_t k_chunk = 16384;
  if (text.empty()) return "";
  const std::size_t size = text.size() + 1;
  if (size > m_free_size) {
    const std::size_t chunk = std::max(size, k_chunk);
    m_chunks.push_back(std::unique_ptr<char[]>(new char[chunk]));
    m_free = m_chunks.back().get();
    m_free_size = chunk;
  }
  char* const copied = m_free;
  std::memcpy(copied, text.data(), text.size());
  copied[text.size()] = '\0';
  m_free += size;
  m_free_size -= size;
  return copied;
}

}  // namespace sbd_c

namespace {

constexpr unsigned k_all_kinds = SBDC_BLOCK | SBDC_PARAMETER | SBDC_REFERENCE_STATEMENT;

}  // namespace

sbdc_status sbdc_list(const sbdc_document* document, const char* scope, unsigned kinds,
                      sbdc_listing** listing) {
  if (document == nullptr || listing == nullptr) return SBDC_MISUSE;
  if (kinds == 0 || (kinds & ~k_all_kinds) != 0) return SBDC_MISUSE;
  return guarded([=] {
    FINDINGS findings;
    const RECORDER recorder(findings, nullptr, nullptr);
    const SBD_FILE_PARSER& tree = document->tree();
    const bool has_scope = scope != nullptr && *scope != '\0';
    const NODE* const block = has_scope ? tree.get_ref_object(scope, nullptr) : nullptr;
    if (has_scope && block == nullptr) return SBDC_NOT_FOUND;
    if (has_scope && block->type != NODE::NT_BLOCK) return SBDC_WRONG_KIND;

    auto made = std::make_unique<sbdc_listing>();
    sbd_c::LISTING_BUILDER builder(tree, kinds, *made);
    builder.add_below(block);
    builder.finish();
    const sbdc_status status = recorder.judge(SBDC_OK);
    if (status == SBDC_OK) *listing = made.release();
    return status;
  });
}

sbdc_status sbdc_find(const sbdc_document* document, const char* name, sbdc_listing** listing) {
  if (document == nullptr || name == nullptr || listing == nullptr) return SBDC_MISUSE;
  return guarded([=] {
    FINDINGS findings;
    const RECORDER recorder(findings, nullptr, nullptr);
    const SBD_FILE_PARSER& tree = document->tree();
    const NODE* const node = tree.get_ref_object(name, nullptr);
    if (node == nullptr) return SBDC_NOT_FOUND;

    auto made = std::make_unique<sbdc_listing>();
    sbd_c::LISTING_BUILDER builder(tree, k_all_kinds, *made);
    builder.add_alone(node);
    builder.finish();
    const sbdc_status status = recorder.judge(SBDC_OK);
    if (status == SBDC_OK) *listing = made.release();
    return status;
  });
}

void sbdc_listing_free(sbdc_listing* listing) {
  delete listing;
}

size_t sbdc_listing_size(const sbdc_listing* listing) {
  return listing == nullptr ? 0 : listing->items.size();
}

const sbdc_item* sbdc_listing_item(const sbdc_listing* listing, size_t index) {
  if (listing == nullptr || index >= listing->items.size()) return nullptr;
  return &listing->items[index];
}

const sbdc_value* sbdc_listing_element(const sbdc_listing* listing, size_t index) {
  if (listing == nullptr || index >= listing->elements.size()) return nullptr;
  return &listing->elements[index];
}

const sbdc_attribute* sbdc_listing_attribute(const sbdc_listing* listing, size_t index) {
  if (listing == nullptr || index >= listing->attributes.size()) return nullptr;
  return &listing->attributes[index];
}

sbdc_status sbdc_listing_get_view(const sbdc_listing* listing, sbdc_listing_view* view) {
  if (listing == nullptr || view == nullptr) return SBDC_MISUSE;
  *view = {listing->items.data(), listing->items.size(), sizeof(sbdc_item), listing->names.data(),
           listing->names.size()};
  return SBDC_OK;
}
