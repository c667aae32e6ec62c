#include "support/whole_run.h"

#include "support/block_sums.h"
#include "support/child.h"
#include "support/description.h"
#include "support/scratch.h"

#include <cstdlib>
#include <fcntl.h>
#include <fmt/format.h>
#include <sstream>
#include <unistd.h>

namespace fs = std::filesystem;

namespace lcp::test {

namespace {

const char* const SUCCESS = "0\n";

std::map<std::string, std::string> filesUnder(const fs::path& directory) {
  std::map<std::string, std::string> files;
  if (!fs::is_directory(directory)) return files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory)) {
    if (!entry.is_regular_file()) continue;
    files[entry.path().lexically_relative(directory).generic_string()] = contentOf(entry.path());
  }
  return files;
}

// The files of a run, with its console and status as two more.
std::map<std::string, std::string> runCase(const fs::path& directory) {
  const Scratch scratch;
  for (const fs::path& from : {fs::path(CORVO_EXAMPLES), directory}) {
    fs::copy(from, scratch.path(),
             fs::copy_options::recursive | fs::copy_options::overwrite_existing);
  }
  ProgramRun run = runProgram(splitLines(contentOf(directory / "arguments")), scratch.path());
  run.files["console"] = run.errors + run.console;
  run.files["status"] = fmt::format("{}\n", run.status);
  return run.files;
}

std::string contentOr(const fs::path& file, const char* otherwise) {
  return fs::exists(file) ? contentOf(file) : otherwise;
}

// What a tolerance file says of one of the files of its case.
Tolerances tolerancesOf(const fs::path& tolerance, const std::string& file) {
  Tolerances t;
  std::istringstream in(contentOr(tolerance, "matrix 1e-9 scalar 1e-9 line 1e-12"));
  std::string word, name;
  in >> word >> t.matrix >> word >> t.scalar >> word >> t.line;
  for (std::size_t first = 0, last = 0; in >> word >> name >> first >> last;) {
    const Free what = word == "signs" ? Free::SIGNS : word == "basis" ? Free::BASIS : Free::WIDTH;
    if (name == file) t.free.push_back({first, last, what});
  }
  return t;
}

bool isUnread(const std::string& expected) { return expected.starts_with("@@ not read"); }

// Why a written file is not the expected one; empty when it is.
std::string fileDifferences(const std::string& expected, const std::string& actual,
                            const Tolerances& t) {
  if (isUnread(expected)) return "";
  std::string wrong;
  const std::string filled = blocksFilled(expected, actual, t, wrong);
  return wrong.empty() ? textDifferences(filled, actual, t) : wrong;
}

} // namespace

namespace {

// Whether a rough fit generates power is no matter of the runs that compare messages.
void takePowerLine(ProgramRun& run) {
  const std::size_t from = run.errors.find("corvo: warning: the model generates power, ");
  if (from == std::string::npos) return;
  const std::size_t length = run.errors.find('\n', from) + 1 - from;
  run.power = run.errors.substr(from, length);
  run.errors.erase(from, length);
}

} // namespace

ProgramRun runProgram(const std::vector<std::string>& arguments, const fs::path& directory) {
  const auto before = filesUnder(directory);
  const Scratch beside;
  const std::string errors = beside.file("errors", "");
  const ChildResult child = runChild([&] {
    const char* other = std::getenv("CORVO_TEST_PROGRAM"); // over other kernels
    std::string program = other != nullptr ? other : CORVO_PROGRAM;
    std::vector<char*> pointers{program.data()};
    for (const std::string& a : arguments) pointers.push_back(const_cast<char*>(a.c_str()));
    pointers.push_back(nullptr);
    dup2(open(errors.c_str(), O_WRONLY | O_APPEND), STDERR_FILENO);
    if (chdir(directory.c_str()) == 0) execv(program.c_str(), pointers.data());
    std::_Exit(127);
  });
  ProgramRun run{child.status, child.console, contentOf(errors), filesUnder(directory), ""};
  takePowerLine(run);
  std::erase_if(run.files, [&](const auto& file) {
    const auto old = before.find(file.first);
    return old != before.end() && old->second == file.second;
  });
  return run;
}

ProgramRun runLine(const std::string& body, const std::string& length,
                   const std::vector<std::string>& more) {
  const Scratch scratch;
  scratch.file("a.cvi", description(body));
  std::vector<std::string> arguments{"/file", "a.cvi", "/length", length};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return runProgram(arguments, scratch.path());
}

std::string caseDifferences(const fs::path& directory) {
  std::string report;
  std::map<std::string, std::string> wanted = filesUnder(directory / "expected");
  wanted["console"] = contentOf(directory / "console");
  wanted["status"] = contentOr(directory / "status", SUCCESS);
  auto files = runCase(directory);
  if (contentOf(directory / "source").empty()) report = "no source of the expected numbers\n";
  for (const auto& [name, text] : wanted) {
    const Tolerances t = tolerancesOf(directory / "tolerance", name);
    const std::string d =
        files.contains(name) ? fileDifferences(text, files[name], t) : "was not written\n";
    if (!d.empty()) report += fmt::format("{}: {}", name, d);
  }
  for (const auto& file : files) {
    if (!wanted.contains(file.first)) report += fmt::format("{}: was written\n", file.first);
  }
  return report;
}

bool rewriteCase(const fs::path& directory) {
  if (!contentOf(directory / "source").starts_with("snapshot")) return false;
  auto before = filesUnder(directory / "expected");
  before["console"] = contentOf(directory / "console");
  fs::remove_all(directory / "expected");
  for (const auto& [name, text] : runCase(directory)) {
    if (name == "status" && text == SUCCESS) continue;
    const bool beside = name == "console" || name == "status";
    const fs::path file = (beside ? directory : directory / "expected") / name;
    fs::create_directories(file.parent_path());
    writeContent(file,
                 isUnread(before[name])
                     ? before[name]
                     : blocksCut(text, before[name], tolerancesOf(directory / "tolerance", name)));
  }
  return true;
}

} // namespace lcp::test
