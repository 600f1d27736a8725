// Comments of a file that say of advice: known, and meant to be so.
//
//   # sbd: allow TOOL_NO_EFFECT - values of the bench, kept for the next revision
//
// On a line of its own such a comment is about the statement or block that follows it, behind an
// opening brace about that block, and behind a statement about its line.
#ifndef TOOLS_WAIVERS_H
#define TOOLS_WAIVERS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tools/findings.h"
#include "tools/tree_walk.h"

namespace sbd_tool {

class WAIVERS {
 public:
  // Those of a document without faults.
  explicit WAIVERS(const SBD_FILE_PARSER& document);

  // The reason why the file waives the finding; null if it does not.
  const std::string* find_reason(const FINDING& finding);

  // Waivers that are not well formed.
  const std::vector<FINDING>& list_faults() const { return m_faults; }
  // Those that found nothing to waive, once all findings were looked up; without those for the keys
  // in `unknown`, which nobody looked for.
  std::vector<FINDING> list_idle(const std::vector<std::string>& unknown) const;

 private:
  // One key of a comment.
  struct WAIVER {
    std::string_view key;
    std::string reason;
    SOURCE_RANGE place;     // Of the comment.
    std::size_t begin = 0;  // What it is about.
    std::size_t end = 0;
    unsigned long line = 0;  // This line as well, unless it is 0.
    bool is_used = false;
  };

  void take_comment(const SBD_FILE_PARSER& document, const NODE& node, const NODE* block);
  void take_statement(const SBD_FILE_PARSER& document, const NODE& node);
  void read(std::string_view comment, WAIVER waiver);
  void add_keys(std::string_view keys, WAIVER waiver);
  void refuse(const WAIVER& waiver, std::string reason);

  std::vector<WAIVER> m_waivers;
  std::vector<FINDING> m_faults;
};

}  // namespace sbd_tool

#endif
