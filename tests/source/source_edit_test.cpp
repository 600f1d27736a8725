// Parameters, references and attributes, by example.
#include <functional>

#include "tests/source/source_fixture.h"

namespace {

class SOURCE_EDIT : public SOURCE_FIXTURE {};

constexpr char k_board[] =
    "# board\n"
    "device board {\n"
    "  rate   = 33MHz;   # main clock\n"
    "\tsize\t=\t0x40K [unit .u, shared];\t# size\r\n"
    "  module m { a = 1; b = {1, 2}; }\n"
    "\n"
    "  # where it goes\n"
    "  to     < board.m , .m.a >;  # both\n"
    "}\n";

std::string changed(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return text.replace(at, from.size(), to);
}

TEST_F(SOURCE_EDIT, AnUneditedTextIsTheOneThatWasRead) {
  read(k_board);
  expect_text(k_board);
  EXPECT_EQ(source.text().data(), source.document().get_source().data());
}

TEST_F(SOURCE_EDIT, AValueChangesAlone) {
  read(k_board);
  EXPECT_TRUE(source.set_value("board.rate", "50MHz"));
  expect_text(changed(k_board, "33MHz", "50MHz"));
  EXPECT_TRUE(source.set_value("board.rate", " 0x32Mhz "));
  expect_text(changed(k_board, "33MHz", "0x32Mhz"));
  EXPECT_TRUE(source.set_value("Board.RATE", "7."));
  expect_text(changed(k_board, "33MHz", "7."));
  unsigned long rate = 0;
  EXPECT_TRUE(source.document().get_value("board.rate", rate));
  EXPECT_EQ(rate, 7U);
}

TEST_F(SOURCE_EDIT, AttributesAndAlignmentAroundAValueStay) {
  read(k_board);
  EXPECT_TRUE(source.set_value("board.size", "{1,\n 2}"));
  expect_text(changed(k_board, "0x40K", "{1,\n 2}"));
  EXPECT_TRUE(source.set_value("board.m.b", "3"));
  EXPECT_TRUE(source.set_value("board.m.a", "{\t4,{5,6} }"));
  expect_text(changed(changed(changed(k_board, "0x40K", "{1,\n 2}"), "{1, 2}", "3"), "a = 1",
                      "a = {\t4,{5,6} }"));
}

TEST_F(SOURCE_EDIT, EveryKindOfValueIsTaken) {
  read("device d { n = 1; s = x; b = true; }");
  EXPECT_TRUE(source.set_value("d.n", "-5"));
  EXPECT_TRUE(source.set_value("d.s", "\"a b;{\""));
  EXPECT_TRUE(source.set_value("d.b", "FALSE"));
  expect_text("device d { n = -5; s = \"a b;{\"; b = FALSE; }");
  EXPECT_TRUE(source.set_value("d.n", "0b101GB"));
  EXPECT_TRUE(source.set_value("d.s", "word"));
  expect_text("device d { n = 0b101GB; s = word; b = FALSE; }");
}

// A number right before "[" would need a unit.
TEST_F(SOURCE_EDIT, ANumberKeepsItsDistanceFromAttributes) {
  read("device d { n = {1,2}[k]; s = a[k .v]; m = 5[ k]; }");
  EXPECT_TRUE(source.set_value("d.n", "5"));
  EXPECT_TRUE(source.set_value("d.s", "b"));
  SBD_FILE_PARSER::SBD_PARA_ATTR* const attributes = make_attributes({{"x", ".y"}, {"z", nullptr}});
  EXPECT_TRUE(source.set_attributes("d.m", attributes));
  expect_text("device d { n = 5 [k]; s = b[k .v]; m = 5 [x .y, z]; }");
  for (auto* one = attributes; one != nullptr;) {
    auto* const next = one->next;
    sbd_free_text(one->attr_key);
    sbd_free_text(one->attr_value);
    delete one;
    one = next;
  }
}

TEST_F(SOURCE_EDIT, ANewValueGoesToTheEndInTheStyleOfItsSiblings) {
  read(k_board);
  EXPECT_TRUE(source.set_value("board.m.c", "0x0F"));
  EXPECT_TRUE(source.set_value("board.last", "\"z\""));
  expect_text(changed(changed(k_board, "b = {1, 2};", "b = {1, 2}; c = 0x0F;"), "# both\n",
                      "# both\n  last = \"z\";\n"));
}

TEST_F(SOURCE_EDIT, LineEndsAndTabsAreThoseOfTheSiblings) {
  read("device d\r\n{\r\n\ta = 1;\t# x\r\n}\r\n");
  EXPECT_TRUE(source.set_value("d.b", "2"));
  EXPECT_TRUE(source.add_value("d.c", "3", SBD_PLACE::before("a")));
  EXPECT_TRUE(source.add_value("d.e", "4", SBD_PLACE::behind("A")));
  expect_text("device d\r\n{\r\n\tc = 3;\r\n\ta = 1;\t# x\r\n\te = 4;\r\n\tb = 2;\r\n}\r\n");
}

TEST_F(SOURCE_EDIT, PlacesAmongNewAndOldSiblings) {
  const std::string head = "device d {\n  # one\n  a = 1;\n\n  # two\n  b = 2;\n";
  read(head + "}\n");
  EXPECT_TRUE(source.add_value("d.x", "1", SBD_PLACE::before("b")));
  EXPECT_TRUE(source.add_value("d.y", "2", SBD_PLACE::behind("a")));
  EXPECT_TRUE(source.add_value("d.z", "3", SBD_PLACE::behind("x")));
  EXPECT_TRUE(source.add_value("d.w", "4", SBD_PLACE::before("y")));
  EXPECT_TRUE(source.add_value("d.v", "5", SBD_PLACE::behind("b")));
  expect_text(
      "device d {\n  # one\n  a = 1;\n  w = 4;\n  y = 2;\n\n  # two\n  x = 1;\n  z = 3;\n  b = 2;\n"
      "  v = 5;\n}\n");
  EXPECT_TRUE(source.remove_parameter("d.y"));
  EXPECT_TRUE(source.remove_parameter("d.b"));
  EXPECT_TRUE(source.set_value("d.x", "{7, 8}"));
  EXPECT_TRUE(source.rename("d.w", "ww", false));
  expect_text(
      "device d {\n  # one\n  a = 1;\n  ww = 4;\n\n  # two\n  x = {7, 8};\n  z = 3;\n"
      "  v = 5;\n}\n");
}

TEST_F(SOURCE_EDIT, PlacesOnOneLine) {
  read("device d { a=1;b=2; }");
  EXPECT_TRUE(source.add_value("d.x", "1", SBD_PLACE::before("b")));
  EXPECT_TRUE(source.add_value("d.y", "2", SBD_PLACE::before("a")));
  EXPECT_TRUE(source.add_value("d.z", "3", SBD_PLACE::behind("b")));
  expect_text("device d { y = 2; a=1; x = 1;b=2; z = 3; }");
}

TEST_F(SOURCE_EDIT, ReferencesAreSetLikeThoseBefore) {
  read(k_board);
  EXPECT_TRUE(source.set_references("board.to", {"board.m.b", "board.rate", "Board.M"}));
  expect_text(changed(k_board, "board.m , .m.a", "board.m.b , board.rate , Board.M"));
  EXPECT_TRUE(source.set_references("board.m.r", {"board.m.a"}, SBD_PLACE::before("b")));
  expect_text(changed(changed(k_board, "board.m , .m.a", "board.m.b , board.rate , Board.M"),
                      "a = 1;", "a = 1; r < board.m.a >;"));
}

TEST_F(SOURCE_EDIT, AttributesComeAndGo) {
  read(k_board);
  SBD_FILE_PARSER::SBD_PARA_ATTR second;
  second.attr_key = const_cast<char*>("k2");
  SBD_FILE_PARSER::SBD_PARA_ATTR first;
  first.attr_key = const_cast<char*>("k");
  first.attr_value = const_cast<char*>("v.w[0]");
  first.next = &second;
  EXPECT_TRUE(source.set_attributes("board.rate", &first));
  EXPECT_TRUE(source.set_attributes("board.size", &first));
  expect_text(changed(changed(k_board, "33MHz", "33MHz [k v.w[0], k2]"), "unit .u, shared",
                      "k v.w[0], k2"));
  EXPECT_TRUE(source.set_value("board.rate", "1"));
  EXPECT_TRUE(source.remove_attributes("board.size"));
  expect_text(changed(changed(k_board, "33MHz", "1 [k v.w[0], k2]"), " [unit .u, shared]", ""));
  EXPECT_TRUE(source.set_attributes("board.rate", nullptr));
  expect_text(changed(changed(k_board, "33MHz", "1"), " [unit .u, shared]", ""));
}

TEST_F(SOURCE_EDIT, AStatementGoesWithItsLine) {
  read(k_board);
  EXPECT_TRUE(source.remove_parameter("board.rate"));
  EXPECT_TRUE(source.remove_parameter("board.to"));
  expect_text(changed(changed(k_board, "  rate   = 33MHz;   # main clock\n", ""),
                      "  to     < board.m , .m.a >;  # both\n", ""));
}

TEST_F(SOURCE_EDIT, AStatementThatSharesItsLineGoesAlone) {
  read("device d {\n  a = 1; b = 2;  c = 3; # tail\n  e = {1,\n2}; f = 4;\n}\n");
  EXPECT_TRUE(source.remove_parameter("d.b"));
  expect_text("device d {\n  a = 1;  c = 3; # tail\n  e = {1,\n2}; f = 4;\n}\n");
  EXPECT_TRUE(source.remove_parameter("d.c"));
  EXPECT_TRUE(source.remove_parameter("d.e"));
  expect_text("device d {\n  a = 1;\n  f = 4;\n}\n");
  EXPECT_TRUE(source.remove_parameter("d.f"));
  expect_text("device d {\n  a = 1;\n}\n");
}

TEST_F(SOURCE_EDIT, TheLastOnesOfALineTakeItWithThem) {
  read("device d {\n  a = 1;  b = 2; c = 3;\n  z = 0;\n}");
  EXPECT_TRUE(source.remove_parameter("d.a"));
  expect_text("device d {\n  b = 2; c = 3;\n  z = 0;\n}");
  EXPECT_TRUE(source.remove_parameter("d.b"));
  EXPECT_TRUE(source.remove_parameter("d.c"));
  expect_text("device d {\n  z = 0;\n}");
}

TEST_F(SOURCE_EDIT, MembersRemovedAndPutBack) {
  read("device d { a = 1; }");
  EXPECT_TRUE(source.remove_parameter("d.a"));
  EXPECT_EQ(text(), "device d { }");
  EXPECT_EQ(fault(), "'d': A block must have members.");
  EXPECT_TRUE(source.set_value("d.b", "2"));
  expect_text("device d { b = 2; }");
  EXPECT_TRUE(source.remove_parameter("d.b"));
  EXPECT_TRUE(source.set_value("d.c", "3"));
  expect_text("device d { c = 3; }");
}

TEST_F(SOURCE_EDIT, ReferencesToAnObjectAreRemoved) {
  read(
      "device d {\n  m = 1;  n = 2;\n  a < d.m, d.n , d.m >; # x\n  # why\n  b < .m>; # y\n"
      "  c < d.n, .m, d.n >; e <d.m>;\n}\n");
  EXPECT_TRUE(source.remove_references("d.m"));
  expect_text("device d {\n  m = 1;  n = 2;\n  a < d.n >; # x\n  # why\n  c < d.n, d.n >;\n}\n");
  EXPECT_TRUE(source.remove_references("d.m"));
  EXPECT_TRUE(source.remove_parameter("d.m"));
  expect_text("device d {\n  n = 2;\n  a < d.n >; # x\n  # why\n  c < d.n, d.n >;\n}\n");
}

TEST_F(SOURCE_EDIT, AValueThatIsNoneIsRefused) {
  read(k_board);
  for (const char* const value :
       {"", "1;", "1; x = 2", "33 MHz", "{1}", "a.b", "a[0]", "1 [k]", "\"x", "1 # c",
        "1;} device e{a=1", "0x", "= 1", "{1, 2", "r < board >"}) {
    const std::string message =
        "Cannot set value to the parameter: 'rate' in the block: 'board'. Not a value: '" +
        std::string(value) + "'.";
    expect_refused(source.set_value("board.rate", value), k_board, {message.c_str()});
  }
}

TEST_F(SOURCE_EDIT, RefusalsAreTheLibrarysOwn) {
  read(k_board);
  expect_refused(source.set_value(nullptr, "1"), k_board,
                 {"Cannot set parameter value. NULL block/parameter name."});
  expect_refused(
      source.set_value("rate", "1"), k_board,
      {"Cannot set value to the parameter: 'rate' in the block: ''. Block does not exit."});
  expect_refused(source.set_value("board.", "1"), k_board,
                 {"Cannot set parameter value. Illegal parameter name."});
  expect_refused(source.set_value("board.rate", "true"), k_board,
                 {"Cannot set value to the parameter: 'rate' in the block: 'board'. Incompatible"
                  " value type."});
  expect_refused(source.set_value("board.m", "1"), k_board,
                 {"Cannot set value to the parameter: 'm' in the block: 'board'. The parameter name"
                  " has already been used as a block name."});
  expect_refused(source.add_value("board.rate", "1"), k_board,
                 {"Cannot set value to the parameter: 'rate' in the block: 'board'. Parameter"
                  " already exists."});
  expect_refused(
      source.add_value("board.x", "1", SBD_PLACE::before("m.a")), k_board,
      {"Cannot set value to the parameter: 'x' in the block: 'board'. There is no member:"
       " 'm.a'."});
  expect_refused(source.set_references("board.to", {"board.m", "board.none"}), k_board,
                 {"Cannot set value to the parameter: 'to' in the block: 'board'. Invalid input"
                  " reference value."});
  expect_refused(source.set_references("board.to", {""}), k_board,
                 {"Cannot set value to the parameter: 'to' in the block: 'board'. Invalid input"
                  " reference value."});
  expect_refused(source.set_attributes("board.to", nullptr), k_board,
                 {"Cannot set the attribute to the parameter: 'to' in the block: 'board'. Parameter"
                  " can not be associated with attributes."});
  expect_refused(source.remove_parameter("board.m.a"), k_board,
                 {"Cannot delete parameter: 'a' from block: 'board.m'. Parameter is being used"
                  " (referenced) by other block/parameter"});
  expect_refused(source.remove_parameter("board.none"), k_board, {});
  expect_refused(source.remove_references("board.none"), k_board, {});
}

TEST_F(SOURCE_EDIT, ATransactionIsTakenBackAsAWhole) {
  read(k_board);
  EXPECT_TRUE(source.set_value("board.rate", "1"));
  EXPECT_TRUE(source.add_block("bus", "empty", "board"));
  const std::string before = text();
  EXPECT_TRUE(source.begin());
  EXPECT_FALSE(source.begin());
  EXPECT_TRUE(source.set_value("board.empty.x", "1"));
  EXPECT_TRUE(source.set_value("board.rate", "2"));
  EXPECT_TRUE(source.remove_parameter("board.to"));
  EXPECT_TRUE(source.remove_block("board.m"));
  EXPECT_TRUE(source.roll_back());
  EXPECT_EQ(text(), before);
  EXPECT_FALSE(source.roll_back());
  EXPECT_FALSE(source.commit());
  EXPECT_TRUE(source.begin());
  EXPECT_TRUE(source.set_value("board.empty.x", "1"));
  EXPECT_TRUE(source.commit());
  EXPECT_EQ(fault(), "");
  EXPECT_EQ(source.document().get_file_name(), std::string(TEST_FILE));
}

TEST_F(SOURCE_EDIT, AFailedReadLeavesWhatTheLibraryLeaves) {
  read(k_board);
  EXPECT_TRUE(source.set_value("board.rate", "1"));
  const std::string before = text();
  EXPECT_FALSE(source.read("/nowhere/at/all"));
  EXPECT_EQ(text(), before);
  messages.forget();
  EXPECT_TRUE(source.set_value("board.rate", "33MHz"));
  expect_text(k_board);
  EXPECT_FALSE(source.read_text("device", 6, "x"));
  EXPECT_EQ(text(), "");
  EXPECT_EQ(root_of(source.document()), nullptr);
}

// Every allocation of an edit fails once: what was begun is undone.
TEST_F(SOURCE_EDIT, AnEditThatRunsOutOfMemoryIsUndone) {
  SBD_FILE_PARSER::SBD_PARA_ATTR attribute;
  attribute.attr_key = const_cast<char*>("k");
  const SBD_STRING_LIST sizes = {"board.rate", "board.size"};
  const SBD_STRING_LIST blocks = {"board.m", "board.rate"};
  const std::function<bool()> edits[] = {
      [this] { return source.set_value("board.rate", "{1, {2, 3}}"); },
      [this] { return source.add_value("board.x", "{1,2}", SBD_PLACE::before("size")); },
      [&] { return source.set_references("board.to", sizes); },
      [&] { return source.set_references("board.m.r", blocks); },
      [&] { return source.set_attributes("board.rate", &attribute); },
      [this] { return source.remove_attributes("board.size"); },
      [this] { return source.remove_parameter("board.size"); },
      [this] { return source.remove_references("board.m") && text() != k_board; },
      [this] { return source.rename("board.m.a", "a_long_name_that_needs_memory", true); },
      [this] { return source.rename("board", "a_long_name_that_needs_memory", true); },
      [this] { return source.add_block("bus", "b", "board", SBD_PLACE::behind("m")); }};
  for (const auto& edit : edits) {
    for (std::size_t count = 1;; ++count) {
      ASSERT_LT(count, 1000U);
      read(k_board);
      sbd_host::fail_allocation("SBD", count, false);
      const bool is_done = edit();
      sbd_host::fail_allocation("SBD", 0, false);
      const bool is_hit = !messages.internal_errors().empty();
      messages.forget();
      if (is_done || !is_hit) break;
      expect_text(k_board);
    }
  }
}

TEST_F(SOURCE_EDIT, ARollBackThatRunsOutOfMemoryIsMadeUpFor) {
  for (std::size_t count = 1;; ++count) {
    ASSERT_LT(count, 1000U);
    read(k_board);
    EXPECT_TRUE(source.set_value("board.rate", "1MHz"));
    EXPECT_TRUE(source.begin());
    EXPECT_TRUE(source.remove_parameter("board.to"));
    sbd_host::fail_allocation("SBD", count, false);
    const bool is_done = source.roll_back();
    sbd_host::fail_allocation("SBD", 0, false);
    messages.forget();
    expect_text(changed(k_board, "33MHz", "1MHz"));
    if (is_done) break;
  }
}

}  // namespace
