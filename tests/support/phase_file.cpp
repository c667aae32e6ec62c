#include "support/phase_file.h"

#include <sstream>

namespace lcp::test {

namespace {

// The lines of the file in turn, with the first one that was not as expected.
struct Lines {
  std::istringstream in;
  std::string trouble;

  std::string next() {
    std::string l;
    if (!std::getline(in, l) && trouble.empty()) trouble = "the file ends early";
    return l;
  }
  void expect(const std::string& words) {
    const std::string l = next();
    if (l != words && trouble.empty()) trouble = "'" + l + "' instead of '" + words + "'";
  }
  long double number() {
    const std::string l = next();
    std::istringstream item(l);
    long double value = 0;
    std::string rest;
    if ((!(item >> value) || item >> rest) && trouble.empty()) trouble = "no number: " + l;
    return value;
  }
  std::size_t count() { return static_cast<std::size_t>(number()); }
  Wide complex() {
    const long double re = number();
    return {re, number()};
  }
};

Dense zeros(std::size_t n) { return Dense(n, std::vector<Wide>(n)); }

void readAdmittance(Lines& in, PhaseFile& f) {
  in.expect("Fitting parameters for the char. admittance:");
  in.expect("N.o. conductors:");
  const std::size_t n = in.count();
  f.n = static_cast<int>(n);
  in.expect("Residues and poles:");
  for (std::size_t column = 0; column < n; ++column) {
    f.yPoles.resize(in.count());
    f.yResidues.resize(f.yPoles.size(), zeros(n));
    for (std::size_t m = 0; m < f.yPoles.size(); ++m) {
      f.yPoles[m] = in.complex();
      for (std::size_t r = 0; r < n; ++r) f.yResidues[m][r][column] = in.complex();
    }
  }
  f.yConstant = zeros(n);
  for (std::size_t e = 0; e < n * n; ++e) f.yConstant[e % n][e / n] = in.number();
}

void readPropagation(Lines& in, PhaseFile& f) {
  in.expect("Fitting parameters for the propagation function:");
  in.expect("N.o. delay groups:");
  f.delays.resize(in.count());
  f.hPoles.resize(f.delays.size());
  in.expect("Time delays:");
  for (long double& d : f.delays) d = in.number();
  in.expect("Poles:");
  for (auto& group : f.hPoles) {
    group.resize(in.count());
    for (Wide& p : group) p = in.complex();
  }
  in.expect("Residues:");
  const auto n = static_cast<std::size_t>(f.n);
  for (const auto& poles : f.hPoles) {
    auto& group = f.hResidues.emplace_back(poles.size(), zeros(n));
    for (std::size_t e = 0; e < n * n; ++e) {
      for (Dense& residue : group) residue[e % n][e / n] = in.complex();
    }
  }
}

} // namespace

int badPoles(const std::vector<Wide>& poles) {
  int bad = 0;
  for (std::size_t m = 0; m < poles.size(); ++m) {
    if (poles[m].real() > 0) ++bad;
    if (poles[m].imag() == 0) continue;
    if (m + 1 == poles.size() || poles[m + 1] != std::conj(poles[m])) return bad + 1;
    ++m;
  }
  return bad;
}

PhaseFile readPhaseFile(const std::string& text) {
  PhaseFile f;
  Lines in{std::istringstream(text), ""};
  for (int i = 0; i < 6; ++i) in.next();
  readAdmittance(in, f);
  readPropagation(in, f);
  f.trouble = in.trouble;
  if (f.trouble.empty() && in.in.peek() != EOF) f.trouble = "more lines: " + in.next();
  return f;
}

Dense PhaseFile::Yc(Wide s) const {
  Dense Y = yConstant;
  for (std::size_t m = 0; m < yPoles.size(); ++m)
    Y = sum(Y, yResidues[m], Wide(1) / (s - yPoles[m]));
  return Y;
}

Dense PhaseFile::H(Wide s) const {
  Dense all = zeros(static_cast<std::size_t>(n));
  for (std::size_t g = 0; g < delays.size(); ++g) {
    const Wide delay = std::exp(-s * delays[g]);
    for (std::size_t m = 0; m < hPoles[g].size(); ++m)
      all = sum(all, hResidues[g][m], delay / (s - hPoles[g][m]));
  }
  return all;
}

int PhaseFile::badPoles() const {
  int bad = test::badPoles(yPoles);
  for (const auto& group : hPoles) bad += test::badPoles(group);
  return bad;
}

} // namespace lcp::test
