// Lines whose fits are not passive, mended by the program, and looked at from the model file alone:
// the whole spectrum of the nodal admittance at ten times as many frequencies as the enforcement's.
#include "kernels/lapack.h"
#include "made_up_model.h"
#include "passivity/enforcement.h"
#include "support/console_capture.h"
#include "support/description.h"
#include "support/phase_file.h"
#include "support/scratch.h"
#include "support/solve.h"
#include "support/whole_run.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <numbers>
#include <regex>

using namespace lcp;
using namespace lcp::test;

namespace {

// Adds the eigenvalues of the Hermitian part, each twice: those of [Re -Im; Im Re].
void addSpectrum(std::vector<double>& all, const Dense& P) {
  static SquareStore<double, NPMAX> G;
  static Table<double, NPMAX> re, im;
  const std::size_t n = P.size();
  for (std::size_t k = 0; k < 4 * n * n; ++k) {
    const std::size_t i = k / (2 * n), j = k % (2 * n);
    const Wide h = (P[i % n][j % n] + std::conj(P[j % n][i % n])) / 2.0L;
    const long double part = i / n == j / n ? h.real() : i < n ? -h.imag() : h.imag();
    G.elements[j * NPMAX + i] = static_cast<double>(part);
  }
  DGEEV(G, static_cast<int>(2 * n), re, im);
  all.insert(all.end(), re.data(), re.data() + 2 * n);
}

struct Worst {
  double all = 1, seen = 1; // smallest eigenvalue: of all, of the half of smallest magnitude, S
};

// Eigenvalues of the ends driven alike and against each other, together those of both ends.
Worst scan(const PhaseFile& file, double low, double high, int n) {
  const auto smaller = [](double a, double b) { return std::fabs(a) < std::fabs(b); };
  Worst worst;
  for (int i = 0; i < n; ++i) {
    const double f = low * std::pow(high / low, i / (n - 1.0));
    const Wide s(0, 2 * std::numbers::pi_v<long double> * f);
    const Dense H = file.H(s), Yc = file.Yc(s), I = identity(H.size());
    const Dense ratio = product(inverse(sum(I, H)), sum(I, H, -1));
    std::vector<double> w;
    addSpectrum(w, product(ratio, Yc));
    addSpectrum(w, product(inverse(ratio), Yc));
    std::sort(w.begin(), w.end(), smaller);
    worst.all = std::min(worst.all, *std::min_element(w.begin(), w.end()));
    worst.seen = std::min(worst.seen, *std::min_element(w.begin(), w.begin() + 2 * file.n));
  }
  return worst;
}

// Model section of a fit to that error, in per cent.
std::string fitOf(double error, const std::string& more = "") {
  return phaseModel("Weighting Factor 1: 1\nWeighting Factor 2: 1\nWeighting Factor 3: 1\n" + more +
                    fmt::format("Maximum Fitting Error (%) for Attenuation Constant: {}\n", error));
}

// ... and of its enforcement over 300 points.
std::string mendedFit(double error, double low = 0.5, double high = 1e6, int iterations = 8,
                      double most = 5, double tolerance = 1e-9) {
  return fitOf(error, fmt::format("Lower frequency for passivity check: {}\n"
                                  "Upper frequency for passivity check: {}\n"
                                  "Maximum iterations for passivity: {}\n"
                                  "Maximum relative error for passivity: {}\n"
                                  "Eigenvalue tolerence: {}\n"
                                  "Frequency increments for passivity check: 300\n",
                                  low, high, iterations, most, tolerance));
}

struct Model {
  std::string console, text;
  PhaseFile file;
};

Model run(const std::string& text, double length) {
  const Scratch scratch;
  const bool cable = text.find("Coax Cable") != std::string::npos;
  const std::string name = cable ? "a.cbi" : "a.cvi", model = cable ? "a.cbo" : "a.cvo";
  scratch.file(name, text);
  ProgramRun r = runProgram({"/file", name, "/length", fmt::format("{}", length)}, scratch.path());
  EXPECT_EQ(r.status, 0) << r.console;
  return {r.console, r.files[model], readPhaseFile(r.files[model])};
}

std::string single(const std::string& model) {
  return description(singleCircuit(model, "ShuntConductance: 1e-11\n"));
}

// The crossbonded cables of the example.
std::string cables(const std::string& model) {
  const std::string text = contentOf(std::filesystem::path(CORVO_EXAMPLES) / "singlecore.cbi");
  return text.substr(0, text.find("Frequency Dep. (Phase)")) + model + "END-OF-CORVO-INPUT-DATA\n";
}

bool has(const Model& m, const char* words) { return m.console.find(words) != std::string::npos; }

} // namespace

TEST(EnforcedLines, ArePassiveBetweenThePointsOfTheGrid) {
  struct Case {
    std::string text;
    double length;
    double left; // largest violation between the points, S
  };
  const Case cases[] = {{single(mendedFit(0.2)), 1e5, 0},
                        {single(mendedFit(5)), 1e5, 1e-7}, // four poles
                        {description(doubleCircuit(mendedFit(2))), 1e4, 0},
                        {cables(mendedFit(0.2)), 1.5e4, 5e-8}};
  for (const Case& c : cases) {
    const Model mended = run(c.text, c.length);
    EXPECT_TRUE(has(mended, "Passivity is sucessfully enforced")) << &c - cases;
    EXPECT_GE(scan(mended.file, 0.5, 1e6, 3000).all, -c.left) << &c - cases;
  }
}

TEST(EnforcedLines, KeepTheFitWhenItIsNotImproved) {
  const Model fitted = run(single(fitOf(5)), 1e5);
  const std::string notMended[] = {
      mendedFit(5, 0.5, 1e6, 8, 0.01),     // the change that mends it is larger
      mendedFit(5, 0.5, 1e6, 0),           // no iteration
      mendedFit(5, 0.5, 1e6, 8, 5, -1e-9), // lifts to less than the scan asks for
      mendedFit(5, 1e4, 1e6),              // no violation is found ...
      mendedFit(5, 760, 900),              // ... or seen
  };
  for (const std::string& model : notMended) {
    const auto i = &model - notMended;
    const Model m = run(single(model), 1e5);
    EXPECT_TRUE(m.text == fitted.text) << i;
    EXPECT_FALSE(has(m, "Checking for Passivity"));
    EXPECT_EQ(has(m, "There are no passivity violations  \n"), i >= 3);
  }
  // There the half of the eigenvalues that the enforcement looks at is positive, and the largest of
  // the other half is not.
  const Worst worst = scan(fitted.file, 760, 900, 50);
  EXPECT_GT(worst.seen, 1e-6);
  EXPECT_NEAR(worst.all, -1.31e-4, 1e-6);
}

TEST(EnforcedLines, ConsoleTellsTheCourse) {
  const Model m = run(single(mendedFit(2)), 1e5);
  const std::size_t from = m.console.find("    Passivity Enforcement");
  ASSERT_NE(from, std::string::npos) << m.console;
  std::string told = m.console.substr(from, m.console.find("\n RXB") - from);
  told = std::regex_replace(told, std::regex("  [0-9]\\.[0-9]{7}E[+-][0-9]{2}"), "  F");
  told = std::regex_replace(told, std::regex("-[0-9]\\.[0-9]{7}E[+-][0-9]{2}"), "-V");
  told = std::regex_replace(told, std::regex("[0-9]+\\.[0-9e.-]+"), "R");
  const std::string equals = fmt::format(" {:=>68}", ""), rule = fmt::format("  {:->68} ", "");
  const char* expected =
      "    Passivity Enforcement \n{0}\n"
      "  Optimization via Spectral Residue Pertubation            \n"
      "  of propagation matrix            \n  Number of ports                             3\n"
      "  Order of the transfer function             13\n      \n{1}\n"
      "   Main Iteration  #   1\n{1}\n Initial passivity violations  \n"
      "    Frequency [Hz]         Negative eigenvalue minimas\n"
      "    ..............           ............ \n        F       -V\n        F       -V\n"
      "    ...........   \n  Model Order reduction \n  Original     9, Reduced     9\n  \n"
      "    Inner Iteration  #  1\n  \n"
      " There are no passivity violations. Passivity is sucessfully enforced  \n{1}\n"
      "  Maximum abs. error  R %\n Time elapsed  R  [sec]\n{0}\n";
  EXPECT_EQ(told, fmt::format(fmt::runtime(expected), equals, rule));
}

TEST(EnforcedLines, TooManyPolesAreNoLongerEnforced) {
  setMadeUpModel(1, 2, 2);
  FITMODEL.NGROUP = 6;
  for (int g = 1; g <= 6; ++g) FITMODEL.NH[g] = 84; // 504
  PASSSETH();
  const std::string told = consoleOf([&] { EXPECT_FALSE(PASSENF({}, {}, 3)); });
  EXPECT_NE(told.find(" The passivity enforcement takes transfer functions of order 500 at most.\n"
                      " The model stays as it was fitted.\n Time elapsed "),
            std::string::npos);
}
