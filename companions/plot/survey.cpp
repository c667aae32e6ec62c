#include "companions/plot/survey.h"

#include "base/constants.h"
#include "companions/shared/captured_run.h"
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

constexpr double SAMESIZE = 1e-9; // relative difference of elements that count as symmetric
constexpr Room ROOMOFLINE = {100000, 400};
constexpr Room ROOMOFFIT = {450000, 500};

Frequencies frequenciesOf(const ModelFile& file) {
  const std::vector<FrequencyRange> ranges = fitRanges();
  const bool fitted = RUNDATA.model.fitted();
  std::vector<std::pair<double, bool>> all;
  for (const double f : ranges[0].f) all.emplace_back(f, fitted);
  for (const double f : ranges[1].f) all.emplace_back(f, false);
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

template <class Value> std::vector<Complex> overFrequency(const Survey& S, Value value) {
  std::vector<Complex> values;
  for (std::size_t k = 0; k < S.at.f.size(); ++k) values.push_back(value(k));
  return values;
}

Complex sOf(const Survey& S, std::size_t k) { return {0, TWOPI * S.at.f[k]}; }
std::string modeName(std::size_t m) { return fmt::format("mode {}", m + 1); }

Functions gammas(const Survey& S, const ModelFile& file) {
  Functions F{"gamma", "Propagation", "propagation", "1/m"};
  for (std::size_t m = 0; m < file.n; ++m) {
    Element e{
        modeName(m), overFrequency(S, [&](std::size_t k) { return S.modes[k].gamma[m]; }), {}};
    if (file.kind == ModelKind::Bergeron) {
      // Its resistance is lumped along a lossless line: R / (2 Zc) per length.
      const BergeronMode& B = file.bergeron.modes[m];
      e.model = overFrequency(
          S, [&](std::size_t k) { return B.R / (2 * B.Zc) + sOf(S, k) * MILLI * B.T / S.length; });
    }
    F.elements.push_back(std::move(e));
  }
  return F;
}

Functions surges(const Survey& S, const ModelFile& file) {
  Functions F{"Zc", "Surge impedance", "impedance", "ohm"};
  for (std::size_t m = 0; m < file.n; ++m) {
    Element e{modeName(m), overFrequency(S, [&](std::size_t k) { return S.modes[k].Zc[m]; }), {}};
    if (file.kind == ModelKind::Bergeron) {
      e.model = overFrequency(S, [&](std::size_t) { return Complex(file.bergeron.modes[m].Zc); });
    }
    F.elements.push_back(std::move(e));
  }
  return F;
}

Functions transformation(const Survey& S) {
  Functions F{"TI", "Current transformation, (conductor, mode)", "ratio", ""};
  F.reference = 1;
  std::vector<Matrix> TI;
  for (const LineModes& M : S.modes) TI.push_back(M.TI);
  F.elements = elementsOf(TI, {}, false);
  return F;
}

// Largest magnitude at the fit points.
double largestOf(const Survey& S, const std::vector<Matrix>& values) {
  double most = 0;
  for (std::size_t k = 0; k < values.size(); ++k) {
    if (S.at.ofTheFit[k]) most = std::max(most, largest(values[k]));
  }
  return most;
}

std::vector<Functions> phaseFits(const Survey& S, const ModelFile& file) {
  Functions admittance{"Yc", "Characteristic admittance Yc", "fit", "S"};
  Functions propagation{"H", "Propagation function H", "fit", ""};
  propagation.reference = 1;
  propagation.delay =
      file.H.delays.empty() ? 0 : *std::min_element(file.H.delays.begin(), file.H.delays.end());
  propagation.note = fmt::format("Angles without the shortest delay of the fit, {:.6g} ms. ",
                                 propagation.delay / MILLI);
  std::vector<Matrix> Yc, YcModel, H, HModel;
  for (std::size_t k = 0; k < S.at.f.size(); ++k) {
    const Complex s = sOf(S, k), ahead = std::exp(s * propagation.delay);
    const PhaseFunctions P = phaseFunctionsOf(S.line[k], modesOf(S.line[k]), S.length);
    Yc.push_back(P.Yc);
    YcModel.push_back(file.Yc.at(s));
    H.push_back(P.H);
    HModel.push_back(file.H.at(s));
    for (Matrix* M : {&H.back(), &HModel.back()}) {
      for (Complex& e : M->elements) e *= ahead;
    }
  }
  admittance.reference = largestOf(S, Yc);
  admittance.elements = elementsOf(Yc, YcModel, true);
  propagation.elements = elementsOf(H, HModel, false);
  return {admittance, propagation};
}

std::vector<Functions> modeFits(const Survey& S, const ModelFile& file) {
  Functions Zc{"Zc-fit", "Surge impedance Zc", "fit", "ohm"};
  Functions H{"H", "Propagation function H of the modes", "fit", ""};
  Functions T{"T", "Current transformation, (conductor, mode)", "fit", ""};
  H.reference = T.reference = 1;
  H.note = "Angles of each mode without its delay. ";
  for (std::size_t m = 0; m < file.n; ++m) {
    const ModeFit& M = file.modes[m];
    Zc.elements.push_back(
        {modeName(m), overFrequency(S, [&](std::size_t k) { return S.modes[k].Zc[m]; }),
         overFrequency(S, [&](std::size_t k) { return M.Zc.at(sOf(S, k))(0, 0); })});
    const auto wave = [&](std::size_t k) {
      return std::exp(sOf(S, k) * MILLI * M.delay - S.modes[k].gamma[m] * S.length);
    };
    H.elements.push_back({modeName(m), overFrequency(S, wave), overFrequency(S, [&](std::size_t k) {
                            return M.A.at(sOf(S, k))(0, 0);
                          })});
    for (std::size_t j = 0; j < file.n; ++j) {
      const auto fitted = [&](std::size_t k) { return M.row[j].at(sOf(S, k))(0, 0); };
      T.elements.push_back({fmt::format("({},{})", m + 1, j + 1),
                            overFrequency(S, [&](std::size_t k) { return S.modes[k].TI(m, j); }),
                            overFrequency(S, fitted)});
    }
  }
  return {Zc, H, T};
}

std::vector<Functions> seriesFits(const Survey& S, const ModelFile& file) {
  Functions Z{"Z-fit", "Series impedance Z", "fit", "ohm/m"};
  std::vector<Matrix> line, model;
  for (std::size_t k = 0; k < S.at.f.size(); ++k) {
    line.push_back(S.line[k].Z);
    model.push_back(file.Z.at(sOf(S, k)));
  }
  Z.reference = largestOf(S, line);
  Z.elements = elementsOf(line, model, true);
  return {Z};
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

Survey surveyLine(const ModelFile& file, double length) {
  Survey S;
  S.length = length;
  S.at = frequenciesOf(file);
  for (const double f : S.at.f) S.line.push_back(constantsOf(f));
  const auto [reference, from] = orderOf(file);
  S.modes = followed(S.line, reference, from);
  const std::size_t start = file.kind == ModelKind::Mode ? 0 : nearest(S.at.f, from);
  holdRows(S.modes, largestRows(S.modes[start].TI));
  return S;
}

Json constantsOf(const Survey& S) {
  Functions Z{"Z", "Series impedance", "series", ""}, Y{"Y", "Shunt admittance", "shunt", ""};
  std::vector<Matrix> series, shunt;
  for (const LinePoint& point : S.line) {
    series.push_back(point.Z);
    shunt.push_back(point.Y);
  }
  Z.elements = elementsOf(series, {}, true);
  Y.elements = elementsOf(shunt, {}, true);
  return packed({S.at.f, {}}, {Z, Y}, ROOMOFLINE);
}

Json modesOf(const Survey& S, const ModelFile& file) {
  return packed({S.at.f, {}}, {gammas(S, file), surges(S, file), transformation(S)}, ROOMOFLINE);
}

Json fitsOf(const Survey& S, const ModelFile& file) {
  if (file.kind == ModelKind::Phase) return packed(S.at, phaseFits(S, file), ROOMOFFIT);
  if (file.kind == ModelKind::Mode) return packed(S.at, modeFits(S, file), ROOMOFFIT);
  if (file.kind == ModelKind::Mfdtd) return packed(S.at, seriesFits(S, file), ROOMOFFIT);
  return nullptr;
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
