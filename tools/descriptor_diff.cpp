#include "tools/descriptor_diff.h"

#include <algorithm>
#include <map>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "tools/names.h"
#include "tools/notation.h"
#include "tools/parameter_kind.h"
#include "tools/tree_pairing.h"
#include "tools/value_meaning.h"

namespace sbd_tool {

namespace {

using KIND = DIFFERENCE::KIND;
using WHAT = DIFFERENCE::WHAT;

bool is_block(const NODE& node) {
  return node.type == NODE::NT_BLOCK;
}

bool is_reference(const NODE& node) {
  return !is_block(node) && node.statement->type == STATEMENT::ST_REFERENCE;
}

std::string join(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) joined.append(joined.empty() ? "" : ", ").append(text);
  return joined;
}

// What a statement says, as a reader of the file would put it.
std::string show_statement(const SBD_FILE_PARSER& document, const NODE& node) {
  if (!is_reference(node)) return get_notation(document, *node.statement->value);
  std::vector<std::string> targets;
  for (const auto* reference = node.statement->reference; reference != nullptr;
       reference = reference->next) {
    targets.push_back(full_name(document, *reference->target));
  }
  return "<" + join(targets) + ">";
}

std::string show(const SBD_FILE_PARSER& document, const NODE& node) {
  return is_block(node) ? std::string(node.block->type) : show_statement(document, node);
}

// A name's letter case, the notation of values, and the order of attributes.
std::string show_spelling(const SBD_FILE_PARSER& document, const NODE& node) {
  std::string text(declared_name(node));
  if (is_block(node)) return std::string(node.block->type) + " " + text;
  text += is_reference(node) ? " " : " = ";
  text += get_written(document, node);
  if (is_reference(node)) return text;
  for (const auto* attribute = node.statement->attributes; attribute != nullptr;
       attribute = attribute->next) {
    text.append(" [").append(attribute->attr_key);
    if (attribute->attr_value != nullptr) text.append(" ").append(attribute->attr_value);
    text += "]";
  }
  return text;
}

std::string trim_line_end(std::string_view text) {
  return std::string(text.substr(0, text.find_last_not_of("\r\n") + 1));
}

// The comments that stand on lines of their own in a block.
std::string show_comments(const NODE* first) {
  std::string text;
  for (const NODE* node = first; node != nullptr; node = node->next) {
    if (node->type != NODE::NT_COMMENT) continue;
    text.append(text.empty() ? "" : "\n").append(trim_line_end(node->comment));
  }
  return text;
}

std::string show_comment_behind(const NODE& node) {
  const bool has_comment = !is_block(node) && node.statement->comment != nullptr;
  return has_comment ? trim_line_end(node.statement->comment) : std::string();
}

// A difference, with what it takes to see whether it is one to the device.
struct NOTED {
  DIFFERENCE difference;
  const NODE* old_node;
  const NODE* new_node;
  bool is_dropped = false;
};

class DIFF {
 public:
  DIFF(DESCRIPTOR& old_descriptor, DESCRIPTOR& new_descriptor, bool is_strict)
      : m_old_descriptor(old_descriptor),
        m_new_descriptor(new_descriptor),
        m_old(old_descriptor.document),
        m_new(new_descriptor.document),
        m_pairing(m_old.get_parser_para().root, m_new.get_parser_para().root),
        m_is_strict(is_strict) {}

  DESCRIPTOR_DIFF make() {
    if (m_is_strict) compare_members(m_old.get_parser_para().root, m_new.get_parser_para().root);
    for (const NODE_PAIR& pair : m_pairing.pairs()) compare(pair);
    compare_devices();
    drop_blocks_without_difference();
    for (NOTED& noted : m_noted) {
      if (!noted.is_dropped) m_diff.differences.push_back(std::move(noted.difference));
    }
    return std::move(m_diff);
  }

 private:
  // ---- The trees ----

  void compare(const NODE_PAIR& pair) {
    if (pair.old_node == nullptr || pair.new_node == nullptr) {
      note_single(pair);
    } else if (is_block(*pair.old_node)) {
      compare_blocks(*pair.old_node, *pair.new_node);
    } else {
      compare_statements(*pair.old_node, *pair.new_node);
    }
  }

  void note(KIND kind, WHAT what, const NODE* old_node, const NODE* new_node, std::string old_text,
            std::string new_text) {
    const std::string name =
        new_node != nullptr ? full_name(m_new, *new_node) : full_name(m_old, *old_node);
    m_noted.push_back({{kind, what, name, std::move(old_text), std::move(new_text),
                        place_of(m_old, old_node), place_of(m_new, new_node)},
                       old_node,
                       new_node});
  }

  void note_single(const NODE_PAIR& pair) {
    const bool is_new = pair.old_node == nullptr;
    const NODE& node = is_new ? *pair.new_node : *pair.old_node;
    const std::string text = show(is_new ? m_new : m_old, node);
    note(is_new ? KIND::ADDED : KIND::REMOVED, is_block(node) ? WHAT::BLOCK : WHAT::PARAMETER,
         pair.old_node, pair.new_node, is_new ? "" : text, is_new ? text : "");
  }

  void compare_texts(WHAT what, const NODE& old_node, const NODE& new_node, std::string old_text,
                     std::string new_text) {
    if (old_text == new_text) return;
    note(KIND::CHANGED, what, &old_node, &new_node, std::move(old_text), std::move(new_text));
  }

  void compare_blocks(const NODE& old_node, const NODE& new_node) {
    if (fold_case(declared_name(old_node)) != fold_case(declared_name(new_node))) {
      note(KIND::RENAMED, WHAT::NAME, &old_node, &new_node, full_name(m_old, old_node),
           full_name(m_new, new_node));
    } else if (m_is_strict) {
      compare_texts(WHAT::SPELLING, old_node, new_node, show_spelling(m_old, old_node),
                    show_spelling(m_new, new_node));
    }
    if (old_node.block->block_type != new_node.block->block_type) {
      compare_texts(WHAT::TYPE, old_node, new_node, old_node.block->type, new_node.block->type);
    }
    if (!m_is_strict) return;
    compare_texts(WHAT::COMMENT, old_node, new_node, show_comments(old_node.block->members),
                  show_comments(new_node.block->members));
    compare_order(&old_node, &new_node, old_node.block->members, new_node.block->members);
  }

  void compare_statements(const NODE& old_node, const NODE& new_node) {
    const bool is_same = has_same_meaning(old_node, new_node);
    if (!is_same) {
      note(KIND::CHANGED, WHAT::VALUE, &old_node, &new_node, show_statement(m_old, old_node),
           show_statement(m_new, new_node));
    }
    const std::string old_attributes = get_attribute_meaning(old_node);
    const std::string new_attributes = get_attribute_meaning(new_node);
    compare_texts(WHAT::ATTRIBUTES, old_node, new_node, old_attributes, new_attributes);
    if (!m_is_strict) return;
    if (is_same && old_attributes == new_attributes) {
      compare_texts(WHAT::SPELLING, old_node, new_node, show_spelling(m_old, old_node),
                    show_spelling(m_new, new_node));
    }
    compare_texts(WHAT::COMMENT, old_node, new_node, show_comment_behind(old_node),
                  show_comment_behind(new_node));
  }

  bool has_same_meaning(const NODE& old_node, const NODE& new_node) const {
    if (is_reference(old_node) != is_reference(new_node)) return false;
    if (!is_reference(old_node)) {
      return get_meaning(*old_node.statement->value) == get_meaning(*new_node.statement->value);
    }
    const auto* old_reference = old_node.statement->reference;
    const auto* new_reference = new_node.statement->reference;
    for (; old_reference != nullptr && new_reference != nullptr;
         old_reference = old_reference->next, new_reference = new_reference->next) {
      if (m_pairing.counterpart(old_reference->target) != new_reference->target) return false;
    }
    return old_reference == nullptr && new_reference == nullptr;
  }

  // The top level has no node of its own.
  void compare_members(const NODE* old_first, const NODE* new_first) {
    const std::string old_comments = show_comments(old_first);
    const std::string new_comments = show_comments(new_first);
    if (old_comments != new_comments) {
      m_noted.push_back({{KIND::CHANGED, WHAT::COMMENT, "", old_comments, new_comments, {}, {}},
                         nullptr,
                         nullptr});
    }
    compare_order(nullptr, nullptr, old_first, new_first);
  }

  // Whether those that are in both blocks stand in the same order.
  void compare_order(const NODE* old_block, const NODE* new_block, const NODE* old_first,
                     const NODE* new_first) {
    std::vector<const NODE*> expected;
    std::vector<std::string> old_names;
    std::vector<std::string> new_names;
    for (const NODE* node = old_first; node != nullptr; node = node->next) {
      const NODE* const counterpart = m_pairing.counterpart(node);
      if (counterpart == nullptr) continue;
      expected.push_back(counterpart);
      old_names.emplace_back(declared_name(*node));
    }
    const std::unordered_set<const NODE*> paired(expected.begin(), expected.end());
    std::vector<const NODE*> actual;
    for (const NODE* node = new_first; node != nullptr; node = node->next) {
      if (paired.count(node) == 0) continue;
      actual.push_back(node);
      new_names.emplace_back(declared_name(*node));
    }
    if (actual == expected) return;
    DIFFERENCE difference = {KIND::CHANGED,   WHAT::ORDER, "", join(old_names),
                             join(new_names), {},          {}};
    if (new_block != nullptr) difference.name = full_name(m_new, *new_block);
    difference.old_place = place_of(m_old, old_block);
    difference.new_place = place_of(m_new, new_block);
    m_noted.push_back({std::move(difference), old_block, new_block});
  }

  // ---- The devices ----

  void compare_devices() {
    index_values();
    for (const std::string& name : list_devices(m_old)) {
      const NODE* const block = find_node(m_old, name, nullptr);
      const NODE* const counterpart = block != nullptr ? m_pairing.counterpart(block) : nullptr;
      if (counterpart == nullptr) continue;
      compare_device(take_snapshot(m_old_descriptor, name),
                     take_snapshot(m_new_descriptor, full_name(m_new, *counterpart)));
    }
  }

  void index_values() {
    for (NOTED& noted : m_noted) {
      if (!is_about_value(noted.difference)) continue;
      if (noted.old_node != nullptr) m_values[noted.old_node] = &noted;
      if (noted.new_node != nullptr) m_values[noted.new_node] = &noted;
    }
  }

  void compare_device(const DEVICE_SNAPSHOT& old_device, const DEVICE_SNAPSHOT& new_device) {
    std::vector<EFFECT> parameters = compare_parameters(old_device, new_device);
    std::map<std::string, const EFFECT*> changed;
    for (const EFFECT& effect : parameters) changed[effect.name] = &effect;
    std::unordered_set<std::string> told;
    const bool is_device_level = old_device.has_parameters && new_device.has_parameters;
    for (const auto& [noted, parameter] : list_stated(old_device, new_device)) {
      const auto effect = changed.find(parameter);
      if (effect != changed.end()) {
        tell_device_values(noted->difference, *effect->second);
        told.insert(parameter);
      } else if (is_device_level && !m_is_strict) {
        noted->is_dropped = true;
      }
    }
    DEVICE_DIFFERENCE device = {new_device.name, {}};
    for (EFFECT& effect : parameters) {
      if (told.count(effect.name) == 0) device.effects.push_back(std::move(effect));
    }
    for (EFFECT& effect : compare_derived(old_device, new_device)) {
      device.effects.push_back(std::move(effect));
    }
    if (!device.effects.empty()) m_diff.devices.push_back(std::move(device));
  }

  static bool is_about_value(const DIFFERENCE& difference) {
    return difference.what == WHAT::VALUE || difference.what == WHAT::PARAMETER;
  }

  // What counts instead of a statement that is not there.
  static void tell_device_values(DIFFERENCE& difference, const EFFECT& effect) {
    if (difference.kind == KIND::ADDED) difference.old_text = effect.old_text;
    if (difference.kind == KIND::REMOVED) difference.new_text = effect.new_text;
  }

  // The differences about values of the device's parameters, with the names of these.
  std::map<NOTED*, std::string> list_stated(const DEVICE_SNAPSHOT& old_device,
                                            const DEVICE_SNAPSHOT& new_device) const {
    std::map<NOTED*, std::string> stated;
    for (const DEVICE_SNAPSHOT* const device : {&old_device, &new_device}) {
      for (const auto& [node, parameter] : device->stated) {
        const auto value = m_values.find(node);
        if (value != m_values.end()) stated.emplace(value->second, parameter);
      }
    }
    return stated;
  }

  // ---- Blocks around what makes no difference ----

  // A block that was added or removed makes no difference itself if nothing is in it that does.
  // From the last one back, what is in a block is looked at before the block.
  void drop_blocks_without_difference() {
    std::unordered_map<const NODE*, const NOTED*> singles;
    for (const NOTED& noted : m_noted) {
      if (is_single(noted)) singles[node_of(noted)] = &noted;
    }
    for (auto noted = m_noted.rbegin(); noted != m_noted.rend(); ++noted) {
      if (!is_single(*noted) || !is_block(*node_of(*noted))) continue;
      noted->is_dropped = has_dropped_members_only(*node_of(*noted), singles);
    }
  }

  static bool is_single(const NOTED& noted) {
    return noted.difference.kind == KIND::ADDED || noted.difference.kind == KIND::REMOVED;
  }
  static const NODE* node_of(const NOTED& noted) {
    return noted.new_node != nullptr ? noted.new_node : noted.old_node;
  }

  static bool has_dropped_members_only(
      const NODE& block, const std::unordered_map<const NODE*, const NOTED*>& singles) {
    bool has_members = false;
    for (const NODE* node = block.block->members; node != nullptr; node = node->next) {
      if (node->type == NODE::NT_COMMENT) continue;
      if (!singles.at(node)->is_dropped) return false;
      has_members = true;
    }
    return has_members;
  }

  DESCRIPTOR& m_old_descriptor;
  DESCRIPTOR& m_new_descriptor;
  const SBD_VELDRAN& m_old;
  const SBD_VELDRAN& m_new;
  TREE_PAIRING m_pairing;
  bool m_is_strict;
  std::vector<NOTED> m_noted;
  std::unordered_map<const NODE*, NOTED*> m_values;  // Of m_noted, those about values.
  DESCRIPTOR_DIFF m_diff;
};

}  // namespace

DESCRIPTOR_DIFF compare_descriptors(DESCRIPTOR& old_descriptor, DESCRIPTOR& new_descriptor,
                                    bool is_strict) {
  return DIFF(old_descriptor, new_descriptor, is_strict).make();
}

std::string_view name_of(DIFFERENCE::KIND kind) {
  switch (kind) {
    case KIND::ADDED:
      return "added";
    case KIND::REMOVED:
      return "removed";
    case KIND::CHANGED:
      return "changed";
    case KIND::RENAMED:
      break;
  }
  return "renamed";
}

std::string_view name_of(DIFFERENCE::WHAT what) {
  switch (what) {
    case WHAT::BLOCK:
      return "block";
    case WHAT::PARAMETER:
      return "parameter";
    case WHAT::TYPE:
      return "type";
    case WHAT::VALUE:
      return "value";
    case WHAT::ATTRIBUTES:
      return "attributes";
    case WHAT::NAME:
      return "name";
    case WHAT::SPELLING:
      return "spelling";
    case WHAT::COMMENT:
      return "comment";
    case WHAT::ORDER:
      break;
  }
  return "order";
}

}  // namespace sbd_tool
