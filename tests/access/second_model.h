// A second implementation of looking up, editing and writing, as plain as can be, with which the
// library is compared. It shares no code with the library; only import and compare know its
// records.
#ifndef TESTS_ACCESS_SECOND_MODEL_H
#define TESTS_ACCESS_SECOND_MODEL_H

#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "sbd/sbd_file_parser.h"

namespace second_model {

enum class KIND { BLOCK, PARAMETER, REFERENCE, COMMENT };

// Kinds 0 to 7 and units 0 to 5 have the numbers that the library gives them.
struct VALUE {
  int kind = 0;
  double number = 0;
  long flag = 0;
  std::string text;
  std::vector<VALUE> elements;
  int unit = 0;
};

struct ATTRIBUTE {
  std::string key;
  std::optional<std::string> value;
};

struct NODE;

struct ELEMENT {
  std::string name;
  NODE* target = nullptr;  // Null once the target was deleted.
  std::uint64_t lost = 0;  // When that was.
};

struct NODE {
  KIND kind = KIND::COMMENT;
  NODE* parent = nullptr;     // The enclosing block; null at top level.
  std::string type;           // Of a block.
  std::string name;           // Of all but comments.
  unsigned line = 0;          // Of the name.
  std::uint64_t entered = 0;  // The symbol with the greatest number is the head of its bucket.
  std::uint64_t born = 0;     // When the node was made.
  std::list<std::unique_ptr<NODE>> members;
  VALUE value;
  std::vector<ELEMENT> elements;
  std::vector<ATTRIBUTE> attributes;
  std::optional<std::string> comment;  // Tail comment of a statement, or text of a comment line.
};

struct MESSAGE {
  int number;
  std::string text;  // As rendered.
};

// The arguments are those of the operations of the same names of the library.
class MODEL {
 public:
  using NAMES = std::vector<std::string>;

  bool set_unsigned(const char* block, const char* parameter, unsigned long value, unsigned base,
                    int unit);
  bool set_double(const char* block, const char* parameter, double value, int unit);
  bool set_flag(const char* block, const char* parameter, int value);
  bool set_text(const char* block, const char* parameter, const std::string& value);
  bool set_references(const char* block, const char* parameter, const NAMES& names);
  bool set_any(const char* block, const char* parameter, const VALUE& value);
  bool set_attribute(const char* block, const char* parameter,
                     const std::vector<ATTRIBUTE>& attributes);
  void delete_attribute(const char* block, const char* parameter);
  void delete_parameter(const char* block, const char* parameter);
  bool create_block(const char* type, const char* name, const char* parent);
  void delete_block(const char* name);
  bool rename(const char* old_name, const char* new_name, const char* scope);
  void delete_reference(const char* name);
  bool move_member(const char* name, const char* sibling, bool is_behind);

  // What a caller does with records of its own: a new object at the end of `block` (null: of the
  // top level), and a node taken out, referenced or not.
  NODE* add_by_hand(NODE* block, KIND kind, const std::string& name) {
    return add(block, kind, name);
  }
  void delete_by_hand(NODE* node) { remove(node); }

  NODE* find(const std::string& name) const { return resolve(name, nullptr); }
  bool is_referenced(const NODE* target) const;
  static std::string full_name(const NODE* node);
  static bool is_valid_name(const std::string& name);
  // Full names of the blocks of one type (0 to 6) below `scope`; null is the top level.
  NAMES typed_blocks(int type, const NODE* scope) const;
  // 0 to 6, or 7 for an unknown type.
  static int type_number(const std::string& type);
  static unsigned bucket_of(const std::string& name);

  std::string write() const;
  static std::string write(const VALUE& value);

  // True when reading the written text gives a document that is written the same way.
  bool is_readable() const;

  // True when a reference lost its target before `node` was made: the record of the target may have
  // become that of `node`, and then they can't be told apart.
  bool may_be_confused(const NODE* node) const;
  bool has_lost_targets() const;

  // All nodes but comments, a block before its members.
  std::vector<NODE*> nodes() const;

  // Takes over what a document holds.
  void import(const SBD_FILE_PARSER& document);
  // What differs in trees, symbols, chains or targets; "" when nothing does.
  std::string compare(const SBD_FILE_PARSER& document) const;

  // What was posted since the last call of forget.
  const std::vector<MESSAGE>& messages() const { return m_messages; }
  const std::vector<std::string>& internal_errors() const { return m_internal_errors; }
  void forget();

 private:
  using SIBLINGS = std::list<std::unique_ptr<NODE>>;

  void post_error(const std::string& text);
  void post_warning(const std::string& text);

  NODE* resolve(const std::string& name, NODE* scope) const;
  NODE* find_member(NODE* scope, const std::string& lower_name) const;
  SIBLINGS& siblings_of(NODE* node);
  const SIBLINGS& members_of(const NODE* scope) const;
  bool check(const char* block, const char* parameter, KIND kind, NODE** block_node, NODE** node);
  bool set(const char* block, const char* parameter, const VALUE& value, unsigned accepted_kinds);
  NODE* add(NODE* parent, KIND kind, const std::string& name);
  void remove(NODE* node);
  void delete_reference_in(SIBLINGS& siblings, const NODE* target);
  bool find_reference(const SIBLINGS& siblings, const NODE* target) const;
  void write(std::string& text, const SIBLINGS& siblings, unsigned level) const;
  bool is_readable(const SIBLINGS& siblings, const NODE* parent) const;
  bool resolves_as_text(const ELEMENT& element, const NODE* statement) const;

  SIBLINGS m_top;
  std::uint64_t m_clock = 0;
  std::vector<MESSAGE> m_messages;
  std::vector<std::string> m_internal_errors;
};

}  // namespace second_model

#endif
