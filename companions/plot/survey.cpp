#include "companions/plot/survey.h"

#include "base/constants.h"
#include "companions/plot/sheets.h"
#include "companions/shared/captured_run.h"
#include "companions/shared/direct_line.h"
#include "companions/shared/fit_ranges.h"
#include "companions/shared/followed_modes.h"
#include "modal/core_sequence.h"
#include "modal/line_constants.h"
#include "modal/long_line.h"
#include "modal/sequence.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr Room ROOMOFLINE = {100000, 400};
constexpr Room ROOMOFFIT = {450000, 500};
constexpr std::size_t BETWEEN = 9;        // points between two of the fit
constexpr std::size_t FEW = 8;            // conductors
constexpr std::size_t POINTSOFFEW = 1100; // of a survey, if the points of the fit leave room
constexpr std::size_t POINTSOFMANY = 450;

// All nine points between two of the fit, or some of them, evenly spread.
std::vector<double> someBetween(const std::vector<FrequencyRange>& ranges, std::size_t n) {
  const std::size_t most = n > FEW ? POINTSOFMANY : POINTSOFFEW;
  const std::size_t each = std::clamp<std::size_t>(most / ranges[0].f.size(), 2, BETWEEN + 1) - 1;
  std::vector<double> some;
  for (std::size_t k = 0; k < ranges[1].f.size(); ++k) {
    const std::size_t part = k % BETWEEN;
    if ((part + 1) * each / BETWEEN > part * each / BETWEEN) some.push_back(ranges[1].f[k]);
  }
  return some;
}

Frequencies frequenciesOf(const ModelFile& file) {
  const std::vector<FrequencyRange> ranges = fitRanges();
  const bool fitted = RUNDATA.model.fitted();
  std::vector<std::pair<double, bool>> all;
  for (const double f : ranges[0].f) all.emplace_back(f, fitted);
  for (const double f : someBetween(ranges, file.n)) all.emplace_back(f, false);
  const double low = ranges[0].f.front(), high = ranges[0].f.back();
  for (const double f : {RUNDATA.line.SSFREQ, file.bergeron.FLOSS}) {
    if (f > low && f < high) all.emplace_back(f, false);
  }
  std::sort(all.begin(), all.end());
  Frequencies at;
  for (const auto& [f, ofTheFit] : all) {
    if (!at.f.empty() && f == at.f.back()) continue;
    at.f.push_back(f);
    at.ofTheFit.push_back(ofTheFit);
  }
  return at;
}

// Reference order of the modes on the page: that of the model file, else that at the steady-state
// frequency.
std::pair<Matrix, double> orderOf(const ModelFile& file) {
  if (file.kind == ModelKind::Mode)
    return {writtenTransformation(file, RUNDATA.fit.FCT), RUNDATA.fit.FCT};
  if (file.kind == ModelKind::Bergeron) return {file.bergeron.TI, file.bergeron.SSFREQ};
  const double f =
      std::clamp(RUNDATA.line.SSFREQ, fitRanges()[0].f.front(), fitRanges()[0].f.back());
  return {modesOf(constantsOf(f)).TI, f};
}

std::size_t nearest(const std::vector<double>& f, double wanted) {
  const auto nearer = [wanted](double a, double b) {
    return std::fabs(std::log(a / wanted)) < std::fabs(std::log(b / wanted));
  };
  return static_cast<std::size_t>(std::min_element(f.begin(), f.end(), nearer) - f.begin());
}

// ---- The curves of a line

struct Sheets {
  Sheet Z, Y, gamma, Zc, TI;
  std::vector<Sheet> fit; // of a phase model Yc and H, of a mode model Zc, H and T, of MFDTD Z
};

struct Request {
  const ModelFile& file;
  double length;
  const std::vector<Finding>& findings;
};

std::vector<Sheet> phaseSheets(const Request& of, std::size_t points) {
  const std::vector<double>& delays = of.file.H.delays;
  Functions H{"H", "Propagation function H", "fit", "", 1};
  H.delay = delays.empty() ? 0 : *std::min_element(delays.begin(), delays.end());
  H.note =
      fmt::format("Angles without the shortest delay of the fit, {:.6g} ms. ", H.delay / MILLI);
  return {matrixSheet({"Yc", "Characteristic admittance Yc", "fit", "S"}, of.file.n, points, true,
                      of.findings, true),
          matrixSheet(std::move(H), of.file.n, points, true, of.findings, false)};
}

std::vector<Sheet> fitSheets(const Request& of, std::size_t points) {
  const std::size_t n = of.file.n;
  if (of.file.kind == ModelKind::Phase) return phaseSheets(of, points);
  if (of.file.kind == ModelKind::Mfdtd)
    return {matrixSheet({"Z-fit", "Series impedance Z", "fit", "ohm/m"}, n, points, true,
                        of.findings, true)};
  if (of.file.kind != ModelKind::Mode) return {};
  Functions H{"H", "Propagation function H of the modes", "fit", "", 1};
  H.note = "Angles of each mode without its delay. ";
  Functions T{"T", "Current transformation, (conductor, mode)", "fit", "", 1};
  return {modeSheet({"Zc-fit", "Surge impedance Zc", "fit", "ohm"}, n, points, true),
          modeSheet(std::move(H), n, points, true),
          matrixSheet(std::move(T), n, points, true, of.findings, false)};
}

Sheets sheetsOf(const Request& of, std::size_t points) {
  const std::size_t n = of.file.n;
  const bool own = of.file.kind == ModelKind::Bergeron;
  Functions TI{"TI", "Current transformation, (conductor, mode)", "ratio", "", 1};
  return {matrixSheet({"Z", "Series impedance", "series", ""}, n, points, false, of.findings, true),
          matrixSheet({"Y", "Shunt admittance", "shunt", ""}, n, points, false, of.findings, true),
          modeSheet({"gamma", "Propagation", "propagation", "1/m"}, n, points, own),
          modeSheet({"Zc", "Surge impedance", "impedance", "ohm"}, n, points, own),
          matrixSheet(std::move(TI), n, points, false, of.findings, false),
          fitSheets(of, points)};
}

// ---- One point of frequency

// What the functions of a point are made of.
struct Here {
  std::size_t k;
  Complex s;
  bool ofTheFit;
  const LinePoint& point;
  const LineModes& modes;
};

void takeMatrix(Sheet& sheet, Of side, std::size_t k, const Matrix& M, Complex factor = 1) {
  take(sheet, side, k, [&](std::size_t i, std::size_t j) { return M(i, j) * factor; });
}

// Of Yc and Z the deviations are relative to the largest magnitude at the points of the fit.
void enlarge(double& reference, const Here& at, const Matrix& M) {
  if (at.ofTheFit) reference = std::max(reference, largest(M));
}

void takePhaseFit(std::vector<Sheet>& fit, const Request& of, const Here& at) {
  const Complex ahead = std::exp(at.s * fit[1].functions.delay);
  const PhaseFunctions P = phaseFunctionsOf(at.point, at.modes, of.length);
  takeMatrix(fit[0], Of::Line, at.k, P.Yc);
  takeMatrix(fit[0], Of::Model, at.k, of.file.Yc.at(at.s));
  takeMatrix(fit[1], Of::Line, at.k, P.H, ahead);
  takeMatrix(fit[1], Of::Model, at.k, of.file.H.at(at.s), ahead);
  enlarge(fit[0].functions.reference, at, P.Yc);
}

// The vectors, and with them T and Zc, are turned later.
void takeModeFit(std::vector<Sheet>& fit, const Request& of, const Here& at) {
  const auto& modes = of.file.modes;
  take(fit[0], Of::Line, at.k, [&](std::size_t m, std::size_t) { return at.modes.Zc[m]; });
  take(fit[0], Of::Model, at.k,
       [&](std::size_t m, std::size_t) { return modes[m].Zc.at(at.s)(0, 0); });
  take(fit[1], Of::Line, at.k, [&](std::size_t m, std::size_t) {
    return std::exp(at.s * MILLI * modes[m].delay - at.modes.gamma[m] * of.length);
  });
  take(fit[1], Of::Model, at.k,
       [&](std::size_t m, std::size_t) { return modes[m].A.at(at.s)(0, 0); });
  takeMatrix(fit[2], Of::Line, at.k, at.modes.TI);
  take(fit[2], Of::Model, at.k,
       [&](std::size_t i, std::size_t j) { return modes[i].row[j].at(at.s)(0, 0); });
}

// The resistance of a Bergeron model is lumped along a lossless line: R / (2 Zc) per length.
void takeBergeron(Sheets& S, const Request& of, const Here& at) {
  const auto& modes = of.file.bergeron.modes;
  take(S.gamma, Of::Model, at.k, [&](std::size_t m, std::size_t) {
    return modes[m].R / (2 * modes[m].Zc) + at.s * MILLI * modes[m].T / of.length;
  });
  take(S.Zc, Of::Model, at.k, [&](std::size_t m, std::size_t) { return Complex(modes[m].Zc); });
}

void takePoint(Sheets& S, const Request& of, const Here& at) {
  takeMatrix(S.Z, Of::Line, at.k, at.point.Z);
  takeMatrix(S.Y, Of::Line, at.k, at.point.Y);
  take(S.gamma, Of::Line, at.k, [&](std::size_t m, std::size_t) { return at.modes.gamma[m]; });
  take(S.Zc, Of::Line, at.k, [&](std::size_t m, std::size_t) { return at.modes.Zc[m]; });
  takeMatrix(S.TI, Of::Line, at.k, at.modes.TI);
  if (of.file.kind == ModelKind::Bergeron) takeBergeron(S, of, at);
  if (of.file.kind == ModelKind::Phase) takePhaseFit(S.fit, of, at);
  if (of.file.kind == ModelKind::Mode) takeModeFit(S.fit, of, at);
  if (of.file.kind != ModelKind::Mfdtd) return;
  takeMatrix(S.fit[0], Of::Line, at.k, at.point.Z);
  takeMatrix(S.fit[0], Of::Model, at.k, of.file.Z.at(at.s));
  enlarge(S.fit[0].functions.reference, at, at.point.Z);
}

// Turns the vector of each mode at each point so that its element in one row is real and positive,
// as the program does: t by which it is multiplied turns the surge impedance by t^2.
void holdRows(Sheets& S, bool modeFit, const std::vector<Matrix>& TI, std::size_t from) {
  const std::vector<std::size_t> rows = largestRows(TI[from]);
  for (std::size_t k = 0; k < TI.size(); ++k) {
    std::vector<Complex> turn;
    for (std::size_t m = 0; m < rows.size(); ++m) {
      const Complex pivot = TI[k](rows[m], m);
      turn.push_back(pivot == 0.0 ? 1 : std::conj(pivot) / std::abs(pivot));
    }
    const auto turned = [&](Sheet& sheet, bool square) {
      for (std::size_t e = 0; e < sheet.places.size(); ++e) {
        const Complex t = turn[sheet.places[e].j];
        sheet.functions.elements[e].line[k] *= square ? t * t : t;
      }
    };
    turned(S.TI, false);
    turned(S.Zc, true);
    if (!modeFit) continue;
    turned(S.fit[0], true);
    turned(S.fit[2], false);
  }
}

std::vector<Functions> functionsOf(std::vector<Sheet> sheets) {
  std::vector<Functions> all;
  for (Sheet& sheet : sheets) all.push_back(std::move(sheet.functions));
  return all;
}

Json rowOf(const SequenceBlock& block, double length) {
  constexpr double MILLIHENRY = 1e3, NANO = 1e9;
  const SequenceValues& V = block.values;
  const double w = TWOPI * RUNDATA.display.DISPFREQ, perKm = KM / length;
  return {std::string(block.label), V.R, V.X, V.B, V.Zc, V.R * perKm, V.X / w * MILLIHENRY * perKm,
          V.B / w * NANO * perKm};
}

Json sequenceRows(double length) {
  static LineMatrix YLC, ZLC;
  const FirstLoopStore& S = SOLVEDATA.first;
  LoadFlowData data;
  bool LLOK = true;
  LONGCOR(S.YMAT, S.ZMAT, length, YLC, ZLC, RUNDATA.line.NC, LLOK);
  formLoadFlowData(data, S.YMAT, S.ZMAT, YLC, ZLC, LLOK);
  Json rows = Json::array();
  for (int b = 0; b < data.count; ++b) rows.push_back(rowOf(data.blocks[b], length));
  return rows;
}

} // namespace

// From the point nearest to the reference up, then from there down: each point takes the order of
// its neighbour.
Survey surveyLine(const ModelFile& file, double length, const std::vector<Finding>& findings) {
  Survey S{frequenciesOf(file), {}, {}, {}};
  const std::vector<double>& f = S.at.f;
  const Request of{file, length, findings};
  Sheets sheets = sheetsOf(of, f.size());
  const auto [reference, from] = orderOf(file);
  const std::size_t start = nearest(f, from);
  std::vector<Matrix> TI(f.size());
  const auto go = [&](std::size_t k, const Matrix& like) {
    const LinePoint point = constantsOf(f[k]);
    LineModes modes = modesLike(point, like);
    takePoint(sheets, of, {k, {0, TWOPI * f[k]}, S.at.ofTheFit[k], point, modes});
    TI[k] = std::move(modes.TI);
  };
  go(start, reference);
  for (std::size_t k = start + 1; k < f.size(); ++k) go(k, TI[k - 1]);
  for (std::size_t k = start; k-- > 0;) go(k, TI[k + 1]);
  const bool modeFit = file.kind == ModelKind::Mode;
  holdRows(sheets, modeFit, TI, modeFit ? 0 : start);
  S.constants = {std::move(sheets.Z.functions), std::move(sheets.Y.functions)};
  S.modes = {std::move(sheets.gamma.functions), std::move(sheets.Zc.functions),
             std::move(sheets.TI.functions)};
  S.fit = functionsOf(std::move(sheets.fit));
  return S;
}

Json constantsOf(const Survey& S) { return packed({S.at.f, {}}, S.constants, ROOMOFLINE); }

Json modesOf(const Survey& S) { return packed({S.at.f, {}}, S.modes, ROOMOFLINE); }

Json fitsOf(const Survey& S) {
  if (S.fit.empty()) return nullptr;
  return packed(S.at, S.fit, ROOMOFFIT);
}

Json sequencesOf(double length) {
  const double f = RUNDATA.display.DISPFREQ;
  if (RUNDATA.run.fromTable()) return Json::array();
  const Restored bases(RUNDATA.display);
  RUNDATA.display.VBASEDISP = RUNDATA.display.MVABASEDISP = 0; // in ohm and siemens
  constantsOf(f);
  if (hasLoadFlowSection()) return sequenceRows(length);
  if (!hasCoreSequences()) return Json::array();
  const Grounding own = groundSheaths(f);
  Json rows = sequenceRows(length);
  restoreSheaths(own, f);
  return rows;
}

} // namespace lcp::companions
