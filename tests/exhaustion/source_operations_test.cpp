// Documents that keep the text: everything but the edits.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "sbd/sbd_source_document.h"
#include "tests/exhaustion/operations.h"
#include "tests/support/temporary_files.h"
#include "tests/support/tree_outline.h"

namespace {

// Names so long that joining them takes memory.
const std::string k_long(150, 'n');
const std::string k_text = "device d {  # board\n  bus " + k_long +
                           " { a = 5;  l = {1, \"t\"} [k .v];\n    r <.a, d." + k_long +
                           ">;  # c\n  }\n}\n";
const std::string k_value = "d." + k_long + ".a";

std::string content_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  return content.str();
}

struct EMPTY_SOURCE {
  EMPTY_SOURCE() { path = directory.write("f.sbd", k_text); }
  std::string state() const {
    return std::string(source.text()) + outline(source.document()) + content_of(path);
  }
  bool read() { return source.read_text(k_text.data(), k_text.size(), path.c_str()); }

  TEMPORARY_DIRECTORY directory;
  std::string path;
  SBD_SOURCE_DOCUMENT source;
  SBD_STRING why;
};

struct EDITED_SOURCE : EMPTY_SOURCE {
  EDITED_SOURCE() {
    EXPECT_TRUE(read());
    EXPECT_TRUE(source.begin());
    EXPECT_TRUE(source.set_value(k_value.c_str(), "77"));
  }
};

struct DOCUMENT : EMPTY_SOURCE {
  DOCUMENT() { EXPECT_TRUE(document.read(path.c_str())); }
  std::string state() const { return content_of(path); }
  SBD_FILE_PARSER document;
};

const OPERATION<EMPTY_SOURCE> k_readings[] = {
    {"text", [](auto& s) { return told(s.read()); }, "false"},
    {"file", [](auto& s) { return told(s.source.read(s.path.c_str())); }, "false"},
    {"no file", [](auto& s) { return told(s.source.read("/no/such/file")); }, "false"},
    {"faulty text",
     [](auto& s) {
       constexpr char text[] = "device d { x 5; }";
       return told(s.source.read_text(text, sizeof text - 1, "f"));
     },
     "false"},
};

TEST(SOURCE_OPERATION_EXHAUSTION, ReadingAnswersFalse) {
  expect_all_to_survive(k_readings);
}

const OPERATION<EDITED_SOURCE> k_operations[] = {
    {"text", [](auto& s) { return std::string(s.source.text()); }, ""},
    {"tree", [](auto& s) { return told(s.source.document().get_parser_para().root); }, ""},
    {"commit", [](auto& s) { return told(s.source.commit()) + told(s.source.begin()); }, ""},
    {"verifying", [](auto& s) { return told(s.source.verify(s.why)); }, "false", 3},
    {"saving", [](auto& s) { return told(s.source.save(nullptr)); }, "false", 3},
    {"saving in the library's layout",
     [](auto& s) { return told(s.source.save_canonical(s.path.c_str())); }, "false", 3},
    {"saving nowhere", [](auto& s) { return told(s.source.save("/no/such/file")); }, "false", 3},
};

// An empty text is an answer, too.
TEST(SOURCE_OPERATION_EXHAUSTION, AnswersFalseAndKeepsTheFile) {
  for (const auto& operation : k_operations) {
    if (operation.name != std::string("text")) expect_survival(operation);
    expect_handlers_may_throw(operation);
  }
}

TEST(SOURCE_OPERATION_EXHAUSTION, TextIsThereAgainWithMemory) {
  for (const std::size_t count : {1U, 2U}) {
    MESSAGE_RECORDER recorder;
    EDITED_SOURCE subject;
    sbd_host::fail_allocation("SBD", count, true);
    const std::string_view text = subject.source.text();
    sbd_host::fail_allocation("SBD", 0, false);
    EXPECT_EQ(text.empty(), !recorder.conditions().empty());
    EXPECT_NE(subject.source.text().find("a = 77;"), std::string_view::npos);
  }
}

const OPERATION<DOCUMENT> k_saving[] = {
    {"document", [](auto& s) { return told(sbd_save_document(s.document, s.path.c_str(), s.why)); },
     "false", 3},
};

TEST(SOURCE_OPERATION_EXHAUSTION, DocumentIsSavedOrNot) {
  expect_all_to_survive(k_saving);
}

}  // namespace
