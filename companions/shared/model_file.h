// Reads line model files back from their text.
#pragma once

#include "companions/shared/rational.h"
#include "store/option_groups.h"

#include <string>
#include <string_view>
#include <vector>

namespace lcp::companions {

// Lumped pi circuit: half of the shunt admittance as branches at each end, and the series matrix.
struct PiFile {
  Matrix shuntC; // microfarad: element (i,j) between two conductors, (i,i) to ground
  Matrix shuntR; // ohm; 0 for no branch
  Matrix R, L;   // series resistance (ohm) and inductance (H)
};

struct BergeronMode {
  double T;        // travel time, ms
  double Zc;       // surge impedance, ohm
  double R, Rloss; // ohm/m, at the steady-state frequency and at the loss frequency
};

struct BergeronFile {
  double SSFREQ = 0, FLOSS = 0, length = 0; // Hz, Hz, m
  std::vector<BergeronMode> modes;
  Matrix TI; // column m is the vector of mode m
};

struct ModeFit {
  double delay = 0; // ms
  Rational Zc, A;   // surge impedance (ohm) and propagation function without its delay; 1 by 1
  std::vector<Rational> row; // row of the transformation, one element per mode; 1 by 1
};

struct ModelFile {
  ModelKind kind = ModelKind::None; // None: not a line model file
  std::size_t n = 0;                // conductors
  PiFile pi;
  BergeronFile bergeron;
  std::vector<ModeFit> modes;
  Rational Yc; // phase model, S
  DelayedRational H;
  Rational Z;          // MFDTD model, ohm/m
  Matrix G, C;         // S/m, F/m
  double length = 0;   // m, if the file contains it
  std::string trouble; // error message; empty if the whole file could be read
};

// Parses the text of a model file. Its kind is determined from the first line that is not a
// comment.
ModelFile parseModelFile(const std::string& text);

// Reads the file of that name; on failure `trouble` is set.
ModelFile readModelFile(const std::string& name);

// Name of a model kind in messages.
std::string_view nameOf(ModelKind kind);

// The fitted functions of a model: Yc or Z and the groups of H, or Zc, H and row of T of each mode.
struct NamedFunction {
  std::string name;
  const Rational* function;
};
std::vector<NamedFunction> functionsOf(const ModelFile& file);

} // namespace lcp::companions
