#include "output/manual_output.h"

#include "base/console.h"
#include "base/solve_error.h"
#include "base/text_source.h"
#include "output/output_file.h"
#include "store/rundata.h"

#include <string>
#include <vector>

namespace lcp {

namespace {

[[noreturn]] void cannotRead(const std::string& last) {
  console::openStars();
  console::print("Error in Reading Data File: {}", RUNDATA.display.MANOUTF.text());
  console::print("Last Line Read Was: {}", last);
  stopInStars();
}

} // namespace

bool isModelReplaced() {
  return RUNDATA.display.MANOUT && RUNDATA.run.DATAFMT != ROUTEMANUAL &&
         RUNDATA.model.row().replaced;
}

bool copyManualOutput() {
  TextSource source;
  if (!source.open(RUNDATA.display.MANOUTF.whole(), true)) {
    sayCannotOpen(RUNDATA.display.MANOUTF);
    return false;
  }
  // Read completely before the model file is emptied: both may be the same file.
  std::vector<std::string> lines;
  std::string line;
  TextSource::Result result = source.next(line, MANUALCOLUMNS);
  for (; result == TextSource::Result::Record; result = source.next(line, MANUALCOLUMNS)) {
    line.resize(MANUALCOLUMNS, ' ');
    lines.push_back(line);
  }
  if (result == TextSource::Result::Error) cannotRead(lines.empty() ? "" : lines.back());
  TextFile file;
  if (!openOutput(file, RUNDATA.run.FOUTM, EarlyEnd::REMOVE)) return false;
  for (const std::string& l : lines) file.line(l);
  file.close();
  return true;
}

} // namespace lcp
