#include "base/solve_error.h"

#include "base/console.h"
#include "base/stop.h"

namespace lcp {

void stopInStars(std::string_view ending) {
  console::closeStars();
  console::line(ending);
  stop(1);
}

void stopAtInput(std::string_view name) {
  console::openStars();
  console::print("Output File is an Input File of the Run: {}", name);
  stopInStars("LCPMAIN Ending!");
}

void stopWithoutMemory() {
  console::flush(); // frees the buffer: the frame below fits into it
  console::text("\n*******************************************\nCorvo.exe: ERROR\n"
                "Not Enough Memory!\n*******************************************\n");
  stop(1);
}

} // namespace lcp
