#include "companions/shared/captured_run.h"

#include "base/console.h"
#include "base/stop.h"
#include "companions/shared/whole_files.h"
#include "input/reader.h"
#include "input/reader_store.h"
#include "run/lcpmain.h"
#include "run/output_names.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace lcp::companions {

namespace {

bool captured = false;

std::string contentOf(int descriptor) {
  std::string text;
  lseek(descriptor, 0, SEEK_SET);
  readWhole(descriptor, text);
  close(descriptor);
  return text;
}

void openDescription(const std::string& file, double length) {
  RunControl& R = RUNDATA.run;
  flushDenormals();
  R.LINELEN = length;
  R.FNAME = file;
  chooseBaseName(R);
  R.FILESREAD = 1; // so that the reader resets the groups
}

void readDescription(const std::string& file, double length) {
  openDescription(file, length);
  READTLDATA();
}

// Does the work in this process and discards its console output and error stream.
void silently(const std::function<void()>& work) {
  console::flush();
  const int console = dup(STDOUT_FILENO), errors = dup(STDERR_FILENO);
  const int nothing = open("/dev/null", O_WRONLY | O_CLOEXEC);
  dup2(nothing, STDOUT_FILENO);
  dup2(nothing, STDERR_FILENO);
  work();
  console::flush();
  dup2(console, STDOUT_FILENO);
  dup2(errors, STDERR_FILENO);
  for (const int descriptor : {console, errors, nothing}) close(descriptor);
}

// Solves the length step that was read and ends the process, which is a child.
[[noreturn]] void solveInto(const std::string& model, const std::string& report) {
  RunControl& R = RUNDATA.run;
  R.FOUTM = model;
  R.FOUTR = report;
  RUNDATA.fit.WDETAIL = false;
  RUNDATA.display.CREATEPI = false;
  solveStep();
  stop(R.WARNFLAG ? 2 : 0);
}

} // namespace

bool inCapturedRun() { return captured; }

CapturedRun runCaptured(const std::function<void()>& work) {
  CapturedRun run;
  // Files in memory: a pipe would have to be emptied while the child writes.
  const int out = memfd_create("console", 0);
  const int errors = memfd_create("errors", 0);
  console::flush();
  const pid_t child = fork();
  if (child == 0) {
    dup2(out, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);
    captured = true;
    console::prepare();
    work();
    stop(0);
  }
  int status = 0;
  if (child > 0) waitpid(child, &status, 0);
  if (child > 0 && WIFEXITED(status)) run.status = WEXITSTATUS(status);
  run.console = contentOf(out);
  run.errors = contentOf(errors);
  return run;
}

CapturedRun readInChild(const std::string& file, double length) {
  return runCaptured([&] { readDescription(file, length); });
}

void readHere(const std::string& file, double length) {
  silently([&] { readDescription(file, length); });
  SOLVEDATA.first.ISTATUS = true; // the first frequency prepares the geometry of this description
}

bool readLinesHere(const std::string& file, double length) {
  const auto lines = [&] {
    openDescription(file, length);
    readLines();
    closeReader();
  };
  if (runCaptured(lines).status != 0) return false;
  silently(lines);
  return true;
}

CapturedRun solveInChild(const std::string& file, double length, const std::string& model,
                         const std::string& report) {
  return runCaptured([&] {
    readDescription(file, length);
    solveInto(model, report);
  });
}

CapturedRun solveFitInChild(const std::string& model, const std::string& report) {
  return runCaptured([&] {
    RUNDATA.passivity.PITERSET = RUNDATA.passivity.PFLOSET = false;
    solveInto(model, report);
  });
}

} // namespace lcp::companions
