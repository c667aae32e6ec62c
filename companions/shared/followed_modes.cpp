// Modes are matched by their vectors: mode i at one frequency is the mode j at another with the
// largest share |TI^-1 TI'|(i,j), each taken once. A vector has unit length and is rotated so that
// its largest element is real; its surge impedance is then gamma / (TI^-1 Y TI^-T).
#include "companions/shared/followed_modes.h"

#include "base/constants.h"

#include <algorithm>
#include <cmath>

namespace lcp::companions {

namespace {

constexpr double SAMESIZE = 1e-9; // relative; of elements that differ by less the first is taken
constexpr double EQUAL = 1e-6;    // relative distance of gamma squared of equal modes

// Equal modes may have any basis of their space; this selects the basis nearest to the reference,
// the projections of its columns. TI^-1 and the surge impedances are updated.
void takeBasis(LineModes& modes, const Matrix& reference, const LinePoint& point) {
  const std::size_t n = reference.columns;
  const auto same = [&](std::size_t i, std::size_t j) {
    const Complex a = modes.gamma[i] * modes.gamma[i], b = modes.gamma[j] * modes.gamma[j];
    return std::abs(a - b) <= EQUAL * std::abs(a);
  };
  Matrix TI = modes.TI;
  bool changed = false;
  for (std::size_t j = 0; j < n; ++j) {
    std::vector<Complex> projection(n);
    std::size_t members = 0;
    for (std::size_t k = 0; k < n; ++k) {
      if (!same(j, k)) continue;
      ++members;
      Complex share = 0;
      for (std::size_t i = 0; i < n; ++i) share += modes.TIINV(k, i) * reference(i, j);
      for (std::size_t i = 0; i < n; ++i) projection[i] += share * modes.TI(i, k);
    }
    double length = 0;
    for (const Complex& e : projection) length += std::norm(e);
    if (members < 2 || length == 0) continue;
    changed = true;
    for (std::size_t i = 0; i < n; ++i) TI(i, j) = projection[i] / std::sqrt(length);
  }
  if (!changed) return;
  modes.TI = TI;
  modes.TIINV = inverse(TI);
  formSurgeImpedances(modes, point);
}

// Rotates the vector of a mode so that its element `pivot` becomes real, and updates its surge
// impedance.
void turnColumn(LineModes& modes, std::size_t j, Complex pivot) {
  if (pivot == 0.0) return;
  const Complex factor = std::conj(pivot) / std::abs(pivot);
  for (std::size_t i = 0; i < modes.TI.rows; ++i) {
    modes.TI(i, j) *= factor;
    modes.TIINV(j, i) /= factor;
  }
  modes.Zc[j] *= factor * factor;
}

// Rotates each vector so that its largest element is real.
void turn(LineModes& modes) {
  for (std::size_t j = 0; j < modes.TI.columns; ++j) {
    Complex pivot = 0;
    for (std::size_t i = 0; i < modes.TI.rows; ++i) {
      if (std::abs(modes.TI(i, j)) > std::abs(pivot)) pivot = modes.TI(i, j);
    }
    turnColumn(modes, j, pivot);
  }
}

} // namespace

LineModes inOrderOf(const LineModes& modes, const Matrix& reference) {
  const std::size_t n = reference.columns;
  const Matrix share = product(modes.TIINV, reference);
  std::vector<bool> taken(n, false), placed(n, false);
  std::vector<std::size_t> order(n, 0);
  for (std::size_t round = 0; round < n; ++round) {
    double most = -1;
    std::size_t from = 0, to = 0;
    for (std::size_t j = 0; j < n; ++j) {
      for (std::size_t i = 0; i < n; ++i) {
        if (taken[i] || placed[j] || !(std::abs(share(i, j)) > most)) continue;
        most = std::abs(share(i, j));
        from = i;
        to = j;
      }
    }
    taken[from] = placed[to] = true;
    order[to] = from;
  }
  LineModes sorted = modes;
  for (std::size_t j = 0; j < n; ++j) {
    sorted.gamma[j] = modes.gamma[order[j]];
    sorted.Zc[j] = modes.Zc[order[j]];
    for (std::size_t i = 0; i < n; ++i) {
      sorted.TI(i, j) = modes.TI(i, order[j]);
      sorted.TIINV(j, i) = modes.TIINV(order[j], i);
    }
  }
  return sorted;
}

LineModes modesLike(const LinePoint& point, const Matrix& reference) {
  LineModes modes = inOrderOf(modesOf(point), reference);
  takeBasis(modes, reference, point);
  turn(modes);
  return modes;
}

Matrix writtenTransformation(const ModelFile& file, double f) {
  Matrix T(file.n, file.n);
  for (std::size_t i = 0; i < file.n; ++i) {
    for (std::size_t j = 0; j < file.n; ++j)
      T(i, j) = file.modes[i].row[j].at(Complex(0, TWOPI * f))(0, 0);
  }
  return T;
}

std::vector<LineModes> followed(const std::vector<LinePoint>& line, const Matrix& reference,
                                double from) {
  std::vector<LineModes> modes(line.size());
  const auto nearer = [from](const LinePoint& a, const LinePoint& b) {
    return std::fabs(std::log(a.f / from)) < std::fabs(std::log(b.f / from));
  };
  const auto start =
      static_cast<std::size_t>(std::min_element(line.begin(), line.end(), nearer) - line.begin());
  modes[start] = modesLike(line[start], reference);
  for (std::size_t k = start + 1; k < line.size(); ++k)
    modes[k] = modesLike(line[k], modes[k - 1].TI);
  for (std::size_t k = start; k-- > 0;) modes[k] = modesLike(line[k], modes[k + 1].TI);
  return modes;
}

std::vector<std::size_t> largestRows(const Matrix& TI) {
  std::vector<std::size_t> rows(TI.columns, 0);
  for (std::size_t m = 0; m < TI.columns; ++m) {
    for (std::size_t i = 1; i < TI.rows; ++i) {
      if (std::abs(TI(i, m)) > std::abs(TI(rows[m], m)) * (1 + SAMESIZE)) rows[m] = i;
    }
  }
  return rows;
}

void holdRows(std::vector<LineModes>& modes, const std::vector<std::size_t>& rows) {
  for (LineModes& M : modes) {
    for (std::size_t m = 0; m < rows.size(); ++m) turnColumn(M, m, M.TI(rows[m], m));
  }
}

} // namespace lcp::companions
