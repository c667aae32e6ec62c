#include "base/text_source.h"

#include "base/open_files.h"
#include "base/solve_error.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace lcp {

bool TextSource::open(std::string_view name, bool mayBeOutput) {
  close();
  const auto last = name.find_last_not_of(' ');
  if (last == std::string_view::npos) return false;
  const std::string file(name.substr(0, last + 1));
  // Non-blocking, so that a named pipe cannot hang the run before it is refused.
  descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  struct stat info {};
  if (descriptor < 0) return false;
  if (fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode)) {
    close();
    return false;
  }
  if (!mayBeOutput) {
    if (isOpenOutput(info)) stopAtInput(file);
    protectInput(file, info);
  }
  skipByteOrderMark();
  return true;
}

void TextSource::skipByteOrderMark() {
  constexpr std::string_view MARK = "\xEF\xBB\xBF"; // of UTF-8
  char head[MARK.size()];
  const ssize_t n = pread(descriptor, head, sizeof head, 0);
  if (n == static_cast<ssize_t>(MARK.size()) && std::string_view(head, MARK.size()) == MARK)
    lseek(descriptor, n, SEEK_SET);
}

void TextSource::close() {
  if (descriptor >= 0) ::close(descriptor);
  descriptor = -1;
  at = filled = 0;
  failed = cut = false;
}

int TextSource::get() {
  if (at == filled) {
    ssize_t n = 0;
    do {
      n = read(descriptor, buffer.data(), buffer.size());
    } while (n < 0 && errno == EINTR);
    failed = n < 0;
    if (n <= 0) return EOF;
    at = 0;
    filled = static_cast<std::size_t>(n);
  }
  return static_cast<unsigned char>(buffer[at++]);
}

TextSource::Result TextSource::next(std::string& record, std::size_t columns) {
  record.clear();
  cut = false;
  bool any = false;
  bool heldReturn = false; // a carriage return is kept only if more follows on the line
  const auto keep = [&](char c) {
    if (record.size() < columns) {
      record.push_back(c);
    } else {
      cut = true;
    }
  };
  for (int c = get(); c != '\n'; c = get()) {
    if (c == EOF) {
      if (failed) return Result::Error;
      return any ? Result::Record : Result::End;
    }
    any = true;
    if (heldReturn) keep('\r');
    heldReturn = c == '\r';
    if (!heldReturn) keep(static_cast<char>(c));
  }
  return Result::Record;
}

} // namespace lcp
