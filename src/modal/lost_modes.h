// Finds the steps of a solve at which modes ended on one solution.
#pragma once

namespace lcp {

class LostModes {
public:
  // Looks at step k behind the second loop: eigenvalues, vectors of unit length and their inverse.
  // Not where modes are not followed one by one, nor for a PI section, which has none.
  void look(int k);

  // One line on the error stream, where a step was found: its frequency, the modes and the remedy.
  void warn() const;

private:
  int steps = 0;        // that were found
  int first = 0;        // the first of them, and its modes
  int a = 0, b = 0;     // ...
  bool doubled = false; // they have one eigenvalue and one vector
  double condition = 0; // of its transformation
};

} // namespace lcp
