#include "companions/batch/process.h"

#include "companions/batch/case_list.h"
#include "companions/shared/text.h"

#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace lcp::companions {

namespace {

sigset_t unheld;

sigset_t watched() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGCHLD);
  for (const int s : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action {};
    sigaction(s, nullptr, &action);
    if (action.sa_handler != SIG_IGN) sigaddset(&set, s); // respect nohup
  }
  return set;
}

void takePlace(int descriptor, int place) {
  if (descriptor < 0) descriptor = open("/dev/null", O_RDWR | O_CLOEXEC);
  dup2(descriptor, place);
}

// Replaces the child process by the program; does not return.
void become(const Start& start, pid_t parent) {
  setpgid(0, 0);
  // The parent may have ended before this call.
  if (start.atOurEnd != 0) prctl(PR_SET_PDEATHSIG, start.atOurEnd);
  if (start.atOurEnd != 0 && getppid() != parent) _exit(NOTSTARTED);
  takePlace(-1, STDIN_FILENO);
  takePlace(start.output, STDOUT_FILENO);
  takePlace(start.errors, STDERR_FILENO);
  sigprocmask(SIG_SETMASK, &unheld, nullptr);
  std::vector<char*> pointers;
  for (const std::string& w : start.words) pointers.push_back(const_cast<char*>(w.c_str()));
  pointers.push_back(nullptr);
  if (start.folder.empty() || chdir(start.folder.c_str()) == 0) execv(pointers[0], pointers.data());
  _exit(NOTSTARTED);
}

} // namespace

void holdSignals() {
  signal(SIGCHLD, SIG_DFL); // the parent process may have set it to be ignored
  const sigset_t set = watched();
  sigprocmask(SIG_BLOCK, &set, &unheld);
}

void endWithParent() { prctl(PR_SET_PDEATHSIG, SIGTERM); }

pid_t startProgram(const Start& start) {
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child == 0) become(start, parent);
  if (child > 0) setpgid(child, child); // parent and child both try, whichever runs first
  return child;
}

double now() {
  timespec t{};
  clock_gettime(CLOCK_MONOTONIC, &t);
  return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

Waited waitFor(pid_t child, double seconds, End& end) {
  const sigset_t set = watched();
  const double last = now() + seconds;
  while (true) {
    if (child > 0 && wait4(child, &end.status, WNOHANG, &end.usage) == child) return Waited::ENDED;
    const double left = std::fmax(last - now(), 0);
    const timespec wait{static_cast<time_t>(left),
                        static_cast<long>(1e9 * (left - std::floor(left)))};
    const int s = sigtimedwait(&set, nullptr, &wait);
    if (s < 0 && errno == EAGAIN) return Waited::TIME;
    if (s <= 0 || s == SIGCHLD) continue;
    end.signal = s;
    return Waited::SIGNAL;
  }
}

bool sleepFor(double seconds, End& end) { return waitFor(0, seconds, end) == Waited::SIGNAL; }

void killAll(pid_t child, End& end) {
  kill(-child, SIGKILL);
  wait4(child, &end.status, 0, &end.usage);
}

std::string programInPath(std::string_view name) {
  std::error_code none;
  const char* path = std::getenv("PATH");
  for (const std::string& folder : fieldsOf(path == nullptr ? "" : path, ':')) {
    const fs::path program = fs::path(folder) / name;
    if (!folder.empty() && access(program.c_str(), X_OK) == 0 && fs::is_regular_file(program, none))
      return fs::absolute(program).string();
  }
  return {};
}

std::string ownPath() {
  std::error_code none;
  return fs::read_symlink("/proc/self/exe", none).string();
}

std::string programBeside(std::string_view name) {
  std::error_code none;
  const fs::path here = fs::path(ownPath()).parent_path();
  // In a build tree the companions are in a folder below the program.
  for (const fs::path& folder : {here, here.parent_path()}) {
    const fs::path program = folder / name;
    if (access(program.c_str(), X_OK) == 0 && fs::is_regular_file(program, none))
      return program.string();
  }
  return programInPath(name);
}

} // namespace lcp::companions
