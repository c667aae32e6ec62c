#include "companions/plot/plot.h"

#include "base/open_files.h"
#include "companions/plot/curve_folder.h"
#include "companions/plot/fit_facts.h"
#include "companions/plot/geometry.h"
#include "companions/plot/page.h"
#include "companions/plot/survey.h"
#include "companions/plot/time_curves.h"
#include "companions/shared/arguments.h"
#include "companions/shared/captured_run.h"
#include "companions/shared/progress.h"
#include "companions/shared/scratch.h"
#include "companions/shared/verdicts.h"
#include "companions/shared/whole_files.h"
#include "companions/verify/remedies.h"
#include "companions/verify/verify.h"
#include "store/rundata.h"

#include <cstdio>
#include <filesystem>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr OptionRow OPTIONS[] = {{"/length", "METRES", "length of the line"},
                                 {"--curves", "FOLDER", "detail curve files in place of a line"},
                                 {"-o", "PAGE", "the page, else NAME.html beside its source"}};
constexpr Program PLOT = {"corvo-plot",
                          "Makes one HTML page that shows a line, its constants and its model.",
                          "[DESCRIPTION]",
                          0,
                          1,
                          OPTIONS};

constexpr std::size_t MOSTSIMULATED = 12; // conductors

// Results of the run: console, model, and model before enforcement.
struct Solved {
  std::string console;
  ModelFile model, before;
};

// Solves in a child process, which ends if the program refuses the description, then reads it here
// too.
Solved solved(const std::string& description, double length) {
  Solved S;
  const CapturedRun run = solveInScratch(description, length);
  S.console = run.console + run.errors;
  if (run.status != 0 && run.status != 2) {
    fmt::print("{}", run.console);
    giveUp(PLOT.name, "the program makes no model of this description");
  }
  S.model = readModelFile(scratchFile("model"));
  readHere(description, length);
  if (!RUNDATA.passivity.PITERSET || S.model.kind != ModelKind::Phase) return S;
  refuseFullScratch(solveFitInChild(scratchFile("before"), scratchFile("report")));
  S.before = readModelFile(scratchFile("before"));
  return S;
}

std::string kilometres(double length) { return fmt::format("{:.6g} km", length / 1000); }

std::string soil() {
  const Ground& G = RUNDATA.ground;
  if (!G.GRTYPE) return fmt::format("{:.6g} ohm m", G.GRHO);
  return fmt::format("frequency dependent, {:.6g} ohm m at low frequency", 1 / G.GSIGLF);
}

Json factsOf(const std::string& description, const ModelFile& model, double length) {
  Json facts = {{"Description", std::filesystem::path(description).filename().string()},
                {"Length", kilometres(length)},
                {"Model", nameOf(model.kind)},
                {"Conductors", fmt::format("{}", model.n)},
                {"Steady state", fmt::format("{:.6g} Hz", RUNDATA.line.SSFREQ)}};
  if (RUNDATA.run.DATAFMT == ROUTECONSTANTS) facts["Soil"] = soil();
  return facts;
}

// Simulations of the model, with their findings added to the others.
Json inTimeOf(const ModelFile& model, double length, std::vector<Finding>& findings) {
  if (RUNDATA.run.fromTable())
    return {{"note", "A table of Y and Z says nothing at complex frequencies: no simulation."}};
  if (model.n > MOSTSIMULATED)
    return {{"note", fmt::format("Not simulated: {} conductors take minutes. corvo-verify --time "
                                 "does it.",
                                 model.n)}};
  TimeOptions options;
  options.program = PLOT.name;
  for (const CaseRow& row : TRANSIENTCASES) options.cases.push_back(row.which);
  const InTime found = checkInTime(model, length, options, {});
  findings.insert(findings.end(), found.findings.begin(), found.findings.end());
  return {{"cases", timeCurvesOf(found.curves)}};
}

// All that compares the model with the line over frequency; returns its findings. The constants of
// the line are computed once. A simulation can need those of another earth return, so that it comes
// later.
std::vector<Finding> addCurves(Json& data, const Solved& S, double length,
                               const Progress& progress) {
  const KeptConstants kept;
  data["delays"] = delaysOf(S.model, length);
  progress.note("comparing the model with the line");
  std::vector<Finding> findings = verified(S.model, length, {});
  progress.note("drawing the curves");
  const Survey survey = surveyLine(S.model, length, findings);
  data["constants"] = Json::array({constantsOf(survey)});
  data["modes"] = Json::array({modesOf(survey)});
  if (const Json fit = fitsOf(survey); !fit.is_null()) data["fit"].push_back(fit);
  progress.note("looking for what is not passive");
  data["passivity"] = passivityOf(S.model, S.before);
  return findings;
}

Json dataOf(const std::string& description, double length) {
  const Progress progress(PLOT.name);
  const Solved S = solved(description, length);
  if (!S.model.trouble.empty()) giveUp(PLOT.name, "the model file: " + S.model.trouble);
  const std::string_view name = RUNDATA.line.LNAME.text();
  Json data = {{"title", name.empty() ? "Line without a name" : std::string(name)},
               {"model", nameOf(S.model.kind)},
               {"length", length},
               {"facts", factsOf(description, S.model, length)},
               {"console", S.console},
               {"geometry", geometryOf()}};
  data["reported"] = RUNDATA.display.DISPFREQ;
  data["sequences"] = sequencesOf(length);
  data["poles"] = polesOf(S.model);
  std::vector<Finding> findings = addCurves(data, S, length, progress);
  progress.note("simulating");
  data["inTime"] = inTimeOf(S.model, length, findings);
  addRemedies(findings);
  data["verdicts"] =
      Json::parse(asJson(findings, nameOf(S.model.kind), S.model.n, length, {}))["findings"];
  return data;
}

void refuseInput(const std::string& page) {
  if (isInput(page)) giveUp(PLOT.name, fmt::format("{} is an input, not a page", page));
}

} // namespace

int plotLine(std::span<char* const> arguments) {
  const Arguments given = parseArguments(PLOT, arguments);
  const bool curves = given.has("--curves");
  const double length = given.numberOr("/length", 0);
  if (curves == !given.words.empty())
    giveUp(PLOT.name, "DESCRIPTION or --curves FOLDER expected, and not both");
  if (!curves && !(length > 0)) giveUp(PLOT.name, "/length METRES expected");
  const std::string source(curves ? given.valueOr("--curves", "") : given.words[0]);
  const auto page = curves ? std::filesystem::path(source) / "curves.html"
                           : std::filesystem::path(source).replace_extension(".html");
  const std::string name(given.valueOr("-o", page.string()));
  protectInput(source);
  refuseInput(name);
  const Json data = curves ? curvesOfFolder(source) : dataOf(source, length);
  refuseInput(name); // again, since the description names further files
  if (data.is_null()) giveUp(PLOT.name, fmt::format("no detail curve files in {}", source));
  if (writeWhole(name, pageOf(data), false)) return 0;
  fmt::print(stderr, "{}: cannot write {}\n", PLOT.name, name);
  return 1;
}

} // namespace lcp::companions
