#include "tools/findings.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "sbd/msg_sbd.h"
#include "tests/tool/captured_output.h"
#include "tools/finding_printer.h"

namespace {

using sbd_tool::FINDING;
using sbd_tool::FINDING_COLLECTOR;
using sbd_tool::FINDINGS;
using sbd_tool::PAINTER;
using sbd_tool::SEVERITY;

class FINDING_TEST : public testing::Test {
 protected:
  void SetUp() override { sbd_tool::install_handlers(); }
  void TearDown() override {
    sbd_host::set_message_handler({});
    sbd_host::set_internal_error_handler({});
  }
};

FINDINGS read(const std::string& text, std::size_t limit = 0) {
  FINDINGS findings;
  SBD_FILE_PARSER document;
  const FINDING_COLLECTOR collector(document, limit, findings);
  document.read_text(text.data(), text.size(), "test.sbd");
  return findings;
}

// "device d" with a reference to nothing in each line.
std::string faulty_text(std::size_t count) {
  std::string text = "device d {\n";
  for (std::size_t i = 0; i < count; ++i) text += "r" + std::to_string(i) + " < nothing >;\n";
  return text + "}\n";
}

TEST_F(FINDING_TEST, KeptOnesAreExplainedWhileTheyArePosted) {
  FINDINGS findings;
  SBD_FILE_PARSER document;
  std::size_t explained = 0;
  const FINDING_COLLECTOR collector(document, 2, findings, [&explained](FINDING& finding) {
    finding.note = "note " + std::to_string(++explained);
  });
  const std::string text = faulty_text(3);
  document.read_text(text.data(), text.size(), "test.sbd");
  EXPECT_EQ(explained, 2U);
  ASSERT_EQ(findings.list.size(), 2U);
  EXPECT_EQ(findings.list[1].note, "note 2");
  EXPECT_EQ(findings.omitted_count, 1U);
}

TEST_F(FINDING_TEST, HasTextKeyAndPlace) {
  const FINDINGS findings = read("device d {\n  x = 08;\n}\n");
  ASSERT_EQ(findings.list.size(), 1U);
  const FINDING& finding = findings.list[0];
  EXPECT_EQ(finding.severity, SEVERITY::ERROR);
  EXPECT_EQ(finding.key, "ESBD_SBD_SYNTAX_ERROR");
  EXPECT_EQ(finding.text,
            "System Build Descriptor File test.sbd contains syntax error \"8\" at "
            "line 2");
  ASSERT_TRUE(finding.place);
  EXPECT_EQ(finding.place->line, 2U);
  EXPECT_EQ(finding.place->column, 8U);
  EXPECT_EQ(finding.place->offset, 18U);
  EXPECT_EQ(finding.place->length, 1U);
}

TEST_F(FINDING_TEST, AllAreKeptInOrder) {
  const FINDINGS findings = read(faulty_text(100));
  ASSERT_EQ(findings.list.size(), 100U);
  EXPECT_EQ(findings.error_count, 100U);
  EXPECT_FALSE(findings.empty());
  for (std::size_t i = 0; i < 100; ++i) EXPECT_EQ(findings.list[i].place->line, i + 2);
}

TEST_F(FINDING_TEST, BeyondTheLimitTheyAreCounted) {
  const FINDINGS findings = read(faulty_text(100), 7);
  EXPECT_EQ(findings.list.size(), 7U);
  EXPECT_EQ(findings.omitted_count, 93U);
  EXPECT_EQ(findings.error_count, 100U);
}

TEST_F(FINDING_TEST, GoodTextHasNone) {
  const FINDINGS findings = read("device d { x = 1; }");
  EXPECT_TRUE(findings.empty());
  EXPECT_TRUE(findings.list.empty());
}

TEST_F(FINDING_TEST, WarningsAreCountedApart) {
  FINDINGS findings;
  const SBD_FILE_PARSER document;
  {
    const FINDING_COLLECTOR collector(document, 0, findings);
    SBD_FILE_PARSER::post_message(MSG_SBD::W::SBD_WARNING("careful"));
    SBD_FILE_PARSER::post_message(MSG_SBD::DEBUG_MSG("not for users"));
  }
  ASSERT_EQ(findings.list.size(), 1U);
  EXPECT_EQ(findings.list[0].severity, SEVERITY::WARNING);
  EXPECT_FALSE(findings.list[0].place);
  EXPECT_EQ(findings.warning_count, 1U);
  EXPECT_EQ(findings.error_count, 0U);
}

TEST_F(FINDING_TEST, ThreadsDoNotMix) {
  constexpr std::size_t k_threads = 4;
  std::vector<FINDINGS> found(k_threads);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < k_threads; ++i) {
    threads.emplace_back([&found, i] {
      for (int round = 0; round < 50; ++round) found[i] = read(faulty_text(i + 1));
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (std::size_t i = 0; i < k_threads; ++i) EXPECT_EQ(found[i].error_count, i + 1);
}

TEST_F(FINDING_TEST, InternalErrorsGoToStandardError) {
  testing::internal::CaptureStderr();
  MSG_INTERNAL_ERROR::report("a == b", "SBD", "sbd_source", 12);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "sbd: internal error: a == b (SBD, sbd_source:12)\n");
  EXPECT_TRUE(sbd_tool::had_internal_error());
}

TEST_F(FINDING_TEST, WithoutCollectorTheyAreNotLost) {
  testing::internal::CaptureStderr();
  SBD_FILE_PARSER::post_message(MSG_SBD::W::SBD_WARNING("careful\n"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "sbd: System Build Descriptor File warning: careful\\n\n");
}

// ---- Printing ----------------------------------------------------------------------------------

FINDING finding_at(std::size_t offset, std::size_t length, unsigned long line,
                   unsigned long column) {
  FINDING finding;
  finding.key = "EKEY";
  finding.text = "wrong";
  finding.place = {offset, length, line, column};
  return finding;
}

std::string print(const FINDINGS& findings, const std::string& source, bool has_colors = false) {
  CAPTURED_OUTPUT captured;
  sbd_tool::print_findings(captured.output(), PAINTER(has_colors), "a.sbd", source, findings);
  return captured.text();
}

TEST(FINDING_PRINTER, MarksThePlace) {
  FINDINGS findings;
  findings.list.push_back(finding_at(11, 3, 2, 6));
  EXPECT_EQ(print(findings, "first\nx = 0abc;\n"),
            "a.sbd:2:6: error: wrong [EKEY]\n"
            "     2 | x = 0abc;\n"
            "       |      ^~~\n");
}

TEST(FINDING_PRINTER, MarksTheEndOfInput) {
  FINDINGS findings;
  findings.list.push_back(finding_at(6, 0, 2, 1));
  EXPECT_EQ(print(findings, "first\n"),
            "a.sbd:2:1: error: wrong [EKEY]\n"
            "     2 |\n"
            "       | ^ end of input\n");
}

TEST(FINDING_PRINTER, LargeLineNumbersFit) {
  FINDINGS findings;
  findings.list.push_back(finding_at(0, 1, 12345678, 1));
  EXPECT_EQ(print(findings, "x"),
            "a.sbd:12345678:1: error: wrong [EKEY]\n"
            "12345678 | x\n"
            "         | ^\n");
}

TEST(FINDING_PRINTER, PlacesNotesAndKeysMayBeMissing) {
  FINDINGS findings;
  FINDING finding;
  finding.severity = SEVERITY::WARNING;
  finding.text = "odd\nthing";
  finding.note = "why";
  findings.list.push_back(finding);
  findings.omitted_count = 3;
  EXPECT_EQ(print(findings, ""),
            "a.sbd: warning: odd\\nthing\n"
            "a.sbd: note: why\n"
            "a.sbd: note: 3 more not shown\n");
}

TEST(FINDING_PRINTER, NotesMayHaveAPlace) {
  FINDINGS findings;
  findings.list.push_back(finding_at(0, 1, 1, 1));
  findings.list[0].note = "why";
  findings.list[0].note_place = finding_at(0, 1, 7, 3).place;
  EXPECT_EQ(print(findings, "x"),
            "a.sbd:1:1: error: wrong [EKEY]\n"
            "     1 | x\n"
            "       | ^\n"
            "a.sbd:7:3: note: why\n");
}

TEST(FINDING_PRINTER, ColorsTheImportantParts) {
  FINDINGS findings;
  findings.list.push_back(finding_at(0, 2, 1, 1));
  EXPECT_EQ(print(findings, "xy", true),
            "\x1b[1ma.sbd:1:1:\x1b[0m \x1b[1;31merror:\x1b[0m wrong [EKEY]\n"
            "     1 | xy\n"
            "       | \x1b[1;31m^~\x1b[0m\n");
}

}  // namespace
