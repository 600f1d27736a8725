// Long random sequences of edits, done by the library and by a second model; after each step both
// must have given the same result, posted the same messages and hold the same text.
//
// SBD_TEST_SCALE multiplies the number of sequences.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sbd/sbd_file_parser.h"
#include "tests/access/access_support.h"
#include "tests/access/second_model.h"
#include "tests/reference/text_generator.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/temporary_files.h"
#include "tests/support/tree_builder.h"

namespace {

using second_model::ATTRIBUTE;
using second_model::ELEMENT;
using second_model::KIND;
using second_model::MODEL;
using second_model::NODE;
using second_model::VALUE;
using NAMES = MODEL::NAMES;
using UNIT = SBD_PARA_VALUE::QUANTITY_UNIT;

// A name that may be null.
using NAME = std::optional<std::string>;

const char* text_of(const NAME& name) {
  return name ? name->c_str() : nullptr;
}

std::string shown(const NAME& name) {
  return name ? "\"" + *name + "\"" : "null";
}

// New names, some of which share one bucket.
const NAMES& name_pool() {
  static const NAMES k_names = [] {
    NAMES names = {"a", "B",     "clk",  "CLK_2",     "region[0]", "map[1][2]", "r[]",
                   "K", "x[12]", "true", "long_name", "Z9",        "device",    "m"};
    for (int i = 0; names.size() < 22; i++) {
      const std::string name = "n" + std::to_string(i);
      if (MODEL::bucket_of(name) == MODEL::bucket_of("a")) names.push_back(name);
    }
    return names;
  }();
  return k_names;
}

// Names enough for blocks of hundreds of members, half of them in one bucket.
const NAMES& large_name_pool() {
  static const NAMES k_names = [] {
    NAMES names;
    for (int i = 0; names.size() < 600; i++) {
      const std::string name = "n" + std::to_string(i);
      if (i < 300 || MODEL::bucket_of(name) == MODEL::bucket_of("a")) names.push_back(name);
    }
    return names;
  }();
  return k_names;
}

const NAMES& illegal_names() {
  static const NAMES k_names = {"", "9x", "a.b", "a-b", "r[0", "r[a]", "_x", "r[0]x", "\xc3\xa4"};
  return k_names;
}

SBD_PARA_VALUE* library_value(const VALUE& value) {
  auto* const record = new SBD_PARA_VALUE;
  record->type = static_cast<SBD_PARA_VALUE::VALUE_TYPE>(value.kind);
  record->unit = static_cast<UNIT>(value.unit);
  if (value.kind <= 4) {
    record->number = value.number;
  } else if (value.kind == 5) {
    record->flag = static_cast<std::uint32_t>(value.flag);
  } else if (value.kind == 6) {
    record->text = sbd_copy_text(value.text.c_str());
  } else {
    record->list = new SBD_VALUE_LIST;
    for (const VALUE& element : value.elements) record->list->push_back(library_value(element));
  }
  return record;
}

class EDIT_SEQUENCE {
 public:
  enum SIZE { SMALL, LARGE };

  explicit EDIT_SEQUENCE(std::uint64_t seed, SIZE size = SMALL)
      : m_random(seed), m_is_clean(seed % 2 == 0), m_is_large(size == LARGE) {}

  // False after the first difference, which has been told.
  bool run(std::size_t step_count) {
    start_over();
    for (std::size_t step = 0; step < step_count; step++) {
      m_nodes = m_model.nodes();
      m_recorder.forget();
      m_model.forget();
      edit();
      if (!agree()) return false;
      if (step % 8 == 0 && !queries_agree()) return false;
      if (step % 32 == 0 && !trees_agree()) return false;
      if (step % 64 == 0 && !reads_back()) return false;
      if (below(600) == 0 || (m_is_clean && m_model.has_lost_targets())) start_over();
    }
    return trees_agree() && reads_back();
  }

  std::size_t accepted() const { return m_accepted; }
  std::size_t refused() const { return m_refused; }
  std::size_t read_back() const { return m_read_back; }

 private:
  // ---- Random choices
  // ----------------------------------------------------------------------------

  std::size_t below(std::size_t limit) { return static_cast<std::size_t>(m_random() % limit); }
  bool chance(std::size_t percent) { return below(100) < percent; }

  template <class LIST>
  const auto& pick(const LIST& list) {
    return list[below(list.size())];
  }

  std::string mixed(std::string name) {
    if (!chance(30)) return name;
    for (char& character : name) {
      const bool is_lower = character >= 'a' && character <= 'z';
      const bool is_upper = character >= 'A' && character <= 'Z';
      if ((is_lower || is_upper) && chance(50)) character = static_cast<char>(character ^ 0x20);
    }
    return name;
  }

  // A random node that `condition` holds for, or null.
  template <class CONDITION>
  NODE* some_node(CONDITION&& condition) {
    for (int tries = 0; tries < 20 && !m_nodes.empty(); tries++) {
      NODE* const node = pick(m_nodes);
      if (condition(*node)) return node;
    }
    return nullptr;
  }

  NODE* some_node() {
    return some_node([](const NODE&) { return true; });
  }
  NODE* some_block() {
    return some_node([](const NODE& node) { return node.kind == KIND::BLOCK; });
  }
  NODE* some_statement() {
    return some_node([](const NODE& node) { return node.kind != KIND::BLOCK; });
  }

  std::string name_of(const NODE* node) {
    return node == nullptr ? "nothing" : mixed(MODEL::full_name(node));
  }

  std::string new_name() { return mixed(pick(m_is_large ? large_name_pool() : name_pool())); }

  NAME odd_name() {
    switch (below(6)) {
      case 0:
        return std::nullopt;
      case 1:
        return pick(illegal_names());
      case 2:
        return name_of(some_node()) + ".";
      case 3:
        return "." + name_of(some_node());
      case 4:
        return name_of(some_block()) + ".." + new_name();
      default:
        return name_of(some_node()) + "." + new_name();
    }
  }

  // The full name of a block, mostly.
  NAME block_name() {
    const std::size_t draw = below(100);
    if (draw < 86) return name_of(some_block());
    if (draw < 90) return name_of(some_statement());
    if (draw < 94) return new_name();
    return odd_name();
  }

  // The full name of anything, mostly.
  NAME object_name() {
    if (chance(92)) return name_of(some_node());
    return odd_name();
  }

  // A block and a parameter in it, mostly; one that is there already as often as `percent` says.
  std::pair<NAME, NAME> parameter_name(std::size_t percent) {
    if (chance(percent)) {
      const NODE* const node = some_statement();
      if (node != nullptr) return split(node);
    }
    const std::size_t draw = below(100);
    if (draw < 80) return {block_name(), new_name()};
    if (draw < 86) return {block_name(), pick(illegal_names())};
    if (draw < 94) {
      const NODE* const node = some_node();
      if (node != nullptr && node->parent != nullptr) return split(node);
    }
    return {block_name(), odd_name()};
  }

  std::pair<NAME, NAME> split(const NODE* node) {
    const NODE* block = node->parent;
    std::string name = node->name;
    while (block->parent != nullptr && chance(4)) {
      name = block->name + "." + name;
      block = block->parent;
    }
    return {mixed(MODEL::full_name(block)), mixed(name)};
  }

  double some_double() {
    switch (below(6)) {
      case 0:
        return static_cast<double>(below(1000));
      case 1:
        return -static_cast<double>(below(1000000)) / 1000;
      case 2:
        return static_cast<double>(m_random() >> 11) * 0x1p-53;
      case 3:
        return static_cast<double>(below(4000)) / 128;
      case 4:
        return std::ldexp(1.0, static_cast<int>(below(200)));
      default:
        return -0.0;
    }
  }

  unsigned long some_integer() {
    static const std::uint64_t k_limits[] = {0, 1, 4294967295, 4294967296, 2147483648, ~0UL};
    const std::uint64_t number = chance(20) ? k_limits[below(6)] : m_random() >> below(64);
    return static_cast<unsigned long>(number);
  }

  int some_unit() { return chance(50) ? 0 : static_cast<int>(below(6)); }

  std::string some_text() {
    static const NAMES k_texts = {"abc",      "\"a b\"", "\"two\nlines\"", "",    "%s%d",
                                  "\"x\"y\"", "TRUE",    "\"\xff\"",       "K_1", "\"# {\"",
                                  "a b",      "_",       "\"\"",           "inf", "\"long\""};
    return pick(k_texts);
  }

  VALUE some_value(int depth) {
    VALUE value;
    value.kind = static_cast<int>(below(depth < 4 ? 8 : 7));
    if (depth == 0 && chance(30)) value.kind = 7;
    if (value.kind < 4) {
      value.number = static_cast<double>(static_cast<std::uint32_t>(some_integer()));
      value.unit = some_unit();
    } else if (value.kind == 4) {
      value.number = some_double();
      value.unit = some_unit();
    } else if (value.kind == 5) {
      value.flag = chance(90) ? static_cast<long>(below(2)) : 2;
    } else if (value.kind == 6) {
      value.text = some_text();
    } else {
      if (chance(5)) value.unit = some_unit();
      const std::size_t count = chance(85) ? 2 + below(3) : below(2);
      for (std::size_t i = 0; i < count; i++) value.elements.push_back(some_value(depth + 1));
    }
    return value;
  }

  // ---- Edits
  // -------------------------------------------------------------------------------------

  void start_over() {
    if (m_is_large) {
      const std::string text = large_text();
      EXPECT_TRUE(read_text(m_document, text)) << text;
      note("large_text");
    } else if (chance(25)) {
      m_document.clear();
      note("clear");
    } else {
      const std::uint64_t seed = m_random();
      const std::size_t count = 1 + below(60);
      const std::string text = generate_descriptor(seed, count, VALIDITY::SEMANTICS);
      EXPECT_TRUE(read_text(m_document, text)) << text;
      note("generate_descriptor " + std::to_string(seed) + " " + std::to_string(count));
    }
    m_model.import(m_document);
    m_nodes = m_model.nodes();
  }

  // Some large blocks, one in the other or side by side.
  std::string large_text() {
    std::string text = "device d { p = 1; ";
    const std::size_t count = 1 + below(3);
    bool is_nested = false;
    for (std::size_t i = 0; i < count; i++) {
      if (i > 0) is_nested = chance(50);
      if (i > 0 && !is_nested) text += "} ";
      text += "bus b" + std::to_string(i) + " { q = 1; ";
      for (const std::string& name : large_name_pool()) {
        if (chance(35)) text += name + (chance(90) ? " = 1; " : " < d.p >; ");
      }
      if (is_nested) text += "} ";
    }
    return text + "} }";
  }

  void edit() {
    // References to what is gone mostly go soon, since they keep some edits from being compared.
    if (chance(30) && m_model.has_lost_targets() && heal()) return;
    const bool is_full = m_nodes.size() > (m_is_large ? 900 : 120);
    const std::size_t draw = below(100);
    if (draw < 12) {
      is_full ? delete_parameter() : set_unsigned();
    } else if (draw < 17) {
      set_double();
    } else if (draw < 22) {
      set_flag();
    } else if (draw < 27) {
      set_text();
    } else if (draw < 39) {
      set_references();
    } else if (draw < 45) {
      set_any();
    } else if (draw < 51) {
      set_attribute();
    } else if (draw < 53) {
      delete_attribute();
    } else if (draw < 62) {
      delete_parameter();
    } else if (draw < 71) {
      is_full ? delete_block() : create_block();
    } else if (draw < 75) {
      delete_block();
    } else if (draw < 87) {
      rename();
    } else if (draw < 91) {
      delete_reference();
    } else if (draw < 94 && !m_is_clean) {
      add_by_hand();
    } else if (draw < 95 && !m_is_clean) {
      delete_by_hand();
    } else {
      move_member();
    }
  }

  void compare_results(bool model, bool library) {
    EXPECT_EQ(library, model);
    ++(model ? m_accepted : m_refused);
  }

  void set_unsigned() {
    static const unsigned char k_bases[] = {2, 8, 10, 16, 10, 16, 0, 3};
    const auto [block, parameter] = parameter_name(50);
    const unsigned long value = some_integer();
    const unsigned char base = k_bases[below(8)];
    const int unit = some_unit();
    note("set_value", {block, parameter},
         std::to_string(value) + " base " + std::to_string(base) + " unit " + std::to_string(unit));
    compare_results(m_model.set_unsigned(text_of(block), text_of(parameter), value, base, unit),
                    m_document.set_value(text_of(block), text_of(parameter), value, base,
                                         static_cast<UNIT>(unit)));
  }

  void set_double() {
    const auto [block, parameter] = parameter_name(50);
    const double value = some_double();
    const int unit = some_unit();
    note("set_value", {block, parameter}, std::to_string(value) + " unit " + std::to_string(unit));
    compare_results(
        m_model.set_double(text_of(block), text_of(parameter), value, unit),
        m_document.set_value(text_of(block), text_of(parameter), value, static_cast<UNIT>(unit)));
  }

  void set_flag() {
    const auto [block, parameter] = parameter_name(40);
    const int value = chance(85) ? static_cast<int>(below(2)) : static_cast<int>(m_random() >> 32);
    note("set_value", {block, parameter}, "flag " + std::to_string(value));
    compare_results(m_model.set_flag(text_of(block), text_of(parameter), value),
                    m_document.set_value(text_of(block), text_of(parameter), value));
  }

  void set_text() {
    const auto [block, parameter] = parameter_name(40);
    const std::string value = some_text();
    note("set_value", {block, parameter}, "text " + value);
    compare_results(
        m_model.set_text(text_of(block), text_of(parameter), value),
        m_document.set_value(text_of(block), text_of(parameter), SBD_STRING(value.c_str())));
  }

  void set_references() {
    const auto [block, parameter] = parameter_name(30);
    set_references(block, parameter);
  }

  void set_references(const NAME& block, const NAME& parameter) {
    NAMES names;
    std::string list;
    const std::size_t count = chance(95) ? 1 + below(4) : 0;
    for (std::size_t i = 0; i < count; i++) {
      const NAME name = object_name();
      names.push_back(chance(2) ? new_name() : name ? *name : name_of(some_node()));
      list += " " + names.back();
    }
    note("set_value", {block, parameter}, "references" + list);
    compare_results(m_model.set_references(text_of(block), text_of(parameter), names),
                    m_document.set_value(text_of(block), text_of(parameter), string_list(names)));
  }

  void set_any() {
    const auto [block, parameter] = parameter_name(50);
    const VALUE value = some_value(0);
    note("set_para_value", {block, parameter}, MODEL::write(value));
    SBD_PARA_VALUE* const copy = library_value(value);
    compare_results(m_model.set_any(text_of(block), text_of(parameter), value),
                    m_document.set_para_value(text_of(block), text_of(parameter), *copy));
    m_document.free_para_val(copy);
  }

  void set_attribute() {
    static const NAMES k_keys = {"key", "K", "unit", "Limit_1", "true", "a b"};
    static const NAMES k_values = {"a.b", ".x", "clocks.pll[0]", "..", "plain", ""};
    const auto [block, parameter] = parameter_name(80);
    std::vector<ATTRIBUTE> attributes;
    SBD_PARA_ATTR* first = nullptr;
    SBD_PARA_ATTR** link = &first;
    std::string list;
    for (std::size_t count = below(4); count > 0; count--) {
      attributes.push_back({k_keys[below(chance(90) ? 4 : 6)], std::nullopt});
      if (chance(60)) attributes.back().value = k_values[below(chance(90) ? 3 : 6)];
      const ATTRIBUTE& attribute = attributes.back();
      *link = make_attributes(
          {{attribute.key.c_str(), attribute.value ? attribute.value->c_str() : nullptr}});
      link = &(*link)->next;
      list += " " + attribute.key + (attribute.value ? " " + *attribute.value : "") + ",";
    }
    note("set_attribute", {block, parameter}, list);
    compare_results(m_model.set_attribute(text_of(block), text_of(parameter), attributes),
                    m_document.set_attribute(text_of(block), text_of(parameter), first));
    while (first != nullptr) {
      SBD_PARA_ATTR* const next = first->next;
      sbd_free_text(first->attr_key);
      sbd_free_text(first->attr_value);
      delete first;
      first = next;
    }
  }

  void delete_attribute() {
    const auto [block, parameter] = parameter_name(80);
    note("delete_attribute", {block, parameter});
    m_model.delete_attribute(text_of(block), text_of(parameter));
    m_document.delete_attribute(text_of(block), text_of(parameter));
  }

  // Whether `node` may be taken for one that is gone when references to it are looked for.
  bool is_unclear(const NODE* node) const {
    return node != nullptr && !m_model.is_referenced(node) && m_model.may_be_confused(node);
  }

  void delete_parameter() {
    const auto [block, parameter] = parameter_name(88);
    if (block && parameter && is_unclear(m_model.find(*block + "." + *parameter))) return;
    delete_parameter(block, parameter);
  }

  void delete_parameter(const NAME& block, const NAME& parameter) {
    note("delete_parameter", {block, parameter});
    m_model.delete_parameter(text_of(block), text_of(parameter));
    m_document.delete_parameter(text_of(block), text_of(parameter));
  }

  void create_block() {
    static const NAMES k_types = {"bus", "Module", "slave", "MASTER", "region", "parameters"};
    NAME type = pick(k_types);
    NAME parent = block_name();
    if (chance(12)) parent = std::nullopt;
    if (!parent && chance(80)) type = "Device";
    if (chance(4)) type = "unknown";
    if (chance(2)) type = std::nullopt;
    NAME name = new_name();
    if (chance(5)) name = odd_name();
    if (chance(10)) {
      if (const NODE* const node = some_statement()) {
        std::tie(parent, name) = std::pair(name_of(node->parent), mixed(node->name));
      }
    }
    note("create_block", {type, name, parent});
    compare_results(m_model.create_block(text_of(type), text_of(name), text_of(parent)),
                    m_document.create_block(text_of(type), text_of(name), text_of(parent)));
  }

  // Mostly small blocks.
  void delete_block() {
    NODE* block = some_node(
        [](const NODE& node) { return node.kind == KIND::BLOCK && node.members.size() < 4; });
    if (block == nullptr || chance(10)) block = some_block();
    NAME name = name_of(block);
    if (chance(10)) name = object_name();
    if (name && is_unclear(m_model.find(*name))) return;
    if (chance(70)) remove_references_into(block);
    note("delete_block", {name});
    m_model.delete_block(text_of(name));
    m_document.delete_block(text_of(name));
  }

  // Removes references to what is inside, so that none is left without target.
  void remove_references_into(const NODE* block) {
    if (block == nullptr || m_model.has_lost_targets()) return;
    for (const NODE* const node : m_nodes) {
      const NODE* outer = node;
      while (outer != nullptr && outer != block) outer = outer->parent;
      // Each removal may delete statements, among which the nodes that are still to come.
      const std::vector<NODE*> rest = m_model.nodes();
      if (std::find(rest.begin(), rest.end(), block) == rest.end()) return;
      if (outer == nullptr || std::find(rest.begin(), rest.end(), node) == rest.end()) continue;
      if (!m_model.is_referenced(node)) continue;
      const std::string name = MODEL::full_name(node);
      if (m_model.find(name) != node || m_model.has_lost_targets()) return;
      note("delete_reference", {name});
      m_model.delete_reference(name.c_str());
      m_document.delete_reference(name.c_str());
      m_nodes = m_model.nodes();
      return;
    }
  }

  void rename() {
    const NODE* const node = some_node();
    NAME scope;
    NAME old_name = "nothing";
    if (node != nullptr) {
      old_name = mixed(node->name);
      if (node->parent != nullptr) scope = name_of(node->parent);
      if (node->parent != nullptr && chance(5)) {
        old_name = mixed(MODEL::full_name(node));
        scope = std::nullopt;
      }
    }
    NAME name = new_name();
    if (chance(5)) old_name = odd_name();
    if (chance(5)) name = odd_name();
    if (chance(4)) scope = odd_name();
    if (chance(10) && node != nullptr) name = mixed(node->name);
    note("rename", {old_name, name, scope});
    compare_results(m_model.rename(text_of(old_name), text_of(name), text_of(scope)),
                    m_document.rename(text_of(old_name), text_of(name), text_of(scope)));
  }

  void delete_reference() {
    const NODE* target =
        some_node([this](const NODE& node) { return m_model.is_referenced(&node); });
    NAME name = name_of(target);
    if (chance(15)) name = object_name();
    if (!name) return;
    target = m_model.find(*name);
    if (target != nullptr && m_model.may_be_confused(target)) return;
    note("delete_reference", {name});
    m_model.delete_reference(text_of(name));
    m_document.delete_reference(text_of(name));
  }

  void move_member() {
    const NODE* const node = some_node();
    const NODE* const sibling = some_node(
        [node](const NODE& other) { return other.parent == node->parent && &other != node; });
    NAME name = name_of(node);
    NAME sibling_name = name_of(sibling);
    if (chance(6)) name = object_name();
    if (chance(6)) sibling_name = object_name();
    const bool is_behind = chance(50);
    note(is_behind ? "move_member behind" : "move_member before", {name, sibling_name});
    compare_results(m_model.move_member(text_of(name), text_of(sibling_name), is_behind),
                    m_document.move_member(text_of(name), text_of(sibling_name), is_behind));
  }

  // The library's record of a node.
  SBD_NODE* record_of(const NODE* node) {
    const std::string name = MODEL::full_name(node);
    return m_model.find(name) == node ? m_document.get_ref_object(name.c_str(), nullptr) : nullptr;
  }

  // Adds records that the test made, as a caller of the library may.
  void add_by_hand() {
    NODE* const block = some_block();
    const std::string name = new_name();
    SBD_NODE* const parent = block == nullptr ? nullptr : record_of(block);
    if (parent == nullptr || m_model.find(MODEL::full_name(block) + "." + name) != nullptr) return;
    SBD_NODE* node = nullptr;
    NODE* added = nullptr;
    const std::size_t draw = below(4);
    if (draw == 0) {
      node = make_comment("# made\n");
      added = m_model.add_by_hand(block, KIND::COMMENT, "");
      added->comment = "# made\n";
      m_document.add_node(node, parent);
      note("add_node comment", {name_of(block)});
      return;
    }
    if (draw == 1) {
      node = make_block("Slave", name.c_str());
      added = m_model.add_by_hand(block, KIND::BLOCK, name);
      added->type = "Slave";
    } else if (draw == 2) {
      const VALUE value = some_value(0);
      node = make_assignment(name.c_str(), library_value(value), make_attributes({{"k", ".v"}}),
                             "# tail\n");
      added = m_model.add_by_hand(block, KIND::PARAMETER, name);
      added->value = value;
      added->attributes = {{"k", ".v"}};
      added->comment = "# tail\n";
    } else {
      NODE* const target = some_node();
      SBD_NODE* const target_record = record_of(target);
      if (target_record == nullptr) return;
      const std::string target_name = name_of(target);
      node = make_reference(name.c_str(), {target_name.c_str()});
      node->statement->reference->target = target_record;
      added = m_model.add_by_hand(block, KIND::REFERENCE, name);
      added->elements = {{target_name, target, 0}};
    }
    symbol_of(node)->parent = parent;
    enter(m_document, node, parent);
    note("add_node " + std::to_string(draw), {name_of(block), name});
  }

  // Deletes a node whether it is referenced or not.
  void delete_by_hand() {
    NODE* const node = some_node([](const NODE& other) { return other.members.size() < 3; });
    SBD_NODE* const record = node == nullptr ? nullptr : record_of(node);
    if (record == nullptr) return;
    note("delete_node", {MODEL::full_name(node)});
    m_document.delete_node(record, node->parent == nullptr ? nullptr : symbol_of(record)->parent);
    m_model.delete_by_hand(node);
  }

  // Deals with one statement that has lost a target. False when that can't be done.
  bool heal() {
    for (const NODE* const node : m_nodes) {
      const auto is_lost = [](const ELEMENT& element) { return element.target == nullptr; };
      if (std::none_of(node->elements.begin(), node->elements.end(), is_lost)) continue;
      if (m_model.find(MODEL::full_name(node)) != node) continue;
      if (!chance(50) || is_unclear(node)) {
        if (!MODEL::is_valid_name(node->name)) continue;
        set_references(name_of(node->parent), node->name);
      } else {
        delete_parameter(name_of(node->parent), node->name);
      }
      return true;
    }
    return false;
  }

  // ---- Comparing
  // ---------------------------------------------------------------------------------

  void note(const std::string& operation, const std::vector<NAME>& names = {},
            const std::string& more = {}) {
    std::string text = operation;
    for (const NAME& name : names) text += " " + shown(name);
    m_log.push_back(text + " " + more);
    if (m_log.size() > 12) m_log.pop_front();
  }

  bool fail(const std::string& what) {
    std::string text = what + "\nThe last edits:";
    for (const std::string& entry : m_log) text += "\n  " + entry;
    ADD_FAILURE() << text << "\nThe model's text:\n" << m_model.write();
    return false;
  }

  bool agree() {
    if (testing::Test::HasFailure()) return fail("results differ");
    const auto& messages = m_recorder.messages();
    const auto& wanted = m_model.messages();
    bool is_same = messages.size() == wanted.size();
    for (std::size_t i = 0; is_same && i < wanted.size(); i++) {
      is_same = messages[i].number == wanted[i].number && messages[i].text == wanted[i].text;
    }
    if (!is_same) {
      return fail("messages differ; got: " + testing::PrintToString(m_recorder.texts()) +
                  ", want: " + (wanted.empty() ? "none" : wanted.back().text));
    }
    std::vector<std::string> conditions = m_recorder.conditions();
    conditions.erase(std::remove(conditions.begin(), conditions.end(), k_empty_name),
                     conditions.end());
    if (conditions != m_model.internal_errors()) {
      return fail("internal errors differ: " + testing::PrintToString(conditions));
    }
    const std::string text = written(m_document);
    return text == m_model.write() || fail("texts differ; the library's:\n" + text);
  }

  bool trees_agree() {
    const std::string difference = m_model.compare(m_document);
    return difference.empty() || fail("trees differ: " + difference);
  }

  bool reads_back() {
    if (!m_model.is_readable()) return true;
    m_read_back++;
    const std::string text = m_model.write();
    SBD_FILE_PARSER copy;
    m_recorder.forget();
    if (!read_text(copy, text)) {
      return fail("can't be read back: " + testing::PrintToString(m_recorder.texts()));
    }
    if (written(copy) != text) return fail("reads back as:\n" + written(copy));
    if (chance(90)) return true;
    // Goes on with what was read back.
    note("read back");
    EXPECT_TRUE(read_text(m_document, text));
    m_model.import(m_document);
    return true;
  }

  bool queries_agree() {
    m_nodes = m_model.nodes();
    for (int i = 0; i < 3; i++) {
      const NAME name = object_name();
      if (name && !name->empty() && !query_agrees(*name)) return fail("query: " + *name);
    }
    for (int i = 0; i < 3; i++) {
      const std::string name = name_of(some_node());
      if (!query_agrees(name)) return fail("query: " + name);
    }
    return typed_blocks_agree() || fail("get_typed_blocks");
  }

  bool query_agrees(const std::string& name) {
    const NODE* const node = m_model.find(name);
    const char* const text = name.c_str();
    const bool is_block = node != nullptr && node->kind == KIND::BLOCK;
    const bool is_statement = node != nullptr && node->kind != KIND::BLOCK;
    EXPECT_EQ(m_document.is_block_defined(text), is_block);
    EXPECT_EQ(m_document.is_parameter_defined(text), is_statement);
    EXPECT_EQ(m_document.is_valid_parameter_name(text), MODEL::is_valid_name(name));
    SBD_NODE* const found = m_document.get_ref_object(text, nullptr);
    EXPECT_EQ(found != nullptr, node != nullptr);
    if (!is_unclear(node)) {
      EXPECT_EQ(m_document.is_referenced(text), m_model.is_referenced(node));
    }
    if (found == nullptr || node == nullptr) return !testing::Test::HasFailure();

    SBD_STRING full_name;
    EXPECT_TRUE(m_document.get_ref_name(found, full_name));
    EXPECT_EQ(full_name.c_str(), MODEL::full_name(node));
    SBD_STRING type = "untouched";
    auto number = SBD_BLOCK::BT_UNKNOWN;
    EXPECT_EQ(m_document.get_block_type(text, type), is_block);
    EXPECT_EQ(m_document.get_block_type(text, number), is_block);
    EXPECT_EQ(std::string(type.c_str()), is_block ? node->type : "untouched");
    EXPECT_EQ(static_cast<int>(number), is_block ? MODEL::type_number(node->type) : 7);
    if (is_statement) values_agree(name, *node);
    return !testing::Test::HasFailure();
  }

  void values_agree(const std::string& name, const NODE& node) {
    const std::size_t dot = name.rfind('.');
    const std::string block = name.substr(0, dot);
    const std::string parameter = name.substr(dot + 1);
    const bool has_value = node.kind == KIND::PARAMETER;
    const VALUE& value = node.value;
    const bool is_number = has_value && value.kind <= 4;

    double number = -1;
    EXPECT_EQ(m_document.get_value(name.c_str(), number), is_number);
    unsigned long integer = 1;
    EXPECT_EQ(m_document.get_value(block.c_str(), parameter.c_str(), integer), is_number);
    if (is_number) {
      static const double k_multipliers[] = {1, 1024, 1048576, 1073741824, 1, 1000000};
      const double multiplier = k_multipliers[value.unit];
      EXPECT_EQ(number, value.number * multiplier);
      const long double scaled_number = static_cast<long double>(value.number) * multiplier;
      if (std::fabs(scaled_number) < 0x1p63L) {
        EXPECT_EQ(integer, static_cast<std::uint32_t>(static_cast<std::int64_t>(scaled_number)));
      }
    }
    int flag = -77;
    EXPECT_EQ(m_document.get_value(name.c_str(), flag), has_value && value.kind == 5);
    if (has_value && value.kind == 5) {
      EXPECT_EQ(static_cast<std::uint32_t>(flag), static_cast<std::uint32_t>(value.flag));
    }
    SBD_STRING text = "untouched";
    EXPECT_EQ(m_document.get_value(name.c_str(), text), has_value && value.kind == 6);
    EXPECT_EQ(std::string(text.c_str()), has_value && value.kind == 6 ? value.text : "untouched");
    SBD_STRING_LIST names = string_list({"first"});
    EXPECT_EQ(m_document.get_value(block.c_str(), parameter.c_str(), names),
              !has_value && !node.elements.empty());
    NAMES wanted = {"first"};
    for (const ELEMENT& element : node.elements) wanted.push_back(element.name);
    EXPECT_EQ(names, string_list(wanted));
    const SBD_PARA_ATTR* const attribute =
        m_document.get_para_attr(block.c_str(), parameter.c_str());
    EXPECT_EQ(attribute != nullptr, !node.attributes.empty());
    if (attribute != nullptr && !node.attributes.empty()) {
      EXPECT_EQ(attribute->attr_key, node.attributes[0].key);
    }
  }

  bool typed_blocks_agree() {
    static const NAMES k_types = {"device", "Bus",    "module",     "SLAVE",
                                  "master", "region", "parameters", "unknown"};
    const std::size_t type = below(8);
    const NODE* const scope = chance(40) ? nullptr : some_node();
    const std::string scope_name = scope == nullptr ? "" : name_of(scope);
    // The name may be that of another node on top of this one.
    const NODE* const found = scope == nullptr ? nullptr : m_model.find(scope_name);
    NAMES wanted;
    if (type < 7 && (found != nullptr || scope == nullptr)) {
      wanted = m_model.typed_blocks(static_cast<int>(type), found);
    }
    SBD_STRING_LIST names = string_list({"old"});
    m_document.get_typed_blocks(k_types[type].c_str(), names,
                                scope == nullptr ? nullptr : scope_name.c_str());
    EXPECT_EQ(names, string_list(wanted));
    return !testing::Test::HasFailure();
  }

  std::mt19937_64 m_random;
  // Only the reader and the document's own edits make records, and the document is replaced as soon
  // as a reference has lost its target.
  bool m_is_clean;
  bool m_is_large;
  MESSAGE_RECORDER m_recorder;
  SBD_FILE_PARSER m_document;
  MODEL m_model;
  std::vector<NODE*> m_nodes;  // At the beginning of the step.
  std::deque<std::string> m_log;
  std::size_t m_accepted = 0;
  std::size_t m_refused = 0;
  std::size_t m_read_back = 0;
};

TEST(EDIT_MODEL, AgreesWithTheLibraryAtEveryStep) {
  constexpr std::size_t k_steps = 4000;
  std::size_t accepted = 0;
  std::size_t refused = 0;
  std::size_t read_back = 0;
  const std::size_t sequences = scaled(25);
  for (std::uint64_t seed = 1; seed <= sequences; seed++) {
    EDIT_SEQUENCE sequence(seed);
    if (!sequence.run(k_steps)) {
      ADD_FAILURE() << "seed " << seed;
      return;
    }
    accepted += sequence.accepted();
    refused += sequence.refused();
    read_back += sequence.read_back();
  }
  // The sequences must not have become idle.
  RecordProperty("accepted", std::to_string(accepted));
  RecordProperty("refused", std::to_string(refused));
  RecordProperty("read_back", std::to_string(read_back));
  EXPECT_GT(accepted, sequences * k_steps / 5);
  EXPECT_GT(refused, sequences * k_steps / 20);
  EXPECT_GT(read_back, sequences);
}

TEST(EDIT_MODEL, AgreesOnShortSequences) {
  for (std::uint64_t seed = 1; seed <= scaled(3000); seed++) {
    if (!EDIT_SEQUENCE(1000000 + seed).run(20)) {
      ADD_FAILURE() << "seed " << 1000000 + seed;
      return;
    }
  }
}

TEST(EDIT_MODEL, AgreesOnLargeBlocks) {
  for (std::uint64_t seed = 1; seed <= scaled(6); seed++) {
    if (!EDIT_SEQUENCE(seed, EDIT_SEQUENCE::LARGE).run(1500)) {
      ADD_FAILURE() << "seed " << seed;
      return;
    }
  }
}

TEST(EDIT_MODEL, WritesTheSameFile) {
  const TEMPORARY_DIRECTORY directory;
  const std::string path = directory.path_of("model.sbd");
  for (std::uint64_t seed = 1; seed <= 30; seed++) {
    const auto document = document_of(generate_descriptor(seed, 100, VALIDITY::SEMANTICS));
    MODEL model;
    model.import(*document);
    ASSERT_TRUE(document->write(path.c_str()));
    ASSERT_EQ(file_content(path), model.write());
  }
}

}  // namespace
