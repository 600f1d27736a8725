// Performs edits on a document's tree and on its text.
#ifndef SBD_SOURCE_SBD_SOURCE_EDITOR_H
#define SBD_SOURCE_SBD_SOURCE_EDITOR_H

#include <functional>
#include <unordered_map>
#include <utility>

#include "sbd/source/sbd_source_edit.h"
#include "sbd/source/sbd_source_edits.h"
#include "sbd/source/sbd_source_layout.h"
#include "sbd/source/sbd_value_reader.h"

class SBD_SOURCE_EDITOR {
 public:
  using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
  using SBD_STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;
  using SBD_PARA_REF = SBD_FILE_PARSER::SBD_PARA_REF;

  explicit SBD_SOURCE_EDITOR(SBD_FILE_PARSER& document) : m_document(document) {}

  // The document was read; its text is the source of its tree, without any edit.
  void reset();

  // Performs one edit. False when it was refused, with tree and text as they were. Whatever it
  // throws leaves them in disorder.
  bool apply(const SBD_SOURCE_EDIT& edit);

  bool is_unchanged() const { return m_edits.is_unchanged(); }
  std::string_view original() const { return m_edits.original(); }
  void assemble(SBD_STRING& text) const { m_edits.assemble(text); }

 private:
  using PIECES = SBD_SOURCE_EDITS::PIECES;

  // The pieces of something new: one for a statement, head and end for a block, between which its
  // members stand.
  struct NEW_NODE {
    std::size_t offset = 0;
    PIECES::iterator first;
    PIECES::iterator last;
    SBD_STYLE style;
  };
  using NEW_NODES = std::unordered_map<const SBD_NODE*, NEW_NODE, std::hash<const SBD_NODE*>,
                                       std::equal_to<const SBD_NODE*>,
                                       SBD_ALLOCATOR<std::pair<const SBD_NODE* const, NEW_NODE>>>;

  // Where something new goes.
  struct SPOT {
    enum ORDER { FIRST, LAST, BEFORE_PIECE };  // Among the pieces at the offset.
    std::size_t offset = 0;
    ORDER order = LAST;
    PIECES::iterator piece;
    bool is_last = false;  // BEFORE_PIECE, and there is no piece.
    SBD_STYLE style;
  };

  // What disappears with a node.
  struct REMOVAL {
    const SBD_NODE* node = nullptr;
    SBD_PART range;                         // Of a node that was read.
    SBD_VECTOR<const SBD_NODE*> new_nodes;  // Inside it.
  };

  // References to an object that is no longer referred to.
  struct DROPPED_REFERENCES {
    const SBD_NODE* node = nullptr;
    SBD_VECTOR<std::size_t> indices;
    bool is_all = false;  // The statement goes as well.
    REMOVAL removal;
  };

  // A reference whose name changes with that of an object.
  struct RENAMED_REFERENCE {
    SBD_NODE* node;
    std::size_t index;
    SBD_PARA_REF* reference;
    SBD_STRING name;
  };

  bool set_value(const SBD_SOURCE_EDIT& edit);
  bool set_references(const SBD_SOURCE_EDIT& edit);
  bool set_attributes(const SBD_SOURCE_EDIT& edit);
  bool remove_attributes(const SBD_SOURCE_EDIT& edit);
  bool remove_parameter(const SBD_SOURCE_EDIT& edit);
  bool add_block(const SBD_SOURCE_EDIT& edit);
  bool remove_block(const SBD_SOURCE_EDIT& edit);
  bool remove_references(const SBD_SOURCE_EDIT& edit);
  bool rename(const SBD_SOURCE_EDIT& edit);

  bool check_statement(const SBD_SOURCE_EDIT& edit, SBD_STATEMENT::STATEMENT_TYPE type,
                       SBD_NODE*& block, SBD_NODE*& present) const;
  SBD_NODE* find_sibling(const SBD_SOURCE_EDIT& edit, const SBD_NODE* block) const;
  void move_to_place(const SBD_SOURCE_EDIT& edit);
  SBD_NODE* last_member(const SBD_NODE* block) const;
  SBD_VECTOR<DROPPED_REFERENCES> find_all_dropped(const SBD_NODE* target) const;
  bool find_dropped(const SBD_NODE* node, const SBD_NODE* target,
                    DROPPED_REFERENCES& dropped) const;
  void put_new_name(SBD_NODE* node, const SBD_STRING& name);
  SBD_VECTOR<RENAMED_REFERENCE> find_renamed(const SBD_NODE* node, const SBD_STRING& full_name,
                                             const SBD_STRING& new_name) const;
  void put_reference(const RENAMED_REFERENCE& renamed);

  // The text of a statement, or of the head of a new block.
  SBD_EDITED_TEXT& text_of(const SBD_NODE* node);
  const NEW_NODE* new_node(const SBD_NODE* node) const;

  SPOT find_spot(const SBD_SOURCE_EDIT& edit, const SBD_NODE* block, const SBD_NODE* sibling) const;
  SPOT spot_behind(const SBD_NODE* node, const SBD_NODE* block) const;
  SPOT spot_before(const SBD_NODE* node, const SBD_NODE* block) const;
  SPOT spot_inside(const SBD_NODE* block) const;
  SPOT spot_at_end_of_text() const;
  SPOT spot_from(const SBD_SOURCE_EDITS::STOP& stop, std::size_t begin) const;
  bool is_before_comment(const SPOT& spot) const;
  void set_indent(SPOT& spot, const SBD_NODE* neighbour, const SBD_NODE* block) const;
  void set_block_style(SPOT& spot, const SBD_NODE* neighbour, const SBD_NODE* block) const;
  SBD_STRING member_indent(const SBD_NODE* block) const;

  PIECES::iterator insert(const SPOT& spot, SBD_EDITED_TEXT piece);
  void insert_statement(const SBD_NODE* node, SPOT spot, SBD_EDITED_TEXT piece);
  void insert_block(const SBD_NODE* node, SPOT spot, const SBD_SOURCE_EDIT& edit);

  REMOVAL plan_removal(const SBD_NODE* node) const;
  SBD_PART lines_of(const SBD_PART& range) const;
  void remove(const REMOVAL& removal);

  SBD_FILE_PARSER& m_document;
  SBD_SOURCE_EDITS m_edits;
  SBD_SOURCE_LAYOUT m_layout;
  NEW_NODES m_new_nodes;
  SBD_VALUE_READER m_value_reader;
};

#endif
