// The table of detail curve files: models, moment of writing, names and headings.
//
// Their numbers are written in output/curve_rows.
#pragma once

#include <string_view>

namespace lcp {

// In the order in which they are opened.
enum class CurveId {
  ZCMM, // surge impedances of the modes and their fits: magnitude
  ZCPM, // ... angle
  AMM,  // modal propagation functions with the delay removed and their fits: magnitude
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
  GDIS,    // sending-end phase voltages, far end shorted
  GDIO,    // ... far end open
  COUNT
};

// When the rows of a file are written.
enum class Moment {
  SecondLoop,     // step by step
  Line,           // phase model: before its model file; others: after it
  AdmittanceFit,  // when the fit of Yc is final
  PropagationFit, // ... of H
  SeriesFit,      // after the fit of Z
  Modes,          // mode model: after its model file
};

// Models that a file belongs to, as bits.
constexpr unsigned MODECURVES = 1;
constexpr unsigned PHASECURVES = 2;
constexpr unsigned SERIESCURVES = 4;

constexpr int ANYCONDUCTORS = 0;

struct CurveRow {
  CurveId id;
  Moment written;
  unsigned models;
  int conductors; // only for overhead lines with this many conductors, or ANYCONDUCTORS
  std::string_view suffix;
  std::string_view header;
};

constexpr unsigned MODAL = MODECURVES | PHASECURVES;
constexpr unsigned ALL = MODAL | SERIESCURVES;

// In the order in which they are written.
constexpr CurveRow CURVETABLE[] = {
    {CurveId::ZM, Moment::Line, ALL, ANYCONDUCTORS, "_zm.out",
     "  LOG10(FN) FN  Calc. Mag.: Z11, Z12 ... Z21, Z22 ... [ohms]"},
    {CurveId::ZP, Moment::Line, ALL, ANYCONDUCTORS, "_zp.out",
     "  LOG10(FN) FN  Calc. Arg.: Z11, Z12 ... Z21, Z22 ... [deg]"},
    {CurveId::YM, Moment::Line, ALL, ANYCONDUCTORS, "_ym.out",
     "  LOG10(FN) FN  Magnitudes: Y11, Y12 ... Y21, Y22 ... [mhos]"},
    {CurveId::YP, Moment::Line, ALL, ANYCONDUCTORS, "_yp.out",
     "  LOG10(FN) FN  Arguments: Y11, Y12 ... Y21, Y22 ... [deg]"},
    {CurveId::TIMP, Moment::Line, PHASECURVES, ANYCONDUCTORS, "_timp.out",
     "  LOG10(FN) FN  Magnitudes: TI11, TI12 ... TI21, TI22 ..."},
    {CurveId::TIPP, Moment::Line, PHASECURVES, ANYCONDUCTORS, "_tipp.out",
     "  LOG10(FN) FN  Arguments: TI11, TI12 ... TI21, TI22 ... [deg]"},
    {CurveId::LAMDAM, Moment::Line, MODAL, ANYCONDUCTORS, "_lamdam.out",
     "  LOG10(FN) FN  Magnitudes: Lamda11, Lamda22 ..."},
    {CurveId::LAMDAP, Moment::Line, MODAL, ANYCONDUCTORS, "_lamdap.out",
     "  LOG10(FN) FN  Arguments: Lamda11, Lamda22 ... [deg]"},

    {CurveId::ZCMM, Moment::Modes, MODECURVES, ANYCONDUCTORS, "_zcmm.out",
     "  LOG10(FN)  FN  |Z0(1-n)| Calc./Fitted [ohms]"},
    {CurveId::ZCPM, Moment::Modes, MODECURVES, ANYCONDUCTORS, "_zcpm.out",
     "  LOG10(FN)  FN  arg(Z0(1-n)) Calc./Fitted [deg]"},
    {CurveId::AMM, Moment::Modes, MODECURVES, ANYCONDUCTORS, "_amm.out",
     "  LOG10(FN)  FN  |E(-Gamma.L)| Calc./Fitted"},
    {CurveId::APM, Moment::Modes, MODECURVES, ANYCONDUCTORS, "_apm.out",
     " LOG10(FN)  FN  arg(E(-Gamma.L)) Calc./Fitted [deg]"},
    {CurveId::TIMM, Moment::Modes, MODECURVES, ANYCONDUCTORS, "_timm.out",
     "  LOG10(FN) FN  |TI(1-N,1-N)| Calc./Fitted"},
    {CurveId::TIPM, Moment::Modes, MODECURVES, ANYCONDUCTORS, "_tipm.out",
     "  LOG10(FN) FN  arg(TI(1-N,1-N)) Calc./Fitted [deg]"},
    {CurveId::ZS, Moment::Modes, ALL, 1, "_zs.out", "  LOG10(FN) FN Zseries R11,X11"},
    {CurveId::ZS, Moment::Modes, ALL, 2, "_zs.out", "  LOG10(FN) FN Zseries(R+XL) Z11,Z12,Z22"},
    {CurveId::ZS, Moment::Modes, ALL, 3, "_zs.out",
     "  LOG10(FN) FN Zseries(R+XL) Z11,Z12,Z13,Z22,Z23,Z33"},
    {CurveId::YS, Moment::Modes, ALL, 1, "_ys.out", "  LOG10(FN) FN Yshunt G11,XC11"},
    {CurveId::YS, Moment::Modes, ALL, 2, "_ys.out", "  LOG10(FN) FN Yshunt(G+XC)  Y11,Y12,Y22"},
    {CurveId::YS, Moment::Modes, ALL, 3, "_ys.out",
     "  LOG10(FN) FN Yshunt(G+XC)  Y11,Y12,Y13,Y22,Y23,Y33"},
    {CurveId::SHORTED, Moment::Modes, ALL, 1, "_short.out", "  LOG10(FN) FN Zshort Z1M,Z1P"},
    {CurveId::SHORTED, Moment::Modes, ALL, 2, "_short.out",
     "  LOG10(FN) FN Zshort Z1M,Z1P,Z2M,Z2P"},
    {CurveId::SHORTED, Moment::Modes, ALL, 3, "_short.out",
     "  LOG10(FN) FN Zshort Z1M,Z1P,Z2M,Z2P,Z3M,Z3P"},
    {CurveId::OPEN, Moment::Modes, ALL, 1, "_open.out", "  LOG10(FN) FN Zopen Z1M,Z1P"},
    {CurveId::OPEN, Moment::Modes, ALL, 2, "_open.out", "  LOG10(FN) FN Zopen Z1M,Z1P,Z2M,Z2P"},
    {CurveId::OPEN, Moment::Modes, ALL, 3, "_open.out",
     "  LOG10(FN) FN Zopen Z1M,Z1P,Z2M,Z2P,Z3M,Z3P"},

    {CurveId::YCMP, Moment::AdmittanceFit, PHASECURVES, ANYCONDUCTORS, "_ycmp.out",
     "  LOG10(FN)  FN  Calc./Fitted |Y0|  Y011c Y011f Y012c Y012f...  [mho]"},
    {CurveId::YCPP, Moment::AdmittanceFit, PHASECURVES, ANYCONDUCTORS, "_ycpp.out",
     "  LOG10(FN)  FN  Calc./Fitted arg(Y0)  Y011c Y011f Y012c Y012f...  [deg]"},
    {CurveId::HMM, Moment::PropagationFit, PHASECURVES, ANYCONDUCTORS, "_hmm.out",
     "  LOG10(FN)  FN  Calc./Fitted |Hmode| H1c, H1f, H2c, H2f ..."},
    {CurveId::HPM, Moment::PropagationFit, PHASECURVES, ANYCONDUCTORS, "_hpm.out",
     " LOG10(FN)  FN  Calc./Fitted arg(Hmode) H1c, H1f, H2c, H2f ...   [deg]"},
    {CurveId::HMP, Moment::PropagationFit, PHASECURVES, ANYCONDUCTORS, "_hmp.out",
     "  LOG10(FN)  FN  Calculated  |Hphase| H11, H12 ... H21, H22 ..."},
    {CurveId::HPP, Moment::PropagationFit, PHASECURVES, ANYCONDUCTORS, "_hpp.out",
     " LOG10(FN)  FN  Calculated  arg(Hphase) H11, H12 ... H21, H22 .. . [deg]"},

    {CurveId::ZMF, Moment::SeriesFit, SERIESCURVES, ANYCONDUCTORS, "_zmf.out",
     "  LOG10(FN) FN  Fit. Mag.: Z11, Z12 ... Z21, Z22 ... [ohms]"},
    {CurveId::ZPF, Moment::SeriesFit, SERIESCURVES, ANYCONDUCTORS, "_zpf.out",
     "  LOG10(FN) FN  Fit. Arg.: Z11, Z12 ... Z21, Z22 ... [deg]"},

    {CurveId::GDIS, Moment::SecondLoop, MODAL, 3, "_gdis.out",
     "  LOG10(FN) FN VASHORT(M,PHI), VBSHORT, VCSHORT"},
    {CurveId::GDIO, Moment::SecondLoop, MODAL, 3, "_gdio.out",
     "  LOG10(FN) FN VAOPEN(M,PHI), VBOPEN, VCOPEN"},
};

} // namespace lcp
