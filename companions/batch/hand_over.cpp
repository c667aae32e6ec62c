#include "companions/batch/hand_over.h"

#include "companions/batch/process.h"
#include "companions/shared/whole_files.h"

#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace lcp::companions {

namespace {

constexpr std::string_view COMMANDS = "commands.txt"; // for parallel, one per part
constexpr std::string_view JOBLOG = "joblog.tsv";
constexpr std::string_view WORDS = "messages.txt"; // from parallel or Slurm, and from the parts
constexpr std::string_view SCRIPT = "slurm.sh";
constexpr std::string_view SLURMJOB = "slurm_job.txt";
constexpr const char* JOBNAME = "--name=corvo-batch"; // job numbers can be reused
constexpr double PATIENCE = 10;                       // s, before a process asked to end is killed
constexpr std::size_t TOLD = 2000;                    // characters of messages shown

// --- progress

class Progress {
public:
  Progress(const Parts& parts, const std::vector<BatchCase>& cases) {
    for (const std::vector<std::size_t>& part : parts)
      for (const std::size_t number : part) open.push_back(cases[number - 1].folder / STATUSFILE);
    all = open.size();
  }
  void show(bool last);

private:
  std::vector<fs::path> open; // status files that do not exist yet
  std::size_t all = 0, shown = 0;
  double start = now();
  bool terminal = isatty(STDERR_FILENO) == 1;
};

void Progress::show(bool last) {
  constexpr std::size_t WIDTH = 30, STEPS = 10; // of the bar; lines if not on a terminal
  std::erase_if(open, [](const fs::path& f) { return access(f.c_str(), F_OK) == 0; });
  const std::size_t done = all - open.size();
  const bool line = terminal || done * STEPS / all > shown * STEPS / all;
  if (!line || (done == shown && !last && !terminal)) return;
  shown = done;
  const double left =
      done == 0 ? 0 : (now() - start) / static_cast<double>(done) * static_cast<double>(all - done);
  std::string bar(done * WIDTH / all, '=');
  bar.resize(WIDTH, ' ');
  const auto seconds = std::lround(left);
  const std::string time = done == 0 ? ""
                                     : fmt::format(", {}:{:02}:{:02} left", seconds / 3600,
                                                   seconds / 60 % 60, seconds % 60);
  const std::string text = fmt::format("[{}] {} of {} cases{}", bar, done, all, time);
  const std::string told =
      terminal ? fmt::format("\r{}\x1b[K{}", text, last ? "\n" : "") : text + "\n";
  std::fputs(told.c_str(), stderr);
}

// --- starting the programs

// Quotes words for the shell.
std::string quoted(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words) {
    line += line.empty() ? "'" : " '";
    for (const char c : word) line += c == '\'' ? "'\\''" : std::string(1, c);
    line += "'";
  }
  return line;
}

struct Files {
  int output = -1, messages = -1;
  ~Files() {
    for (const int d : {output, messages}) close(d);
  }
};

int openedIn(const fs::path& work, std::string_view name, int flags) {
  return open((work / name).c_str(), flags | O_CLOEXEC, 0666);
}

// The last messages from parallel or Slurm and from the parts.
std::string messagesOf(const fs::path& work) {
  std::string text;
  readWhole(work / WORDS, text);
  if (text.size() > TOLD) text.erase(0, text.size() - TOLD);
  while (text.ends_with('\n')) text.pop_back();
  return text;
}

std::string cancel(const fs::path& work) {
  std::string job;
  readWhole(work / SLURMJOB, job);
  job = job.substr(0, job.find_first_of(";\n")); // the name of a cluster may follow
  const std::string program = programInPath("scancel");
  if (job.empty() || program.empty()) return {};
  End end;
  const pid_t child = startProgram({{program, "--quiet", JOBNAME, job}, {}, -1, -1, SIGKILL});
  if (waitFor(child, PATIENCE, end) != Waited::ENDED) killAll(child, end);
  return job;
}

// Waits for all processes whose parents have ended, which became children of this one.
void waitForOrphans() {
  End end;
  const double last = now() + PATIENCE;
  for (pid_t p = 0; (p = waitpid(-1, nullptr, WNOHANG)) >= 0;) {
    constexpr double BETWEEN = 0.01; // s
    if (p == 0) sleepFor(BETWEEN, end);
    if (now() > last) return;
  }
}

void endIt(pid_t child, const Hands& hands) {
  End end;
  if (hands.slurm) cancel(hands.work);
  kill(child, SIGINT);
  if (waitFor(child, PATIENCE, end) == Waited::TIME) killAll(child, end);
  if (end.signal != 0) killAll(child, end);
}

// Shows the progress until the program ends or a signal arrives.
int follow(pid_t child, const Hands& hands, Progress& progress, End& end) {
  constexpr double BETWEEN = 0.25; // s
  progress.show(false);
  Waited how = Waited::TIME;
  while (how == Waited::TIME) {
    how = waitFor(child, BETWEEN, end);
    progress.show(how != Waited::TIME);
  }
  const int signal = how == Waited::SIGNAL ? end.signal : 0;
  if (signal != 0) endIt(child, hands);
  waitForOrphans();
  return signal;
}

// Writes the command file for parallel, one shell line per part, and returns the command for it.
std::vector<std::string> parallelWords(const Hands& hands, const Parts& parts) {
  std::string commands;
  std::vector<std::string> command = partCommand(hands.work, hands.wishes);
  command.emplace_back();
  for (std::size_t part = 1; part <= parts.size(); ++part) {
    command.back() = std::to_string(part);
    commands += "exec " + quoted(command) + "\n";
  }
  if (!writeWhole(hands.work / COMMANDS, commands, false)) return {};
  std::vector<std::string> words = {programInPath("parallel"),
                                    "--plain",
                                    "--ungroup",
                                    "--halt",
                                    "soon,fail=1",
                                    "--joblog",
                                    (hands.work / JOBLOG).string(),
                                    "--arg-file",
                                    (hands.work / COMMANDS).string()};
  words.insert(words.end(), hands.words.begin(), hands.words.end());
  setenv("PARALLEL_SHELL", "/bin/sh", 1); // independent of the user's shell
  return words;
}

std::vector<std::string> slurmWords(const Hands& hands, const Parts& parts, Files& files) {
  const std::string script = fmt::format("#!/bin/sh\nexec {} \"$SLURM_ARRAY_TASK_ID\"\n",
                                         quoted(partCommand(hands.work, hands.wishes)));
  if (!writeWhole(hands.work / SCRIPT, script, false)) return {};
  files.output = openedIn(hands.work, SLURMJOB, O_WRONLY | O_CREAT | O_TRUNC);
  return {programInPath("sbatch"),
          "--parsable",
          "--wait",
          "--job-name=corvo-batch",
          fmt::format("--array=1-{}", parts.size()),
          fmt::format("--output={}", WORDS),
          "--open-mode=append",
          std::string(SCRIPT)};
}

} // namespace

std::vector<std::string_view> filesOnTheWay() {
  return {PARTSFILE, COMMANDS, JOBLOG, WORDS, SCRIPT, SLURMJOB};
}

std::string missingProgram(bool slurm) {
  const std::string_view program = slurm ? "sbatch" : "parallel";
  if (!programInPath(program).empty()) return {};
  return slurm ? "sbatch is missing: --slurm needs Slurm (package slurm-wlm or slurm-client)"
               : "parallel is missing: the cases are run by GNU parallel (package parallel)";
}

void cancelEarlier(const fs::path& work) {
  std::error_code none;
  if (!cancel(work).empty()) fs::remove(work / SLURMJOB, none);
}

HandedOver handOver(const Hands& hands, const Parts& parts, const std::vector<BatchCase>& cases) {
  HandedOver result;
  if (!writeWhole(hands.work / PARTSFILE, textOf(parts), false))
    return {0, cannotWrite(hands.work / PARTSFILE)};
  Files files;
  files.messages = openedIn(hands.work, WORDS, O_WRONLY | O_CREAT | O_TRUNC | O_APPEND);
  const std::vector<std::string> words =
      hands.slurm ? slurmWords(hands, parts, files) : parallelWords(hands, parts);
  if (words.empty() || files.messages < 0) return {0, cannotWrite(hands.work)};
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  Progress progress(parts, cases);
  const int output = hands.slurm ? files.output : files.messages;
  // File names among the options of parallel are relative to the user's folder.
  const pid_t child =
      startProgram({words, hands.slurm ? hands.work : "", output, files.messages, SIGINT});
  if (child < 0) return {0, fmt::format("cannot start {}: {}", words[0], std::strerror(errno))};
  End end;
  result.signal = follow(child, hands, progress, end);
  std::error_code none;
  if (hands.slurm) fs::remove(hands.work / SLURMJOB, none);
  if (result.signal == 0) result.trouble = messagesOf(hands.work);
  return result;
}

} // namespace lcp::companions
