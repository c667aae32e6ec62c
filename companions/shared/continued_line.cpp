// One support a turn, where the deviation is largest, and all weights anew: those that make the
// linearised deviation least over the samples, the last right singular vector of the Loewner
// matrix. Of its many rows, one for each sample and element, a few random sums serve: all elements
// share their singularities.
#include "companions/shared/continued_line.h"

#include "base/constants.h"
#include "kernels/lapack.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace lcp::companions {

namespace {

constexpr double PERDECADE = 30;    // samples
constexpr double GOODENOUGH = 1e-9; // relative deviation at which no more supports are taken
constexpr std::size_t MOSTSUPPORTS = 60;
constexpr std::size_t SUMS = 4; // of the elements of Y and of those of Z
constexpr int PATIENCE = 6;     // supports in a row that may bring nothing

struct Sample {
  double w;
  LinePoint point;
  std::vector<Complex> sums; // over the largest element of their matrix
};

// Multipliers of the elements in the sums.
std::vector<double> multipliers(std::size_t count) {
  std::minstd_rand next(1); // the same in every run
  std::vector<double> m(count);
  for (double& x : m) x = static_cast<double>(next()) / std::minstd_rand::max() + 0.5;
  return m;
}

void addSums(Sample& sample, const Matrix& M) {
  const std::size_t count = M.elements.size();
  const std::vector<double> by = multipliers(SUMS * count);
  const double size = largest(M);
  for (std::size_t t = 0; t < SUMS; ++t) {
    Complex sum;
    for (std::size_t e = 0; e < count; ++e) sum += by[t * count + e] * M.elements[e];
    sample.sums.push_back(sum / size);
  }
}

Sample sampleAt(double w) {
  Sample sample{w, constantsOf(w / TWOPI), {}};
  addSums(sample, sample.point.Y);
  addSums(sample, sample.point.Z);
  return sample;
}

// The weights of supports: last right singular vector of the real Loewner matrix, by its normal
// matrix; unknowns are the real parts and then the imaginary parts.
void findWeights(ContinuedLine& L, const std::vector<Sample>& samples,
                 const std::vector<std::size_t>& supports) {
  const std::size_t m = supports.size(), N = 2 * m;
  std::vector<double> normal(N * N), rows(2 * N), U(N * N), VT(N * N);
  static Table<double, LSROWS> S;
  for (const Sample& sample : samples) {
    if (std::any_of(supports.begin(), supports.end(),
                    [&](std::size_t i) { return samples[i].w == sample.w; }))
      continue;
    for (std::size_t t = 0; t < sample.sums.size(); ++t) {
      // A support has its own size, so the quotient is that of the functions themselves.
      const bool ofY = t < SUMS;
      const double own = largest(ofY ? sample.point.Y : sample.point.Z);
      for (std::size_t i = 0; i < m; ++i) {
        const Sample& support = samples[supports[i]];
        const Complex F =
            support.sums[t] * (largest(ofY ? support.point.Y : support.point.Z) / own);
        const Complex P = (sample.sums[t] - F) / Complex(0, sample.w - support.w);
        const Complex Q = (sample.sums[t] - std::conj(F)) / Complex(0, sample.w + support.w);
        const Complex re = (P + Q) * sample.w, im = Complex(0, 1) * (P - Q) * sample.w;
        rows[i] = re.real();
        rows[N + i] = re.imag();
        rows[m + i] = im.real();
        rows[N + m + i] = im.imag();
      }
      for (std::size_t c = 0; c < N; ++c) {
        for (std::size_t r = 0; r <= c; ++r)
          normal[c * N + r] += rows[r] * rows[c] + rows[N + r] * rows[N + c];
      }
    }
  }
  for (std::size_t c = 0; c < N; ++c) {
    for (std::size_t r = 0; r < c; ++r) normal[r * N + c] = normal[c * N + r];
  }
  const int n = static_cast<int>(N);
  DGESVD({normal.data(), n}, n, n, S, {U.data(), n}, {VT.data(), n});
  L.weights.clear();
  for (std::size_t i = 0; i < m; ++i)
    L.weights.emplace_back(VT[i * N + N - 1], VT[(m + i) * N + N - 1]);
}

double deviationAt(const ContinuedLine& L, const LinePoint& exact, double w) {
  const LinePoint found = L.at(Complex(0, w));
  return std::max(largest(combined(found.Y, -1, exact.Y)) / largest(exact.Y),
                  largest(combined(found.Z, -1, exact.Z)) / largest(exact.Z));
}

std::size_t worstSample(const ContinuedLine& L, const std::vector<Sample>& samples, double& worst) {
  std::size_t at = 0;
  worst = 0;
  for (std::size_t k = 0; k < samples.size(); ++k) {
    if (std::find(L.w.begin(), L.w.end(), samples[k].w) != L.w.end()) continue;
    const double e = deviationAt(L, samples[k].point, samples[k].w);
    if (e <= worst) continue;
    worst = e;
    at = k;
  }
  return at;
}

void takeSupports(ContinuedLine& L, const std::vector<Sample>& samples,
                  const std::vector<std::size_t>& supports) {
  L.w.clear();
  L.values.clear();
  for (const std::size_t i : supports) {
    L.w.push_back(samples[i].w);
    L.values.push_back(samples[i].point);
  }
  findWeights(L, samples, supports);
}

} // namespace

LinePoint ContinuedLine::at(Complex s) const {
  LinePoint sum{s.imag() / TWOPI, Matrix(n, n), Matrix(n, n)};
  Complex below;
  const auto add = [&](Complex factor, const LinePoint& p, bool conjugate) {
    for (std::size_t e = 0; e < n * n; ++e) {
      const Complex y = p.Y.elements[e], z = p.Z.elements[e];
      sum.Y.elements[e] += factor * (conjugate ? std::conj(y) : y);
      sum.Z.elements[e] += factor * (conjugate ? std::conj(z) : z);
    }
    below += factor;
  };
  for (std::size_t i = 0; i < w.size(); ++i) {
    const Complex way = s - Complex(0, w[i]);
    if (way == 0.0) return {s.imag() / TWOPI, values[i].Y, values[i].Z};
    add(weights[i] / way, values[i], false);
    add(std::conj(weights[i]) / (s + Complex(0, w[i])), values[i], true);
  }
  for (Matrix* M : {&sum.Y, &sum.Z}) {
    for (Complex& e : M->elements) e /= below;
  }
  return sum;
}

ContinuedLine continueLine(double low, double high) {
  const double decades = std::log10(high / low);
  const auto count = static_cast<std::size_t>(std::max(2.0, std::ceil(decades * PERDECADE)));
  const double ratio = std::pow(high / low, 1.0 / static_cast<double>(count));
  std::vector<Sample> samples;
  for (std::size_t k = 0; k <= count; ++k)
    samples.push_back(sampleAt(low * std::pow(ratio, static_cast<double>(k))));
  ContinuedLine L, best;
  L.n = samples[0].point.Y.rows;
  std::vector<std::size_t> supports = {0, count, count / 2};
  int idle = 0;
  double least = 0;
  while (supports.size() < MOSTSUPPORTS && idle < PATIENCE) {
    double worst = 0;
    takeSupports(L, samples, supports);
    const std::size_t at = worstSample(L, samples, worst);
    const bool better = best.n == 0 || worst < least;
    idle = better ? 0 : idle + 1;
    if (better) {
      best = L;
      least = worst;
    }
    if (worst <= GOODENOUGH) break;
    supports.push_back(at);
  }
  for (std::size_t k = 0; k < count; k += 2) {
    const double w = samples[k].w * std::sqrt(ratio);
    best.error = std::max(best.error, deviationAt(best, constantsOf(w / TWOPI), w));
  }
  return best;
}

} // namespace lcp::companions
