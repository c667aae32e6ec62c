// Command line -> description file -> one solve per length step -> closing message.
#include "run/lcpmain.h"

#include "base/console.h"
#include "base/solve_error.h"
#include "base/stop.h"
#include "input/reader.h"
#include "run/command_line.h"
#include "run/input_guard.h"
#include "run/manual_driver.h"
#include "run/output_names.h"
#include "run/solve_driver.h"
#include "store/rundata.h"

#include <cmath>
#include <new>
#include <xmmintrin.h>

namespace lcp {

namespace {

constexpr unsigned FLUSHTOZERO = 0x8000; // bits of the SSE control register
constexpr unsigned DENORMALSAREZERO = 0x0040;

void printBanner() {
  console::line("Line Constants Program for the ORVEX V5");
  console::line("Build: 2022.10.28");
  console::line();
}

void checkLength(double length) {
  if (length > 0.0 && std::isfinite(length)) return;
  console::line("ERROR: A valid line length must be provided.");
  console::line("       LCP ending...");
  stop(1);
}

// Prints the numerical options that are on; nothing if there are none.
void printNumericalOptions() {
  const NumericalOptions& N = RUNDATA.numerics;
  if (!N.any()) return;
  console::print(" Numerical Options:{}{}{}{}", N.IMPROVEDMODES ? " Improved Modes" : "",
                 N.IMPROVEDFITS ? " Improved Fits" : "",
                 N.IMPROVEDPASSIVITY ? " Improved Passivity" : "",
                 N.IMPROVEDEARTH ? " Improved Earth" : "");
}

[[noreturn]] void unknownRoute() {
  console::line("***  corvo.exe ERROR ***");
  console::print("Unknown Data Entry Format: {}", RUNDATA.run.DATAFMT);
  stop(1);
}

} // namespace

void solveStep() {
  switch (RUNDATA.run.DATAFMT) {
  case ROUTECONSTANTS:
  case ROUTEMULTIPLE: QUENT(); break;
  case ROUTEMANUAL: runManualLine(); break;
  default: unknownRoute();
  }
}

void flushDenormals() { _mm_setcsr(_mm_getcsr() | FLUSHTOZERO | DENORMALSAREZERO); }

void LCPMAIN(std::span<char* const> arguments) {
  flushDenormals();
  std::set_new_handler(stopWithoutMemory);
  console::prepare();
  printBanner();
  const CommandLine line = scanCommandLine(arguments);
  checkLength(line.length);
  RunControl& R = RUNDATA.run;
  R.LINELEN = line.length;
  R.FNAME = line.fileName;
  const BaseName base = chooseBaseName(R);
  READTLDATA();
  printNumericalOptions();
  guardInputs(base, line.steps);
  for (int k = 1; k <= line.steps; ++k) {
    nameOutputs(R, base, k, line.steps);
    if (k != 1) R.LINELEN += line.increment;
    checkLength(R.LINELEN);
    solveStep();
  }
  console::line();
  console::line("LCP solve constants complete.");
  stop(R.WARNFLAG ? 2 : 0);
}

} // namespace lcp
