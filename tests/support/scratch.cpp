#include "support/scratch.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace lcp::test {

Scratch::Scratch() {
  std::string name = (std::filesystem::temp_directory_path() / "corvo-test-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) std::abort(); // no test can go on without it
  directory = name;
}

Scratch::~Scratch() {
  std::error_code ignored;
  std::filesystem::remove_all(directory, ignored);
}

std::string Scratch::file(std::string_view name) const { return (directory / name).string(); }

std::string Scratch::file(std::string_view name, std::string_view text) const {
  writeContent(directory / name, text);
  return file(name);
}

std::string contentOf(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  EXPECT_TRUE(in.good()) << "cannot read " << file;
  return {std::istreambuf_iterator<char>(in), {}};
}

void writeContent(const std::filesystem::path& file, std::string_view text) {
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out.write(text.data(), static_cast<std::streamsize>(text.size()));
  EXPECT_TRUE(out.flush().good()) << "cannot write " << file;
}

} // namespace lcp::test
