// What the generated scanner and parser of the reference reader share.
#ifndef TESTS_REFERENCE_REFERENCE_INTERNAL_H
#define TESTS_REFERENCE_REFERENCE_INTERNAL_H

#include <deque>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/reference/reference_reader.h"

// One run of the reference reader.
struct REFERENCE_STATE {
  // The scanner's current match and line counter.
  std::string_view text;
  unsigned line = 1;

  std::vector<REFERENCE_FAULT> faults;

  // All texts that semantic values point to. They live until the run ends, so neither the parser's
  // error recovery nor its end has to free any.
  std::deque<std::string> texts;
  std::string dump;

  std::string* keep(std::string value) { return &texts.emplace_back(std::move(value)); }
  // Appends `second` to `first`, and drops it.
  static std::string* join(std::string* first, std::string* second) {
    *first += *second;
    std::string().swap(*second);
    return first;
  }
  void add_fault() { faults.push_back({std::string(text), line}); }
};

// A token that carries text.
struct REFERENCE_WORD {
  const std::string* text;
  unsigned line;
};

// The generated scanner. Unexpected characters go to the state's faults.
int reference_scan(REFERENCE_STATE* state, void* scanner);

// Owns the generated scanner's buffer.
class REFERENCE_SCANNER {
 public:
  REFERENCE_SCANNER(std::string_view text, REFERENCE_STATE* state);
  ~REFERENCE_SCANNER();
  REFERENCE_SCANNER(const REFERENCE_SCANNER&) = delete;
  REFERENCE_SCANNER& operator=(const REFERENCE_SCANNER&) = delete;
  int next() { return reference_scan(m_state, m_scanner); }

 private:
  REFERENCE_STATE* m_state;
  void* m_scanner = nullptr;
};

// Parts of the canonical text, in whole lines. The first four wrap what stands in their last
// argument, so that deep nesting does not leave a copy of the text on every level.
void reference_block(const REFERENCE_WORD& type, const REFERENCE_WORD& name, std::string* members);
void reference_list(std::string* elements);
void reference_assignment(const REFERENCE_WORD& name, const std::string* attributes,
                          const REFERENCE_WORD* comment, std::string* value);
void reference_reference(const REFERENCE_WORD& name, const REFERENCE_WORD* comment,
                         std::string* references);
std::string reference_comment(const REFERENCE_WORD& comment);
std::string reference_number(int token, const REFERENCE_WORD& text, int unit);
std::string reference_bool(bool flag);
std::string reference_string(const REFERENCE_WORD& text);
std::string reference_name(const REFERENCE_WORD& name);
std::string reference_attribute(const REFERENCE_WORD& key, const REFERENCE_WORD* value);

#endif
