#include "output/curve_file.h"

#include "base/console.h"
#include "output/curve_table.h"
#include "store/rundata.h"

#include <algorithm>
#include <memory>

namespace lcp {

namespace {

// ---- which files there are

unsigned modelOfRun() {
  switch (RUNDATA.model.row().fits) {
  case ModelFits::Modes: return MODECURVES;
  case ModelFits::Phases: return PHASECURVES;
  case ModelFits::Series: return SERIESCURVES;
  case ModelFits::None: break;
  }
  return 0;
}

bool fitsRun(const CurveRow& row) {
  const bool overhead = RUNDATA.run.ISCABLE == OVERHEADLINE;
  if ((row.models & modelOfRun()) == 0) return false;
  return row.conductors == ANYCONDUCTORS || (overhead && row.conductors == RUNDATA.line.NC);
}

// The table row of a file in this run; null if the run has no such file.
const CurveRow* curveRow(CurveId id) {
  if (!RUNDATA.fit.WDETAIL) return nullptr;
  for (const CurveRow& row : CURVETABLE) {
    if (row.id == id && fitsRun(row)) return &row;
  }
  return nullptr;
}

// File name: the name of the line up to its first blank, with slashes replaced by underscores, and
// the suffix; in the working directory.
std::string curveName(const CurveRow& row) {
  const std::string_view field = RUNDATA.line.LNAME.whole();
  std::string name(field.substr(0, std::min(field.find(' '), field.size())));
  std::replace(name.begin(), name.end(), '/', '_');
  return name.append(row.suffix);
}

// ---- one file

// Allocated with the first file: most runs have none.
std::unique_ptr<StreamFile[]> files;

void makeFiles() {
  constexpr auto count = static_cast<std::size_t>(CurveId::COUNT);
  if (files == nullptr) files = std::make_unique_for_overwrite<StreamFile[]>(count);
}

StreamFile& fileOf(CurveId id) { return files[static_cast<std::size_t>(id)]; }

bool isOpen(CurveId id) { return files != nullptr && fileOf(id).isOpen(); }

void tellTrouble(CurveId id, std::string_view what) {
  console::warning(fmt::format("{}: {}", what, curveName(*curveRow(id))));
}

} // namespace

std::vector<std::string> curveFileNames() {
  std::vector<std::string> names;
  for (const CurveRow& row : CURVETABLE) {
    if (RUNDATA.fit.WDETAIL && fitsRun(row)) names.push_back(curveName(row));
  }
  return names;
}

void headCurve(CurveId id) {
  const CurveRow* row = curveRow(id);
  if (row == nullptr) return;
  makeFiles();
  StreamFile& file = fileOf(id);
  if (!file.create(curveName(*row))) {
    tellTrouble(id, "Cannot Open Detail Curve File");
    return;
  }
  file.put(" ");
  file.put(row->header);
  file.put("\n");
}

void closeCurve(CurveId id) {
  if (isOpen(id)) fileOf(id).close();
}

bool CurveFile::open(CurveId id) {
  if (!isOpen(id)) return false;
  file = &fileOf(id);
  curve = id;
  finite = true;
  return true;
}

void CurveFile::startRow(double LOGFN, double FN) {
  putGeneral(LOGFN, file->room(GENERALWIDTH));
  inLine = 1;
  value(FN);
}

void CurveFile::nextLine() {
  file->put("\n");
  inLine = 0;
}

void CurveFile::endRow() { file->put("\n"); }

void CurveFile::close() {
  if (finite) {
    file->close();
    return;
  }
  file->discard();
  tellTrouble(curve, "Values that are no Finite Numbers in Detail Curve File");
}

} // namespace lcp
