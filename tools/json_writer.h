// JSON text, written piece by piece.
//
// A document's tree may be deeper than a JSON library's recursion, and larger than one wants in
// memory twice, so only single texts and numbers are left to such a library.
#ifndef TOOLS_JSON_WRITER_H
#define TOOLS_JSON_WRITER_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "tools/output.h"

namespace sbd_tool {

class JSON_WRITER {
 public:
  // Whether each member has a line of its own. What is inside a ONE_LINE is ONE_LINE, too.
  enum class LAYOUT { LINES, ONE_LINE };

  explicit JSON_WRITER(OUTPUT& output) : m_output(output) {}

  void begin_object(LAYOUT layout) { begin('{', '}', layout); }
  void begin_array(LAYOUT layout) { begin('[', ']', layout); }
  // Ends the innermost object or array.
  void end();

  // The key of the next value; within objects only.
  void key(std::string_view name);

  // Bytes that are no UTF-8 become U+FFFD.
  void text(std::string_view text);
  void boolean(bool value);
  void null();
  void count(std::uint64_t number);
  // A number that is spelled already; null where JSON has no spelling for it (infinity).
  void number(std::string_view spelled);

  // Ends the last line.
  void finish();

 private:
  struct SCOPE {
    char closer;
    LAYOUT layout;
    bool is_empty;
  };

  void begin(char opener, char closer, LAYOUT layout);
  void begin_item();
  void begin_line();
  void value(std::string_view json);

  OUTPUT& m_output;
  std::vector<SCOPE> m_scopes;
  bool m_has_key = false;  // The next value stands behind its key.
};

}  // namespace sbd_tool

#endif
