#include "output/fit_parameters.h"

#include "store/fitmodel.h"

#include <fmt/format.h>

namespace lcp {

namespace {

void putInteger(TextFile& file, int value) { file.line(fmt::format("{:12}", value)); }

void putReal(TextFile& file, double value) {
  file.line(Record().number(value, fmt::format(" {:.16E}", value)));
}

void putComplex(TextFile& file, Complex value) {
  putReal(file, value.real());
  putReal(file, value.imag());
}

// Pole by pole within each column.
void writeAdmittance(TextFile& file) {
  const FitModel& M = FITMODEL;
  file.line("Fitting parameters for the char. admittance:");
  file.line("N.o. conductors:");
  putInteger(file, M.NC);
  file.line("Residues and poles:");
  for (int i = 1; i <= M.NC; ++i) {
    putInteger(file, M.NPY);
    for (int m = 1; m <= M.NPY; ++m) {
      putComplex(file, M.YPOLE[m]);
      for (int r = 1; r <= M.NC; ++r) putComplex(file, M.YRES(r, i)[m]);
    }
  }
  for (int c = 1; c <= M.NC; ++c) {
    for (int r = 1; r <= M.NC; ++r) putReal(file, M.YD(r, c));
  }
}

// Element by element within each delay group.
void writePropagation(TextFile& file) {
  const FitModel& M = FITMODEL;
  file.line("Fitting parameters for the propagation function:");
  file.line("N.o. delay groups:");
  putInteger(file, M.NGROUP);
  file.line("Time delays:");
  for (int g = 1; g <= M.NGROUP; ++g) putReal(file, M.TAU[g]);
  file.line("Poles:");
  for (int g = 1; g <= M.NGROUP; ++g) {
    putInteger(file, M.NH[g]);
    for (int m = 1; m <= M.NH[g]; ++m) putComplex(file, M.HPOLE[g][m]);
  }
  file.line("Residues:");
  for (int g = 1; g <= M.NGROUP; ++g) {
    for (int c = 1; c <= M.NC; ++c) {
      for (int r = 1; r <= M.NC; ++r) {
        for (int m = 1; m <= M.NH[g]; ++m) putComplex(file, M.HRES[g](r, c)[m]);
      }
    }
  }
}

} // namespace

void FITPARMS(TextFile& file) {
  writeAdmittance(file);
  writePropagation(file);
}

} // namespace lcp
