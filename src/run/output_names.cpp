#include "run/output_names.h"

#include "base/console.h"
#include "base/solve_error.h"

#include <string>
#include <string_view>

namespace lcp {

namespace {

// Pads a text with blanks to a number of columns, to overwrite what follows it in its field.
std::string padded(std::string text, std::size_t columns) {
  text.resize(columns, ' ');
  return text;
}

} // namespace

BaseName chooseBaseName(RunControl& run) {
  for (const std::string_view extension : {".cvi", ".cbi", ".dta"}) {
    const std::size_t at = run.FNAME.whole().find(extension);
    if (at == std::string_view::npos) continue;
    run.FOUTR = run.FOUTM = run.FNAME;
    run.ISCABLE = extension == ".cvi" ? OVERHEADLINE : CABLESYSTEM;
    return {static_cast<int>(at) + 1};
  }
  run.ISCABLE = OVERHEADLINE;
  run.FOUTM = "Default.cvo";
  run.FOUTR = "Default.out";
  return {static_cast<int>(std::string_view("Default").size()) + 1};
}

void nameOutputs(RunControl& run, BaseName base, int k, int steps) {
  const std::string_view model = run.ISCABLE == OVERHEADLINE ? ".cvo" : ".cbo";
  const std::string suffix = steps == 1 ? std::string() : fmt::format("_{:03}", k);
  const std::size_t columns = steps == 1 ? 5 : 9;
  const std::size_t needed =
      static_cast<std::size_t>(base.point - 1) + suffix.size() + model.size();
  if (needed > FILENAMELEN) {
    console::openStars();
    console::print("File Name is Too Long for the Output Files: {}", run.FNAME.text());
    stopInStars("LCPMAIN Ending!");
  }
  run.FOUTR.overwrite(base.point, padded(suffix + ".out", columns));
  run.FOUTM.overwrite(base.point, padded(fmt::format("{}{}", suffix, model), columns));
}

} // namespace lcp
