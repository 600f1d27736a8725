#include "tools/tool.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <sstream>
#include <string>
#include <vector>

#include "sbd/sbd_api.h"
#include "tools/commands/command.h"
#include "tools/findings.h"
#include "tools/session.h"
#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

constexpr char k_footer[] =
    "Exit codes: 0 fine; 1 the file has faults, has not what was asked for, or can't be edited "
    "so;\n"
    "2 wrong use, an unreadable file, or output that can't be written.\n"
    "\n"
    "Examples:\n"
    "  sbd check board.sbd\n"
    "  sbd show board.sbd stripe\n"
    "  sbd get board.sbd stripe.pll1.clock\n"
    "  sbd list --type module board.sbd\n"
    "  sbd set board.sbd stripe.pll1.clock 50MHz\n"
    "  sbd fmt --check boards/*.sbd\n"
    "  sbd COMMAND --help";

// A command with what the command line knows of it.
struct DECLARED_COMMAND {
  std::unique_ptr<COMMAND> command;
  CLI::App* app;
};

class TOOL {
 public:
  explicit TOOL(SESSION& session) : m_session(session) {
    m_app.set_version_flag("--version", fmt::format("sbd {}", sbd_version()),
                           "Print the version and exit");
    m_app.require_subcommand(1);
    m_app.footer(k_footer);
    m_app.failure_message([](const CLI::App*, const CLI::Error&) { return std::string(); });
    declare(make_check_command());
    declare(make_show_command());
    declare(make_get_command());
    declare(make_list_command());
    declare(make_set_command());
    declare(make_unset_command());
    declare(make_ref_command());
    declare(make_attr_command());
    declare(make_block_command());
    declare(make_rename_command());
    declare(make_edit_command());
    declare(make_fmt_command());
  }

  void run(int argument_count, const char* const* arguments) {
    try {
      m_app.parse(argument_count, arguments);
    } catch (const CLI::Success& request) {
      print_help(request);
      return;
    } catch (const CLI::ParseError& error) {
      refuse(error);
      return;
    }
    for (const DECLARED_COMMAND& declared : m_commands) {
      if (declared.app->parsed()) declared.command->run(m_session);
    }
  }

 private:
  void declare(std::unique_ptr<COMMAND> command) {
    CLI::App* const app = command->declare(m_app);
    m_commands.push_back({std::move(command), app});
  }

  void print_help(const CLI::Success& request) {
    std::ostringstream text;
    m_app.exit(request, text, text);
    m_session.out().write(text.str());
  }

  void refuse(const CLI::ParseError& error) {
    std::string command = "sbd";
    for (const CLI::App* const app : m_app.get_subcommands()) command += " " + app->get_name();
    m_session.complain(fmt::format("{} (see {} --help)", reason_of(error), command), EXIT_UNUSABLE);
  }

  std::string reason_of(const CLI::ParseError& error) {
    const std::vector<std::string> unknown = m_app.remaining();
    if (!m_app.get_subcommands().empty()) return make_visible(error.what());
    if (unknown.empty()) return "a command is required";
    return fmt::format("no command or option '{}'", make_visible(unknown.front()));
  }

  SESSION& m_session;
  CLI::App m_app{"Checks, shows, queries and edits System Build Descriptor files.", "sbd"};
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

EXIT_CODE run_tool(int argument_count, const char* const* arguments) noexcept {
  // A broken pipe is then told by the write that fails.
  std::signal(SIGPIPE, SIG_IGN);
  install_handlers();
  SESSION session;
  run_guarded(session, argument_count, arguments);
  return had_internal_error() ? EXIT_UNUSABLE : session.exit_code();
}

}  // namespace sbd_tool
