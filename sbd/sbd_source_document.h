// Edits that keep the text: a descriptor whose blanks, comments and order stay as they were typed.
//
// SBD_SOURCE_DOCUMENT keeps a file's text beside its tree. An edit changes the tree as the
// operation of the same kind of SBD_FILE_PARSER does, and in the text no more than the statement or
// the block that it is about; every other byte stays: alignment, comments, blank lines, line ends.
//
//   SBD_SOURCE_DOCUMENT source;
//   if (!source.read("board.sbd")) return false;
//   source.set_value("board.clocks.main", "50MHz");   // only "33MHz" becomes "50MHz"
//   return source.save(nullptr);
//
// One thread uses a document at a time. Nothing throws across this interface.
#ifndef SBD_SBD_SOURCE_DOCUMENT_H
#define SBD_SBD_SOURCE_DOCUMENT_H

#include <cstddef>
#include <string_view>

#include "sbd/sbd_api.h"
#include "sbd/sbd_file_parser.h"
#include "sbd/sbd_memory.h"

class SBD_SOURCE_STATE;  // The tree, the text, and what was edited.

// Where something new stands among the members of its block: at the end, or right before or behind
// a sibling, which is named by its own name inside the block. A comment line that stands above a
// sibling is not part of it. An unknown kind is an internal error, and the edit is refused.
struct SBD_PLACE {
  // At the end of the block, or beside the sibling.
  enum KIND { AT_END, BEFORE, BEHIND };

  static SBD_PLACE before(const char* name) { return {BEFORE, name}; }  // Keeps the pointer.
  static SBD_PLACE behind(const char* name) { return {BEHIND, name}; }  // Keeps the pointer.

  KIND kind = AT_END;             // Which of these.
  const char* sibling = nullptr;  // Its own name; of no meaning with AT_END.
};

// A descriptor as text and tree.
class SBD_API SBD_SOURCE_DOCUMENT {
 public:
  using PLACE = SBD_PLACE;  // Where something new stands.

  // An empty document with an empty text.
  SBD_SOURCE_DOCUMENT() noexcept;
  ~SBD_SOURCE_DOCUMENT();
  SBD_SOURCE_DOCUMENT(const SBD_SOURCE_DOCUMENT&) = delete;
  SBD_SOURCE_DOCUMENT& operator=(const SBD_SOURCE_DOCUMENT&) = delete;

  // As the operations of SBD_FILE_PARSER of the same name, messages included: a file that can't be
  // opened leaves the document as it was; a faulty one leaves tree and text empty. A transaction
  // that is under way ends.
  bool read(const char* path);
  bool read_text(const char* text, std::size_t length, const char* name);

  // The tree as edited, owned by this object and there as long as it is. Positions (get_range and
  // the like) and get_source are about the text as it was read, and edited things may have none.
  // roll_back, and an edit during which the host's memory ran out, replace all nodes of the tree;
  // every other edit only what it is about.
  const SBD_FILE_PARSER& document() const;

  // The text as edited; valid until the next operation on this object. Putting it together costs
  // about one copy of it, once after each edit; a text without edits is not copied.
  std::string_view text() const;

  // ---- Edits -------------------------------------------------------------------------------
  //
  // Objects are named by their full names. An edit is refused as the operation of SBD_FILE_PARSER
  // that it performs refuses it, with that one's message; what is refused besides is said below and
  // posts one SBD_ERROR. The result is then false, and neither tree nor text has changed.
  //
  // New things stand on lines of their own, with the indentation and line ends of those around
  // them, or on one line where those around them do.

  // Sets a parameter to a value in the notation of the format: 32, 0x40K, 50MHz, -1.5, true, name,
  // "a text", {1, {2, 3K}}. Tree and text get base, unit and digits as they are typed. Of a
  // parameter that exists only the value's bytes change; its kind must be one that the present
  // value gives way to (see SBD_FILE_PARSER::set_para_value). A new one is added at the block's
  // end. Anything but one value is refused: "Cannot set value to the parameter: 'p' in the block:
  // 'b'. Not a value: '...'."
  bool set_value(const char* name, const char* value);

  // Adds a parameter. Refused when a member of that name exists, with "Parameter already exists."
  // behind the words above, and when the sibling does not: "There is no member: '...'."
  bool add_value(const char* name, const char* value, const PLACE& place = PLACE());

  // Sets the names of a reference statement, all of which must be full names of objects. A
  // statement that exists stays in its place; a new one is put at `place`, and a sibling that does
  // not exist is refused as above.
  bool set_references(const char* name, const SBD_STRING_LIST& names, const PLACE& place = PLACE());

  // Replaces all attributes of a parameter by those of the chain, which stays the caller's; null
  // removes them.
  bool set_attributes(const char* name, const SBD_FILE_PARSER::SBD_PARA_ATTR* attributes);
  // Removes all attributes of a parameter; a refusal is a warning.
  bool remove_attributes(const char* name);

  // Removes a statement with the comment behind it: its lines when it has them for itself,
  // otherwise its own bytes and the blanks before it (at the begin of a line, those behind it).
  // Lines of comment above it stay. False, without a message, when there is none of that name.
  bool remove_parameter(const char* name);

  // Adds a block without members, which the format has no form for: put something into it before
  // saving. `parent` null or empty is the top level. A sibling that does not exist is refused with
  // the words of a block that can't be created and "There is no member: '...'."
  bool add_block(const char* type, const char* name, const char* parent,
                 const PLACE& place = PLACE());

  // Removes a block as remove_parameter removes a statement. References to what is inside the block
  // are not looked for, as with SBD_FILE_PARSER::delete_block; as long as there are any, the
  // document can't be saved. False, without a message, when nothing has that name.
  bool remove_block(const char* name);

  // Removes all references to the named object from outside it, and every reference statement that
  // has none left. False, without a message, when nothing has that name. Looks at the whole tree.
  bool remove_references(const char* name);

  // Gives a block or statement another name. With `with_references`, every reference that names the
  // object, or something inside it, is rewritten as far as its name goes, so that it means the same
  // object when the text is read again; that looks at the whole tree. Without, such references keep
  // their text, and the document can't be saved until they are right again. False, without a
  // message, when the new name is taken or not well formed or the old one unknown.
  bool rename(const char* name, const char* new_name, bool with_references);

  // ---- Transactions ------------------------------------------------------------------------
  //
  // All edits from begin on can be taken back together. Transactions do not nest.

  // False when a transaction is under way.
  bool begin();
  // Keeps the edits. False when no transaction is under way.
  bool commit();
  // Text and tree are again what they were at `begin`: the file is parsed again and the earlier
  // edits repeated. False when no transaction is under way.
  bool roll_back();

  // ---- Saving ------------------------------------------------------------------------------

  // True when the text means what the tree holds: it is read back and compared with it. Otherwise
  // `why` tells the reason: what the format has no form for (a block without members, an index of
  // more than one digit, a list of less than two elements, a reference statement without names or
  // with a bare indexed name, an attribute value without ".", a name that is a Boolean word ...), a
  // name declared twice, a reference that names nothing or something else.
  bool verify(SBD_STRING& why) const;

  // Verifies the text and replaces the file at `path`, or the one that was read when it is null, so
  // that there is always either the old file or the new one, whole, even when the program is killed
  // or the power fails: the text is written to a new file in the same folder, brought to the disc,
  // read back and renamed. The mode is kept, the owner where that is allowed; a symbolic link stays
  // and its target is replaced; other hard links keep the old content. A file that may not be
  // written, and what is no file, is refused. On failure the old file stays as it is,
  // SBD_FILE_ERROR and then one SBD_ERROR with the reason are posted, and the result is false.
  bool save(const char* path) const;

  // The same with the tree in the library's own layout, as SBD_FILE_PARSER::write gives it, in
  // place of the text. A floating number that has more than six decimals is refused.
  bool save_canonical(const char* path) const;

 private:
  SBD_SOURCE_STATE* m_state = nullptr;
};

// Writes any document in the library's own layout with the checks and the safety of
// SBD_SOURCE_DOCUMENT::save_canonical. On failure `why` tells the reason, and it is posted as
// there.
SBD_API bool sbd_save_document(const SBD_FILE_PARSER& document, const char* path, SBD_STRING& why);

#endif
