#!/usr/bin/env bash
# Installs the missing packages on Debian 12; does nothing if all are installed.
# usage: install_packages.sh run|test|lint|fuzz
set -euo pipefail

run=(g++ cmake ninja-build liblapack-dev libblas-dev libfmt-dev libflint-arb-dev)
test=("${run[@]}" nlohmann-json3-dev libopenblas-serial-dev libgtest-dev python3 clang-format-14
  libjs-dygraphs chromium chromium-driver parallel slurm-wlm munge procps)
lint=("${test[@]}" libbenchmark-dev clang-14 clang-tidy-14)
fuzz=("${run[@]}" clang-14 libclang-rt-14-dev)

case "${1:-}" in
  run) wanted=("${run[@]}") ;;
  test) wanted=("${test[@]}") ;;
  lint) wanted=("${lint[@]}") ;;
  fuzz) wanted=("${fuzz[@]}") ;;
  *) echo "usage: install_packages.sh run|test|lint|fuzz" >&2; exit 2 ;;
esac

if ! command -v apt-get > /dev/null || ! command -v dpkg-query > /dev/null; then
  echo "This system has no apt-get. The packages needed, by their names on Debian 12, are:" >&2
  echo "  ${wanted[*]}" >&2
  echo "Install them by hand and build with cmake --preset release; cmake --build --preset release" >&2
  exit 1
fi

missing=()
for package in "${wanted[@]}"; do
  status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2> /dev/null || true)
  [[ $status == installed ]] || missing+=("$package")
done
[[ ${#missing[@]} -gt 0 ]] || exit 0

as_root=()
if [[ $(id -u) -ne 0 ]]; then
  if ! command -v sudo > /dev/null; then
    echo "These packages are missing, and there is no sudo to install them: ${missing[*]}" >&2
    exit 1
  fi
  as_root=(sudo)
fi
echo "Installing ${missing[*]}" >&2
"${as_root[@]}" apt-get update -q >&2
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
  apt-get install -q -y --no-install-recommends "${missing[@]}" >&2
