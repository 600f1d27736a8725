// What users type: arguments of the tool, values, and lines of edit scripts.
//
// Nothing touches a file: standard input is memory, and no argument can name a file to be written.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <vector>

#include "fuzz/fuzz_support.h"
#include "tools/edit.h"
#include "tools/edit_script.h"
#include "tools/findings.h"
#include "tools/near_names.h"
#include "tools/notation.h"
#include "tools/tool.h"
#include "tools/unified_diff.h"
#include "tools/visible_text.h"

namespace {

constexpr std::size_t k_most_arguments = 12;
constexpr std::size_t k_longest_argument = 60;

constexpr const char* k_words[] = {"-",
                                   "check",
                                   "show",
                                   "get",
                                   "list",
                                   "set",
                                   "unset",
                                   "ref",
                                   "attr",
                                   "block",
                                   "rename",
                                   "edit",
                                   "fmt",
                                   "add",
                                   "remove",
                                   "--json",
                                   "--color",
                                   "always",
                                   "never",
                                   "auto",
                                   "-q",
                                   "-v",
                                   "-n",
                                   "--dry-run",
                                   "--canonical",
                                   "--check",
                                   "--diff",
                                   "--after",
                                   "--before",
                                   "--set",
                                   "--clear",
                                   "--remove",
                                   "--as",
                                   "raw",
                                   "number",
                                   "string",
                                   "bool",
                                   "refs",
                                   "--type",
                                   "module",
                                   "--scope",
                                   "--parameters",
                                   "--max-findings",
                                   "1",
                                   "0",
                                   "--help",
                                   "--with-references",
                                   "--no-references",
                                   "--script",
                                   "board",
                                   "device",
                                   "board.clk",
                                   "board.title",
                                   "board.stripe.clocks",
                                   "d.a",
                                   "d.r",
                                   "x=1",
                                   "{1, 2}",
                                   "50MHz",
                                   "\"a b\"",
                                   "--version",
                                   "d.m.x",
                                   "board.stripe.clocks.main",
                                   "parameters",
                                   "--",
                                   "key=a.b",
                                   "params",
                                   "clocks",
                                   "explain",
                                   "--device",
                                   "clocks.ahb1_divide",
                                   "--format-only",
                                   "--format",
                                   "json",
                                   "sarif",
                                   "github",
                                   "--info",
                                   "--no-advice",
                                   "--disable",
                                   "TOOL_NO_EFFECT",
                                   "--werror",
                                   "--chip",
                                   "qmxa1",
                                   "--all-chips",
                                   "--jobs"};

// The tool's standard streams while it runs: what it reads is memory, what it writes is dropped.
class STREAMS {
 public:
  explicit STREAMS(std::string_view input)
      : m_input(input), m_in(stdin), m_out(stdout), m_err(stderr) {
    static std::FILE* const k_nowhere = std::fopen("/dev/null", "w");
    stdin = fmemopen(m_input.data(), m_input.size(), "r");
    FUZZ_EXPECT(stdin != nullptr && k_nowhere != nullptr, "no streams");
    stdout = k_nowhere;
    stderr = k_nowhere;
  }
  ~STREAMS() {
    std::fclose(stdin);
    stdin = m_in;
    stdout = m_out;
    stderr = m_err;
  }
  STREAMS(const STREAMS&) = delete;
  STREAMS& operator=(const STREAMS&) = delete;

 private:
  std::string m_input;
  std::FILE* m_in;
  std::FILE* m_out;
  std::FILE* m_err;
};

// No argument may lead to a file that is written, or to a folder that is searched.
bool is_harmless(const std::string& argument) {
  if (argument.find('/') != std::string::npos) return false;
  std::error_code error;
  if (std::filesystem::is_directory(argument, error)) return false;
  if (argument.size() > 1 && argument[0] == '-' && argument[1] != '-') {
    return argument.find('o') == std::string::npos;
  }
  return argument.rfind("--o", 0) != 0;
}

void run_tool(FUZZ_BYTES& bytes) {
  const std::string text = bytes.descriptor();
  std::vector<std::string> arguments = {"sbd"};
  while (!bytes.empty() && arguments.size() != k_most_arguments) {
    std::string argument =
        bytes.chance(4) ? bytes.text(k_longest_argument) : bytes.pick_of(k_words);
    // As the system hands them over.
    argument.resize(std::min(argument.find('\0'), argument.size()));
    if (!is_harmless(argument)) return;
    arguments.push_back(std::move(argument));
  }
  std::vector<const char*> pointers;
  for (const std::string& argument : arguments) pointers.push_back(argument.c_str());

  int code = 0;
  {
    const STREAMS streams(text);
    code = sbd_tool::run_tool(static_cast<int>(pointers.size()), pointers.data());
  }
  FUZZ_EXPECT(code >= 0 && code <= 2, std::to_string(code));
  FUZZ_EXPECT(!sbd_tool::had_internal_error(), "an internal error");
}

void run_script(FUZZ_RUN& run, FUZZ_BYTES& bytes) {
  const std::string text = bytes.descriptor();
  SBD_SOURCE_DOCUMENT source;
  if (!source.read_text(text.data(), text.size(), k_file_name)) return;
  std::vector<sbd_tool::EDIT> edits;
  std::string fault;
  if (!sbd_tool::read_edit_script(bytes.rest(), "script", edits, fault)) {
    FUZZ_EXPECT(!fault.empty(), "a wrong line without a reason");
    return;
  }
  sbd_tool::FINDINGS findings;
  for (const sbd_tool::EDIT& edit : edits) {
    const std::string before(source.text());
    if (sbd_tool::apply_edit(source, edit, findings)) continue;
    FUZZ_EXPECT(!findings.list.empty() || !run.posted().empty(), "refused in silence");
    return;
  }
  SBD_STRING why;
  if (!source.verify(why)) {
    FUZZ_EXPECT(why.find("The text ") != 0, why.c_str());
    return;
  }
  sbd_tool::make_unified_diff(k_file_name, text, source.text());
}

// A value as it is typed comes out as it was typed, and any text can be shown.
void show_values(FUZZ_BYTES& bytes) {
  const std::string value(bytes.rest().substr(0, bytes.rest().find('\0')));
  const std::string visible = sbd_tool::make_visible(value);
  for (const char c : visible) {
    FUZZ_EXPECT(static_cast<unsigned char>(c) >= 0x20 && c != 0x7F, visible);
  }
  FUZZ_EXPECT(sbd_tool::width_of(sbd_tool::make_visible(value, 10)) <= 13, visible);

  SBD_SOURCE_DOCUMENT source;
  constexpr std::string_view k_text = "device d { n = 1; l = {1, 2}; t = a; b = true; }";
  FUZZ_EXPECT(source.read_text(k_text.data(), k_text.size(), k_file_name), k_text);
  for (const char* const name : {"d.n", "d.l", "d.t", "d.b", "d.new"}) {
    if (!source.set_value(name, value.c_str())) continue;
    const VALUE* const held = source.document().get_para_value("d", name + 2);
    FUZZ_EXPECT(held != nullptr, value);
    const std::string notation = sbd_tool::get_notation(source.document(), *held);
    SBD_SOURCE_DOCUMENT again;
    FUZZ_EXPECT(again.read_text(k_text.data(), k_text.size(), k_file_name), k_text);
    FUZZ_EXPECT(again.set_value("d.new", notation.c_str()), notation);
    if (sbd_tool::is_number(*held)) {
      sbd_tool::get_scaled_number(*held);
      sbd_tool::get_unscaled_number(*held);
    }
    if (held->type == VALUE::VT_STRING) sbd_tool::get_unquoted(*held);
  }
  sbd_tool::find_near_names(source.document(), value, sbd_tool::WANTED::ANY);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FUZZ_RUN run;
  FUZZ_BYTES bytes(data, size);
  // Declaring all commands takes most of the time, so that the whole tool runs less often.
  const std::size_t choice = bytes.pick(256);
  if (choice < 32) {
    run_tool(bytes);
  } else if (choice < 144) {
    run_script(run, bytes);
  } else {
    show_values(bytes);
  }
  return 0;
}
