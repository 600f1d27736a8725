#include "capi/c_listing.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <utility>

#include "capi/c_document.h"
#include "capi/c_listing_builder.h"

using sbd_c::FINDINGS;
using sbd_c::guarded;
using sbd_c::LISTING_BUILDER;
using sbd_c::RECORDER;
using NODE = SBD_FILE_PARSER::SBD_NODE;

namespace sbd_c {

const char* TEXT_ARENA::copy(std::string_view text) {
  if (text.empty()) return "";
  const std::size_t size = text.size() + 1;
  if (size > m_free_size) add_chunk(size);
  char* const copied = m_free;
  std::memcpy(copied, text.data(), text.size());
  copied[text.size()] = '\0';
  m_free += size;
  m_free_size -= size;
  return copied;
}

// Small for a listing of one item, which may be kept by the hundreds.
void TEXT_ARENA::add_chunk(std::size_t least) {
  constexpr std::size_t k_smallest = 128;
  constexpr std::size_t k_largest = 16384;
  m_chunk_size = std::clamp(2 * m_chunk_size, k_smallest, k_largest);
  const std::size_t size = std::max(least, m_chunk_size);
  m_chunks.push_back(std::unique_ptr<char[]>(new char[size]));
  m_free = m_chunks.back().get();
  m_free_size = size;
}

void NAMES::add(std::string_view prefix, std::string_view own_name) {
  const std::size_t size = m_size + prefix.size() + own_name.size() + 1;
  if (size > m_capacity) grow(size);
  char* const name = m_names.get() + m_size;
  std::memcpy(name, prefix.data(), prefix.size());
  std::memcpy(name + prefix.size(), own_name.data(), own_name.size());
  m_names[size - 1] = '\0';
  m_size = size;
}

void NAMES::grow(std::size_t size) {
  const std::size_t capacity = std::max(size, 2 * m_capacity);
  std::unique_ptr<char[]> grown(new char[capacity]);
  if (m_size != 0) std::memcpy(grown.get(), m_names.get(), m_size);
  m_names = std::move(grown);
  m_capacity = capacity;
}

}  // namespace sbd_c

struct sbdc_walk {
  const sbdc_document* document;
  std::size_t change_count;  // Of the document, when the walk began.
  LISTING_BUILDER builder;
};

namespace {

constexpr unsigned k_all_kinds = SBDC_BLOCK | SBDC_PARAMETER | SBDC_REFERENCE_STATEMENT;
constexpr std::size_t k_usual_part = 512;  // Items that a part of a walk has room for at once.

// Calls `use` with a builder that stands before what is of the `kinds` below the block `scope`.
template <class USE>
sbdc_status with_start(const sbdc_document* document, const char* scope, unsigned kinds,
                       USE&& use) noexcept {
  if (document == nullptr || kinds == 0 || (kinds & ~k_all_kinds) != 0) return SBDC_MISUSE;
  return guarded([&] {
    FINDINGS findings;
    const RECORDER recorder(findings, nullptr, nullptr);
    const SBD_FILE_PARSER& tree = document->tree();
    const bool has_scope = scope != nullptr && *scope != '\0';
    const NODE* const block = has_scope ? tree.get_ref_object(scope, nullptr) : nullptr;
    if (has_scope && block == nullptr) return SBDC_NOT_FOUND;
    if (has_scope && block->type != NODE::NT_BLOCK) return SBDC_WRONG_KIND;
    LISTING_BUILDER builder(tree, kinds);
    builder.start_below(block);
    return use(builder, recorder);
  });
}

}  // namespace

// ---- Whole listings ----------------------------------------------------------------------------

sbdc_status sbdc_list(const sbdc_document* document, const char* scope, unsigned kinds,
                      sbdc_listing** listing) {
  if (listing == nullptr) return SBDC_MISUSE;
  return with_start(document, scope, kinds,
                    [=](LISTING_BUILDER& builder, const RECORDER& recorder) {
                      auto made = std::make_unique<sbdc_listing>();
                      // Room for all of them at once: moving so many records costs more than
                      // counting them.
                      made->items.reserve(builder.count());
                      builder.fill(*made, std::numeric_limits<std::size_t>::max());
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
    LISTING_BUILDER(tree, k_all_kinds).fill_with(node, *made);
    const sbdc_status status = recorder.judge(SBDC_OK);
    if (status == SBDC_OK) *listing = made.release();
    return status;
  });
}

// ---- Walks -------------------------------------------------------------------------------------

sbdc_status sbdc_walk_new(const sbdc_document* document, const char* scope, unsigned kinds,
                          sbdc_walk** walk) {
  if (walk == nullptr) return SBDC_MISUSE;
  return with_start(document, scope, kinds,
                    [=](LISTING_BUILDER& builder, const RECORDER& recorder) {
                      const sbdc_status status = recorder.judge(SBDC_OK);
                      if (status == SBDC_OK) {
                        *walk = new sbdc_walk{document, document->change_count, std::move(builder)};
                      }
                      return status;
                    });
}

void sbdc_walk_free(sbdc_walk* walk) {
  delete walk;
}

sbdc_status sbdc_walk_next(sbdc_walk* walk, size_t most, sbdc_listing** listing) {
  if (walk == nullptr || listing == nullptr || most == 0) return SBDC_MISUSE;
  if (walk->document->change_count != walk->change_count) return SBDC_MISUSE;
  return guarded([=] {
    FINDINGS findings;
    const RECORDER recorder(findings, nullptr, nullptr);
    auto made = std::make_unique<sbdc_listing>();
    made->items.reserve(std::min(most, k_usual_part));
    walk->builder.fill(*made, most);
    const sbdc_status status = recorder.judge(SBDC_OK);
    if (status != SBDC_OK) return status;
    if (made->items.empty()) return SBDC_NOT_FOUND;
    *listing = made.release();
    return SBDC_OK;
  });
}

// ---- Listings ----------------------------------------------------------------------------------

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
