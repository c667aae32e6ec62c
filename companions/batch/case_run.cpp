#include "companions/batch/case_run.h"

#include "base/open_files.h"
#include "companions/batch/process.h"
#include "companions/shared/captured_run.h"
#include "companions/shared/model_file.h"
#include "companions/shared/text.h"
#include "companions/shared/verdicts.h"
#include "companions/shared/whole_files.h"
#include "companions/verify/passivity.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <iterator>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace lcp::companions {

namespace {

constexpr double NOLIMIT = 1e9; // s
constexpr double KILOBYTES = 1024;

CaseOutcome notWritten(const fs::path& file) {
  return {CaseEnd::NOTWRITTEN, 0, cannotWrite(file), errno == ENOSPC || errno == EDQUOT};
}

// A descriptor that is closed at the end of its block.
struct Descriptor {
  int number;
  explicit Descriptor(int n) : number(n) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { close(number); }
};

bool isModel(const fs::path& file) {
  return file.extension() == ".cvo" || file.extension() == ".cbo";
}

// --- folder

// Whether a file is one that the program writes for this description: NAME.cvo, NAME.out,
// NAME_003.cvo ...
bool isResultOf(const fs::path& file, const std::string& stem) {
  if (!isModel(file) && file.extension() != ".out") return false;
  std::string name = file.stem().string();
  if (!name.starts_with(stem)) return false;
  name.erase(0, stem.size());
  return name.empty() || (name.size() == 4 && name[0] == '_' &&
                          name.find_first_not_of("0123456789", 1) == std::string::npos);
}

// Removes files of an earlier run, so that they are not taken for results of this one. Inputs of
// the case are kept.
void removeResults(const BatchCase& c) {
  std::error_code none;
  std::vector<fs::path> old;
  for (const std::string& file : filesOfStatus(c)) old.push_back(c.folder / file);
  fs::remove(c.folder / STATUSFILE, none);
  for (const auto& entry : fs::directory_iterator(c.folder, none))
    if (isResultOf(entry.path().filename(), c.source.stem().string())) old.push_back(entry.path());
  for (const fs::path& file : old)
    if (!isInput(file)) fs::remove(file, none);
}

// Links to a file named in the description, unless it exists in the folder. Returns an error
// message, or empty.
std::string linkNamed(const BatchCase& c, const std::string& name) {
  const fs::path relative = fs::path(name).lexically_normal(), place = c.folder / relative;
  if (relative.begin()->string() == "..")
    return fmt::format("the description names {}, which is not below its folder", name);
  std::error_code none;
  fs::create_directories(place.parent_path(), none);
  if (fs::is_symlink(fs::symlink_status(place, none))) fs::remove(place, none);
  if (!fs::exists(place, none)) fs::create_symlink(c.beside / relative, place, none);
  return fs::exists(place, none) ? "" : "cannot link to " + (c.beside / relative).string();
}

bool sameFolder(const fs::path& a, const fs::path& b) {
  std::error_code none;
  return fs::equivalent(a, b, none);
}

// Puts the description and the files it names into the folder. Returns false if it cannot be
// written; other errors of the case are returned in `trouble`.
bool furnish(const BatchCase& c, std::string& trouble) {
  std::string description;
  if (!readWhole(c.source, description)) trouble = "cannot read " + c.source.string();
  if (!trouble.empty()) return true;
  if (!sameFolder(c.source.parent_path(), c.folder) &&
      !writeWhole(c.folder / c.source.filename(), description, false))
    return false;
  if (sameFolder(c.beside, c.folder)) return true;
  for (const std::string& name : filesNamedIn(description, c.beside))
    if (trouble.empty()) trouble = linkNamed(c, name);
  return true;
}

// --- run

using Stamps = std::map<std::string, std::pair<time_t, long>>;

Stamps filesIn(const fs::path& folder) {
  Stamps stamps;
  std::error_code none;
  for (const auto& entry : fs::directory_iterator(folder, none)) {
    struct stat s {};
    const std::string name = entry.path().filename().string();
    const bool ours = name.starts_with("batch_") || name.find_first_of("\t\r\n") != name.npos;
    if (ours || lstat(entry.path().c_str(), &s) != 0 || !S_ISREG(s.st_mode)) continue;
    stamps[name] = {s.st_mtim.tv_sec, s.st_mtim.tv_nsec};
  }
  return stamps;
}

std::vector<std::string> changedSince(const Stamps& before, const fs::path& folder) {
  std::vector<std::string> changed;
  for (const auto& [name, stamp] : filesIn(folder)) {
    const auto old = before.find(name);
    if (old == before.end() || old->second != stamp) changed.push_back(name);
  }
  return changed;
}

// Locks the console file of the case for this process. Returns false if a signal arrives first.
bool lock(int console, End& end) {
  constexpr double BETWEEN = 0.05; // s
  while (flock(console, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
    if (sleepFor(BETWEEN, end)) return false;
  return true;
}

struct Run {
  Waited how = Waited::ENDED;
  End end;
  double wall = 0; // s
};

// Whether the program was ended by a signal (or by a shell's exit status for one) that is also sent
// to it by whoever ends the batch.
bool endedFromOutside(int status) {
  const int s = WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status) - BEHINDSIGNAL;
  return s == SIGTERM || s == SIGINT || s == SIGHUP || s == SIGKILL;
}

Run runProgram(const std::vector<std::string>& words, const fs::path& folder, int console,
               double limit) {
  Run run;
  const double start = now();
  const pid_t child = startProgram({words, folder, console, console, SIGKILL});
  run.how = waitFor(child, limit > 0 ? limit : NOLIMIT, run.end);
  if (run.how != Waited::ENDED) killAll(child, run.end);
  // If so, the same signal is about to reach this process, and the case has not crashed.
  constexpr double ONITSWAY = 0.5; // s
  if (run.how == Waited::ENDED && endedFromOutside(run.end.status) && sleepFor(ONITSWAY, run.end))
    run.how = Waited::SIGNAL;
  run.wall = now() - start;
  return run;
}

std::vector<std::string> commandOf(const BatchCase& c, const CaseWishes& wishes) {
  std::vector<std::string> words = {wishes.program, "/file", c.source.filename().string(),
                                    "/length", c.length};
  for (const std::string& word : wordsOf(c.arguments)) words.push_back(word);
  return words;
}

double secondsOf(const timeval& t) {
  return static_cast<double>(t.tv_sec) + 1e-6 * static_cast<double>(t.tv_usec);
}

// Adds the outcome of the run, except for what its console reports.
void addEnd(Facts& facts, const Run& run, double limit, bool model) {
  const int status = run.end.status;
  facts["cpu"] =
      fmt::format("{:.4f}", secondsOf(run.end.usage.ru_utime) + secondsOf(run.end.usage.ru_stime));
  facts["memory"] = fmt::format("{:.1f}", static_cast<double>(run.end.usage.ru_maxrss) / KILOBYTES);
  facts["wall"] = fmt::format("{:.4f}", run.wall);
  if (run.how == Waited::TIME) {
    facts["status"] = "timeout";
    facts["message"] = fmt::format("ended after {:g} s", limit);
  } else if (WIFSIGNALED(status)) {
    facts["status"] = "crashed";
    facts["message"] = fmt::format("signal {}: {}", WTERMSIG(status), strsignal(WTERMSIG(status)));
  } else {
    const int code = WEXITSTATUS(status);
    facts["exit"] = std::to_string(code);
    if (code == NOTSTARTED) facts["message"] = "the program cannot be started";
    facts["status"] = !model || (code != 0 && code != 2) ? "failed" : code == 2 ? "warning" : "ok";
  }
}

// --- verification and plot after the run

// Scans the passivity of the model files in a separate process and records the worst verdict.
bool verify(const BatchCase& c, const CaseWishes& wishes, const std::vector<std::string>& files,
            Facts& facts, End& end) {
  std::vector<std::string> words = {ownPath(), std::string(SCANWORD), c.source.filename().string(),
                                    c.length};
  std::copy_if(files.begin(), files.end(), std::back_inserter(words), isModel);
  const int told = memfd_create("verdict", MFD_CLOEXEC);
  const Run run = runProgram(words, c.folder, told, wishes.timeout);
  std::string verdict;
  lseek(told, 0, SEEK_SET);
  readWhole(told, verdict);
  close(told);
  end = run.end;
  if (run.how == Waited::SIGNAL) return false;
  facts["verified"] = run.how == Waited::ENDED && run.end.status == 0 ? "yes" : "no";
  if (facts["verified"] == "yes" && !verdict.empty()) facts["passivity"] = linesOf(verdict)[0];
  return true;
}

// Draws the page of the case; if that fails, its name stays empty.
bool plot(const BatchCase& c, const CaseWishes& wishes, int console, Facts& facts,
          std::vector<std::string>& files, End& end) {
  const std::string page = c.source.stem().string() + ".html";
  const Run run = runProgram(
      {programBeside("corvo-plot"), c.source.filename().string(), "/length", c.length, "-o", page},
      c.folder, console, wishes.timeout);
  end = run.end;
  if (run.how == Waited::SIGNAL) return false;
  const bool drawn = run.how == Waited::ENDED && run.end.status == 0;
  facts["page"] = drawn ? page : "";
  if (drawn) files.push_back(page);
  return true;
}

// A full device may not show in the messages of the run, but shows in the next file that is
// written.
bool canWrite(const fs::path& folder) {
  constexpr std::size_t PROBE = 1 << 16;
  const fs::path probe = folder / "batch_probe";
  const bool good = writeWhole(probe, std::string(PROBE, ' '));
  const int why = errno;
  unlink(probe.c_str());
  errno = why;
  return good;
}

CaseOutcome endedBySignal(const End& end) { return {CaseEnd::SIGNAL, end.signal, {}}; }

CaseOutcome keep(const BatchCase& c, const Facts& facts, const std::vector<std::string>& files) {
  if (!writeStatus(c, facts, files)) return notWritten(c.folder / STATUSFILE);
  return {};
}

// Runs the case after its folder is prepared, with the console file of the case as its console.
CaseOutcome runFurnished(const BatchCase& c, const CaseWishes& wishes, int console, Facts facts) {
  const Stamps before = filesIn(c.folder);
  const Run run = runProgram(commandOf(c, wishes), c.folder, console, wishes.timeout);
  if (run.how == Waited::SIGNAL) return endedBySignal(run.end);
  std::string text;
  readWhole(c.folder / CONSOLEFILE, text);
  std::vector<std::string> files = changedSince(before, c.folder);
  const bool model = std::any_of(files.begin(), files.end(), isModel);
  addEnd(facts, run, wishes.timeout, model);
  const Facts told = consoleFacts(text, facts.at("status") == "failed");
  facts.insert(told.begin(), told.end());
  const std::string unwritten = couldNotWrite(text);
  if ((!unwritten.empty() || !madeModel(facts)) && !canWrite(c.folder)) return notWritten(c.folder);
  if (!unwritten.empty()) return {CaseEnd::NOTWRITTEN, 0, c.folder.string() + ": " + unwritten};
  End end;
  if (madeModel(facts) && wishes.verify && !verify(c, wishes, files, facts, end))
    return endedBySignal(end);
  if (madeModel(facts) && wishes.plot && !plot(c, wishes, console, facts, files, end))
    return endedBySignal(end);
  return keep(c, facts, files);
}

} // namespace

CaseOutcome runCase(const BatchCase& c, const CaseWishes& wishes) {
  std::error_code none;
  fs::create_directories(c.folder, none);
  const fs::path name = c.folder / CONSOLEFILE;
  const Descriptor console{open(name.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0666)};
  if (console.number < 0) return notWritten(name);
  End end;
  if (!lock(console.number, end)) return endedBySignal(end);
  if (!statusOf(c, wishes).empty()) return {};
  if (ftruncate(console.number, 0) != 0) return notWritten(name);
  protectInputs(c);
  removeResults(c);
  std::string trouble;
  if (!furnish(c, trouble)) return notWritten(c.folder);
  // Taken before the run: files changed during the run are not those it has read.
  Facts facts = {{"fingerprint", fingerprintOf(c)}};
  if (trouble.empty()) return runFurnished(c, wishes, console.number, std::move(facts));
  facts.insert({{"status", "failed"}, {"message", trouble}});
  return keep(c, facts, {});
}

std::string verdictOnFiles(const std::string& description, double length,
                           const std::vector<std::string>& models) {
  Verdict worst = Verdict::TOLD;
  readHere(description, length);
  for (const std::string& name : models) {
    const ModelFile model = readModelFile(name);
    if (model.kind != ModelKind::Phase || !model.trouble.empty()) continue;
    for (const Finding& f : phasePassivity(model, {})) {
      if (f.verdict != Verdict::TOLD && (worst == Verdict::TOLD || f.verdict > worst))
        worst = f.verdict;
    }
  }
  return std::string(wordOf(worst));
}

} // namespace lcp::companions
