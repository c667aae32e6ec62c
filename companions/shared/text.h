// Texts taken apart and put together.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lcp::companions {

// Fields of a line parted by that character; an empty line has one empty field.
std::vector<std::string> fieldsOf(std::string_view line, char between);
// The way back.
std::string joined(const std::vector<std::string>& fields, std::string_view between);
// Lines without their ends, also those of CR LF.
std::vector<std::string> linesOf(std::string_view text);
// Items parted by blanks.
std::vector<std::string> wordsOf(std::string_view text);

} // namespace lcp::companions
