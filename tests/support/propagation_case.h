// Artificial propagation functions: samples in the solve store, and independent evaluation of the
// model.
#pragma once

#include "store/fitmodel.h"
#include "support/overhead_lines.h"

#include <functional>
#include <vector>

namespace lcp::test {

// NS frequencies from low to high, rad/s, evenly spaced in the logarithm, with weights of 1.
void laySampleGrid(int NS, double low, double high);

struct GroupPoles {
  double tau;
  std::vector<Complex> poles;
};

// Sets poles and delays of FITMODEL; no residues.
void setGroups(int NC, const std::vector<GroupPoles>& groups);

// Sets residues of all elements, below the magnitude of their poles; those of pairs are conjugates.
void setRandomResidues(LineNumbers& numbers);

using ElementFunction = std::function<Complex(int r, int c, Complex s)>;

// Sets samples of H, of the order in FITMODEL.
void sampleH(const ElementFunction& H);
void sampleModelOfH(); // samples of the current model

// The model of H, evaluated independently.
Wide modelOfH(int r, int c, Wide s);

struct MeasuredFit {
  double largest = 0; // deviation of model and samples at a grid frequency
  double rms = 0;     // of the element where it is largest
  double ratio = 0;   // largest |residue / pole| of a real pole
};
MeasuredFit measureFit();

// Largest deviation of the model at s = 0 from H, over the largest element of H.
double dcDeviation(const RealMatrix& H);

// Real parts of the eigenvalues of the real part of A.
std::vector<double> realEigenvalues(const Dense& A);

} // namespace lcp::test
