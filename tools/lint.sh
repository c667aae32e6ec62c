#!/usr/bin/env bash
# Runs clang-tidy on all sources, or on the given ones. Its build directory is configured for clang,
# which does not know all flags of g++; nothing is built in it.
# usage: lint.sh [FILES]
set -euo pipefail

start=$PWD
top=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
cd "$top"
tools/install_packages.sh lint

cmake -S . -B build/lint -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++-14 \
  -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON -DCORVO_BENCH=ON -DCORVO_FUZZ=ON > /dev/null

if [[ $# -gt 0 ]]; then
  cd "$start"
  files=("$@")
else
  mapfile -t files < <(find src companions tests bench -name '*.cpp' | sort)
fi
# Hides the count of warnings in system headers.
printf '%s\0' "${files[@]}" |
  xargs -0 -n 1 -P "$(nproc)" clang-tidy-14 -p "$top/build/lint" --quiet 2> >(grep -v ' generated\.$' >&2)
echo "clang-tidy found nothing in ${#files[@]} files"
