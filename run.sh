#!/usr/bin/env bash
# Builds the program if it is not up to date and runs it.
#   ./run.sh                                  runs the example, a 500 kV line of 100 km
#   ./run.sh /file case.cvi /length 100000    runs the program with these arguments, here
# The exit status is that of the program.
set -euo pipefail

top=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")" && pwd)
build=$top/build/run

"$top/tools/install_packages.sh" run
mkdir -p "$build"
if ! cmake -S "$top" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCORVO_TESTS=OFF -DCORVO_COMPANIONS=OFF > "$build/configure.log" 2>&1; then
  cat "$build/configure.log" >&2
  exit 1
fi
# Prints nothing if there is nothing to build.
ninja -C "$build" corvo |
  { grep -vE '^ninja: Entering|^\[0/|^ninja: no work' || true; } >&2

if [[ $# -gt 0 ]]; then
  exec "$build/corvo" "$@"
fi

out=$top/build/example
rm -rf "$out"
mkdir -p "$out"
cp "$top/examples/line500kv.cvi" "$out"
cd "$out"
status=0
"$build/corvo" /file line500kv.cvi /length 100000 || status=$?
echo
for kind in "Line model file:line500kv.cvo" "Report file:    line500kv.out"; do
  name=${kind#*:}
  name=${name// /}
  [[ ! -e $name ]] || echo "${kind%%:*}: $out/$name"
done
exit "$status"
