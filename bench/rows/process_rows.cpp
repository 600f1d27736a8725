// The tool as a whole process, from its start to its exit, in time on the wall.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <vector>

#include "bench/document/document_texts.h"
#include "bench/measure/temporary_file.h"
#include "bench/readers/reader.h"
#include "bench/rows/rows.h"

namespace {

constexpr double MILLISECONDS_LIMIT = 2.0;
constexpr double LEAST_GAIN_OF_TWO_JOBS = 1.7;

// Runs the program with its output thrown away; it has to succeed.
void run_program(const std::vector<std::string>& words) {
  std::vector<char*> arguments;
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t process = 0;
  int status = 0;
  const bool is_started =
      posix_spawn(&process, arguments[0], &actions, nullptr, arguments.data(), environ) == 0;
  posix_spawn_file_actions_destroy(&actions);
  if (!is_started || waitpid(process, &status, 0) != process || status != 0) {
    stop_measuring(arguments[0], "run");
  }
}

MEASUREMENT measure_check() {
  return {"process/sbd check",
          [] {
            const std::string text = make_sbd_text(TYPICAL_PARAMETERS);
            const auto file = std::make_shared<TEMPORARY_FILE>(text);
            return STAGE{[=] {
              run_program({SBD_BENCH_TOOL, "check", "--format-only", file->path()});
            }};
          },
          MEASUREMENT::WALL_TIME};
}

// A call that checks as many descriptors of a whole device, with so many jobs.
MEASUREMENT measure_jobs(const std::string& jobs) {
  constexpr std::size_t FILES = 1000;
  return {"process/sbd check of 1000 files, jobs " + jobs,
          [=] {
            std::vector<std::string> words = {SBD_BENCH_TOOL, "check", "--quiet", "--jobs", jobs};
            words.insert(words.end(), FILES, SBD_BENCH_EXAMPLES "/qmxa10_full.sbd");
            return STAGE{[=] { run_program(words); }};
          },
          MEASUREMENT::WALL_TIME};
}

MEASUREMENT measure_true() {
  return {"process/true", [] { return STAGE{[] { run_program({"/bin/true"}); }}; },
          MEASUREMENT::WALL_TIME};
}

}  // namespace

void add_process_rows(std::vector<COMPARISON>& comparisons) {
  const auto beyond_twice = [](double check, double nothing) {
    constexpr double MILLISECONDS = 1000;
    return (check - 2 * nothing) * MILLISECONDS;
  };
  comparisons.push_back({"process",
                         {measure_check(), measure_true()},
                         {{"sbd check of a typical file beyond 2 x /bin/true, in ms", "", 0, 1,
                           MILLISECONDS_LIMIT, beyond_twice}}});
  comparisons.push_back(
      {"process/jobs",
       {measure_jobs("2"), measure_jobs("1")},
       {{"sbd check of 1,000 files, 2 jobs / 1 job", "", 0, 1, 1 / LEAST_GAIN_OF_TWO_JOBS}}});
}
