// A temporary directory that is removed with its object.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <string_view>
#include <unistd.h>

namespace lcp::test {

// The whole content of a file; the test fails if it cannot be read.
inline std::string contentOf(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  EXPECT_TRUE(in.good()) << "cannot read " << file;
  return {std::istreambuf_iterator<char>(in), {}};
}

inline void writeContent(const std::filesystem::path& file, std::string_view text) {
  EXPECT_TRUE((std::ofstream(file, std::ios::binary) << text).flush().good()) << file;
}

class Scratch {
public:
  Scratch() {
    std::string name = (std::filesystem::temp_directory_path() / "corvo-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) std::abort(); // no test can go on without it
    directory = name;
  }
  ~Scratch() {
    if (getpid() != owner) return; // a child that ends leaves the directory to its parent
    std::error_code ignored;
    std::filesystem::remove_all(directory, ignored);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  const std::filesystem::path& path() const { return directory; }
  // The full name of a file in it; with a text, the file is written first.
  std::string file(std::string_view name) const { return (directory / name).string(); }
  std::string file(std::string_view name, std::string_view text) const {
    writeContent(directory / name, text);
    return file(name);
  }

private:
  std::filesystem::path directory;
  pid_t owner = getpid();
};

} // namespace lcp::test
