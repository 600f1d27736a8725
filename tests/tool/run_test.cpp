// What the tool does where no golden file can say it: terminals, broken pipes, huge files.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "sbd/sbd_file_parser.h"
#include "tests/support/temporary_files.h"
#include "tests/tool/run_tool.h"

namespace {

constexpr char k_small[] = "device board {\n  size = 64K; # all of it\n}\n";
constexpr char k_faulty[] = "device board {\n  size = 08;\n}\n";
constexpr char k_escape = '\x1b';

std::string repeat(std::string_view text, std::size_t count) {
  std::string result;
  result.reserve(text.size() * count);
  while (count-- > 0) result += text;
  return result;
}

bool has_colors(const std::string& text) {
  return text.find(k_escape) != std::string::npos;
}

std::size_t count_lines(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

// A folder with a file in it for the tool to work on.
class TOOL : public testing::Test {
 protected:
  void write(const std::string& file, std::string_view content) { m_folder.write(file, content); }
  TOOL_RUN run(const std::string& script) { return run_script(m_folder.path(), script); }
  TOOL_RUN run_on_terminal(const std::string& script) {
    return run_script_on_terminal(m_folder.path(), script);
  }

 private:
  TEMPORARY_DIRECTORY m_folder;
};

// ---- Git ---------------------------------------------------------------------------------------

// As docs/tool.md tells to set it up.
TEST_F(TOOL, IsADiffDriverOfGit) {
  if (run("git --version").exit_code != 0) GTEST_SKIP() << "git is not installed";
  write("a.sbd", k_small);
  const TOOL_RUN result = run(R"(
    export HOME=$PWD GIT_CONFIG_NOSYSTEM=1 GIT_CEILING_DIRECTORIES=$PWD/..
    git init -q . || exit 9
    echo '*.sbd diff=sbd' >> .gitattributes
    git config diff.sbd.command 'f() { echo "sbd diff $1"; sbd diff "$2" "$5"; test $? -lt 2; }; f'
    git add . && git -c user.name=me -c user.email=me@example.org commit -qm first
    sed -i 's/64K/0x10000/' a.sbd
    git diff > same.txt || exit 8
    sed -i 's/0x10000/0x20000/' a.sbd
    git diff > other.txt || exit 7
    cat same.txt other.txt)");
  EXPECT_EQ(result.exit_code, 0) << result.err;
  EXPECT_EQ(result.out.find("sbd diff a.sbd\nsbd diff a.sbd\n"), 0U) << result.out;
  EXPECT_NE(result.out.find("64K -> 0x20000"), std::string::npos) << result.out;
}

// ---- Colours -----------------------------------------------------------------------------------

class TOOL_COLORS : public TOOL {
 protected:
  void SetUp() override {
    write("a.sbd", k_small);
    write("bad.sbd", k_faulty);
  }
};

TEST_F(TOOL_COLORS, AreForTerminals) {
  EXPECT_TRUE(has_colors(run_on_terminal("sbd show a.sbd").out));
  EXPECT_TRUE(has_colors(run_on_terminal("sbd check bad.sbd").out));
  EXPECT_TRUE(has_colors(run_on_terminal("sbd get bad.sbd board.size >/dev/null").out));
  EXPECT_FALSE(has_colors(run("sbd show a.sbd").out));
  EXPECT_FALSE(has_colors(run("sbd check bad.sbd").out));
}

TEST_F(TOOL_COLORS, AreNotForJson) {
  EXPECT_FALSE(has_colors(run_on_terminal("sbd show --json a.sbd").out));
  EXPECT_FALSE(has_colors(run_on_terminal("sbd get a.sbd board.size").out));
}

TEST_F(TOOL_COLORS, GiveWayToNoColor) {
  EXPECT_FALSE(has_colors(run_on_terminal("NO_COLOR=1 sbd show a.sbd").out));
  EXPECT_FALSE(has_colors(run_on_terminal("NO_COLOR=1 sbd check bad.sbd").out));
  EXPECT_TRUE(has_colors(run_on_terminal("NO_COLOR= sbd show a.sbd").out));
  EXPECT_FALSE(has_colors(run_on_terminal("TERM=dumb sbd show a.sbd").out));
}

TEST_F(TOOL_COLORS, FollowTheOption) {
  EXPECT_TRUE(has_colors(run("NO_COLOR=1 sbd show --color=always a.sbd").out));
  EXPECT_TRUE(has_colors(run("sbd check --color always bad.sbd").out));
  EXPECT_FALSE(has_colors(run_on_terminal("sbd show --color=never a.sbd").out));
}

// ---- Outputs that fail -------------------------------------------------------------------------

class TOOL_OUTPUT : public TOOL {
 protected:
  void SetUp() override {
    std::string members;
    for (int i = 0; i < 50000; ++i) members += fmt::format("  parameter_{} = {};\n", i, i);
    write("large.sbd", "device board {\n" + members + "}\n");
    write("faulty.sbd", "device board {\n" + repeat("  x < y >;\n", 5000) + "}\n");
  }

  // Runs the command into a pipe whose reader stops after the first line.
  TOOL_RUN run_into_broken_pipe(const std::string& command) {
    return run("{ " + command + "; echo $? >exit; } | head -n 1 >/dev/null; cat exit");
  }
};

TEST_F(TOOL_OUTPUT, BrokenPipeIsQuiet) {
  for (const char* const command :
       {"sbd show large.sbd", "sbd show --json large.sbd", "sbd list --parameters large.sbd"}) {
    const TOOL_RUN broken = run_into_broken_pipe(command);
    EXPECT_EQ(broken.out, "0\n") << command;
    EXPECT_EQ(broken.err, "") << command;
  }
}

TEST_F(TOOL_OUTPUT, BrokenPipeDoesNotHideFaults) {
  const TOOL_RUN broken = run_into_broken_pipe("sbd check faulty.sbd");
  EXPECT_EQ(broken.out, "1\n");
  EXPECT_EQ(broken.err, "");
}

TEST_F(TOOL_OUTPUT, FullDiskIsTold) {
  for (const char* const command : {"sbd show large.sbd", "sbd get large.sbd board.parameter_7",
                                    "sbd check faulty.sbd", "sbd --help", "sbd --version"}) {
    const TOOL_RUN full = run(std::string(command) + " >/dev/full");
    EXPECT_EQ(full.exit_code, 2) << command;
    EXPECT_EQ(full.err, "sbd: can't write the output: No space left on device\n") << command;
  }
}

TEST_F(TOOL_OUTPUT, ClosedOutputIsTold) {
  const TOOL_RUN closed = run("sbd get large.sbd board.parameter_7 >&-");
  EXPECT_EQ(closed.exit_code, 2);
  EXPECT_EQ(closed.err, "sbd: can't write the output: Bad file descriptor\n");
}

TEST_F(TOOL_OUTPUT, ClosedErrorOutputChangesNothing) {
  EXPECT_EQ(run("sbd get large.sbd nothing 2>&-").exit_code, 1);
  EXPECT_EQ(run("sbd get large.sbd nothing 2>/dev/full").exit_code, 1);
}

// ---- Inputs of all sorts -----------------------------------------------------------------------

class TOOL_INPUT : public TOOL {};

TEST_F(TOOL_INPUT, ReadsPipes) {
  write("a.sbd", k_small);
  EXPECT_EQ(run("mkfifo pipe; cat a.sbd >pipe & sbd get pipe board.size").out, "65536\n");
  EXPECT_EQ(run("cat a.sbd | sbd get /dev/stdin board.size").out, "65536\n");
  EXPECT_EQ(run("cat a.sbd | sbd get - board.size").out, "65536\n");
}

TEST_F(TOOL_INPUT, ReadsLargePipes) {
  write("large.sbd", "device board {\n" + repeat("# comment\n", 100000) + "  x = 1;\n}\n");
  EXPECT_EQ(run("cat large.sbd | sbd get - board.x").out, "1\n");
}

TEST_F(TOOL_INPUT, ClosedStandardInputIsUnreadable) {
  const TOOL_RUN closed = run("sbd check - <&-");
  EXPECT_EQ(closed.exit_code, 2);
  EXPECT_NE(closed.out.find("<stdin>: note: Bad file descriptor\n"), std::string::npos);
}

TEST_F(TOOL_INPUT, EveryByteMayBeWrong) {
  std::string bytes;
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
  write("bytes.sbd", bytes + bytes);
  const TOOL_RUN checked = run("sbd check bytes.sbd");
  EXPECT_EQ(checked.exit_code, 1);
  EXPECT_EQ(checked.err, "");
  const bool is_fit_for_terminals =
      std::none_of(checked.out.begin(), checked.out.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte >= 0x7F || (byte < 0x20 && c != '\n');
      });
  EXPECT_TRUE(is_fit_for_terminals);
}

TEST_F(TOOL_INPUT, FindingsHaveALimit) {
  write("dollars.sbd", std::string(50000, '$'));
  const TOOL_RUN checked = run("sbd check -v dollars.sbd");
  EXPECT_EQ(checked.exit_code, 1);
  EXPECT_EQ(count_lines(checked.out), 3 * 10000U + 1);
  EXPECT_NE(checked.out.find("dollars.sbd: note: 40000 more not shown\n"), std::string::npos);
  EXPECT_EQ(checked.err, "50000 errors\n");
}

// ---- Lists -------------------------------------------------------------------------------------

// The tool walks the tree by itself, so that names need not all be in memory.
TEST_F(TOOL, ListsWhatTheLibraryFinds) {
  const std::string text =
      "device a { module m { bus b { slave s { region r { x = 1; } } } module n { x = 1; } } }\n"
      "device c { parameters p { module q { x = 1; } } master t { x = 1; } }\n";
  write("a.sbd", text);
  SBD_FILE_PARSER document;
  ASSERT_TRUE(document.read_text(text.data(), text.size(), "a.sbd"));
  for (const char* const scope : {"", "a", "a.m", "c.p", "c.t"}) {
    for (const char* const type :
         {"device", "bus", "module", "slave", "master", "region", "parameters"}) {
      SBD_STRING_LIST names;
      document.get_typed_blocks(type, names, *scope != '\0' ? scope : nullptr);
      std::string expected;
      for (const SBD_STRING& name : names) expected.append(name).append("\n");
      const std::string option = *scope != '\0' ? fmt::format("--scope {} ", scope) : "";
      EXPECT_EQ(run(fmt::format("sbd list --type {} {}a.sbd", type, option)).out, expected)
          << type << " in " << scope;
    }
  }
}

// ---- Many devices ------------------------------------------------------------------------------

TEST_F(TOOL, ManyDevicesAreCheckedInOnePass) {
  constexpr int k_count = 3000;
  std::string text;
  for (int i = 0; i != k_count; ++i) {
    text += fmt::format(
        "device d{} {{ family = veldran_arm; type = qmxa4; module m {{ type = veldran_stripe;\n"
        "parameters clocks {{ input_clock_frequency = {}; pll_ahb_bypass = true;"
        " pll_sdram_bypass = true; }}\nparameters ebi {{ enabled = false; }}"
        " parameters dpram {{ mode[0] = no_ports; }} }} }}\n",
        i, i % 1000);  // Every thousandth one has no clock.
  }
  write("many.sbd", text);
  const TOOL_RUN checked = run("sbd check many.sbd");
  EXPECT_EQ(checked.exit_code, 1);
  EXPECT_NE(checked.out.find("many.sbd:6002:"), std::string::npos) << checked.out;
  EXPECT_EQ(checked.err.rfind("many.sbd: devices with findings: d0, d1000, d2000; fine: d1, ", 0),
            0U);
  EXPECT_NE(checked.err.find(" and 2977 more\n"), std::string::npos) << checked.err;
}

// ---- Many files --------------------------------------------------------------------------------

class TOOL_FILES : public TOOL {
 protected:
  void SetUp() override {
    write("a.sbd", k_small);
    write("bad.sbd", k_faulty);
  }
};

TEST_F(TOOL_FILES, ComeInOrderHoweverManyJobsThereAre) {
  run("mkdir f; for i in $(seq 300); do cp bad.sbd f/$i.sbd; done");
  for (const char* const form : {"text", "json", "sarif", "github"}) {
    const TOOL_RUN alone = run(fmt::format("sbd check --jobs 1 --format {} f", form));
    EXPECT_EQ(alone.exit_code, 1);
    EXPECT_NE(alone.out.find("300.sbd"), std::string::npos);
    for (const int jobs : {2, 5, 64}) {
      const TOOL_RUN run_by_many =
          run(fmt::format("sbd check --jobs {} --format {} f", jobs, form));
      EXPECT_EQ(run_by_many.out, alone.out);
      EXPECT_EQ(run_by_many.err, alone.err);
      EXPECT_EQ(run_by_many.exit_code, alone.exit_code);
    }
  }
}

TEST_F(TOOL_FILES, BrokenPipeEndsAllJobs) {
  run("mkdir f; for i in $(seq 300); do cp bad.sbd f/$i.sbd; done");
  const TOOL_RUN piped = run("sbd check --jobs 4 f | head -n 1");
  EXPECT_EQ(count_lines(piped.out), 1U);
  EXPECT_EQ(piped.err, "");
}

TEST_F(TOOL_FILES, LongRunsShowTheirProgressOnTerminals) {
  const std::string slowly = "(sleep 1; cat a.sbd) | sbd check --format-only - a.sbd bad.sbd";
  EXPECT_NE(run_on_terminal(slowly).out.find("checked 1 of 3 files"), std::string::npos);
  EXPECT_EQ(run(slowly).err, "1 error in 1 of 3 files\n");
}

// ---- Deep nesting ------------------------------------------------------------------------------

class TOOL_DEPTH : public TOOL {
 protected:
  static constexpr std::size_t k_depth = 100000;

  void SetUp() override {
    write("blocks.sbd", "device d {\n" + repeat("module m {\n", k_depth) +
                            "parameters p { x = 1; y < .x >; }\n" + repeat("}\n", k_depth) + "}\n");
  }
};

TEST_F(TOOL_DEPTH, Check) {
  const TOOL_RUN checked = run("sbd check --format-only blocks.sbd");
  EXPECT_EQ(checked.exit_code, 0);
  EXPECT_EQ(checked.out + checked.err, "");
}

TEST_F(TOOL_DEPTH, CheckDevice) {
  write("device.sbd", "device d { family = veldran_arm; type = qmxa1;\n" +
                          repeat("module m {\n", k_depth) +
                          "type = veldran_stripe; parameters ebi { enabled = false; }\n"
                          "parameters dpram { mode[0] = no_ports; }\n" +
                          repeat("}\n", k_depth) + "}\n");
  // The clocks are missing.
  EXPECT_EQ(run("sbd check device.sbd | grep -c 'note: required because'").out, "6\n");
  EXPECT_EQ(run("sbd params device.sbd '*enabled' 2>/dev/null | grep -c true").out, "0\n");
}

TEST_F(TOOL_DEPTH, CheckFaulty) {
  write("open.sbd", "device d {\n" + repeat("module m {\n", k_depth));
  EXPECT_EQ(run("sbd check open.sbd").exit_code, 1);
}

TEST_F(TOOL_DEPTH, Show) {
  const TOOL_RUN shown = run("sbd show blocks.sbd | tail -n 3 | cut -c 1-81");
  const std::string indent(64, ' ');
  EXPECT_EQ(shown.out, indent + "[100001] paramete\n" + indent + "[100002] x = 1\n" + indent +
                           "[100002] y -> d.m\n");
  // The text does not grow with the square of the depth.
  EXPECT_LT(std::stoul(run("sbd show blocks.sbd | wc -c").out), 100 * k_depth);
}

TEST_F(TOOL_DEPTH, ShowJson) {
  const TOOL_RUN shown = run("sbd show --json blocks.sbd | grep -c '\"kind\": \"block\"'");
  EXPECT_EQ(shown.out, fmt::format("{}\n", k_depth + 2));
  EXPECT_LT(std::stoul(run("sbd show --json blocks.sbd | wc -c").out), 1000 * k_depth);
}

TEST_F(TOOL_DEPTH, ShowSubtree) {
  EXPECT_EQ(run("sbd show blocks.sbd d.m.m | wc -l").out, fmt::format("{}\n", k_depth + 2));
}

TEST_F(TOOL_DEPTH, Get) {
  const std::string name = "d" + repeat(".m", 30000) + ".x";
  const TOOL_RUN got = run("sbd get blocks.sbd " + name);
  EXPECT_EQ(got.exit_code, 1);
  EXPECT_LT(got.err.size(), 500U);
  EXPECT_NE(got.err.find("m.m.p.x'?\n"), std::string::npos) << got.err;
}

TEST_F(TOOL_DEPTH, List) {
  const std::string deepest = "d" + repeat(".m", k_depth) + ".p\n";
  EXPECT_EQ(run("sbd list --type parameters blocks.sbd").out, deepest);
  EXPECT_EQ(run("sbd list blocks.sbd | head -n 3").out, "d\nd.m\nd.m.m\n");
}

TEST_F(TOOL_DEPTH, Lists) {
  constexpr std::size_t k_list_depth = 2000;
  write("lists.sbd", "device d { x = " + repeat("{1, ", k_list_depth) + "2" +
                         repeat("}", k_list_depth) + "; }\n");
  const std::string list = repeat("{1, ", k_list_depth) + "2" + repeat("}", k_list_depth) + "\n";
  EXPECT_EQ(run("sbd get lists.sbd d.x").out, list);
  EXPECT_EQ(run("sbd show lists.sbd d.x").out, "d.x = " + list);
  const std::string json = repeat("[1, ", k_list_depth) + "2" + repeat("]", k_list_depth) + "\n";
  EXPECT_EQ(run("sbd get --json lists.sbd d.x").out, json);
  EXPECT_EQ(run("sbd show --json lists.sbd | grep -c '\"kind\": \"list\"'").out,
            fmt::format("{}\n", k_list_depth));
}

// What every command does with a deep file takes no more stack than with a flat one.
TEST_F(TOOL_DEPTH, EveryCommandInASmallStack) {
#if defined(__SANITIZE_ADDRESS__)
  constexpr std::size_t k_small_depth = k_depth / 10;
#else
  constexpr std::size_t k_small_depth = k_depth;
#endif
  write("blocks.sbd", "device d {\n" + repeat("module m {\n", k_small_depth) +
                          "x = 1; y < .x >;\n" + repeat("}\n", k_small_depth) + "}\n");
  write("lists.sbd", "device d { x = " + repeat("{1, ", k_small_depth) + "2" +
                         repeat("}", k_small_depth) + "; z = 1; }\n");
  write("edits", "set d.new 1\nrename d e\nset e.new {1, 2}\n");
  for (const char* const command : {"check --format-only blocks.sbd lists.sbd",
                                    "show blocks.sbd",
                                    "show --json blocks.sbd",
                                    "show lists.sbd",
                                    "show --json lists.sbd",
                                    "get lists.sbd d.x",
                                    "get --json lists.sbd d.x",
                                    "get --as raw lists.sbd d.x",
                                    "list --type device --parameters blocks.sbd",
                                    "set -n blocks.sbd d.new 1",
                                    "set -n lists.sbd d.new 1",
                                    "unset -n lists.sbd d.x",
                                    "ref -n blocks.sbd d.r d.m",
                                    "ref -n blocks.sbd --remove d.m.m",
                                    "attr -n lists.sbd d.z k=a.b",
                                    "block add -n --set x=1 blocks.sbd module d.k",
                                    "rename -n blocks.sbd d e",
                                    "edit -n blocks.sbd --script edits",
                                    "edit -n lists.sbd --script edits",
                                    "fmt --diff lists.sbd",
                                    "set -n --canonical lists.sbd d.z 2"}) {
    const TOOL_RUN done = run(fmt::format("ulimit -s 512; sbd {} >/dev/null", command));
    EXPECT_EQ(done.exit_code, 0) << command << "\n" << done.err.substr(0, 500);
  }
  EXPECT_EQ(run("ulimit -s 512; sbd block remove -n blocks.sbd d.m.m").exit_code, 1);
  EXPECT_EQ(run("ulimit -s 512; sbd get blocks.sbd d.none").exit_code, 1);
}

// ---- Editing -----------------------------------------------------------------------------------

class TOOL_EDITS : public TOOL {};

// A folder in which no file can be made. The superuser can everywhere, and so becomes nobody.
TEST_F(TOOL_EDITS, ReadOnlyFolderIsLeftAlone) {
  write("a.sbd", k_small);
  constexpr char k_script[] =
      "run=; if [ \"$(id -u)\" = 0 ]; then\n"
      "  run='setpriv --reuid 65534 --regid 65534 --clear-groups'\n"
      "  $run sbd --version >/dev/null 2>&1 || { echo unable; exit; }\n"
      "fi\n"
      "chmod 644 a.sbd; chmod 555 .\n"
      "$run sbd set a.sbd board.size 1K; echo $?; cat a.sbd; ls; chmod 755 .";
  const TOOL_RUN edited = run(k_script);
  if (edited.out == "unable\n") GTEST_SKIP() << "nobody can't run the tool here";
  EXPECT_EQ(edited.out, fmt::format("2\n{}a.sbd\n", k_small));
  EXPECT_NE(edited.err.find("permission denied"), std::string::npos) << edited.err;
}

TEST_F(TOOL_EDITS, LargeFileIsEditedInReasonableTime) {
  std::string members;
  for (int i = 0; i < 200000; ++i) members += fmt::format("  parameter_{} = {};\n", i, i);
  write("large.sbd", "device board {\n" + members + "}\n");
  std::string script;
  for (int i = 0; i < 1000; ++i)
    script += fmt::format("set board.parameter_{} 0x{:x}K\n", i * 7, i);
  write("edits", script);
  EXPECT_EQ(run("sbd edit large.sbd --script edits").exit_code, 0);
  EXPECT_EQ(run("sbd get --as raw large.sbd board.parameter_6993").out, "0x3e7K\n");
  EXPECT_GT(count_lines(run("sbd fmt --diff large.sbd").out), 400000U);
  EXPECT_EQ(run("sbd fmt large.sbd && sbd fmt --check large.sbd").exit_code, 0);
}

TEST_F(TOOL_EDITS, PatchAppliesDiffs) {
  if (run("patch --version").exit_code != 0) GTEST_SKIP() << "patch is not installed";
  write("a b.sbd", k_small);
  EXPECT_EQ(run("sbd set -n 'a b.sbd' board.size 1K board.new 2 | patch -s -p1").exit_code, 0);
  EXPECT_EQ(run("cat 'a b.sbd'").out, "device board {\n  size = 1K; # all of it\n  new = 2;\n}\n");
  EXPECT_EQ(run("sbd fmt --diff 'a b.sbd' | patch -s -p1").exit_code, 0);
  EXPECT_EQ(run("sbd fmt --check 'a b.sbd'").exit_code, 0);
}

TEST_F(TOOL_EDITS, FullDiskIsTold) {
  write("a.sbd", k_small);
  for (const char* const command :
       {"sbd set -o - a.sbd board.size 1", "sbd set -n a.sbd board.size 1",
        "sbd set --json -n a.sbd board.size 1", "sbd fmt --diff a.sbd", "sbd fmt - <a.sbd"}) {
    const TOOL_RUN full = run(std::string(command) + " >/dev/full");
    EXPECT_EQ(full.exit_code, 2) << command;
    EXPECT_EQ(full.err, "sbd: can't write the output: No space left on device\n") << command;
  }
}

}  // namespace
