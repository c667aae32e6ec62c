#!/usr/bin/env bash
# Builds the release program and measures it: start and whole runs by kind and size, beside floors
# measured at the same time. Prints tables in markdown; docs/performance.md explains them.
# usage: run.sh [--repeats N] [--only PATTERN]
set -euo pipefail

top=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
build=$top/build/bench
mkdir -p "$build"
{
  (cd "$top" && cmake --preset bench)
  cmake --build "$build" --target corvo corvo_empty corvo_floors
} > "$build/build.log" 2>&1 || { tail -20 "$build/build.log" >&2; exit 1; }
exec python3 "$top/bench/measure.py" "$build/corvo" "$build/bench/corvo_empty" \
  "$build/bench/corvo_floors" "$top/examples" "$@"
