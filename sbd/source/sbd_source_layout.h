// How the text around a place is laid out, so that what is added looks like it.
#ifndef SBD_SOURCE_SBD_SOURCE_LAYOUT_H
#define SBD_SOURCE_SBD_SOURCE_LAYOUT_H

#include <string_view>

#include "sbd/sbd_file_parser.h"
#include "sbd/source/sbd_statement_text.h"

// How something new is set off from what stands around it.
struct SBD_STYLE {
  enum MODE {
    LINES,    // On lines of its own, each with its line end.
    LEADING,  // The same at the end of a text whose last line has no line end: that comes first.
    INLINE    // Behind a blank, on the line of what stands before it.
  };

  std::string_view line_end() const { return has_crlf ? "\r\n" : "\n"; }
  SBD_STRING head() const;
  // Behind a line, and behind the last one.
  std::string_view tail() const { return mode == LINES ? line_end() : std::string_view(); }
  std::string_view last_tail() const { return ends_line ? line_end() : tail(); }

  MODE mode = LINES;
  bool has_crlf = false;
  bool has_brace_below = true;    // The "{" of a new block stands on a line of its own.
  bool ends_line = false;         // INLINE, with a line end behind it.
  bool has_empty_before = false;  // A new block on lines of its own has an empty one before it,
                                  // or behind it.
  bool has_empty_behind = false;
  SBD_STRING indent;
};

// Where nodes that were read stand in the text. All nodes must have been read from it.
class SBD_SOURCE_LAYOUT {
 public:
  using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;

  // Takes a text and the first node of its tree.
  void reset(std::string_view text, const SBD_NODE* root);

  static bool was_read(const SBD_NODE* node) { return node->m_position != 0; }

  // A node from its first byte to the end of the comment behind it, line end not included.
  SBD_PART range(const SBD_NODE* node) const;
  // The name of a block, and where its "{" stands.
  SBD_PART block_name(const SBD_NODE* block) const;
  std::size_t open_brace(const SBD_NODE* block) const;

  // The blanks before a node when nothing else stands before it on its line.
  bool get_indent(const SBD_NODE* node, SBD_STRING& indent) const;
  // The indentation of the block's lines.
  SBD_STRING block_indent(const SBD_NODE* block) const;
  // What a block's members are indented by, in addition.
  SBD_STRING indent_step(const SBD_NODE* block) const;

  bool has_brace_below(const SBD_NODE* block) const;
  // True for an empty line behind the newline at `newline`, or before the line that begins at
  // `line`.
  bool has_empty_behind(std::size_t newline) const;
  bool has_empty_before(std::size_t line) const;

  bool has_crlf(std::size_t newline) const { return newline != 0 && m_text[newline - 1] == '\r'; }

  // What is usual in this text.
  bool usual_crlf() const { return m_usual_crlf; }
  bool usual_brace_below() const { return m_usual_brace_below; }
  const SBD_STRING& usual_step() const { return m_usual_step; }

 private:
  std::string_view m_text;
  bool m_usual_crlf = false;
  bool m_usual_brace_below = true;
  SBD_STRING m_usual_step;
};

#endif
