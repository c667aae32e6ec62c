// What a solve cannot do without, alone, over the same LAPACK and BLAS:
//   corvo_floors zgeev ORDER FREQUENCIES    all eigenvalues and vectors of a full complex matrix,
//                                           once a frequency
//   corvo_floors lsq ROWS COLUMNS SIDES ... a least-squares solution by QR for each pair
//                                           of a number of columns and one of right sides
// Prints the CPU time in seconds, that of setting up left out.
#include <algorithm>
#include <complex>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string_view>
#include <vector>

using Complex = std::complex<double>;

extern "C" {
void zgeev_(const char* jobvl, const char* jobvr, const int* n, Complex* a, const int* lda,
            Complex* w, Complex* vl, const int* ldvl, Complex* vr, const int* ldvr, Complex* work,
            const int* lwork, double* rwork, int* info, std::size_t, std::size_t);
void dgels_(const char* trans, const int* m, const int* n, const int* nrhs, double* a,
            const int* lda, double* b, const int* ldb, double* work, const int* lwork, int* info,
            std::size_t);
}

namespace {

// Numbers between -1 and 1, the same in every run.
double nextNumber() {
  static std::uint64_t state = 1;
  state = state * 6364136223846793005U + 1442695040888963407U;
  return static_cast<double>(state >> 11U) / static_cast<double>(1ULL << 52U) - 1.0;
}

double cpuSeconds() {
  timespec t{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

int failed() {
  std::fputs("corvo_floors: LAPACK finds no solution\n", stderr);
  return 1;
}

int zgeev(int n, int frequencies) {
  const auto N = static_cast<std::size_t>(n);
  const int lwork = 64 * n;
  std::vector<Complex> a(N * N);
  std::vector<Complex> w(N);
  std::vector<Complex> vectors(N * N);
  std::vector<Complex> work(static_cast<std::size_t>(lwork));
  std::vector<double> rwork(2 * N);
  double spent = 0.0;
  for (int k = 0; k < frequencies; ++k) {
    std::generate(a.begin(), a.end(), [] { return Complex(nextNumber(), nextNumber()); });
    int info = 0;
    const double start = cpuSeconds();
    zgeev_("N", "V", &n, a.data(), &n, w.data(), nullptr, &n, vectors.data(), &n, work.data(),
           &lwork, rwork.data(), &info, 1, 1);
    spent += cpuSeconds() - start;
    if (info != 0) return failed();
  }
  std::printf("%.9f\n", spent);
  return 0;
}

// CPU seconds of one solution, below 0 when LAPACK fails.
double leastSquares(int rows, int columns, int sides) {
  const auto M = static_cast<std::size_t>(rows);
  const int lwork = 64 * (columns + sides);
  std::vector<double> a(M * static_cast<std::size_t>(columns));
  std::vector<double> b(M * static_cast<std::size_t>(sides));
  std::vector<double> work(static_cast<std::size_t>(lwork));
  std::generate(a.begin(), a.end(), nextNumber);
  std::generate(b.begin(), b.end(), nextNumber);
  int info = 0;
  const double start = cpuSeconds();
  dgels_("N", &rows, &columns, &sides, a.data(), &rows, b.data(), &rows, work.data(), &lwork, &info,
         1);
  return info == 0 ? cpuSeconds() - start : -1.0;
}

int allLeastSquares(int rows, const std::vector<int>& pairs) {
  double spent = 0.0;
  for (std::size_t i = 0; i + 1 < pairs.size(); i += 2) {
    const double one = leastSquares(rows, pairs[i], pairs[i + 1]);
    if (one < 0.0) return failed();
    spent += one;
  }
  std::printf("%.9f\n", spent);
  return 0;
}

} // namespace

int main(int count, char** values) {
  const std::string_view what = count > 1 ? values[1] : "";
  std::vector<int> numbers;
  for (int i = 2; i < count; ++i) numbers.push_back(std::max(1, std::atoi(values[i])));
  if (what == "zgeev" && numbers.size() == 2) return zgeev(numbers[0], numbers[1]);
  if (what == "lsq" && numbers.size() > 2 && numbers.size() % 2 == 1)
    return allLeastSquares(numbers[0], {numbers.begin() + 1, numbers.end()});
  std::fputs("usage: corvo_floors zgeev ORDER FREQUENCIES | lsq ROWS COLUMNS SIDES ...\n", stderr);
  return 2;
}
