// Finds the steps of a solve at which two modes converged to one solution.
#pragma once

namespace lcp {

class LostModes {
public:
  // Examines step k after the second loop: eigenvalues, unit vectors and their inverse. Does
  // nothing where modes are not followed individually and for a PI section.
  void look(int k);

  // Prints one line on the error stream if such a step was found: its frequency, the modes and the
  // remedy.
  void warn() const;

private:
  int steps = 0; // number of steps found
  int first = 0; // first of them, and its two modes
  int a = 0, b = 0;
  bool doubled = false; // the modes have the same eigenvalue and vector
  double condition = 0; // condition number of the transformation at that step
};

} // namespace lcp
