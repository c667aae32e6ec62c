#include "output/curve_file.h"

#include "base/console.h"

namespace lcp {

namespace {

StreamFile files[static_cast<std::size_t>(CurveId::COUNT)];

StreamFile& fileOf(CurveId id) { return files[static_cast<std::size_t>(id)]; }

void tellTrouble(CurveId id, std::string_view what) {
  console::print("{}: {}", what, curveName(*curveRow(id)));
}

void closeFile(CurveId id) {
  if (!fileOf(id).close()) tellTrouble(id, "Error in Writing Detail Curve File");
}

} // namespace

void headCurve(CurveId id) {
  const CurveRow* row = curveRow(id);
  if (row == nullptr) return;
  StreamFile& file = fileOf(id);
  if (!file.create(curveName(*row))) {
    tellTrouble(id, "Cannot Open Detail Curve File");
    return;
  }
  file.put(" ");
  file.put(row->header);
  file.put("\n");
}

void closeHeadedCurves() {
  for (int i = 0; i < static_cast<int>(CurveId::COUNT); ++i) {
    const auto id = static_cast<CurveId>(i);
    if (fileOf(id).isOpen()) closeFile(id);
  }
}

void discardHeadedCurves() {
  for (StreamFile& file : files) {
    if (file.isOpen()) file.discard();
  }
}

bool CurveFile::open(CurveId id) {
  if (!fileOf(id).isOpen()) return false;
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
    closeFile(curve);
    return;
  }
  file->discard();
  tellTrouble(curve, "Values that are no Finite Numbers in Detail Curve File");
}

} // namespace lcp
