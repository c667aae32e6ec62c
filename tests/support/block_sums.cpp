#include "support/block_sums.h"

#include "support/child.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <span>

namespace lcp::test {

namespace {

constexpr std::size_t FEWEST = 10; // lines of a block that is cut
constexpr std::size_t HEAD = 2;    // that stay in front of the sum; one stays behind it

using Lines = std::span<const std::string>;

struct Numbers {
  std::vector<double> values, units; // of a number the value and one in its last digit
  bool operator==(const Numbers&) const = default;
};

// The numbers of a line; none when the line holds anything else, or no point.
Numbers numbersOf(std::string line) {
  Numbers all;
  std::replace(line.begin(), line.end(), ',', ' ');
  std::istringstream in(line);
  for (std::string word; in >> word;) {
    const std::size_t point = word.find('.'), exponent = std::min(word.find('E'), word.size());
    char* end = nullptr;
    const double value = std::strtod(word.c_str(), &end);
    if (*end != '\0' || word.find_first_not_of("+-.0123456789E") != std::string::npos) return {};
    const double digits = point < exponent ? static_cast<double>(exponent - point - 1) : 0;
    const double power = exponent < word.size() ? std::stod(word.substr(exponent + 1)) : 0;
    all.values.push_back(value);
    all.units.push_back(std::pow(10.0, power - digits));
  }
  return line.find('.') == std::string::npos ? Numbers{} : all;
}

bool isMatrix(const std::string& line) { return line.find(',') != std::string::npos; }

// Without the signs that make free numbers longer.
std::size_t bareSize(const std::string& line) {
  std::size_t size = line.size();
  for (const char* sign : {" -", ",-"}) {
    for (std::size_t at = line.find(sign); at < line.size(); at = line.find(sign, at + 1)) --size;
  }
  return size;
}

bool sameShape(const std::string& a, const std::string& b) {
  const std::size_t n = numbersOf(a).values.size();
  return n > 0 && n == numbersOf(b).values.size() && isMatrix(a) == isMatrix(b) &&
         (a.size() == b.size() || bareSize(a) == bareSize(b));
}

struct Sum {
  double value = 0.0;
  double slack = 0.0; // how far an equal sum may be
};

Sum sumOf(Lines block, const Tolerances& t) {
  const bool matrix = isMatrix(block[0]);
  const double each = matrix ? t.matrix : t.scalar;
  std::vector<double> largest(numbersOf(block[0]).values.size());
  for (const std::string& line : block) {
    const Numbers n = numbersOf(line);
    for (std::size_t i = 0; i < largest.size(); ++i) {
      double& column = largest[matrix ? 0 : i];
      column = std::max(column, std::fabs(n.values.at(i)));
    }
  }
  double sum = 0.0, flip = 0.0, weight = 0.0; // flip: of the last digit of the shortest number
  for (const std::string& line : block) {
    const Numbers n = numbersOf(line);
    for (std::size_t i = 0; i < largest.size(); ++i) {
      const double x = n.values[i], s = matrix ? largest[0] : largest[i] * t.line / t.scalar;
      weight = std::fmod(weight + 0.6180339887498949, 1.0);
      if (x == 0) continue;
      sum += (1.0 + weight) * std::asinh(x / s);
      flip = std::max(flip, n.units[i] / std::hypot(x, s));
    }
  }
  return {sum, 2 * (each + flip)};
}

std::string sumLine(Lines block, const Tolerances& t) {
  const double each = isMatrix(block[0]) ? t.matrix : t.scalar;
  const int digits = 1 - static_cast<int>(std::floor(std::log10(each)));
  return fmt::format("@@ {} lines, sum {:.{}f}", block.size(), sumOf(block, t).value, digits);
}

bool isFree(std::size_t line, const Tolerances& t) {
  return std::any_of(t.free.begin(), t.free.end(),
                     [=](const FreeLines& f) { return line >= f.first && line <= f.last; });
}

std::string joined(const std::vector<std::string>& lines, const std::string& like) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  if (!like.ends_with('\n') && !text.empty()) text.pop_back();
  return text;
}

// How many lines are not read where this one stands, or 0.
std::size_t unreadAt(const std::string& line) {
  std::size_t count = 0;
  if (!line.ends_with(" lines, not read")) return 0;
  return std::sscanf(line.c_str(), "@@ %zu", &count) == 1 ? count : 0;
}

std::vector<std::string> withoutUnread(const std::vector<std::string>& lines,
                                       const std::vector<std::string>& before) {
  std::vector<std::string> kept;
  std::size_t at = 0;
  for (const std::string& line : before) {
    const std::size_t count = unreadAt(line);
    if (count > 0 || at < lines.size()) kept.push_back(count > 0 ? line : lines[at]);
    at += std::max<std::size_t>(count, 1);
  }
  for (; at < lines.size(); ++at) kept.push_back(lines[at]);
  return kept;
}

} // namespace

std::string blocksCut(const std::string& text, const std::string& before, const Tolerances& t) {
  const auto lines = splitLines(text), old = splitLines(before);
  if (std::any_of(old.begin(), old.end(), unreadAt)) return joined(withoutUnread(lines, old), text);
  std::vector<std::string> kept;
  for (std::size_t i = 0, end = 0; i < lines.size(); i = end) {
    end = i + 1;
    while (end < lines.size() && sameShape(lines[i], lines[end]) && !isFree(i + 1, t) &&
           !isFree(end + 1, t))
      ++end;
    const Lines run(&lines[i], end - i);
    const bool cut = run.size() >= FEWEST && t.scalar > 0;
    const Lines front = cut ? run.first(HEAD) : run;
    kept.insert(kept.end(), front.begin(), front.end());
    if (!cut) continue;
    kept.push_back(sumLine(run.subspan(HEAD, run.size() - HEAD - 1), t));
    kept.push_back(run.back());
  }
  return joined(kept, text);
}

std::string blocksFilled(const std::string& expected, const std::string& actual,
                         const Tolerances& t, std::string& wrong) {
  const auto got = splitLines(actual);
  std::vector<std::string> filled;
  for (const std::string& line : splitLines(expected)) {
    std::size_t count = unreadAt(line);
    double sum = 0.0;
    const bool read = count == 0;
    if (read && std::sscanf(line.c_str(), "@@ %zu lines, sum %lf", &count, &sum) != 2) {
      filled.push_back(line);
      continue;
    }
    const std::size_t first = filled.size();
    if ((read && first == 0) || count == 0 || got.size() < first + count) {
      wrong = fmt::format("line {}: the text ends before |{}| does\n", first + 1, line);
      return expected;
    }
    const Lines block(&got[first], count);
    for (const std::string& l : block) {
      if (read && wrong.empty() && !sameShape(filled[first - 1], l)) {
        wrong = fmt::format("line {}: |{}| is not like |{}|\n", filled.size() + 1, l,
                            filled[first - 1]);
      }
      filled.push_back(l);
    }
    if (!wrong.empty()) return expected;
    if (!read) continue;
    const Sum is = sumOf(block, t);
    if (!(std::fabs(is.value - sum) <= is.slack)) {
      wrong = fmt::format("lines {} to {}: |{}|, expected |{}|\n", first + 1, first + count,
                          sumLine(block, t), line);
    }
  }
  return joined(filled, expected);
}

} // namespace lcp::test
