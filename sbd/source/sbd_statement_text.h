// The text of one statement, or of the head of a block, and where its parts stand in it.
#ifndef SBD_SOURCE_SBD_STATEMENT_TEXT_H
#define SBD_SOURCE_SBD_STATEMENT_TEXT_H

#include <cstddef>
#include <string_view>

#include "sbd/sbd_memory.h"

// A stretch of a text.
struct SBD_PART {
  std::size_t begin = 0;
  std::size_t end = 0;
  std::size_t size() const { return end - begin; }
};

// A text that was edited or is new. Its parts are found once, when it is taken from a text without
// fault; from then on they are kept up, whatever the parts are replaced by.
class SBD_EDITED_TEXT {
 public:
  SBD_EDITED_TEXT() = default;
  // Any text; `name` is where it has a name that may change.
  explicit SBD_EDITED_TEXT(SBD_STRING text, SBD_PART name = {});

  // The statement that `text` begins with, up to and including its ";".
  static SBD_EDITED_TEXT of_statement(std::string_view text);

  // New statements between the two margins: indentation, line end.
  static SBD_EDITED_TEXT of_assignment(std::string_view head, std::string_view name,
                                       std::string_view value, std::string_view tail);
  static SBD_EDITED_TEXT of_references(std::string_view head, std::string_view name,
                                       const SBD_STRING_LIST& names, std::string_view tail);

  const SBD_STRING& text() const { return m_text; }

  void put_name(std::string_view name);
  void put_value(std::string_view value);
  // The list with its brackets; an empty text removes it, and the blanks before it.
  void put_attributes(std::string_view attributes);
  // All names of a reference statement. They are separated like those before them.
  void put_references(const SBD_STRING_LIST& names);
  // One name of a reference statement, counted from 0; one that is not there is left alone.
  void put_reference(std::size_t index, std::string_view name);
  void remove_reference(std::size_t index);

 private:
  void replace(const SBD_PART& part, std::string_view text);
  void detach_attributes();
  SBD_VECTOR<SBD_PART> references() const;

  SBD_STRING m_text;
  SBD_PART m_name;
  SBD_PART m_body;        // The value, or the names from the first to the last.
  SBD_PART m_attributes;  // With brackets; empty, and right behind the value, where there are none.
};

// Behind the statement that begins at `at`, its ";" included.
std::size_t sbd_statement_end(std::string_view text, std::size_t at);

// Behind the name, or the keyword, that begins at `at`.
std::size_t sbd_name_end(std::string_view text, std::size_t at);

// The first place from `at` on that is no blank, tab, carriage return or newline.
std::size_t sbd_skip_space(std::string_view text, std::size_t at);

// The same without newlines.
std::size_t sbd_skip_blanks(std::string_view text, std::size_t at);

#endif
