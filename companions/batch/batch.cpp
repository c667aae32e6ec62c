#include "companions/batch/batch.h"

#include "base/open_files.h"
#include "companions/batch/case_run.h"
#include "companions/batch/hand_over.h"
#include "companions/batch/process.h"
#include "companions/batch/summary.h"
#include "companions/batch/variation.h"
#include "companions/shared/arguments.h"
#include "companions/shared/whole_files.h"
#include "input/free_form.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fcntl.h>
#include <fmt/format.h>
#include <sched.h>
#include <sys/file.h>

namespace fs = std::filesystem;

namespace lcp::companions {

namespace {

constexpr int NOTBEGUN = 3; // exit status
constexpr int FAILED = 1;
constexpr std::string_view SUMMARY = "summary.tsv";
constexpr std::string_view INDEX = "index.html";

constexpr OptionRow OPTIONS[] = {
    {"--vary", "KEY=A,B,...", "LIST is a description: a case for each value of this key"},
    {"/length", "METRES", "... length of its lines; also --vary length=A,B,..."},
    {"/steps", "N", "... and further arguments of its cases"},
    {"/increment", "METRES", ""},
    {"-o", "FOLDER", "folder of the batch, else NAME.batch beside the list"},
    {"--resume", "", "go on: only cases that are not done"},
    {"--jobs", "N", "cases at a time, else one a core"},
    {"--chunk", "N", "cases of one job, else by their number"},
    {"--timeout", "SECONDS", "ends a case that takes longer"},
    {"--verify", "", "passivity by a scan of each phase model"},
    {"--plot", "", "a page of corvo-plot a case, and an index of them"},
    {"--sshlogin", "HOSTS", "other machines, as GNU parallel takes them"},
    {"--sshloginfile", "FILE", "the same from a file"},
    {"--slurm", "", "as a job array of Slurm"},
    {"--corvo", "PROGRAM", "in place of the corvo beside this program"}};
constexpr Program BATCH = {"corvo-batch",
                           "Runs corvo on every case of a list, each in a folder of its own.",
                           "LIST",
                           1,
                           1,
                           OPTIONS,
                           NOTBEGUN};

[[noreturn]] void refuse(std::string_view words) { giveUp(BATCH.name, words, NOTBEGUN); }

void tell(std::string_view words) {
  std::fputs(fmt::format("{}: {}\n", BATCH.name, words).c_str(), stderr);
}

// The number of an option, which must be above 0; 0 if the option was not given.
double numberOf(const Arguments& given, std::string_view option, bool whole) {
  if (!given.has(option)) return 0;
  double value = 0;
  const std::string_view text = given.valueOr(option, "");
  if (!parseReal(text, value) || !(value > 0) || (whole && value != std::floor(value)) ||
      value > 1e9)
    refuse(fmt::format("{} {} is no {} above 0", option, text, whole ? "whole number" : "number"));
  return value;
}

std::size_t countOf(const Arguments& given, std::string_view option) {
  return static_cast<std::size_t>(numberOf(given, option, true));
}

std::size_t cores() {
  cpu_set_t set;
  CPU_ZERO(&set);
  if (sched_getaffinity(0, sizeof set, &set) != 0) return 1;
  return static_cast<std::size_t>(CPU_COUNT(&set));
}

CaseList casesOf(const Arguments& given, const fs::path& list, const fs::path& work) {
  std::vector<Variation> variations;
  for (const auto& [option, value] : given.given)
    if (option == "--vary") variations.push_back(variationOf(value));
  if (variations.empty()) {
    for (const std::string_view option : {"/length", "/steps", "/increment"}) {
      if (given.has(option))
        refuse(fmt::format("{} goes with --vary; a list has its own columns", option));
    }
    return readList(list, work);
  }
  Template base{list, std::string(given.valueOr("/length", "")), ""};
  for (const std::string_view option : {"/steps", "/increment"}) {
    if (given.has(option))
      base.arguments += fmt::format("{} {} ", option, given.valueOr(option, ""));
  }
  std::vector<std::string> notes;
  CaseList cases = makeCases(base, variations, work, notes);
  for (const std::string& note : notes) tell(note);
  return cases;
}

CaseWishes wishesOf(const Arguments& given) {
  CaseWishes wishes;
  wishes.verify = given.has("--verify");
  wishes.plot = given.has("--plot");
  wishes.timeout = numberOf(given, "--timeout", false);
  wishes.program = programBeside("corvo");
  if (given.has("--corvo")) wishes.program = fs::absolute(given.valueOr("--corvo", "")).string();
  std::error_code none;
  if (!fs::is_regular_file(wishes.program, none))
    refuse("no program corvo; --corvo PROGRAM expected");
  if (wishes.plot && programBeside("corvo-plot").empty())
    refuse("no program corvo-plot for --plot");
  return wishes;
}

// Files that the batch itself writes; runs protect their own files.
std::vector<fs::path> filesOfBatch(const std::vector<BatchCase>& cases, const fs::path& work,
                                   bool plots) {
  std::vector<fs::path> files = {work / CASESFILE, work / SUMMARY, work / INDEX};
  for (const std::string_view name : filesOnTheWay()) files.push_back(work / name);
  for (const BatchCase& c : cases) {
    const fs::path copy = c.folder / c.source.filename();
    files.push_back(c.folder / STATUSFILE);
    files.push_back(c.folder / CONSOLEFILE);
    if (plots) files.push_back(fs::path(copy).replace_extension(".html"));
    std::error_code none;
    if (!fs::equivalent(copy, c.source, none)) files.push_back(copy);
  }
  return files;
}

// Refuses a batch that would overwrite one of its inputs.
void refuseInputs(const std::vector<BatchCase>& cases, const fs::path& work, bool varied,
                  bool plots) {
  if (!varied) std::for_each(cases.begin(), cases.end(), protectInputs);
  for (const fs::path& file : filesOfBatch(cases, work, plots)) {
    if (isInput(file))
      refuse(fmt::format("{} would be overwritten: it is an input", file.string()));
  }
}

[[noreturn]] void refuseFolder(const fs::path& work) {
  giveUp(BATCH.name, cannotWrite(work), FAILED);
}

// Creates the folder of the batch and locks it until this process ends.
void takeFolder(const fs::path& work) {
  std::error_code trouble;
  fs::create_directories(work, trouble);
  const int lock = open((work / "lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  if (lock < 0) refuseFolder(work);
  if (flock(lock, LOCK_EX | LOCK_NB) != 0)
    refuse(fmt::format("another corvo-batch is at work in {}", work.string()));
}

// Numbers of the cases to run. Removes the status file of every case that is not done.
std::vector<std::size_t> openCases(const std::vector<BatchCase>& cases, const CaseWishes& wishes,
                                   bool resume) {
  std::vector<std::size_t> open;
  for (std::size_t k = 0; k < cases.size(); ++k) {
    if (resume && !statusOf(cases[k], wishes).empty()) continue;
    std::error_code none;
    fs::remove(cases[k].folder / STATUSFILE, none);
    open.push_back(k + 1);
  }
  return open;
}

Parts partsOf(const Arguments& given, const std::vector<std::size_t>& open, std::size_t jobs) {
  constexpr std::size_t SOMEMACHINES = 16; // cores assumed for remote machines
  constexpr std::size_t TASKS = 200;       // tasks of a Slurm array, each of which is started anew
  const std::size_t chunk = countOf(given, "--chunk");
  if (chunk > 0) return equalParts(open, chunk);
  if (given.has("--slurm")) return equalParts(open, (open.size() + TASKS - 1) / TASKS);
  return partsFor(open, jobs > 0 ? jobs : SOMEMACHINES);
}

// Options for parallel: the given machines, and the number of jobs unless the machines determine
// it.
std::vector<std::string> machinesOf(const Arguments& given, std::size_t& jobs) {
  std::vector<std::string> words;
  for (const auto& [option, value] : given.given) {
    if (option == "--sshlogin" || option == "--sshloginfile") {
      words.push_back(option);
      words.push_back(value);
    }
  }
  jobs = countOf(given, "--jobs");
  if (jobs == 0 && words.empty()) jobs = cores();
  if (jobs > 0) words.insert(words.end(), {"--jobs", std::to_string(jobs)});
  return words;
}

// Writes the table to disk and standard output, and the index. Returns false if this fails.
bool tellAll(const CaseList& list, const std::vector<Facts>& facts, const fs::path& work,
             bool index) {
  const std::string summary = summaryOf(list, facts);
  bool good = writeWhole(work / SUMMARY, summary);
  if (good && index) good = writeWhole(work / INDEX, indexOf(list, facts, work));
  if (!good) tell(cannotWrite(work));
  say(summary);
  if (!saidAll()) tell("the summary cannot be written");
  return good && saidAll();
}

// Absolute path of the batch folder.
fs::path workOf(const Arguments& given, fs::path list) {
  const fs::path work =
      given.has("-o") ? fs::path(given.valueOr("-o", "")) : list.replace_extension(".batch");
  return (fs::absolute(work) / "").lexically_normal().parent_path();
}

void tellEnd(const std::vector<Facts>& facts, const HandedOver& end, std::size_t runNow,
             double seconds, const fs::path& work) {
  if (!end.trouble.empty()) tell(end.trouble);
  tell(fmt::format("{}; {:.1f} s, {} run now; {}", countsOf(facts), seconds, runNow,
                   (work / SUMMARY).string()));
  if (exitStatus(facts) == FAILED && std::count(facts.begin(), facts.end(), Facts{}) > 0)
    tell("--resume goes on with the cases that were not run");
}

int runWhole(const Arguments& given) {
  const fs::path list = given.words[0], work = workOf(given, list);
  Hands hands{work, {}, given.has("--slurm"), wishesOf(given)};
  std::size_t jobs = 0;
  hands.words = machinesOf(given, jobs);
  const std::string missing = missingProgram(hands.slurm);
  if (!missing.empty()) refuse(missing);
  if (hands.work.string().find_first_of("\t\r\n") != std::string::npos)
    refuse("no tab and no line end may stand in the name of the folder");
  takeFolder(work);
  cancelEarlier(work);
  protectInput(fs::absolute(list));
  const CaseList cases = casesOf(given, list, work);
  if (!cases.trouble.empty())
    giveUp(BATCH.name, cases.trouble, cases.notWritten ? FAILED : NOTBEGUN);
  refuseInputs(cases.cases, work, given.has("--vary"), hands.wishes.plot);
  if (!writeWhole(work / CASESFILE, tableOf(cases.cases))) refuseFolder(work);
  const double start = now();
  const auto open = openCases(cases.cases, hands.wishes, given.has("--resume"));
  HandedOver end;
  if (!open.empty()) end = handOver(hands, partsOf(given, open, jobs), cases.cases);
  std::vector<Facts> facts;
  for (const BatchCase& c : cases.cases) facts.push_back(statusOf(c, hands.wishes));
  const bool told = tellAll(cases, facts, work, hands.wishes.plot);
  tellEnd(facts, end, open.size(), now() - start, work);
  if (end.signal != 0) return BEHINDSIGNAL + end.signal;
  return told ? exitStatus(facts) : FAILED;
}

// Runs the passivity scan of model files, which this program starts as a child process of itself.
int runScan(const std::vector<std::string>& words) {
  constexpr std::size_t LEAST = 2; // description and length
  if (words.size() < LEAST) return NOTBEGUN;
  const std::string verdict = verdictOnFiles(words[0], std::strtod(words[1].c_str(), nullptr),
                                             {words.begin() + LEAST, words.end()});
  say(verdict + "\n");
  return saidAll() ? 0 : FAILED;
}

} // namespace

int runBatch(std::span<char* const> arguments) {
  const std::span<char* const> words =
      arguments.subspan(std::min<std::size_t>(1, arguments.size()));
  const std::string_view first = words.empty() ? "" : words[0];
  if (first == PARTWORD) return runPart({words.begin() + 1, words.end()});
  if (first == SCANWORD) return runScan({words.begin() + 1, words.end()});
  const Arguments given = parseArguments(BATCH, words);
  holdSignals();
  return runWhole(given);
}

} // namespace lcp::companions
