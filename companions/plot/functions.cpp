#include "companions/plot/functions.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <fmt/format.h>
#include <limits>

namespace lcp::companions {

namespace {

constexpr std::size_t MOSTELEMENTS = 150; // per function
constexpr std::size_t SHOWN = 3;          // curves that a page shows first

std::string base64(std::span<const unsigned char> bytes) {
  constexpr std::string_view LETTERS =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t n = std::min<std::size_t>(3, bytes.size() - i);
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k) group = group << 8 | (k < n ? bytes[i + k] : 0U);
    for (std::size_t k = 0; k < 4; ++k)
      text.push_back(k <= n ? LETTERS[group >> (18 - 6 * k) & 63U] : '=');
  }
  return text;
}

double deviation(const Element& e, std::size_t k, double reference) {
  const double size = reference > 0 ? reference : std::abs(e.line[k]);
  return std::abs(e.model[k] - e.line[k]) / size;
}

bool compared(const Element& e) { return !e.line.empty() && !e.model.empty(); }

double worst(const Element& e, double reference) {
  double most = 0;
  for (std::size_t k = 0; compared(e) && k < e.line.size(); ++k)
    most = std::max(most, deviation(e, k, reference));
  return most;
}

// Marks the points where a quantity of a curve is largest and smallest.
template <class Quantity>
void keepExtremes(std::vector<bool>& kept, std::size_t count, Quantity quantity) {
  std::size_t low = 0, high = 0;
  for (std::size_t k = 1; k < count; ++k) {
    if (quantity(k) < quantity(low)) low = k;
    if (quantity(k) > quantity(high)) high = k;
  }
  if (count > 0) kept[low] = kept[high] = true;
}

std::vector<std::size_t> keptPoints(const Frequencies& at, const std::vector<Functions>& all,
                                    const Room& room) {
  const std::size_t n = at.f.size();
  std::size_t numbers = 0;
  for (const Functions& F : all) {
    for (const Element& e : F.elements) numbers += 2 * (compared(e) ? 2U : 1U);
  }
  const std::size_t most = std::max<std::size_t>(
      2, std::min(room.points, room.numbers / std::max<std::size_t>(numbers, 1)));
  const std::size_t stride = (n + most - 1) / most;
  std::vector<bool> kept(n, false);
  for (std::size_t k = 0; k < n; ++k)
    kept[k] = k % stride == 0 || k + 1 == n || (!at.ofTheFit.empty() && at.ofTheFit[k]);
  for (const Functions& F : all) {
    for (const Element& e : F.elements) {
      for (const auto* values : {&e.line, &e.model}) {
        keepExtremes(kept, values->size(), [&](std::size_t k) { return std::abs((*values)[k]); });
      }
      keepExtremes(kept, compared(e) ? n : 0,
                   [&](std::size_t k) { return deviation(e, k, F.reference); });
    }
  }
  std::vector<std::size_t> points;
  for (std::size_t k = 0; k < n; ++k) {
    if (kept[k]) points.push_back(k);
  }
  return points;
}

std::string packedCurve(const std::vector<Complex>& values, const std::vector<std::size_t>& kept) {
  std::vector<double> parts;
  for (const std::size_t k : kept) {
    parts.push_back(values[k].real());
    parts.push_back(values[k].imag());
  }
  return packedNumbers(parts);
}

// The elements shown first: the first two and the one whose model has the largest error.
Json firstShown(const Functions& F) {
  const std::size_t n = F.elements.size();
  Json shown = Json::array();
  for (std::size_t i = 0; i < std::min(n, SHOWN); ++i) shown.push_back(i);
  std::size_t bad = SHOWN - 1;
  for (std::size_t i = SHOWN; i < n; ++i) {
    if (worst(F.elements[i], F.reference) > worst(F.elements[bad], F.reference)) bad = i;
  }
  if (n >= SHOWN) shown.back() = bad;
  return shown;
}

// If there are very many elements, keeps those on the diagonal, then those with the largest errors.
void limitElements(Functions& F) {
  const std::size_t all = F.elements.size();
  if (all <= MOSTELEMENTS) return;
  const auto key = [&](const Element& e) {
    const auto comma = e.name.find(',');
    const bool diagonal =
        comma != std::string::npos && e.name.substr(1, comma - 1) + ")" == e.name.substr(comma + 1);
    return std::pair(!diagonal, -worst(e, F.reference));
  };
  std::stable_sort(F.elements.begin(), F.elements.end(),
                   [&](const Element& a, const Element& b) { return key(a) < key(b); });
  F.elements.resize(MOSTELEMENTS);
  F.note += fmt::format("{} of {} elements: the diagonal, then those whose model is worst. ",
                        MOSTELEMENTS, all);
}

} // namespace

std::string packedNumbers(std::span<const double> values) {
  constexpr double LARGEST = std::numeric_limits<float>::max();
  std::vector<unsigned char> bytes;
  for (const double value : values) {
    const double held = std::isfinite(value) ? std::clamp(value, -LARGEST, LARGEST) : value;
    const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(held));
    for (unsigned shift = 0; shift < 32; shift += 8)
      bytes.push_back(static_cast<unsigned char>(bits >> shift & 255U));
  }
  return base64(bytes);
}

Json packed(const Frequencies& at, std::vector<Functions> all, const Room& room) {
  for (Functions& F : all) limitElements(F);
  const std::vector<std::size_t> kept = keptPoints(at, all, room);
  std::vector<double> f;
  Json fit = Json::array();
  for (const std::size_t k : kept) {
    if (!at.ofTheFit.empty() && at.ofTheFit[k]) fit.push_back(f.size());
    f.push_back(at.f[k]);
  }
  Json functions = Json::array();
  for (const Functions& F : all) {
    Json elements = Json::array();
    for (const Element& e : F.elements) {
      Json one = {{"name", e.name}};
      if (!e.line.empty()) one["line"] = packedCurve(e.line, kept);
      if (!e.model.empty()) one["model"] = packedCurve(e.model, kept);
      elements.push_back(one);
    }
    functions.push_back({{"id", F.id},
                         {"title", F.title},
                         {"kind", F.kind},
                         {"unit", F.unit},
                         {"reference", F.reference},
                         {"delay", F.delay},
                         {"note", F.note},
                         {"shown", firstShown(F)},
                         {"elements", elements}});
  }
  return {{"f", packedNumbers(f)}, {"fit", fit}, {"functions", functions}};
}

} // namespace lcp::companions
