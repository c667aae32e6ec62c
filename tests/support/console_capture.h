// What a piece of code prints on the console, in this process: keeps the output of a test quiet and
// the results of the code at hand.
#pragma once

#include "base/console.h"

#include <cstdio>
#include <string>
#include <unistd.h>

namespace lcp::test {

template <class Code> std::string consoleOf(Code code) {
  console::flush();
  std::fflush(stdout);
  std::FILE* file = std::tmpfile();
  const int before = dup(STDOUT_FILENO);
  dup2(fileno(file), STDOUT_FILENO);
  code();
  console::flush();
  std::fflush(stdout);
  dup2(before, STDOUT_FILENO);
  close(before);
  std::rewind(file);
  std::string text;
  for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file)) text += static_cast<char>(c);
  std::fclose(file);
  return text;
}

} // namespace lcp::test
