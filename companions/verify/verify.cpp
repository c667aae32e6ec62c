#include "companions/verify/verify.h"

#include "companions/shared/arguments.h"
#include "companions/shared/captured_run.h"
#include "companions/shared/model_file.h"
#include "companions/shared/verdicts.h"
#include "companions/verify/compare_functions.h"
#include "companions/verify/compare_modes.h"
#include "companions/verify/passivity.h"
#include "companions/verify/poles.h"
#include "store/rundata.h"

#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr OptionRow OPTIONS[] = {{"/length", "METRES", "length of the line"},
                                 {"--limits", "NAME=A:B,...", "doubtful above A, bad above B"},
                                 {"--json", "", "the same as one JSON document"}};
constexpr Program VERIFY = {"corvo-verify",
                            "Compares the model in a model file with the line computed directly.",
                            "DESCRIPTION [MODEL]",
                            1,
                            2,
                            OPTIONS};

// A folder that goes with the program.
struct Scratch {
  std::filesystem::path path;

  Scratch() {
    std::string name = (std::filesystem::temp_directory_path() / "corvo-verify-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) giveUp(VERIFY.name, "no scratch folder");
    path = name;
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  ~Scratch() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
};

} // namespace

namespace {

void add(std::vector<Finding>& all, const std::vector<Finding>& more) {
  all.insert(all.end(), more.begin(), more.end());
}

// The model file: the one that is given, or one that the program makes in the scratch folder.
ModelFile modelOf(const Arguments& given, double length, const Scratch& scratch) {
  if (given.words.size() > 1) return readModelFile(given.words[1]);
  const std::string model = (scratch.path / "model").string();
  const CapturedRun run =
      solveInChild(given.words[0], length, model, (scratch.path / "report").string());
  if (run.status == 0 || run.status == 2) return readModelFile(model);
  fmt::print("{}", run.console);
  giveUp(VERIFY.name, "the program makes no model of this description");
}

} // namespace

std::vector<Finding> verified(const ModelFile& file, double length, const Limits& limits) {
  std::vector<Finding> all;
  if (file.kind == ModelKind::PHASE) add(all, comparePhase(file, length, limits));
  if (file.kind == ModelKind::MFDTD) add(all, compareSeries(file, limits));
  if (file.kind == ModelKind::MODE) add(all, compareModeFits(file, length, limits));
  if (file.kind == ModelKind::BERGERON) add(all, compareBergeron(file, length, limits));
  if (file.kind == ModelKind::PI) add(all, comparePi(file, length, limits));
  if (RUNDATA.model.fitted()) add(all, checkTransformation(limits));
  add(all, checkPoles(file, limits));
  add(all, checkDelays(file, length, limits));
  if (file.kind == ModelKind::PHASE) add(all, phasePassivity(file, limits));
  if (RUNDATA.model.fitted()) add(all, linePassivity(limits));
  return all;
}

int verifyModel(std::span<char* const> arguments) {
  const Arguments given = parseArguments(VERIFY, arguments);
  const double length = given.numberOr("/length", 0);
  Limits limits;
  if (!(length > 0)) giveUp(VERIFY.name, "/length METRES expected");
  if (!limits.set(given.valueOr("--limits", "")))
    giveUp(VERIFY.name, "--limits NAME=DOUBTFUL:BAD[,...] expected");
  const Scratch scratch;
  const ModelFile file = modelOf(given, length, scratch);
  if (!file.trouble.empty()) giveUp(VERIFY.name, "the model file: " + file.trouble);
  readHere(given.words[0], length);
  const std::vector<Finding> findings = verified(file, length, limits);
  fmt::print("{}", given.has("--json") ? asJson(findings, nameOf(file.kind), file.n, length)
                                       : asText(findings));
  return exitStatus(findings);
}

} // namespace lcp::companions
