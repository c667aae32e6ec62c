// Runs of the whole program in a process of its own, and the cases that are such runs.
//
// A case is a directory under tests/cases/ with
//   arguments   one argument of the command line a line; paths are relative to the directory of
//               the run, a scratch directory with a copy of the case
//   console     what the run prints, lines of the error stream first
//   status      its exit status, 0 when not given
//   expected/   the files it writes, all of them; absent when it writes none
//   tolerance   how close numbers must be: matrix, scalar and line (see compare_text.h), 1e-9, 1e-9
//               and 1e-12 when not given; then lines
//               "signs FILE FIRST LAST" and "basis FILE FIRST LAST": eigenvectors whose signs,
//               whose basis is free (or any numbers whose columns alone count), and
//               "width FILE FIRST LAST": numbers of any width
//   source      one line: where the expected numbers come from (an independent calculation, a
//               book), or "snapshot of this program: guards the layout only"
// and its input files; those of examples/ stand beside them. Of long blocks of numbers an expected
// file holds a few lines and a sum (see block_sums.h). One that begins with "@@ not read" says why
// its numbers and lines are left to another case: the run has to write it, and no more.
//
// With CORVO_REWRITE_SNAPSHOTS set in the environment the cases whose source begins with "snapshot"
// take what the program does as what is expected; read the change in the tree before you keep it.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace lcp::test {

struct ProgramRun {
  int status = -1;                          // exit status; -1 when a signal ended the run
  std::string console;                      // standard output
  std::string errors;                       // standard error, but for power
  std::map<std::string, std::string> files; // files that are new or changed, by relative path
  std::string power;                        // what it says of a model that generates power
};

// Runs the program in the directory; a signal ends it at the time limit.
ProgramRun runProgram(const std::vector<std::string>& arguments,
                      const std::filesystem::path& directory);

// The same in an empty directory, on a description a.cvi with that body, with more arguments.
ProgramRun runLine(const std::string& body, const std::string& length,
                   const std::vector<std::string>& more = {});

// Runs a case. Empty when the run is as expected, else what is not.
std::string caseDifferences(const std::filesystem::path& directory);
// Takes the run of a snapshot as expected; false when the case is none.
bool rewriteCase(const std::filesystem::path& directory);

} // namespace lcp::test
