#include "tests/tool/run_tool.h"

#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "tests/support/temporary_files.h"

namespace {

// What the messages of the system and the colours of the tool depend on.
void set_environment() {
  const char* const old_path = std::getenv("PATH");
  const std::string path = std::string(SBD_TOOL_FOLDER) + ":" + (old_path ? old_path : "");
  setenv("PATH", path.c_str(), 1);
  setenv("LC_ALL", "C", 1);
  setenv("TERM", "xterm", 1);
  unsetenv("NO_COLOR");
}

void open_as(int descriptor, const std::string& path, int flags) {
  constexpr int k_mode = 0600;
  const int opened = open(path.c_str(), flags, k_mode);
  if (opened < 0 || dup2(opened, descriptor) < 0) _exit(126);
  close(opened);
}

// Never returns.
[[noreturn]] void run_shell(const std::string& folder, const std::string& script) {
  set_environment();
  if (chdir(folder.c_str()) != 0) _exit(126);
  execl("/bin/sh", "sh", "-c", script.c_str(), static_cast<char*>(nullptr));
  _exit(126);
}

int wait_for(pid_t process) {
  int status = 0;
  if (waitpid(process, &status, 0) < 0) return -1;
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

std::string read_terminal(int terminal) {
  std::string text;
  std::array<char, 4096> buffer{};
  for (;;) {
    // Once nobody has the other side open, this fails.
    const ssize_t count = read(terminal, buffer.data(), buffer.size());
    if (count <= 0) return text;
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

}  // namespace

std::string read_file(const std::string& path) {
  const std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  return content.str();
}

TOOL_RUN run_script(const std::string& folder, const std::string& script) {
  const TEMPORARY_DIRECTORY results;
  const std::string out = results.path_of("out");
  const std::string err = results.path_of("err");
  const std::string own_input = folder + "/stdin";
  const std::string in = access(own_input.c_str(), R_OK) == 0 ? own_input : "/dev/null";

  const pid_t process = fork();
  if (process == 0) {
    open_as(STDIN_FILENO, in, O_RDONLY);
    open_as(STDOUT_FILENO, out, O_WRONLY | O_CREAT);
    open_as(STDERR_FILENO, err, O_WRONLY | O_CREAT);
    run_shell(folder, script);
  }
  TOOL_RUN run;
  run.exit_code = wait_for(process);
  run.out = read_file(out);
  run.err = read_file(err);
  return run;
}

TOOL_RUN run_script_on_terminal(const std::string& folder, const std::string& script) {
  int terminal = -1;
  const pid_t process = forkpty(&terminal, nullptr, nullptr, nullptr);
  if (process == 0) run_shell(folder, script);
  TOOL_RUN run;
  run.out = read_terminal(terminal);
  run.exit_code = wait_for(process);
  close(terminal);
  return run;
}
