// Fuzz target of the reader: any bytes as a description file.
//
// An even number of bytes is read as a line, an odd one as a cable system.
#include "base/console.h"
#include "base/stop.h"
#include "input/reader.h"
#include "store/rundata.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <unistd.h>

namespace lcp {

namespace {
struct Stopped {
  int status;
};
} // namespace

// The end of a run ends only the current input.
[[noreturn]] void stop(int status) {
  console::flush();
  if (status != 1) std::abort();
  throw Stopped{status};
}

namespace {

void checkTables() {
  const ConductorTable& C = RUNDATA.cond;
  // a table of Y and Z has its own order; a cable system counts its conductors only in the solve
  const bool table = RUNDATA.run.DATAFMT == ROUTEMULTIPLE;
  const int described = RUNDATA.run.ISCABLE == OVERHEADLINE ? MAXEQUIV : MAXCOND;
  const int most = table ? LDMAT : described;
  const int NC = RUNDATA.line.NC;
  if (C.NCOND < 0 || C.NCOND > MAXCOND || NC < 0 || NC > most) std::abort();
  const CableTable& T = RUNDATA.cable;
  const int moved = T.MIXEDOH ? NC - C.NCOND : 0; // roles follow those of the cables
  for (int i = 1; i <= C.NCOND + moved; ++i) {
    if (C.CMAP[i] < MAPKEPT || C.CMAP[i] > C.NCOND + moved) std::abort();
  }
  for (int i = 1; i <= MAXCABLE; ++i) {
    if (T.CB[i].CBNLAY < 0 || T.CB[i].CBNLAY > MOSTLAYERS + 1) std::abort();
  }
}

int silentConsole() {
  const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
  dup2(null, STDOUT_FILENO);
  return null;
}

} // namespace

} // namespace lcp

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lcp;
  static const int null = silentConsole();
  static const int file = memfd_create("description", 0);
  if (null < 0 || ftruncate(file, 0) != 0) return 0;
  if (pwrite(file, data, size, 0) != static_cast<ssize_t>(size)) return 0;
  RUNDATA.run = RunControl{};
  RUNDATA.run.FILESREAD = 1; // so that the reader resets what the previous input left
  RUNDATA.run.FNAME = fmt::format("/proc/self/fd/{}", file);
  RUNDATA.run.ISCABLE = static_cast<int>(size % 2);
  RUNDATA.run.LINELEN = 1000.0;
  try {
    READTLDATA();
    checkTables();
  } catch (const Stopped&) {
    return 0;
  }
  return 0;
}
