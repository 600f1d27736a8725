// What is read, reported and answered must not depend on the locale of the host program.
#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <locale>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "sbd/msg_sbd.h"
#include "sbd/sbd_file_parser.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/tree_builder.h"
#include "tests/support/tree_outline.h"

namespace {

constexpr char TEXT[] =
    "DEVICE Istanbul {\n"
    "  Timing = 1234567.5;\n"
    "  HIGH = -.25MHz;\n"
    "  big = 4294967295;\n"
    "  Iiii[1] = 1.5K [Key .value];\n"
    "  MODULE II { i = {1.5, 0x1F, INSIDE}; FLIP <istanbul.TIMING, .I>; }\n"
    "}\n";

// What the library says about the text and about faulty ones, put together without a locale.
std::string everything_about_the_text() {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  std::string result = read_text(document, TEXT) ? "read\n" : "refused\n";

  for (const char* const name :
       {"istanbul.timing", "ISTANBUL.high", "istanbul.BIG", "Istanbul.IIII[1]", "istanbul.ii.I"}) {
    unsigned long integer = 0;
    double real = 0;
    document.get_value(name, integer);
    document.get_value(name, real);
    result +=
        std::to_string(integer) + " " + std::to_string(static_cast<long long>(real * 100)) + "\n";
  }
  SBD_STRING name;
  document.get_ref_name(document.get_ref_object("ISTANBUL.II.FLIP", nullptr), name);
  result.append(name.data(), name.size());
  result += document.is_referenced("istanbul.ii.i") ? " yes" : " no";
  result += document.is_valid_parameter_name("Ii_1[0]") ? " yes" : " no";
  result += document.is_valid_parameter_name("\xc4x") || document.is_valid_parameter_name("a\xfd")
                ? " yes"
                : " no";
  result += " " + std::to_string(SBD_FILE_PARSER::hash_pjw("ISTANBULi", 1000003));
  result += " " + std::to_string(SBD_FILE_PARSER::lookup_block_type("REGION"));
  result += " " + std::to_string(SBD_FILE_PARSER::lookup_block_type("DEVICE")) + "\n";

  // Faults of each kind, far down, where a locale would group the digits of the line.
  const std::string lines(1233, '\n');
  read_text(document, lines + "device d { x 5; \xc4 }");
  read_text(document, lines + "device d { Ii = 1; iI = 1; }");
  read_text(document, lines + "device d { I <.II>; }");
  read_text(document, lines + "modulI d { I = 1; }");
  SBD_FILE_PARSER::post_message(MSG_SBD::E::SBD_SYNTAX_ERROR("f", "t", 1234567));
  for (const std::string& message : recorder.texts()) result += message + "\n";
  return result + std::to_string(recorder.internal_errors().size());
}

std::string expected_text() {
  return "read\n"
         "1234567 123456750\n"
         "4294717296 -25000000\n"
         "4294967295 429496729500\n"
         "1536 153600\n"
         "0 0\n"
         "Istanbul.II.FLIP yes yes no " +
         std::to_string(SBD_FILE_PARSER::hash_pjw("istanbuli", 1000003)) + " 5 0\n" +
         syntax_error_text(TEST_FILE, "5", 1234) + "\n" +
         syntax_error_text(TEST_FILE, "\xc4", 1234) + "\n" +
         declaration_error_text(TEST_FILE, "iI", 1234) + "\n" +
         reference_error_text(TEST_FILE, ".II", 1234) + "\n" +
         block_error_text(TEST_FILE, "modulI d", 1234) + "\n" +
         syntax_error_text("f", "t", 1234567) + "\n0";
}

void restore_classic() {
  std::locale::global(std::locale::classic());
  std::setlocale(LC_ALL, "C");
}

// Makes it the locale of the streams, too. Not where leaks are looked for: the C library does not
// give back the search path that it makes of LOCPATH.
bool install_for_streams(const char* spelling) {
#if defined(__SANITIZE_ADDRESS__)
  static_cast<void>(spelling);
#else
  try {
    std::locale::global(std::locale(spelling));
  } catch (const std::runtime_error&) {
    return false;
  }
#endif
  return true;
}

// The first spelling that the system has, installed both ways, or null.
const char* install(const std::vector<const char*>& spellings) {
  for (const char* const spelling : spellings) {
    if (!install_for_streams(spelling)) continue;
    if (const char* const name = std::setlocale(LC_ALL, spelling)) return name;
  }
  return nullptr;
}

struct LOCALE {
  const char* name;
  std::vector<const char*> spellings;
};

void PrintTo(const LOCALE& locale, std::ostream* stream) {
  *stream << locale.name;
}

class LOCALE_TEST : public testing::TestWithParam<LOCALE> {
 protected:
  void TearDown() override { restore_classic(); }
};

TEST_P(LOCALE_TEST, ChangesNothing) {
  if (install(GetParam().spellings) == nullptr) GTEST_SKIP() << "is not installed";
  const std::string result = everything_about_the_text();
  restore_classic();
  EXPECT_EQ(result, expected_text());
}

TEST_P(LOCALE_TEST, DoesNotChangeTheTree) {
  const std::string expected = outline(*document_of("device I { x = 1.5; y = -2.75MHz; }"));
  if (install(GetParam().spellings) == nullptr) GTEST_SKIP() << "is not installed";
  const auto document = document_of("device I { x = 1.5; y = -2.75MHz; }");
  restore_classic();
  EXPECT_EQ(outline(*document), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Of, LOCALE_TEST,
    testing::Values(LOCALE{"C", {"C"}}, LOCALE{"POSIX", {"POSIX"}},
                    LOCALE{"C_UTF8", {"C.UTF-8", "C.utf8"}},
                    LOCALE{"en_US", {"en_US.UTF-8", "en_US.utf8"}},
                    LOCALE{"de_DE", {"de_DE.UTF-8", "de_DE.utf8"}},
                    LOCALE{"de_DE_8859_1", {"de_DE.ISO-8859-1", "de_DE.iso88591", "de_DE"}},
                    LOCALE{"fr_FR", {"fr_FR.UTF-8", "fr_FR.utf8"}},
                    LOCALE{"tr_TR", {"tr_TR.UTF-8", "tr_TR.utf8"}},
                    LOCALE{"tr_TR_8859_9", {"tr_TR.ISO-8859-9", "tr_TR.iso88599", "tr_TR"}},
                    LOCALE{"az_AZ", {"az_AZ.UTF-8", "az_AZ.utf8", "az_AZ"}},
                    LOCALE{"ru_RU", {"ru_RU.UTF-8", "ru_RU.utf8"}},
                    LOCALE{"ru_RU_KOI8_R", {"ru_RU.KOI8-R", "ru_RU.koi8r"}},
                    LOCALE{"ja_JP", {"ja_JP.UTF-8", "ja_JP.utf8"}},
                    LOCALE{"ja_JP_EUC", {"ja_JP.EUC-JP", "ja_JP.eucjp"}},
                    LOCALE{"pt_BR", {"pt_BR.UTF-8", "pt_BR.utf8"}},
                    LOCALE{"hi_IN", {"hi_IN.UTF-8", "hi_IN.utf8", "hi_IN"}}),
    [](const testing::TestParamInfo<LOCALE>& locale) { return std::string(locale.param.name); });

// Digits as no system writes them; catches what goes through the streams of the language.
class STRANGE_DIGITS : public std::numpunct<char> {
 protected:
  char do_decimal_point() const override { return '~'; }
  char do_thousands_sep() const override { return '!'; }
  std::string do_grouping() const override { return "\1"; }
  std::string do_truename() const override { return "si"; }
  std::string do_falsename() const override { return "no"; }
};

// Letters that are lower-cased to something else.
class STRANGE_LETTERS : public std::ctype<char> {
 protected:
  char do_tolower(char c) const override {
    return c == 'I' ? 'Q' : std::ctype<char>::do_tolower(c);
  }
  const char* do_tolower(char* begin, const char* end) const override {
    for (; begin != end; begin++) *begin = do_tolower(*begin);
    return end;
  }
};

TEST(STRANGE_LOCALE, ChangesNothing) {
  const std::locale digits(std::locale::classic(), new STRANGE_DIGITS);
  std::locale::global(std::locale(digits, new STRANGE_LETTERS));
  const std::string result = everything_about_the_text();
  restore_classic();
  EXPECT_EQ(result, expected_text());
}

}  // namespace
