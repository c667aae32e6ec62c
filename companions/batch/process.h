// Other programs, started and waited for, with an eye on signals and the time.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <sys/types.h>
#include <vector>

namespace lcp::companions {

// From here on the signals that end a program, and those of its children, wait until waitFor
// looks at them. Children start without.
void holdSignals();

// Asks for an end of its own, by SIGTERM, when the process that started this one ends.
void endWithParent();

struct Start {
  std::vector<std::string> words; // the program and its arguments
  std::filesystem::path folder;   // it runs there; empty for here
  int output = -1, errors = -1;   // descriptors; -1 for the null device, which it reads
  int atOurEnd = 0; // the signal that it gets when this process ends, however that ends
};

// The program leads a group of processes of its own. -1 when there is no process to be had; a
// program that cannot be started ends with NOTSTARTED.
constexpr int NOTSTARTED = 127;
pid_t startProgram(const Start& start);

constexpr int BEHINDSIGNAL = 128; // exit status of a program that a signal ends, less its number

enum class Waited { ENDED, SIGNAL, TIME };
struct End {
  int status = 0; // as wait tells it
  rusage usage{}; // of it and of what it waited for
  int signal = 0; // that this process was sent
};

// Until the child has ended, a signal has come or the time is over, in seconds.
Waited waitFor(pid_t child, double seconds, End& end);

// The same without a child: true when a signal has come.
bool sleepFor(double seconds, End& end);

// Kills the child's group and waits for the child, whose usage is kept.
void killAll(pid_t child, End& end);

// The path of this program. That of another one: beside this one when it is there, else by the
// search path; empty if there is none.
std::string ownPath();
std::string programBeside(std::string_view name);
std::string programInPath(std::string_view name);

// Seconds of a clock that is never set.
double now();

} // namespace lcp::companions
