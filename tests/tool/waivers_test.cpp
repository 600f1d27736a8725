#include "tools/waivers.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/tool/advice_support.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char k_idle[] = "TOOL_IDLE_WAIVER";
constexpr char k_faulty[] = "TOOL_FAULTY_WAIVER";

class WAIVER_TEST : public ADVICE_TEST {
 protected:
  // The reasons of what is waived; everything else has to be fine.
  std::vector<std::string> find_reasons(const std::string& statements) {
    const auto file = check(statements);
    EXPECT_TRUE(file.findings.empty()) << file.findings.list.front().text;
    std::vector<std::string> reasons;
    for (const auto& finding : file.findings.waived) reasons.push_back(finding.waiver);
    return reasons;
  }
};

TEST_F(WAIVER_TEST, IsAboutTheStatementThatFollows) {
  EXPECT_THAT(find_reasons("# sbd: allow TOOL_UNKNOWN_PARAMETER - for the loader\n"
                           "# (version 2)\n"
                           "loader_word = 1;\n"),
              ElementsAre("for the loader"));
  EXPECT_EQ(check("# sbd: allow TOOL_UNKNOWN_PARAMETER - for the loader\n"
                  "loader_word = 1;\nother_word = 1;\n")
                .findings.warning_count,
            1U);
}

TEST_F(WAIVER_TEST, IsAboutTheBlockThatFollows) {
  EXPECT_THAT(find_reasons("# sbd: allow TOOL_UNKNOWN_PARAMETER - for the loader - and more\n"
                           "parameters uart { enabled = false;\nloader_word = 1;\n"
                           "second_word = 2; }\n"),
              ElementsAre("for the loader - and more", "for the loader - and more"));
}

TEST_F(WAIVER_TEST, IsAboutTheBlockThatItStandsBehindTheBraceOf) {
  EXPECT_THAT(find_reasons("parameters uart { # sbd: allow TOOL_UNKNOWN_PARAMETER - loader\n"
                           "enabled = false;\nloader_word = 1; }\n"),
              ElementsAre("loader"));
}

TEST_F(WAIVER_TEST, IsAboutItsLine) {
  EXPECT_THAT(find_reasons("word = 1; other = 2; # sbd: allow TOOL_UNKNOWN_PARAMETER - loader\n"),
              ElementsAre("loader", "loader"));
  EXPECT_EQ(check("word = 1;\nother = 2; # sbd: allow TOOL_UNKNOWN_PARAMETER - loader\n")
                .findings.warning_count,
            1U);
}

TEST_F(WAIVER_TEST, TheNearestReasonCountsAndAllOfThemAreUsed) {
  EXPECT_THAT(find_reasons("# sbd: allow TOOL_UNKNOWN_PARAMETER - outer\n"
                           "# sbd: allow TOOL_UNKNOWN_PARAMETER - outer again\n"
                           "parameters uart { enabled = false;\nfirst = 1;\n"
                           "# sbd: allow TOOL_UNKNOWN_PARAMETER - inner\n"
                           "second = 2;\nthird = 3; }\n"),
              ElementsAre("outer", "inner", "outer"));
}

TEST_F(WAIVER_TEST, ManyOfThemTakeNoLongerThanTheyShould) {
  constexpr int k_count = 100000;
  std::string text;
  for (int i = 0; i != k_count; ++i) text += "# sbd: allow TOOL_UNKNOWN_PARAMETER - all\n";
  text += "parameters uart { enabled = false;\n";
  for (int i = 0; i != k_count; ++i) {
    text += "u" + std::to_string(i) + " = 1; # sbd: allow TOOL_UNKNOWN_PARAMETER - one\n";
  }
  const auto file = check(text + "}\n");
  EXPECT_TRUE(file.findings.empty());
  EXPECT_EQ(file.findings.waived.size(), static_cast<std::size_t>(k_count));
}

TEST_F(WAIVER_TEST, NestedOnesTakeNoLongerThanTheyShould) {
  constexpr std::size_t k_depth = 50000;
  std::string text;
  for (std::size_t i = 0; i != k_depth; ++i) {
    text += "# sbd: allow TOOL_NOT_READ - all\nmodule extra {\n";
  }
  text += "a = 1;\n" + std::string(k_depth, '}') + "\n";
  m_options.finding_limit = 0;
  EXPECT_EQ(find(k_idle, text).size(), k_depth - 1);
}

TEST_F(WAIVER_TEST, MayHaveSeveralCodesInAnyCaseAndShort) {
  EXPECT_THAT(find_reasons("# sbd: allow unknown_parameter, Tool_Unknown_Block - loader\n"
                           "parameters uart { enabled = false; word = 1;\n"
                           "region extra { size = 1; } }\n"),
              ElementsAre("loader", "loader"));
}

TEST_F(WAIVER_TEST, ThatMatchesNothingIsTold) {
  EXPECT_THAT(find(k_idle, "# sbd: allow TOOL_NO_EFFECT - bench\nendian = big;"),
              ElementsAre("This waiver matches nothing: there is no TOOL_NO_EFFECT here"));
  EXPECT_THAT(find(k_idle, "endian = big;\n# sbd: allow TOOL_NO_EFFECT - at the end\n"),
              ElementsAre(HasSubstr("TOOL_NO_EFFECT")));
}

TEST_F(WAIVER_TEST, OfWhatNobodyLookedForIsNotTold) {
  const std::string text = "# sbd: allow TOOL_NO_EFFECT - bench\nendian = big;";
  m_options.disabled = {"TOOL_NO_EFFECT"};
  EXPECT_THAT(find(k_idle, text), IsEmpty());
  m_options.disabled.clear();
  m_options.devices = {"board"};
  EXPECT_THAT(find(k_idle, text), IsEmpty());
  m_options.devices.clear();
  m_options.has_advice = false;
  EXPECT_THAT(find(k_idle, text), IsEmpty());
}

TEST_F(WAIVER_TEST, OfHiddenInfosIsNotIdle) {
  EXPECT_THAT(find_reasons("endian = little; # sbd: allow TOOL_DEFAULT_STATED - clearer so\n"),
              ElementsAre("clearer so"));
}

TEST_F(WAIVER_TEST, NeedsAReason) {
  for (const char* const end : {"", " -", " - ", " because it is so"}) {
    const std::string text = std::string("endian = little; # sbd: allow TOOL_DEFAULT_STATED") + end;
    EXPECT_THAT(find(k_faulty, text + "\n"),
                ElementsAre(HasSubstr("This waiver is not heeded: it gives no reason; a waiver "
                                      "reads: # sbd: allow CODE - reason")));
  }
}

TEST_F(WAIVER_TEST, NeedsACodeOfAdvice) {
  EXPECT_THAT(find(k_faulty, "# sbd: allow - bench\nendian = big;"),
              ElementsAre(HasSubstr("it names no code")));
  EXPECT_THAT(find(k_faulty, "# sbd: allow TOOL_NO_EFECT - bench\nendian = big;"),
              ElementsAre(HasSubstr("there is no advice 'TOOL_NO_EFECT'; a waiver reads: # sbd: "
                                    "allow CODE - reason; did you mean 'TOOL_NO_EFFECT'?")));
  EXPECT_THAT(find(k_faulty, "# sbd: alow TOOL_NO_EFFECT - bench\nendian = big;"),
              ElementsAre(HasSubstr("'alow' is not 'allow'")));
}

TEST_F(WAIVER_TEST, ErrorsCanNotBeWaived) {
  const auto file =
      check("# sbd: allow ESBD_SBD_PARAMETER_VALUE_ERROR - it works\nendian = middle;");
  EXPECT_EQ(file.findings.error_count, 1U);
  EXPECT_EQ(file.findings.list.back().text,
            "This waiver is not heeded: ESBD_SBD_PARAMETER_VALUE_ERROR is not advice");
}

TEST_F(WAIVER_TEST, OtherCommentsAndTextsAreNone) {
  EXPECT_TRUE(check("# see sbd: allow TOOL_NO_EFFECT\n"
                    "vantrel_version = \"# sbd: allow\"; # ask\n")
                  .findings.empty());
}

}  // namespace
