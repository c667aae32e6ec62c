// Bergeron, mode by mode: a lossless line of the surge impedance Zc and the travel time T with a
// quarter of the resistance R at each end and half in the middle. With Z = Zc + R / 4,
// h = (Zc - R / 4) / Z and the delay d,
//
//   ends driven alike            I = V (1 - d) / (Z (1 + d h))
//   ends driven against          I = V (1 + d h) / (Z (1 - d h^2))
//
// MFDTD: waves of Y Z = G + s C times Z(s). Stepped on N cells of the length x, voltages at whole
// steps and currents half a step beside them:
//
//   Yx = (2 / step sinh(a) C + cosh(a) G) x,  Zx = (2 / step sinh(a) E + cosh(a) Z') x,  a = s step
//   / 2 4 sinh(g / 2)^2 an eigenvalue of Yx Zx:  Yc = T (coth(g / 2) / 2) T^-1 Yx,  H = T exp(-g N)
//   T^-1
//
// Z' is the rest of Z, with its partial fractions by the trapezoidal rule.
#include "companions/shared/two_port.h"

#include "base/constants.h"

#include <algorithm>
#include <cmath>

namespace lcp::companions {

namespace {

constexpr double MICRO = 1e-6;
constexpr double QUARTER = 0.25;

Complex trapezoidal(Complex s, Stepping how) {
  return how.step > 0 ? 2 / how.step * std::tanh(s * (how.step / 2)) : s;
}

Complex lag(Complex s, double tau, Stepping how) {
  if (how.step == 0) return std::exp(-s * tau);
  const double steps = std::floor(tau / how.step), x = tau / how.step - steps;
  return std::exp(-s * (how.step * steps)) * (1 - x + x * std::exp(-s * how.step));
}

// T diag(d) T^T: modal admittances in phases.
Matrix toPhases(const Matrix& T, const std::vector<Complex>& d) {
  const std::size_t n = T.rows;
  Matrix Y(n, n);
  for (std::size_t m = 0; m < n; ++m) {
    for (std::size_t j = 0; j < n; ++j) {
      for (std::size_t i = 0; i < n; ++i) Y(i, j) += T(i, m) * d[m] * T(j, m);
    }
  }
  return Y;
}

// T diag(d) T^-1.
Matrix similar(const Matrix& T, const std::vector<Complex>& d, const Matrix& TINV) {
  Matrix scaled = T;
  for (std::size_t j = 0; j < T.columns; ++j) {
    for (std::size_t i = 0; i < T.rows; ++i) scaled(i, j) *= d[j];
  }
  return product(scaled, TINV);
}

PhaseFunctions phaseModel(const ModelFile& file, Complex s, Stepping how) {
  const Complex rational = trapezoidal(s, how);
  PhaseFunctions F{file.Yc.at(rational), Matrix(file.n, file.n)};
  for (std::size_t g = 0; g < file.H.groups.size(); ++g) {
    if (file.H.groups[g].poles.empty()) continue;
    F.H = combined(F.H, lag(s, file.H.delays[g], how), file.H.groups[g].at(rational));
  }
  return F;
}

PhaseFunctions modeModel(const ModelFile& file, Complex s, Stepping how) {
  const Complex rational = trapezoidal(s, how);
  Matrix T(file.n, file.n);
  std::vector<Complex> admittance, wave;
  for (std::size_t m = 0; m < file.n; ++m) {
    const ModeFit& mode = file.modes[m];
    admittance.push_back(1.0 / mode.Zc.at(rational)(0, 0));
    wave.push_back(mode.A.at(rational)(0, 0) * lag(s, MILLI * mode.delay, how));
    for (std::size_t r = 0; r < file.n; ++r) T(m, r) = mode.row[r].at(rational)(0, 0);
  }
  return {toPhases(T, admittance), similar(T, wave, inverse(T))};
}

// Of waves with Y and Z per metre, or per cell of a grid of so many cells.
PhaseFunctions waves(const LinePoint& point, double length, bool cells) {
  LineModes modes = modesOf(point);
  std::vector<Complex> slow, wave;
  for (const Complex& gamma : modes.gamma) {
    const Complex g = cells ? 2.0 * std::asinh(gamma / 2.0) : gamma;
    slow.push_back(cells ? 0.5 / std::tanh(g / 2.0) : 1.0 / g);
    wave.push_back(std::exp(-g * length));
  }
  return {product(similar(modes.TI, slow, modes.TIINV), point.Y),
          similar(modes.TI, wave, modes.TIINV)};
}

// Cells that the fastest wave, of the constant inductance and capacitance, crosses in a step or
// more.
double cellsOf(const ModelFile& file, double length, double step) {
  double fastest = 0;
  const LinePoint lossless{0, file.C, file.Z.E};
  for (const Complex& slowness : modesOf(lossless).gamma)
    fastest = std::max(fastest, 1 / std::abs(slowness));
  return std::max(1.0, std::floor(length / (fastest * step)));
}

PhaseFunctions mfdtdModel(const ModelFile& file, Complex s, double length, Stepping how) {
  if (how.step == 0) return waves({0, combined(file.G, s, file.C), file.Z.at(s)}, length, false);
  const double cells = cellsOf(file, length, how.step), x = length / cells;
  const Complex a = s * (how.step / 2), rate = 2 / how.step * std::sinh(a);
  Rational rest = file.Z;
  rest.E = Matrix();
  LinePoint cell{0, combined(file.C, 0, file.C), combined(file.Z.E, 0, file.Z.E)};
  const Matrix slow = rest.at(trapezoidal(s, how));
  for (std::size_t e = 0; e < slow.elements.size(); ++e) {
    cell.Y.elements[e] = (rate * file.C.elements[e] + std::cosh(a) * file.G.elements[e]) * x;
    cell.Z.elements[e] = (rate * file.Z.E.elements[e] + std::cosh(a) * slow.elements[e]) * x;
  }
  return waves(cell, cells, true);
}

NodalHalves bergeronHalves(const BergeronFile& B, Complex s, Stepping how) {
  std::vector<Complex> alike, against;
  for (const BergeronMode& mode : B.modes) {
    const double part = QUARTER * mode.R * B.length;
    const double Z = mode.Zc + part, h = (mode.Zc - part) / Z;
    const Complex d = lag(s, MILLI * mode.T, how);
    alike.push_back((1.0 - d) / (Z * (1.0 + d * h)));
    against.push_back((1.0 + d * h) / (Z * (1.0 - d * h * h)));
  }
  return {toPhases(B.TI, alike), toPhases(B.TI, against)};
}

NodalHalves piHalves(const ModelFile& file, Complex s) {
  const PiMatrices pi = piMatrices(file, s);
  return {pi.shunt, combined(pi.shunt, 2, inverse(pi.series))};
}

} // namespace

PiMatrices piMatrices(const ModelFile& file, Complex s) {
  PiMatrices pi{Matrix(file.n, file.n), combined(file.pi.R, s, file.pi.L)};
  for (std::size_t j = 0; j < file.n; ++j) {
    for (std::size_t i = 0; i < file.n; ++i) {
      const double R = file.pi.shuntR(i, j).real();
      const Complex y = s * MICRO * file.pi.shuntC(i, j) + (R == 0 ? 0.0 : 1 / R);
      pi.shunt(i, i) += y;
      if (i != j) pi.shunt(i, j) = -y;
    }
  }
  return pi;
}

PhaseFunctions lineFunctions(const ContinuedLine& line, Complex s, double length) {
  return waves(line.at(s), length, false);
}

bool hasFunctions(const ModelFile& file) {
  return file.kind == ModelKind::Phase || file.kind == ModelKind::Mode ||
         file.kind == ModelKind::Mfdtd;
}

PhaseFunctions modelFunctions(const ModelFile& file, Complex s, double length, Stepping how) {
  if (file.kind == ModelKind::Phase) return phaseModel(file, s, how);
  if (file.kind == ModelKind::Mode) return modeModel(file, s, how);
  return mfdtdModel(file, s, length, how);
}

NodalHalves modelHalves(const ModelFile& file, Complex s, double length, Stepping how) {
  if (file.kind == ModelKind::Pi) return piHalves(file, trapezoidal(s, how));
  if (file.kind == ModelKind::Bergeron) return bergeronHalves(file.bergeron, s, how);
  const PhaseFunctions F = modelFunctions(file, s, length, how);
  return nodalHalves(F.Yc, F.H);
}

} // namespace lcp::companions
