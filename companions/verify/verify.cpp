#include "companions/verify/verify.h"

#include "companions/shared/arguments.h"
#include "companions/shared/captured_run.h"
#include "companions/shared/direct_line.h"
#include "companions/shared/fit_ranges.h"
#include "companions/shared/model_file.h"
#include "companions/shared/scratch.h"
#include "companions/shared/verdicts.h"
#include "companions/verify/compare_functions.h"
#include "companions/verify/compare_modes.h"
#include "companions/verify/in_time.h"
#include "companions/verify/passivity.h"
#include "companions/verify/poles.h"
#include "companions/verify/remedies.h"
#include "companions/verify/terminals.h"
#include "companions/verify/told_by_run.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr OptionRow OPTIONS[] = {
    {"/length", "METRES", "length of the line"},
    {"/steps", "N", "lengths, each with its model file"},
    {"/increment", "METRES", "from one length to the next"},
    {"--time", "", "the model in simulations as well"},
    {"--case", "NAME", "one of them: energise, step, short, ground, dc"},
    {"--step", "SECONDS", "step of the simulation"},
    {"--front", "SECONDS", "time in which a voltage rises, 50e-6"},
    {"--until", "SECONDS", "time that is simulated"},
    {"--limits", "NAME=A:B,...", "doubtful above A, bad above B"},
    {"--json", "", "the same as one JSON document"}};
constexpr int MOSTSTEPS = 999; // the limit of the program
constexpr Program VERIFY = {"corvo-verify",
                            "Compares the model in a model file with the line computed directly.",
                            "DESCRIPTION [MODEL]",
                            1,
                            2,
                            OPTIONS};

void add(std::vector<Finding>& all, const std::vector<Finding>& more) {
  all.insert(all.end(), more.begin(), more.end());
}

// Reads the given model file, or makes one in the scratch folder, in which case the console of the
// run is returned too.
ModelFile modelOf(const std::string& description, const std::string& given, double length,
                  std::string& console) {
  if (!given.empty()) {
    const CapturedRun read = readInChild(description, length);
    if (read.status == 0) return readModelFile(given);
    say(read.console);
    giveUp(VERIFY.name, "the program refuses this description");
  }
  const CapturedRun run = solveInScratch(description, length);
  console = run.console;
  if (run.status == 0 || run.status == 2) return readModelFile(scratchFile("model"));
  say(run.console);
  giveUp(VERIFY.name, "the program makes no model of this description");
}

// Refuses a model file with another number of conductors: it belongs to another description.
void refuseStranger(const ModelFile& file) {
  // The order of a cable system is known only after its eliminations.
  const double f = RUNDATA.model.fitted() ? fitRanges()[0].f.back() : RUNDATA.line.SSFREQ;
  const std::size_t order = constantsOf(f).Y.rows;
  if (file.n != order) {
    giveUp(VERIFY.name,
           fmt::format("the model file has {} conductors, the line has {}", file.n, order));
  }
}

// What the file says of itself, rounded to its digits there.
std::vector<Finding> compareHead(const ModelFile& file, double length) {
  constexpr double DIGITS = 1e-4;
  const BergeronFile& B = file.bergeron;
  const bool totals = RUNDATA.run.DATAFMT == ROUTEMANUAL && RUNDATA.manual.YZFMT == 1;
  const bool entered = RUNDATA.run.DATAFMT == ROUTEMANUAL; // has one frequency, twice
  const struct {
    std::string_view subject, where, unit;
    double file, wanted;
  } all[] = {
      {"length", "of the model file", "m", totals ? 0 : file.length, length},
      {"file", "steady state frequency", "Hz", B.SSFREQ, RUNDATA.line.SSFREQ},
      {"file", "frequency of the losses", "Hz", entered ? 0 : B.FLOSS, RUNDATA.bergeron.FLOSS}};
  std::vector<Finding> found;
  for (const auto& one : all) {
    if (one.file == 0 || std::fabs(one.file / one.wanted - 1) <= DIGITS) continue;
    Finding f{std::string(one.subject), std::string(one.where)};
    f.value = one.file;
    f.unit = one.unit;
    f.words = fmt::format("{:.6g} {}, the description has {:.6g} {}", one.file, one.unit,
                          one.wanted, one.unit);
    f.verdict = Verdict::BAD;
    found.push_back(f);
  }
  return found;
}

// A file of another kind than the description has: nothing else of it is compared.
std::vector<Finding> compareKind(const ModelFile& file) {
  Finding f{"file", "kind of the model"};
  f.words =
      fmt::format("{}, the description has {}", nameOf(file.kind), nameOf(RUNDATA.model.MODEL));
  f.verdict = Verdict::BAD;
  return {f};
}

} // namespace

std::vector<Finding> verified(const ModelFile& file, double length, const Limits& limits) {
  std::vector<Finding> all = compareHead(file, length);
  if (file.kind == ModelKind::Phase) add(all, comparePhase(file, length, limits));
  if (file.kind == ModelKind::Mfdtd) add(all, compareSeries(file, limits));
  if (file.kind == ModelKind::Mode) {
    add(all, compareModesInPhases(file, length, limits));
    add(all, compareModeFits(file, length, limits));
  }
  if (file.kind == ModelKind::Bergeron) add(all, compareBergeron(file, length, limits));
  if (file.kind == ModelKind::Pi) add(all, comparePi(file, length, limits));
  add(all, compareTerminals(file, length, limits));
  if (RUNDATA.model.fitted()) add(all, checkTransformation(limits));
  add(all, checkPoles(file, limits));
  add(all, checkDelays(file, length));
  if (file.kind == ModelKind::Phase) add(all, phasePassivity(file, limits));
  add(all, linePassivity(limits));
  return all;
}

namespace {

// Name of the model file of length step k, as the program names it: case_002.cvo.
std::string nameOfStep(const std::string& model, int k, int steps) {
  if (steps == 1) return model;
  const std::filesystem::path path = model;
  return path.parent_path() /
         fmt::format("{}_{:03}{}", path.stem().string(), k, path.extension().string());
}

int stepsAsked(const Arguments& given) {
  const double steps = given.numberOr("/steps", 1);
  if (!(steps >= 1 && steps <= MOSTSTEPS) || steps != std::floor(steps))
    giveUp(VERIFY.name, fmt::format("/steps 1 to {} expected", MOSTSTEPS));
  return static_cast<int>(steps);
}

// The case with the name given; all cases without a name.
TimeOptions timeOptions(const Arguments& given) {
  TimeOptions options;
  const std::string_view name = given.valueOr("--case", "");
  for (const CaseRow& row : TRANSIENTCASES) {
    if (name.empty() || name == row.name) options.cases.push_back(row.which);
  }
  if (options.cases.empty())
    giveUp(VERIFY.name, "--case energise, step, short, ground or dc expected");
  for (const auto& [option, value] : {std::pair{"--step", &options.step},
                                      {"--front", &options.front},
                                      {"--until", &options.until}}) {
    *value = given.numberOr(option, 0);
    if (given.has(option) && !(*value > 0))
      giveUp(VERIFY.name, fmt::format("{} SECONDS expected, above 0", option));
  }
  return options;
}

// A table says nothing at complex frequencies.
bool inTimePossible() { return !RUNDATA.run.fromTable(); }

struct StepResult {
  std::string text; // lines of text, or the JSON document
  int status;
};

StepResult verifyStep(const Arguments& given, const std::string& model, double length,
                      const Limits& limits) {
  if (!(length > 0)) giveUp(VERIFY.name, "/length METRES expected, above 0 at every step");
  std::string console;
  const ModelFile file = modelOf(given.words[0], model, length, console);
  if (!file.trouble.empty()) giveUp(VERIFY.name, "the model file: " + file.trouble);
  readHere(given.words[0], length);
  refuseStranger(file);
  const bool sameKind = file.kind == RUNDATA.model.MODEL;
  std::vector<Finding> findings = sameKind ? verified(file, length, limits) : compareKind(file);
  if (!console.empty() && RUNDATA.model.fitted())
    add(findings, compareConsole(console, findings, limits));
  InTime inTime;
  if (given.has("--time") && sameKind && inTimePossible()) {
    inTime = checkInTime(file, length, timeOptions(given), limits);
    add(findings, inTime.findings);
  } else if (given.has("--time") && sameKind) {
    Finding none{"in time", "not of a table of Y and Z"};
    none.words = "it says nothing at complex frequencies";
    findings.push_back(none);
  }
  addRemedies(findings);
  if (!given.has("--json")) return {asText(findings), exitStatus(findings)};
  return {asJson(findings, nameOf(file.kind), file.n, length, asJson(inTime.curves)),
          exitStatus(findings)};
}

} // namespace

int verifyModel(std::span<char* const> arguments) {
  const Arguments given = parseArguments(VERIFY, arguments);
  const bool json = given.has("--json");
  const int steps = stepsAsked(given);
  Limits limits;
  if (!limits.set(given.valueOr("--limits", "")))
    giveUp(VERIFY.name, "--limits NAME=DOUBTFUL:BAD[,...] expected");
  int status = 0;
  for (int k = 1; k <= steps; ++k) {
    const double length = given.numberOr("/length", 0) + (k - 1) * given.numberOr("/increment", 0);
    const std::string model =
        given.words.size() > 1 ? nameOfStep(given.words[1], k, steps) : std::string();
    const StepResult step = verifyStep(given, model, length, limits);
    if (steps > 1) say(json ? (k == 1 ? "[\n" : ",\n") : fmt::format("length {:.10g} m\n", length));
    say(step.text);
    status = std::max(status, step.status);
  }
  if (json && steps > 1) say("]\n");
  if (!saidAll()) giveUp(VERIFY.name, CANNOTBEWRITTEN);
  return status;
}

} // namespace lcp::companions
