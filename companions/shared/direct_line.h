// Computes the line directly at any frequency, without a grid and without a fit.
//
// The constants come from the program's own routines, modes and phase functions from an eigenvalue
// decomposition.
#pragma once

#include "companions/shared/rational.h"

#include <vector>

namespace lcp::companions {

struct LinePoint {
  double f = 0; // Hz
  Matrix Y, Z;  // S/m, ohm/m
};

// Modes of the line: Y Z = TI diag(gamma^2) TI^-1, with columns of TI of unit length.
struct LineModes {
  std::vector<Complex> gamma; // propagation constants, 1/m, Re >= 0
  std::vector<Complex> Zc;    // surge impedances, ohm
  Matrix TI, TIINV;
  double condition = 0; // of TI: |TI| |TI^-1|, large if two vectors are nearly parallel
};

// Characteristic admittance and propagation matrix of the phases, for current waves over the line
// length.
struct PhaseFunctions {
  Matrix Yc; // S
  Matrix H;
};

// Number of conductors; for a cable system after its eliminations.
std::size_t lineOrder();

// Line constants at a frequency, Hz, for the description read by readHere. A fatal error of the
// program at this frequency ends the process.
LinePoint constantsOf(double f);

// While it lives, constantsOf answers from what it has computed before, as far as a limit of memory
// allows. Neither the description nor the stores of the program may change or be read meanwhile.
class KeptConstants {
public:
  KeptConstants();
  KeptConstants(const KeptConstants&) = delete;
  KeptConstants& operator=(const KeptConstants&) = delete;
  ~KeptConstants();
};

// Modes of Y Z at a point, in the order of LAPACK.
// Which of the n conductors are phases: the cores of a cable system, all conductors of another one.
// Only after the constants were computed once.
std::vector<bool> phaseConductors(std::size_t n);

LineModes modesOf(const LinePoint& point);

// Computes the surge impedances of the vectors TI: gamma / (TI^-1 Y TI^-T).
void formSurgeImpedances(LineModes& modes, const LinePoint& point);

// travelTimes: travel times of the modes over the length at frequency f, in s. nearestTo: the one
// in a list nearest to a delay.
std::vector<double> travelTimes(const LineModes& modes, double f, double length);
double nearestTo(double delay, const std::vector<double>& times);

// Yc and H at a point, for a length in m.
PhaseFunctions phaseFunctionsOf(const LinePoint& point, const LineModes& modes, double length);

// ---- small dense matrices

Matrix product(const Matrix& A, const Matrix& B);
Matrix inverse(const Matrix& A); // NaN for a singular one
Matrix identity(std::size_t n);
Matrix combined(const Matrix& A, Complex factor, const Matrix& B); // A + factor B
double largest(const Matrix& A); // largest magnitude; NaN if an element is NaN

// Eigenvalues of the Hermitian part of A, ascending.
std::vector<double> hermitianEigenvalues(const Matrix& A);

} // namespace lcp::companions
