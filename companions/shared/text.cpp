#include "companions/shared/text.h"

namespace lcp::companions {

std::vector<std::string> fieldsOf(std::string_view line, char between) {
  std::vector<std::string> fields;
  for (std::size_t end = 0; end != std::string_view::npos;) {
    end = line.find(between);
    fields.emplace_back(line.substr(0, end));
    if (end != std::string_view::npos) line.remove_prefix(end + 1);
  }
  return fields;
}

std::string joined(const std::vector<std::string>& fields, std::string_view between) {
  std::string text;
  for (std::size_t k = 0; k < fields.size(); ++k) {
    if (k > 0) text += between;
    text += fields[k];
  }
  return text;
}

std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines = fieldsOf(text, '\n');
  if (lines.back().empty()) lines.pop_back();
  for (std::string& line : lines)
    if (line.ends_with('\r')) line.pop_back();
  return lines;
}

std::vector<std::string> wordsOf(std::string_view text) {
  std::vector<std::string> words = fieldsOf(text, ' ');
  std::erase(words, "");
  return words;
}

} // namespace lcp::companions
