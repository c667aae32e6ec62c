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

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sstream>

using namespace lcp;
using namespace lcp::test;

TEST(MfdtdModelFile, TheFileIsTheLineToThePrintedError) {
  const std::string keys = "MFDTD Model Options\n{\n" + EVENWEIGHTS +
                           "Voltage Maximum: 550\nInfinite Line Length: 1\n"
                           "Interpolate Travel Times: 0\n"
                           "Maximum Fitting Error (%) for Series Impedance: ";
  for (const auto& [body, target] : {std::pair{singleCircuit(keys + "2\n}\n"), 2.0},
                                     {doubleCircuit(keys + "0.01\n}\n"), 0.01}}) {
    const ProgramRun run = runLine(body, "25000");
    EXPECT_EQ(run.status, 0) << run.console;
    solveFirstLoop(body, 25000);

    // Behind the flag lines numbers alone: v holds them in their order.
    const int n = RUNDATA.line.NC;
    const std::size_t t = static_cast<std::size_t>(n * (n + 1)) / 2;
    std::string text = run.files.at("a.cvo");
    const std::size_t start = text.find("MFDTD"), flags = text.find("NOINT\nINFLENGTH\n");
    for (char& c : text) c = c == '(' || c == ',' || c == ')' ? ' ' : c;
    std::istringstream in(text.substr(flags + 16));
    const std::vector<double> v(std::istream_iterator<double>(in), {});
    const auto N = static_cast<std::size_t>(v.at(2 + 4 * t));
    ASSERT_EQ(v.size(), 3 + 4 * t + 2 * N * (1 + t));
    EXPECT_EQ(text.substr(start, flags - start),
              fmt::format("MFDTD {:2} {:2}{:18}1          1 /\n", n, N, ""));
    EXPECT_EQ(v[0], 550);
    EXPECT_EQ(v[1], 25000);

    const auto complexAt = [&](std::size_t i) { return Complex(v[i], v[i + 1]); };
    const std::size_t first = 3 + 4 * t, step = 2 * (1 + t); // of a pole and its residues
    Rational f;
    for (std::size_t m = 0; m < N; ++m) f.poles.push_back(complexAt(first + m * step));
    EXPECT_EQ(badPoles(std::vector<Wide>(f.poles.begin(), f.poles.end())), 0);
    double e = 0, z = 0;
    std::size_t at = 2; // of the constant of the element
    for (int i = 1; i <= n; ++i) {
      for (int j = i; j <= n; ++j, ++at) {
        const Complex y = SOLVEDATA.at.YSTORE(10, i, j);
        EXPECT_NEAR(v[at + 2 * t], y.real(), 1e-24);
        EXPECT_NEAR(v[at + 3 * t], y.imag() / SOLVEDATA.grid.WFREQ[10], 1e-24);
        f.D = v[at];
        f.E = v[at + t];
        f.residues.clear();
        for (std::size_t m = 0; m < N; ++m)
          f.residues.push_back(complexAt(first + m * step + 2 * (at - 1)));
        for (int k = 1; k < SOLVEDATA.grid.NFREQ; ++k) {
          const Complex Z = SOLVEDATA.at.ZSTORE(k, i, j);
          e = std::max(e, std::abs(f(Complex(0, SOLVEDATA.grid.WFREQ[k])) - Z));
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
  static SeriesShunt shunt;
  formSeriesShunt(shunt);
  writeMfdtdModel(file, shunt);
  file.close();
  const std::string text = contentOf(scratch.file("a.cvo"));
  EXPECT_NE(text.find("\nMFDTD  1 **  "), std::string::npos);
  EXPECT_NE(text.find("\n0.20000000000000E+01\n-.50000000000000E+00\n**\n("), std::string::npos);
  SOLVEDATA.grid.WFREQ[4] = 0;
  EXPECT_EQ(runChild([] { formSeriesShunt(shunt); }).status, 1);
}
