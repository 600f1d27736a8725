#include "capi/c_listing_builder.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "capi/c_findings.h"

namespace sbd_c {

namespace {

using NODE = SBD_FILE_PARSER::SBD_NODE;
using VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;
using STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;

// The kinds and units of the C interface are those of the library.
static_assert(SBDC_DECIMAL == int{VALUE::VT_UDECIMAL} && SBDC_OCTAL == int{VALUE::VT_OCTAL} &&
              SBDC_HEXADECIMAL == int{VALUE::VT_HEXAL} && SBDC_BINARY == int{VALUE::VT_BINARY} &&
              SBDC_FLOAT == int{VALUE::VT_FLOAT} && SBDC_BOOLEAN == int{VALUE::VT_BOOL} &&
              SBDC_STRING == int{VALUE::VT_STRING} && SBDC_LIST == int{VALUE::VT_LIST});
static_assert(SBDC_NO_UNIT == int{VALUE::QU_NONE} && SBDC_K == int{VALUE::QU_KB} &&
              SBDC_M == int{VALUE::QU_MB} && SBDC_G == int{VALUE::QU_GB} &&
              SBDC_HZ == int{VALUE::QU_HZ} && SBDC_MHZ == int{VALUE::QU_MHZ});

std::string_view declared_name(const NODE* node) {
  const auto* const symbol =
      node->type == NODE::NT_BLOCK ? node->block->name : node->statement->name;
  return symbol != nullptr && symbol->name != nullptr ? symbol->name : "";
}

sbdc_item_kind kind_of(const NODE* node) {
  if (node->type == NODE::NT_BLOCK) return SBDC_BLOCK;
  return node->statement->type == STATEMENT::ST_ASSIGNMENT ? SBDC_PARAMETER
                                                           : SBDC_REFERENCE_STATEMENT;
}

// Own names have no ".".
std::size_t dots_in(std::string_view name) {
  return static_cast<std::size_t>(std::count(name.begin(), name.end(), '.'));
}

bool is_blank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Of a character behind something that a name may have begun with.
bool is_end_of_name(char c) {
  return is_blank(c) || c == '=' || c == '<' || c == '{';
}

std::size_t name_behind_type(std::string_view text, std::size_t begin, const char* type) {
  std::size_t at = begin + (type != nullptr ? std::strlen(type) : 0);
  while (at < text.size() && is_blank(text[at])) ++at;
  return std::min(at, text.size());
}

std::string_view written_text(const VALUE& value) {
  return value.text != nullptr ? value.text : "";
}

bool is_quoted(const VALUE& value) {
  const std::string_view text = written_text(value);
  return text.size() >= 2 && text.front() == '"' && text.back() == '"';
}

// Copied for each new one, which is much quicker than to fill it with zeros.
constexpr sbdc_value k_no_value = {SBDC_NO_VALUE, SBDC_NO_UNIT, 0, 0, "", "", 0, 0, {}};
constexpr sbdc_item k_no_item = {"", "", SBDC_BLOCK, 0, {}, {}, k_no_value, 0, 0};

// Starts to load a node and what the reader puts behind it: statement, value, names. A large tree
// does not fit into the caches, and walking it would be waiting for memory.
void fetch_ahead(const NODE* node) {
#if defined(__GNUC__)
  constexpr std::size_t k_cache_line = 64;
  constexpr std::size_t k_usual_size = 6 * k_cache_line;
  const auto begin = reinterpret_cast<std::uintptr_t>(node);
  for (std::size_t at = 0; at < k_usual_size; at += k_cache_line) {
    // Reckoned as a number, since a pointer must not leave the record.
    const std::uintptr_t address = begin + at;
    const void* place = nullptr;
    std::memcpy(&place, &address, sizeof place);
    __builtin_prefetch(place);
  }
#else
  static_cast<void>(node);
#endif
}

}  // namespace

double scaled_number(const VALUE& value) {
  return value.number * static_cast<double>(SBD_FILE_PARSER::get_unit_value(value.unit));
}

std::string_view unquoted_text(const VALUE& value) {
  const std::string_view text = written_text(value);
  return is_quoted(value) ? text.substr(1, text.size() - 2) : text;
}

// ---- The tree ----------------------------------------------------------------------------------

void LISTING_BUILDER::start_below(const NODE* block) {
  m_prefix.clear();
  m_outer_depth = 0;
  if (block != nullptr) {
    m_prefix = full_name(block) + '.';
    m_outer_depth = dots_in(m_prefix);
  }
  const NODE* const first =
      block != nullptr ? block->block->members : m_document.get_parser_para().root;
  m_levels.assign(1, {first, m_prefix.size()});
}

std::size_t LISTING_BUILDER::count() const {
  LISTING_BUILDER ahead(m_document, m_kinds);
  ahead.m_levels = m_levels;
  std::size_t count = 0;
  while (const NODE* const node = ahead.step()) {
    count += (m_kinds & kind_of(node)) != 0 ? 1 : 0;
    if (node->type == NODE::NT_BLOCK) ahead.m_levels.push_back({node->block->members, 0});
  }
  return count;
}

void LISTING_BUILDER::fill(sbdc_listing& listing, std::size_t most) {
  m_listing = &listing;
  m_last_type = "";
  while (listing.items.size() < most) {
    const NODE* const node = step();
    if (node == nullptr) break;
    if (node->type != NODE::NT_BLOCK && (m_kinds & kind_of(node)) == 0) continue;
    const std::size_t prefix_length = m_levels.back().prefix_length;
    if (m_prefix.size() != prefix_length) m_prefix.resize(prefix_length);
    const std::string_view own_name = declared_name(node);
    add(node, own_name, m_outer_depth + m_levels.size() - 1);
    if (node->type != NODE::NT_BLOCK) continue;
    m_prefix += own_name;
    m_prefix += '.';
    m_levels.push_back({node->block->members, m_prefix.size()});
  }
  set_names();
}

void LISTING_BUILDER::fill_with(const NODE* node, sbdc_listing& listing) {
  m_listing = &listing;
  m_prefix = full_name(node);
  const std::size_t depth = dots_in(m_prefix);
  const std::string_view own_name = declared_name(node);
  m_prefix.resize(m_prefix.size() - own_name.size());
  add(node, own_name, depth);
  set_names();
}

// The next block or statement. Blocks nest as deep as the file likes: the way back is kept in the
// levels, not on the stack; the caller adds one to go into a block.
const SBD_FILE_PARSER::SBD_NODE* LISTING_BUILDER::step() {
  while (!m_levels.empty()) {
    const NODE* const node = m_levels.back().next;
    if (node == nullptr) {
      m_levels.pop_back();
      continue;
    }
    m_levels.back().next = node->next;
    fetch_ahead(node->next);
    if (node->type != NODE::NT_COMMENT) return node;
  }
  return nullptr;
}

std::string LISTING_BUILDER::full_name(const NODE* node) const {
  SBD_STRING name;
  m_document.get_ref_name(node, name);
  return {name.data(), name.size()};
}

void LISTING_BUILDER::add(const NODE* node, std::string_view own_name, std::size_t depth) {
  const sbdc_item_kind kind = kind_of(node);
  if ((m_kinds & kind) == 0) return;

  m_listing->names.add(m_prefix, own_name);
  m_listing->items.push_back(k_no_item);
  sbdc_item& item = m_listing->items.back();
  item.kind = kind;
  item.depth = static_cast<std::uint32_t>(depth);
  item.position = position_of(node, length_of(node));
  item.name_position = name_position_of(node, own_name);
  switch (kind) {
    case SBDC_BLOCK:
      item.type = keep_type(node->block->type);
      break;
    case SBDC_PARAMETER:
      put_value(*node->statement->value, item.value);
      add_attributes(node->statement->attributes, item);
      break;
    case SBDC_REFERENCE_STATEMENT:
      put_references(node->statement->reference, item.value);
      break;
  }
}

// The names have come to rest.
void LISTING_BUILDER::set_names() {
  const char* name = m_listing->names.data();
  for (sbdc_item& item : m_listing->items) {
    item.name = name;
    name += std::strlen(name) + 1;
  }
}

void LISTING_BUILDER::add_attributes(const SBD_FILE_PARSER::SBD_PARA_ATTR* first, sbdc_item& item) {
  item.first_attribute = static_cast<std::uint32_t>(m_listing->attributes.size());
  for (const auto* attribute = first; attribute != nullptr; attribute = attribute->next) {
    const char* const value =
        attribute->attr_value != nullptr ? m_listing->texts.copy(attribute->attr_value) : nullptr;
    m_listing->attributes.push_back(
        {m_listing->texts.copy(attribute->attr_key), value, position_of(attribute)});
    ++item.attribute_count;
  }
}

// Most files use one keyword over and over.
const char* LISTING_BUILDER::keep_type(const char* type) {
  if (type == nullptr) return "";
  if (std::strcmp(m_last_type, type) != 0) m_last_type = m_listing->texts.copy(type);
  return m_last_type;
}

// ---- Values ------------------------------------------------------------------------------------

void LISTING_BUILDER::put_value(const VALUE& value, sbdc_value& made) {
  put_single(value, made);
  if (value.type == VALUE::VT_LIST) add_elements(value, made);
}

// A list comes without its elements.
void LISTING_BUILDER::put_single(const VALUE& value, sbdc_value& made) {
  made.kind = static_cast<sbdc_value_kind>(value.type);
  made.unit = static_cast<sbdc_unit>(value.unit);
  made.position = position_of(&value, length_of(value));
  if (is_number(value)) {
    made.unscaled = value.number;
    made.number = scaled_number(value);
  } else if (value.type == VALUE::VT_BOOL) {
    made.number = value.flag == 1 ? 1 : 0;
  } else if (value.type == VALUE::VT_STRING) {
    made.kind = is_quoted(value) ? SBDC_STRING : SBDC_WORD;
    made.text = m_listing->texts.copy(unquoted_text(value));
  }
}

// Lists nest as deep as the file likes: those that are met are noted, and opened one by one.
void LISTING_BUILDER::add_elements(const VALUE& list, sbdc_value& made) {
  m_to_open.clear();
  open_list(list, made);
  for (std::size_t i = 0; i < m_to_open.size(); i++) {
    const OPEN_LIST open = m_to_open[i];
    sbdc_value opened = m_listing->elements[open.element];
    open_list(*open.value, opened);
    m_listing->elements[open.element] = opened;
  }
}

void LISTING_BUILDER::open_list(const VALUE& list, sbdc_value& made) {
  made.first_element = static_cast<std::uint32_t>(m_listing->elements.size());
  made.element_count = static_cast<std::uint32_t>(list.list->size());
  for (const VALUE* const element : *list.list) {
    if (element->type == VALUE::VT_LIST) m_to_open.push_back({element, m_listing->elements.size()});
    m_listing->elements.push_back(k_no_value);
    put_single(*element, m_listing->elements.back());
  }
}

void LISTING_BUILDER::put_references(const SBD_FILE_PARSER::SBD_PARA_REF* first, sbdc_value& made) {
  made.kind = SBDC_REFERENCES;
  made.first_element = static_cast<std::uint32_t>(m_listing->elements.size());
  for (const auto* reference = first; reference != nullptr; reference = reference->next) {
    m_listing->elements.push_back(make_reference(*reference));
    ++made.element_count;
  }
}

sbdc_value LISTING_BUILDER::make_reference(const SBD_FILE_PARSER::SBD_PARA_REF& reference) {
  sbdc_value made = k_no_value;
  made.kind = SBDC_REFERENCE;
  made.text = m_listing->texts.copy(reference.name != nullptr ? reference.name : "");
  made.position = position_of(&reference);
  SBD_STRING target;
  if (reference.target != nullptr && m_document.get_ref_name(reference.target, target)) {
    made.target = m_listing->texts.copy(target);
  }
  return made;
}

// ---- Positions ---------------------------------------------------------------------------------

// What the record can't tell, the document knows; 0 where there is no place.
std::size_t LISTING_BUILDER::length_of(const VALUE& value) const {
  if (value.m_length != VALUE::k_long) return value.m_length;
  SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
  return m_document.get_range(&value, range) ? range.length : 0;
}

// Of a block, or of an assignment whose ";" is right behind the value, as it nearly always is;
// otherwise 0. The document would have to look for it in the text.
std::size_t LISTING_BUILDER::length_of(const NODE* node) const {
  if (node->m_position == 0) return 0;
  const std::size_t begin = node->m_position - std::size_t{1};
  if (node->type == NODE::NT_BLOCK) {
    const std::size_t end = node->block->m_end_position;
    return end > begin ? end - begin : 0;
  }
  if (kind_of(node) != SBDC_PARAMETER) return 0;
  const VALUE& value = *node->statement->value;
  if (value.m_position <= node->m_position) return 0;
  const std::size_t end = value.m_position - std::size_t{1} + length_of(value);
  const std::string_view text = m_lines.text();
  return end < text.size() && text[end] == ';' ? end + 1 - begin : 0;
}

// A statement begins with its name, a block with its type. What was renamed since the file was read
// has another name there.
sbdc_position LISTING_BUILDER::name_position_of(const NODE* node, std::string_view own_name) {
  const std::string_view text = m_lines.text();
  if (node->m_position != 0) {
    std::size_t begin = node->m_position - std::size_t{1};
    if (node->type == NODE::NT_BLOCK) begin = name_behind_type(text, begin, node->block->type);
    const std::size_t end = begin + own_name.size();
    sbdc_position position{};
    if (end < text.size() && is_end_of_name(text[end]) &&
        text.compare(begin, own_name.size(), own_name) == 0 &&
        m_lines.locate(begin, own_name.size(), position)) {
      return position;
    }
  }
  SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
  return m_document.get_name_range(node, range) ? to_position(range) : sbdc_position{};
}

template <class RECORD>
sbdc_position LISTING_BUILDER::position_of(const RECORD* record) {
  SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
  if (!m_document.get_range(record, range)) return {};
  const sbdc_position position = to_position(range);
  m_lines.start_at(position);
  return position;
}

// The same for a record whose length is known, unless it is 0.
template <class RECORD>
sbdc_position LISTING_BUILDER::position_of(const RECORD* record, std::size_t length) {
  sbdc_position position{};
  if (record->m_position != 0 && length != 0 &&
      m_lines.locate(record->m_position - std::size_t{1}, length, position)) {
    return position;
  }
  return position_of(record);
}

}  // namespace sbd_c
