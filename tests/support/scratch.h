// A directory of its own under the system's directory for temporary files, gone with the object.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace lcp::test {

class Scratch {
public:
  Scratch();
  ~Scratch();
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  const std::filesystem::path& path() const { return directory; }
  // The full name of a file in it; with a text, the file is written first.
  std::string file(std::string_view name) const;
  std::string file(std::string_view name, std::string_view text) const;

private:
  std::filesystem::path directory;
};

// The whole content of a file; fails the test when it cannot be read.
std::string contentOf(const std::filesystem::path& file);
void writeContent(const std::filesystem::path& file, std::string_view text);

} // namespace lcp::test
