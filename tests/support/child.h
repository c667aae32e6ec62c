// Runs code in a forked child and keeps its output and status, for paths that end the process.
#pragma once

#include "support/console_capture.h"

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <sstream>
#include <sys/wait.h>
#include <vector>

namespace lcp::test {

constexpr unsigned LIMIT = 120; // seconds of a child, also in a build with sanitizers

struct ChildResult {
  int status = -1;     // exit status; 0 when the code returned; -1 when a signal ended it
  std::string console; // what it wrote to the standard output
};

inline ChildResult runChild(const std::function<void()>& code) {
  const int file = memfd_create("console", 0);
  console::flush();
  std::fflush(stdout); // otherwise the child writes the buffer again
  const pid_t child = fork();
  if (child == 0) {
    dup2(file, STDOUT_FILENO);
    alarm(LIMIT);
    code();
    console::flush();
    std::_Exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, takeText(file)};
}

// Joins lines, with a line end after each.
inline std::string lines(std::initializer_list<std::string> texts) {
  std::string all;
  for (const std::string& t : texts) all += t + "\n";
  return all;
}

inline std::vector<std::string> splitLines(const std::string& text) {
  std::vector<std::string> all;
  std::istringstream in(text);
  for (std::string l; std::getline(in, l);) all.push_back(l);
  return all;
}

} // namespace lcp::test
