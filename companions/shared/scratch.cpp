#include "companions/shared/scratch.h"

#include "companions/shared/arguments.h"

#include <cstdlib>
#include <filesystem>

namespace lcp::companions {

namespace {

// Children of this process end without running destructors, so the folder goes with the parent.
struct Folder {
  std::filesystem::path path;

  Folder() {
    std::string name = (std::filesystem::temp_directory_path() / "corvo-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) giveUp("corvo", "no scratch folder can be made");
    path = name;
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
};

} // namespace

std::string scratchFile(std::string_view name) {
  static const Folder folder;
  return (folder.path / name).string();
}

} // namespace lcp::companions
