// Fuzz target of the reader: any bytes as a description file. The first byte chooses the kind of
// system and the length; the rest is the file.
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

// The end of a run is the end of one input here.
[[noreturn]] void stop(int status) {
  console::flush();
  if (status != 1) std::abort();
  throw Stopped{status};
}

namespace {

void checkTables() {
  const ConductorTable& C = RUNDATA.cond;
  if (C.NCOND < 0 || C.NCOND > MAXCOND || RUNDATA.line.NC < 0 || RUNDATA.line.NC > MAXEQUIV) {
    std::abort();
  }
  for (int i = 1; i <= C.NCOND; ++i) {
    if (C.CMAP[i] < MAPKEPT || C.CMAP[i] > C.NCOND) std::abort();
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
  if (size == 0 || null < 0 || ftruncate(file, 0) != 0) return 0;
  if (pwrite(file, data + 1, size - 1, 0) != static_cast<ssize_t>(size - 1)) return 0;
  RUNDATA.run = RunControl{};
  RUNDATA.run.FNAME = fmt::format("/proc/self/fd/{}", file);
  RUNDATA.run.ISCABLE = data[0] & 1;
  RUNDATA.run.LINELEN = (data[0] & 2) != 0 ? 1e-12 : 1000.0;
  try {
    READTLDATA();
    checkTables();
  } catch (const Stopped&) {
    return 0;
  }
  return 0;
}
