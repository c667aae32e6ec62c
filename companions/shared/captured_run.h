// Runs parts of the program in a child process, so that fatal errors end only the child.
#pragma once

#include <functional>
#include <string>

namespace lcp::companions {

struct CapturedRun {
  int status = -1;     // exit status; 0 if the work returned, -1 if a signal ended it
  std::string console; // what it printed
  std::string errors;  // lines of the error stream
};

// Runs `work` in a forked child. Changes to stores affect only the child.
CapturedRun runCaptured(const std::function<void()>& work);

// Whether this process is such a child.
bool inCapturedRun();

// Reads a description file for a length in m, in a child process. If the program refuses the file,
// the console ends with its message and the status is 1.
CapturedRun readInChild(const std::string& file, double length);

// Reads the file in this process and discards its console output. Only for a file that readInChild
// has accepted: a fatal error of the reader ends the process.
void readHere(const std::string& file, double length);

// Reads the lines of a file without the checks that follow the last line, for a file that these
// checks refuse. Returns false, and reads nothing, if one of the lines ends the reader.
bool readLinesHere(const std::string& file, double length);

// Runs the program for one length, in m, in a child process, with the given names for model file
// and report. Detail curve files and the component are not written.
CapturedRun solveInChild(const std::string& file, double length, const std::string& model,
                         const std::string& report);

// The same for the description read by readHere, without passivity enforcement and check.
CapturedRun solveFitInChild(const std::string& model, const std::string& report);

// Saves a part of the run store and restores it at the end of the block.
template <class Part> class Restored {
public:
  explicit Restored(Part& place) : part(place), before(place) {}
  Restored(const Restored&) = delete;
  Restored& operator=(const Restored&) = delete;
  ~Restored() { part = before; }

private:
  Part& part;
  const Part before;
};

} // namespace lcp::companions
