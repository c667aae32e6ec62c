// The module is searched for in the folder of the program and in ../lib/corvo relative to it. An
// installation can therefore be moved, and the system's library search path has no influence.
#include "kernels/bessel_module.h"

#include "base/console.h"
#include "base/solve_error.h"

#include <array>
#include <climits>
#include <cstdlib>
#include <dlfcn.h>
#include <string>
#include <sys/auxv.h>
#include <unistd.h>

namespace lcp {

#ifdef CORVO_BESSEL_MODULE

namespace {

constexpr const char* PLACES[] = {"/", "/../lib/corvo/"}; // relative to the folder of the program

// The folder of the program. Without a mounted /proc, it is derived from the name by which the
// program was started.
std::string programFolder() {
  std::array<char, PATH_MAX> path{};
  if (readlink("/proc/self/exe", path.data(), path.size() - 1) < 0) {
    const auto* name = reinterpret_cast<const char*>(getauxval(AT_EXECFN)); // NOLINT(*-int-to-ptr)
    if (name == nullptr || realpath(name, path.data()) == nullptr) return ".";
  }
  const std::string program = path.data();
  return program.substr(0, program.rfind('/'));
}

[[noreturn]] void cannotLoad(std::string_view why) {
  console::openStars();
  console::line("Cannot Load the Module for the Bessel Functions of a Pipe!");
  console::line(why);
  stopInStars();
}

BesselRoutine load() {
  const std::string folder = programFolder();
  for (const char* place : PLACES) {
    const std::string file = folder + place + CORVO_BESSEL_MODULE;
    if (access(file.c_str(), F_OK) != 0) continue;
    void* module = dlopen(file.c_str(), RTLD_LAZY | RTLD_LOCAL);
    if (module == nullptr) cannotLoad(dlerror());
    void* routine = dlsym(module, "corvoBesselBall");
    if (routine == nullptr) cannotLoad(dlerror());
    return reinterpret_cast<BesselRoutine>(routine);
  }
  cannotLoad(fmt::format("{} is neither in {} nor in {}/../lib/corvo", CORVO_BESSEL_MODULE, folder,
                         folder));
}

} // namespace

BesselRoutine besselRoutine() {
  static const BesselRoutine routine = load();
  return routine;
}

#else

BesselRoutine besselRoutine() { return corvoBesselBall; }

#endif

} // namespace lcp
