#include "base/open_files.h"

#include "base/console.h"
#include "base/write_all.h"

#include <cerrno>
#include <fcntl.h>
#include <map>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>
#include <utility>

namespace lcp {

namespace {

OpenFile* firstOpen = nullptr;

using Identity = std::pair<dev_t, ino_t>;
std::map<Identity, std::string> inputs; // the name of each input

Identity identityOf(const struct stat& s) { return {s.st_dev, s.st_ino}; }

bool isInput(const struct stat& file) {
  const auto input = inputs.find(identityOf(file));
  struct stat s {};
  return input != inputs.end() && stat(input->second.c_str(), &s) == 0 &&
         identityOf(s) == input->first;
}

constexpr unsigned MEMORYDEVICES = 1; // major number
constexpr unsigned NULLDEVICE = 3;
constexpr unsigned FULLDEVICE = 7;

bool isFile(const struct stat& s) {
  if (S_ISREG(s.st_mode)) return true;
  if (!S_ISCHR(s.st_mode) || major(s.st_rdev) != MEMORYDEVICES) return false;
  return minor(s.st_rdev) == NULLDEVICE || minor(s.st_rdev) == FULLDEVICE;
}

// A file system without locks counts as locked.
bool locked(int descriptor) {
  return flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

// A device cannot be emptied; the failure is ignored.
void empty(int descriptor) { [[maybe_unused]] const int emptied = ftruncate(descriptor, 0); }

// Returns the descriptor, ISINPUT, or -1.
int openForWriting(const std::string& name, bool alone) {
  constexpr int FLAGS = O_WRONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  const int descriptor = open(name.c_str(), FLAGS, 0666);
  if (descriptor < 0) return -1;
  struct stat s {};
  const bool good = fstat(descriptor, &s) == 0 && isFile(s);
  const bool input = good && isInput(s);
  // A device is never locked.
  if (good && !input && (!alone || !S_ISREG(s.st_mode) || locked(descriptor))) return descriptor;
  close(descriptor);
  return input ? ISINPUT : -1;
}

} // namespace

void protectInput(const std::string& name, const struct stat& file) {
  inputs[identityOf(file)] = name;
}

void protectInput(const std::string& name) {
  struct stat s {};
  if (stat(name.c_str(), &s) == 0 && S_ISREG(s.st_mode)) protectInput(name, s);
}

void releaseInput(const std::string& name) {
  struct stat s {};
  if (stat(name.c_str(), &s) == 0) inputs.erase(identityOf(s));
}

bool isInput(const std::string& name) {
  struct stat s {};
  return stat(name.c_str(), &s) == 0 && isInput(s);
}

bool isOpenOutput(const struct stat& file) {
  for (OpenFile* f = firstOpen; f != nullptr; f = f->next) {
    struct stat s {};
    if (fstat(f->descriptor, &s) != 0 || identityOf(s) != identityOf(file)) continue;
    if (f->emptied == Emptied::WHEN_WRITTEN) f->end = EarlyEnd::UNTOUCHED;
    return true;
  }
  return false;
}

bool openListed(OpenFile& file, bool alone) {
  file.collected.clear();
  file.descriptor = openForWriting(file.name, alone);
  if (file.descriptor < 0) return false;
  if (file.emptied == Emptied::AT_OPENING) empty(file.descriptor);
  file.next = firstOpen;
  firstOpen = &file;
  return true;
}

int dropListed(OpenFile& file) {
  for (OpenFile** at = &firstOpen; *at != nullptr; at = &(*at)->next) {
    if (*at != &file) continue;
    *at = file.next;
    break;
  }
  return std::exchange(file.descriptor, -1);
}

bool writeCollected(OpenFile& file, int descriptor) {
  if (file.emptied == Emptied::WHEN_WRITTEN) empty(descriptor);
  const bool good = writeAll(descriptor, file.collected);
  file.collected.clear();
  return good;
}

void leave(const OpenFile& file) {
  struct stat s {};
  if (file.end == EarlyEnd::KEEP || file.end == EarlyEnd::UNTOUCHED) return;
  if (stat(file.name.c_str(), &s) != 0 || !S_ISREG(s.st_mode)) return;
  // If this fails too, the message at the end of the run must do.
  [[maybe_unused]] const int emptied = truncate(file.name.c_str(), 0);
  if (file.end == EarlyEnd::REMOVE) unlink(file.name.c_str());
}

void sayCannotWrite(std::string_view name) {
  console::openStars();
  console::print(FILENOTWRITTEN, name);
  console::closeStars();
}

bool endOpenFiles() {
  bool good = true;
  while (firstOpen != nullptr) {
    OpenFile& file = *firstOpen;
    const int descriptor = dropListed(file);
    const bool kept = file.end == EarlyEnd::KEEP;
    bool written = !kept || writeCollected(file, descriptor);
    // Network file systems report a full device only when the file is closed.
    written = (close(descriptor) == 0 || !kept) && written;
    if (!written) sayCannotWrite(file.name);
    good = good && written;
    leave(file);
  }
  return good;
}

} // namespace lcp
