#include "tools/tool.h"

#include <fmt/format.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "sbd/sbd_api.h"
#include "tools/command_line.h"
#include "tools/commands/command.h"
#include "tools/completion.h"
#include "tools/findings.h"
#include "tools/session.h"

namespace sbd_tool {

namespace {

constexpr char k_description[] = "Checks, shows, queries and edits System Build Descriptor files.";

constexpr char k_footer[] =
    "Examples:\n"
    "  sbd check board.sbd\n"
    "  sbd show board.sbd board.stripe\n"
    "  sbd get board.sbd board.stripe.sdram.data_width\n"
    "  sbd list --type module board.sbd\n"
    "  sbd params board.sbd sdram\n"
    "  sbd map board.sbd\n"
    "  sbd diff old.sbd new.sbd\n"
    "  sbd report board.sbd -o report.html\n"
    "  sbd new --chip qmxa10 --with sdram,uart > board.sbd\n"
    "  sbd explain sdram.data_width\n"
    "  sbd set board.sbd board.stripe.sdram.data_width 16\n"
    "  sbd fmt --check boards/*.sbd\n"
    "  sbd COMMAND --help";

std::string list_exit_codes() {
  std::string text = "Exit codes:\n";
  for (const EXIT_CODE_MEANING& code : k_exit_codes) {
    text += fmt::format("  {}  {}\n", static_cast<int>(code.code), code.meaning);
  }
  return text;
}

// A command with what the command line knows of it.
struct DECLARED_COMMAND {
  std::unique_ptr<COMMAND> command;
  COMMAND_SYNTAX syntax;
};

class TOOL {
 public:
  explicit TOOL(SESSION& session) : m_session(session) {
    declare(make_check_command());
    declare(make_show_command());
    declare(make_get_command());
    declare(make_list_command());
    declare(make_params_command());
    declare(make_clocks_command());
    declare(make_map_command());
    declare(make_diff_command());
    declare(make_report_command());
    declare(make_new_command());
    declare(make_explain_command());
    declare(make_set_command());
    declare(make_unset_command());
    declare(make_ref_command());
    declare(make_attr_command());
    declare(make_block_command());
    declare(make_rename_command());
    declare(make_edit_command());
    declare(make_fmt_command());
  }

  COMMAND_DESCRIPTION describe() const { return m_command_line.describe(); }

  void run(int argument_count, const char* const* arguments) {
    if (argument_count > 1 && arguments[1] == k_complete_command) {
      const std::vector<std::string> words(arguments + 2, arguments + argument_count);
      m_session.out().write(format_completion(complete(describe(), words)));
      return;
    }
    const COMMAND_LINE::RESULT result = m_command_line.parse(argument_count, arguments);
    switch (result.kind) {
      case COMMAND_LINE::RESULT::KIND::ANSWER:
        m_session.out().write(result.text);
        return;
      case COMMAND_LINE::RESULT::KIND::REFUSAL:
        m_session.complain(result.text, EXIT_UNUSABLE);
        return;
      case COMMAND_LINE::RESULT::KIND::COMMAND:
        break;
    }
    for (const DECLARED_COMMAND& declared : m_commands) {
      if (declared.syntax.is_given()) declared.command->run(m_session);
    }
  }

 private:
  void declare(std::unique_ptr<COMMAND> command) {
    const COMMAND_SYNTAX syntax = command->declare(m_command_line.tool());
    m_commands.push_back({std::move(command), syntax});
  }

  SESSION& m_session;
  COMMAND_LINE m_command_line{
      {"sbd", k_description, fmt::format("sbd {}", sbd_version()), list_exit_codes(), k_footer}};
  std::vector<DECLARED_COMMAND> m_commands;
};

// A reader that has seen enough is no reason to complain.
void take_write_failure(SESSION& session, const WRITE_FAILURE& failure) {
  if (failure.error == EPIPE) return;
  session.note(EXIT_UNUSABLE);
  session.err().write_line(
      fmt::format("sbd: can't write the output: {}", std::strerror(failure.error)));
}

void run_guarded(SESSION& session, int argument_count, const char* const* arguments) {
  try {
    TOOL(session).run(argument_count, arguments);
    session.out().flush();
  } catch (const WRITE_FAILURE& failure) {
    take_write_failure(session, failure);
  } catch (const std::bad_alloc&) {
    session.note(EXIT_UNUSABLE);
    session.err().write_line("sbd: out of memory");
  } catch (const std::exception& error) {
    session.note(EXIT_UNUSABLE);
    session.err().write_line(fmt::format("sbd: internal error: {}", error.what()));
  }
}

}  // namespace

COMMAND_DESCRIPTION describe_tool() {
  SESSION session;
  return TOOL(session).describe();
}

EXIT_CODE run_tool(int argument_count, const char* const* arguments) noexcept {
  // A broken pipe is then told by the write that fails.
  (void)std::signal(SIGPIPE, SIG_IGN);
  install_handlers();
  SESSION session;
  run_guarded(session, argument_count, arguments);
  return had_internal_error() ? EXIT_UNUSABLE : session.exit_code();
}

}  // namespace sbd_tool
