// The format layer: one descriptor file in memory.
//
// SBD_FILE_PARSER reads a descriptor into a tree of nodes with a table of all declared names,
// checks it, and answers queries by dotted name. All work is synchronous; one thread uses a
// document at a time, except that const operations may run side by side while nobody changes it.
//
// Nothing throws across this interface. Faults of the file are posted through the host's message
// service (see sbd/msg_sbd.h); misuse goes to MSG_INTERNAL_ERROR::report, and the operation then
// carries on with false, null or zero.
#ifndef SBD_SBD_FILE_PARSER_H
#define SBD_SBD_FILE_PARSER_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "h/msg_service.h"
#include "sbd/sbd_api.h"
#include "sbd/sbd_memory.h"

class SBD_JOINED_NAME;
class SBD_STORE;  // What a document keeps besides its records: memory, source text, name index.

// A document: the tree of a descriptor, its names, and the text that it was read from.
class SBD_API SBD_FILE_PARSER {
 public:
  struct SBD_BLOCK;
  struct SBD_STATEMENT;
  struct SBD_SYMBOL;
  struct SBD_PARA_VALUE;
  struct SBD_PARA_REF;
  struct SBD_PARA_ATTR;

  // ---- Records of the tree ---------------------------------------------------------------
  //
  // A document owns every record that the reader made or that was handed to it (add_node,
  // add_symbol), and all that hangs on it. All lists are singly linked, end with null and keep
  // file order. A caller makes records with `new` and texts with sbd_copy_text. The link fields and
  // texts of records that a document owns are changed through the document's operations only; a
  // value may be replaced by hand once free_para_val has freed the old one.
  //
  // Members named m_... are the library's own bookkeeping: leave them as they are.

  // A block, a statement or a line of comment.
  struct SBD_NODE : SBD_RECORD {
    // What a node is.
    enum NODE_TYPE : std::uint16_t { NT_BLOCK = 0, NT_STATEMENT = 1, NT_COMMENT = 2 };

    NODE_TYPE type = NT_COMMENT;     // Tells which member of the union counts.
    std::uint16_t m_references = 0;  // How many references have found this node; 65535 for more.
    std::uint32_t m_position = 0;    // 1 + offset in the source; 0 when no file was read for it.
    SBD_NODE* next = nullptr;        // The next sibling.
    union {
      SBD_BLOCK* block = nullptr;  // NT_BLOCK
      SBD_STATEMENT* statement;    // NT_STATEMENT
      char* comment;               // NT_COMMENT: the text with its "#" and line end
    };
  };

  // type name { members }
  struct SBD_BLOCK : SBD_RECORD {
    // The type keywords.
    enum BLOCK_TYPE : std::uint32_t {
      BT_DEVICE = 0,
      BT_BUS = 1,
      BT_MODULE = 2,
      BT_SLAVE = 3,
      BT_MASTER = 4,
      BT_REGION = 5,
      BT_PARAMETERS = 6,
      BT_UNKNOWN = 7
    };

    BLOCK_TYPE block_type = BT_UNKNOWN;  // What the keyword stands for.
    std::uint32_t m_end_position = 0;    // Offset just behind the "}"; 0 when none was read.
    char* type = nullptr;                // The type keyword as written.
    SBD_SYMBOL* name = nullptr;          // Its name in the scope around it.
    SBD_NODE* members = nullptr;         // First member; null for an empty block.
    SBD_NODE* m_last = nullptr;          // Last member, as far as known.
    void* m_scope_table = nullptr;       // Where the members' names are found.
  };

  // name = value [attributes];    or    name < references >;
  struct SBD_STATEMENT : SBD_RECORD {
    // The two forms above.
    enum STATEMENT_TYPE : std::uint32_t { ST_ASSIGNMENT = 0, ST_REFERENCE = 1 };

    STATEMENT_TYPE type = ST_ASSIGNMENT;  // Tells which member of the union counts.
    SBD_SYMBOL* name = nullptr;           // Its name in its block.
    union {
      SBD_PARA_VALUE* value = nullptr;  // ST_ASSIGNMENT
      SBD_PARA_REF* reference;          // ST_REFERENCE: first element
    };
    SBD_PARA_ATTR* attributes = nullptr;  // First attribute; assignments only.
    char* comment = nullptr;              // Comment behind the ";", with its line end, or null.
  };

  // The elements of a list value, in order. The list owns its elements.
  class SBD_API SBD_VALUE_LIST : public SBD_RECORD {
   public:
    SBD_VALUE_LIST() = default;
    SBD_VALUE_LIST(const SBD_VALUE_LIST&) = delete;
    SBD_VALUE_LIST& operator=(const SBD_VALUE_LIST&) = delete;

    std::size_t size() const { return m_size; }  // Without those inside elements.
    bool empty() const { return m_size == 0; }   // No list of a file is.
    // `index` below size(); not checked.
    SBD_PARA_VALUE* operator[](std::size_t index) const { return m_items[index]; }
    SBD_PARA_VALUE* const* begin() const { return m_items; }         // The first element.
    SBD_PARA_VALUE* const* end() const { return m_items + m_size; }  // Behind the last one.

    // Appends `value`, which the list then owns. False, and `value` stays the caller's, when the
    // host has no memory for it.
    bool push_back(SBD_PARA_VALUE* value) noexcept;

   private:
    friend class SBD_STORE;
    SBD_PARA_VALUE** m_items = nullptr;
    std::uint32_t m_size = 0;
    std::uint32_t m_capacity = 0;  // 0 when the items lie in the document's own memory.
    union {
      bool* m_grown = nullptr;  // Where a list of the reader's notes that it holds other elements.
      SBD_VALUE_LIST* m_next_to_free;  // While it is freed.
    };
    std::uint32_t m_length = 0;  // Bytes in the source, from "{" to "}".
  };

  // A value as written: kind, number or text, and unit. Numbers are kept unscaled.
  struct SBD_PARA_VALUE : SBD_RECORD {
    // How a value is written.
    enum VALUE_TYPE : std::uint8_t {
      VT_UDECIMAL = 0,
      VT_OCTAL = 1,
      VT_HEXAL = 2,
      VT_BINARY = 3,
      VT_FLOAT = 4,
      VT_BOOL = 5,
      VT_STRING = 6,
      VT_LIST = 7
    };
    // What stands behind a number: none, K, M, G, Hz, MHz.
    enum QUANTITY_UNIT : std::uint8_t {
      QU_NONE = 0,
      QU_KB = 1,
      QU_MB = 2,
      QU_GB = 3,
      QU_HZ = 4,
      QU_MHZ = 5
    };

    static constexpr std::uint16_t k_long = 65535;  // The m_length of all that is no shorter.

    VALUE_TYPE type = VT_UDECIMAL;  // Tells which member of the union counts.
    QUANTITY_UNIT unit = QU_NONE;   // Of a number.
    std::uint16_t m_length = 0;     // Bytes in the source, from m_position on, or k_long.
    std::uint32_t m_position = 0;   // As in SBD_NODE.
    union {
      double number = 0;     // VT_UDECIMAL to VT_FLOAT; integers lie in 0 to 4294967295
      std::uint32_t flag;    // VT_BOOL: 1 or 0
      char* text;            // VT_STRING: the text as written, with its quotes if it has any
      SBD_VALUE_LIST* list;  // VT_LIST
    };
  };

  // One element of a reference list.
  struct SBD_PARA_REF : SBD_RECORD {
    char* name = nullptr;        // As written; a leading "." means relative to the enclosing block.
    SBD_NODE* target = nullptr;  // What the name stands for; null until it is resolved.
    SBD_PARA_REF* next = nullptr;  // The next element.
    std::uint32_t m_position = 0;  // As in SBD_NODE.
  };

  // One attribute of an assignment.
  struct SBD_PARA_ATTR : SBD_RECORD {
    char* attr_key = nullptr;       // Never null in a document.
    char* attr_value = nullptr;     // Null for a bare key.
    SBD_PARA_ATTR* next = nullptr;  // The next attribute.
    std::uint32_t m_position = 0;   // As in SBD_NODE.
  };

  // A declared name.
  struct SBD_SYMBOL : SBD_RECORD {
    // What a name is declared for; a parameter is a statement of either type.
    enum SYMBOL_TYPE : std::uint16_t { SYM_BLOCK = 0, SYM_PARAMETER = 1 };

    std::uint32_t line = 0;  // Line of the declaring name; 0 when no file was read for it.
    SYMBOL_TYPE type = SYM_PARAMETER;  // What it is declared for.
    std::uint16_t m_tag = 0;   // Digest of the name; not 0 just for names that the reader entered.
    char* name = nullptr;      // As written.
    SBD_NODE* node = nullptr;  // The node that declares the name.
    SBD_NODE* parent = nullptr;  // The enclosing block's node; the own node at top level; null
                                 // until resolve_symbol has run.
    SBD_SYMBOL* next = nullptr;  // The next symbol of the bucket.
  };

  // The text of a token, as the scanner hands it to the parser.
  struct SBD_TOKEN_INFO {
    std::uint32_t line = 0;  // The scanner's line counter when the token had been matched.
    std::string_view text;   // The characters exactly as matched; a view, not a copy.
  };

  // The bucket heads of all declared names. A bucket's chain runs from the symbol entered last to
  // the one entered first.
  class SBD_SYMBOL_TABLE : public SBD_VECTOR<SBD_SYMBOL*> {
   public:
    static constexpr std::size_t k_bucket_count = 211;  // Of every table.
    // An empty table; `store` is that of the document, or null for a table without one.
    explicit SBD_SYMBOL_TABLE(SBD_STORE* store)
        : SBD_VECTOR<SBD_SYMBOL*>(k_bucket_count, nullptr), m_store(store) {}
    SBD_STORE* store() const { return m_store; }  // Of the document; null for none.

   private:
    SBD_STORE* m_store;
  };

  // What the parser works on.
  struct SBD_PARSER_PARA {
    SBD_SYMBOL_TABLE* symbol_table = nullptr;  // All declared names.
    SBD_NODE* root = nullptr;                  // First top-level node; null for an empty document.
    std::uint32_t error_count = 0;             // Syntax errors of the current parse.
  };

  // A place in the text that was read. Lines and columns count from 1, columns in bytes.
  struct SBD_SOURCE_RANGE {
    std::size_t offset = 0;    // In bytes, from 0 on.
    std::size_t length = 0;    // In bytes.
    unsigned long line = 0;    // Of its first byte.
    unsigned long column = 0;  // Of its first byte.
  };

  // ---- Document --------------------------------------------------------------------------

  // An empty document. When the host has no memory for it, that is reported as an internal error,
  // and every later operation answers as an empty document does.
  SBD_FILE_PARSER() noexcept;
  virtual ~SBD_FILE_PARSER();
  SBD_FILE_PARSER(const SBD_FILE_PARSER&) = delete;
  SBD_FILE_PARSER& operator=(const SBD_FILE_PARSER&) = delete;

  // Reads the file at `path`, replacing the document. True when the file has no fault. A file
  // that can't be opened or read posts SBD_FILE_ERROR and leaves the document as it was; so does
  // one of 4 GiB or more. Syntax errors, and after a clean parse all faults of declarations, then
  // all of blocks and references, are posted, and leave the document empty.
  virtual bool read(const char* path);

  // Writes the document to the file at `path`, or to standard output when `path` is null, in the
  // library's own layout: four blanks per level, braces on lines of their own, an empty line behind
  // each block. Standard output is closed afterwards. False, after posting SBD_FILE_ERROR, when the
  // file can't be opened; errors while writing are not noticed. Reading the file back gives the
  // same tree, except for what the format has no form for (a block without members, a list of less
  // than two elements, decimals behind the sixth).
  virtual bool write(const char* path) const;

  // The same for a text of `length` bytes that the caller holds; `name` stands for the file in
  // messages. The text is copied.
  virtual bool read_text(const char* text, std::size_t length, const char* name);

  // Frees the tree and all symbols. The file name is kept.
  void clear() noexcept;

  // The path of the last read that opened its file, or null. Owned by the document.
  const char* get_file_name() const { return m_file_name; }

  // The symbol table, the root and the error count; for the parser and for tools that walk the
  // whole tree.
  SBD_PARSER_PARA& get_parser_para() { return m_parser_para; }
  const SBD_PARSER_PARA& get_parser_para() const { return m_parser_para; }

  // Appends `node` to the members of `parent`, or to the top level when `parent` is null. The
  // document then owns it. A parent that is not a block is an internal error and changes nothing;
  // the node then stays the caller's.
  void add_node(SBD_NODE* node, SBD_NODE* parent);

  // Unlinks `node` from the members of `parent` (null: from the top level) and frees it with all
  // that it holds. A node that is not there is left alone, and so is everything when `parent` is
  // not a block.
  void delete_node(SBD_NODE* node, SBD_NODE* parent);

  // Frees a node that is in no list, with all that it holds: members, symbols, values, texts.
  void free_node(SBD_NODE* node) noexcept;

  // Frees a value with its text or its elements.
  void free_para_val(SBD_PARA_VALUE* value) const noexcept;

  // Enters `symbol` at the head of its bucket; the document then owns it. Its name must not change
  // while it is entered.
  void add_symbol(SBD_SYMBOL* symbol);

  // Takes `symbol` out of its bucket and frees it. A symbol that is not entered is left alone.
  void delete_symbol(SBD_SYMBOL* symbol) noexcept;

  // The bucket of `name` among `size` buckets; letter case does not matter.
  static unsigned long hash_pjw(const char* name, unsigned long size) noexcept;

  // The type that a keyword stands for, in any letter case; BT_UNKNOWN for any other text.
  static SBD_BLOCK::BLOCK_TYPE lookup_block_type(const char* keyword) noexcept;

  // Posts `message` to the host's default destination and destroys it; null is ignored.
  static void post_message(MSG_POST* message) noexcept;

  // ---- Checks; read runs them, and each reports every fault it finds ------------------------

  // Gives every symbol of `list` and below its parent and rejects names declared twice in one
  // scope. `parent` is the node whose members are `list`; for the top level both are the root.
  bool resolve_symbol(SBD_NODE* parent, SBD_NODE* list);

  // False, after posting SBD_DECLARATION_ERROR, when a symbol entered earlier has the same name,
  // letter case aside, in the same scope.
  bool check_declaration(SBD_SYMBOL* symbol);

  // Checks the blocks of `list` and below and resolves the references in them.
  bool check_semantic(SBD_NODE* list);

  // False, after posting SBD_BLOCK_ERROR, for a block of unknown type, a device block that is not
  // at top level, or another block that is.
  bool check_block(SBD_BLOCK* block);

  // Finds the target of each element; posts SBD_REFERENCE_ERROR for each that has none.
  bool resolve_reference(SBD_STATEMENT* statement);

  // ---- Queries ---------------------------------------------------------------------------
  //
  // A name is the chain of declared names from the top level down, joined by "."; letter case does
  // not matter, "[" and "]" are ordinary characters. A two-name form is the one-name form for
  // block "." parameter. Unknown or null names give false or null in silence, and outputs are then
  // left as they were. Records that are handed out belong to the document.
  //
  // A document that is asked for many names makes itself an index of all, of about 50 bytes for
  // each of them, and keeps it until its first edit. Where the host has no memory for it, it does
  // without.

  // The node named `ref`, seen from inside `scope` (null: from the top level).
  SBD_NODE* get_ref_object(const char* ref, const SBD_NODE* scope) const;

  // The full name of a block or statement, spelled as declared. False for comments.
  bool get_ref_name(const SBD_NODE* node, SBD_STRING& name) const;

  SBD_BLOCK* get_block(const char* name) const;  // Null for a statement's name.
  SBD_STATEMENT* get_statement(const char* block, const char* parameter) const;    // Either type.
  SBD_PARA_VALUE* get_para_value(const char* block, const char* parameter) const;  // Assignments.
  SBD_PARA_ATTR* get_para_attr(const char* block, const char* parameter) const;    // The first one.
  SBD_PARA_REF* get_para_ref(const char* block, const char* parameter) const;      // The first one.

  // True for a statement of either type.
  bool is_parameter_defined(const char* block, const char* parameter) const;
  bool is_parameter_defined(const char* name) const;
  bool is_block_defined(const char* name) const;

  // True for a letter followed by letters, digits and "_", then any number of indices of decimal
  // digits in "[" and "]".
  bool is_valid_parameter_name(const char* name) const;

  // True when a reference statement outside the named node refers to it.
  bool is_referenced(const char* name) const;
  // The same among the siblings from `first` on and in the blocks below them.
  bool is_referenced(const SBD_NODE* target, const SBD_NODE* first) const;

  // The type of the named block: the keyword as written, or its value.
  bool get_block_type(const char* name, SBD_STRING& type) const;
  bool get_block_type(const char* name, SBD_BLOCK::BLOCK_TYPE& type) const;

  // The full names of all blocks of a type below `scope` (null: in the document), a block before
  // the blocks inside it. The list is cleared first; an unknown type or scope leaves it empty.
  void get_typed_blocks(const char* type, SBD_STRING_LIST& names, const char* scope) const;
  void get_typed_blocks(SBD_BLOCK::BLOCK_TYPE type, SBD_STRING_LIST& names,
                        const char* scope) const;
  // The same for a node as scope; appends to the list without clearing it.
  void get_typed_blocks(SBD_BLOCK::BLOCK_TYPE type, SBD_STRING_LIST& names,
                        const SBD_NODE* scope) const;

  // What a number with this unit is multiplied by: 1, 1024, 2^20, 2^30, 1 (Hz), 10^6 (MHz); 1 for
  // an unknown unit.
  static unsigned long get_unit_value(SBD_PARA_VALUE::QUANTITY_UNIT unit) noexcept;

  // A number times its unit, truncated, of which the low 32 bits are kept (4G gives 0). False for
  // values that are not numbers.
  bool get_value(const char* block, const char* parameter, unsigned long& value) const;
  bool get_value(const char* name, unsigned long& value) const;
  // A number times its unit, not rounded.
  bool get_value(const char* block, const char* parameter, double& value) const;
  bool get_value(const char* name, double& value) const;
  // A Boolean as 1 or 0.
  bool get_value(const char* block, const char* parameter, int& value) const;
  bool get_value(const char* name, int& value) const;
  // The text of a string value, with its quotes if it has any.
  bool get_value(const char* block, const char* parameter, SBD_STRING& value) const;
  bool get_value(const char* name, SBD_STRING& value) const;
  // The names of a reference statement, as written, appended to the list.
  bool get_value(const char* block, const char* parameter, SBD_STRING_LIST& names) const;

  // ---- Writing -----------------------------------------------------------------------------

  // Writes the siblings from `node` on, which stand at nesting level `indent`, to an open stream.
  // Always true. A broken record (a block without name, an unknown kind) is an internal error, and
  // the rest is written.
  bool write(std::FILE* stream, SBD_NODE* node, unsigned long indent) const;

  // Writes one value in the base it was given in, with its unit.
  void write(std::FILE* stream, SBD_PARA_VALUE* value) const;

  // ---- Editing -----------------------------------------------------------------------------
  //
  // Blocks are named by their full names, parameters by their names inside the block. A refused
  // edit posts one SBD_ERROR (or, where said, one SBD_WARNING) that tells why, returns false and
  // leaves the document as it was. What an edit makes has line 0 and no place in the source.

  // Sets a parameter of the block, or adds it at the block's end. The value must be of a kind that
  // the parameter's present value can give way to: a number replaces numbers and lists, a Boolean a
  // Boolean, a text a text. Attributes and comment are kept.
  //
  // A number in base 2, 8, 10 or 16, not scaled by its unit. Any other base counts as 10 and posts
  // a warning. Beyond 32 bits the low 32 bits are written.
  bool set_value(const char* block, const char* parameter, unsigned long value, unsigned char base,
                 SBD_PARA_VALUE::QUANTITY_UNIT unit);
  // A floating number, not scaled by its unit; written with six decimals.
  bool set_value(const char* block, const char* parameter, double value,
                 SBD_PARA_VALUE::QUANTITY_UNIT unit);
  // A Boolean: 1 is true; any other value is kept and written as false.
  bool set_value(const char* block, const char* parameter, int value);
  // A text, written as it is: an identifier, or a text in its own double quotes.
  bool set_value(const char* block, const char* parameter, const SBD_STRING& value);
  // The elements of a reference statement, in order, instead of those it has. Every name must be
  // that of an object of the document.
  bool set_value(const char* block, const char* parameter, const SBD_STRING_LIST& names);

  // A deep copy of any value, lists included, with its kind and unit; a list gives way to a number
  // and a number to a list. The value must be whole: elements, texts and lists not null.
  bool set_para_value(const char* block, const char* parameter, const SBD_PARA_VALUE& value);

  // Moves a block or statement in front of another member of the same scope, or behind it. False,
  // without a message, when either is unknown, both are the same, or their scopes differ.
  bool move_member(const char* name, const char* sibling, bool is_behind);

  // Whether such a statement may be set: on success the block's node and the statement's, or null
  // for a statement that does not exist yet. Posts the refusal otherwise.
  bool set_value_check(const char* block, const char* parameter, SBD_STATEMENT::STATEMENT_TYPE type,
                       SBD_NODE** block_node, SBD_NODE** para_node) const;

  // Replaces all attributes of a parameter by copies of the given chain; null removes them.
  bool set_attribute(const char* block, const char* parameter, const SBD_PARA_ATTR* attributes);
  // Removes all attributes of a parameter; a refusal is posted as a warning.
  void delete_attribute(const char* block, const char* parameter);

  // Deletes a statement. Nothing happens when there is none of that name; a block of that name is a
  // warning; a statement that references name is an error, and stays.
  void delete_parameter(const char* block, const char* parameter);

  // Adds an empty block at the end of `parent`, or at top level when `parent` is null, where only a
  // device block may stand.
  bool create_block(const char* type, const char* name, const char* parent);

  // Deletes a block with all that it holds. Nothing happens when the name is unknown; a statement
  // of that name is a warning; a block that references from outside name is an error, and stays.
  // References to what is inside the block are not looked for: remove them first, since their
  // targets are gone afterwards.
  void delete_block(const char* name);

  // Renames a block or statement of `scope` (null: at top level). False, without a message, when
  // the new name is taken or not well formed or the old one unknown. References keep their targets
  // and their text.
  bool rename(const char* old_name, const char* new_name, const char* scope);

  // Removes all references to the named object from outside it. A reference statement that has none
  // left is deleted.
  void delete_reference(const char* name);
  // The same among the siblings from `first` on and in the blocks below them.
  void delete_reference(const SBD_NODE* target, SBD_NODE* first);

  // ---- Positions ---------------------------------------------------------------------------
  //
  // Where in the text of the last successful read something stands. False, and nothing written,
  // for what no file was read for: what an edit or a caller made.

  // A block from its type to its "}", a statement from its name to its ";", a comment.
  bool get_range(const SBD_NODE* node, SBD_SOURCE_RANGE& range) const;
  // The declared name of a block or statement.
  bool get_name_range(const SBD_NODE* node, SBD_SOURCE_RANGE& range) const;
  // The type keyword of a block.
  bool get_type_range(const SBD_NODE* node, SBD_SOURCE_RANGE& range) const;
  // The comment behind a statement, without its line end.
  bool get_comment_range(const SBD_NODE* node, SBD_SOURCE_RANGE& range) const;
  // A value with its unit; a list with its braces; also one element of a list.
  bool get_range(const SBD_PARA_VALUE* value, SBD_SOURCE_RANGE& range) const;
  // An attribute from its key to the end of its value.
  bool get_range(const SBD_PARA_ATTR* attribute, SBD_SOURCE_RANGE& range) const;
  bool get_range(const SBD_PARA_REF* reference, SBD_SOURCE_RANGE& range) const;

  // The place that the message posted last by a read is about; a message handler calls it. False
  // when that message has no place in the text.
  bool get_fault_range(SBD_SOURCE_RANGE& range) const;

  // The bytes that were read, valid until the next read, clear or destruction.
  std::string_view get_source() const;

 protected:
  // Notes the place for get_fault_range before a message is posted: that of a statement, or the
  // name of a block; none when `node` is null or was not read from a text.
  void set_fault_place(const SBD_NODE* node) const;

  SBD_PARSER_PARA m_parser_para;
  char* m_file_name = nullptr;  // In the document's own memory.

 private:
  friend class SBD_LOOKUP;
  bool read_loaded(char* buffer, std::size_t length, const char* name);
  void refuse_file(const char* name);
  bool run_checks();
  bool find_all_targets();
  bool find_many_targets();
  bool find_target(SBD_PARA_REF& reference, const SBD_STATEMENT& statement) const;
  void set_target(SBD_PARA_REF& reference, SBD_NODE* target) const;
  SBD_NODE* find_named(const char* name, const SBD_NODE* enclosing) const;
  bool resolve_node(SBD_NODE* node, SBD_NODE* parent, bool is_top_level);
  bool judge_declaration(SBD_SYMBOL* symbol);
  bool judge_block(SBD_BLOCK* block);
  bool judge_reference(SBD_STATEMENT* statement);
  bool check_statement(SBD_STATEMENT* statement);
  SBD_NODE* first_member(const SBD_NODE* scope) const;
  SBD_NODE* find_member(const char* block, const char* parameter) const;
  void link_node(SBD_NODE* node, SBD_NODE* parent) noexcept;
  template <class CHANGE>
  bool change_value(const char* block, const char* parameter, std::uint32_t kinds, CHANGE&& change);
  SBD_STATEMENT* add_statement(SBD_NODE* block_node, const char* parameter,
                               SBD_STATEMENT::STATEMENT_TYPE type);
  void add_block(SBD_BLOCK::BLOCK_TYPE block_type, const char* type, const char* name,
                 SBD_NODE* parent);
  SBD_SYMBOL** name_slot(SBD_NODE* node) const;
  SBD_PARA_VALUE* copy_value(const SBD_PARA_VALUE& value) const;
  bool remove_references(SBD_STATEMENT& statement, const SBD_NODE* target);
  bool make_range(std::uint32_t position, std::size_t end, SBD_SOURCE_RANGE& range) const;
  std::size_t line_end(std::size_t begin) const;
  const char* message_file_name() const { return m_file_name != nullptr ? m_file_name : ""; }

  SBD_STORE* m_store = nullptr;
};

#endif
