#include "modal/manual_entries.h"

#include "base/console.h"
#include "store/rundata.h"

#include <cmath>
#include <string>

namespace lcp {

namespace {

constexpr int TWOCIRCUITS = 6;

// The sequences that mode k is made of.
struct Sources {
  bool positive, zero, mutual, ratios;
};

Sources sourcesOf(int k) {
  const ManualData& M = RUNDATA.manual;
  const int n = RUNDATA.line.NC;
  const bool sum = n >= 2 && k == 1, difference = n == TWOCIRCUITS && k == 2;
  const bool entered = M.ESTZERO == ZEROENTERED;
  const bool mutual = difference || (sum && n == TWOCIRCUITS && entered && M.MANFMT != MANSURGE);
  return {!(sum || difference) || !entered, (sum || difference) && entered, mutual,
          (sum || difference) && M.ESTZERO == ZERORATIOS};
}

class ZeroEntries {
public:
  std::string text;

  void look(std::string_view key, double value, std::string_view sequence = "") {
    if (value == 0) text += fmt::format("; {}{} is 0", sequence, key);
  }
  void look(const SequenceSurges& S, Sources from) {
    if (from.positive) lookAtSurge("+ve Sequence ", S.T1, S.ZC1);
    if (from.zero) lookAtSurge("0 Sequence ", S.T0, S.ZC0);
    if (from.mutual) lookAtSurge("0 Sequence Mutual ", S.T0M, S.ZC0M);
  }
  void look(const SequenceReactances& S, Sources from) {
    if (from.positive) lookAtReactances("+ve Sequence ", S.X1, S.XC1);
    if (from.zero) lookAtReactances("0 Sequence ", S.X0, S.XC0);
    if (from.mutual) lookAtReactances("0 Sequence Mutual ", S.X0M, S.XC0M);
  }

private:
  void lookAtSurge(std::string_view sequence, double T, double ZC) {
    look("Travel Time", T, sequence);
    look("Surge Impedance", ZC, sequence);
  }
  void lookAtReactances(std::string_view sequence, double X, double XC) {
    look("Inductive Reactance", X, sequence);
    look("Capacitive Reactance", XC, sequence);
  }
};

std::string zerosOf(int k) {
  const ManualData& M = RUNDATA.manual;
  const Sources from = sourcesOf(k);
  ZeroEntries zeros;
  if (M.MANFMT == MANPAIR) {
    for (int i = 1; i <= RUNDATA.line.NC; ++i) {
      zeros.look(fmt::format("Y({0},{0})", i), std::abs(M.YENT(i, i)));
      zeros.look(fmt::format("Z({0},{0})", i), std::abs(M.ZENT(i, i)));
    }
    return zeros.text;
  }
  if (M.MANFMT == MANSURGE) zeros.look(M.MANSEQ.SEQSURGE, from);
  if (M.MANFMT == MANOHMS) zeros.look(M.MANSEQ.SEQOHM, from);
  if (M.MANFMT == MANPERUNIT) {
    zeros.look(M.MANSEQ.SEQPU, from);
    zeros.look("Voltage Rating (kV L-L RMS)", M.VRATE);
    zeros.look("Total MVA Rating", M.MVARATE);
  }
  if (from.ratios) {
    zeros.look("Estimation Ratio for 0-Seq.-Z/+ve-Seq.-Z", M.RATIOZ);
    zeros.look("Estimation Ratio for 0-Seq.-T/+ve-Seq.-T", M.RATIOT);
  }
  return zeros.text;
}

// The sign of a NaN is omitted.
std::string number(double value) {
  return std::isnan(value) ? "NaN" : fmt::format("{:.4g}", value);
}

} // namespace

void noteManualEntries(int k, double T, double Zc, double R) {
  console::note(fmt::format("mode {} has a travel time of {} ms, a surge impedance of {} ohm and a "
                            "resistance of {} ohm/m{}",
                            k, number(T), number(Zc), number(R), zerosOf(k)));
}

} // namespace lcp
