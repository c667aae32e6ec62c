#!/usr/bin/env bash
# Fuzzes the reader of description files. Starts from the seeds, the whole-run cases and the
# examples. The corpus is kept in build/fuzz/corpus; inputs that break the reader are stored in
# tests/fuzz/finds, to be committed with the correction.
# usage: fuzz.sh [SECONDS, default 60]
set -euo pipefail

seconds=${1:-60}
top=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
cd "$top"
tools/install_packages.sh fuzz

cmake --preset fuzz > /dev/null
cmake --build --preset fuzz --target reader_fuzz

corpus=$top/build/fuzz/corpus
inputs=$top/build/fuzz/inputs
rm -rf "$inputs"
mkdir -p "$corpus" "$inputs" build/fuzz/work tests/fuzz/finds
shopt -s nullglob
for file in tests/cases/*/*.{cvi,cbi,dta} examples/*.{cvi,cbi,dta}; do
  cp "$file" "$inputs/${file//\//_}"
done
seeds=("$inputs")
[[ ! -d tests/fuzz/seeds ]] || seeds+=("$top/tests/fuzz/seeds")
# Keys and headings as the reader has them, and numbers at its limits.
dictionary=$top/build/fuzz/keys.dict
{
  grep -hv '^#include' src/input/*.cpp | grep -oE '"[[:alnum:]+#][^"\\{}]*"'
  cat tests/fuzz/limits.dict
} | sort -u > "$dictionary"

# Inputs may turn on the debug file, which is then written here.
cd build/fuzz/work
../tests/fuzz/reader_fuzz -dict="$dictionary" -max_total_time="$seconds" -timeout=10 \
  -rss_limit_mb=4096 -max_len=16384 -artifact_prefix="$top/tests/fuzz/finds/" -print_final_stats=1 -close_fd_mask=2 \
  "$corpus" "${seeds[@]}"
