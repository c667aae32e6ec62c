#include "companions/check/near_key.h"

#include <algorithm>
#include <cctype>
#include <vector>

namespace lcp::companions {

namespace {

bool alike(char a, char b) {
  return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

// Number of letters to insert, delete or replace to turn a into b.
std::size_t editDistance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (alike(a[i], b[j]) ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row[b.size()];
}

} // namespace

std::string_view keyWords(std::string_view line) {
  std::string_view words = line.substr(0, line.find(':'));
  words.remove_prefix(std::min(words.find_first_not_of(" \t"), words.size()));
  return words.substr(0, words.find_last_not_of(" \t") + 1);
}

std::string_view nearestKey(std::string_view words, std::span<const std::string_view> keys,
                            std::size_t letters, std::size_t least) {
  std::string_view nearest;
  std::size_t shortest = 0;
  for (const std::string_view key : keys) {
    const std::size_t allowed = std::max(least, key.size() / letters);
    const std::size_t longer =
        std::max(key.size(), words.size()) - std::min(key.size(), words.size());
    if (longer > allowed || allowed >= key.size()) continue;
    const std::size_t d = editDistance(words, key);
    if (d > allowed || (!nearest.empty() && d >= shortest)) continue;
    nearest = key;
    shortest = d;
  }
  return nearest;
}

} // namespace lcp::companions
