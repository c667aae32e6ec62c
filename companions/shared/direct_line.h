// The line itself, computed directly at any frequency: the constants by the program's own routines,
// modes and phase functions by one eigenvalue decomposition, without a grid and without a fit.
#pragma once

#include "companions/shared/rational.h"

#include <vector>

namespace lcp::companions {

struct LinePoint {
  double f = 0; // Hz
  Matrix Y, Z;  // S/m, ohm/m
};

// Y Z = TI diag(gamma^2) TI^-1, columns of TI of unit length.
struct LineModes {
  std::vector<Complex> gamma; // propagation constants, 1/m, Re >= 0
  std::vector<Complex> Zc;    // surge impedances, ohm
  Matrix TI, TIINV;
  double condition = 0; // of TI: |TI| |TI^-1|, the larger the nearer two vectors
};

// Of the phases, for waves of current over the length of the line.
struct PhaseFunctions {
  Matrix Yc; // S
  Matrix H;
};

// The number of conductors, of a cable system behind its eliminations.
std::size_t lineOrder();

// The constants of the run that readHere has read, for one frequency after another. What the
// program refuses at a frequency ends the process.
LinePoint constantsOf(double f);

LineModes modesOf(const LinePoint& point);

// The surge impedances of the vectors TI, TI^-1: gamma / (TI^-1 Y TI^-T).
void formSurgeImpedances(LineModes& modes, const LinePoint& point);

// Their travel times over the length at the frequency f, s, and of a list the one nearest to a
// delay.
std::vector<double> travelTimes(const LineModes& modes, double f, double length);
double nearestTo(double delay, const std::vector<double>& times);

PhaseFunctions phaseFunctionsOf(const LinePoint& point, const LineModes& modes, double length);

// ---- small dense matrices

Matrix product(const Matrix& A, const Matrix& B);
Matrix inverse(const Matrix& A); // NaN for a singular one
Matrix identity(std::size_t n);
Matrix combined(const Matrix& A, Complex factor, const Matrix& B); // A + factor B
double largest(const Matrix& A); // magnitude; NaN when an element is none

// Eigenvalues of the Hermitian part of A, ascending.
std::vector<double> hermitianEigenvalues(const Matrix& A);

} // namespace lcp::companions
