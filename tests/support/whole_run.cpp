#include "support/whole_run.h"

#include "support/compare_text.h"
#include "support/scratch.h"

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <fmt/format.h>
#include <sstream>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace lcp::test {

namespace {

constexpr unsigned LIMIT = 120; // seconds of a whole run, also in a build with sanitizers
constexpr std::string_view SNAPSHOT = "snapshot of this program: guards the layout only";

// What stands in a case directory beside the input files.
constexpr std::string_view PARTS[] = {"arguments", "console",   "status",
                                      "expected",  "tolerance", "source"};

std::map<std::string, std::string> filesUnder(const fs::path& directory) {
  std::map<std::string, std::string> files;
  if (!fs::is_directory(directory)) return files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory)) {
    if (!entry.is_regular_file()) continue;
    files[entry.path().lexically_relative(directory).generic_string()] = contentOf(entry.path());
  }
  return files;
}

// In the child: becomes the command, or ends with the status of a command that cannot be run.
[[noreturn]] void become(const std::string& command, const std::vector<std::string>& arguments,
                         const fs::path& directory, const fs::path& console, unsigned seconds) {
  const int out = open(console.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
  dup2(out, STDOUT_FILENO);
  dup2(out, STDERR_FILENO);
  close(out);
  std::vector<char*> pointers{const_cast<char*>(command.c_str())};
  for (const std::string& a : arguments) pointers.push_back(const_cast<char*>(a.c_str()));
  pointers.push_back(nullptr);
  alarm(seconds); // outlives the exec and ends the command
  if (chdir(directory.c_str()) == 0) execv(command.c_str(), pointers.data());
  std::_Exit(127);
}

std::string firstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

// The parts of a case that is to be run. Not empty: what is wrong with the directory.
struct Case {
  fs::path directory;
  std::vector<std::string> arguments;
  std::string source;
  Tolerances tolerances;
};

std::string readCase(const fs::path& directory, Case& c) {
  for (const char* part : {"arguments", "tolerance", "source"}) {
    if (!fs::is_regular_file(directory / part)) return fmt::format("no file {}\n", part);
  }
  c.directory = directory;
  std::istringstream in(contentOf(directory / "arguments"));
  for (std::string line; std::getline(in, line);) c.arguments.push_back(line);
  c.source = contentOf(directory / "source");
  const bool oneLine = std::count(c.source.begin(), c.source.end(), '\n') == 1 &&
                       c.source.size() > 10 && c.source.back() == '\n';
  if (!oneLine) return "source is not one line\n";
  if (c.source.starts_with("snapshot") && firstLine(c.source) != SNAPSHOT) {
    return fmt::format("source of a snapshot is not \"{}\"\n", SNAPSHOT);
  }
  if (!readTolerances(contentOf(directory / "tolerance"), c.tolerances)) return "bad tolerance\n";
  return "";
}

ProgramRun runCase(const Case& c, const std::string& command) {
  const Scratch scratch;
  for (const fs::directory_entry& entry : fs::directory_iterator(c.directory)) {
    const std::string name = entry.path().filename().string();
    if (std::find(std::begin(PARTS), std::end(PARTS), name) != std::end(PARTS)) continue;
    fs::copy(entry.path(), scratch.path() / name, fs::copy_options::recursive);
  }
  return runCommand(command, c.arguments, scratch.path(), LIMIT);
}

std::string statusText(const ProgramRun& run) {
  if (run.timedOut) return "time limit";
  return run.status < 0 ? "signal" : fmt::format("{}", run.status);
}

std::string filesDiffer(const std::map<std::string, std::string>& expected,
                        const std::map<std::string, std::string>& actual, const Tolerances& t) {
  std::string report;
  for (const auto& [name, text] : expected) {
    const auto found = actual.find(name);
    if (found == actual.end()) {
      report += fmt::format("{} was not written\n", name);
      continue;
    }
    const std::string differences = textDifferences(text, found->second, t);
    if (!differences.empty()) report += fmt::format("{}:\n{}", name, differences);
  }
  for (const auto& file : actual) {
    if (!expected.contains(file.first)) report += fmt::format("{} was written\n", file.first);
  }
  return report;
}

} // namespace

ProgramRun runCommand(const std::string& command, const std::vector<std::string>& arguments,
                      const fs::path& directory, unsigned seconds) {
  const Scratch beside; // the console stands outside the directory of the run
  const fs::path console = beside.file("console", "");
  const auto before = filesUnder(directory);
  const pid_t child = fork();
  if (child == 0) become(command, arguments, directory, console, seconds);
  int status = 0;
  waitpid(child, &status, 0);

  ProgramRun run;
  if (WIFEXITED(status)) run.status = WEXITSTATUS(status);
  run.timedOut = WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM;
  run.console = contentOf(console);
  run.files = filesUnder(directory);
  std::erase_if(run.files, [&](const auto& file) {
    const auto old = before.find(file.first);
    return old != before.end() && old->second == file.second;
  });
  return run;
}

ProgramRun runProgram(const std::vector<std::string>& arguments, const fs::path& directory) {
  return runCommand(CORVO_PROGRAM, arguments, directory, LIMIT);
}

std::vector<fs::path> casesUnder(const fs::path& directory) {
  std::vector<fs::path> cases;
  if (!fs::is_directory(directory)) return cases;
  for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
    if (entry.is_directory()) cases.push_back(entry.path());
  }
  std::sort(cases.begin(), cases.end());
  return cases;
}

std::string caseDifferences(const fs::path& directory, const std::string& command) {
  Case c;
  std::string report = readCase(directory, c);
  for (const char* part : {"console", "status"}) {
    if (!fs::is_regular_file(directory / part)) report += fmt::format("no file {}\n", part);
  }
  if (!report.empty()) return report;
  const ProgramRun run = runCase(c, command);
  const std::string status = firstLine(contentOf(directory / "status"));
  if (statusText(run) != status) {
    report += fmt::format("status {}, expected {}\n", statusText(run), status);
  }
  const std::string console =
      textDifferences(contentOf(directory / "console"), run.console, c.tolerances);
  if (!console.empty()) report += "console:\n" + console;
  return report + filesDiffer(filesUnder(directory / "expected"), run.files, c.tolerances);
}

std::string rewriteCase(const fs::path& directory, const std::string& command) {
  Case c;
  std::string report = readCase(directory, c);
  if (!report.empty()) return report;
  if (firstLine(c.source) != SNAPSHOT) return "not a snapshot\n";
  const ProgramRun run = runCase(c, command);
  if (run.status < 0) return "the run did not end by itself\n";
  writeContent(directory / "console", run.console);
  writeContent(directory / "status", fmt::format("{}\n", run.status));
  fs::remove_all(directory / "expected");
  for (const auto& [name, text] : run.files) {
    const fs::path file = directory / "expected" / name;
    fs::create_directories(file.parent_path());
    writeContent(file, text);
  }
  return "";
}

} // namespace lcp::test
