#include "base/solve_error.h"

#include "base/console.h"
#include "base/stop.h"

namespace lcp {

void stopInStars(std::string_view ending) {
  console::closeStars();
  console::line(ending);
  stop(1);
}

} // namespace lcp
