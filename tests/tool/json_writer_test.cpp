#include "tools/json_writer.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/tool/captured_output.h"

namespace {

using sbd_tool::JSON_WRITER;
using LAYOUT = JSON_WRITER::LAYOUT;

// What `write` makes of an empty text.
template <class WRITE>
std::string written(WRITE write) {
  CAPTURED_OUTPUT captured;
  JSON_WRITER json(captured.output());
  write(json);
  return captured.text();
}

TEST(JSON_WRITER, Scalars) {
  EXPECT_EQ(written([](JSON_WRITER& json) { json.text("a"); }), "\"a\"");
  EXPECT_EQ(written([](JSON_WRITER& json) { json.boolean(true); }), "true");
  EXPECT_EQ(written([](JSON_WRITER& json) { json.count(12); }), "12");
  EXPECT_EQ(written([](JSON_WRITER& json) { json.number("1e+30"); }), "1e+30");
  EXPECT_EQ(written([](JSON_WRITER& json) { json.number("inf"); }), "null");
  EXPECT_EQ(written([](JSON_WRITER& json) { json.number("-nan"); }), "null");
}

TEST(JSON_WRITER, TextsAreEscaped) {
  EXPECT_EQ(written([](JSON_WRITER& json) { json.text("\"\\\n\x01\u00e4"); }),
            "\"\\\"\\\\\\n\\u0001\u00e4\"");
}

TEST(JSON_WRITER, InvalidBytesAreReplaced) {
  EXPECT_EQ(written([](JSON_WRITER& json) { json.text("a\xff z"); }), "\"a\ufffd z\"");
  EXPECT_EQ(written([](JSON_WRITER& json) { json.text("\xe2\x82"); }), "\"\ufffd\"");
}

TEST(JSON_WRITER, Lines) {
  EXPECT_EQ(written([](JSON_WRITER& json) {
              json.begin_object(LAYOUT::LINES);
              json.key("a");
              json.count(1);
              json.key("b");
              json.begin_array(LAYOUT::LINES);
              json.count(2);
              json.count(3);
              json.end();
              json.end();
              json.finish();
            }),
            "{\n  \"a\": 1,\n  \"b\": [\n    2,\n    3\n  ]\n}\n");
}

TEST(JSON_WRITER, OneLineHoldsAllInside) {
  EXPECT_EQ(written([](JSON_WRITER& json) {
              json.begin_object(LAYOUT::ONE_LINE);
              json.key("a");
              json.begin_array(LAYOUT::LINES);
              json.count(2);
              json.count(3);
              json.end();
              json.key("b");
              json.text("");
              json.end();
            }),
            "{\"a\": [2, 3], \"b\": \"\"}");
}

TEST(JSON_WRITER, EmptyOnesAreShort) {
  EXPECT_EQ(written([](JSON_WRITER& json) {
              json.begin_array(LAYOUT::LINES);
              json.begin_object(LAYOUT::LINES);
              json.end();
              json.end();
            }),
            "[\n  {}\n]");
}

TEST(JSON_WRITER, IndentHasAnEnd) {
  constexpr std::size_t k_depth = 1000;
  const std::string text = written([](JSON_WRITER& json) {
    for (std::size_t i = 0; i < k_depth; ++i) json.begin_array(LAYOUT::LINES);
    for (std::size_t i = 0; i < k_depth; ++i) json.end();
  });
  EXPECT_LT(text.size(), k_depth * 110);
}

}  // namespace
