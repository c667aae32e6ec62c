// Starts other programs and waits for them, with time limits and signal handling.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <sys/types.h>
#include <vector>

namespace lcp::companions {

// Blocks the signals that end a program, and SIGCHLD, until waitFor or sleepFor looks at them.
// Children start with the original mask.
void holdSignals();

// Requests SIGTERM for this process when its parent ends.
void endWithParent();

struct Start {
  std::vector<std::string> words; // the program and its arguments
  std::filesystem::path folder;   // working folder; empty for the current one
  int output = -1, errors = -1;   // descriptors; -1 for the null device
  int atOurEnd = 0;               // signal sent to it when this process ends, for whatever reason
};

// Starts a program as leader of its own process group. Returns -1 if no process can be created; a
// program that cannot be executed ends with NOTSTARTED.
constexpr int NOTSTARTED = 127;
pid_t startProgram(const Start& start);

constexpr int BEHINDSIGNAL = 128; // exit status after signal n: this plus n

enum class Waited { ENDED, SIGNAL, TIME };
struct End {
  int status = 0; // as returned by wait
  rusage usage{}; // of the child and the processes it waited for
  int signal = 0; // signal received by this process
};

// Waits until the child has ended, a signal arrives or the time, in seconds, is over.
Waited waitFor(pid_t child, double seconds, End& end);

// The same without a child; true if a signal arrived.
bool sleepFor(double seconds, End& end);

// Kills the child's process group and waits for the child; its usage is kept.
void killAll(pid_t child, End& end);

// Path of this program; path of another program, beside this one or in the search path; path of a
// program in the search path. Empty if there is none.
std::string ownPath();
std::string programBeside(std::string_view name);
std::string programInPath(std::string_view name);

// Seconds of a monotonic clock.
double now();

} // namespace lcp::companions
