// Captures what code prints on the console in this process, to keep the output of a test quiet.
#pragma once

#include "base/console.h"

#include <cstdio>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace lcp::test {

// The text of a file in memory, which it closes.
inline std::string takeText(int file) {
  std::string text(static_cast<std::size_t>(lseek(file, 0, SEEK_END)), ' ');
  if (pread(file, text.data(), text.size(), 0) < 0) text = "cannot read what was printed";
  close(file);
  return text;
}

template <class Code> std::string consoleOf(Code code) {
  console::flush();
  std::fflush(stdout);
  const int file = memfd_create("console", 0), before = dup(STDOUT_FILENO);
  dup2(file, STDOUT_FILENO);
  code();
  console::flush();
  std::fflush(stdout);
  dup2(before, STDOUT_FILENO);
  close(before);
  return takeText(file);
}

} // namespace lcp::test
