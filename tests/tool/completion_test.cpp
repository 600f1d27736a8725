#include "tools/completion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>
#include <random>
#include <string>
#include <vector>

#include "tests/support/temporary_files.h"
#include "tests/tool/device_support.h"
#include "tools/completion_values.h"
#include "tools/tool.h"

namespace {

using sbd_tool::COMPLETION;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

constexpr char k_board[] =
    "# The board.\n"
    "device board {\n"
    "  family = veldran_arm; type = qmxa10;\n"
    "  title = \"two words\";\n"
    "  module Stripe {\n"
    "    type = veldran_stripe;\n"
    "    parameters clocks { input_clock_frequency = 20MHz; pll_ahb_bypass = true; }\n"
    "    parameters sdram { enabled = false; type = sdr; }\n"
    "    source < board.Stripe.clocks >;\n"
    "  }\n"
    "}\n"
    "device spare { family = veldran_arm; type = qmxa1; }\n";

class COMPLETION_TEST : public DEVICE_TEST {
 protected:
  COMPLETION ask(const std::vector<std::string>& words) const { return complete(m_tool, words); }

  std::vector<std::string> texts(const std::vector<std::string>& words) const {
    std::vector<std::string> list;
    for (const sbd_tool::CANDIDATE& candidate : ask(words).candidates) {
      list.push_back(candidate.text);
    }
    return list;
  }

  const sbd_tool::COMMAND_DESCRIPTION m_tool = sbd_tool::describe_tool();
  TEMPORARY_DIRECTORY m_folder;
  const std::string m_board = m_folder.write("board.sbd", k_board);
};

// ---- Commands and options ----------------------------------------------------------------------

TEST_F(COMPLETION_TEST, CommandsComeFirst) {
  const std::vector<std::string> all = texts({});
  EXPECT_EQ(all, texts({""}));
  EXPECT_THAT(all, AllOf(Contains("check"), Contains("fmt"), Not(Contains("__complete")),
                         Not(Contains("--help"))));
  EXPECT_THAT(texts({"re"}), ElementsAre("report", "ref", "rename"));
  EXPECT_THAT(texts({"block", ""}), ElementsAre("add", "remove"));
  EXPECT_THAT(texts({"block", "add", "--a"}), ElementsAre("--after"));
}

TEST_F(COMPLETION_TEST, UnknownCommandHasNoArguments) {
  EXPECT_THAT(texts({"frobnicate", "--j"}), IsEmpty());
  EXPECT_THAT(texts({"xyz"}), IsEmpty());
}

TEST_F(COMPLETION_TEST, OptionsOfTheTool) {
  EXPECT_THAT(texts({"-"}), UnorderedElementsAre("--help", "--version"));
}

TEST_F(COMPLETION_TEST, OptionsAreGivenOnceUnlessTheyMayBeRepeated) {
  EXPECT_THAT(texts({"check", "--fo"}), ElementsAre("--format", "--format-only"));
  EXPECT_THAT(texts({"check", "--format", "text", "--fo"}), ElementsAre("--format-only"));
  EXPECT_THAT(texts({"check", "--device", "board", "--dev"}), ElementsAre("--device"));
  EXPECT_THAT(texts({"check", "-v", "--verb"}), IsEmpty());
}

TEST_F(COMPLETION_TEST, ExcludedOptionsAreNotOffered) {
  EXPECT_THAT(texts({"check", "--json", "--format"}), ElementsAre("--format-only"));
  EXPECT_THAT(texts({"check", "--all-chips", "--chi"}), IsEmpty());
}

TEST_F(COMPLETION_TEST, ShortOptions) {
  EXPECT_THAT(texts({"set", "-o"}), ElementsAre("-o"));
  EXPECT_EQ(ask({"set", "-o", ""}).files, COMPLETION::FILES::ANY);
  EXPECT_EQ(ask({"set", "-nvo", ""}).files, COMPLETION::FILES::ANY);
  // The value is given: the file comes next.
  EXPECT_EQ(ask({"set", "-oout.sbd", ""}).files, COMPLETION::FILES::DESCRIPTORS);
}

TEST_F(COMPLETION_TEST, OptionsWhereNothingElseMayStand) {
  EXPECT_THAT(texts({"new", ""}), Contains("--chip"));
  EXPECT_THAT(texts({"list", m_board, ""}), Contains("--type"));
  EXPECT_THAT(texts({"list", m_board, "x"}), IsEmpty());
}

TEST_F(COMPLETION_TEST, NoOptionsBehindTheirEnd) {
  EXPECT_THAT(texts({"show", "--", "--j"}), IsEmpty());
  EXPECT_EQ(ask({"show", "--", ""}).files, COMPLETION::FILES::DESCRIPTORS);
}

// ---- Values ------------------------------------------------------------------------------------

TEST_F(COMPLETION_TEST, EveryArgumentHasASource) {
  std::function<void(const sbd_tool::COMMAND_DESCRIPTION&)> look;
  int count = 0;
  look = [&](const sbd_tool::COMMAND_DESCRIPTION& command) {
    for (const auto* const arguments : {&command.positionals, &command.options}) {
      for (const sbd_tool::ARGUMENT_DESCRIPTION& argument : *arguments) {
        for (const std::string& value : argument.values) {
          EXPECT_TRUE(has_value_source(command, argument, value)) << command.path << ' ' << value;
          ++count;
        }
      }
    }
    for (const sbd_tool::COMMAND_DESCRIPTION& below : command.commands) look(below);
  };
  look(m_tool);
  EXPECT_GT(count, 80);
}

TEST_F(COMPLETION_TEST, ChoicesInBothForms) {
  EXPECT_THAT(texts({"check", "--format", ""}), ElementsAre("text", "json", "sarif", "github"));
  EXPECT_THAT(texts({"check", "--format=s"}), ElementsAre("--format=sarif"));
  EXPECT_THAT(texts({"get", "--as", "R"}), ElementsAre("refs", "raw"));
  EXPECT_THAT(texts({"check", "--json=t"}), IsEmpty());
}

TEST_F(COMPLETION_TEST, Files) {
  EXPECT_EQ(ask({"check", ""}).files, COMPLETION::FILES::DESCRIPTORS);
  EXPECT_EQ(ask({"check", "a.sbd", "b"}).files, COMPLETION::FILES::DESCRIPTORS);
  EXPECT_EQ(ask({"diff", "old.sbd", ""}).files, COMPLETION::FILES::DESCRIPTORS);
  EXPECT_EQ(ask({"diff", "old.sbd", "new.sbd", ""}).files, COMPLETION::FILES::NONE);
  EXPECT_EQ(ask({"edit", "a.sbd", "--script", ""}).files, COMPLETION::FILES::ANY);
  EXPECT_EQ(ask({"explain", ""}).files, COMPLETION::FILES::NONE);
}

TEST_F(COMPLETION_TEST, Codes) {
  EXPECT_THAT(texts({"check", "--disable", "tool_no"}),
              UnorderedElementsAre("TOOL_NOT_READ", "TOOL_NO_EFFECT"));
}

TEST_F(COMPLETION_TEST, FeaturesOneByOne) {
  EXPECT_THAT(texts({"new", "--with", "sd"}), ElementsAre("sdram"));
  EXPECT_THAT(
      texts({"new", "--with", "sdram,"}),
      AllOf(Contains("sdram,uart"), Not(Contains("sdram,sdram")), Not(Contains("sdram,all"))));
  EXPECT_THAT(texts({"new", "--chip", "qmxa1", "--with", ""}),
              AllOf(Contains("gpio"), Contains("all"), Not(Contains("trace"))));
}

TEST_F(COMPLETION_TEST, TopicsAreParametersBlocksAndMessages) {
  EXPECT_THAT(texts({"explain", "clo"}), ElementsAre("clocks", "clocks."));
  EXPECT_THAT(texts({"explain", "clocks.PLL_AHB_B"}), ElementsAre("clocks.pll_ahb_bypass"));
  EXPECT_THAT(texts({"explain", "esbd_sbd_s"}), ElementsAre("ESBD_SBD_SYNTAX_ERROR"));
  EXPECT_THAT(texts({"explain", "--chip", "qmxa1", "tr"}), ElementsAre("trace", "trace."));
}

TEST_F(COMPLETION_TEST, Clocks) {
  EXPECT_THAT(texts({"clocks", "--want", ""}), ElementsAre("ahb1=", "ahb2=", "sdram="));
  EXPECT_THAT(texts({"clocks", "--want=a"}), ElementsAre("--want=ahb1=", "--want=ahb2="));
}

// ---- Names in a file ---------------------------------------------------------------------------

TEST_F(COMPLETION_TEST, NamesLevelByLevel) {
  EXPECT_THAT(texts({"show", m_board, ""}), ElementsAre("board", "board.", "spare", "spare."));
  EXPECT_THAT(texts({"show", m_board, "board.t"}), ElementsAre("board.type", "board.title"));
  EXPECT_THAT(texts({"show", m_board, "board.Stripe.s"}),
              ElementsAre("board.Stripe.sdram", "board.Stripe.sdram.", "board.Stripe.source"));
}

TEST_F(COMPLETION_TEST, NamesInAnyLetterCaseAndAsDeclared) {
  EXPECT_THAT(texts({"show", m_board, "BOARD.STRIPE.CLOCKS.IN"}),
              ElementsAre("board.Stripe.clocks.input_clock_frequency"));
}

TEST_F(COMPLETION_TEST, NamesOfTheKindThatIsWanted) {
  EXPECT_THAT(texts({"get", m_board, "board.s"}), ElementsAre("board.Stripe."));
  EXPECT_THAT(texts({"list", m_board, "--scope", "board.s"}),
              ElementsAre("board.Stripe", "board.Stripe."));
  EXPECT_THAT(texts({"block", "remove", m_board, "board.stripe.c"}),
              ElementsAre("board.Stripe.clocks"));
  EXPECT_THAT(texts({"check", m_board, "--device", ""}), ElementsAre("board", "spare"));
}

TEST_F(COMPLETION_TEST, NamesInsideOfNothing) {
  EXPECT_THAT(texts({"show", m_board, "nobody.x"}), IsEmpty());
  EXPECT_THAT(texts({"show", m_board, "board.title.x"}), IsEmpty());
  EXPECT_THAT(texts({"show", m_board, "."}), IsEmpty());
  EXPECT_THAT(texts({"show", m_board, "board..x"}), IsEmpty());
}

TEST_F(COMPLETION_TEST, DescriptionsTellTypeAndValue) {
  const COMPLETION completion = ask({"show", m_board, "board."});
  const std::string text = format_completion(completion);
  EXPECT_THAT(text, testing::StartsWith("files none\nboard.family\tveldran_arm\n"));
  EXPECT_THAT(text, testing::HasSubstr("board.Stripe.\tmodule\n"));
  EXPECT_THAT(text, testing::HasSubstr("board.title\t\"two words\"\n"));
}

TEST_F(COMPLETION_TEST, SiblingsOfTheNameOnTheLine) {
  EXPECT_THAT(texts({"set", m_board, "board.stripe.sdram.x", "1", "--after", ""}),
              ElementsAre("enabled", "type"));
  EXPECT_THAT(texts({"ref", "--before", "", m_board}), IsEmpty());
  EXPECT_THAT(texts({"ref", m_board, "spare.r", "board.title", "--before", "f"}),
              ElementsAre("family"));
  EXPECT_THAT(texts({"block", "add", m_board, "module", "spare.m", "--after", "t"}),
              ElementsAre("type"));
  EXPECT_THAT(texts({"set", m_board, "--after", ""}), IsEmpty());
}

TEST_F(COMPLETION_TEST, ReferencesAreToAnything) {
  EXPECT_THAT(texts({"ref", m_board, "board.Stripe.source", "board.Stripe.clocks", "spare.f"}),
              ElementsAre("spare.family"));
  EXPECT_THAT(texts({"ref", m_board, "--remove", "spa"}), ElementsAre("spare", "spare."));
}

// ---- Setting -----------------------------------------------------------------------------------

TEST_F(COMPLETION_TEST, SetOffersWhatTheBlockCouldState) {
  EXPECT_THAT(texts({"set", m_board, "board.stripe.clocks.pll_"}),
              AllOf(Contains("board.Stripe.clocks.pll_ahb_bypass"),
                    Contains("board.Stripe.clocks.pll_ahb_m"),
                    Contains("board.Stripe.clocks.pll_sdram_bypass")));
  // Not what stands in a block that is not there.
  EXPECT_THAT(texts({"set", m_board, "board.stripe.uart."}), IsEmpty());
}

TEST_F(COMPLETION_TEST, SetOffersValues) {
  EXPECT_THAT(texts({"set", m_board, "board.stripe.sdram.type", ""}), ElementsAre("sdr", "ddr"));
  EXPECT_THAT(texts({"set", m_board, "board.stripe.sdram.enabled", "T"}), ElementsAre("true"));
  EXPECT_THAT(texts({"set", m_board, "board.title", ""}), ElementsAre("\"two words\""));
  EXPECT_THAT(texts({"set", m_board, "board.stripe.sdram.data_width", ""}), ElementsAre("32"));
  EXPECT_THAT(texts({"set", m_board, "board.title", "x", "board.ty"}), ElementsAre("board.type"));
  EXPECT_THAT(texts({"set", m_board, "nobody", ""}), IsEmpty());
  EXPECT_THAT(texts({"set", m_board, "board.stripe", ""}), IsEmpty());
}

TEST_F(COMPLETION_TEST, ValuesOfSeveralLinesAreNoCandidates) {
  const std::string path =
      m_folder.write("lines.sbd", "device d { x = \"a\nb\"; y = \"\x1b[1m\"; }\n");
  EXPECT_THAT(texts({"set", path, "d.x", ""}), IsEmpty());
  EXPECT_THAT(texts({"set", path, "d.y", ""}), IsEmpty());
  const std::string text = format_completion(ask({"show", path, "d."}));
  EXPECT_EQ(text, "files none\nd.x\t\"a\\nb\"\nd.y\t\"\\x1b[1m\"\n");
}

// ---- The tables of the chips -------------------------------------------------------------------

TEST_F(COMPLETION_TEST, PatternsAreParametersOfTheChip) {
  EXPECT_THAT(texts({"params", "--device", "board", m_board, "tr"}),
              ElementsAre("trace", "trace."));
  // Of all chips where the file tells none.
  EXPECT_THAT(texts({"params", "missing.sbd", "clocks.pll_ahb_b"}),
              ElementsAre("clocks.pll_ahb_bypass"));
}

// ---- Whatever is typed -------------------------------------------------------------------------

TEST_F(COMPLETION_TEST, AnyLineGivesCandidatesThatGoOnWithItsLastWord) {
  const std::vector<std::string> vocabulary = {
      "check",       "show",    "get",      "list",      "params",   "clocks",
      "diff",        "new",     "explain",  "set",       "ref",      "attr",
      "block",       "add",     "remove",   "rename",    "edit",     m_board,
      "-",           "--",      "--device", "--format=", "--want",   "--with",
      "sdram,",      "--after", "--set",    "-o",        "-nv",      "-x",
      "--=",         "=",       "",         "board",     "board.",   "board.Stripe.clocks.",
      "board.title", ".",       "..",       "spare.x",   "\xff\xfe", "a b",
      "\n"};
  std::mt19937 random(1);
  for (int i = 0; i != 5000; ++i) {
    std::vector<std::string> words;
    for (std::size_t count = random() % 7; count != 0; --count) {
      words.push_back(vocabulary[random() % vocabulary.size()]);
    }
    const std::string last = words.empty() ? "" : words.back();
    for (const sbd_tool::CANDIDATE& candidate : ask(words).candidates) {
      EXPECT_TRUE(sbd_tool::begins_with(candidate.text, last)) << candidate.text;
      EXPECT_EQ(candidate.text.find_first_of("\t\n"), std::string::npos) << candidate.text;
      EXPECT_EQ(candidate.description.find_first_of("\t\n"), std::string::npos);
    }
  }
}

// ---- Silence -----------------------------------------------------------------------------------

TEST_F(COMPLETION_TEST, FilesThatCantBeReadGiveNothing) {
  testing::internal::CaptureStderr();
  EXPECT_THAT(texts({"show", m_folder.path_of("missing.sbd"), ""}), IsEmpty());
  EXPECT_THAT(texts({"show", m_folder.path(), ""}), IsEmpty());
  EXPECT_THAT(texts({"show", m_folder.write("faulty.sbd", "device {"), ""}), IsEmpty());
  EXPECT_THAT(texts({"show", m_folder.write("empty.sbd", ""), ""}), IsEmpty());
  EXPECT_THAT(texts({"set", m_folder.write("twice.sbd", "device d { x = 1; x = 2; }\n"), "d."}),
              IsEmpty());
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(COMPLETION_TEST, PipesAreNotWaitedFor) {
  const std::string pipe = m_folder.path_of("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_THAT(texts({"show", pipe, ""}), IsEmpty());
  EXPECT_THAT(texts({"show", "-", ""}), IsEmpty());
}

}  // namespace
