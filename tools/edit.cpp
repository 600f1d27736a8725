#include "tools/edit.h"

#include <fmt/format.h>

#include <string_view>
#include <unordered_set>

#include "tools/lookup.h"
#include "tools/names.h"
#include "tools/tree_walk.h"
#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

using REFERENCE = SBD_FILE_PARSER::SBD_PARA_REF;
using STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;

constexpr std::size_t k_most_references_told = 20;

struct SPLIT_NAME {
  std::string scope;  // Empty at the top level.
  std::string own;
};

SPLIT_NAME split_name(const std::string& name) {
  const std::size_t dot = name.rfind('.');
  if (dot == std::string::npos) return {"", name};
  return {name.substr(0, dot), name.substr(dot + 1)};
}

// Attributes in the form that the library takes them in.
class ATTRIBUTE_CHAIN {
 public:
  explicit ATTRIBUTE_CHAIN(const std::vector<EDIT::PAIR>& attributes)
      : m_records(attributes.size()) {
    for (std::size_t i = 0; i < attributes.size(); ++i) {
      // The library reads them only.
      m_records[i].attr_key = const_cast<char*>(attributes[i].key.c_str());
      if (attributes[i].value) {
        m_records[i].attr_value = const_cast<char*>(attributes[i].value->c_str());
      }
      if (i > 0) m_records[i - 1].next = &m_records[i];
    }
  }
  const SBD_FILE_PARSER::SBD_PARA_ATTR* first() const { return m_records.data(); }

 private:
  std::vector<SBD_FILE_PARSER::SBD_PARA_ATTR> m_records;
};

// A reference statement outside a node with a reference to it or into it.
struct USE {
  const NODE* statement;
  const REFERENCE* reference;
};

std::vector<USE> find_uses(const SBD_FILE_PARSER& document, const NODE& node) {
  std::unordered_set<const NODE*> inside;
  TREE_WALK inner(&node, TREE_WALK::EXTENT::ALONE);
  while (inner.next() != TREE_WALK::STEP::END) inside.insert(inner.node());

  std::vector<USE> uses;
  TREE_WALK walk(document.get_parser_para().root, TREE_WALK::EXTENT::WITH_SIBLINGS);
  while (walk.next() != TREE_WALK::STEP::END) {
    const NODE* const one = walk.node();
    if (one->type != NODE::NT_STATEMENT || one->statement->type != STATEMENT::ST_REFERENCE) {
      continue;
    }
    if (inside.count(one) != 0) continue;
    for (const REFERENCE* reference = one->statement->reference; reference != nullptr;
         reference = reference->next) {
      if (inside.count(reference->target) != 0) uses.push_back({one, reference});
    }
  }
  return uses;
}

class EDITOR {
 public:
  EDITOR(SBD_SOURCE_DOCUMENT& source, const EDIT& edit, FINDINGS& findings)
      : m_source(source), m_edit(edit), m_findings(findings) {}

  bool apply() {
    switch (m_edit.kind) {
      case EDIT::KIND::SET:
        return set(m_edit.name, m_edit.value);
      case EDIT::KIND::UNSET:
        return unset();
      case EDIT::KIND::SET_REFERENCES:
        return set_references();
      case EDIT::KIND::REMOVE_REFERENCES:
        return find(m_edit.name, WANTED::ANY) != nullptr &&
               m_source.remove_references(m_edit.name.c_str());
      case EDIT::KIND::SET_ATTRIBUTES:
        return set_attributes();
      case EDIT::KIND::ADD_BLOCK:
        return add_block();
      case EDIT::KIND::REMOVE_BLOCK:
        return remove_block();
      case EDIT::KIND::RENAME:
        return rename();
    }
    return false;
  }

 private:
  const SBD_FILE_PARSER& document() const { return m_source.document(); }
  const NODE* look_up(const std::string& name) const {
    return find_node(document(), name, nullptr);
  }

  // ---- What is told ----------------------------------------------------------------------------

  // Adds a finding of the tool's own; returns false.
  bool refuse(std::string text, std::string note = {}) {
    FINDING finding;
    finding.text = std::move(text);
    finding.note = std::move(note);
    m_findings.list.push_back(std::move(finding));
    ++m_findings.error_count;
    return false;
  }

  // Adds what else is known to what the library said last; returns false.
  bool hint(const std::string& note) {
    const bool is_new = m_findings.list.size() > m_count_before;
    if (is_new && !note.empty()) m_findings.list.back().note = note;
    return false;
  }

  // The node of that name, or null after a refusal.
  const NODE* find(const std::string& name, WANTED wanted) {
    const NODE* const node = look_up(name);
    if (node == nullptr) {
      refuse(fmt::format("no {} {}", description_of(wanted), quote_name(name)),
             suggest_names(document(), name, wanted));
      return nullptr;
    }
    if (is_wanted(*node, wanted)) return node;
    const std::string_view found = node->type == NODE::NT_BLOCK ? "block" : "parameter";
    refuse(fmt::format("{} is a {}, not a {}", quote_name(full_name(document(), *node)), found,
                       description_of(wanted)));
    return nullptr;
  }

  // What may be meant by the name of a block in which something is to be made.
  bool hint_at_block(const std::string& scope) {
    if (scope.empty()) return hint("a full name is needed, such as board.clock");
    const NODE* const node = look_up(scope);
    if (node != nullptr && node->type == NODE::NT_BLOCK) return false;
    return hint(suggest_names(document(), scope, WANTED::BLOCK));
  }

  // Tells where the node is referred to.
  void tell_uses(const std::vector<USE>& uses, const std::string& advice) {
    if (uses.empty()) return;
    for (std::size_t i = 0; i < uses.size() && i < k_most_references_told; ++i) {
      FINDING finding;
      finding.text =
          fmt::format("{} refers to {}", quote_name(full_name(document(), *uses[i].statement)),
                      quote_name(full_name(document(), *uses[i].reference->target)));
      SOURCE_RANGE place;
      if (document().get_range(uses[i].reference, place)) finding.place = place;
      m_findings.list.push_back(std::move(finding));
    }
    m_findings.error_count += uses.size();
    if (uses.size() > k_most_references_told) {
      m_findings.omitted_count += uses.size() - k_most_references_told;
    }
    hint(advice);
  }

  // ---- Places ----------------------------------------------------------------------------------

  // Takes the scope, in which something is to be made, off the sibling's name. The result is false
  // after a refusal.
  bool take_place(const std::string& scope) {
    const SPLIT_NAME name = split_name(m_edit.sibling);
    m_sibling = name.own;
    if (m_edit.place == SBD_PLACE::AT_END || name.scope.empty()) return true;
    const NODE* const named = look_up(name.scope);
    const bool is_same_scope = named != nullptr && named == look_up(scope);
    return is_same_scope ||
           refuse(fmt::format("{} is not in {}", quote_name(m_edit.sibling),
                              scope.empty() ? "the top level" : quote_name(scope)));
  }

  SBD_PLACE place() const {
    if (m_edit.place == SBD_PLACE::AT_END) return {};
    return {m_edit.place, m_sibling.c_str()};
  }

  bool hint_at_sibling(const std::string& scope) {
    if (m_edit.place == SBD_PLACE::AT_END) return false;
    const std::string sibling = scope.empty() ? m_sibling : scope + "." + m_sibling;
    if (look_up(sibling) != nullptr) return false;
    return hint(suggest_names(document(), sibling, WANTED::ANY));
  }

  // ---- The edits -------------------------------------------------------------------------------

  bool set(const std::string& name, const std::string& value) {
    const NODE* const node = look_up(name);
    if (node != nullptr || m_edit.place == SBD_PLACE::AT_END) {
      return m_source.set_value(name.c_str(), value.c_str()) || hint_at_value(name, node);
    }
    const SPLIT_NAME split = split_name(name);
    if (!take_place(split.scope)) return false;
    if (m_source.add_value(name.c_str(), value.c_str(), place())) return true;
    return hint_at_block(split.scope) || hint_at_sibling(split.scope);
  }

  // Why a parameter that exists, or does not, has not got the value.
  bool hint_at_value(const std::string& name, const NODE* node) {
    if (node == nullptr) return hint_at_block(split_name(name).scope);
    if (m_findings.list.size() == m_count_before || node->type != NODE::NT_STATEMENT) return false;
    if (node->statement->type == STATEMENT::ST_REFERENCE) {
      return hint("it is a reference statement; \"ref\" sets its targets");
    }
    constexpr std::string_view k_incompatible = "Incompatible value type.";
    if (m_findings.list.back().text.find(k_incompatible) == std::string::npos) return false;
    return hint("the present value is of another kind; \"unset\" removes it");
  }

  bool unset() {
    const NODE* const node = find(m_edit.name, WANTED::PARAMETER);
    if (node == nullptr) return false;
    if (m_edit.with_references) {
      // Without a reference to it, a statement may be gone with the last one that it had itself.
      m_source.remove_references(m_edit.name.c_str());
      return look_up(m_edit.name) == nullptr || m_source.remove_parameter(m_edit.name.c_str());
    }
    if (m_source.remove_parameter(m_edit.name.c_str())) return true;
    tell_uses(find_uses(document(), *look_up(m_edit.name)),
              "with --with-references, the references to it are removed, too");
    return false;
  }

  bool set_references() {
    SBD_STRING_LIST targets;
    for (const std::string& target : m_edit.targets) targets.emplace_back(target.c_str());
    const std::string scope = split_name(m_edit.name).scope;
    if (!take_place(scope)) return false;
    if (m_source.set_references(m_edit.name.c_str(), targets, place())) return true;
    for (const std::string& target : m_edit.targets) {
      if (look_up(target) != nullptr) continue;
      const std::string suggestion = suggest_names(document(), target, WANTED::ANY);
      return hint(fmt::format("nothing is named {}{}{}", quote_name(target),
                              suggestion.empty() ? "" : "; ", suggestion));
    }
    return hint_at_block(scope) || hint_at_sibling(scope);
  }

  bool set_attributes() {
    const char* const name = m_edit.name.c_str();
    const bool is_done =
        m_edit.attributes.empty()
            ? m_source.remove_attributes(name)
            : m_source.set_attributes(name, ATTRIBUTE_CHAIN(m_edit.attributes).first());
    if (is_done) return true;
    return look_up(m_edit.name) == nullptr &&
           hint(suggest_names(document(), m_edit.name, WANTED::PARAMETER));
  }

  bool add_block() {
    const SPLIT_NAME name = split_name(m_edit.name);
    if (!take_place(name.scope)) return false;
    const char* const parent = name.scope.empty() ? nullptr : name.scope.c_str();
    if (!m_source.add_block(m_edit.value.c_str(), name.own.c_str(), parent, place())) {
      return (parent != nullptr && hint_at_block(name.scope)) || hint_at_sibling(name.scope);
    }
    if (m_edit.members.empty()) {
      return refuse(fmt::format("the block {} would be empty, which the format has no form for",
                                quote_name(m_edit.name)),
                    "give it a parameter: --set NAME=VALUE");
    }
    for (const EDIT::PAIR& member : m_edit.members) {
      const std::string full = m_edit.name + "." + member.key;
      if (!m_source.add_value(full.c_str(), member.value->c_str())) return false;
    }
    return true;
  }

  bool remove_block() {
    const NODE* const node = find(m_edit.name, WANTED::BLOCK);
    if (node == nullptr) return false;
    const std::vector<USE> uses = find_uses(document(), *node);
    if (m_edit.with_references) {
      remove_uses(uses);
      return m_source.remove_block(m_edit.name.c_str());
    }
    if (uses.empty()) return m_source.remove_block(m_edit.name.c_str());
    bool is_block_used = false;
    for (const USE& use : uses) is_block_used = is_block_used || use.reference->target == node;
    if (is_block_used) {
      m_source.remove_block(m_edit.name.c_str());
    } else {
      refuse(fmt::format("the block {} holds what is referred to from outside",
                         quote_name(m_edit.name)));
    }
    tell_uses(uses, "with --with-references, these references are removed, too");
    return false;
  }

  void remove_uses(const std::vector<USE>& uses) {
    std::unordered_set<std::string> targets;
    for (const USE& use : uses) targets.insert(full_name(document(), *use.reference->target));
    for (const std::string& target : targets) m_source.remove_references(target.c_str());
  }

  bool rename() {
    const NODE* const node = find(m_edit.name, WANTED::ANY);
    if (node == nullptr) return false;
    const std::string scope = split_name(m_edit.name).scope;
    SPLIT_NAME new_name = split_name(m_edit.value);
    if (!new_name.scope.empty() && (scope.empty() || look_up(new_name.scope) != look_up(scope))) {
      return refuse(fmt::format("{} is not in the block of {}: a new name does not move anything",
                                quote_name(m_edit.value), quote_name(m_edit.name)));
    }
    if (m_source.rename(m_edit.name.c_str(), new_name.own.c_str(), m_edit.with_references)) {
      return true;
    }
    if (!document().is_valid_parameter_name(new_name.own.c_str())) {
      return refuse(fmt::format("{} is not a name", quote_name(new_name.own)));
    }
    const std::string full = scope.empty() ? new_name.own : scope + "." + new_name.own;
    if (look_up(full) == node) {
      return refuse(fmt::format("{} is the name already, but for letter case", quote_name(full)));
    }
    return refuse(fmt::format("{} exists already", quote_name(full)));
  }

  SBD_SOURCE_DOCUMENT& m_source;
  const EDIT& m_edit;
  FINDINGS& m_findings;
  const std::size_t m_count_before = m_findings.list.size();
  std::string m_sibling;  // Its own name.
};

}  // namespace

EDIT::PAIR split_pair(const std::string& text) {
  const std::size_t sign = text.find('=');
  if (sign == std::string::npos) return {text, std::nullopt};
  return {text.substr(0, sign), text.substr(sign + 1)};
}

bool apply_edit(SBD_SOURCE_DOCUMENT& source, const EDIT& edit, FINDINGS& findings) {
  const std::size_t count_before = findings.list.size();
  if (EDITOR(source, edit, findings).apply()) return true;
  if (findings.list.size() == count_before) {
    FINDING finding;
    finding.text = fmt::format("can't edit {}", quote_name(edit.name));
    findings.list.push_back(std::move(finding));
    ++findings.error_count;
  }
  if (!edit.origin.empty()) {
    FINDING& last = findings.list.back();
    last.note += (last.note.empty() ? "" : "; ") + ("asked for in " + edit.origin);
  }
  return false;
}

}  // namespace sbd_tool
