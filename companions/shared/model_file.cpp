#include "companions/shared/model_file.h"

#include "companions/shared/text.h"
#include "companions/shared/whole_files.h"
#include "input/free_form.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr std::size_t MOSTCONDUCTORS = 49;
constexpr std::size_t MOSTPOLES = 5000;

// The lines of a file in order. The first error is kept; everything after it reads as 0.
struct Lines {
  std::vector<std::string> all;
  std::size_t at = 0;
  std::string trouble;

  bool good() const { return trouble.empty(); }
  void fail(std::string_view why) {
    if (good()) trouble = fmt::format("line {}: {}", at, why);
  }
  bool ended() const { return at >= all.size(); }
  std::string_view peek() const { return ended() ? std::string_view() : std::string_view(all[at]); }
  std::string_view next() {
    if (ended()) fail("the file ends early");
    return ended() ? std::string_view() : std::string_view(all[at++]);
  }
};

double number(Lines& in, std::string_view text) {
  double value = 0;
  const auto first = text.find_first_not_of(' ');
  const auto last = text.find_last_not_of(' ');
  const bool good =
      first != std::string_view::npos && parseReal(text.substr(first, last - first + 1), value);
  if (!good) in.fail(fmt::format("'{}' is not a number", text));
  return value;
}

double field(Lines& in, std::string_view line, std::size_t column, std::size_t width) {
  if (line.size() < column) in.fail("the line is too short");
  return line.size() < column ? 0 : number(in, line.substr(column - 1, width));
}

std::size_t count(Lines& in, double value, std::size_t most) {
  if (value < 0 || value > static_cast<double>(most) ||
      value != static_cast<double>(static_cast<std::size_t>(value)))
    in.fail(fmt::format("{} is not a count", value));
  return in.good() ? static_cast<std::size_t>(value) : 0;
}

std::size_t countField(Lines& in, std::string_view line, std::size_t column, std::size_t width,
                       std::size_t most) {
  return count(in, field(in, line, column, width), most);
}

// The values of a line from a column on, each `width` columns wide.
std::vector<double> values(Lines& in, std::string_view line, std::size_t column,
                           std::size_t width) {
  std::vector<double> found;
  for (std::size_t at = column - 1; at < line.size(); at += width) {
    const std::string_view text = line.substr(at, width);
    if (text.find_first_not_of(" /") == std::string_view::npos) break;
    found.push_back(number(in, text));
  }
  return found;
}

void skipFlags(Lines& in) {
  while (in.peek() == "NOINT" || in.peek() == "INFLENGTH") in.next();
}

// ---- PI

void readBranch(Lines& in, std::string_view line, ModelFile& f) {
  const std::size_t i = countField(in, line, 4, 5, MOSTCONDUCTORS);
  const std::size_t j = countField(in, line, 13, 5, MOSTCONDUCTORS);
  const double value = field(in, line, 26, 16);
  if (!in.good()) return;
  if (i < 1) return in.fail("a branch of conductor 0");
  const std::size_t n = std::max({f.n, i, j});
  if (n > f.n) {
    for (Matrix* m : {&f.pi.shuntC, &f.pi.shuntR}) {
      Matrix wider(n, n);
      for (std::size_t c = 0; c < f.n; ++c) {
        for (std::size_t r = 0; r < f.n; ++r) wider(r, c) = (*m)(r, c);
      }
      *m = wider;
    }
    f.n = n;
  }
  Matrix& m = line[19] == 'C' ? f.pi.shuntC : f.pi.shuntR;
  const std::size_t to = j == 0 ? i : j;
  m(i - 1, to - 1) = m(to - 1, i - 1) = value;
}

void readSeriesRow(Lines& in, std::size_t i, ModelFile& f) {
  constexpr std::size_t WIDTH = 38; // five blanks, resistance, blank, inductance
  std::string_view line = in.next();
  std::size_t column = 21;
  for (std::size_t j = 0; j <= i; ++j, column += WIDTH) {
    if (column > line.size() && in.good()) {
      line = in.next();
      column = 1;
    }
    f.pi.R(i, j) = f.pi.R(j, i) = field(in, line, column + 5, 16);
    f.pi.L(i, j) = f.pi.L(j, i) = field(in, line, column + 22, 16);
  }
}

void readPi(Lines& in, ModelFile& f) {
  in.next(); // BRANCHES
  while (in.good() && !in.ended() && in.peek() != " TRANSFORMERS:") {
    const std::string_view line = in.next();
    if (line.size() > 25 && line[1] == 'S') readBranch(in, line, f);
  }
  in.next();
  f.pi.R = f.pi.L = Matrix(f.n, f.n);
  for (std::size_t i = 0; i < f.n && in.good(); ++i) readSeriesRow(in, i, f);
}

// ---- Bergeron

void readBergeronMode(Lines& in, std::size_t k, ModelFile& f) {
  constexpr std::size_t HEAD = 14, WIDTH = 25;
  std::vector<double> all = values(in, in.next(), HEAD, WIDTH);
  while (in.good() && all.size() < f.n + 4) {
    const std::vector<double> more = values(in, in.next(), 1, WIDTH);
    if (more.empty()) in.fail("values are missing");
    all.insert(all.end(), more.begin(), more.end());
  }
  if (!in.good()) return;
  f.bergeron.modes.push_back({all[0], all[1], all[2], all[3]});
  for (std::size_t m = 0; m < f.n; ++m) f.bergeron.TI(k, m) = all[m + 4];
}

void readBergeron(Lines& in, ModelFile& f) {
  const std::string_view head = in.next();
  f.n = countField(in, head, 2, 2, MOSTCONDUCTORS);
  f.bergeron.SSFREQ = field(in, head, 28, 16);
  f.bergeron.FLOSS = field(in, head, 44, 16);
  f.length = f.bergeron.length = field(in, head, 60, 16);
  f.bergeron.TI = Matrix(f.n, f.n);
  skipFlags(in);
  for (std::size_t k = 0; k < f.n && in.good(); ++k) readBergeronMode(in, k, f);
}

// ---- mode

std::vector<Complex> readChunks(Lines& in, std::size_t n) {
  constexpr std::size_t WIDTH = 20;
  std::vector<Complex> all;
  while (all.size() < n && in.good()) {
    const std::vector<double> re = values(in, in.next(), 1, WIDTH);
    const std::vector<double> im = values(in, in.next(), 1, WIDTH);
    if (re.empty() || re.size() != im.size()) in.fail("real and imaginary parts do not match");
    for (std::size_t i = 0; i < re.size() && in.good(); ++i) all.emplace_back(re[i], im[i]);
  }
  if (all.size() != n) in.fail("poles or residues do not match their count");
  return all;
}

Rational readFunction(Lines& in) {
  Rational F;
  const std::string_view head = in.next();
  const std::size_t n = countField(in, head, 2, 4, MOSTPOLES);
  F.D = oneByOne(field(in, head, 9, 20));
  F.poles = readChunks(in, n);
  for (const Complex& R : readChunks(in, n)) F.residues.push_back(oneByOne(R));
  return F;
}

void readModeFit(Lines& in, ModelFile& f) {
  ModeFit& mode = f.modes.emplace_back();
  in.next(); // title
  mode.delay = field(in, in.next(), 18, 19);
  in.next();
  mode.Zc = readFunction(in);
  in.next();
  mode.A = readFunction(in);
  in.next();
  for (std::size_t r = 0; r < f.n && in.good(); ++r) {
    in.next();
    mode.row.push_back(readFunction(in));
  }
}

void readModes(Lines& in, ModelFile& f) {
  f.n = countField(in, in.next(), 9, 2, MOSTCONDUCTORS);
  skipFlags(in);
  f.length = field(in, in.next(), 15, 10);
  in.next();
  for (std::size_t m = 0; m < f.n && in.good(); ++m) readModeFit(in, f);
}

// ---- phase

double realLine(Lines& in) { return number(in, in.next()); }
std::size_t countLine(Lines& in, std::size_t most) { return count(in, realLine(in), most); }
Complex complexLines(Lines& in) {
  const double re = realLine(in);
  return {re, realLine(in)};
}

void expect(Lines& in, std::string_view title) {
  if (in.next() != title) in.fail(fmt::format("'{}' expected", title));
}

void readAdmittance(Lines& in, ModelFile& f) {
  expect(in, "Fitting parameters for the char. admittance:");
  expect(in, "N.o. conductors:");
  f.n = countLine(in, MOSTCONDUCTORS);
  expect(in, "Residues and poles:");
  for (std::size_t c = 0; c < f.n && in.good(); ++c) {
    const std::size_t N = countLine(in, MOSTPOLES);
    f.Yc.poles.resize(N);
    f.Yc.residues.resize(N, Matrix(f.n, f.n));
    for (std::size_t m = 0; m < N && in.good(); ++m) {
      f.Yc.poles[m] = complexLines(in);
      for (std::size_t r = 0; r < f.n; ++r) f.Yc.residues[m](r, c) = complexLines(in);
    }
  }
  f.Yc.D = Matrix(f.n, f.n);
  for (Complex& e : f.Yc.D.elements) e = realLine(in);
}

void readPropagation(Lines& in, ModelFile& f) {
  expect(in, "Fitting parameters for the propagation function:");
  expect(in, "N.o. delay groups:");
  f.H.delays.resize(countLine(in, MOSTCONDUCTORS));
  f.H.groups.resize(f.H.delays.size());
  expect(in, "Time delays:");
  for (double& d : f.H.delays) d = realLine(in);
  expect(in, "Poles:");
  for (Rational& group : f.H.groups) {
    group.poles.resize(countLine(in, MOSTPOLES));
    for (Complex& p : group.poles) p = complexLines(in);
  }
  expect(in, "Residues:");
  for (Rational& group : f.H.groups) {
    group.residues.assign(group.poles.size(), Matrix(f.n, f.n));
    for (std::size_t e = 0; e < f.n * f.n && in.good(); ++e) {
      for (Matrix& R : group.residues) R.elements[e] = complexLines(in);
    }
  }
}

void readPhase(Lines& in, ModelFile& f) {
  f.length = field(in, in.next(), 42, 16);
  skipFlags(in);
  readAdmittance(in, f);
  readPropagation(in, f);
}

// ---- MFDTD

Complex pairLine(Lines& in) {
  const std::string_view line = in.next();
  const auto comma = line.find(',');
  if (line.size() < 3 || comma == std::string_view::npos) in.fail("a complex number expected");
  if (!in.good()) return 0;
  return {number(in, line.substr(1, comma - 1)),
          number(in, line.substr(comma + 1, line.size() - comma - 2))};
}

template <class Next> Matrix upperTriangle(std::size_t n, Next next) {
  Matrix m(n, n);
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = i; j < n; ++j) m(i, j) = m(j, i) = next();
  }
  return m;
}

void readMfdtd(Lines& in, ModelFile& f) {
  f.n = countField(in, in.next(), 7, 2, MOSTCONDUCTORS);
  skipFlags(in);
  realLine(in); // maximum voltage
  f.length = realLine(in);
  const auto real = [&in] { return Complex(realLine(in)); };
  for (Matrix* m : {&f.Z.D, &f.Z.E, &f.G, &f.C}) *m = upperTriangle(f.n, real);
  // The field is two columns wide, so a count of 100 is written as asterisks.
  const std::string_view line = in.next();
  const std::size_t N = line == "**" ? 100 : count(in, number(in, line), MOSTPOLES);
  for (std::size_t m = 0; m < N && in.good(); ++m) {
    f.Z.poles.push_back(pairLine(in));
    f.Z.residues.push_back(upperTriangle(f.n, [&in] { return pairLine(in); }));
  }
}

// ----

void readModel(Lines& in, ModelFile& f) {
  switch (f.kind) {
  case ModelKind::Pi: readPi(in, f); break;
  case ModelKind::Bergeron: readBergeron(in, f); break;
  case ModelKind::Mode: readModes(in, f); break;
  case ModelKind::Phase: readPhase(in, f); break;
  case ModelKind::Mfdtd: readMfdtd(in, f); break;
  case ModelKind::None:
  case ModelKind::Halo: break;
  }
}

} // namespace

ModelFile parseModelFile(const std::string& text) {
  ModelFile f;
  Lines in;
  in.all = linesOf(text);
  while (in.peek().starts_with('!')) in.next();
  for (const LineModel& row : LINEMODELS) {
    if (in.ended() || !in.peek().starts_with(row.fileHead)) continue;
    f.kind = row.kind;
    readModel(in, f);
    if (!in.ended()) in.fail("more lines than the model has");
    f.trouble = in.trouble;
    return f;
  }
  f.trouble = "no line model file";
  return f;
}

ModelFile readModelFile(const std::string& name) {
  std::error_code none;
  std::string text;
  // Only regular files: a device may never end.
  if (std::filesystem::is_regular_file(name, none) && readWhole(name, text))
    return parseModelFile(text);
  ModelFile f;
  f.trouble = "it cannot be opened";
  return f;
}

std::string_view nameOf(ModelKind kind) {
  const LineModel& row = lineModel(kind);
  return row.kind == ModelKind::None ? "unknown" : row.name;
}

std::vector<NamedFunction> functionsOf(const ModelFile& file) {
  std::vector<NamedFunction> all;
  if (file.kind == ModelKind::Phase) all.push_back({"Yc", &file.Yc});
  if (file.kind == ModelKind::Mfdtd) all.push_back({"Z", &file.Z});
  for (std::size_t g = 0; g < file.H.groups.size(); ++g)
    all.push_back({fmt::format("H, group {}", g + 1), &file.H.groups[g]});
  for (std::size_t m = 0; m < file.modes.size(); ++m) {
    all.push_back({fmt::format("Zc, mode {}", m + 1), &file.modes[m].Zc});
    all.push_back({fmt::format("H, mode {}", m + 1), &file.modes[m].A});
    for (std::size_t r = 0; r < file.modes[m].row.size(); ++r)
      all.push_back({fmt::format("T({},{})", m + 1, r + 1), &file.modes[m].row[r]});
  }
  return all;
}

} // namespace lcp::companions
