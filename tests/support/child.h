// Runs a piece of code in a forked child and keeps what it printed and how it ended: for paths
// that end the process.
#pragma once

#include <functional>
#include <string>

namespace lcp::test {

struct ChildResult {
  int status = -1;     // exit status; 0 when the code returned; -1 when a signal ended it
  std::string console; // what it wrote to the standard output
};

ChildResult runChild(const std::function<void()>& code);

// The text between two lines is as printed: joins lines with line ends behind each.
std::string lines(std::initializer_list<std::string> texts);

} // namespace lcp::test
