// Parts of the program in a process of their own: what ends the run there ends the child alone.
#pragma once

#include <functional>
#include <string>

namespace lcp::companions {

struct CapturedRun {
  int status = -1;     // exit status; 0 when the work returned, -1 when a signal ended it
  std::string console; // what it printed
  std::string errors;  // lines of the error stream
};

// Does the work in a forked child. Its stores, and what it writes to them, are the child's.
CapturedRun runCaptured(const std::function<void()>& work);

// Whether this process is such a child.
bool inCapturedRun();

// The program up to the end of the reader, on a description file and for a length in metres. The
// console ends with the message of a refusal, status 1.
CapturedRun readInChild(const std::string& file, double length);

// The reader here, in this process, its lines on the console dropped. Only for a file that the
// child has read: what the reader refuses ends the process.
void readHere(const std::string& file, double length);

// The whole run for one length, in metres: model file and report under the names given. Detail
// curve files and the component are not written.
CapturedRun solveInChild(const std::string& file, double length, const std::string& model,
                         const std::string& report);

// The same of what readHere has read, without enforcement and check of passivity.
CapturedRun solveFitInChild(const std::string& model, const std::string& report);

// A part of the run store that this process changes for a while: it gets its values back at the end
// of the block.
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
