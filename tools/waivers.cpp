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

}  // namespace

WAIVERS::WAIVERS(const SBD_FILE_PARSER& document) {
  if (document.get_source().find(k_mark) == std::string_view::npos) return;
  TREE_WALK walk(document.get_parser_para().root, TREE_WALK::EXTENT::WITH_SIBLINGS);
  for (TREE_WALK::STEP step = walk.next(); step != TREE_WALK::STEP::END; step = walk.next()) {
    if (step != TREE_WALK::STEP::ENTER) continue;
    const NODE& node = *walk.node();
    if (node.type == NODE::NT_COMMENT) take_comment(document, node, walk.block());
    if (node.type == NODE::NT_STATEMENT) take_statement(document, node);
  }
}

void WAIVERS::take_comment(const SBD_FILE_PARSER& document, const NODE& node, const NODE* block) {
  WAIVER waiver;
  if (!document.get_range(&node, waiver.place)) return;
  const NODE* subject = node.next;
  while (subject != nullptr && subject->type == NODE::NT_COMMENT) subject = subject->next;
  if (has_text_before(document.get_source(), waiver.place.offset)) subject = block;
  SOURCE_RANGE scope;
  if (subject != nullptr && document.get_range(subject, scope)) {
    waiver.begin = scope.offset;
    waiver.end = scope.offset + scope.length;
  }
  read(node.comment, std::move(waiver));
}

void WAIVERS::take_statement(const SBD_FILE_PARSER& document, const NODE& node) {
  if (node.statement->comment == nullptr) return;
  WAIVER waiver;
  SOURCE_RANGE scope;
  if (!document.get_comment_range(&node, waiver.place) || !document.get_range(&node, scope)) return;
  waiver.begin = scope.offset;
  waiver.end = scope.offset + scope.length;
  waiver.line = waiver.place.line;
  read(node.statement->comment, std::move(waiver));
}

void WAIVERS::read(std::string_view comment, WAIVER waiver) {
  std::string_view text = trim(comment);
  text.remove_prefix(std::min(text.find_first_not_of('#'), text.size()));
  text = trim(text);
  if (text.substr(0, k_mark.size()) != k_mark) return;
  text = trim(text.substr(k_mark.size()));
  const std::string_view verb = take_until(text, k_blanks);
  if (verb != k_verb) {
    refuse(waiver, fmt::format("{} is not {}", quote_name(verb), quote_name(k_verb)));
    return;
  }
  // Blanks are around the dash, since codes and reasons may have dashes, too.
  const bool begins_with_dash = text.substr(0, k_dash.size() - 1) == k_dash.substr(1);
  const std::size_t dash = begins_with_dash ? 0 : std::min(text.find(k_dash), text.size());
  const std::string_view keys = trim(text.substr(0, dash));
  waiver.reason = trim(text.substr(std::min(dash + k_dash.size() - 1, text.size())));
  if (waiver.reason.empty()) {
    refuse(waiver, "it gives no reason");
  } else if (keys.empty()) {
    refuse(waiver, "it names no code");
  } else {
    add_keys(keys, std::move(waiver));
  }
}

void WAIVERS::add_keys(std::string_view keys, WAIVER waiver) {
  while (!keys.empty()) {
    const std::string_view key = trim(take_until(keys, ", \t"));
    if (key.empty()) continue;
    const MESSAGE_HELP* const message = find_message(key);
    if (message == nullptr) {
      std::vector<std::string> known(list_advice_keys().begin(), list_advice_keys().end());
      refuse(waiver, fmt::format("there is no advice {}", quote_name(key)));
      m_faults.back().mend = ask_for(find_near_texts(known, key));
    } else if (!is_advice(message->key)) {
      refuse(waiver, fmt::format("{} is not advice", message->key));
    } else {
      waiver.key = message->key;
      m_waivers.push_back(waiver);
    }
  }
}

void WAIVERS::refuse(const WAIVER& waiver, std::string reason) {
  FINDING finding = make_finding(k_faulty_waiver_key, waiver.place,
                                 "This waiver is not heeded: " + std::move(reason));
  finding.note = k_form_note;
  m_faults.push_back(std::move(finding));
}

const std::string* WAIVERS::find_reason(const FINDING& finding) {
  if (!finding.place) return nullptr;
  const std::string* reason = nullptr;
  for (WAIVER& waiver : m_waivers) {
    const bool is_inside =
        waiver.begin <= finding.place->offset && finding.place->offset < waiver.end;
    const bool is_on_line = waiver.line != 0 && waiver.line == finding.place->line;
    if (waiver.key != finding.key || !(is_inside || is_on_line)) continue;
    waiver.is_used = true;
    if (reason == nullptr) reason = &waiver.reason;
  }
  return reason;
}

std::vector<FINDING> WAIVERS::list_idle(const std::vector<std::string>& unknown) const {
  std::vector<FINDING> idle;
  for (const WAIVER& waiver : m_waivers) {
    const bool is_unknown = std::find(unknown.begin(), unknown.end(), waiver.key) != unknown.end();
    if (waiver.is_used || is_unknown) continue;
    idle.push_back(
        make_finding(k_idle_waiver_key, waiver.place,
                     fmt::format("This waiver matches nothing: there is no {} here", waiver.key)));
  }
  return idle;
}

}  // namespace sbd_tool
