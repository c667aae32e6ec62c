#include "base/big_store.h"

#include "base/console.h"
#include "base/stop.h"

#include <sys/mman.h>

namespace lcp {

void* zeroPages(std::size_t bytes) {
  void* p = mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                 MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (p == MAP_FAILED) {
    console::openStars();
    console::line("Not Enough Memory for the Tables!");
    console::closeStars();
    stop(1);
  }
  return p;
}

void dropPages(void* pages, std::size_t bytes) { munmap(pages, bytes); }

} // namespace lcp
