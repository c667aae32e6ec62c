// Lines whose fits are not passive, mended by the program, and looked at from the model file alone:
// the whole spectrum of the nodal admittance at ten times as many frequencies as the enforcement's.
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

extern "C" void zheev_(const char* jobz, const char* uplo, const int* n, std::complex<double>* a,
                       const int* lda, double* w, std::complex<double>* work, const int* lwork,
                       double* rwork, int* info, std::size_t, std::size_t);

namespace {

void addHermitianSpectrum(std::vector<double>& all, const Dense& P) {
  const int n = static_cast<int>(P.size()), lwork = 64 * n;
  std::vector<std::complex<double>> a, work(static_cast<std::size_t>(lwork));
  std::vector<double> w(P.size()), rwork(3 * P.size());
  for (std::size_t c = 0; c < P.size(); ++c) {
    for (std::size_t r = 0; r < P.size(); ++r)
      a.emplace_back((P[r][c] + std::conj(P[c][r])) / 2.0L);
  }
  int info = 0;
  zheev_("N", "U", &n, a.data(), &n, w.data(), work.data(), &lwork, rwork.data(), &info, 1, 1);
  all.insert(all.end(), w.begin(), w.end());
}

struct Worst {
  double all = 1, seen = 1; // smallest eigenvalue: of all, of the half of smallest magnitude, S
};

// Eigenvalues of the ends driven alike and against each other, together those of both ends.
Worst scan(const PhaseFile& file, double low, double high, int n) {
  Worst worst;
  for (int i = 0; i < n; ++i) {
    const double f = low * std::pow(high / low, i / (n - 1.0));
    const Wide s(0, 2 * std::numbers::pi_v<long double> * f);
    const Dense H = file.H(s), Yc = file.Yc(s), I = identity(H.size());
    const Dense ratio = product(inverse(sum(I, H)), sum(I, H, -1));
    std::vector<double> w;
    addHermitianSpectrum(w, product(ratio, Yc));
    addHermitianSpectrum(w, product(inverse(ratio), Yc));
    std::sort(w.begin(), w.end(), [](double a, double b) { return std::fabs(a) < std::fabs(b); });
    worst.all = std::min(worst.all, *std::min_element(w.begin(), w.end()));
    worst.seen = std::min(worst.seen, *std::min_element(w.begin(), w.begin() + file.n));
  }
  return worst;
}

// Model section of a fit to that error, in per cent, and of its enforcement over 300 points.
std::string fitOf(double error, const std::string& more = "") {
  return phaseModel("Weighting Factor 1: 1\nWeighting Factor 2: 1\nWeighting Factor 3: 1\n" + more +
                    fmt::format("Maximum Fitting Error (%) for Attenuation Constant: {}\n", error));
}

struct Asked {
  double low = 0.5, high = 1e6, iterations = 8, error = 5, tolerance = 1e-9;
};

std::string keys(const Asked& a) {
  return fmt::format(
      "Lower frequency for passivity check: {}\nUpper frequency for passivity check: "
      "{}\nMaximum iterations for passivity: {}\nMaximum relative error for passivity: "
      "{}\nEigenvalue tolerence: {}\nFrequency increments for passivity check: 300\n",
      a.low, a.high, a.iterations, a.error, a.tolerance);
}

struct Model {
  std::string console, text;
  PhaseFile file;
};

Model run(const std::string& body, double length) {
  const Scratch scratch;
  const bool cable = body.find("Coax Cable") != std::string::npos;
  const std::string name = cable ? "a.cbi" : "a.cvi", model = cable ? "a.cbo" : "a.cvo";
  scratch.file(name, description(body));
  ProgramRun r = runProgram({"/file", name, "/length", fmt::format("{}", length)}, scratch.path());
  EXPECT_EQ(r.status, 0) << r.console;
  return {r.console, r.files[model], readPhaseFile(r.files[model])};
}

std::string single(const std::string& m) { return singleCircuit(m, "ShuntConductance: 1e-11\n"); }

std::string onRock(const std::string& m) {
  return single(fmt::format("Line Constants Ground Data\n{{\nGroundResistivity: 10000\n}}\n{}", m));
}

// Three single-core cables laid flat, with more lines for each.
std::string cables(const std::string& more, const std::string& m) {
  std::string text = summary(3);
  for (int c = 1; c <= 3; ++c) {
    text += fmt::format(
        "Coax Cable\n{{\nCable Number: {}\nP1: {} 1.3\nLayers: 3\nConductor Outer Radius: 0.0195\n"
        "Conductor Resistivity: 1.7e-8\nConductor Permeability: 1\nInsulator 1 Outer Radius: "
        "0.0378\n"
        "Insulator 1 Relative Permittivity: 2.9\nInsulator 1 Relative Permeability: 1\n"
        "Sheath Outer Radius: 0.038\nSheath Resistivity: 2.8e-8\nSheath Permeability: 1\n"
        "Insulator 2 Outer Radius: 0.0425\nInsulator 2 Relative Permittivity: 2.3\n"
        "Insulator 2 Relative Permeability: 1\nCable Group: 1\n{}}}\n",
        c, 0.3 * c, more);
  }
  return text +
         "Line Constants Ground Data\n{\nGroundResistivity: 100\nEarthUImpedanceFormula: 2\n}\n" +
         m;
}

std::string crossbonded(const std::string& m) { return cables("Conductor 2 Crossbonded: 1\n", m); }

std::string grounded(const std::string& m) { return cables("Ground Last Layer: 1\n", m); }

bool has(const Model& m, const char* words) { return m.console.find(words) != std::string::npos; }

} // namespace

TEST(EnforcedLines, ArePassiveBetweenThePointsOfTheGrid) {
  struct Case {
    const char* what;
    std::string (*body)(const std::string&);
    double length, fitError;
    double before; // largest violation of the fit, S
    double left;   // ... of the mended model, between the points
  };
  const Case cases[] = {{"single circuit, long", single, 1e5, 0.2, 2.5e-7, 0},
                        {"single circuit, four poles", single, 1e5, 5, 1.2e-4, 1e-7},
                        {"single circuit, short", single, 1e3, 2, 2e-3, 0},
                        {"double circuit", doubleCircuit, 1e4, 2, 1.5e-5, 0},
                        {"double circuit, long, few poles", doubleCircuit, 4e5, 5, 5e-6, 0},
                        {"poor soil", onRock, 1.8e4, 1, 1e-6, 0},
                        {"crossbonded cables", crossbonded, 1.5e4, 0.2, 1e-6, 5e-8},
                        {"cables with grounded sheaths", grounded, 5e3, 1, 1e-7, 2e-8}};
  for (const Case& c : cases) {
    const Model fitted = run(c.body(fitOf(c.fitError)), c.length);
    const Model mended = run(c.body(fitOf(c.fitError, keys({}))), c.length);
    EXPECT_TRUE(has(mended, "Passivity is sucessfully enforced")) << c.what;
    EXPECT_LT(scan(fitted.file, 0.5, 1e6, 300).all, -c.before) << c.what;
    EXPECT_GE(scan(mended.file, 0.5, 1e6, 3000).all, -c.left) << c.what;
  }
}

TEST(EnforcedLines, KeepTheFitWhenItIsNotImproved) {
  const Model fitted = run(single(fitOf(5)), 1e5);
  const Asked hidden{760, 900};
  for (const Asked& a : {Asked{0.5, 1e6, 8, 0.01},     // the change that mends it is larger
                         Asked{0.5, 1e6, 0},           // no iteration
                         Asked{0.5, 1e6, 8, 5, -1e-9}, // lifts to less than the scan asks for
                         Asked{1e4, 1e6}, hidden}) {   // no violation is found
    const Model m = run(single(fitOf(5, keys(a))), 1e5);
    EXPECT_TRUE(m.text == fitted.text) << a.error << " " << a.iterations << " " << a.low;
    EXPECT_FALSE(has(m, "Checking for Passivity"));
    EXPECT_EQ(has(m, "There are no passivity violations  \n"), a.low > 0.5);
  }
  // In the hidden range the half of the eigenvalues that the enforcement looks at is positive, and
  // the largest of the other half is not.
  const Worst worst = scan(fitted.file, hidden.low, hidden.high, 50);
  EXPECT_GT(worst.seen, 1e-6);
  EXPECT_NEAR(worst.all, -1.31e-4, 1e-6);
}

TEST(EnforcedLines, ConsoleTellsTheCourse) {
  const Model m = run(single(fitOf(2, keys({}))), 1e5);
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
  bool improved = true;
  const std::string told = consoleOf([&] { improved = PASSENF({}, FreqCurve{}, 3); });
  EXPECT_FALSE(improved);
  EXPECT_NE(told.find(" The passivity enforcement takes transfer functions of order 500 at most.\n"
                      " The model stays as it was fitted.\n Time elapsed "),
            std::string::npos);
}
