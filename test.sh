#!/usr/bin/env bash
# Builds the program and runs all tests, as released and under the sanitizers; checks the format.
set -euo pipefail

cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")"
tools/install_packages.sh test

git ls-files -z -- '*.cpp' '*.h' | xargs -0 clang-format-14 --dry-run -Werror

for preset in release sanitize; do
  cmake --preset "$preset" > /dev/null
  cmake --build --preset "$preset"
done
for preset in sanitize release; do
  ctest --preset "$preset"
done
