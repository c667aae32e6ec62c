#!/usr/bin/env bash
# Builds the program and runs all tests, in release and sanitizer builds; checks the format.
set -euo pipefail

cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")"
tools/install_packages.sh test

find src companions tests bench -name '*.cpp' -print0 -o -name '*.h' -print0 |
  xargs -0 clang-format-14 --dry-run -Werror

for preset in release sanitize; do
  cmake --preset "$preset" > /dev/null
  cmake --build --preset "$preset"
done
for preset in sanitize release; do
  ctest --preset "$preset" --parallel "$(($(nproc) + 1))" # one of them mostly waits
done
