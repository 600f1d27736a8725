// A text that never changes, and all that was edited in it: stretches that were replaced or
// removed, and pieces that were put between its characters. An edit costs the same however long the
// text is.
//
// Places are offsets in the unchanged text. What stands at an offset comes in this order: the
// pieces inserted there, then the stretch that begins there. Pieces inside a stretch come behind
// its replacement.
#ifndef SBD_SOURCE_SBD_SOURCE_EDITS_H
#define SBD_SOURCE_SBD_SOURCE_EDITS_H

#include <cstddef>
#include <functional>
#include <list>
#include <map>
#include <string_view>
#include <utility>

#include "sbd/source/sbd_statement_text.h"

class SBD_SOURCE_EDITS {
 public:
  using PIECES = std::list<SBD_EDITED_TEXT, SBD_ALLOCATOR<SBD_EDITED_TEXT>>;

  // Where a scan over blanks has ended.
  struct STOP {
    enum KIND {
      EDGE,           // The begin or the end of the text.
      NEWLINE,        // Of the unchanged text: `offset` is its own.
      PIECE_NEWLINE,  // The first or last character of a piece at `offset`.
      CONTENT         // Anything else: forward it begins at `offset`, backward it ends there.
    };
    KIND kind;
    std::size_t offset;
  };

  SBD_SOURCE_EDITS() = default;
  SBD_SOURCE_EDITS(const SBD_SOURCE_EDITS&) = delete;
  SBD_SOURCE_EDITS& operator=(const SBD_SOURCE_EDITS&) = delete;

  // Forgets all edits and takes another text, which must stay where it is.
  void reset(std::string_view original);

  std::string_view original() const { return m_original; }
  bool is_unchanged() const { return m_stretches.empty() && m_insertions.empty(); }

  // The text as it is now, in place of what `text` held.
  void assemble(SBD_STRING& text) const;

  // The statement that begins at `begin`, for editing.
  SBD_EDITED_TEXT& edit_statement(std::size_t begin);
  // Replaces a name.
  void replace_name(std::size_t begin, std::size_t end, std::string_view name);

  // Removes what stands between the two places. Pieces there are kept.
  void remove(std::size_t begin, std::size_t end);
  // Drops the pieces at places behind `begin` and before `end`.
  void drop_pieces(std::size_t begin, std::size_t end);

  // Puts a piece in front of all pieces at a place, or behind all of them, or in front of one.
  PIECES::iterator insert_first(std::size_t offset, SBD_EDITED_TEXT piece);
  PIECES::iterator insert_last(std::size_t offset, SBD_EDITED_TEXT piece);
  PIECES::iterator insert(std::size_t offset, PIECES::iterator before, SBD_EDITED_TEXT piece);
  // Takes out the pieces from one to another, both included.
  void erase(std::size_t offset, PIECES::iterator first, PIECES::iterator last);

  // Over blanks, from what follows the character before `at`, and from what precedes the one at
  // `at`. Pieces at `at` are met by both.
  STOP scan_forward(std::size_t at) const;
  STOP scan_backward(std::size_t at) const;

  // True when a comment comes behind the pieces at `at` before any newline, ";" or "}". A ";" in
  // front of it on its line would make it the comment of a statement.
  bool has_comment_ahead(std::size_t at) const;
  // True when no piece at the place follows this one.
  bool is_last_piece(std::size_t offset, PIECES::iterator piece) const;
  bool has_pieces(std::size_t offset) const { return m_insertions.count(offset) != 0; }

 private:
  struct STRETCH {
    std::size_t end = 0;
    SBD_EDITED_TEXT text;
  };
  template <class VALUE>
  using BY_OFFSET = std::map<std::size_t, VALUE, std::less<std::size_t>,
                             SBD_ALLOCATOR<std::pair<const std::size_t, VALUE>>>;
  using STRETCHES = BY_OFFSET<STRETCH>;
  using INSERTIONS = BY_OFFSET<PIECES>;

  STRETCHES::const_iterator stretch_ending_at(std::size_t end) const;

  std::string_view m_original;
  STRETCHES m_stretches;    // By begin; they neither overlap nor are empty.
  INSERTIONS m_insertions;  // No list is empty.
};

#endif
