#include "companions/shared/whole_files.h"

#include "base/write_all.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

namespace lcp::companions {

namespace {

bool writeTo(const char* name, std::string_view text, bool synced) {
  const int descriptor = open(name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (descriptor < 0) return false;
  const bool good = writeAll(descriptor, text) && (!synced || fsync(descriptor) == 0);
  return close(descriptor) == 0 && good; // network file systems report a full device only here
}

} // namespace

bool readWhole(int descriptor, std::string& text) {
  text.clear();
  std::array<char, 1 << 14> block{};
  ssize_t n = 0;
  while ((n = read(descriptor, block.data(), block.size())) > 0)
    text.append(block.data(), static_cast<std::size_t>(n));
  return n == 0;
}

bool readWhole(const std::filesystem::path& file, std::string& text) {
  const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) text.clear();
  if (descriptor < 0) return false;
  const bool good = readWhole(descriptor, text);
  close(descriptor);
  return good;
}

bool writeWhole(const std::filesystem::path& file, std::string_view text, bool synced) {
  std::error_code none;
  if (std::filesystem::exists(file, none) && !std::filesystem::is_regular_file(file, none))
    return writeTo(file.c_str(), text, false);
  const std::string other = fmt::format("{}.{}", file.string(), getpid());
  const bool good =
      writeTo(other.c_str(), text, synced) && std::rename(other.c_str(), file.c_str()) == 0;
  const int why = errno;
  if (!good) unlink(other.c_str());
  errno = why;
  return good;
}

std::string cannotWrite(const std::filesystem::path& file) {
  return fmt::format("cannot write {}: {}", file.string(), std::strerror(errno));
}

} // namespace lcp::companions
