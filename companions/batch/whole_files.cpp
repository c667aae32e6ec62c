#include "companions/batch/whole_files.h"

#include "base/write_all.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

namespace lcp::companions {

bool readWhole(const std::filesystem::path& file, std::string& text) {
  text.clear();
  const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return false;
  std::array<char, 1 << 14> block{};
  ssize_t n = 0;
  while ((n = read(descriptor, block.data(), block.size())) > 0)
    text.append(block.data(), static_cast<std::size_t>(n));
  close(descriptor);
  return n == 0;
}

bool writeWhole(const std::filesystem::path& file, std::string_view text, bool synced) {
  const std::string other = fmt::format("{}.{}", file.string(), getpid());
  const int descriptor = open(other.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (descriptor < 0) return false;
  bool good = writeAll(descriptor, text) && (!synced || fsync(descriptor) == 0);
  good = close(descriptor) == 0 && good; // network file systems tell a full device here only
  good = good && std::rename(other.c_str(), file.c_str()) == 0;
  const int why = errno;
  if (!good) unlink(other.c_str());
  errno = why;
  return good;
}

} // namespace lcp::companions
