#include "support/whole_run.h"

#include "support/compare_text.h"
#include "support/scratch.h"

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <fmt/format.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace lcp::test {

namespace {

constexpr unsigned LIMIT = 120; // seconds of a whole run, also in a build with sanitizers

// What stands in a case directory beside the input files.
constexpr const char* PARTS[] = {"arguments", "console",   "status",
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
                         const fs::path& directory, const fs::path& console) {
  const int out = open(console.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
  dup2(out, STDOUT_FILENO);
  dup2(out, STDERR_FILENO);
  close(out);
  std::vector<char*> pointers{const_cast<char*>(command.c_str())};
  for (const std::string& a : arguments) pointers.push_back(const_cast<char*>(a.c_str()));
  pointers.push_back(nullptr);
  alarm(LIMIT); // outlives the exec and ends the command
  if (chdir(directory.c_str()) == 0) execv(command.c_str(), pointers.data());
  std::_Exit(127);
}

ProgramRun runCase(const fs::path& directory, const std::string& command) {
  const Scratch scratch;
  for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
    const std::string name = entry.path().filename().string();
    if (std::find(std::begin(PARTS), std::end(PARTS), name) != std::end(PARTS)) continue;
    fs::copy(entry.path(), scratch.path() / name, fs::copy_options::recursive);
  }
  std::vector<std::string> arguments;
  std::istringstream in(contentOf(directory / "arguments"));
  for (std::string line; std::getline(in, line);) arguments.push_back(line);
  return runProgram(arguments, scratch.path(), command);
}

Tolerances tolerancesOf(const fs::path& directory) {
  Tolerances t;
  std::istringstream in(contentOf(directory / "tolerance"));
  std::string kind;
  for (double value = 0.0; in >> kind >> value;) {
    if (kind == "matrix") t.matrix = value;
    if (kind == "scalar") t.scalar = value;
    if (kind == "line") t.line = value;
  }
  return t;
}

} // namespace

ProgramRun runProgram(const std::vector<std::string>& arguments, const fs::path& directory,
                      const std::string& command) {
  const Scratch beside; // the console stands outside the directory of the run
  const fs::path console = beside.file("console", "");
  const auto before = filesUnder(directory);
  const pid_t child = fork();
  if (child == 0) become(command, arguments, directory, console);
  int status = 0;
  waitpid(child, &status, 0);

  ProgramRun run;
  if (WIFEXITED(status)) run.status = WEXITSTATUS(status);
  run.console = contentOf(console);
  run.files = filesUnder(directory);
  std::erase_if(run.files, [&](const auto& file) {
    const auto old = before.find(file.first);
    return old != before.end() && old->second == file.second;
  });
  return run;
}

std::string caseDifferences(const fs::path& directory, const std::string& command) {
  const Tolerances t = tolerancesOf(directory);
  std::map<std::string, std::string> wanted = filesUnder(directory / "expected");
  ProgramRun run = runCase(directory, command);
  wanted["console"] = contentOf(directory / "console");
  run.files["console"] = run.console;
  wanted["status"] = contentOf(directory / "status");
  run.files["status"] = fmt::format("{}\n", run.status);
  std::string report;
  if (contentOf(directory / "source").empty()) report = "no source of the expected numbers\n";
  for (const auto& [name, text] : wanted) {
    const bool written = run.files.contains(name);
    const std::string d = written ? textDifferences(text, run.files[name], t) : "was not written\n";
    if (!d.empty()) report += fmt::format("{}{} {}", name, written ? ":" : "", d);
  }
  for (const auto& file : run.files) {
    if (!wanted.contains(file.first)) report += fmt::format("{} was written\n", file.first);
  }
  return report;
}

bool rewriteCase(const fs::path& directory) {
  if (!contentOf(directory / "source").starts_with("snapshot")) return false;
  const ProgramRun run = runCase(directory, CORVO_PROGRAM);
  writeContent(directory / "console", run.console);
  writeContent(directory / "status", fmt::format("{}\n", run.status));
  fs::remove_all(directory / "expected");
  for (const auto& [name, text] : run.files) {
    fs::create_directories((directory / "expected" / name).parent_path());
    writeContent(directory / "expected" / name, text);
  }
  return true;
}

} // namespace lcp::test
