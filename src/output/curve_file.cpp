#include "output/curve_file.h"

#include "base/console.h"

namespace lcp {

namespace {

bool troubled[static_cast<std::size_t>(CurveId::COUNT)]; // in this solve

bool& troubleOf(CurveId id) { return troubled[static_cast<std::size_t>(id)]; }

void tellTrouble(CurveId id, std::string_view what) {
  troubleOf(id) = true;
  console::print("{}: {}", what, curveName(*curveRow(id)));
}

constexpr std::string_view CANNOTOPEN = "Cannot Open Detail Curve File";
constexpr std::string_view CANNOTWRITE = "Error in Writing Detail Curve File";
constexpr std::string_view NOTFINITE = "Values that are no Finite Numbers in Detail Curve File";

} // namespace

void forgetCurveTrouble() {
  for (bool& t : troubled) t = false;
}

void headCurve(CurveId id) {
  const CurveRow* row = curveRow(id);
  if (row == nullptr) return;
  StreamFile file;
  if (!file.create(curveName(*row))) {
    tellTrouble(id, CANNOTOPEN);
    return;
  }
  file.put(" ");
  file.put(row->header);
  file.put("\n");
  if (!file.close()) tellTrouble(id, CANNOTWRITE);
}

bool CurveFile::open(CurveId id) {
  const CurveRow* row = curveRow(id);
  if (row == nullptr || troubleOf(id)) return false;
  curve = id;
  finite = true;
  if (file.append(curveName(*row))) return true;
  tellTrouble(id, CANNOTOPEN);
  return false;
}

void CurveFile::startRow(double LOGFN, double FN) {
  putGeneral(LOGFN, file.room(GENERALWIDTH));
  inLine = 1;
  value(FN);
}

void CurveFile::nextLine() {
  file.put("\n");
  inLine = 0;
}

void CurveFile::endRow() { file.put("\n"); }

void CurveFile::close() {
  if (!finite) {
    file.discard();
    tellTrouble(curve, NOTFINITE);
  } else if (!file.close()) {
    tellTrouble(curve, CANNOTWRITE);
  }
}

} // namespace lcp
