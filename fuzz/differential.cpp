// The library's parser against the generated one: the same syntax errors in the same order, the
// same tree, and the same tokens.
#include "fuzz/fuzz_support.h"
#include "sbd/sbd_parser.h"
#include "tests/reference/document_dump.h"
#include "tests/reference/reference_reader.h"

namespace {

std::string message_of(const REFERENCE_FAULT& fault) {
  std::string text = std::string("System Build Descriptor File ") + k_file_name;
  text += " contains syntax error \"";
  text.append(fault.text, 0, fault.text.find('\0'));  // A message's arguments are C strings.
  return text + "\" at line " + std::to_string(fault.line);
}

void expect_posted(const std::vector<REFERENCE_FAULT>& faults, const std::vector<POSTED>& posted) {
  FUZZ_EXPECT(posted.size() == faults.size(), std::to_string(posted.size()));
  for (std::size_t i = 0; i != faults.size(); ++i) {
    FUZZ_EXPECT(posted[i].number == 2, posted[i].text);
    FUZZ_EXPECT(posted[i].text == message_of(faults[i]), posted[i].text);
  }
}

void check_read(FUZZ_RUN& run, std::string_view text, const REFERENCE_RESULT& expected) {
  SBD_FILE_PARSER document;
  const bool is_good = read_text(document, text);
  const std::vector<POSTED> posted = run.take_posted();
  if (!expected.faults.empty()) {
    FUZZ_EXPECT(!is_good, "a text with syntax errors is accepted");
    expect_posted(expected.faults, posted);
  } else if (is_good) {
    FUZZ_EXPECT(dump_document(document) == expected.dump, expected.dump);
  } else {
    for (const POSTED& message : posted) {
      FUZZ_EXPECT(message.number >= 3 && message.number <= 5, message.text);
    }
  }
}

// The parser alone, whose tree can be seen whatever the checks have to say about it.
void check_parse(FUZZ_RUN& run, std::string_view text, const REFERENCE_RESULT& expected) {
  SBD_FILE_PARSER document;
  auto& para = document.get_parser_para();
  sbd_yyFlexLexer scanner(text.data(), text.size());
  scanner.set_file_name(k_file_name);
  scanner.set_parser_para(&para);
  const int status = sbd_yyparse(&scanner, &para);
  expect_posted(expected.faults, run.take_posted());
  FUZZ_EXPECT(para.error_count == expected.faults.size(), std::to_string(para.error_count));
  FUZZ_EXPECT(status == (expected.gave_up ? 1 : 0), std::to_string(status));
  FUZZ_EXPECT(dump_document(document) == expected.dump, expected.dump);
}

void check_scan(FUZZ_RUN& run, std::string_view text) {
  std::vector<REFERENCE_FAULT> unexpected;
  const std::vector<REFERENCE_TOKEN> tokens = scan_reference(text, &unexpected);
  SBD_FILE_PARSER document;
  sbd_yyFlexLexer scanner(text.data(), text.size());
  scanner.set_file_name(k_file_name);
  scanner.set_parser_para(&document.get_parser_para());
  for (const REFERENCE_TOKEN& token : tokens) {
    FUZZ_EXPECT(scanner.yylex() == token.code, token.text);
    FUZZ_EXPECT(scanner.yytext() == token.text, token.text);
    FUZZ_EXPECT(scanner.lineno() == token.line, token.text);
  }
  expect_posted(unexpected, run.take_posted());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FUZZ_RUN run;
  // Of just this size, so that the sanitizer sees what reads beyond it.
  const std::vector<char> exact(data, data + size);
  const std::string_view text(exact.data(), exact.size());
  const REFERENCE_RESULT expected = read_reference(text);
  check_read(run, text, expected);
  check_parse(run, text, expected);
  check_scan(run, text);
  return 0;
}
