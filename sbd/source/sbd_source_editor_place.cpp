// Where new things go in the text, and what goes with those that are removed.
#include <iterator>

#include "sbd/reading/sbd_tree.h"
#include "sbd/source/sbd_source_editor.h"

using STOP = SBD_SOURCE_EDITS::STOP;
using PLACE = SBD_SOURCE_DOCUMENT::PLACE;

const SBD_SOURCE_EDITOR::NEW_NODE* SBD_SOURCE_EDITOR::new_node(const SBD_NODE* node) const {
  const auto found = m_new_nodes.find(node);
  return found != m_new_nodes.end() ? &found->second : nullptr;
}

SBD_EDITED_TEXT& SBD_SOURCE_EDITOR::text_of(const SBD_NODE* node) {
  const NEW_NODE* const added = new_node(node);
  if (added != nullptr) return *added->first;
  return m_edits.edit_statement(m_layout.range(node).begin);
}

// ---- Spots ------------------------------------------------------------------------------------

SBD_SOURCE_EDITOR::SPOT SBD_SOURCE_EDITOR::find_spot(const SBD_SOURCE_EDIT& edit,
                                                     const SBD_NODE* block,
                                                     const SBD_NODE* sibling) const {
  const bool is_block = edit.kind == SBD_SOURCE_EDIT::ADD_BLOCK;
  const SBD_NODE* const neighbour = edit.place == PLACE::AT_END ? last_member(block) : sibling;
  SPOT spot;
  if (neighbour == nullptr) {
    spot = block != nullptr ? spot_inside(block) : spot_at_end_of_text();
  } else if (edit.place == PLACE::BEFORE) {
    spot = spot_before(neighbour, block);
  } else {
    spot = spot_behind(neighbour, block);
  }
  spot.style.ends_line = spot.style.mode == SBD_STYLE::INLINE && is_before_comment(spot);
  if (is_block) {
    set_block_style(spot, neighbour, block);
  } else {
    spot.style.has_empty_before = spot.style.has_empty_behind = false;
  }
  return spot;
}

// A line comment that follows on the line has to stay one.
bool SBD_SOURCE_EDITOR::is_before_comment(const SPOT& spot) const {
  if (spot.order == SPOT::FIRST && m_edits.has_pieces(spot.offset)) return false;
  if (spot.order == SPOT::BEFORE_PIECE && !spot.is_last) return false;
  return m_edits.has_comment_ahead(spot.offset);
}

// What follows `begin` decides whether new text there stands on lines of its own.
SBD_SOURCE_EDITOR::SPOT SBD_SOURCE_EDITOR::spot_from(const STOP& stop, std::size_t begin) const {
  SPOT spot;
  spot.order = SPOT::FIRST;
  spot.offset = stop.offset;
  spot.style.has_crlf = m_layout.usual_crlf();
  switch (stop.kind) {
    case STOP::NEWLINE:
      ++spot.offset;
      spot.style.mode = SBD_STYLE::LINES;
      spot.style.has_crlf = m_layout.has_crlf(stop.offset);
      return spot;
    case STOP::EDGE:
    case STOP::PIECE_NEWLINE:
      spot.style.mode = SBD_STYLE::LEADING;
      return spot;
    default:
      spot.offset = begin;
      spot.style.mode = SBD_STYLE::INLINE;
      return spot;
  }
}

SBD_SOURCE_EDITOR::SPOT SBD_SOURCE_EDITOR::spot_behind(const SBD_NODE* node,
                                                       const SBD_NODE* block) const {
  if (const NEW_NODE* const added = new_node(node)) {
    return {added->offset, SPOT::BEFORE_PIECE, std::next(added->last),
            m_edits.is_last_piece(added->offset, added->last), added->style};
  }
  const std::size_t end = m_layout.range(node).end;
  const STOP stop = m_edits.scan_forward(end);
  SPOT spot = spot_from(stop, end);
  set_indent(spot, node, block);
  spot.style.has_empty_before = node->type == SBD_NODE::NT_BLOCK && stop.kind == STOP::NEWLINE &&
                                m_layout.has_empty_behind(stop.offset);
  return spot;
}

SBD_SOURCE_EDITOR::SPOT SBD_SOURCE_EDITOR::spot_before(const SBD_NODE* node,
                                                       const SBD_NODE* block) const {
  if (const NEW_NODE* const added = new_node(node)) {
    return {added->offset, SPOT::BEFORE_PIECE, added->first, false, added->style};
  }
  const STOP stop = m_edits.scan_backward(m_layout.range(node).begin);
  SPOT spot;
  spot.order = SPOT::LAST;
  spot.offset = stop.offset;
  spot.style.has_crlf = m_layout.usual_crlf();
  if (stop.kind == STOP::NEWLINE) {
    ++spot.offset;
    spot.style.has_crlf = m_layout.has_crlf(stop.offset);
    spot.style.has_empty_behind =
        node->type == SBD_NODE::NT_BLOCK && m_layout.has_empty_before(spot.offset);
  }
  spot.style.mode = stop.kind == STOP::CONTENT ? SBD_STYLE::INLINE : SBD_STYLE::LINES;
  set_indent(spot, node, block);
  return spot;
}

SBD_SOURCE_EDITOR::SPOT SBD_SOURCE_EDITOR::spot_inside(const SBD_NODE* block) const {
  if (const NEW_NODE* const added = new_node(block)) {
    SPOT spot{added->offset, SPOT::BEFORE_PIECE, added->last, false, added->style};
    spot.style.indent = member_indent(block);
    spot.style.has_empty_before = spot.style.has_empty_behind = false;
    return spot;
  }
  const std::size_t begin = m_layout.open_brace(block) + 1;
  SPOT spot = spot_from(m_edits.scan_forward(begin), begin);
  set_indent(spot, nullptr, block);
  return spot;
}

// When there is no node in it, and so nothing on its last line.
SBD_SOURCE_EDITOR::SPOT SBD_SOURCE_EDITOR::spot_at_end_of_text() const {
  SPOT spot;
  spot.offset = m_edits.original().size();
  spot.style.has_crlf = m_layout.usual_crlf();
  spot.style.mode = SBD_STYLE::LINES;
  return spot;
}

void SBD_SOURCE_EDITOR::set_indent(SPOT& spot, const SBD_NODE* neighbour,
                                   const SBD_NODE* block) const {
  if (spot.style.mode == SBD_STYLE::INLINE) return;
  if (neighbour != nullptr && m_layout.get_indent(neighbour, spot.style.indent)) return;
  spot.style.indent = block != nullptr ? member_indent(block) : SBD_STRING();
}

SBD_STRING SBD_SOURCE_EDITOR::member_indent(const SBD_NODE* block) const {
  const NEW_NODE* const added = new_node(block);
  SBD_STRING indent = added != nullptr ? added->style.indent : m_layout.block_indent(block);
  const SBD_NODE* outer = block;
  while (outer != nullptr && !SBD_SOURCE_LAYOUT::was_read(outer)) {
    const SBD_NODE* const parent = outer->block->name->parent;
    outer = parent == outer ? nullptr : parent;
  }
  indent += outer != nullptr ? m_layout.indent_step(outer) : m_layout.usual_step();
  return indent;
}

// The neighbour, when it is a block, or the block around both, shows where braces go.
void SBD_SOURCE_EDITOR::set_block_style(SPOT& spot, const SBD_NODE* neighbour,
                                        const SBD_NODE* block) const {
  spot.style.has_brace_below = m_layout.usual_brace_below();
  for (const SBD_NODE* const model : {neighbour, block}) {
    if (model == nullptr || model->type != SBD_NODE::NT_BLOCK) continue;
    const NEW_NODE* const added = new_node(model);
    spot.style.has_brace_below =
        added != nullptr ? added->style.has_brace_below : m_layout.has_brace_below(model);
    return;
  }
}

// ---- Pieces -----------------------------------------------------------------------------------

SBD_SOURCE_EDITOR::PIECES::iterator SBD_SOURCE_EDITOR::insert(const SPOT& spot,
                                                              SBD_EDITED_TEXT piece) {
  switch (spot.order) {
    case SPOT::FIRST:
      return m_edits.insert_first(spot.offset, std::move(piece));
    case SPOT::LAST:
      return m_edits.insert_last(spot.offset, std::move(piece));
    default:
      return m_edits.insert(spot.offset, spot.piece, std::move(piece));
  }
}

void SBD_SOURCE_EDITOR::insert_statement(const SBD_NODE* node, SPOT spot, SBD_EDITED_TEXT piece) {
  const PIECES::iterator place = insert(spot, std::move(piece));
  m_new_nodes[node] = {spot.offset, place, place, std::move(spot.style)};
}

void SBD_SOURCE_EDITOR::insert_block(const SBD_NODE* node, SPOT spot, const SBD_SOURCE_EDIT& edit) {
  const SBD_STYLE& style = spot.style;
  const bool is_inline = style.mode == SBD_STYLE::INLINE;
  SBD_STRING head;
  if (style.has_empty_before) head += style.line_end();
  head += style.head();
  head += edit.text;
  head += ' ';
  const SBD_PART name{head.size(), head.size() + edit.name.size()};
  head += edit.name;
  if (style.has_brace_below && !is_inline) {
    head += style.line_end();
    head += style.indent;
  } else {
    head += ' ';
  }
  head += '{';
  head += style.tail();
  SBD_STRING end = style.head();
  end += '}';
  end += style.last_tail();
  if (style.has_empty_behind) end += style.line_end();

  const PIECES::iterator first = insert(spot, SBD_EDITED_TEXT(std::move(head), name));
  const PIECES::iterator last =
      m_edits.insert(spot.offset, std::next(first), SBD_EDITED_TEXT(std::move(end)));
  m_new_nodes[node] = {spot.offset, first, last, std::move(spot.style)};
}

// ---- Removals ---------------------------------------------------------------------------------

SBD_SOURCE_EDITOR::REMOVAL SBD_SOURCE_EDITOR::plan_removal(const SBD_NODE* node) const {
  REMOVAL removal;
  removal.node = node;
  if (SBD_SOURCE_LAYOUT::was_read(node)) removal.range = m_layout.range(node);
  if (m_new_nodes.empty() || node->type != SBD_NODE::NT_BLOCK) return removal;
  SBD_TREE_WALK walk(sbd_members_of(node));
  while (const SBD_NODE* const member = walk.next()) {
    if (!SBD_SOURCE_LAYOUT::was_read(member)) removal.new_nodes.push_back(member);
  }
  return removal;
}

// The whole lines of something that has them for itself; otherwise also the blanks before it, or
// those behind it when it begins its line.
SBD_PART SBD_SOURCE_EDITOR::lines_of(const SBD_PART& range) const {
  const STOP before = m_edits.scan_backward(range.begin);
  const STOP behind = m_edits.scan_forward(range.end);
  const auto outside = [](const STOP& stop) {
    return stop.offset + (stop.kind == STOP::NEWLINE ? 1 : 0);
  };
  if (before.kind == STOP::CONTENT) return {before.offset, range.end};
  if (behind.kind == STOP::CONTENT) return {range.begin, behind.offset};
  return {outside(before), outside(behind)};
}

// The nodes themselves may be gone already.
void SBD_SOURCE_EDITOR::remove(const REMOVAL& removal) {
  for (const SBD_NODE* const node : removal.new_nodes) m_new_nodes.erase(node);
  const auto added = m_new_nodes.find(removal.node);
  if (added != m_new_nodes.end()) {
    m_edits.erase(added->second.offset, added->second.first, added->second.last);
    m_new_nodes.erase(added);
    return;
  }
  m_edits.drop_pieces(removal.range.begin, removal.range.end);
  const SBD_PART lines = lines_of(removal.range);
  m_edits.remove(lines.begin, lines.end);
}
