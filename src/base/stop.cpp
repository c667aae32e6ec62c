#include "base/stop.h"

#include "base/console.h"

#include <cstdlib>

namespace lcp {

void stop(int status) {
  const bool written = console::flush();
  std::_Exit(written ? status : 1);
}

} // namespace lcp
