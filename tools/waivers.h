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
#include <unordered_map>
#include <vector>

#include "tools/findings.h"
#include "tools/tree_walk.h"

namespace sbd_tool {

class WAIVERS {
 public:
  // Those of a document without faults.
  explicit WAIVERS(const SBD_FILE_PARSER& document);
  ~WAIVERS() = default;
  WAIVERS(const WAIVERS&) = delete;
  WAIVERS& operator=(const WAIVERS&) = delete;

  // The reason why the file waives the finding, the nearest one; null if it does not.
  const std::string* find_reason(const FINDING& finding);

  // Waivers that are not well formed.
  const std::vector<FINDING>& list_faults() const { return m_faults; }
  // Those that found nothing to waive, once all findings were looked up; without those for the keys
  // in `unknown`, which nobody looked for.
  std::vector<FINDING> list_idle(const std::vector<std::string>& unknown) const;

 private:
  // A key of a comment.
  struct WAIVER {
    std::string_view key;
    std::string reason;
    SOURCE_RANGE place;     // Of the comment.
    std::size_t scope = 0;  // In m_scopes.
  };
  // Waivers of one key that are about the same text; they are used together.
  struct GROUP {
    std::string_view key;
    const std::string* reason = nullptr;  // Of the first one.
    bool is_used = false;
  };
  // What waivers are about. Scopes nest, so each but the outermost ones is inside another one.
  struct SCOPE {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::size_t parent = 0;
    std::vector<GROUP> groups;
  };
  struct COMMENT {
    std::string_view text;
    SOURCE_RANGE place;
  };

  void collect(const SBD_FILE_PARSER& document);
  void take_comment(const SBD_FILE_PARSER& document, const NODE& node, const NODE* block);
  void take_statement(const SBD_FILE_PARSER& document, const NODE& node);
  void end_pending(const SBD_FILE_PARSER& document, const NODE* subject);
  void read(const COMMENT& comment, const SOURCE_RANGE& scope, unsigned long line);
  void add_keys(std::string_view keys, std::string_view reason, const COMMENT& comment,
                const SOURCE_RANGE& scope, unsigned long line);
  void refuse(const COMMENT& comment, std::string reason);
  void build_scopes();
  GROUP* find_group(std::size_t scope, std::string_view key);

  static constexpr std::size_t k_no_scope = static_cast<std::size_t>(-1);

  std::vector<COMMENT> m_pending;  // They are about what comes next.
  std::vector<WAIVER> m_waivers;
  std::vector<SOURCE_RANGE> m_ranges;  // What each of them is about.
  std::vector<SCOPE> m_scopes;         // Sorted by where they begin, the outer ones first.
  // The waivers behind statements, by line.
  std::unordered_map<unsigned long, std::vector<std::size_t>> m_lines;
  std::vector<FINDING> m_faults;
};

}  // namespace sbd_tool

#endif
