// The library's hand-written scanner and parser against generated ones: the same syntax errors in
// the same order, and the same tree.
//
// SBD_TEST_SCALE multiplies the number of random texts; below 1 it also thins out the enumerations.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <numeric>
#include <string>
#include <string_view>
#include <vector>

#include "host/sbd_host.h"
#include "sbd/sbd_file_parser.h"
#include "sbd/sbd_parser.h"
#include "tests/reference/document_dump.h"
#include "tests/reference/reference_reader.h"
#include "tests/reference/text_generator.h"
#include "tests/support/test_scale.h"

namespace {

using namespace std::string_literals;

constexpr std::size_t k_accepted_count = 4000;
constexpr std::size_t k_valid_count = 4000;
constexpr std::size_t k_mutation_count = 30000;
constexpr std::size_t k_soup_count = 30000;
constexpr std::size_t k_large_count = 8;
constexpr std::size_t k_deep_count = 40;

// A library that differs everywhere must not drown the first difference.
constexpr std::size_t k_max_differences = 5;

constexpr char k_file_name[] = "f.sbd";

// The part of an enumeration that is run. Without a common divisor every token still gets to every
// place.
std::size_t stride_for(std::size_t vocabulary_size) {
  std::size_t stride = test_scale() >= 1 ? 1 : static_cast<std::size_t>(1 / test_scale());
  while (std::gcd(stride, vocabulary_size) != 1) ++stride;
  return stride;
}

struct POSTED {
  int number;
  std::string key;
  std::string text;
};

std::string expected_message(const REFERENCE_FAULT& fault) {
  std::string text = "System Build Descriptor File ";
  text += k_file_name;
  text += " contains syntax error \"";
  // A message's arguments are C strings.
  text.append(fault.text, 0, fault.text.find('\0'));
  text += "\" at line ";
  text += std::to_string(fault.line);
  return text;
}

std::string show(std::string_view text) {
  std::string line;
  for (char character : text.substr(0, 3000)) {
    if (character == '\0') {
      line += "\\0";
    } else if (character == '\n') {
      line += "\\n\n";
    } else {
      std::string one;
      append_quoted(one, std::string_view(&character, 1));
      line += one.substr(1, one.size() - 2);
    }
  }
  if (text.size() > 3000) line += "...";
  return line;
}

class PARSER_DIFFERENTIAL : public ::testing::Test {
 protected:
  enum EXPECTATION { ANY_RESULT, MUST_BE_ACCEPTED };

  void SetUp() override {
    sbd_host::set_message_handler([this](const sbd_host::MESSAGE& message) {
      m_posted.push_back({message.number, message.key, message.text});
    });
    sbd_host::set_internal_error_handler(
        [this](const sbd_host::INTERNAL_ERROR& error) { m_internal_error = error.condition; });
  }

  void TearDown() override {
    sbd_host::set_message_handler({});
    sbd_host::set_internal_error_handler({});
  }

  // Each check returns false when enough differences were seen to stop.

  // What a program does: read_text, checks of declarations and references included.
  bool check_read(const std::string& text, EXPECTATION expectation = ANY_RESULT) {
    return check_read(text, read_reference(text), expectation);
  }

  // All three views of one text.
  bool check_all(const std::string& text, EXPECTATION expectation = ANY_RESULT) {
    const REFERENCE_RESULT expected = read_reference(text);
    return check_read(text, expected, expectation) && check_parse(text, expected) &&
           check_scan(text);
  }

 private:
  bool check_read(const std::string& text, const REFERENCE_RESULT& expected,
                  EXPECTATION expectation) {
    m_posted.clear();
    const bool is_accepted = m_document.read_text(text.data(), text.size(), k_file_name);
    if (!expected.faults.empty()) {
      if (is_accepted) return differ(text, "read accepts a text with syntax errors", expected);
      if (!have_posted(expected.faults)) return differ(text, "read posts other errors", expected);
    } else if (is_accepted) {
      if (!m_posted.empty()) return differ(text, "read posts and accepts", expected);
      return check_dump(text, "read", expected);
    } else {
      if (expectation == MUST_BE_ACCEPTED) return differ(text, "read rejects", expected);
      if (m_posted.empty()) return differ(text, "read rejects in silence", expected);
      for (const POSTED& message : m_posted) {
        if (message.number < 3 || message.number > 5) {
          return differ(text, "read posts an error that is not there", expected);
        }
      }
    }
    if (m_document.get_parser_para().root != nullptr) {
      return differ(text, "read leaves a tree behind", expected);
    }
    return check_internal_error(text, expected);
  }

  // The parser by itself, whose tree can be seen for every text without syntax errors.
  bool check_parse(const std::string& text, const REFERENCE_RESULT& expected) {
    m_posted.clear();
    m_document.clear();
    // Of exactly this size, so that a sanitizer sees what reads beyond the end.
    const std::unique_ptr<char[]> copy = copy_of(text);
    SBD_FILE_PARSER::SBD_PARSER_PARA& para = m_document.get_parser_para();
    sbd_yyFlexLexer scanner(copy.get(), text.size());
    scanner.set_file_name(k_file_name);
    scanner.set_parser_para(&para);
    const int status = sbd_yyparse(&scanner, &para);
    if (!have_posted(expected.faults)) return differ(text, "parser posts other errors", expected);
    if (para.error_count != expected.faults.size()) {
      return differ(text, "parser counts " + std::to_string(para.error_count) + " errors",
                    expected);
    }
    if (status != (expected.gave_up ? 1 : 0)) {
      return differ(text, "parser returns " + std::to_string(status), expected);
    }
    const bool is_same = check_dump(text, "parser", expected);
    m_document.clear();
    return is_same;
  }

  bool check_scan(const std::string& text) {
    m_posted.clear();
    m_document.clear();
    REFERENCE_RESULT expected;
    const std::vector<REFERENCE_TOKEN> tokens = scan_reference(text, &expected.faults);
    const std::unique_ptr<char[]> copy = copy_of(text);
    sbd_yyFlexLexer scanner(copy.get(), text.size());
    scanner.set_file_name(k_file_name);
    scanner.set_parser_para(&m_document.get_parser_para());
    for (std::size_t i = 0; i < tokens.size(); ++i) {
      const int code = scanner.yylex();
      if (code != tokens[i].code || scanner.yytext() != tokens[i].text ||
          scanner.lineno() != tokens[i].line) {
        return differ(text,
                      "token " + std::to_string(i) + " is " + std::to_string(code) + " `" +
                          show(scanner.yytext()) + "` at line " + std::to_string(scanner.lineno()) +
                          " instead of " + std::to_string(tokens[i].code) + " `" +
                          show(tokens[i].text) + "` at line " + std::to_string(tokens[i].line),
                      expected);
      }
    }
    const std::size_t count = m_document.get_parser_para().error_count;
    m_document.clear();
    if (!have_posted(expected.faults) || count != expected.faults.size()) {
      return differ(text, "scanner posts other errors", expected);
    }
    return true;
  }

  bool check_dump(const std::string& text, const char* who, const REFERENCE_RESULT& expected) {
    const std::string dump = dump_document(m_document);
    if (dump != expected.dump) {
      return differ(text, who + " makes this tree\n"s + dump + "instead of\n" + expected.dump,
                    expected);
    }
    return check_internal_error(text, expected);
  }

  bool check_internal_error(const std::string& text, const REFERENCE_RESULT& expected) {
    if (m_internal_error.empty()) return true;
    const std::string condition = m_internal_error;
    m_internal_error.clear();
    return differ(text, "internal error " + condition, expected);
  }

  bool have_posted(const std::vector<REFERENCE_FAULT>& faults) const {
    if (m_posted.size() != faults.size()) return false;
    for (std::size_t i = 0; i < faults.size(); ++i) {
      if (m_posted[i].number != 2 || m_posted[i].key != "ESBD_SBD_SYNTAX_ERROR" ||
          m_posted[i].text != expected_message(faults[i])) {
        return false;
      }
    }
    return true;
  }

  bool differ(const std::string& text, const std::string& what, const REFERENCE_RESULT& expected) {
    std::string report = what + "\n---- expected errors\n";
    for (const REFERENCE_FAULT& fault : expected.faults) {
      report += show(expected_message(fault)) + "\n";
    }
    report += "---- posted\n";
    for (const POSTED& message : m_posted) {
      report += std::to_string(message.number) + " " + message.key + " " + show(message.text);
      report += "\n";
    }
    ADD_FAILURE() << report << "---- text\n" << show(text);
    return ++m_difference_count < k_max_differences;
  }

  static std::unique_ptr<char[]> copy_of(const std::string& text) {
    auto copy = std::make_unique<char[]>(text.size());
    std::copy(text.begin(), text.end(), copy.get());
    return copy;
  }

  // One document for all texts of a test, so that what an earlier read leaves behind shows.
  SBD_FILE_PARSER m_document;
  std::vector<POSTED> m_posted;
  std::string m_internal_error;
  std::size_t m_difference_count = 0;
};

// A text with every construct, and short enough to be changed in every place.
const char k_every_construct[] =
    "# head\n"
    "device d {  # inside\r\n"
    "  a = 1; # tail\n"
    "  b = +5K;c=0x1fMB; e = 017GB [k, l m.n];\n"
    "  f = { {0b10, -.5MHz}, \"s\n#\", foo , true};#t\n"
    "  r[0][1] < d.a, .b, d >; # refs\n"
    "  module m { g = -7hz[q .w]; h = False; }\n"
    "}\n"
    "device e{x=1;}\n";

const std::vector<std::string>& hand_picked_texts() {
  static const std::vector<std::string> k_texts = {
      "",
      "\n",
      " ",
      "\r\n",
      "\0"s,
      "#",
      "#\n",
      "# no end",
      "# a\n# b\n",
      "# a\r\n\r\n# b\r\n",
      ";# a\n",
      "\xef\xbb\xbf# a\n",
      "a",
      "a b",
      "a b {",
      "a b { c",
      "a b { c =",
      "a b { c = 1",
      "a b { c = 1;",
      "a b { c = 1; }",
      "a b { c = 1; } ",
      "device d { }",
      "device d { } device e { x = 1; }",
      "device d { # only\n}",
      "device d { x = 1; } # behind\n",
      "device d { x = 1; }\n# below\n",
      "device d { x = 1; };",
      "device d { x = 1;; y = 2; }",
      "device d { x = 1 y = 2; z = 3; }",
      "device d { x = 1\n y = 2\n z = 3\n}\n",
      "device d { x = {1}; }",
      "device d { x = {}; }",
      "device d { x = {1,}; }",
      "device d { x = {1,2,3; }",
      "device d { x = {1,2}}; }",
      "device d { x = {1,{2,{3,4}}}[a]; }",
      "device d { x = 64 K; }",
      "device d { x = 100MHz; y = 100 MHz; }",
      "device d { x = 08; y = 0b2; z = 0xg; }",
      "device d { x = -0x10; y = +010; z = -010; w = - 5; }",
      "device d { x = .5; y = +.5; z = 5.; w = 5..5; }",
      "device d { x = 5[a]; y = 5K[a]; z = 5 [a]; }",
      "device d { x = 5kB; y = 5abc; z = 5\"a\"; }",
      "device d { x = 1 [a b.c, d]; y = 2 [a b]; z = 3 [a.b]; }",
      "device d { x < a >; y < a, b.c, .d >; z < r[0] >; w < >; }",
      "device d { x < a > [b]; y <a b>; }",
      "device d { x = a.b; y = r[0]; z = a[12]; }",
      "device d { x = \"open; }\n",
      "device d { x = \"a\nb\nc\"; y = ; }",
      "device d { x = 1; y = foo; # tail\n}",
      "device d { x = 1; bus b { # tail\n y = 2; } }",
      "device d { x = 1; y = 5 # line\n; }",
      "device d { bus b { x = 1; } # tail\n y = ; z = 1; }",
      "device d { x = 1; # a\n # b\n # c\n y = 1 }",
      "x = 1;",
      "} } }",
      "}\ndevice d { x = ; }\n",
      "device d { x = {5};\n}\ndevice e {\n y = ;\n}\n",
      "a b { c ; d e { f = 1; } }\n",
      "a b c d { x = 1; y }\n",
      "device d { = @ = @ x = 1; }\n",
      "device d { x = 1; $",
      "device d { x $ = 1; % y & = ; }\n",
      "device d { \0 x = \"a\0b\"; #\0\n y = \0; }"s,
      "device d { \"a\0b\" x = 1; }"s,
      "device d { x = \"\xc3\xa4\"; # \xff\n \xff y = 1; }",
      "true true { true = true; }",
      "tRue tRue { tRue = tRue; }",
      "device true[0] { x = 1; }",
      "DEVICE d { Module m { x = 1; } PARAMETERS p { y = 1; } }",
      "device d { device e { x = 1; } }",
      "module m { x = 1; }",
      "frob f { x = 1; }",
      "device d { x = 1; X = 2; }",
      "device d { x < nowhere, d.x, .x >; }",
      "device d { a = 4294967296; b = 9223372036854775808; c = 0xfffffffffffffffff; }",
      "device d { a = 07777777777777777777777777; b = 0b1" + std::string(100, '0') + "1; }",
      "device d { a = " + std::string(500, '9') + "; b = " + std::string(500, '9') + ".; }",
      "device " + std::string(5000, 'd') + " { x = 1; }",
      "device d { x = \"" + std::string(10000, '\n') + "\"; y = ; }",
      std::string(1000, '}'),
      std::string(1000, '{'),
      std::string(1000, ';') + "# a\n",
      std::string(1000, '@'),
      std::string(300, '"'),
      std::string(301, '"'),
      std::string(300, '#'),
      k_every_construct,
  };
  return k_texts;
}

TEST_F(PARSER_DIFFERENTIAL, HandPicked) {
  for (const std::string& text : hand_picked_texts()) {
    if (!check_all(text)) return;
  }
  EXPECT_TRUE(check_all(k_every_construct, MUST_BE_ACCEPTED));
}

TEST_F(PARSER_DIFFERENTIAL, EveryPair) {
  // What the first text leaves open meets the second; the line break closes a comment.
  for (const std::string& first : hand_picked_texts()) {
    for (const std::string& second : hand_picked_texts()) {
      if (!check_read(first + second)) return;
      if (!check_read(first + "\n" + second)) return;
    }
  }
}

TEST_F(PARSER_DIFFERENTIAL, EveryAlignment) {
  for (const std::string& text : hand_picked_texts()) {
    if (text.size() > 400) continue;
    for (std::size_t blanks = 1; blanks < 70; ++blanks) {
      if (!check_all(std::string(blanks, ' ') + text)) return;
    }
  }
}

TEST_F(PARSER_DIFFERENTIAL, EveryCut) {
  for (const std::string& text : hand_picked_texts()) {
    if (text.size() > 400) continue;
    for (std::size_t length = 0; length <= text.size(); ++length) {
      if (!check_all(text.substr(0, length))) return;
      if (!check_all(text.substr(length))) return;
    }
  }
}

TEST_F(PARSER_DIFFERENTIAL, EveryDeletion) {
  const std::string text = k_every_construct;
  for (std::size_t length = 1; length <= 12; ++length) {
    for (std::size_t start = 0; start + length <= text.size(); ++start) {
      std::string changed = text;
      changed.erase(start, length);
      if (!check_all(changed)) return;
    }
  }
}

TEST_F(PARSER_DIFFERENTIAL, EveryByte) {
  const std::size_t stride = stride_for(256);
  const std::string text = k_every_construct;
  for (std::size_t i = 0; i < text.size() * 256; i += stride) {
    const std::size_t place = i / 256;
    const char byte = static_cast<char>(i % 256);
    std::string changed = text;
    changed[place] = byte;
    if (!check_read(changed)) return;
    changed = text;
    changed.insert(place, 1, byte);
    if (!check_read(changed)) return;
  }
}

TEST_F(PARSER_DIFFERENTIAL, EveryTokenEverywhere) {
  // Between any two characters of the text, as it is and apart from its neighbours.
  const std::string text = k_every_construct;
  for (std::size_t place = 0; place <= text.size(); ++place) {
    for (const std::string& token : full_vocabulary()) {
      for (const char* glue : {"", " ", "\n"}) {
        std::string changed = text;
        changed.insert(place, glue + token + glue);
        if (!check_read(changed)) return;
      }
    }
  }
}

// ---- Random texts -------------------------------------------------------------------------------

TEST_F(PARSER_DIFFERENTIAL, AcceptedDocuments) {
  for (std::uint64_t seed = 0; seed < scaled(k_accepted_count); ++seed) {
    const std::size_t size = static_cast<std::size_t>(seed % 80);
    if (!check_all(generate_descriptor(seed, size, VALIDITY::SEMANTICS), MUST_BE_ACCEPTED)) return;
  }
}

TEST_F(PARSER_DIFFERENTIAL, ValidSyntax) {
  for (std::uint64_t seed = 0; seed < scaled(k_valid_count); ++seed) {
    const std::size_t size = static_cast<std::size_t>(seed % 80);
    if (!check_all(generate_descriptor(seed, size, VALIDITY::SYNTAX))) return;
  }
}

TEST_F(PARSER_DIFFERENTIAL, LargeDocuments) {
  for (std::uint64_t seed = 0; seed < scaled(k_large_count); ++seed) {
    const std::string text = generate_descriptor(seed, 10000, VALIDITY::SEMANTICS, 12);
    if (!check_all(text, MUST_BE_ACCEPTED)) return;
    if (!check_all(mutate_text(text, text, seed))) return;
  }
}

TEST_F(PARSER_DIFFERENTIAL, DeepDocuments) {
  for (std::uint64_t seed = 0; seed < scaled(k_deep_count); ++seed) {
    const std::string text = generate_descriptor(seed, 700, VALIDITY::SEMANTICS, 300);
    if (!check_all(text, MUST_BE_ACCEPTED)) return;
    if (!check_all(mutate_text(text, text, seed))) return;
  }
}

TEST_F(PARSER_DIFFERENTIAL, DeepLists) {
  for (const std::size_t depth : {10u, 100u, 199u, 200u, 201u, 900u}) {
    std::string text = "device d { x = " + std::string(depth, '{') + "a";
    for (std::size_t i = 0; i < depth; ++i) text += ",1}";
    if (!check_all(text + ";}", MUST_BE_ACCEPTED)) return;
    if (!check_all(text + "};}")) return;
    if (!check_all(text.substr(0, text.size() - 1) + ";}")) return;
  }
}

TEST_F(PARSER_DIFFERENTIAL, Mutations) {
  for (std::uint64_t seed = 0; seed < scaled(k_mutation_count); ++seed) {
    // Several mutations of one text; texts of a few lines, where an error has effects up to the
    // end.
    const std::size_t size = static_cast<std::size_t>(1 + seed / 8 % 24);
    const VALIDITY validity = seed / 8 % 2 == 0 ? VALIDITY::SEMANTICS : VALIDITY::SYNTAX;
    const std::string text = generate_descriptor(seed / 8, size, validity);
    const std::string other = generate_descriptor(seed / 8 + 1, size, validity);
    if (!check_all(mutate_text(text, other, seed))) return;
  }
}

TEST_F(PARSER_DIFFERENTIAL, TokenSoup) {
  for (std::uint64_t seed = 0; seed < scaled(k_soup_count); ++seed) {
    const std::string soup = generate_token_soup(seed, static_cast<std::size_t>(1 + seed % 40));
    if (!check_all(seed % 2 == 0 ? soup : "device d {" + soup + "}")) return;
  }
}

// ---- Token sequences ----------------------------------------------------------------------------

TEST_F(PARSER_DIFFERENTIAL, SequencesUpTo3) {
  const std::size_t stride = stride_for(full_vocabulary().size());
  for (std::size_t length = 1; length <= 3; ++length) {
    for (const char* glue : {"", " ", "\n"}) {
      if (!for_each_sequence(
              full_vocabulary(), length, glue, stride, [this](const std::string& text) {
                return check_all(text) && check_read("device d {\n" + text + "\n}\n");
              })) {
        return;
      }
    }
  }
}

// The same in the middle of each construct.
TEST_F(PARSER_DIFFERENTIAL, SequencesUpTo3InContext) {
  static const char* const k_contexts[][2] = {
      {"device d { x = ", "; }"},      {"device d { x = 1 ", "; y = 1; }"},
      {"device d { x = {1, ", "}; }"}, {"device d { x = foo [", "]; } # a\n"},
      {"device d { x < ", ">; }\n"},   {"device d { x = ; ", "}\n y = ;\n"},
      {"device d { x = {5}; ", "\n}"}, {"} ", "device d { x = 1 }"},
  };
  const std::size_t stride = stride_for(full_vocabulary().size());
  for (const auto& context : k_contexts) {
    for (std::size_t length = 1; length <= 3; ++length) {
      if (!for_each_sequence(full_vocabulary(), length, "", stride, [&](const std::string& text) {
            return check_read(context[0] + text + context[1]);
          })) {
        return;
      }
    }
  }
}

TEST_F(PARSER_DIFFERENTIAL, SequencesOf4) {
  const std::size_t stride = stride_for(full_vocabulary().size());
  for_each_sequence(full_vocabulary(), 4, " ", stride, [this](const std::string& text) {
    return check_read(text) && check_read("device d {\n" + text + "\n}\n");
  });
}

TEST_F(PARSER_DIFFERENTIAL, GluedSequencesOf4) {
  const std::size_t stride = stride_for(small_vocabulary().size());
  for_each_sequence(small_vocabulary(), 4, "", stride, [this](const std::string& text) {
    return check_read(text) && check_read("device d {\n" + text + "\n}\n");
  });
}

TEST_F(PARSER_DIFFERENTIAL, SequencesOf5) {
  const std::size_t stride = stride_for(small_vocabulary().size());
  for_each_sequence(small_vocabulary(), 5, " ", stride,
                    [this](const std::string& text) { return check_read(text); });
}

}  // namespace
