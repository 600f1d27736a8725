// Blocks and names, by example.
#include "tests/source/source_fixture.h"

namespace {

class SOURCE_BLOCK : public SOURCE_FIXTURE {};

TEST_F(SOURCE_BLOCK, ANewBlockLooksLikeItsSiblings) {
  read(
      "device d\n{\n    module a\n    {\n        x = 1; \n    }\n\n    module b\n    {\n"
      "        y = 2; \n    }\n\n}\n\n");
  EXPECT_TRUE(source.add_block("bus", "c", "d"));
  EXPECT_TRUE(source.set_value("d.c.z", "3"));
  EXPECT_TRUE(source.add_block("slave", "e", "d", SBD_PLACE::before("b")));
  EXPECT_TRUE(source.add_block("region", "inner", "d.e"));
  EXPECT_TRUE(source.set_value("d.e.inner.v", "4"));
  EXPECT_TRUE(source.set_value("d.e.w", "5"));
  expect_text(
      "device d\n{\n    module a\n    {\n        x = 1; \n    }\n\n"
      "    slave e\n    {\n        region inner\n        {\n            v = 4;\n        }\n"
      "        w = 5;\n    }\n\n"
      "    module b\n    {\n        y = 2; \n    }\n\n"
      "    bus c\n    {\n        z = 3;\n    }\n\n}\n\n");
}

TEST_F(SOURCE_BLOCK, BracesTabsAndLineEndsAreTaken) {
  read("device d {\r\n\tmodule a {\r\n\t\tx = 1;\r\n\t}\r\n}\r\n");
  EXPECT_TRUE(source.add_block("bus", "b", "d.a", SBD_PLACE::before("x")));
  EXPECT_TRUE(source.set_references("d.a.b.r", {"d.a.x"}));
  EXPECT_TRUE(source.add_block("device", "e", nullptr));
  EXPECT_TRUE(source.set_value("e.q", "1"));
  expect_text(
      "device d {\r\n\tmodule a {\r\n\t\tbus b {\r\n\t\t\tr < d.a.x >;\r\n\t\t}\r\n\t\tx = 1;\r\n"
      "\t}\r\n}\r\ndevice e {\r\n\tq = 1;\r\n}\r\n");
}

TEST_F(SOURCE_BLOCK, OnOneLine) {
  read("device d { a = 1; }");
  EXPECT_TRUE(source.add_block("bus", "b", "d", SBD_PLACE::before("a")));
  EXPECT_TRUE(source.set_value("d.b.x", "1"));
  EXPECT_TRUE(source.add_value("d.b.y", "2", SBD_PLACE::before("x")));
  EXPECT_TRUE(source.add_block("bus", "c", "d.b"));
  EXPECT_TRUE(source.set_value("d.b.c.z", "3"));
  expect_text("device d { bus b { y = 2; x = 1; bus c { z = 3; } } a = 1; }");
}

TEST_F(SOURCE_BLOCK, AtTheEndOfATextWithoutLineEnd) {
  read("device d { a = 1; }");
  EXPECT_TRUE(source.add_block("device", "e", ""));
  EXPECT_TRUE(source.set_value("e.x", "1"));
  EXPECT_TRUE(source.add_block("device", "f", nullptr, SBD_PLACE::behind("d")));
  EXPECT_TRUE(source.set_value("f.x", "2"));
  expect_text("device d { a = 1; }\ndevice f {\n    x = 2;\n}\ndevice e {\n    x = 1;\n}");
  EXPECT_TRUE(source.remove_block("e"));
  EXPECT_TRUE(source.remove_block("f"));
  expect_text("device d { a = 1; }");
}

TEST_F(SOURCE_BLOCK, IndentationIsNotTakenFromTheMiddleOfALine) {
  read("device d {\n  module m { a = 1; b = 2;\n  }\n}\n");
  EXPECT_TRUE(source.set_value("d.m.c", "3"));
  expect_text("device d {\n  module m { a = 1; b = 2;\n    c = 3;\n  }\n}\n");
}

TEST_F(SOURCE_BLOCK, AnEmptiedBlockIsFilled) {
  read("device d {\n  module m {\n    a = 1;\n  }\n}\n");
  EXPECT_TRUE(source.remove_parameter("d.m.a"));
  EXPECT_EQ(text(), "device d {\n  module m {\n  }\n}\n");
  EXPECT_TRUE(source.set_value("d.m.b", "2"));
  expect_text("device d {\n  module m {\n    b = 2;\n  }\n}\n");
}

TEST_F(SOURCE_BLOCK, AnEmptyTextIsFilled) {
  EXPECT_TRUE(source.add_block("device", "d", nullptr));
  EXPECT_EQ(fault(), "'d': A block must have members.");
  EXPECT_TRUE(source.set_value("d.x", "1"));
  EXPECT_TRUE(source.add_block("device", "e", nullptr, SBD_PLACE::before("d")));
  EXPECT_TRUE(source.set_value("e.y", "{1, 2}"));
  expect_text("device e\n{\n    y = {1, 2};\n}\ndevice d\n{\n    x = 1;\n}\n");
  EXPECT_TRUE(source.begin());
  EXPECT_TRUE(source.remove_block("d"));
  EXPECT_TRUE(source.roll_back());
  expect_text("device e\n{\n    y = {1, 2};\n}\ndevice d\n{\n    x = 1;\n}\n");
}

// A ";" in front of it would make the comment that of a statement.
TEST_F(SOURCE_BLOCK, ACommentBehindABraceStaysWhatItIs) {
  read("device d { module m { # about m\n  x = 1; } }\n");
  EXPECT_TRUE(source.add_value("d.a", "1", SBD_PLACE::before("m")));
  expect_text("device d { a = 1;\n module m { # about m\n  x = 1; } }\n");
  EXPECT_TRUE(source.add_block("bus", "b", "d", SBD_PLACE::behind("a")));
  EXPECT_TRUE(source.set_value("d.b.y", "2"));
  expect_text("device d { a = 1;\n bus b { y = 2; }\n module m { # about m\n  x = 1; } }\n");
}

TEST_F(SOURCE_BLOCK, ABlockGoesWithItsLines) {
  const std::string head = "# head\ndevice d {\n  a = 1;\n\n  # about m\n";
  const std::string tail = "\n  b = 2;\n}\n";
  read(head + "  module m {\n    # in it\n    x = 1;\n  }  \n" + tail);
  EXPECT_TRUE(source.set_value("d.m.x", "2"));
  EXPECT_TRUE(source.set_value("d.m.y", "2"));
  EXPECT_TRUE(source.add_block("bus", "c", "d.m"));
  EXPECT_TRUE(source.set_value("d.m.c.z", "2"));
  EXPECT_TRUE(source.add_value("d.n", "3", SBD_PLACE::behind("m")));
  EXPECT_TRUE(source.remove_block("d.m"));
  expect_text(head + "  n = 3;\n" + tail);
}

TEST_F(SOURCE_BLOCK, ABlockThatSharesItsLinesGoesAlone) {
  read("device d { a = 1; module m {\n x = 1;\n } b = 2; }\n");
  EXPECT_TRUE(source.remove_block("d.m"));
  expect_text("device d { a = 1; b = 2; }\n");
}

TEST_F(SOURCE_BLOCK, ANameChangesAlone) {
  read("device  d  {\n  module m{ x = 1; }  r < d.m >;\n}\n");
  EXPECT_TRUE(source.rename("d.r", "ref[0]", false));
  EXPECT_TRUE(source.rename("d.m.x", "longer", false));
  EXPECT_TRUE(source.rename("d.m.longer", "y", false));
  expect_text("device  d  {\n  module m{ y = 1; }  ref[0] < d.m >;\n}\n");
  EXPECT_TRUE(source.set_value("d.m.y", "2"));
  EXPECT_TRUE(source.rename("d.m.y", "z", false));
  expect_text("device  d  {\n  module m{ z = 2; }  ref[0] < d.m >;\n}\n");
  EXPECT_TRUE(source.rename("d.m", "n", false));
  EXPECT_EQ(text(), "device  d  {\n  module n{ z = 2; }  ref[0] < d.m >;\n}\n");
  EXPECT_EQ(fault(), "'d.ref[0]': The reference 'd.m' names nothing.");
  EXPECT_TRUE(source.rename("d.n", "m", false));
  EXPECT_EQ(fault(), "");
}

TEST_F(SOURCE_BLOCK, ReferencesFollowAName) {
  read(
      "device d {\n  module m {\n    x = 1;\n    in < .x, D.M.x,d.m >;  # d.m\n"
      "    module m { y = 2; up < .y >; }\n  }\n  mm = 3;\n"
      "  r < .m, d.m.m.y,  .mm , d.mm, .m.x >;\n}\ndevice m { z = 1; r < m.z, .z, d.m >; }\n");
  EXPECT_TRUE(source.rename("d.m", "long", true));
  expect_text(
      "device d {\n  module long {\n    x = 1;\n    in < .x, D.long.x,d.long >;  # d.m\n"
      "    module m { y = 2; up < .y >; }\n  }\n  mm = 3;\n"
      "  r < .long, d.long.m.y,  .mm , d.mm, .long.x >;\n}\n"
      "device m { z = 1; r < m.z, .z, d.long >; }\n");
  EXPECT_TRUE(source.rename("D.Long.X", "q[1]", true));
  EXPECT_TRUE(source.rename("m", "top", true));
  EXPECT_TRUE(source.rename("d", "e", true));
  expect_text(
      "device e {\n  module long {\n    q[1] = 1;\n    in < .q[1], e.long.q[1],e.long >;  # d.m\n"
      "    module m { y = 2; up < .y >; }\n  }\n  mm = 3;\n"
      "  r < .long, e.long.m.y,  .mm , e.mm, .long.q[1] >;\n}\n"
      "device top { z = 1; r < top.z, .z, e.long >; }\n");
  EXPECT_TRUE(source.set_references("e.r", {"e.long"}));
  EXPECT_TRUE(source.rename("e.long", "m", true));
  EXPECT_TRUE(source.remove_references("e.m"));
  expect_text(
      "device e {\n  module m {\n    q[1] = 1;\n    in < .q[1], e.m.q[1],e.m >;  # d.m\n"
      "    module m { y = 2; up < .y >; }\n  }\n  mm = 3;\n}\n"
      "device top { z = 1; r < top.z, .z >; }\n");
}

TEST_F(SOURCE_BLOCK, RefusalsAreTheLibrarysOwn) {
  const std::string board = "device d { module m { x = 1; } r < .m >; }\n";
  read(board);
  expect_refused(source.add_block(nullptr, "x", nullptr), board,
                 {"Cannot create block. NULL block name or block type name."});
  expect_refused(source.add_block("bus", "1x", "d"), board,
                 {"Cannot create block. Illegal block name."});
  expect_refused(source.add_block("bus", "x", nullptr), board,
                 {"Cannot create a block: 'x' with type: 'bus' at top-level. Invalid block"
                  " hierarchy."});
  expect_refused(source.add_block("bus", "x", "d.r"), board,
                 {"Cannot create a block: 'x' with type: 'bus' within the parenet block: 'd.r'."
                  " Parent block does not exist."});
  expect_refused(source.add_block("bus", "m", "d"), board,
                 {"Cannot create a block: 'm' with type: 'bus' within the parenet block: 'd'. Block"
                  " already exists."});
  expect_refused(source.add_block("bus", "x", "d", SBD_PLACE::behind("none")), board,
                 {"Cannot create a block: 'x' with type: 'bus' within the parenet block: 'd'. There"
                  " is no member: 'none'."});
  expect_refused(source.add_block("device", "x", nullptr, SBD_PLACE::before("x")), board,
                 {"Cannot create a block: 'x' with type: 'device' at top-level. There is no member:"
                  " 'x'."});
  expect_refused(source.remove_block("d.m"), board,
                 {"Cannot delete block: 'd.m'. Block is being used (referenced) by other"
                  " block/parameter"});
  expect_refused(source.remove_block("none"), board, {});
  expect_refused(source.remove_block(""), board, {});
  expect_refused(source.rename("d.m", "r", true), board, {});
  expect_refused(source.rename("d.m", "a.b", true), board, {});
  expect_refused(source.rename("d.m", "", true), board, {});
  expect_refused(source.rename("none", "x", true), board, {});
}

}  // namespace
