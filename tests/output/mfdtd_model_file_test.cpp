// MFDTD model files read back, and their functions compared with the line.
#include "output/mfdtd_model_file.h"

#include "fit/series_fit.h"
#include "store/rundata.h"
#include "support/child.h"
#include "support/scratch.h"
#include "support/solve.h"
#include "support/whole_run.h"
#include "support/written_model.h"

using namespace lcp;
using namespace lcp::test;

TEST(MfdtdModelFile, TheFileIsTheLineToThePrintedError) {
  const std::string keys =
      "MFDTD Model Options\n{\n" + EVENWEIGHTS + "Maximum Fitting Error (%) for Series Impedance: ";
  for (const auto& [body, target] : {std::pair{singleCircuit(keys + "2\n}\n"), 2.0},
                                     {doubleCircuit(keys + "0.01\n}\n"), 0.01}}) {
    const ProgramRun run = runLine(body, "25000");
    const ModelFile file = readModel(run.files.at("a.cvo"));
    solveFirstLoop(body, 25000);
    double e = 0, z = 0;
    for (int k = 1; k < SOLVEDATA.grid.NFREQ; ++k) {
      const Dense Z = stepOf(SOLVEDATA.at.ZSTORE, k);
      const Complex s(0, SOLVEDATA.grid.WFREQ[k]);
      e = std::max(e, largest(sum(denseOf(file.Z.at(s)), Z, -1)));
      z = std::max(z, largest(Z));
    }
    const Dense Y = stepOf(SOLVEDATA.at.YSTORE, 10);
    const Wide s(0, SOLVEDATA.grid.WFREQ[10]);
    EXPECT_LT(distance(sum(denseOf(file.G), denseOf(file.C), s), Y), 1e-13);
    const double printed = std::stod(run.console.substr(run.console.find(" Actual: ") + 9));
    EXPECT_NEAR(100 * e / z, printed, 6e-5);
    EXPECT_LE(printed, target);
    EXPECT_EQ(file.Z.poles.size() == 1, target == 2.0);
    EXPECT_EQ(file.length, 25000);
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
