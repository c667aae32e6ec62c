// Splits and joins texts.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lcp::companions {

// Fields of a line separated by a character; an empty line has one empty field.
std::vector<std::string> fieldsOf(std::string_view line, char between);
// Joins fields, the inverse of fieldsOf.
std::string joined(const std::vector<std::string>& fields, std::string_view between);
// Lines without their line ends, LF or CR LF.
std::vector<std::string> linesOf(std::string_view text);
// Items separated by blanks.
std::vector<std::string> wordsOf(std::string_view text);

} // namespace lcp::companions
