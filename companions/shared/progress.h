// Lines about the course of a longer computation, on the error stream.
#pragma once

#include <chrono>
#include <cstdio>
#include <fmt/format.h>
#include <string_view>

namespace lcp::companions {

// Silent for the first two seconds of its life.
class Progress {
public:
  explicit Progress(std::string_view program) : name(program) {}
  void note(std::string_view what) const {
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
    if (passed.count() > QUIET) fmt::print(stderr, "{}: {} ...\n", name, what);
  }

private:
  static constexpr double QUIET = 2; // s
  std::string_view name;
  std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

} // namespace lcp::companions
