#include "output/curve_file.h"

#include "base/console.h"
#include "store/rundata.h"

#include <algorithm>
#include <memory>

namespace lcp {

namespace {

// ---- which there are

// Models that a file belongs to, as bits.
constexpr unsigned MODECURVES = 1;
constexpr unsigned PHASECURVES = 2;
constexpr unsigned SERIESCURVES = 4;

constexpr int ANYCONDUCTORS = 0;

struct CurveRow {
  CurveId id;
  unsigned models;
  int conductors; // an overhead line of so many alone, or ANYCONDUCTORS
  std::string_view suffix;
  std::string_view header;
};

constexpr unsigned MODAL = MODECURVES | PHASECURVES;
constexpr unsigned ALL = MODAL | SERIESCURVES;

using enum CurveId;

constexpr CurveRow TABLE[] = {
    {ZCMM, MODECURVES, ANYCONDUCTORS, "_zcmm.out",
     "  LOG10(FN)  FN  |Z0(1-n)| Calc./Fitted [ohms]"},
    {ZCPM, MODECURVES, ANYCONDUCTORS, "_zcpm.out",
     "  LOG10(FN)  FN  arg(Z0(1-n)) Calc./Fitted [deg]"},
    {AMM, MODECURVES, ANYCONDUCTORS, "_amm.out", "  LOG10(FN)  FN  |E(-Gamma.L)| Calc./Fitted"},
    {APM, MODECURVES, ANYCONDUCTORS, "_apm.out",
     " LOG10(FN)  FN  arg(E(-Gamma.L)) Calc./Fitted [deg]"},
    {TIMM, MODECURVES, ANYCONDUCTORS, "_timm.out", "  LOG10(FN) FN  |TI(1-N,1-N)| Calc./Fitted"},
    {TIPM, MODECURVES, ANYCONDUCTORS, "_tipm.out",
     "  LOG10(FN) FN  arg(TI(1-N,1-N)) Calc./Fitted [deg]"},

    {YCMP, PHASECURVES, ANYCONDUCTORS, "_ycmp.out",
     "  LOG10(FN)  FN  Calc./Fitted |Y0|  Y011c Y011f Y012c Y012f...  [mho]"},
    {YCPP, PHASECURVES, ANYCONDUCTORS, "_ycpp.out",
     "  LOG10(FN)  FN  Calc./Fitted arg(Y0)  Y011c Y011f Y012c Y012f...  [deg]"},
    {HMM, PHASECURVES, ANYCONDUCTORS, "_hmm.out",
     "  LOG10(FN)  FN  Calc./Fitted |Hmode| H1c, H1f, H2c, H2f ..."},
    {HPM, PHASECURVES, ANYCONDUCTORS, "_hpm.out",
     " LOG10(FN)  FN  Calc./Fitted arg(Hmode) H1c, H1f, H2c, H2f ...   [deg]"},
    {HMP, PHASECURVES, ANYCONDUCTORS, "_hmp.out",
     "  LOG10(FN)  FN  Calculated  |Hphase| H11, H12 ... H21, H22 ..."},
    {HPP, PHASECURVES, ANYCONDUCTORS, "_hpp.out",
     " LOG10(FN)  FN  Calculated  arg(Hphase) H11, H12 ... H21, H22 .. . [deg]"},
    {TIMP, PHASECURVES, ANYCONDUCTORS, "_timp.out",
     "  LOG10(FN) FN  Magnitudes: TI11, TI12 ... TI21, TI22 ..."},
    {TIPP, PHASECURVES, ANYCONDUCTORS, "_tipp.out",
     "  LOG10(FN) FN  Arguments: TI11, TI12 ... TI21, TI22 ... [deg]"},

    {ZMF, SERIESCURVES, ANYCONDUCTORS, "_zmf.out",
     "  LOG10(FN) FN  Fit. Mag.: Z11, Z12 ... Z21, Z22 ... [ohms]"},
    {ZPF, SERIESCURVES, ANYCONDUCTORS, "_zpf.out",
     "  LOG10(FN) FN  Fit. Arg.: Z11, Z12 ... Z21, Z22 ... [deg]"},

    {LAMDAM, MODAL, ANYCONDUCTORS, "_lamdam.out",
     "  LOG10(FN) FN  Magnitudes: Lamda11, Lamda22 ..."},
    {LAMDAP, MODAL, ANYCONDUCTORS, "_lamdap.out",
     "  LOG10(FN) FN  Arguments: Lamda11, Lamda22 ... [deg]"},

    {ZM, ALL, ANYCONDUCTORS, "_zm.out",
     "  LOG10(FN) FN  Calc. Mag.: Z11, Z12 ... Z21, Z22 ... [ohms]"},
    {YM, ALL, ANYCONDUCTORS, "_ym.out",
     "  LOG10(FN) FN  Magnitudes: Y11, Y12 ... Y21, Y22 ... [mhos]"},
    {ZP, ALL, ANYCONDUCTORS, "_zp.out",
     "  LOG10(FN) FN  Calc. Arg.: Z11, Z12 ... Z21, Z22 ... [deg]"},
    {YP, ALL, ANYCONDUCTORS, "_yp.out",
     "  LOG10(FN) FN  Arguments: Y11, Y12 ... Y21, Y22 ... [deg]"},

    {ZS, ALL, 1, "_zs.out", "  LOG10(FN) FN Zseries R11,X11"},
    {ZS, ALL, 2, "_zs.out", "  LOG10(FN) FN Zseries(R+XL) Z11,Z12,Z22"},
    {ZS, ALL, 3, "_zs.out", "  LOG10(FN) FN Zseries(R+XL) Z11,Z12,Z13,Z22,Z23,Z33"},
    {YS, ALL, 1, "_ys.out", "  LOG10(FN) FN Yshunt G11,XC11"},
    {YS, ALL, 2, "_ys.out", "  LOG10(FN) FN Yshunt(G+XC)  Y11,Y12,Y22"},
    {YS, ALL, 3, "_ys.out", "  LOG10(FN) FN Yshunt(G+XC)  Y11,Y12,Y13,Y22,Y23,Y33"},
    {SHORTED, ALL, 1, "_short.out", "  LOG10(FN) FN Zshort Z1M,Z1P"},
    {SHORTED, ALL, 2, "_short.out", "  LOG10(FN) FN Zshort Z1M,Z1P,Z2M,Z2P"},
    {SHORTED, ALL, 3, "_short.out", "  LOG10(FN) FN Zshort Z1M,Z1P,Z2M,Z2P,Z3M,Z3P"},
    {OPEN, ALL, 1, "_open.out", "  LOG10(FN) FN Zopen Z1M,Z1P"},
    {OPEN, ALL, 2, "_open.out", "  LOG10(FN) FN Zopen Z1M,Z1P,Z2M,Z2P"},
    {OPEN, ALL, 3, "_open.out", "  LOG10(FN) FN Zopen Z1M,Z1P,Z2M,Z2P,Z3M,Z3P"},

    {GDIS, MODAL, 3, "_gdis.out", "  LOG10(FN) FN VASHORT(M,PHI), VBSHORT, VCSHORT"},
    {GDIO, MODAL, 3, "_gdio.out", "  LOG10(FN) FN VAOPEN(M,PHI), VBOPEN, VCOPEN"},
};

unsigned modelOfRun() {
  const ModelChoice& M = RUNDATA.model;
  if (M.MODFDM()) return MODECURVES;
  if (M.MODFDP()) return PHASECURVES;
  return M.MODMFDTD() ? SERIESCURVES : 0;
}

bool fitsRun(const CurveRow& row) {
  const bool overhead = RUNDATA.run.ISCABLE == OVERHEADLINE;
  if ((row.models & modelOfRun()) == 0) return false;
  return row.conductors == ANYCONDUCTORS || (overhead && row.conductors == RUNDATA.line.NC);
}

// The row of a file as this run has it; null when the run has no such file.
const CurveRow* curveRow(CurveId id) {
  if (!RUNDATA.fit.WDETAIL) return nullptr;
  for (const CurveRow& row : TABLE) {
    if (row.id == id && fitsRun(row)) return &row;
  }
  return nullptr;
}

// The name of the line up to its first blank, and the suffix, in the working directory. A slash in
// the name of the line is written as an underscore.
std::string curveName(const CurveRow& row) {
  const std::string_view field = RUNDATA.line.LNAME.whole();
  std::string name(field.substr(0, std::min(field.find(' '), field.size())));
  std::replace(name.begin(), name.end(), '/', '_');
  return name.append(row.suffix);
}

// ---- one of them

// Made with the first one: most runs have none.
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
  for (const CurveRow& row : TABLE) {
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
