#include "support/phase_file.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>

namespace lcp::test {

Numbers::Numbers(const std::string& text, const std::string& from) {
  std::string words = text.substr(std::min(text.find(from), text.size()));
  std::replace_if(
      words.begin(), words.end(), [](char c) { return c == '(' || c == ',' || c == ')'; }, ' ');
  std::istringstream in(words);
  for (std::string word; in >> word;) {
    char* end = nullptr;
    const long double value = std::strtold(word.c_str(), &end);
    if (*end == '\0') all.push_back(value);
  }
}

long double Numbers::number() {
  early = early || left() == 0;
  return early ? 0 : all[at++];
}

Wide Numbers::complex() {
  const long double re = number();
  return {re, number()};
}

namespace {

Dense zeros(std::size_t n) { return Dense(n, std::vector<Wide>(n)); }

void readAdmittance(Numbers& in, PhaseFile& f) {
  const std::size_t n = in.count();
  f.n = static_cast<int>(n);
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

void readPropagation(Numbers& in, PhaseFile& f) {
  const auto n = static_cast<std::size_t>(f.n);
  f.delays.resize(in.count());
  f.hPoles.resize(f.delays.size());
  for (long double& d : f.delays) d = in.number();
  for (auto& group : f.hPoles) {
    group.resize(in.count());
    for (Wide& p : group) p = in.complex();
  }
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
  Numbers in(text, "Fitting parameters");
  readAdmittance(in, f);
  readPropagation(in, f);
  if (in.early || in.left() > 0 || f.n == 0) f.trouble = "too few or too many numbers\n" + text;
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
