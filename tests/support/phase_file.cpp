#include "support/phase_file.h"

#include "support/dense_functions.h"

#include <sstream>

namespace lcp::test {

namespace {

// The lines of the file in turn, with what was expected of them.
class Lines {
public:
  explicit Lines(const std::string& text) : in(text) {}

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
  void end() {
    std::string l;
    if (std::getline(in, l) && trouble.empty()) trouble = "more lines: " + l;
  }

private:
  std::istringstream in;
};

Dense zeros(std::size_t n) { return Dense(n, std::vector<Wide>(n)); }

void readAdmittance(Lines& in, PhaseFile& f) {
  in.expect("Fitting parameters for the char. admittance:");
  in.expect("N.o. conductors:");
  const std::size_t n = in.count();
  f.n = static_cast<int>(n);
  in.expect("Residues and poles:");
  f.yConstant = zeros(n);
  for (std::size_t column = 0; column < n; ++column) {
    const std::size_t poles = in.count();
    f.yPoles.resize(poles);
    f.yResidues.resize(poles, zeros(n));
    for (std::size_t m = 0; m < poles; ++m) {
      f.yPoles[m] = in.complex();
      for (std::size_t r = 0; r < n; ++r) f.yResidues[m][r][column] = in.complex();
    }
  }
  for (std::size_t c = 0; c < n; ++c) {
    for (std::size_t r = 0; r < n; ++r) f.yConstant[r][c] = in.number();
  }
}

void readPropagation(Lines& in, PhaseFile& f) {
  const auto n = static_cast<std::size_t>(f.n);
  in.expect("Fitting parameters for the propagation function:");
  in.expect("N.o. delay groups:");
  const std::size_t groups = in.count();
  in.expect("Time delays:");
  for (std::size_t g = 0; g < groups; ++g) f.delays.push_back(in.number());
  in.expect("Poles:");
  f.hPoles.resize(groups);
  f.hResidues.resize(groups);
  for (std::size_t g = 0; g < groups; ++g) {
    f.hPoles[g].resize(in.count());
    for (Wide& p : f.hPoles[g]) p = in.complex();
    f.hResidues[g].assign(f.hPoles[g].size(), zeros(n));
  }
  in.expect("Residues:");
  for (std::size_t g = 0; g < groups; ++g) {
    for (std::size_t c = 0; c < n; ++c) {
      for (std::size_t r = 0; r < n; ++r) {
        for (Dense& residue : f.hResidues[g]) residue[r][c] = in.complex();
      }
    }
  }
}

int badIn(const std::vector<Wide>& poles) {
  int bad = 0;
  for (std::size_t m = 0; m < poles.size(); ++m) {
    if (poles[m].real() > 0) ++bad;
    if (poles[m].imag() == 0) continue;
    if (m + 1 == poles.size() || poles[m + 1] != std::conj(poles[m])) return bad + 1;
    ++m;
  }
  return bad;
}

} // namespace

PhaseFile readPhaseFile(const std::string& text) {
  PhaseFile f;
  Lines in(text);
  for (int i = 0; i < 5; ++i) in.next();
  f.firstLine = in.next();
  readAdmittance(in, f);
  readPropagation(in, f);
  in.end();
  f.trouble = in.trouble;
  return f;
}

Dense PhaseFile::Yc(Wide s) const {
  Dense Y = yConstant;
  for (std::size_t m = 0; m < yPoles.size(); ++m) {
    Y = sum(Y, yResidues[m], Wide(1) / (s - yPoles[m]));
  }
  return Y;
}

Dense PhaseFile::H(Wide s) const {
  Dense all = zeros(static_cast<std::size_t>(n));
  for (std::size_t g = 0; g < delays.size(); ++g) {
    const Wide delay = std::exp(-s * delays[g]);
    for (std::size_t m = 0; m < hPoles[g].size(); ++m) {
      all = sum(all, hResidues[g][m], delay / (s - hPoles[g][m]));
    }
  }
  return all;
}

int PhaseFile::badPoles() const {
  int bad = badIn(yPoles);
  for (const auto& group : hPoles) bad += badIn(group);
  return bad;
}

} // namespace lcp::test
