#!/usr/bin/env bash
# Runs clang-tidy on the sources that changed since they passed, or on the given ones. build/lint/passed
# lists what has passed; a changed header makes all sources that include it due again.
# Its build directory is configured for clang, which does not know all flags of g++; nothing is built
# in it.
# usage: lint.sh [--all | FILES]
set -euo pipefail

start=$PWD
top=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
build=$top/build/lint
cd "$top"
tools/install_packages.sh lint

cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++-14 \
  -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON -DCORVO_BENCH=ON -DCORVO_FUZZ=ON > /dev/null

if [[ $# -gt 0 && $1 != --all ]]; then
  cd "$start"
  mapfile -t files < <(readlink -f "$@")
else
  [[ $# -eq 0 ]] || rm -f "$build/passed"
  mapfile -t files < <(find src companions tests bench -name '*.cpp' | sort)
  mapfile -t files < <(tools/lint_state.py "$build/passed" list "${files[@]}")
fi
[[ ${#files[@]} -gt 0 ]] || { echo "clang-tidy has passed all files as they stand"; exit 0; }

# Hides the count of warnings in system headers.
status=0
: > "$build/now"
printf '%s\0' "${files[@]}" |
  xargs -0 -n 1 -P "$(nproc)" bash -c 'clang-tidy-14 -p "$0" --quiet "$1" && echo "$1" >> "$0/now"' "$build" \
    2> >(grep -v ' generated\.$' >&2) || status=1
mapfile -t passed < "$build/now"
[[ ${#passed[@]} -eq 0 ]] || "$top/tools/lint_state.py" "$build/passed" pass "${passed[@]}"
echo "clang-tidy passed ${#passed[@]} of ${#files[@]} files"
exit "$status"
