// The detail curve files: which there are, their names and headers.
#pragma once

#include <string>
#include <string_view>

namespace lcp {

enum class CurveId {
  ZCMM, // surge impedances of the modes and their fits: magnitude
  ZCPM, // ... angle
  AMM,  // modal propagation functions without delay and their fits: magnitude
  APM,
  TIMM, // elements of the current transformation and their fits: magnitude
  TIPM,
  YCMP, // elements of the characteristic admittance and their fits: magnitude
  YCPP,
  HMM, // functions of the delay groups and their fits: magnitude
  HPM,
  HMP, // elements of the propagation matrix and their fits: magnitude
  HPP,
  TIMP, // elements of the current transformation: magnitude
  TIPP,
  ZMF, // fitted series impedance: magnitude
  ZPF,
  LAMDAM, // squared propagation constants: magnitude
  LAMDAP,
  ZM, // series impedance: magnitude
  YM, // shunt admittance: magnitude
  ZP,
  YP,
  ZS,      // series impedance: real and imaginary parts
  YS,      // shunt admittance: real and imaginary parts
  SHORTED, // impedance of each mode with the far end shorted
  OPEN,    // ... with the far end open
  GDIS,    // input impedances of the phases, far end shorted
  GDIO,    // ... far end open
  COUNT
};

// Models that a file belongs to, as bits.
constexpr unsigned MODECURVES = 1;
constexpr unsigned PHASECURVES = 2;
constexpr unsigned SERIESCURVES = 4;

constexpr int ANYCONDUCTORS = 0;

struct CurveRow {
  CurveId id;
  unsigned models;
  int conductors; // an overhead line of so many alone, or ANYCONDUCTORS
  std::string_view suffix;
  std::string_view header;
};

// The row of a file as this run has it; null when the run has no such file.
const CurveRow* curveRow(CurveId id);

// Its name in the working directory: the name of the line up to its first blank, and the suffix. A
// slash in the name of the line is written as an underscore.
std::string curveName(const CurveRow& row);

} // namespace lcp
