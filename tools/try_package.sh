#!/usr/bin/env bash
# Builds the Debian package, checks it with lintian, installs it in a minimal Debian 12, runs every
# example through every program there, and removes it.
# usage: try_package.sh
#
# Needs root, debootstrap, lintian and a package mirror (that of the host's apt). The minimal system
# is kept as build/package/bare.tar for the next run.
set -euo pipefail

top=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
build=$top/build/debian
out=$top/build/package
suite=bookworm
work=""

say() { echo "== $*"; }
fail() {
  echo "FAILED: $*" >&2
  exit 1
}
clean() {
  [[ -n $work ]] || return 0
  ! mountpoint -q "$work/root/proc" || umount "$work/root/proc"
  rm -rf "$work"
}
trap clean EXIT

[[ $(id -u) -eq 0 ]] || fail "a root of its own needs root"
for tool in debootstrap lintian dpkg-shlibdeps; do
  command -v "$tool" > /dev/null || fail "$tool is missing"
done

say "package"
mkdir -p "$out"
rm -f "$out"/*.deb
(umask 027 # permissions in the package must not depend on the umask
  cmake -S "$top" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCORVO_TESTS=OFF \
    -DCORVO_WERROR=ON > "$out/configure.log"
  cmake --build "$build" > "$out/build.log" || { tail -20 "$out/build.log"; exit 1; }
  cd / && cpack -G DEB --config "$build/CPackConfig.cmake" -B "$out" > "$out/cpack.log" 2>&1 ||
    { cat "$out/cpack.log"; exit 1; })
package=$(ls "$out"/corvo_*.deb)
dpkg-deb --info "$package" | sed -n '/Package:/,$p; /Depends:/p; /Maintainer:/p'
rm -rf "$out/_CPack_Packages"

say "lintian"
lintian --allow-root --fail-on error "$package"

say "a bare system"
work=$(mktemp -d "${TMPDIR:-/tmp}/corvo-package.XXXXXX")
root=$work/root
if [[ ! -e $out/bare.tar ]]; then
  mirror=$(apt-get indextargets --format '$(SITE)' 'Identifier: Packages' "Codename: $suite" 'Label: Debian' | head -1)
  [[ -n $mirror ]] || fail "apt of this machine has no mirror of $suite"
  debootstrap --variant=minbase "$suite" "$root" "$mirror" > "$out/debootstrap.log" ||
    { tail -5 "$out/debootstrap.log"; exit 1; }
  tar -C "$root" -cf "$out/bare.tar.part" .
  mv "$out/bare.tar.part" "$out/bare.tar"
else
  mkdir "$root"
  tar -C "$root" -xf "$out/bare.tar"
fi
cp /etc/resolv.conf "$root/etc/resolv.conf"

inside() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C DEBIAN_FRONTEND=noninteractive "$@"; }
user() { chroot --userspec=nobody:nogroup "$root" env -i PATH=/usr/bin:/bin LC_ALL=C "$@"; }
# Lists the files of the system, except those in which apt and dpkg keep their records.
files() { (cd "$root" && find . -xdev \( -path ./proc -o -path ./var/cache -o -path ./var/log -o -path ./var/lib/apt -o -path './var/lib/dpkg/*-old' \) -prune -o -print | sort); }

inside apt-get -q update > "$out/apt.log" 2>&1 || { tail -5 "$out/apt.log"; exit 1; }
files > "$work/before"

say "installation"
cp "$package" "$root/tmp/corvo.deb"
inside apt-get -q -y --no-install-recommends install /tmp/corvo.deb >> "$out/apt.log" 2>&1 ||
  { tail -20 "$out/apt.log"; exit 1; }
rm "$root/tmp/corvo.deb"
echo "$(comm -13 "$work/before" <(files) | wc -l) files more, among them $(inside dpkg -L corvo | wc -l) of corvo"

# run STATUS COMMAND...
run() {
  local status=0
  user "${@:2}" > "$work/said" 2>&1 < /dev/null || status=$?
  [[ $status == "$1" ]] || { cat "$work/said"; fail "status $status in place of $1: ${*:2}"; }
}
examples() { # through every program, with and without /proc; compares the files with those of the build
  mkdir -p "$work/here" && cp "$top"/examples/* "$work/here"
  install -d -o nobody "$root/tmp/runs" && cp "$top"/examples/* "$root/tmp/runs"
  local description name verdict count=0
  for description in "$top"/examples/*.c?i; do
    name=${description##*/}
    run 0 corvo /file "/tmp/runs/$name" /length 10000
    (cd "$work/here" && "$build/corvo" /file "$name" /length 10000 > /dev/null)
    for made in "${name%i}o" "${name%.*}.out"; do
      # The only difference is that the model names the file it was made from.
      diff <(sed 's#/tmp/runs/##' "$root/tmp/runs/$made") "$work/here/$made" || fail "$made differs"
    done
    run 0 corvo-check "/tmp/runs/$name"
    # A Bergeron model of a cable has one real transformation, too far off at its ends.
    verdict=0
    [[ $name != fourwire.cbi && $name != pipetype.cbi ]] || verdict=1
    run "$verdict" corvo-verify "/tmp/runs/$name" /length 10000
    run 0 corvo-plot "/tmp/runs/$name" /length 10000
    [[ -s $root/tmp/runs/${name%.*}.html ]] || fail "no page of $name"
    count=$((count + 1))
  done
  rm -rf "$root/tmp/runs"
  echo "$count examples through corvo, corvo-check, corvo-verify and corvo-plot"
}

say "examples, without /proc and with it"
examples
if mount -t proc proc "$root/proc" 2> /dev/null; then
  examples
else
  echo "/proc cannot be mounted here"
fi
for program in "$root"/usr/bin/corvo-*; do
  run 0 "${program##*/}" --help
  run 0 "${program##*/}" --version
done

say "removal"
inside apt-get -q -y purge --autoremove corvo >> "$out/apt.log" 2>&1 || { tail -20 "$out/apt.log"; exit 1; }
# The caches of libraries change; no file may be added or missing.
diff "$work/before" <(files) > "$work/left" || { cat "$work/left"; fail "files remain"; }
echo "nothing remains"
