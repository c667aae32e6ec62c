#include "companions/verify/verify.h"

#include "companions/shared/arguments.h"
#include "companions/shared/captured_run.h"
#include "companions/shared/model_file.h"

#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr int GOOD = 0;
constexpr int CANNOTTELL = 2;

constexpr OptionRow OPTIONS[] = {{"/length", "METRES", "length of the line"},
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

int verifyModel(std::span<char* const> arguments) {
  const Arguments given = parseArguments(VERIFY, arguments);
  const double length = given.numberOr("/length", 0);
  const Scratch scratch;
  std::string model = (scratch.path / "model").string();
  if (!(length > 0)) giveUp(VERIFY.name, "/length METRES expected");
  if (given.words.size() > 1) {
    model = given.words[1];
  } else {
    const CapturedRun run =
        solveInChild(given.words[0], length, model, (scratch.path / "report").string());
    if (run.status == 1 || run.status < 0) {
      fmt::print("{}", run.console);
      return CANNOTTELL;
    }
  }
  const ModelFile file = readModelFile(model);
  fmt::print("{} model, {} conductors, {}\n", nameOf(file.kind), file.n, file.trouble);
  return file.trouble.empty() ? GOOD : CANNOTTELL;
}

} // namespace lcp::companions
