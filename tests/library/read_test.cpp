#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <functional>
#include <iterator>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "sbd/sbd_file_parser.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/temporary_files.h"
#include "tests/support/tree_builder.h"
#include "tests/support/tree_outline.h"

namespace {

using TEXTS = std::vector<std::string>;

constexpr char GOOD_TEXT[] = "device d {\n  a = 1;\n  r <.a>;\n}\n";
constexpr char GOOD_TREE[] = "device d @1\n  a = 1 @2\n  r < .a > @3\n";

void expect_empty(const SBD_FILE_PARSER& document) {
  EXPECT_EQ(root_of(document), nullptr);
  EXPECT_EQ(count_symbols(document), 0U);
  EXPECT_EQ(document.get_parser_para().symbol_table->size(), 211U);
  EXPECT_EQ(document.get_parser_para().error_count, 0U);
}

std::size_t count_open_files() {
  const std::filesystem::directory_iterator files("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

class READ : public testing::Test {
 protected:
  // Expects a refusal that leaves the document alone.
  void expect_unopenable(const std::string& path) {
    ASSERT_TRUE(read_text(m_document, GOOD_TEXT, "before.sbd"));
    m_recorder.forget();
    EXPECT_FALSE(m_document.read(path.c_str()));
    EXPECT_EQ(m_recorder.texts(), TEXTS{file_error_text(path)});
    EXPECT_EQ(m_recorder.numbers(), std::vector<int>{1});
    EXPECT_TRUE(m_recorder.internal_errors().empty());
    EXPECT_EQ(outline(m_document), GOOD_TREE);
    EXPECT_EQ(find_inconsistency(m_document), "");
    EXPECT_EQ(m_document.get_source(), GOOD_TEXT);
    EXPECT_STREQ(m_document.get_file_name(), "before.sbd");
  }

  TEMPORARY_DIRECTORY m_directory;
  SBD_FILE_PARSER m_document;
  MESSAGE_RECORDER m_recorder;
};

// ---- Files -------------------------------------------------------------------------------------

TEST_F(READ, GivesTheTreeOfAFile) {
  const std::string path = m_directory.write("good.sbd", GOOD_TEXT);
  EXPECT_TRUE(m_document.read(path.c_str()));
  EXPECT_EQ(outline(m_document), GOOD_TREE);
  EXPECT_EQ(find_inconsistency(m_document), "");
  EXPECT_EQ(m_document.get_file_name(), path);
  EXPECT_NE(m_document.get_file_name(), path.c_str());
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(READ, ReplacesTheDocument) {
  ASSERT_TRUE(m_document.read(m_directory.write("a.sbd", "device old { x = 1; }").c_str()));
  const std::string path = m_directory.write("b.sbd", GOOD_TEXT);
  ASSERT_TRUE(m_document.read(path.c_str()));
  EXPECT_EQ(outline(m_document), GOOD_TREE);
  EXPECT_EQ(count_symbols(m_document), 3U);
  EXPECT_EQ(m_document.get_file_name(), path);
}

TEST_F(READ, ReplacesWhatACallerBuilt) {
  enter(m_document, make_block("device", "mine"), nullptr);
  m_document.add_symbol(make_symbol("stray"));
  ASSERT_TRUE(m_document.read(m_directory.write("b.sbd", GOOD_TEXT).c_str()));
  EXPECT_EQ(outline(m_document), GOOD_TREE);
  EXPECT_EQ(find_inconsistency(m_document), "");
}

TEST_F(READ, RefusesAMissingFileAndKeepsTheDocument) {
  expect_unopenable(m_directory.path_of("missing.sbd"));
}

TEST_F(READ, RefusesADirectoryAndKeepsTheDocument) {
  expect_unopenable(m_directory.path());
}

TEST_F(READ, RefusesAnEmptyPathAndKeepsTheDocument) {
  expect_unopenable("");
}

TEST_F(READ, RefusesAPathThroughAFileAndKeepsTheDocument) {
  expect_unopenable(m_directory.write("file", "") + "/x.sbd");
}

TEST_F(READ, RefusesAFileOfFourGigabytesAndKeepsTheDocument) {
  const std::string path = m_directory.write("huge.sbd", "");
  ASSERT_EQ(truncate(path.c_str(), static_cast<off_t>(4294967296)), 0);
  expect_unopenable(path);
}

TEST_F(READ, OfNothingIsAnInternalErrorAndKeepsTheDocument) {
  ASSERT_TRUE(read_text(m_document, GOOD_TEXT, "before.sbd"));
  EXPECT_FALSE(m_document.read(nullptr));
  EXPECT_FALSE(m_document.read_text(nullptr, 0, "f"));
  EXPECT_FALSE(m_document.read_text("", 0, nullptr));
  EXPECT_EQ(m_recorder.internal_errors().size(), 3U);
  EXPECT_TRUE(m_recorder.messages().empty());
  EXPECT_EQ(outline(m_document), GOOD_TREE);
  EXPECT_STREQ(m_document.get_file_name(), "before.sbd");
}

TEST_F(READ, RefusedAtFirstLeavesNoFileName) {
  EXPECT_FALSE(m_document.read(m_directory.path_of("missing.sbd").c_str()));
  EXPECT_EQ(m_document.get_file_name(), nullptr);
  expect_empty(m_document);
}

// Short names lie in the document, long ones do not; each reading moves them.
TEST_F(READ, KeepsNamesOfEveryLength) {
  std::vector<std::string> names;
  for (std::size_t size = 0; size < 100; size++) names.push_back(std::string(size, 'n') + "~");
  for (const std::size_t size : {3U, 200U, 4U, 5U, 300U, 301U, 0U, 43U, 44U, 42U}) {
    names.push_back(std::string(size, 'x'));
  }
  const char* before = nullptr;
  for (const std::string& name : names) {
    ASSERT_TRUE(read_text(m_document, GOOD_TEXT, name.c_str()));
    EXPECT_EQ(m_document.get_file_name(), name);
    EXPECT_NE(m_document.get_file_name(), before);
    before = m_document.get_file_name();
  }
}

TEST_F(READ, TakesItsOwnName) {
  for (const std::string& name : {std::string("short"), std::string(200, 'l') + "short"}) {
    ASSERT_TRUE(read_text(m_document, GOOD_TEXT, name.c_str()));
    ASSERT_TRUE(read_text(m_document, GOOD_TEXT, m_document.get_file_name()));
    EXPECT_EQ(m_document.get_file_name(), name);
    ASSERT_TRUE(read_text(m_document, GOOD_TEXT, m_document.get_file_name() + name.size() - 4));
    EXPECT_STREQ(m_document.get_file_name(), "hort");
  }
}

TEST_F(READ, WithASyntaxErrorLeavesAnEmptyDocumentWithTheNewName) {
  ASSERT_TRUE(read_text(m_document, GOOD_TEXT, "before.sbd"));
  const std::string path = m_directory.write("bad.sbd", "device d { x 5; }");
  EXPECT_FALSE(m_document.read(path.c_str()));
  EXPECT_EQ(m_recorder.texts(), TEXTS{syntax_error_text(path, "5", 1)});
  expect_empty(m_document);
  EXPECT_EQ(m_document.get_file_name(), path);
}

TEST_F(READ, WithADeclarationErrorLeavesAnEmptyDocumentWithTheNewName) {
  const std::string path = m_directory.write("bad.sbd", "device d { x = 5;\nx = 6; }");
  EXPECT_FALSE(m_document.read(path.c_str()));
  EXPECT_EQ(m_recorder.texts(), TEXTS{declaration_error_text(path, "x", 2)});
  expect_empty(m_document);
  EXPECT_EQ(m_document.get_file_name(), path);
}

TEST_F(READ, WithABlockErrorLeavesAnEmptyDocumentWithTheNewName) {
  const std::string path = m_directory.write("bad.sbd", "module m { x = 5; }");
  EXPECT_FALSE(m_document.read(path.c_str()));
  EXPECT_EQ(m_recorder.texts(), TEXTS{block_error_text(path, "module m", 1)});
  expect_empty(m_document);
  EXPECT_EQ(m_document.get_file_name(), path);
}

TEST_F(READ, AcceptsTheNameThatItGaveOut) {
  const std::string path = m_directory.write("good.sbd", GOOD_TEXT);
  ASSERT_TRUE(m_document.read(path.c_str()));
  EXPECT_TRUE(m_document.read(m_document.get_file_name()));
  EXPECT_EQ(m_document.get_file_name(), path);
  EXPECT_EQ(outline(m_document), GOOD_TREE);
}

TEST_F(READ, SeesTheFileAsItIsNow) {
  ASSERT_TRUE(m_document.read(m_directory.write("f.sbd", "device old { x = 1; }").c_str()));
  ASSERT_TRUE(m_document.read(m_directory.write("f.sbd", GOOD_TEXT).c_str()));
  EXPECT_EQ(outline(m_document), GOOD_TREE);
}

TEST_F(READ, DoesNotDependOnTheFileAfterwards) {
  const std::string path = m_directory.write("f.sbd", GOOD_TEXT);
  ASSERT_TRUE(m_document.read(path.c_str()));
  ASSERT_EQ(truncate(path.c_str(), 0), 0);
  EXPECT_EQ(outline(m_document), GOOD_TREE);
  EXPECT_EQ(m_document.get_source(), GOOD_TEXT);
}

TEST_F(READ, LeavesNoFileOpen) {
  const std::string good = m_directory.write("good.sbd", GOOD_TEXT);
  const std::string bad = m_directory.write("bad.sbd", "device");
  const std::size_t before = count_open_files();
  EXPECT_TRUE(m_document.read(good.c_str()));
  EXPECT_FALSE(m_document.read(bad.c_str()));
  EXPECT_FALSE(m_document.read(m_directory.path().c_str()));
  EXPECT_EQ(count_open_files(), before);
}

// ---- Pipes -------------------------------------------------------------------------------------

void write_all(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(file, text.data(), text.size());
    ASSERT_GT(count, 0);
    text.remove_prefix(static_cast<std::size_t>(count));
  }
  close(file);
}

std::string long_text() {
  std::string text = "device d {\n";
  for (int i = 0; i < 30000; i++) text += "  parameter_" + std::to_string(i) + " = 1;\n";
  return text + "}\n";
}

TEST_F(READ, AcceptsANamedPipe) {
  const std::string path = m_directory.path_of("pipe");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  const std::string text = long_text();
  std::thread writer([&] { write_all(open(path.c_str(), O_WRONLY), text); });
  EXPECT_TRUE(m_document.read(path.c_str()));
  writer.join();
  EXPECT_EQ(m_document.get_source(), text);
  EXPECT_TRUE(m_document.is_parameter_defined("d.parameter_29999"));
}

TEST_F(READ, AcceptsAnOpenPipe) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const std::string text = long_text();
  std::thread writer([&] { write_all(ends[1], text); });
  EXPECT_TRUE(m_document.read(("/dev/fd/" + std::to_string(ends[0])).c_str()));
  writer.join();
  close(ends[0]);
  EXPECT_EQ(m_document.get_source(), text);
}

TEST_F(READ, AcceptsAnEmptyDevice) {
  EXPECT_TRUE(m_document.read("/dev/null"));
  expect_empty(m_document);
  EXPECT_STREQ(m_document.get_file_name(), "/dev/null");
}

// ---- Contents ----------------------------------------------------------------------------------

// Reads the text from a file and from memory, which must not differ; returns the outline.
class CONTENT : public READ {
 protected:
  std::string tree_of(std::string_view text) {
    EXPECT_TRUE(m_document.read(m_directory.write("f.sbd", text).c_str()));
    EXPECT_EQ(m_document.get_source(), text);
    const std::string tree = outline(m_document);
    EXPECT_TRUE(read_text(m_document, text));
    EXPECT_EQ(outline(m_document), tree);
    EXPECT_EQ(m_document.get_source(), text);
    EXPECT_TRUE(m_recorder.is_silent());
    return tree;
  }
};

TEST_F(CONTENT, MayBeEmpty) {
  EXPECT_EQ(tree_of(""), "");
}

TEST_F(CONTENT, MayBeBlank) {
  EXPECT_EQ(tree_of("\n \t\r\n"), "");
}

TEST_F(CONTENT, MayBeComments) {
  EXPECT_EQ(tree_of("# a\n\n# b\n"), "'# a\\n'\n'# b\\n'\n");
}

TEST_F(CONTENT, NeedsNoFinalNewline) {
  EXPECT_EQ(tree_of("device d { a = 1; }"), "device d @1\n  a = 1 @1\n");
}

TEST_F(CONTENT, MayHaveCarriageReturns) {
  EXPECT_EQ(tree_of("device d\r\n{ # c\r\n a = \"s\r\nt\"; # t\r\n b = 5 ;\r\n r <d>;\r\n}\r\n"),
            "device d @1\n"
            "  '# c\\r\\n'\n"
            "  a = '\"s\\r\\nt\"' @3 '# t\\r\\n'\n"
            "  b = 5 @5\n"
            "  r < d > @6\n");
}

TEST_F(CONTENT, MayHaveCarriageReturnsAlone) {
  EXPECT_EQ(tree_of("device d {\ra = 1;\rb = 2;\r}\r"), "device d @1\n  a = 1 @1\n  b = 2 @1\n");
}

TEST_F(CONTENT, MayHaveOtherBytesInStringsAndComments) {
  EXPECT_EQ(tree_of("# \x80\xff\xc3\xa4\ndevice d { a = \"\xe2\x82\xac\x01\"; }"),
            "'# \x80\xff\xc3\xa4\\n'\ndevice d @2\n  a = '\"\xe2\x82\xac\x01\"' @2\n");
}

// A text of the tree ends at its first NUL byte, so that a blank stands for it there.
TEST_F(CONTENT, MayHaveNulBytesInStringsAndComments) {
  const std::string text("# a\0b\ndevice d { a = \"c\0d\"; # e\0f\n b = 1; }", 43);
  EXPECT_EQ(tree_of(text), "'# a b\\n'\ndevice d @2\n  a = '\"c d\"' @2 '# e f\\n'\n  b = 1 @3\n");
}

TEST_F(READ, ReportsNulBytesElsewhere) {
  const std::string text("device d {\n a = \0 1; }", 22);
  EXPECT_FALSE(read_text(m_document, text));
  EXPECT_EQ(m_recorder.texts(), TEXTS{syntax_error_text(TEST_FILE, "", 2)});
}

TEST_F(READ, ReportsAByteOrderMark) {
  EXPECT_FALSE(read_text(m_document,
                         "\xef\xbb\xbf"
                         "device d { a = 1; }"));
  EXPECT_EQ(m_recorder.texts(),
            (TEXTS{syntax_error_text(TEST_FILE, "\xef", 1), syntax_error_text(TEST_FILE, "\xbb", 1),
                   syntax_error_text(TEST_FILE, "\xbf", 1)}));
}

TEST_F(CONTENT, MayHaveALongString) {
  const std::string string = "\"" + std::string(std::size_t{3} << 20, 's') + "\"";
  EXPECT_EQ(tree_of("device d { a = " + string + "; }"),
            "device d @1\n  a = '" + string + "' @1\n");
}

TEST_F(CONTENT, MayHaveALongComment) {
  const std::string comment = "#" + std::string(std::size_t{3} << 20, 'c');
  EXPECT_EQ(tree_of(comment + "\n"), "'" + comment + "\\n'\n");
}

TEST_F(CONTENT, MayHaveALongName) {
  const std::string name(std::size_t{3} << 20, 'n');
  EXPECT_EQ(tree_of("device " + name + " { a = 1; }"), "device " + name + " @1\n  a = 1 @1\n");
}

TEST_F(READ, AcceptsAFileOfManyMegabytes) {
  std::string text;
  for (int i = 0; i < 2000; i++) {
    text += "device d" + std::to_string(i) + " {\n";
    for (int j = 0; j < 50; j++) text += "  parameter_" + std::to_string(j) + " = 12345;\n";
    text += "}\n";
  }
  ASSERT_GT(text.size(), std::size_t{2} << 20);
  EXPECT_TRUE(m_document.read(m_directory.write("big.sbd", text).c_str()));
  EXPECT_EQ(count_symbols(m_document), 2000U * 51);
  EXPECT_EQ(find_inconsistency(m_document), "");
  EXPECT_EQ(m_document.get_statement("d1999", "parameter_49")->name->line, 2000U * 52 - 1);
}

// Files whose size is at or beside a power of two, where buffers are often full.
TEST_F(READ, AcceptsFilesOfAnySize) {
  for (const std::size_t size : {4095U, 4096U, 4097U, 8192U, 65535U, 65536U, 65537U, 1048576U}) {
    const std::string begin = "device d { a = \"";
    const std::string end = "\"; }";
    const std::string text = begin + std::string(size - begin.size() - end.size(), 's') + end;
    EXPECT_TRUE(m_document.read(m_directory.write("f.sbd", text).c_str()));
    EXPECT_EQ(m_document.get_source(), text);
  }
}

// ---- Texts -------------------------------------------------------------------------------------

TEST_F(READ, OfATextCopiesIt) {
  std::string text = GOOD_TEXT;
  std::string name = "my.sbd";
  ASSERT_TRUE(m_document.read_text(text.data(), text.size(), name.c_str()));
  text.assign(text.size(), 'x');
  name = "changed";
  EXPECT_EQ(outline(m_document), GOOD_TREE);
  EXPECT_EQ(m_document.get_source(), GOOD_TEXT);
  EXPECT_STREQ(m_document.get_file_name(), "my.sbd");
}

TEST_F(READ, OfATextTakesJustItsLength) {
  const std::string_view text = "device d { a = 12; }garbage";
  EXPECT_TRUE(m_document.read_text(text.data(), 20, "f"));
  EXPECT_EQ(outline(m_document), "device d @1\n  a = 12 @1\n");
  EXPECT_FALSE(m_document.read_text(text.data(), 19, "f"));
  EXPECT_EQ(m_recorder.texts(), TEXTS{syntax_error_text("f", "", 1)});
}

TEST_F(READ, OfATextGivesItsNameInMessages) {
  EXPECT_FALSE(read_text(m_document, "device", "a/b c.sbd"));
  EXPECT_EQ(m_recorder.texts(), TEXTS{syntax_error_text("a/b c.sbd", "", 1)});
  EXPECT_STREQ(m_document.get_file_name(), "a/b c.sbd");
}

TEST_F(READ, OfATextAcceptsTheSourceThatItGaveOut) {
  ASSERT_TRUE(read_text(m_document, GOOD_TEXT));
  const std::string_view source = m_document.get_source();
  EXPECT_TRUE(m_document.read_text(source.data(), source.size(), m_document.get_file_name()));
  EXPECT_EQ(outline(m_document), GOOD_TREE);
  EXPECT_STREQ(m_document.get_file_name(), TEST_FILE);
}

TEST_F(READ, OfATextRefusesEveryBeginningOfIt) {
  const std::string_view text = "device d { a = {1, 0x2K} [k .v]; r < d, .a >; }";
  for (std::size_t length = 1; length < text.size(); length++) {
    EXPECT_FALSE(read_text(m_document, text.substr(0, length))) << length;
    expect_empty(m_document);
  }
  EXPECT_TRUE(read_text(m_document, text));
}

// ---- Source ------------------------------------------------------------------------------------

TEST_F(READ, LeavesNoSourceWhenItFails) {
  EXPECT_FALSE(read_text(m_document, "device"));
  EXPECT_EQ(m_document.get_source(), "");
}

TEST_F(READ, LeavesASourceThatClearFrees) {
  ASSERT_TRUE(read_text(m_document, GOOD_TEXT));
  m_document.clear();
  EXPECT_EQ(m_document.get_source(), "");
}

// ---- Derived documents -------------------------------------------------------------------------

class COUNTING_DOCUMENT : public SBD_FILE_PARSER {
 public:
  bool read(const char* path) override {
    count++;
    return SBD_FILE_PARSER::read(path);
  }
  int count = 0;
};

TEST_F(READ, MayBeExtended) {
  const std::string path = m_directory.write("f.sbd", GOOD_TEXT);
  COUNTING_DOCUMENT document;
  SBD_FILE_PARSER& base = document;
  EXPECT_TRUE(base.read(path.c_str()));
  EXPECT_EQ(document.count, 1);
}

}  // namespace
