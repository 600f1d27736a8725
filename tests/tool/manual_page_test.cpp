#include "tools/manual_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace {

using sbd_tool::ARGUMENT_DESCRIPTION;
using sbd_tool::COMMAND_DESCRIPTION;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

COMMAND_DESCRIPTION make_command() {
  COMMAND_DESCRIPTION command;
  command.name = "try";
  command.path = "sbd try";
  command.description = "Try something";
  ARGUMENT_DESCRIPTION file;
  file.values = {"FILE"};
  file.description = "The file";
  file.is_required = true;
  command.positionals.push_back(file);
  return command;
}

std::string make_page(const COMMAND_DESCRIPTION& command) {
  return make_command_page(command, {"1.2.3", "2026-01-02"});
}

ARGUMENT_DESCRIPTION make_option() {
  ARGUMENT_DESCRIPTION option;
  option.names = {"-f", "--form"};
  option.values = {"FORM"};
  option.description = "How it looks";
  return option;
}

TEST(MANUAL_PAGE, BeginsWithItsName) {
  EXPECT_EQ(manual_page_name(make_command()), "sbd-try");
  EXPECT_THAT(make_page(make_command()),
              StartsWith(".TH SBD\\-TRY 1 \"2026-01-02\" \"sbd 1.2.3\" \"User Commands\"\n"
                         ".SH NAME\nsbd\\-try \\- try something\n"
                         ".SH SYNOPSIS\n\\fBsbd try\\fR \\fIFILE\\fR\n"
                         ".SH DESCRIPTION\nTry something.\n"));
}

TEST(MANUAL_PAGE, TextFlowsAndExamplesStayAsTheyAre) {
  COMMAND_DESCRIPTION command = make_command();
  command.footer = "One line\nand another.\n\nA list:\n  a  b\n\nExamples:\n  sbd try x | less";
  const std::string page = make_page(command);
  EXPECT_THAT(page, HasSubstr("Try something.\n.PP\nOne line\nand another.\n.PP\nA list:\n"
                              ".RS 4\n.nf\na  b\n.fi\n.RE\n.SH OPTIONS\n"));
  EXPECT_THAT(page, HasSubstr(".SH EXAMPLES\n.RS 4\n.nf\nsbd try x | less\n.fi\n.RE\n"));
  EXPECT_THAT(page, Not(HasSubstr("Examples:")));
}

TEST(MANUAL_PAGE, NothingInATextIsTakenForAnInstruction) {
  COMMAND_DESCRIPTION command = make_command();
  command.footer = ".TH is no request here\n'nor this: \\fB, \"quoted\", `a`, ^, ~, -x";
  EXPECT_THAT(
      make_page(command),
      HasSubstr("\n\\&.TH is no request here\n"
                "\\(aqnor this: \\efB, \\(dqquoted\\(dq, \\(gaa\\(ga, \\(ha, \\(ti, \\-x\n"));
}

TEST(MANUAL_PAGE, OptionsTellWhatTheirDescriptionLeavesOut) {
  COMMAND_DESCRIPTION command = make_command();
  ARGUMENT_DESCRIPTION option = make_option();
  option.choices = {"plain", "fancy"};
  option.excluded = {"--json", "--quiet"};
  option.is_required = true;
  option.is_repeated = true;
  command.options.push_back(option);
  EXPECT_THAT(make_page(command),
              HasSubstr(".TP\n\\fB\\-f\\fR, \\fB\\-\\-form\\fR \\fIFORM\\fR\n"
                        "How it looks. FORM: plain, fancy. May be repeated. Required. "
                        "Not with \\-\\-json, \\-\\-quiet.\n"));
}

TEST(MANUAL_PAGE, OptionsDoNotRepeatTheirDescription) {
  COMMAND_DESCRIPTION command = make_command();
  ARGUMENT_DESCRIPTION option = make_option();
  option.description = "plain or fancy; may be repeated";
  option.choices = {"plain", "fancy"};
  option.is_repeated = true;
  command.options.push_back(option);
  EXPECT_THAT(make_page(command), HasSubstr("\nplain or fancy; may be repeated.\n"));
}

TEST(MANUAL_PAGE, CommandsBelowAreOnThePageOfTheirCommand) {
  COMMAND_DESCRIPTION command = make_command();
  command.positionals.clear();
  command.footer = "Examples:\n  sbd try a";
  COMMAND_DESCRIPTION below = make_command();
  below.name = "again";
  below.path = "sbd try again";
  below.footer = "Examples:\n  sbd try again b";
  command.commands = {below, below};
  const std::string page = make_page(command);
  EXPECT_THAT(page, HasSubstr(".SH SYNOPSIS\n\\fBsbd try again\\fR \\fIFILE\\fR\n.br\n"));
  EXPECT_THAT(page, HasSubstr("\n.SS sbd try again\nTry something.\n"));
  EXPECT_THAT(page, HasSubstr("sbd try a\n"));
  EXPECT_THAT(page, HasSubstr("sbd try again b\n"));
}

TEST(MANUAL_PAGE, TheToolLeadsToItsCommands) {
  COMMAND_DESCRIPTION tool;
  tool.name = "sbd";
  tool.path = "sbd";
  tool.description = "Does it all.";
  tool.commands.push_back(make_command());
  const std::string page = make_tool_page(tool, {"1.2.3", "2026-01-02"});
  EXPECT_THAT(page, HasSubstr("sbd \\- does it all\n"));
  EXPECT_THAT(page, HasSubstr("\\fBsbd\\fR \\fICOMMAND\\fR\n"));
  EXPECT_THAT(page, HasSubstr(".TP\n\\fBtry\\fR\nTry something.\n"));
  EXPECT_THAT(page, HasSubstr("NO_COLOR"));
  EXPECT_THAT(page, HasSubstr("\\fBsbd\\-try\\fR(1), \\fBsbd\\-descriptor\\fR(5)\n"));
}

}  // namespace
