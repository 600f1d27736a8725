// Finds what references name, several at a time. In a large document a search does little but wait
// for memory, one step after the other; while one waits here, the others go on.
#ifndef SBD_READING_SBD_TARGET_SEARCH_H
#define SBD_READING_SBD_TARGET_SEARCH_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "sbd/reading/sbd_name_index.h"
#include "sbd/sbd_file_parser.h"

// For a document as it was read.
class SBD_TARGET_SEARCH {
 public:
  using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
  using SBD_PARA_REF = SBD_FILE_PARSER::SBD_PARA_REF;
  using SBD_STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;

  struct QUESTION {
    SBD_PARA_REF* reference;
    const SBD_STATEMENT* statement;
    SBD_NODE* target;  // The answer; null if there is none.
  };

  static constexpr std::size_t k_most_questions = 8;

  SBD_TARGET_SEARCH(const SBD_NAME_INDEX& names, const SBD_NODE* root)
      : m_names(names), m_root(root) {}

  // Lets the memory be fetched that questions about a statement begin with.
  static void fetch(const SBD_STATEMENT* statement);

  // Answers so many questions.
  void answer(QUESTION* first, std::size_t count);

 private:
  // A name that is looked for part by part, in one block after the other.
  struct SEARCH {
    // Takes the next part of the name; false where there is none.
    bool take_part();

    QUESTION* question;
    const SBD_NODE* scope;  // In which the part is looked for; null is the top level.
    std::string_view left;  // Of the name, behind the part.
    std::string_view part;
    std::uint64_t hash;
    bool is_last;
  };

  static SEARCH start(QUESTION& question);
  bool find_part(SEARCH& search) const;
  template <class STEP>
  void go_on(STEP&& step);

  const SBD_NAME_INDEX& m_names;
  const SBD_NODE* const m_root;
  std::array<SEARCH, k_most_questions> m_searches{};  // Those that have not come to an end,
  std::size_t m_count = 0;                            // and how many there are.
};

#endif
