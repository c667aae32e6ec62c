// Tables of descriptions with what the reader says of them, and the frames of its messages.
#pragma once

#include "support/description.h"

#include <gtest/gtest.h>
#include <vector>

namespace lcp::test {

inline const std::string STARS(43, '*'), LONGSTARS(45, '*'), RULE(53, '=');

// A body that does not end its last line is refused there by the common error exit; any other one
// ends the run with its message, or is read when it has none.
struct ReaderCase {
  std::string body, message = "";
};

inline void check(const std::vector<ReaderCase>& cases, int iscable = 0) {
  for (const ReaderCase& c : cases) {
    const std::string lastLine = c.body.substr(c.body.rfind('\n') + 1);
    const std::string exit = lastLine.empty() ? "" : errorExit(lastLine, iscable);
    const ChildResult r = readInChild(description(c.body), iscable);
    EXPECT_EQ(r.console, c.message + exit) << c.body;
    EXPECT_EQ(r.status, r.console.empty() ? 0 : 1) << c.body;
  }
}

using Texts = std::initializer_list<std::string>;

inline std::string starred(Texts texts) {
  return LONGSTARS + "\nCorvo.exe: ERROR\n" + lines(texts) + LONGSTARS + "\n";
}

inline std::string ruled(Texts texts) {
  return RULE + "\nORVEX Line Constants Program: ERROR\n\n" + lines(texts) + RULE + "\n";
}

// Of a file that a description names.
inline std::string fileError(Texts texts) {
  return lines({"", STARS}) + lines(texts) + lines({STARS, "READTLDATA Ending!"});
}

inline std::string cannotRead(const std::string& file) {
  return fileError({"Line Constants Program: ERROR", "Error in Reading Data File: " + file,
                    "File does not appear to conform to correct", "format."});
}

// Entries of the store side by side.
template <class... T> std::vector<double> values(T... entries) {
  return {static_cast<double>(entries)...};
}

} // namespace lcp::test
