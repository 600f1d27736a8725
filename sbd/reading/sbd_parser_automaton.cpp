#include "sbd/reading/sbd_parser_automaton.h"

#include <cstddef>

#include "sbd/reading/sbd_grammar_tables.h"
#include "sbd/reading/sbd_scratch.h"

namespace {

// So many tokens must be shifted after an error before the next one is reported.
constexpr int k_tokens_to_recover = 3;
constexpr int k_no_terminal = -1;
constexpr int k_end_terminal = 0;

int terminal_of(int code) {
  for (int terminal = 0; terminal != k_terminal_count; ++terminal) {
    if (k_terminal_codes[terminal] == code) return terminal;
  }
  return k_error_terminal;  // No scanner of ours makes another code.
}

class AUTOMATON {
 public:
  AUTOMATON(sbd_yyFlexLexer& scanner, SBD_FILE_PARSER::SBD_PARSER_PARA* para)
      : m_scanner(scanner), m_para(para) {
    m_states.push_back(0);
  }

  int run() {
    for (;;) {
      if (m_terminal == k_no_terminal) m_terminal = terminal_of(m_scanner.yylex());
      const int action = k_actions[m_states.back()][m_terminal];
      if (action == k_accept) return 0;
      if (action > 0) {
        shift(action);
      } else if (action < 0) {
        reduce(-action);
      } else if (!recover()) {
        return 1;
      }
    }
  }

 private:
  void shift(int action) {
    m_states.push_back(static_cast<std::uint8_t>(action - 1));
    m_terminal = k_no_terminal;
    if (m_tokens_to_recover > 0) --m_tokens_to_recover;
  }

  void reduce(int rule) {
    m_states.truncate(m_states.size() - k_rules[rule][1]);
    const int state = k_gotos[m_states.back()][k_rules[rule][0]];
    m_states.push_back(static_cast<std::uint8_t>(state));
  }

  // Reports the error unless one was just before, drops the token if it has already stopped the
  // parser once, and goes back to where an error may stand.
  bool recover() {
    if (m_tokens_to_recover == 0) sbd_yyerror(&m_scanner, m_para);
    if (m_tokens_to_recover == k_tokens_to_recover) {
      if (m_terminal == k_end_terminal) return false;
      m_terminal = k_no_terminal;
    }
    m_tokens_to_recover = k_tokens_to_recover;
    while (k_actions[m_states.back()][k_error_terminal] <= 0) {
      m_states.pop_back();
      if (m_states.empty()) return false;
    }
    const int action = k_actions[m_states.back()][k_error_terminal];
    m_states.push_back(static_cast<std::uint8_t>(action - 1));
    return true;
  }

  sbd_yyFlexLexer& m_scanner;
  SBD_FILE_PARSER::SBD_PARSER_PARA* m_para;
  SBD_SCRATCH<std::uint8_t, 256> m_states;
  int m_terminal = k_no_terminal;  // The look-ahead.
  int m_tokens_to_recover = 0;
};

}  // namespace

int sbd_run_automaton(sbd_yyFlexLexer& scanner, SBD_FILE_PARSER::SBD_PARSER_PARA* para) {
  return AUTOMATON(scanner, para).run();
}
