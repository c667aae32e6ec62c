#include "base/write_all.h"

#include <cerrno>
#include <unistd.h>

namespace lcp {

bool writeAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t n = write(descriptor, text.data(), text.size());
    if (n > 0) {
      text.remove_prefix(static_cast<std::size_t>(n));
    } else if (n == 0 || errno != EINTR) {
      return false;
    }
  }
  return true;
}

} // namespace lcp
