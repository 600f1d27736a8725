#include "capi/c_listing_builder.h"

#include <algorithm>
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

const char* declared_name(const NODE* node) {
  const auto* const symbol =
      node->type == NODE::NT_BLOCK ? node->block->name : node->statement->name;
  return symbol != nullptr && symbol->name != nullptr ? symbol->name : "";
}

sbdc_item_kind kind_of(const NODE* node) {
  if (node->type == NODE::NT_BLOCK) return SBDC_BLOCK;
  return node->statement->type == STATEMENT::ST_ASSIGNMENT ? SBDC_PARAMETER
                                                           : SBDC_REFERENCE_STATEMENT;
}

std::string_view written_text(const VALUE& value) {
  return value.text != nullptr ? value.text : "";
}

bool is_quoted(const VALUE& value) {
  const std::string_view text = written_text(value);
  return text.size() >= 2 && text.front() == '"' && text.back() == '"';
}

sbdc_value empty_value(sbdc_value_kind kind) {
  return {kind, SBDC_NO_UNIT, 0, 0, "", "", 0, 0, {}};
}

// Calls `visit` for each block and statement of the list `first` and below, with the number of
// blocks around it that were gone into. Blocks nest as deep as the file likes: the way back is kept
// here, not on the stack.
template <class VISIT>
void for_each_node(const NODE* first, VISIT&& visit) {
  std::vector<const NODE*> next_of_level{first};
  while (!next_of_level.empty()) {
    const NODE* const node = next_of_level.back();
    if (node == nullptr) {
      next_of_level.pop_back();
      continue;
    }
    next_of_level.back() = node->next;
    if (node->type == NODE::NT_COMMENT) continue;
    visit(node, next_of_level.size() - 1);
    if (node->type == NODE::NT_BLOCK) next_of_level.push_back(node->block->members);
  }
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

void LISTING_BUILDER::add_below(const NODE* block) {
  if (block != nullptr) set_path(block);
  const std::size_t outer_depth = block != nullptr ? depth_of_path() + 1 : 0;
  const NODE* const first =
      block != nullptr ? block->block->members : m_document.get_parser_para().root;

  // Room for all of them at once: moving so many records costs more than counting them.
  std::size_t count = 0;
  for_each_node(first, [this, &count](const NODE* node, std::size_t) {
    count += (m_kinds & kind_of(node)) != 0 ? 1 : 0;
  });
  m_listing.items.reserve(count);

  std::vector<std::size_t> path_lengths{m_path.size()};  // In front of the names of each level.
  for_each_node(first, [&](const NODE* node, std::size_t level) {
    path_lengths.resize(level + 1, m_path.size());
    m_path.resize(path_lengths[level]);
    if (!m_path.empty()) m_path += '.';
    m_path += declared_name(node);
    add_item(node, outer_depth + level);
  });
}

void LISTING_BUILDER::add_alone(const NODE* node) {
  set_path(node);
  add_item(node, depth_of_path());
}

void LISTING_BUILDER::finish() {
  const char* name = m_listing.names.data();
  for (sbdc_item& item : m_listing.items) {
    item.name = name;
    name += std::strlen(name) + 1;
  }
}

void LISTING_BUILDER::set_path(const NODE* node) {
  SBD_STRING name;
  m_document.get_ref_name(node, name);
  m_path = name;
}

// Own names have no ".".
std::size_t LISTING_BUILDER::depth_of_path() const {
  return static_cast<std::size_t>(std::count(m_path.begin(), m_path.end(), '.'));
}

void LISTING_BUILDER::add_item(const NODE* node, std::size_t depth) {
  const sbdc_item_kind kind = kind_of(node);
  if ((m_kinds & kind) == 0) return;

  sbdc_item item{};
  item.kind = kind;
  item.type = "";
  item.depth = static_cast<std::uint32_t>(depth);
  item.position = position_of(node);
  item.name_position = name_position_of(node, item.position);
  switch (kind) {
    case SBDC_BLOCK:
      item.type = keep_type(node->block->type);
      item.value = empty_value(SBDC_NO_VALUE);
      break;
    case SBDC_PARAMETER:
      item.value = make_value(*node->statement->value);
      add_attributes(node->statement->attributes, item);
      break;
    case SBDC_REFERENCE_STATEMENT:
      item.value = make_references(node->statement->reference);
      break;
  }
  m_listing.items.push_back(item);
  m_listing.names.append(m_path.c_str(), m_path.size() + 1);
}

// A statement begins with its name.
sbdc_position LISTING_BUILDER::name_position_of(const NODE* node,
                                                const sbdc_position& position) const {
  sbdc_position name_position = position;
  SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
  if (node->type == NODE::NT_BLOCK) {
    return m_document.get_name_range(node, range) ? to_position(range) : sbdc_position{};
  }
  if (position.line != 0) {
    name_position.length = static_cast<std::uint32_t>(std::strlen(declared_name(node)));
  }
  return name_position;
}

void LISTING_BUILDER::add_attributes(const SBD_FILE_PARSER::SBD_PARA_ATTR* first, sbdc_item& item) {
  item.first_attribute = static_cast<std::uint32_t>(m_listing.attributes.size());
  for (const auto* attribute = first; attribute != nullptr; attribute = attribute->next) {
    const char* const value =
        attribute->attr_value != nullptr ? m_listing.texts.copy(attribute->attr_value) : nullptr;
    m_listing.attributes.push_back(
        {m_listing.texts.copy(attribute->attr_key), value, position_of(attribute)});
    ++item.attribute_count;
  }
}

// Most files use one keyword over and over.
const char* LISTING_BUILDER::keep_type(const char* type) {
  if (type == nullptr) return "";
  if (m_last_type != type) m_last_type = m_listing.texts.copy(type);
  return m_last_type.empty() ? "" : m_last_type.data();
}

// ---- Values ------------------------------------------------------------------------------------

sbdc_value LISTING_BUILDER::make_value(const VALUE& value) {
  sbdc_value made = make_single(value);
  if (value.type == VALUE::VT_LIST) add_elements(value, made);
  return made;
}

// A list comes without its elements.
sbdc_value LISTING_BUILDER::make_single(const VALUE& value) {
  sbdc_value made = empty_value(static_cast<sbdc_value_kind>(value.type));
  made.unit = static_cast<sbdc_unit>(value.unit);
  made.position = position_of(&value);
  if (is_number(value)) {
    made.unscaled = value.number;
    made.number = scaled_number(value);
  } else if (value.type == VALUE::VT_BOOL) {
    made.number = value.flag == 1 ? 1 : 0;
  } else if (value.type == VALUE::VT_STRING) {
    made.kind = is_quoted(value) ? SBDC_STRING : SBDC_WORD;
    made.text = m_listing.texts.copy(unquoted_text(value));
  }
  return made;
}

// Lists nest as deep as the file likes: those that are met are noted, and opened one by one.
void LISTING_BUILDER::add_elements(const VALUE& list, sbdc_value& made) {
  m_to_open.clear();
  open_list(list, made);
  for (std::size_t i = 0; i < m_to_open.size(); i++) {
    const OPEN_LIST open = m_to_open[i];
    sbdc_value opened = m_listing.elements[open.element];
    open_list(*open.value, opened);
    m_listing.elements[open.element] = opened;
  }
}

void LISTING_BUILDER::open_list(const VALUE& list, sbdc_value& made) {
  made.first_element = static_cast<std::uint32_t>(m_listing.elements.size());
  made.element_count = static_cast<std::uint32_t>(list.list->size());
  for (const VALUE* const element : *list.list) {
    if (element->type == VALUE::VT_LIST) m_to_open.push_back({element, m_listing.elements.size()});
    m_listing.elements.push_back(make_single(*element));
  }
}

sbdc_value LISTING_BUILDER::make_references(const SBD_FILE_PARSER::SBD_PARA_REF* first) {
  sbdc_value made = empty_value(SBDC_REFERENCES);
  made.first_element = static_cast<std::uint32_t>(m_listing.elements.size());
  for (const auto* reference = first; reference != nullptr; reference = reference->next) {
    m_listing.elements.push_back(make_reference(*reference));
    ++made.element_count;
  }
  return made;
}

sbdc_value LISTING_BUILDER::make_reference(const SBD_FILE_PARSER::SBD_PARA_REF& reference) {
  sbdc_value made = empty_value(SBDC_REFERENCE);
  made.text = m_listing.texts.copy(reference.name != nullptr ? reference.name : "");
  made.position = position_of(&reference);
  SBD_STRING target;
  if (reference.target != nullptr && m_document.get_ref_name(reference.target, target)) {
    made.target = m_listing.texts.copy(target);
  }
  return made;
}

template <class RECORD>
sbdc_position LISTING_BUILDER::position_of(const RECORD* record) const {
  SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
  return m_document.get_range(record, range) ? to_position(range) : sbdc_position{};
}

}  // namespace sbd_c
