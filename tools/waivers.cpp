#include "tools/waivers.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "tools/advice.h"
#include "tools/lookup.h"
#include "tools/message_help.h"
#include "tools/near_names.h"

namespace sbd_tool {

namespace {

constexpr std::string_view k_mark = "sbd:";
constexpr std::string_view k_verb = "allow";
constexpr std::string_view k_dash = " - ";
constexpr std::string_view k_blanks = " \t\r\n";
constexpr char k_form_note[] = "a waiver reads: # sbd: allow CODE - reason";

std::string_view trim(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(k_blanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(k_blanks) + 1 - begin);
}

// Takes what is in front of the first of `enders` off the text, and that one with it.
std::string_view take_until(std::string_view& text, std::string_view enders) {
  const std::size_t end = std::min(text.find_first_of(enders), text.size());
  const std::string_view taken = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return taken;
}

bool has_text_before(std::string_view source, std::size_t offset) {
  const std::size_t line_end =
      offset == 0 ? std::string_view::npos : source.rfind('\n', offset - 1);
  const std::size_t begin = line_end == std::string_view::npos ? 0 : line_end + 1;
  return !trim(source.substr(begin, offset - begin)).empty();
}

FINDING make_finding(const char* key, const SOURCE_RANGE& place, std::string text) {
  FINDING finding;
  finding.severity = SEVERITY::WARNING;
  finding.key = key;
  finding.place = place;
  finding.text = std::move(text);
  return finding;
}

bool is_advice(std::string_view key) {
  const auto& keys = list_advice_keys();
  return std::find(keys.begin(), keys.end(), key) != keys.end();
}

bool is_waiver(std::string_view comment) {
  comment.remove_prefix(std::min(comment.find_first_not_of('#'), comment.size()));
  return trim(comment).substr(0, k_mark.size()) == k_mark;
}

}  // namespace

WAIVERS::WAIVERS(const SBD_FILE_PARSER& document) {
  if (document.get_source().find(k_mark) == std::string_view::npos) return;
  collect(document);
  build_scopes();
}

// ---- Reading -----------------------------------------------------------------------------------

void WAIVERS::collect(const SBD_FILE_PARSER& document) {
  TREE_WALK walk(document.get_parser_para().root, TREE_WALK::EXTENT::WITH_SIBLINGS);
  for (TREE_WALK::STEP step = walk.next(); step != TREE_WALK::STEP::END; step = walk.next()) {
    const NODE& node = *walk.node();
    if (step == TREE_WALK::STEP::LEAVE) {
      end_pending(document, nullptr);
    } else if (node.type == NODE::NT_COMMENT) {
      take_comment(document, node, walk.block());
    } else {
      end_pending(document, &node);
      if (node.type == NODE::NT_STATEMENT) take_statement(document, node);
    }
  }
  end_pending(document, nullptr);
}

void WAIVERS::take_comment(const SBD_FILE_PARSER& document, const NODE& node, const NODE* block) {
  COMMENT comment;
  comment.text = node.comment;
  if (!is_waiver(comment.text) || !document.get_range(&node, comment.place)) return;
  if (block == nullptr || !has_text_before(document.get_source(), comment.place.offset)) {
    m_pending.push_back(comment);
    return;
  }
  SOURCE_RANGE scope;
  document.get_range(block, scope);
  read(comment, scope, 0);
}

void WAIVERS::take_statement(const SBD_FILE_PARSER& document, const NODE& node) {
  if (node.statement->comment == nullptr) return;
  COMMENT comment;
  comment.text = node.statement->comment;
  if (!is_waiver(comment.text) || !document.get_comment_range(&node, comment.place)) return;
  SOURCE_RANGE scope;
  document.get_range(&node, scope);
  read(comment, scope, comment.place.line);
}

// Gives the comments so far the node that follows them; null if none does.
void WAIVERS::end_pending(const SBD_FILE_PARSER& document, const NODE* subject) {
  if (m_pending.empty()) return;
  SOURCE_RANGE scope;
  if (subject != nullptr) document.get_range(subject, scope);
  for (const COMMENT& comment : m_pending) read(comment, scope, 0);
  m_pending.clear();
}

void WAIVERS::read(const COMMENT& comment, const SOURCE_RANGE& scope, unsigned long line) {
  std::string_view text = trim(comment.text);
  text.remove_prefix(text.find(k_mark) + k_mark.size());
  text = trim(text);
  const std::string_view verb = take_until(text, k_blanks);
  if (verb != k_verb) {
    refuse(comment, fmt::format("{} is not {}", quote_name(verb), quote_name(k_verb)));
    return;
  }
  // Blanks are around the dash, since codes and reasons may have dashes, too.
  const bool begins_with_dash = text.substr(0, k_dash.size() - 1) == k_dash.substr(1);
  const std::size_t dash = begins_with_dash ? 0 : std::min(text.find(k_dash), text.size());
  const std::string_view keys = trim(text.substr(0, dash));
  const std::string_view reason =
      trim(text.substr(std::min(dash + k_dash.size() - 1, text.size())));
  if (reason.empty()) {
    refuse(comment, "it gives no reason");
  } else if (keys.empty()) {
    refuse(comment, "it names no code");
  } else {
    add_keys(keys, reason, comment, scope, line);
  }
}

void WAIVERS::add_keys(std::string_view keys, std::string_view reason, const COMMENT& comment,
                       const SOURCE_RANGE& scope, unsigned long line) {
  std::vector<std::string_view> added;
  while (!keys.empty()) {
    const std::string_view key = trim(take_until(keys, ", \t"));
    if (key.empty()) continue;
    const MESSAGE_HELP* const message = find_message(key);
    if (message == nullptr) {
      const std::vector<std::string> known(list_advice_keys().begin(), list_advice_keys().end());
      refuse(comment, fmt::format("there is no advice {}", quote_name(key)));
      m_faults.back().mend = ask_for(find_near_texts(known, key));
      return;
    }
    if (!is_advice(message->key)) {
      refuse(comment, fmt::format("{} is not advice", message->key));
      return;
    }
    if (std::find(added.begin(), added.end(), message->key) != added.end()) continue;
    added.emplace_back(message->key);
    if (line != 0) m_lines[line].push_back(m_waivers.size());
    m_waivers.push_back({message->key, std::string(reason), comment.place, k_no_scope});
    m_ranges.push_back(scope);
  }
}

void WAIVERS::refuse(const COMMENT& comment, std::string reason) {
  FINDING finding = make_finding(k_faulty_waiver_key, comment.place,
                                 "This waiver is not heeded: " + std::move(reason));
  finding.note = k_form_note;
  m_faults.push_back(std::move(finding));
}

// ---- Looking up --------------------------------------------------------------------------------

void WAIVERS::build_scopes() {
  std::vector<std::size_t> order(m_waivers.size());
  for (std::size_t i = 0; i != order.size(); ++i) order[i] = i;
  std::stable_sort(order.begin(), order.end(), [this](std::size_t a, std::size_t b) {
    if (m_ranges[a].offset != m_ranges[b].offset) return m_ranges[a].offset < m_ranges[b].offset;
    return m_ranges[a].length > m_ranges[b].length;
  });
  for (const std::size_t i : order) {
    const std::size_t begin = m_ranges[i].offset;
    const std::size_t end = begin + m_ranges[i].length;
    const bool is_same =
        !m_scopes.empty() && m_scopes.back().begin == begin && m_scopes.back().end == end;
    if (!is_same) {
      std::size_t parent = m_scopes.empty() ? k_no_scope : m_scopes.size() - 1;
      while (parent != k_no_scope && m_scopes[parent].end <= begin) {
        parent = m_scopes[parent].parent;
      }
      m_scopes.push_back({begin, end, parent, {}});
    }
    WAIVER& waiver = m_waivers[i];
    waiver.scope = m_scopes.size() - 1;
    if (find_group(waiver.scope, waiver.key) != nullptr) continue;
    m_scopes.back().groups.push_back({waiver.key, &waiver.reason, false});
  }
}

WAIVERS::GROUP* WAIVERS::find_group(std::size_t scope, std::string_view key) {
  for (GROUP& group : m_scopes[scope].groups) {
    if (group.key == key) return &group;
  }
  return nullptr;
}

const std::string* WAIVERS::find_reason(const FINDING& finding) {
  if (!finding.place || m_scopes.empty()) return nullptr;
  const std::string* reason = nullptr;
  const auto use = [&](std::size_t scope) {
    GROUP* const group = find_group(scope, finding.key);
    if (group == nullptr) return;
    group->is_used = true;
    if (reason == nullptr) reason = group->reason;
  };
  const std::size_t offset = finding.place->offset;
  const auto behind =
      std::upper_bound(m_scopes.begin(), m_scopes.end(), offset,
                       [](std::size_t place, const SCOPE& scope) { return place < scope.begin; });
  std::size_t scope = static_cast<std::size_t>(behind - m_scopes.begin()) - 1;  // Or none.
  for (; scope != k_no_scope; scope = m_scopes[scope].parent) {
    if (offset < m_scopes[scope].end) use(scope);
  }
  const auto line = m_lines.find(finding.place->line);
  if (line == m_lines.end()) return reason;
  for (const std::size_t waiver : line->second) use(m_waivers[waiver].scope);
  return reason;
}

std::vector<FINDING> WAIVERS::list_idle(const std::vector<std::string>& unknown) const {
  std::vector<FINDING> idle;
  for (const WAIVER& waiver : m_waivers) {
    const bool is_unknown = std::find(unknown.begin(), unknown.end(), waiver.key) != unknown.end();
    const std::vector<GROUP>& groups = m_scopes[waiver.scope].groups;
    const bool is_used = std::any_of(groups.begin(), groups.end(), [&waiver](const GROUP& group) {
      return group.key == waiver.key && group.is_used;
    });
    if (is_used || is_unknown) continue;
    idle.push_back(
        make_finding(k_idle_waiver_key, waiver.place,
                     fmt::format("This waiver matches nothing: there is no {} here", waiver.key)));
  }
  return idle;
}

}  // namespace sbd_tool
