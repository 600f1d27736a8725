#include "tests/access/second_model.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <set>

namespace second_model {

namespace {

constexpr unsigned k_bucket_count = 211;

// Which kinds of present value an edit accepts, one bit for each kind.
constexpr unsigned k_numbers_and_lists = 0x9f;
constexpr unsigned k_booleans = 0x20;
constexpr unsigned k_strings = 0x40;

std::string lower(std::string text) {
  for (char& character : text) {
    if (character >= 'A' && character <= 'Z') character = static_cast<char>(character - 'A' + 'a');
  }
  return text;
}

bool is_letter(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool is_digit(char character) {
  return character >= '0' && character <= '9';
}

std::string digits(std::uint32_t number, unsigned base) {
  std::string text;
  do {
    text.insert(text.begin(), "0123456789ABCDEF"[number % base]);
    number /= base;
  } while (number != 0);
  return text;
}

std::string decimals(double number) {
  std::string text(400, '\0');
  text.resize(static_cast<std::size_t>(std::snprintf(text.data(), text.size(), "%f", number)));
  return text;
}

std::string in_parameter(const char* block, const char* parameter) {
  return std::string(parameter) + "' in the block: '" + block + "'. ";
}

void visit(const std::list<std::unique_ptr<NODE>>& siblings,
           const std::function<void(NODE&)>& action) {
  for (const auto& node : siblings) {
    action(*node);
    visit(node->members, action);
  }
}

// ---- What the reader takes ---------------------------------------------------------------------

bool is_word_character(char character) {
  return is_letter(character) || is_digit(character) || character == '_';
}

bool is_boolean_word(const std::string& word) {
  static const std::set<std::string> k_words = {"true", "TRUE", "True", "false", "FALSE", "False"};
  return k_words.count(word) != 0;
}

bool is_identifier(const std::string& text) {
  return !text.empty() && !is_digit(text[0]) && !is_boolean_word(text) &&
         std::all_of(text.begin(), text.end(), is_word_character);
}

// An identifier with indices of one digit each.
bool is_declarable(const std::string& text) {
  const std::size_t bracket = text.find('[');
  if (bracket == std::string::npos) return is_identifier(text);
  const std::string word = text.substr(0, bracket);
  if (!is_identifier(word) && !is_boolean_word(word)) return false;
  const std::string indices = text.substr(bracket);
  if (indices.size() % 3 != 0) return false;
  for (std::size_t i = 0; i < indices.size(); i += 3) {
    if (indices[i] != '[' || !is_digit(indices[i + 1]) || indices[i + 2] != ']') return false;
  }
  return true;
}

bool is_qualified(const std::string& text) {
  // The reader takes some names that begin with a digit; they are left out here.
  if (text.find('.') == std::string::npos || is_digit(text[0])) return false;
  for (std::size_t i = 0; i < text.size(); i++) {
    if (is_word_character(text[i]) || text[i] == '.') continue;
    if (text.size() - i < 3 || text[i] != '[' || !is_digit(text[i + 1]) || text[i + 2] != ']') {
      return false;
    }
    i += 2;
  }
  return true;
}

bool is_readable_value(const VALUE& value) {
  switch (value.kind) {
    case 4:
      return std::isfinite(value.number);
    case 5:
      return value.unit == 0;
    case 6: {
      if (value.unit != 0) return false;
      if (is_identifier(value.text)) return true;
      const std::size_t size = value.text.size();
      return size >= 2 && value.text[0] == '"' && value.text.find('"', 1) == size - 1;
    }
    case 7:
      return value.unit == 0 && value.elements.size() >= 2 &&
             std::all_of(value.elements.begin(), value.elements.end(), is_readable_value);
    default:
      return true;
  }
}

// ---- The library's records ---------------------------------------------------------------------

using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
using SBD_SYMBOL = SBD_FILE_PARSER::SBD_SYMBOL;

VALUE import_value(const SBD_FILE_PARSER::SBD_PARA_VALUE& source) {
  VALUE value;
  value.kind = static_cast<int>(source.type);
  value.unit = static_cast<int>(source.unit);
  if (value.kind <= 4) {
    value.number = source.number;
  } else if (value.kind == 5) {
    value.flag = source.flag;
  } else if (value.kind == 6) {
    value.text = source.text;
  } else {
    for (const auto* const element : *source.list) value.elements.push_back(import_value(*element));
  }
  return value;
}

const SBD_SYMBOL* symbol_of(const SBD_NODE* node) {
  return node->type == SBD_NODE::NT_BLOCK ? node->block->name : node->statement->name;
}

using NODE_MAP = std::map<const SBD_NODE*, NODE*>;

void import_statement(NODE& node, const SBD_FILE_PARSER::SBD_STATEMENT& source) {
  if (source.comment != nullptr) node.comment = source.comment;
  if (source.type == SBD_FILE_PARSER::SBD_STATEMENT::ST_REFERENCE) {
    node.kind = KIND::REFERENCE;
    for (const auto* element = source.reference; element != nullptr; element = element->next) {
      node.elements.push_back({element->name, nullptr, 0});
    }
    return;
  }
  node.kind = KIND::PARAMETER;
  node.value = import_value(*source.value);
  for (const auto* attribute = source.attributes; attribute; attribute = attribute->next) {
    node.attributes.push_back({attribute->attr_key, std::nullopt});
    if (attribute->attr_value != nullptr) node.attributes.back().value = attribute->attr_value;
  }
}

void import_siblings(std::list<std::unique_ptr<NODE>>& siblings, NODE* parent,
                     const SBD_NODE* source, NODE_MAP& map) {
  for (; source != nullptr; source = source->next) {
    siblings.push_back(std::make_unique<NODE>());
    NODE& node = *siblings.back();
    map[source] = &node;
    node.parent = parent;
    if (source->type == SBD_NODE::NT_COMMENT) {
      node.comment = source->comment;
      continue;
    }
    node.name = symbol_of(source)->name;
    node.line = symbol_of(source)->line;
    if (source->type == SBD_NODE::NT_STATEMENT) {
      import_statement(node, *source->statement);
    } else {
      node.kind = KIND::BLOCK;
      node.type = source->block->type;
      import_siblings(node.members, &node, source->block->members, map);
    }
  }
}

// Pairs the nodes of both trees; what does not fit is told by the return value.
std::string pair_siblings(const std::list<std::unique_ptr<NODE>>& siblings, const SBD_NODE* source,
                          NODE_MAP& map) {
  for (const auto& node : siblings) {
    if (source == nullptr) return "missing: " + node->name;
    const auto wanted = node->kind == KIND::BLOCK     ? SBD_NODE::NT_BLOCK
                        : node->kind == KIND::COMMENT ? SBD_NODE::NT_COMMENT
                                                      : SBD_NODE::NT_STATEMENT;
    if (source->type != wanted) return "node type of " + node->name;
    map[source] = node.get();
    if (wanted == SBD_NODE::NT_BLOCK) {
      if (static_cast<int>(source->block->block_type) != MODEL::type_number(node->type)) {
        return "block type of " + node->name;
      }
      const std::string fault = pair_siblings(node->members, source->block->members, map);
      if (!fault.empty()) return fault;
    }
    source = source->next;
  }
  return source == nullptr ? "" : "a node too many";
}

std::string compare_targets(const SBD_NODE* source, const NODE& node, const NODE_MAP& map) {
  const auto* element = source->statement->reference;
  for (const ELEMENT& wanted : node.elements) {
    if (element == nullptr || wanted.name != element->name) return "elements of " + node.name;
    if (wanted.target != nullptr) {
      const auto found = map.find(element->target);
      if (found == map.end() || found->second != wanted.target) {
        return "target of " + node.name + ": " + wanted.name;
      }
    }
    element = element->next;
  }
  return element == nullptr ? "" : "an element too many in " + node.name;
}

}  // namespace

// ---- Names -------------------------------------------------------------------------------------

bool MODEL::is_valid_name(const std::string& name) {
  if (name.empty() || !is_letter(name[0])) return false;
  bool is_open = false;
  bool is_indexed = false;
  for (const char character : name.substr(1)) {
    if (character == '[') {
      if (is_open) return false;
      is_open = true;
    } else if (character == ']') {
      if (!is_open) return false;
      is_open = false;
      is_indexed = true;
    } else if (is_letter(character) || character == '_') {
      if (is_open || is_indexed) return false;
    } else if (is_digit(character)) {
      if (!is_open && is_indexed) return false;
    } else {
      return false;
    }
  }
  return !is_open;
}

int MODEL::type_number(const std::string& type) {
  static const std::vector<std::string> k_types = {"device", "bus",    "module",    "slave",
                                                   "master", "region", "parameters"};
  const auto found = std::find(k_types.begin(), k_types.end(), lower(type));
  return static_cast<int>(found - k_types.begin());
}

unsigned MODEL::bucket_of(const std::string& name) {
  std::uint32_t hash = 0;
  for (const char character : lower(name)) {
    hash = (hash << 4) + static_cast<std::uint32_t>(static_cast<signed char>(character));
    const std::uint32_t high = hash & 0xf0000000;
    if (high != 0) {
      hash ^= high >> 24;
      hash ^= high;
    }
  }
  return hash % k_bucket_count;
}

const MODEL::SIBLINGS& MODEL::members_of(const NODE* scope) const {
  return scope == nullptr ? m_top : scope->members;
}

NODE* MODEL::find_member(NODE* scope, const std::string& lower_name) const {
  NODE* found = nullptr;
  for (const auto& node : members_of(scope)) {
    if (node->kind == KIND::COMMENT || lower(node->name) != lower_name) continue;
    if (found == nullptr || node->entered > found->entered) found = node.get();
  }
  return found;
}

NODE* MODEL::resolve(const std::string& name, NODE* scope) const {
  const std::string text = lower(name);
  std::size_t begin = 0;
  while (true) {
    const std::size_t end = std::min(text.find('.', begin), text.size());
    if (end == begin) return nullptr;
    scope = find_member(scope, text.substr(begin, end - begin));
    if (scope == nullptr || end == text.size()) return scope;
    begin = end + 1;
  }
}

std::string MODEL::full_name(const NODE* node) {
  std::string name = node->name;
  for (const NODE* block = node->parent; block != nullptr; block = block->parent) {
    name = block->name + "." + name;
  }
  return name;
}

std::vector<NODE*> MODEL::nodes() const {
  std::vector<NODE*> result;
  visit(m_top, [&result](NODE& node) {
    if (node.kind != KIND::COMMENT) result.push_back(&node);
  });
  return result;
}

MODEL::NAMES MODEL::typed_blocks(int type, const NODE* scope) const {
  NAMES names;
  visit(members_of(scope), [&names, type](NODE& node) {
    if (node.kind == KIND::BLOCK && type_number(node.type) == type) {
      names.push_back(full_name(&node));
    }
  });
  return names;
}

// ---- References --------------------------------------------------------------------------------

bool MODEL::find_reference(const SIBLINGS& siblings, const NODE* target) const {
  for (const auto& node : siblings) {
    if (node.get() == target) continue;
    for (const ELEMENT& element : node->elements) {
      if (element.target == target) return true;
    }
    if (find_reference(node->members, target)) return true;
  }
  return false;
}

bool MODEL::is_referenced(const NODE* target) const {
  return target != nullptr && find_reference(m_top, target);
}

bool MODEL::may_be_confused(const NODE* node) const {
  bool found = false;
  visit(m_top, [&found, node](NODE& other) {
    for (const ELEMENT& element : other.elements) {
      if (element.target == nullptr && element.lost < node->born) found = true;
    }
  });
  return found;
}

bool MODEL::has_lost_targets() const {
  bool found = false;
  visit(m_top, [&found](NODE& node) {
    for (const ELEMENT& element : node.elements) {
      if (element.target == nullptr) found = true;
    }
  });
  return found;
}

void MODEL::delete_reference_in(SIBLINGS& siblings, const NODE* target) {
  std::vector<NODE*> emptied;
  for (const auto& node : siblings) {
    if (node.get() == target) continue;
    if (node->kind == KIND::BLOCK) delete_reference_in(node->members, target);
    if (node->kind != KIND::REFERENCE) continue;
    auto& elements = node->elements;
    const std::size_t old_size = elements.size();
    elements.erase(
        std::remove_if(elements.begin(), elements.end(),
                       [target](const ELEMENT& element) { return element.target == target; }),
        elements.end());
    if (elements.empty() && old_size != 0) emptied.push_back(node.get());
  }
  for (NODE* const node : emptied) remove(node);
}

void MODEL::delete_reference(const char* name) {
  const NODE* const target = name == nullptr ? nullptr : find(name);
  if (target != nullptr) delete_reference_in(m_top, target);
}

// ---- Editing -----------------------------------------------------------------------------------

void MODEL::forget() {
  m_messages.clear();
  m_internal_errors.clear();
}

void MODEL::post_error(const std::string& text) {
  m_messages.push_back({8, "System Build Descriptor File error: " + text});
}

void MODEL::post_warning(const std::string& text) {
  m_messages.push_back({9, "System Build Descriptor File warning: " + text});
}

MODEL::SIBLINGS& MODEL::siblings_of(NODE* node) {
  return node->parent == nullptr ? m_top : node->parent->members;
}

NODE* MODEL::add(NODE* parent, KIND kind, const std::string& name) {
  SIBLINGS& siblings = parent == nullptr ? m_top : parent->members;
  siblings.push_back(std::make_unique<NODE>());
  NODE* const node = siblings.back().get();
  node->kind = kind;
  node->parent = parent;
  node->name = name;
  node->entered = node->born = ++m_clock;
  return node;
}

void MODEL::remove(NODE* node) {
  std::set<const NODE*> gone = {node};
  visit(node->members, [&gone](NODE& member) { gone.insert(&member); });
  ++m_clock;
  visit(m_top, [this, &gone](NODE& other) {
    for (ELEMENT& element : other.elements) {
      if (gone.count(element.target) == 0) continue;
      element.target = nullptr;
      element.lost = m_clock;
    }
  });
  siblings_of(node).remove_if(
      [node](const std::unique_ptr<NODE>& other) { return other.get() == node; });
}

bool MODEL::check(const char* block, const char* parameter, KIND kind, NODE** block_node,
                  NODE** node) {
  if (block == nullptr || parameter == nullptr) {
    post_error("Cannot set parameter value. NULL block/parameter name.");
    return false;
  }
  if (!is_valid_name(parameter)) {
    post_error("Cannot set parameter value. Illegal parameter name.");
    return false;
  }
  const std::string prefix =
      "Cannot set value to the parameter: '" + in_parameter(block, parameter);
  *block_node = find(block);
  if (*block_node == nullptr || (*block_node)->kind != KIND::BLOCK) {
    post_error(prefix + "Block does not exit.");
    return false;
  }
  *node = resolve(parameter, *block_node);
  if (*node == nullptr || (*node)->kind == kind) return true;
  if ((*node)->kind == KIND::BLOCK) {
    post_error(prefix + "The parameter name has already been used as a block name.");
  } else {
    post_error(prefix + "The parameter name has already been used in other type of statement.");
  }
  return false;
}

bool MODEL::set(const char* block, const char* parameter, const VALUE& value,
                unsigned accepted_kinds) {
  NODE* block_node = nullptr;
  NODE* node = nullptr;
  if (!check(block, parameter, KIND::PARAMETER, &block_node, &node)) return false;
  if (node == nullptr) {
    node = add(block_node, KIND::PARAMETER, parameter);
  } else if ((accepted_kinds >> node->value.kind & 1) == 0) {
    post_error("Cannot set value to the parameter: '" + in_parameter(block, parameter) +
               "Incompatible value type.");
    return false;
  }
  node->value = value;
  return true;
}

bool MODEL::set_unsigned(const char* block, const char* parameter, unsigned long value,
                         unsigned base, int unit) {
  static const std::map<unsigned, int> k_kinds = {{2, 3}, {8, 1}, {10, 0}, {16, 2}};
  const auto kind = k_kinds.find(base);
  VALUE record;
  record.kind = kind == k_kinds.end() ? 0 : kind->second;
  record.number = static_cast<double>(value);
  record.unit = unit;
  if (!set(block, parameter, record, k_numbers_and_lists)) return false;
  if (kind == k_kinds.end()) {
    post_warning("Specified base for the unsigned integer is not supported. Use default base (10)");
  }
  return true;
}

bool MODEL::set_double(const char* block, const char* parameter, double value, int unit) {
  VALUE record;
  record.kind = 4;
  record.number = value;
  record.unit = unit;
  return set(block, parameter, record, k_numbers_and_lists);
}

bool MODEL::set_flag(const char* block, const char* parameter, int value) {
  VALUE record;
  record.kind = 5;
  record.flag = value;
  return set(block, parameter, record, k_booleans);
}

bool MODEL::set_text(const char* block, const char* parameter, const std::string& value) {
  VALUE record;
  record.kind = 6;
  record.text = value;
  return set(block, parameter, record, k_strings);
}

bool MODEL::set_any(const char* block, const char* parameter, const VALUE& value) {
  return set(block, parameter, value,
             value.kind == 5   ? k_booleans
             : value.kind == 6 ? k_strings
                               : k_numbers_and_lists);
}

bool MODEL::set_references(const char* block, const char* parameter, const NAMES& names) {
  NODE* block_node = nullptr;
  NODE* node = nullptr;
  if (!check(block, parameter, KIND::REFERENCE, &block_node, &node)) return false;
  std::vector<ELEMENT> elements;
  for (const std::string& name : names) {
    NODE* const target = find(name);
    if (target == nullptr) {
      post_error("Cannot set value to the parameter: '" + in_parameter(block, parameter) +
                 "Invalid input reference value.");
      return false;
    }
    elements.push_back({name, target, 0});
  }
  if (node == nullptr) node = add(block_node, KIND::REFERENCE, parameter);
  node->elements = std::move(elements);
  return true;
}

bool MODEL::set_attribute(const char* block, const char* parameter,
                          const std::vector<ATTRIBUTE>& attributes) {
  if (block == nullptr || parameter == nullptr) {
    post_error("Cannot set the attribute. NULL block/parameter name");
    return false;
  }
  const std::string prefix =
      "Cannot set the attribute to the parameter: '" + in_parameter(block, parameter);
  NODE* const node = find(std::string(block) + "." + parameter);
  if (node == nullptr || node->kind == KIND::BLOCK) {
    post_error(prefix + "Parameter is not defined.");
    return false;
  }
  if (node->kind == KIND::REFERENCE) {
    post_error(prefix + "Parameter can not be associated with attributes.");
    return false;
  }
  node->attributes = attributes;
  return true;
}

void MODEL::delete_attribute(const char* block, const char* parameter) {
  if (block == nullptr || parameter == nullptr) {
    post_warning("Cannot delete attributes. NULL block/parameter name");
    return;
  }
  const std::string prefix =
      "Cannot delete attributes of the parameter: '" + in_parameter(block, parameter);
  NODE* const node = find(std::string(block) + "." + parameter);
  if (node == nullptr || node->kind == KIND::BLOCK) {
    post_warning(prefix + "Parameter is not defined.");
  } else if (node->kind == KIND::REFERENCE) {
    post_warning(prefix + "Parameter can not be associated with attributes.");
  } else {
    node->attributes.clear();
  }
}

void MODEL::delete_parameter(const char* block, const char* parameter) {
  if (block == nullptr || parameter == nullptr) {
    post_warning("Cannot delete parameter. NULL block/parameter name");
    return;
  }
  NODE* const node = find(std::string(block) + "." + parameter);
  if (node == nullptr) return;
  const std::string prefix =
      std::string("Cannot delete parameter: '") + parameter + "' from block: '" + block + "'. ";
  if (node->kind == KIND::BLOCK) {
    post_warning(prefix + "Parameter does not exist.");
  } else if (is_referenced(node)) {
    post_error(prefix + "Parameter is being used (referenced) by other block/parameter");
  } else {
    remove(node);
  }
}

bool MODEL::create_block(const char* type, const char* name, const char* parent) {
  if (type == nullptr || name == nullptr) {
    post_error("Cannot create block. NULL block name or block type name.");
    return false;
  }
  if (!is_valid_name(name)) {
    post_error("Cannot create block. Illegal block name.");
    return false;
  }
  std::string prefix =
      std::string("Cannot create a block: '") + name + "' with type: '" + type + "' ";
  if (parent != nullptr) {
    prefix += std::string("within the parenet block: '") + parent + "'. ";
  } else {
    prefix += "at top-level. ";
  }
  const int number = type_number(type);
  if (number == 7) {
    post_error(prefix + "Invaid block type.");
    return false;
  }
  NODE* const scope = parent == nullptr ? nullptr : find(parent);
  if (parent != nullptr && (scope == nullptr || scope->kind != KIND::BLOCK)) {
    post_error(prefix + "Parent block does not exist.");
    return false;
  }
  if (parent == nullptr && number != 0) {
    post_error(prefix + "Invalid block hierarchy.");
    return false;
  }
  const NODE* const present = resolve(name, scope);
  if (present != nullptr && present->kind == KIND::BLOCK) {
    post_error(prefix + "Block already exists.");
    return false;
  }
  add(scope, KIND::BLOCK, name)->type = type;
  return true;
}

void MODEL::delete_block(const char* name) {
  if (name == nullptr) {
    m_internal_errors.emplace_back("block_ref_name != NULL");
    return;
  }
  NODE* const node = find(name);
  if (node == nullptr) return;
  const std::string prefix = std::string("Cannot delete block: '") + name + "'. ";
  if (node->kind != KIND::BLOCK) {
    post_warning(prefix + "Specified block does not exist.");
  } else if (is_referenced(node)) {
    post_error(prefix + "Block is being used (referenced) by other block/parameter");
  } else {
    remove(node);
  }
}

bool MODEL::rename(const char* old_name, const char* new_name, const char* scope) {
  if (old_name == nullptr || new_name == nullptr) return false;
  const std::string prefix = scope == nullptr ? "" : std::string(scope) + ".";
  if (find(prefix + new_name) != nullptr) return false;
  NODE* const node = find(prefix + old_name);
  if (node == nullptr || !is_valid_name(new_name)) return false;
  node->name = new_name;
  node->line = 0;
  node->entered = ++m_clock;
  return true;
}

bool MODEL::move_member(const char* name, const char* sibling, bool is_behind) {
  if (name == nullptr || sibling == nullptr) return false;
  NODE* const node = find(name);
  NODE* const other = find(sibling);
  if (node == nullptr || other == nullptr || node == other) return false;
  if (node->parent != other->parent) return false;
  SIBLINGS& siblings = siblings_of(node);
  const auto place_of = [&siblings](const NODE* wanted) {
    return std::find_if(siblings.begin(), siblings.end(),
                        [wanted](const auto& member) { return member.get() == wanted; });
  };
  auto place = place_of(other);
  if (is_behind) ++place;
  siblings.splice(place, siblings, place_of(node));
  return true;
}

// ---- Writing -----------------------------------------------------------------------------------

std::string MODEL::write(const VALUE& value) {
  static const char* const k_units[] = {"", "K", "M", "G", "Hz", "MHz"};
  std::string text;
  std::uint32_t integer = 0;
  if (value.kind < 4) {
    integer = static_cast<std::uint32_t>(std::fmod(std::trunc(value.number), 4294967296.0));
  }
  switch (value.kind) {
    case 0:
      text = digits(integer, 10);
      break;
    case 1:
      text = "0" + digits(integer, 8);
      break;
    case 2:
      text = "0x" + digits(integer, 16);
      break;
    case 3:
      text = "0b" + digits(integer, 2);
      break;
    case 4:
      text = decimals(value.number);
      break;
    case 5:
      text = value.flag == 1 ? "true" : "false";
      break;
    case 6:
      text = value.text;
      break;
    default:
      text = "{";
      for (std::size_t i = 0; i < value.elements.size(); i++) {
        if (i > 0) text += ",";
        text += write(value.elements[i]);
      }
      text += "}";
      break;
  }
  return text + k_units[value.unit];
}

void MODEL::write(std::string& text, const SIBLINGS& siblings, unsigned level) const {
  const std::string prefix(std::size_t{4} * level, ' ');
  for (const auto& node : siblings) {
    text += prefix;
    if (node->kind == KIND::COMMENT) {
      text += *node->comment;
      continue;
    }
    if (node->kind == KIND::BLOCK) {
      text += node->type + " " + node->name + "\n" + prefix + "{\n";
      write(text, node->members, level + 1);
      text += prefix + "}\n\n";
      continue;
    }
    text += node->name;
    if (node->kind == KIND::PARAMETER) {
      text += " = " + write(node->value);
      for (std::size_t i = 0; i < node->attributes.size(); i++) {
        text += i == 0 ? " [" : ",";
        text += node->attributes[i].key;
        if (node->attributes[i].value) text += " " + *node->attributes[i].value;
      }
      if (!node->attributes.empty()) text += "]";
      text += "; ";
    } else {
      text += " < ";
      for (std::size_t i = 0; i < node->elements.size(); i++) {
        if (i > 0) text += ", ";
        text += node->elements[i].name;
      }
      text += " >;";
    }
    text += node->comment ? "\t" + *node->comment : "\n";
  }
}

std::string MODEL::write() const {
  std::string text;
  write(text, m_top, 0);
  return text;
}

// ---- Reading back ------------------------------------------------------------------------------

bool MODEL::resolves_as_text(const ELEMENT& element, const NODE* statement) const {
  if (!is_qualified(element.name) && !is_identifier(element.name)) return false;
  const bool is_relative = element.name[0] == '.';
  return find(is_relative ? full_name(statement->parent) + element.name : element.name) != nullptr;
}

bool MODEL::is_readable(const SIBLINGS& siblings, const NODE* parent) const {
  std::set<std::string> names;
  for (const auto& node : siblings) {
    if (node->kind == KIND::COMMENT) continue;
    if (!is_declarable(node->name) || !names.insert(lower(node->name)).second) return false;
    if (node->kind == KIND::BLOCK) {
      const bool is_device = type_number(node->type) == 0;
      if (is_device != (parent == nullptr) || node->members.empty()) return false;
      if (!is_readable(node->members, node.get())) return false;
    } else if (node->kind == KIND::PARAMETER) {
      if (!is_readable_value(node->value)) return false;
      for (const ATTRIBUTE& attribute : node->attributes) {
        if (!is_identifier(attribute.key)) return false;
        if (attribute.value && !is_qualified(*attribute.value)) return false;
      }
    } else {
      if (node->elements.empty()) return false;
      for (const ELEMENT& element : node->elements) {
        if (!resolves_as_text(element, node.get())) return false;
      }
    }
  }
  return true;
}

bool MODEL::is_readable() const {
  return is_readable(m_top, nullptr);
}

// ---- The library's document --------------------------------------------------------------------

void MODEL::import(const SBD_FILE_PARSER& document) {
  m_top.clear();
  m_clock = 0;
  NODE_MAP map;
  import_siblings(m_top, nullptr, document.get_parser_para().root, map);
  for (const auto& [source, node] : map) {
    if (node->kind != KIND::REFERENCE) continue;
    const auto* element = source->statement->reference;
    for (ELEMENT& wanted : node->elements) {
      wanted.target = map.at(element->target);
      element = element->next;
    }
  }
  for (const SBD_SYMBOL* head : *document.get_parser_para().symbol_table) {
    std::vector<NODE*> chain;
    for (; head != nullptr; head = head->next) chain.push_back(map.at(head->node));
    for (auto node = chain.rbegin(); node != chain.rend(); ++node) (*node)->entered = ++m_clock;
  }
}

std::string MODEL::compare(const SBD_FILE_PARSER& document) const {
  NODE_MAP map;
  const std::string fault = pair_siblings(m_top, document.get_parser_para().root, map);
  if (!fault.empty()) return fault;

  std::vector<std::vector<const NODE*>> chains(k_bucket_count);
  for (const auto& [source, node] : map) {
    if (node->kind == KIND::REFERENCE) {
      const std::string difference = compare_targets(source, *node, map);
      if (!difference.empty()) return difference;
    }
    if (node->kind != KIND::COMMENT) chains[bucket_of(node->name)].push_back(node);
  }
  for (unsigned bucket = 0; bucket < k_bucket_count; bucket++) {
    std::sort(chains[bucket].begin(), chains[bucket].end(),
              [](const NODE* a, const NODE* b) { return a->entered > b->entered; });
    const SBD_SYMBOL* symbol = (*document.get_parser_para().symbol_table)[bucket];
    for (const NODE* const node : chains[bucket]) {
      if (symbol == nullptr) return "no symbol for " + node->name;
      const auto found = map.find(symbol->node);
      if (found == map.end() || found->second != node) {
        return std::string("symbol ") + symbol->name + " where " + node->name + " should be";
      }
      if (symbol_of(found->first) != symbol) return "symbol of " + node->name;
      if (symbol->name != node->name) return "name of " + node->name;
      if (symbol->line != node->line) return "line of " + node->name;
      if ((symbol->type == SBD_SYMBOL::SYM_BLOCK) != (node->kind == KIND::BLOCK)) {
        return "symbol type of " + node->name;
      }
      const auto scope = map.find(symbol->parent);
      if (scope == map.end() || scope->second != (node->parent ? node->parent : node)) {
        return "scope of " + node->name;
      }
      symbol = symbol->next;
    }
    if (symbol != nullptr) return std::string("a symbol too many: ") + symbol->name;
  }
  return "";
}

}  // namespace second_model
