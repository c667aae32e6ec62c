#include "companions/plot/curve_folder.h"

#include "base/open_files.h"
#include "input/free_form.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <optional>
#include <set>
#include <sstream>

namespace lcp::companions {

namespace {

constexpr double DEGREE = 0.017453292519943295; // rad
constexpr double SAMEFREQUENCY = 1e-6;          // difference of decimal logarithms
constexpr Room ROOM = {200000, 500};

enum Names { MATRIX, MODES, GROUPS, PHASES };
enum Columns { ALONE, PAIRED };  // computed values alone, or each with its fitted value
enum Numbers { PLAIN, SQUARES }; // the values, or their squares

// A quantity and its files: magnitudes and angles, in two files or side by side in one.
struct CurveKind {
  std::string_view magnitudes, angles; // endings of the file names; one file if the second is empty
  std::string_view section, id, title, kind, unit;
  double reference;
  Names names;
  Columns columns;
  Numbers numbers;
};

constexpr CurveKind KINDS[] = {
    {"_zm", "_zp", "constants", "Z", "Series impedance", "series", "", 0, MATRIX, ALONE, PLAIN},
    {"_ym", "_yp", "constants", "Y", "Shunt admittance", "shunt", "", 0, MATRIX, ALONE, PLAIN},
    {"_lamdam", "_lamdap", "modes", "gamma", "Propagation", "propagation", "1/m", 0, MODES, ALONE,
     SQUARES},
    {"_timp", "_tipp", "modes", "TI", "Current transformation, (conductor, mode)", "ratio", "", 0,
     MATRIX, ALONE, PLAIN},
    {"_zcmm", "_zcpm", "fit", "Zc", "Surge impedance", "fit", "ohm", 0, MODES, PAIRED, PLAIN},
    {"_amm", "_apm", "fit", "A", "Propagation function of the modes, without delay", "fit", "", 1,
     MODES, PAIRED, PLAIN},
    {"_timm", "_tipm", "fit", "T", "Current transformation", "fit", "", 1, MATRIX, PAIRED, PLAIN},
    {"_ycmp", "_ycpp", "fit", "Yc", "Characteristic admittance Yc", "fit", "S", 0, MATRIX, PAIRED,
     PLAIN},
    {"_hmm", "_hpm", "fit", "Hmode", "Functions of the delay groups, without delay", "fit", "", 1,
     GROUPS, PAIRED, PLAIN},
    {"_hmp", "_hpp", "fit", "H", "Propagation function H", "fit", "", 1, MATRIX, PAIRED, PLAIN},
    {"_zmf", "_zpf", "fit", "Z-fit", "Fitted series impedance", "impedance", "ohm/m", 0, MATRIX,
     ALONE, PLAIN},
    {"_short", "", "ends", "short", "Input impedance, far end shorted", "impedance", "ohm", 0,
     MODES, ALONE, PLAIN},
    {"_open", "", "ends", "open", "Input impedance, far end open", "impedance", "ohm", 0, MODES,
     ALONE, PLAIN},
    {"_gdis", "", "ends", "gdis", "Sending end voltages, far end shorted", "impedance", "V", 0,
     PHASES, ALONE, PLAIN},
    {"_gdio", "", "ends", "gdio", "Sending end voltages, far end open", "impedance", "V", 0, PHASES,
     ALONE, PLAIN},
};

using Rows = std::vector<std::vector<double>>; // decimal logarithm of f, f in Hz, values

std::vector<double> numbersOf(const std::string& line) {
  std::istringstream words(line);
  std::vector<double> numbers;
  for (std::string word; words >> word;) {
    double value = 0;
    if (!parseReal(word, value)) return {};
    numbers.push_back(value);
  }
  return numbers;
}

// A line that starts with a frequency and its logarithm starts a row; any other line continues one.
bool beginsRow(const std::vector<double>& n) {
  return n.size() > 1 && n[1] > 0 && std::fabs(std::log10(n[1]) - n[0]) < SAMEFREQUENCY;
}

Rows rowsOf(const std::filesystem::path& file) {
  std::error_code none;
  Rows rows;
  if (!std::filesystem::is_regular_file(file, none)) return rows; // opening a pipe would block
  protectInput(file);
  std::ifstream in(file);
  std::string line;
  std::getline(in, line); // the header
  while (std::getline(in, line)) {
    const std::vector<double> numbers = numbersOf(line);
    if (beginsRow(numbers)) rows.emplace_back();
    if (!rows.empty()) rows.back().insert(rows.back().end(), numbers.begin(), numbers.end());
  }
  for (const auto& row : rows) {
    if (row.size() != rows[0].size()) return {};
  }
  return rows;
}

std::string nameOf(Names names, std::size_t i, std::size_t count) {
  const auto order = static_cast<std::size_t>(std::lround(std::sqrt(static_cast<double>(count))));
  if (names == MATRIX) return fmt::format("({},{})", i / order + 1, i % order + 1);
  constexpr std::string_view WORDS[] = {"", "mode", "group", "phase"};
  return fmt::format("{} {}", WORDS[names], i + 1);
}

// Complex values of a row; magnitudes and angles alternate in one file or come from two.
std::vector<Complex> valuesOf(const CurveKind& kind, const std::vector<double>& first,
                              const std::vector<double>& second) {
  std::vector<Complex> values;
  const auto value = [&](double magnitude, double degrees) {
    const Complex z = magnitude * std::exp(Complex(0, degrees * DEGREE));
    values.push_back(kind.numbers == SQUARES ? std::sqrt(z) : z);
  };
  const bool two = !kind.angles.empty();
  for (std::size_t i = 2; i + (two ? 0 : 1) < first.size(); i += two ? 1 : 2)
    value(first[i], two ? second[i] : first[i + 1]);
  return values;
}

std::optional<Json> setOf(const CurveKind& kind, const std::filesystem::path& base,
                          const std::string& prefix) {
  const auto file = [&](std::string_view ending) {
    return fmt::format("{}{}.out", base.string(), ending);
  };
  const Rows first = rowsOf(file(kind.magnitudes));
  const Rows second = kind.angles.empty() ? Rows() : rowsOf(file(kind.angles));
  if (first.empty() || first[0].size() < 3) return {};
  if (!kind.angles.empty() &&
      (second.size() != first.size() || second[0].size() != first[0].size()))
    return {};
  Frequencies at;
  Functions F{prefix + std::string(kind.id), prefix + std::string(kind.title),
              std::string(kind.kind), std::string(kind.unit), kind.reference};
  const std::size_t step = kind.columns == PAIRED ? 2 : 1;
  for (std::size_t k = 0; k < first.size(); ++k) {
    const auto values = valuesOf(kind, first[k], second.empty() ? first[k] : second[k]);
    at.f.push_back(first[k][1]);
    at.ofTheFit.push_back(kind.section == "fit");
    F.elements.resize(values.size() / step);
    for (std::size_t i = 0; i < F.elements.size(); ++i) {
      F.elements[i].name = nameOf(kind.names, i, F.elements.size());
      F.elements[i].line.push_back(values[step * i]);
      if (step == 2) F.elements[i].model.push_back(values[step * i + 1]);
    }
  }
  if (kind.id == "Yc") {
    for (const Element& e : F.elements) {
      for (const Complex& z : e.line) F.reference = std::max(F.reference, std::abs(z));
    }
  }
  return packed(at, {F}, ROOM);
}

// Names of the lines whose files are in a folder.
std::set<std::string> linesIn(const std::string& folder) {
  std::set<std::string> lines;
  std::error_code none;
  for (const auto& entry : std::filesystem::directory_iterator(folder, none)) {
    const std::string name = entry.path().filename().string();
    for (const CurveKind& kind : KINDS) {
      const std::string ending = fmt::format("{}.out", kind.magnitudes);
      if (name.size() > ending.size() && name.ends_with(ending))
        lines.insert(name.substr(0, name.size() - ending.size()));
    }
  }
  return lines;
}

} // namespace

Json curvesOfFolder(const std::string& folder) {
  const std::set<std::string> lines = linesIn(folder);
  Json data = {{"title", ""}, {"curves", true}};
  std::string names;
  std::size_t files = 0;
  for (const std::string& line : lines) {
    names += (names.empty() ? "" : ", ") + line;
    for (const CurveKind& kind : KINDS) {
      const auto set =
          setOf(kind, std::filesystem::path(folder) / line, lines.size() > 1 ? line + " " : "");
      if (!set) continue;
      data[std::string(kind.section)].push_back(*set);
      ++files;
    }
  }
  if (files == 0) return nullptr;
  data["title"] = names;
  data["facts"] = {{"Quantities", fmt::format("{}", files)}};
  return data;
}

} // namespace lcp::companions
