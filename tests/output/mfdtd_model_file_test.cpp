// MFDTD model files read back, and their functions compared with the line.
#include "output/mfdtd_model_file.h"

#include "fit/series_fit.h"
#include "store/rundata.h"
#include "support/child.h"
#include "support/phase_file.h"
#include "support/sampled_functions.h"
#include "support/scratch.h"
#include "support/solve.h"
#include "support/whole_run.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

TEST(MfdtdModelFile, TheFileIsTheLineToThePrintedError) {
  const std::string keys = "MFDTD Model Options\n{\n" + EVENWEIGHTS +
                           "Voltage Maximum: 550\n"
                           "Maximum Fitting Error (%) for Series Impedance: ";
  for (const auto& [body, target] : {std::pair{singleCircuit(keys + "2\n}\n"), 2.0},
                                     {doubleCircuit(keys + "0.01\n}\n"), 0.01}}) {
    const ProgramRun run = runLine(body, "25000");
    EXPECT_EQ(run.status, 0) << run.console;
    solveFirstLoop(body, 25000);

    const int n = RUNDATA.line.NC;
    const auto t = static_cast<std::size_t>(n * (n + 1)) / 2;
    Numbers in(run.files.at("a.cvo"), "MFDTD");
    EXPECT_EQ(in.number(), n);
    const std::size_t N = in.count();
    for (const double value : {1.0, 1.0, 550.0, 25000.0}) EXPECT_EQ(in.number(), value);
    std::vector<Rational> f(t); // by rows of the upper triangle
    for (Rational& element : f) element.D = in.real();
    for (Rational& element : f) element.E = in.real();
    std::vector<long double> shunt(2 * t);
    for (long double& value : shunt) value = in.number();
    EXPECT_EQ(in.count(), N);
    std::vector<Wide> poles(N);
    for (Wide& pole : poles) {
      pole = in.complex();
      for (Rational& element : f) {
        element.poles.emplace_back(pole);
        element.residues.emplace_back(in.complex());
      }
    }
    EXPECT_TRUE(!in.early && in.left() == 0);
    EXPECT_EQ(badPoles(poles), 0);
    double e = 0, z = 0;
    for (int i = 1, at = 0; i <= n; ++i) {
      for (int j = i; j <= n; ++j, ++at) {
        const auto u = static_cast<std::size_t>(at);
        const Complex y = SOLVEDATA.at.YSTORE(10, i, j);
        EXPECT_NEAR(static_cast<double>(shunt[u]), y.real(), 1e-24);
        EXPECT_NEAR(static_cast<double>(shunt[u + t]), y.imag() / SOLVEDATA.grid.WFREQ[10], 1e-24);
        for (int k = 1; k < SOLVEDATA.grid.NFREQ; ++k) {
          const Complex Z = SOLVEDATA.at.ZSTORE(k, i, j);
          e = std::max(e, std::abs(f[u](Complex(0, SOLVEDATA.grid.WFREQ[k])) - Z));
          z = std::max(z, std::abs(Z));
        }
      }
    }
    const double printed = std::stod(run.console.substr(run.console.find(" Actual: ") + 9));
    EXPECT_NEAR(100 * e / z, printed, 6e-5);
    EXPECT_LE(printed, target);
    EXPECT_EQ(N == 1, target == 2.0);
  }
}

// A table may have fewer steps than the one of G and C, and the count of poles three digits.
TEST(MfdtdModelFile, ShortTablesAndManyPoles) {
  const Scratch scratch;
  RUNDATA.resetInput();
  RUNDATA.line.NC = 1;
  SERIESMODEL.NPZ = 100;
  SOLVEDATA.grid.NFUSE = 4;
  SOLVEDATA.grid.WFREQ[4] = 8;
  SOLVEDATA.at.YSTORE(4, 1, 1) = {2, -4};
  TextFile file;
  ASSERT_TRUE(file.open(scratch.file("a.cvo"), EarlyEnd::KEEP));
  formSeriesShunt();
  writeMfdtdModel(file);
  file.close();
  const std::string text = contentOf(scratch.file("a.cvo"));
  EXPECT_NE(text.find("\nMFDTD  1 **  "), std::string::npos);
  EXPECT_NE(text.find("\n0.20000000000000E+01\n-.50000000000000E+00\n**\n("), std::string::npos);
  SOLVEDATA.grid.WFREQ[4] = 0;
  EXPECT_EQ(runChild([] { formSeriesShunt(); }).status, 1);
}
