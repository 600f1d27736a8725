#include "sbd/source/sbd_source_edits.h"

#include <algorithm>
#include <iterator>

#include "sbd/reading/sbd_chars.h"

namespace {

using STOP = SBD_SOURCE_EDITS::STOP;

// What a scan finds that comes upon a piece at its begin, and at its end.
STOP stop_at_begin(std::string_view text, std::size_t offset) {
  const std::size_t first = sbd_skip_blanks(text, 0);
  const bool is_newline = first != text.size() && text[first] == '\n';
  return {is_newline ? STOP::PIECE_NEWLINE : STOP::CONTENT, offset};
}

STOP stop_at_end(std::string_view text, std::size_t offset) {
  const bool is_newline = !text.empty() && text.back() == '\n';
  return {is_newline ? STOP::PIECE_NEWLINE : STOP::CONTENT, offset};
}

}  // namespace

void SBD_SOURCE_EDITS::reset(std::string_view original) {
  m_original = original;
  m_stretches.clear();
  m_insertions.clear();
}

void SBD_SOURCE_EDITS::assemble(SBD_STRING& text) const {
  std::size_t added = 0;
  for (const auto& stretch : m_stretches) added += stretch.second.text.text().size();
  for (const auto& insertion : m_insertions) {
    for (const SBD_EDITED_TEXT& piece : insertion.second) added += piece.text().size();
  }
  text.clear();
  text.reserve(m_original.size() + added);

  std::size_t copied = 0;  // All before it stands in `text`, or was removed.
  const auto copy_up_to = [&](std::size_t end) {
    if (end <= copied) return;
    text.append(m_original.data() + copied, end - copied);
    copied = end;
  };
  auto stretch = m_stretches.begin();
  auto insertion = m_insertions.begin();
  while (stretch != m_stretches.end() || insertion != m_insertions.end()) {
    if (insertion != m_insertions.end() &&
        (stretch == m_stretches.end() || insertion->first <= stretch->first)) {
      copy_up_to(insertion->first);
      for (const SBD_EDITED_TEXT& piece : insertion->second) text += piece.text();
      ++insertion;
      continue;
    }
    copy_up_to(stretch->first);
    text += stretch->second.text.text();
    copied = stretch->second.end;
    ++stretch;
  }
  copy_up_to(m_original.size());
}

SBD_EDITED_TEXT& SBD_SOURCE_EDITS::edit_statement(std::size_t begin) {
  const auto found = m_stretches.find(begin);
  if (found != m_stretches.end()) return found->second.text;
  STRETCH stretch{sbd_statement_end(m_original, begin), {}};
  stretch.text = SBD_EDITED_TEXT::of_statement(m_original.substr(begin, stretch.end - begin));
  return m_stretches.emplace(begin, std::move(stretch)).first->second.text;
}

void SBD_SOURCE_EDITS::replace_name(std::size_t begin, std::size_t end, std::string_view name) {
  STRETCH& stretch = m_stretches[begin];
  stretch.end = end;
  stretch.text = SBD_EDITED_TEXT(SBD_STRING(name));
}

// Stretches that are removed already join the new one where they touch it, so that no scan has to
// pass over more than one.
void SBD_SOURCE_EDITS::remove(std::size_t begin, std::size_t end) {
  auto first = m_stretches.lower_bound(begin);
  if (first != m_stretches.begin()) {
    const auto before = std::prev(first);
    if (before->second.end >= begin && before->second.text.text().empty()) first = before;
  }
  auto last = first;
  while (last != m_stretches.end()) {
    const bool is_text = !last->second.text.text().empty();
    if (is_text ? last->first >= end : last->first > end) break;
    begin = std::min(begin, last->first);
    end = std::max(end, last->second.end);
    ++last;
  }
  STRETCHES one;
  one[begin].end = end;
  m_stretches.erase(first, last);
  m_stretches.insert(one.extract(begin));
}

void SBD_SOURCE_EDITS::drop_pieces(std::size_t begin, std::size_t end) {
  m_insertions.erase(m_insertions.upper_bound(begin), m_insertions.lower_bound(end));
}

SBD_SOURCE_EDITS::PIECES::iterator SBD_SOURCE_EDITS::insert_first(std::size_t offset,
                                                                  SBD_EDITED_TEXT piece) {
  PIECES& pieces = m_insertions[offset];
  return pieces.insert(pieces.begin(), std::move(piece));
}

SBD_SOURCE_EDITS::PIECES::iterator SBD_SOURCE_EDITS::insert_last(std::size_t offset,
                                                                 SBD_EDITED_TEXT piece) {
  PIECES& pieces = m_insertions[offset];
  return pieces.insert(pieces.end(), std::move(piece));
}

SBD_SOURCE_EDITS::PIECES::iterator SBD_SOURCE_EDITS::insert(std::size_t offset,
                                                            PIECES::iterator before,
                                                            SBD_EDITED_TEXT piece) {
  return m_insertions[offset].insert(before, std::move(piece));
}

void SBD_SOURCE_EDITS::erase(std::size_t offset, PIECES::iterator first, PIECES::iterator last) {
  const auto insertion = m_insertions.find(offset);
  if (insertion == m_insertions.end()) return;
  insertion->second.erase(first, std::next(last));
  if (insertion->second.empty()) m_insertions.erase(insertion);
}

SBD_SOURCE_EDITS::STOP SBD_SOURCE_EDITS::scan_forward(std::size_t at) const {
  auto insertion = m_insertions.lower_bound(at);
  auto stretch = m_stretches.lower_bound(at);
  for (;;) {
    if (insertion != m_insertions.end() && insertion->first == at) {
      return stop_at_begin(insertion->second.front().text(), at);
    }
    if (stretch != m_stretches.end() && stretch->first == at) {
      if (!stretch->second.text.text().empty()) return {STOP::CONTENT, at};
      at = stretch->second.end;
      if (insertion != m_insertions.end() && insertion->first < at) {
        return stop_at_begin(insertion->second.front().text(), insertion->first);
      }
      ++stretch;
      continue;
    }
    if (at == m_original.size()) return {STOP::EDGE, at};
    if (m_original[at] == '\n') return {STOP::NEWLINE, at};
    if (!sbd_is(m_original[at], CC_BLANK)) return {STOP::CONTENT, at};
    ++at;
  }
}

SBD_SOURCE_EDITS::STRETCHES::const_iterator SBD_SOURCE_EDITS::stretch_ending_at(
    std::size_t end) const {
  const auto behind = m_stretches.lower_bound(end);
  if (behind == m_stretches.begin()) return m_stretches.end();
  const auto stretch = std::prev(behind);
  return stretch->second.end == end ? stretch : m_stretches.end();
}

SBD_SOURCE_EDITS::STOP SBD_SOURCE_EDITS::scan_backward(std::size_t at) const {
  for (;;) {
    // The pieces at `at`, or inside the stretch that ends there.
    const auto stretch = stretch_ending_at(at);
    const bool is_stretch = stretch != m_stretches.end();
    const auto behind = m_insertions.upper_bound(at);
    if (behind != m_insertions.begin()) {
      const auto insertion = std::prev(behind);
      if (insertion->first == at || (is_stretch && insertion->first > stretch->first)) {
        return stop_at_end(insertion->second.back().text(), insertion->first);
      }
    }
    if (is_stretch) {
      if (!stretch->second.text.text().empty()) return {STOP::CONTENT, at};
      at = stretch->first;
      continue;
    }
    if (at == 0) return {STOP::EDGE, at};
    const char before = m_original[at - 1];
    if (before == '\n') return {STOP::NEWLINE, at - 1};
    if (!sbd_is(before, CC_BLANK)) return {STOP::CONTENT, at};
    --at;
  }
}

// Every piece has a ";" or a "}", and so has every statement.
bool SBD_SOURCE_EDITS::has_comment_ahead(std::size_t at) const {
  auto insertion = m_insertions.upper_bound(at);
  auto stretch = m_stretches.lower_bound(at);
  while (at < m_original.size()) {
    if (insertion != m_insertions.end() && insertion->first <= at) return false;
    if (stretch != m_stretches.end() && stretch->first == at) {
      if (stretch->second.text.text().find(';') != SBD_STRING::npos) return false;
      at = stretch->second.end;
      ++stretch;
      continue;
    }
    switch (m_original[at]) {
      case '#':
        return true;
      case '\n':
      case ';':
      case '}':
        return false;
      case '"':
        at = std::min(m_original.find('"', at + 1), m_original.size() - 1) + 1;
        break;
      default:
        ++at;
        break;
    }
  }
  return false;
}

bool SBD_SOURCE_EDITS::is_last_piece(std::size_t offset, PIECES::iterator piece) const {
  const auto insertion = m_insertions.find(offset);
  return insertion != m_insertions.end() && std::next(piece) == insertion->second.end();
}
