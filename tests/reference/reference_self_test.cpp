// The reference reader against expectations worked out by hand, so that a comparison with it means
// something.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tests/reference/reference_reader.h"
#include "tests/reference/text_generator.h"

namespace {

using namespace std::string_literals;

// Tokens as "code:text", or the text alone for punctuation and units; line ends as "~".
std::string scan(std::string_view text, std::vector<REFERENCE_FAULT>* unexpected = nullptr) {
  static const char* const k_names[] = {"id",    "dec", "oct",  "hex",  "bin",   "float",
                                        "KB",    "MB",  "GB",   "HZ",   "MHZ",   "true",
                                        "false", "str", "line", "tail", "index", "name"};
  std::string all;
  for (const REFERENCE_TOKEN& token : scan_reference(text, unexpected)) {
    if (token.code == 0) break;
    if (!all.empty()) all += ' ';
    if (token.code >= 258) {
      all += k_names[token.code - 258];
      if (token.code >= 264 && token.code <= 268) continue;
      all += ':';
    }
    for (char character : token.text) all += character == '\n' ? '~' : character;
  }
  return all;
}

std::string list_faults(const std::vector<REFERENCE_FAULT>& faults) {
  std::string all;
  for (const REFERENCE_FAULT& fault : faults) {
    if (!all.empty()) all += ' ';
    for (char character : fault.text) {
      if (character == '\n') {
        all += '~';
      } else if (character == '\0') {
        all += "NUL";
      } else {
        all += character;
      }
    }
    all += '@';
    all += std::to_string(fault.line);
  }
  return all;
}

struct CASE {
  std::string text;
  std::string expected;
};

void check_tokens(const std::vector<CASE>& cases) {
  for (const CASE& item : cases) EXPECT_EQ(scan(item.text), item.expected) << item.text;
}

void check_unexpected(const std::vector<CASE>& cases) {
  for (const CASE& item : cases) {
    std::vector<REFERENCE_FAULT> unexpected;
    scan_reference(item.text, &unexpected);
    EXPECT_EQ(list_faults(unexpected), item.expected) << item.text;
  }
}

void check_faults(const std::vector<CASE>& cases) {
  for (const CASE& item : cases) {
    const REFERENCE_RESULT result = read_reference(item.text);
    EXPECT_EQ(list_faults(result.faults), item.expected) << item.text;
    if (!result.faults.empty()) {
      EXPECT_EQ(result.dump, "") << item.text;
    }
  }
}

// What stands for a value in the canonical text of "device d { x = VALUE; }".
std::string value_line(const std::string& value) {
  const REFERENCE_RESULT result = read_reference("device d { x = " + value + "; }\n");
  EXPECT_EQ(list_faults(result.faults), "") << value;
  const std::string before = "block 0 \"device\" \"d\" line 1\nassignment \"x\" line 1\n";
  const std::string after = "\nend\n";
  if (result.dump.size() < before.size() + after.size()) return result.dump;
  return result.dump.substr(before.size(), result.dump.size() - before.size() - after.size());
}

// ---- Tokens -------------------------------------------------------------------------------------

TEST(REFERENCE_SCAN, Names) {
  check_tokens({
      {"a _ a1_B _9", "id:a id:_ id:a1_B id:_9"},
      {"true TRUE True tRue trueX", "true:true true:TRUE true:True id:tRue id:trueX"},
      {"false FALSE False fALSE", "false:false false:FALSE false:False id:fALSE"},
      {"r[0] r[1][2]", "index:r[0] index:r[1][2]"},
      {"true[1]", "index:true[1]"},
      {"a[12]", "id:a [ dec:12 ]"},
      {"a[1][23]", "index:a[1] [ dec:23 ]"},
      {"a [1]", "id:a [ dec:1 ]"},
      {"a[x]", "id:a [ id:x ]"},
      {"a[1]b", "index:a[1] id:b"},
      {"a[1]b.c", "name:a[1]b.c"},
      {"a[1].b[2] clocks.pll_ahb_m .local .",
       "name:a[1].b[2] name:clocks.pll_ahb_m name:.local name:."},
      {".. .5 .5K .[3] a. a.[1]", "name:.. name:.5 name:.5K name:.[3] name:a. name:a.[1]"},
      {"a.b[12]", "name:a.b [ dec:12 ]"},
      {"true.x .true", "name:true.x name:.true"},
      {"[1].a", "[ dec:1 ]"},
  });
}

TEST(REFERENCE_SCAN, Numbers) {
  check_tokens({
      {"0 7 +5 +0 10", "dec:0 dec:7 dec:+5 dec:+0 dec:10"},
      {"00 017 0123", "oct:00 oct:017 oct:0123"},
      {"08 019 0128", "dec:0 dec:8 oct:01 dec:9 oct:012 dec:8"},
      {"0x1F 0XaB", "hex:0x1F hex:0XaB"},
      {"0b10 0B1 0b12", "bin:0b10 bin:0B1 bin:0b1 dec:2"},
      {"-5 -0 -010", "float:-5 float:-0 float:-0 dec:10"},
      {"1.5 5. -.5 +.5 +1.25 010.5 -00.5",
       "float:1.5 float:5. float:-.5 float:+.5 float:+1.25 float:010.5 float:-00.5"},
      {"1.5.5", "float:1.5 float:.5"},
      {"5..5", "float:5. float:.5"},
      {"5.K", "float:5. KB"},
      {"+010", "dec:+0 dec:10"},
      {"1+2-3", "dec:1 dec:+2 float:-3"},
      {"-5.", "float:-5."},
  });
}

TEST(REFERENCE_SCAN, Units) {
  check_tokens({
      {"1K 1KB 1M 1MB 1G 1GB", "dec:1 KB dec:1 KB dec:1 MB dec:1 MB dec:1 GB dec:1 GB"},
      {"1Hz 1hz 1HZ 1MHz 1mhz 1mHZ", "dec:1 HZ dec:1 HZ dec:1 HZ dec:1 MHZ dec:1 MHZ dec:1 MHZ"},
      {"1.5K 0x10K 0b1M 017GB -3Hz", "float:1.5 KB hex:0x10 KB bin:0b1 MB oct:017 GB float:-3 HZ"},
      {"100 MHz", "dec:100 id:MHz"},
      {"64\nK", "dec:64 id:K"},
      {"64\rK", "dec:64 id:K"},
      {"5Kx", "dec:5 KB id:x"},
      {"5KK", "dec:5 KB id:K"},
      {"5K5K", "dec:5 KB dec:5 KB"},
      {"5MHzK", "dec:5 MHZ id:K"},
      {"5,K", "dec:5 , id:K"},
      {"5[K", "dec:5 [ KB"},
      {"5;K", "dec:5 ; id:K"},
      {"5}K", "dec:5 } id:K"},
      {"5<K 5>K 5=K 5]K 5{K", "dec:5 < KB dec:5 > KB dec:5 = KB dec:5 ] KB dec:5 { KB"},
  });
  check_unexpected({
      {"5kB", "k@1 B@1"},
      {"5abc", "a@1 b@1 c@1"},
      {"5h", "h@1"},
      {"5mhx", "m@1 h@1 x@1"},
      {"5\"a\"", "\"@1 a@1 \"@1"},
      {"5#a\n", "#@1 a@1"},
      {"5x1", "x@1"},
      {"-0x1F", "x@1 F@1"},
      {"0xg", "x@1 g@1"},
      {"5_", "_@1"},
  });
  EXPECT_EQ(scan("5x1.y"), "dec:5 float:1.");
}

TEST(REFERENCE_SCAN, StringsAndComments) {
  check_tokens({
      {"\"\" \"a b\" \"#\"", "str:\"\" str:\"a b\" str:\"#\""},
      {"\"a\\\" b", "str:\"a\\\" id:b"},
      {"\"a\nb\"", "str:\"a~b\""},
      {"# c\n", "line:# c~"},
      {"# c\r\n", "line:# c\r~"},
      {"#\n#\n", "line:#~ line:#~"},
      {"a # c\n", "id:a line:# c~"},
      {"; # c\n# d\n", "; tail:# c~ line:# d~"},
      {"} # c\n", "} tail:# c~"},
      {";\n# c\n", "; line:# c~"},
      {";\r# c\n", "; tail:# c~"},
      {"; a = { # c\n", "; id:a = { tail:# c~"},
      {"; \"s\" r[0] a.b , [ # c\n", "; str:\"s\" index:r[0] name:a.b , [ tail:# c~"},
      {"; 5 # c\n", "; dec:5 line:# c~"},
      {"; 5, # c\n", "; dec:5 , line:# c~"},
      {"; 5K# c\n", "; dec:5 KB line:# c~"},
      {"; \"a\nb\" # c\n", "; str:\"a~b\" tail:# c~"},
  });
}

TEST(REFERENCE_SCAN, UnexpectedCharacters) {
  check_unexpected({
      {"@", "@@1"},
      {"\n\n$", "$@3"},
      {"a\xff", "\xff@1"},
      {"a\0b"s, "NUL@1"},
      {"\"open\nx", "\"@1"},
      {"# no end", "#@1"},
      {"; # no end", "#@1"},
      {"##", "#@1 #@1"},
      {"+ - +x", "+@1 -@1 +@1"},
      {"1;@2,$", "@@1 $@1"},
      {"\v\f", "\v@1 \f@1"},
  });
  EXPECT_EQ(scan("# no end"), "id:no id:end");
  EXPECT_EQ(scan("\"open\nx"), "id:open id:x");
  EXPECT_EQ(scan("5@K"), "dec:5 KB");
  EXPECT_EQ(scan("; @ # c\n"), "; tail:# c~");
  EXPECT_EQ(scan("\"a\0b\" # \0\n"s), "str:\"a\0b\" line:# \0~"s);
}

TEST(REFERENCE_SCAN, Lines) {
  const auto tokens = scan_reference("a\n\"x\ny\" b # c\n d\n\n", nullptr);
  ASSERT_EQ(tokens.size(), 6u);
  EXPECT_EQ(tokens[0].line, 1u);
  EXPECT_EQ(tokens[1].line, 3u);
  EXPECT_EQ(tokens[2].line, 3u);
  EXPECT_EQ(tokens[3].line, 4u);
  EXPECT_EQ(tokens[4].line, 4u);
  EXPECT_EQ(tokens[5].code, 0);
  EXPECT_EQ(tokens[5].line, 6u);
  EXPECT_EQ(tokens[5].text, "");
}

TEST(REFERENCE_SCAN, Empty) {
  EXPECT_EQ(scan(""), "");
  EXPECT_EQ(scan(std::string_view()), "");
  EXPECT_EQ(scan(" \t\r\n"), "");
}

// ---- Values -------------------------------------------------------------------------------------

TEST(REFERENCE_VALUE, Integers) {
  EXPECT_EQ(value_line("64K"), "number 0 64 unit 1");
  EXPECT_EQ(value_line("+5"), "number 0 5 unit 0");
  EXPECT_EQ(value_line("010"), "number 1 8 unit 0");
  EXPECT_EQ(value_line("0xfFMHz"), "number 2 255 unit 5");
  EXPECT_EQ(value_line("0B101G"), "number 3 5 unit 3");
  EXPECT_EQ(value_line("4294967295"), "number 0 4294967295 unit 0");
  EXPECT_EQ(value_line("4294967296"), "number 0 0 unit 0");
  EXPECT_EQ(value_line("2147483648"), "number 0 2147483648 unit 0");
  // Saturates at 2^63 - 1, of which the low half is all ones.
  EXPECT_EQ(value_line("9223372036854775808"), "number 0 4294967295 unit 0");
  EXPECT_EQ(value_line("0x100000001"), "number 2 1 unit 0");
  EXPECT_EQ(value_line("0x10000000000000000"), "number 2 4294967295 unit 0");
  EXPECT_EQ(value_line("02000000000000000000000"), "number 1 4294967295 unit 0");
  EXPECT_EQ(value_line("0b1" + std::string(64, '0')), "number 3 0 unit 0");
  EXPECT_EQ(value_line("0b1" + std::string(70, '1')), "number 3 4294967295 unit 0");
}

TEST(REFERENCE_VALUE, Floats) {
  EXPECT_EQ(value_line("-5"), "number 4 -5 unit 0");
  EXPECT_EQ(value_line("-.5K"), "number 4 -0.5 unit 1");
  EXPECT_EQ(value_line("5."), "number 4 5 unit 0");
  EXPECT_EQ(value_line("010.5"), "number 4 10.5 unit 0");
  EXPECT_EQ(value_line("0.1hz"), "number 4 0.10000000000000001 unit 4");
  EXPECT_EQ(value_line("-0"), "number 4 -0 unit 0");
  EXPECT_EQ(value_line("-1" + std::string(400, '0')), "number 4 -inf unit 0");
}

TEST(REFERENCE_VALUE, Others) {
  EXPECT_EQ(value_line("True"), "bool 1 unit 0");
  EXPECT_EQ(value_line("FALSE"), "bool 0 unit 0");
  EXPECT_EQ(value_line("tRue"), "string \"tRue\" unit 0");
  EXPECT_EQ(value_line("\"a b\""), "string \"\\\"a b\\\"\" unit 0");
  EXPECT_EQ(value_line("\"a\nb\xff\""), "string \"\\\"a\\x0ab\\xff\\\"\" unit 0");
  EXPECT_EQ(value_line("\"a\0b\""s), "string \"\\\"a b\\\"\" unit 0");
  EXPECT_EQ(value_line("{1, 2}"), "list unit 0\nnumber 0 1 unit 0\nnumber 0 2 unit 0\nend");
  EXPECT_EQ(value_line("{{1,2},a,{true,3K}}"),
            "list unit 0\nlist unit 0\nnumber 0 1 unit 0\nnumber 0 2 unit 0\nend\n"
            "string \"a\" unit 0\nlist unit 0\nbool 1 unit 0\nnumber 0 3 unit 1\nend\nend");
}

// ---- Trees --------------------------------------------------------------------------------------

TEST(REFERENCE_TREE, Everything) {
  const REFERENCE_RESULT result = read_reference(
      "# head\n"
      "DEVICE Stripe {  # not tail\n"
      "  x = 1; # tail\n"
      "  y = foo [a, b c.d];\n"
      "  z = 5K[k .v]; # t2\n"
      "  r[0] < a, .b.c > ; #\n"
      "  q<p>;\n"
      "  bus b[1][2] {\n"
      "    # only\n"
      "  }\n"
      "}\n"
      "frob x { v = \"1\n2\"; w = 2; }\n");
  EXPECT_EQ(list_faults(result.faults), "");
  EXPECT_FALSE(result.gave_up);
  EXPECT_EQ(result.dump,
            "comment \"# head\\x0a\"\n"
            "block 0 \"DEVICE\" \"Stripe\" line 2\n"
            "comment \"# not tail\\x0a\"\n"
            "assignment \"x\" line 3\n"
            "number 0 1 unit 0\n"
            "tail \"# tail\\x0a\"\n"
            "assignment \"y\" line 4\n"
            "string \"foo\" unit 0\n"
            "attribute \"a\"\n"
            "attribute \"b\" \"c.d\"\n"
            "assignment \"z\" line 5\n"
            "number 0 5 unit 1\n"
            "attribute \"k\" \".v\"\n"
            "tail \"# t2\\x0a\"\n"
            "reference \"r[0]\" line 6\n"
            "target \"a\"\n"
            "target \".b.c\"\n"
            "tail \"#\\x0a\"\n"
            "reference \"q\" line 7\n"
            "target \"p\"\n"
            "block 1 \"bus\" \"b[1][2]\" line 8\n"
            "comment \"# only\\x0a\"\n"
            "end\n"
            "end\n"
            "block 7 \"frob\" \"x\" line 12\n"
            "assignment \"v\" line 12\n"
            "string \"\\\"1\\x0a2\\\"\" unit 0\n"
            "assignment \"w\" line 13\n"
            "number 0 2 unit 0\n"
            "end\n");
}

TEST(REFERENCE_TREE, NothingIsNoFault) {
  for (const char* text : {"", "\n", " \r\n\t"}) {
    const REFERENCE_RESULT result = read_reference(text);
    EXPECT_TRUE(result.faults.empty());
    EXPECT_EQ(result.dump, "");
    EXPECT_FALSE(result.gave_up);
  }
  EXPECT_EQ(read_reference("#\n#a\n").dump, "comment \"#\\x0a\"\ncomment \"#a\\x0a\"\n");
}

TEST(REFERENCE_TREE, Deep) {
  constexpr std::size_t k_depth = 900;
  std::string text;
  for (std::size_t i = 0; i < k_depth; ++i) text += "bus b { ";
  text += "x = " + std::string(k_depth, '{') + "1";
  for (std::size_t i = 0; i < k_depth; ++i) text += ", 2}";
  text += ";" + std::string(k_depth, '}');
  EXPECT_EQ(list_faults(read_reference(text).faults), "");
  // One closing brace less is found at the end of the text.
  text.pop_back();
  EXPECT_EQ(list_faults(read_reference(text).faults), "@1");
}

// ---- Faults -------------------------------------------------------------------------------------

TEST(REFERENCE_FAULT, WhatIsNotAllowed) {
  check_faults({
      {"device d {}\n", "}@1"},
      {"x = 1;\n", "=@1"},
      {"}\n", "}@1"},
      {"5\n", "5@1"},
      {"r[0] d { x = 1; }\n", "r[0]@1"},
      {"device a.b { x = 1; }\n", "a.b@1"},
      {"device true { x = 1; }\n", "true@1"},
      {"device d {\n a.b = 1;\n}\n", "a.b@2"},
      {"device d {\n x = 08;\n}\n", "8@2"},
      {"device d {\n x = 64 K;\n}\n", "K@2"},
      {"device d {\n x = 100 MHz;\n}\n", "MHz@2"},
      {"device d {\n x = {5};\n}\n", "}@2"},
      {"device d {\n x = {};\n}\n", "}@2"},
      {"device d {\n x = {1,2,};\n}\n", "}@2"},
      {"device d {\n x = a.b;\n}\n", "a.b@2"},
      {"device d {\n x = .5;\n}\n", ".5@2"},
      {"device d {\n x = r[0];\n}\n", "r[0]@2"},
      {"device d {\n x < r[0] >;\n}\n", "r[0]@2"},
      {"device d {\n x < >;\n}\n", ">@2"},
      {"device d {\n x < a b >;\n}\n", "b@2"},
      {"device d {\n x < a > [b];\n}\n", "[@2"},
      {"device d {\n x = 1 [];\n}\n", "]@2"},
      {"device d {\n x = 1 [a b];\n}\n", "b@2"},
      {"device d {\n x = 1 [a \"b\"];\n}\n", "\"b\"@2"},
      {"device d {\n x = 1;;\n}\n", ";@2"},
      {"device d {\n x = 1 [a] [b];\n}\n", "[@2"},
      {"bus b { x = 1; };\n", ";@1"},
  });
}

// The quoted text and the line are those of the scanner, which has counted the token's own lines.
TEST(REFERENCE_FAULT, Positions) {
  check_faults({
      {"device d {\n x = 1;\n} # c\n", "# c~@4"},
      {"device d {\n x = 1; bus b { # c\n y = 2; }\n}\n", "# c~@3"},
      {"device d {\n x = 5 # c\n;}\n", "# c~@3"},
      {"device d {\n \"a\nb\" x = 1;\n}\n", "\"a~b\"@3"},
      {"device d {\n x = 1\n\n y = 2;\n}\n", "y@4"},
      {"device", "@1"},
      {"device d\n\n", "@3"},
      {"device d {\n x = 1;\n", "@3"},
      {"device d {\n x = 1;", "@2"},
      {"device d { x = 1; }\n# end", "#@2 @2"},
  });
}

TEST(REFERENCE_FAULT, ScannerFaultsInTrueOrder) {
  check_faults({
      {"@", "@@1"},
      {"device d {\n x = @5;\n}\n", "@@2"},
      {"device d { x = 5[a]; }\n", "a@1 ]@1"},
      {"device d { x = 5a; }\n", "a@1"},
      {"device d {\n x = 64 K;\n y = $1;\n}\n", "K@2 $@3"},
      {"device d {\n x = $ ;\n y = 1; %\n}\n", "$@2 ;@2 %@3"},
      {"device d { x = 1; \0 }"s, "NUL@1"},
      {"\xef\xbb\xbf"
       "device d { x = 1; }",
       "\xef@1 \xbb@1 \xbf@1"},
      {"device d { x = \"abc; }\n", "\"@1"},
      // The parser has to see the token behind ";" before it ends the statement.
      {"device d { x = 1; $", "$@1 @1"},
      // Unexpected characters count while the parser keeps silent, too.
      {"device d { = @ = @ x = 1; }\n", "=@1 @@1 @@1"},
  });
}

// After an error the parser is silent until three tokens were taken.
TEST(REFERENCE_FAULT, Recovery) {
  check_faults({
      {"device d {\n a = ;\n b = ;\n}\n", ";@2"},
      {"device d {\n a = ;\n b = 1;\n c = ;\n}\n", ";@2 ;@4"},
      {"device d {\n a = ;\n b = 1 2;\n}\n", ";@2 2@3"},
      {"device d {\n a = ; # c\n # d\n b = ;\n}\n", ";@2 ;@4"},
      {"device d {\n a = ; # c\n b = ;\n}\n", ";@2"},
      // "}" ends the block early; what follows it is passed over up to the next block.
      {"device d {\n x = {5};\n y = 1;\n}\n", "}@2"},
      {"device d {\n x = {5};\n}\ndevice e {\n y = ;\n}\n", "}@2 ;@5"},
      {"device d {\n x = {5};\n}\ndevice e {\n y\n}\n", "}@2 }@6"},
      {"} } }\ndevice d { x = ; }\n", "}@1 ;@2"},
      {"}\ndevice }\ndevice d { x = ; }\n", "}@1 ;@3"},
      {"a b { c ; d e { f = 1; } }\n", ";@1"},
      {"a b c d { x = 1; y }\n", "c@1 }@1"},
      {"device d {\n a = 1\n b = 2\n c = 3\n}\n", "b@3 c@4 }@5"},
      {"device d { x = 1; } # c\ndevice e { y = 1; } # c\n", "# c~@2 # c~@3"},
      {"} # a\n# b\n# c\n# d\n} # e\n", "}@1 }@5"},
  });
}

TEST(REFERENCE_FAULT, GivesUpAtTheEndOnlyInsideBlocks) {
  EXPECT_TRUE(read_reference("device d { x = 1;").gave_up);
  EXPECT_TRUE(read_reference("device d {").gave_up);
  EXPECT_FALSE(read_reference("device d").gave_up);
  EXPECT_FALSE(read_reference("}").gave_up);
  EXPECT_FALSE(read_reference("device d { = }").gave_up);
}

// ---- Generators ---------------------------------------------------------------------------------

TEST(TEXT_GENERATOR, MakesNoSyntaxErrors) {
  for (std::uint64_t seed = 0; seed < 2000; ++seed) {
    for (const VALIDITY validity : {VALIDITY::SYNTAX, VALIDITY::SEMANTICS}) {
      const std::string text =
          generate_descriptor(seed, static_cast<std::size_t>(seed % 60), validity);
      const REFERENCE_RESULT result = read_reference(text);
      ASSERT_EQ(list_faults(result.faults), "") << text;
      ASSERT_EQ(result.dump.empty(), seed % 60 == 0) << text;
    }
  }
}

// The documents reach everything that the canonical text can hold.
TEST(TEXT_GENERATOR, UsesEveryConstruct) {
  std::string all;
  for (std::uint64_t seed = 0; seed < 200; ++seed) {
    all += read_reference(generate_descriptor(seed, 100, VALIDITY::SEMANTICS)).dump;
  }
  for (const char* item :
       {"block 0 ",         "block 1 ",      "block 6 ",    "comment \"",        "\nnumber 0 ",
        "\nnumber 1 ",      "\nnumber 2 ",   "\nnumber 3 ", "\nnumber 4 ",       "unit 1\n",
        "unit 2\n",         "unit 3\n",      "unit 4\n",    "unit 5\n",          "bool 0",
        "bool 1",           "string \"\\\"", "list unit",   "list unit 0\nlist", "attribute \"",
        "tail \"",          "target \".",    "target \"",   "]\" line ",         "\\x0d\\x0a",
        "unit 1\nattribute"}) {
    EXPECT_NE(all.find(item), std::string::npos) << item;
  }
}

TEST(TEXT_GENERATOR, IsDeterministic) {
  const std::string first = generate_descriptor(7, 50, VALIDITY::SYNTAX);
  EXPECT_EQ(first, generate_descriptor(7, 50, VALIDITY::SYNTAX));
  EXPECT_NE(first, generate_descriptor(8, 50, VALIDITY::SYNTAX));
  EXPECT_EQ(mutate_text(first, "abc", 3), mutate_text(first, "abc", 3));
  EXPECT_EQ(generate_token_soup(3, 20), generate_token_soup(3, 20));
}

TEST(TEXT_GENERATOR, CanNestDeeply) {
  std::size_t deepest = 0;
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    const std::string text = generate_descriptor(seed, 2000, VALIDITY::SEMANTICS, 500);
    const std::string dump = read_reference(text).dump;
    std::size_t depth = 0;
    for (std::size_t start = 0; start < dump.size(); start = dump.find('\n', start) + 1) {
      if (dump.compare(start, 6, "block ") == 0) deepest = std::max(deepest, ++depth);
      if (dump.compare(start, 5, "list ") == 0) ++depth;
      if (dump.compare(start, 4, "end\n") == 0) --depth;
    }
  }
  EXPECT_GT(deepest, 400u);
}

TEST(TEXT_GENERATOR, MutationsOfNothing) {
  for (std::uint64_t seed = 0; seed < 200; ++seed) {
    read_reference(mutate_text("", "", seed));
    read_reference(mutate_text("x", "", seed));
  }
}

TEST(TEXT_GENERATOR, EnumeratesAllSequences) {
  const std::vector<std::string> vocabulary = {"a", "b", "c"};
  std::vector<std::string> seen;
  const auto collect = [&seen](const std::string& text) {
    seen.push_back(text);
    return true;
  };
  EXPECT_TRUE(for_each_sequence(vocabulary, 2, "-", 1, collect));
  EXPECT_EQ(seen, (std::vector<std::string>{"a-a", "a-b", "a-c", "b-a", "b-b", "b-c", "c-a", "c-b",
                                            "c-c"}));
  seen.clear();
  EXPECT_TRUE(for_each_sequence(vocabulary, 2, "", 4, collect));
  EXPECT_EQ(seen, (std::vector<std::string>{"aa", "bb", "cc"}));
  seen.clear();
  EXPECT_TRUE(for_each_sequence(vocabulary, 0, "", 1, collect));
  EXPECT_EQ(seen, (std::vector<std::string>{""}));
  EXPECT_FALSE(for_each_sequence(vocabulary, 1, "", 1, [](const std::string&) { return false; }));
}

}  // namespace
