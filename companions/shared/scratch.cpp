#include "companions/shared/scratch.h"

#include "base/open_files.h"
#include "companions/shared/arguments.h"
#include "companions/shared/console_text.h"
#include "companions/shared/text.h"
#include "output/manual_files.h"
#include "output/output_file.h"
#include "store/run_groups.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

[[noreturn]] void giveUpFolder(const std::string& folder, std::string_view why) {
  giveUp(program_invocation_short_name,
         fmt::format("no scratch files in {}: {}; set TMPDIR to another folder", folder, why));
}

// The library's own search throws if there is no such folder.
std::string temporaryFolder() {
  const char* name = std::getenv("TMPDIR");
  return name != nullptr && *name != '\0' ? name : "/tmp";
}

// Children of this process end without running destructors, so only the parent removes the folder.
struct Folder {
  std::string path;

  Folder() {
    constexpr std::size_t LONGESTNAME = 16; // of a file in the folder
    const std::string parent = temporaryFolder();
    path = parent + "/corvo-XXXXXX";
    if (path.size() + LONGESTNAME > static_cast<std::size_t>(FILENAMELEN))
      giveUpFolder(parent, "its name is too long");
    if (mkdtemp(path.data()) == nullptr) giveUpFolder(parent, std::strerror(errno));
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
};

const Folder& scratchFolder() {
  static const Folder folder;
  return folder;
}

// Whether the run could not open or write a file in the folder. Errors about the contents of a file
// have other messages.
bool lacksRoom(const std::string& console) {
  for (const std::string& line : linesOf(console)) {
    const bool output =
        line.starts_with(headOf(FILENOTWRITTEN)) || line.starts_with(headOf(CANNOTOPEN));
    if (output && line.find(scratchFolder().path) != std::string::npos) return true;
    if (line == MANUALNOTOPENED) return true; // for data entered by hand
  }
  return false;
}

} // namespace

std::string scratchFile(std::string_view name) {
  return fmt::format("{}/{}", scratchFolder().path, name);
}

CapturedRun solveInScratch(const std::string& description, double length) {
  CapturedRun run = solveInChild(description, length, scratchFile("model"), scratchFile("report"));
  refuseFullScratch(run);
  return run;
}

void refuseFullScratch(const CapturedRun& run) {
  if (lacksRoom(run.console)) giveUpFolder(temporaryFolder(), "they cannot be written");
}

} // namespace lcp::companions
