#include "sbd/source/sbd_statement_text.h"

#include <algorithm>

#include "sbd/reading/sbd_chars.h"

namespace {

bool is_space(char c) {
  return sbd_is(c, CC_BLANK) || c == '\n';
}

std::size_t string_end(std::string_view text, std::size_t at) {
  const std::size_t quote = text.find('"', at + 1);
  return quote == std::string_view::npos ? text.size() : quote + 1;
}

std::size_t list_end(std::string_view text, std::size_t at) {
  std::size_t depth = 0;
  while (at < text.size()) {
    const char c = text[at];
    if (c == '"') {
      at = string_end(text, at);
      continue;
    }
    ++at;
    if (c == '{') ++depth;
    if (c == '}' && --depth == 0) break;
  }
  return at;
}

std::size_t value_end(std::string_view text, std::size_t at) {
  if (at >= text.size()) return text.size();
  if (text[at] == '{') return list_end(text, at);
  if (text[at] == '"') return string_end(text, at);
  return std::min(text.find_first_of(" \t\r\n[;", at), text.size());
}

// Behind the "]" of the attributes; their values may have indices.
std::size_t attributes_end(std::string_view text, std::size_t at) {
  constexpr std::size_t k_index_length = 3;
  ++at;
  while (at < text.size() && text[at] != ']') at += text[at] == '[' ? k_index_length : 1;
  return std::min(at + 1, text.size());
}

std::size_t trimmed_end(std::string_view text, std::size_t begin, std::size_t end) {
  while (end > begin && is_space(text[end - 1])) --end;
  return end;
}

struct PARTS {
  SBD_PART name, body, attributes;
  std::size_t end = 0;
};

PARTS find_parts(std::string_view text, std::size_t begin) {
  PARTS parts;
  parts.name = {begin, sbd_name_end(text, begin)};
  const std::size_t sign = sbd_skip_space(text, parts.name.end);
  parts.body.begin = sbd_skip_space(text, std::min(sign + 1, text.size()));
  std::size_t at = 0;
  if (sign < text.size() && text[sign] == '<') {
    at = std::min(text.find('>', parts.body.begin), text.size());
    parts.body.end = trimmed_end(text, parts.body.begin, at);
    parts.attributes = {parts.body.end, parts.body.end};
  } else {
    parts.body.end = value_end(text, parts.body.begin);
    parts.attributes = {parts.body.end, parts.body.end};
    at = sbd_skip_space(text, parts.body.end);
    if (at < text.size() && text[at] == '[') {
      parts.attributes = {at, attributes_end(text, at)};
      at = parts.attributes.end;
    }
  }
  parts.end = std::min(text.find(';', at), text.size() - 1) + 1;
  return parts;
}

SBD_STRING join_names(const SBD_STRING_LIST& names, std::string_view separator) {
  SBD_STRING joined;
  for (const SBD_STRING& name : names) {
    if (&name != &names.front()) joined += separator;
    joined += name;
  }
  return joined;
}

bool begins_number(char c) {
  return sbd_is(c, CC_DIGIT) || c == '+' || c == '-';
}

}  // namespace

std::size_t sbd_skip_space(std::string_view text, std::size_t at) {
  while (at < text.size() && is_space(text[at])) ++at;
  return at;
}

std::size_t sbd_skip_blanks(std::string_view text, std::size_t at) {
  while (at < text.size() && sbd_is(text[at], CC_BLANK)) ++at;
  return at;
}

std::size_t sbd_name_end(std::string_view text, std::size_t at) {
  while (at < text.size() && (sbd_is(text[at], CC_NAME) || text[at] == '[' || text[at] == ']')) {
    ++at;
  }
  return at;
}

std::size_t sbd_statement_end(std::string_view text, std::size_t at) {
  return find_parts(text, at).end;
}

SBD_EDITED_TEXT::SBD_EDITED_TEXT(SBD_STRING text, SBD_PART name)
    : m_text(std::move(text)), m_name(name) {
  m_body = m_attributes = {m_text.size(), m_text.size()};
}

SBD_EDITED_TEXT SBD_EDITED_TEXT::of_statement(std::string_view text) {
  const PARTS parts = find_parts(text, 0);
  SBD_EDITED_TEXT statement(SBD_STRING(text.substr(0, parts.end)), parts.name);
  statement.m_body = parts.body;
  statement.m_attributes = parts.attributes;
  return statement;
}

SBD_EDITED_TEXT SBD_EDITED_TEXT::of_assignment(std::string_view head, std::string_view name,
                                               std::string_view value, std::string_view tail) {
  SBD_EDITED_TEXT statement{SBD_STRING(head)};
  SBD_STRING& text = statement.m_text;
  text += name;
  statement.m_name = {head.size(), text.size()};
  text += " = ";
  statement.m_body.begin = text.size();
  text += value;
  statement.m_body.end = text.size();
  statement.m_attributes = {text.size(), text.size()};
  text += ';';
  text += tail;
  return statement;
}

SBD_EDITED_TEXT SBD_EDITED_TEXT::of_references(std::string_view head, std::string_view name,
                                               const SBD_STRING_LIST& names,
                                               std::string_view tail) {
  SBD_EDITED_TEXT statement{SBD_STRING(head)};
  SBD_STRING& text = statement.m_text;
  text += name;
  statement.m_name = {head.size(), text.size()};
  text += " < ";
  statement.m_body.begin = text.size();
  text += join_names(names, ", ");
  statement.m_body.end = text.size();
  statement.m_attributes = {text.size(), text.size()};
  text += " >;";
  text += tail;
  return statement;
}

// `part` may be one of ours, and so it is read before anything moves. A part that begins where the
// replaced one does is that one, or holds it, and keeps its begin.
void SBD_EDITED_TEXT::replace(const SBD_PART& part, std::string_view text) {
  const SBD_PART old = part;
  m_text.replace(old.begin, old.size(), text.data(), text.size());
  const auto moved = [&old, &text](std::size_t place) {
    return place >= old.end ? place - old.size() + text.size() : place;
  };
  for (SBD_PART* const one : {&m_name, &m_body, &m_attributes}) {
    if (one->begin >= old.end && one->begin != old.begin) one->begin = moved(one->begin);
    one->end = moved(one->end);
  }
}

void SBD_EDITED_TEXT::put_name(std::string_view name) {
  replace(m_name, name);
}

void SBD_EDITED_TEXT::put_value(std::string_view value) {
  replace(m_body, value);
  if (m_attributes.size() != 0) detach_attributes();
}

// Right behind a number, a "[" would leave the scanner where it knows no names.
void SBD_EDITED_TEXT::detach_attributes() {
  if (m_attributes.begin != m_body.end || m_body.size() == 0) return;
  if (!begins_number(m_text[m_body.begin])) return;
  m_text.insert(m_attributes.begin, 1, ' ');
  ++m_attributes.begin;
  ++m_attributes.end;
}

void SBD_EDITED_TEXT::put_attributes(std::string_view attributes) {
  const bool has_attributes = m_attributes.size() != 0;
  if (attributes.empty()) {
    m_text.erase(m_body.end, m_attributes.end - m_body.end);
    m_attributes = {m_body.end, m_body.end};
    return;
  }
  const std::size_t begin = m_attributes.begin;
  if (has_attributes) {
    m_text.replace(begin, m_attributes.size(), attributes.data(), attributes.size());
  } else {
    m_text.insert(begin, attributes.data(), attributes.size());
  }
  m_attributes = {begin, begin + attributes.size()};
  if (has_attributes) return detach_attributes();
  m_text.insert(begin, 1, ' ');
  ++m_attributes.begin;
  ++m_attributes.end;
}

SBD_VECTOR<SBD_PART> SBD_EDITED_TEXT::references() const {
  SBD_VECTOR<SBD_PART> names;
  const std::string_view text = std::string_view(m_text).substr(0, m_body.end);
  for (std::size_t at = m_body.begin; at < text.size();) {
    const std::size_t comma = std::min(text.find(',', at), text.size());
    const std::size_t begin = std::min(sbd_skip_space(text, at), comma);
    names.push_back({begin, trimmed_end(text, begin, comma)});
    at = comma + 1;
  }
  return names;
}

void SBD_EDITED_TEXT::put_references(const SBD_STRING_LIST& names) {
  const SBD_VECTOR<SBD_PART> present = references();
  SBD_STRING separator = ", ";
  if (present.size() > 1) {
    separator = m_text.substr(present[0].end, present[1].begin - present[0].end);
  }
  replace(m_body, join_names(names, separator));
  m_attributes = {m_body.end, m_body.end};
}

void SBD_EDITED_TEXT::put_reference(std::size_t index, std::string_view name) {
  const SBD_VECTOR<SBD_PART> present = references();
  if (index >= present.size()) return;
  replace(present[index], name);
  m_attributes = {m_body.end, m_body.end};
}

void SBD_EDITED_TEXT::remove_reference(std::size_t index) {
  const SBD_VECTOR<SBD_PART> present = references();
  if (index >= present.size()) return;
  SBD_PART part = present[index];
  if (index != 0) {
    part.begin = present[index - 1].end;
  } else if (present.size() > 1) {
    part.end = present[1].begin;
  }
  replace(part, {});
  m_attributes = {m_body.end, m_body.end};
}
