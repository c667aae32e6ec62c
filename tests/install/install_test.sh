#!/usr/bin/env bash
# Installs a build into folders of its own, moves it, and runs every program of it from /.
# usage: install_test.sh BUILD EXAMPLES
set -euo pipefail

build=$1
examples=$2
work=$(mktemp -d "${TMPDIR:-/tmp}/corvo install.XXXXXX")
trap 'rm -rf "$work"' EXIT
failed=0

fail() {
  echo "FAILED: $*" >&2
  failed=1
}

# expect STATUS WORDS COMMAND...: the status of a command, and words among what it says.
expect() {
  local status=0
  "${@:3}" > "$work/said" 2>&1 < /dev/null || status=$?
  [[ $status == "$1" ]] || fail "status $status in place of $1: ${*:3}: $(head -5 "$work/said")"
  [[ -z $2 ]] || grep -qF -- "$2" "$work/said" || fail "'$2' is not said: ${*:3}: $(head -5 "$work/said")"
}

cd /
# Under DESTDIR, and into a folder with a blank in its name that is moved before it is used.
DESTDIR=$work/dest cmake --install "$build" --prefix "$work/usr" > /dev/null
[[ ! -e $work/usr ]] || fail "DESTDIR is not respected"
cmake --install "$build" --prefix "$work/first place" > /dev/null
mv "$work/first place" "$work/another place"
place="$work/another place"
diff <(cd "$work/dest$work/usr" && find . | sort) <(cd "$place" && find . | sort) ||
  fail "DESTDIR and a prefix differ"

# Every program has its page and its completion, knows its options and nothing of the build folder.
source "$place/share/bash-completion/completions/corvo"
compopt() { :; } # known to a completion in progress only
for program in "$place"/bin/*; do
  name=${program##*/}
  [[ -s $place/share/man/man1/$name.1 ]] || fail "$name has no manual page"
  [[ -s $place/share/bash-completion/completions/$name ]] || fail "$name has no completion"
  complete -p "$name" > /dev/null || fail "$name is not completed"
  grep -qaF "$build" "$program" && fail "$name holds the name of the build folder"
  offered=""
  for start in - /; do
    _corvo "$program" "$start" "$name"
    offered+=" ${COMPREPLY[*]}"
  done
  wanted="/file /length /increment /steps"
  if [[ $name != corvo ]]; then
    expect 0 "usage: $name " "$program" --help
    wanted=$(grep -oE '^  [-/][^ ]*' "$work/said")
    expect 0 "$name " "$program" --version
    ! "$program" --wrong > "$work/said" 2>&1 || fail "$name takes an option that it does not know"
    grep -q -e --wrong "$work/said" || fail "$name does not name an option that it does not know"
    ! "$program" --help > /dev/full 2> "$work/said" || fail "$name does not see a full device"
    [[ -s $work/said ]] || fail "$name does not tell of a full device"
  fi
  for option in $wanted; do
    [[ $offered == *" $option"* ]] || fail "$option of $name is not completed: $offered"
  done
done
_corvo corvo "$place/share/doc/corvo/examples/pi" /file
[[ ${COMPREPLY[*]} == "$place/share/doc/corvo/examples/pipetype.cbi" ]] || fail "no files completed"

# Every example through every program.
diff -r "$examples" "$place/share/doc/corvo/examples" || fail "the examples differ"
mkdir "$work/runs"
cp "$place"/share/doc/corvo/examples/* "$work/runs"
for description in "$work"/runs/*.c?i; do
  expect 0 "LCP solve constants complete." "$place/bin/corvo" /file "$description" /length 10000
  [[ -s ${description%i}o ]] || fail "no model of $description"
  expect 0 "" "$place/bin/corvo-check" "$description"
  # A Bergeron model of a cable has one real transformation, too far off at its ends.
  verdict=0
  [[ $description != */fourwire.cbi && $description != */pipetype.cbi ]] || verdict=1
  expect "$verdict" "smallest eigenvalue of Re Z" "$place/bin/corvo-verify" "$description" /length 10000
  rm "${description%i}o"
done

# What cannot be read or written, and words that are nearly options. Nothing waits for a pipe.
line=$work/runs/line500kv.cvi
mkfifo "$work/pipe.cvi" "$work/runs/x_zm.out"
trouble=("$work/none.cvi" "$work/runs" "$work/pipe.cvi" /dev/zero)
for file in "${trouble[@]}"; do
  expect 2 "Error in Opening Input Data File" timeout 20 "$place/bin/corvo-check" "$file"
  expect 2 "Error in Opening Input Data File" timeout 20 "$place/bin/corvo-verify" "$file" /length 10000
  expect 2 "Error in Opening Input Data File" timeout 20 "$place/bin/corvo-plot" "$file" /length 10000
  expect 2 "the model file" timeout 20 "$place/bin/corvo-verify" "$line" "$file" /length 10000
  expect 2 "no detail curve files" timeout 20 "$place/bin/corvo-plot" --curves "${file%/pipe.cvi}"
done
expect 2 "an empty word" "$place/bin/corvo-verify" "$line" "" /length 10000
expect 2 "unknown option /lenght" "$place/bin/corvo-verify" "$line" /lenght 10000
expect 2 "/length: 10 km is not a number" "$place/bin/corvo-check" "$line" /length "10 km"
for page in "$work/none/page.html" "$work" /dev/full; do
  expect 1 "cannot write $page" "$place/bin/corvo-plot" "$line" /length 10000 -o "$page"
done
for program in corvo-check corvo-verify; do
  expect 2 "the standard output cannot be written" \
    bash -c '"$0" "$1" /length 10000 > /dev/full' "$place/bin/$program" "$line"
done
expect 0 "" "$place/bin/corvo-plot" "$work/runs/pipetype.cbi" /length 10000 -o "$work/page.html"
[[ -s $work/page.html ]] || fail "no page"

# Without its module, and with one that is no module, the program says so at a line with a pipe and
# leaves no model; other lines run.
module=$place/lib/corvo/corvo_bessel.so
if [[ -e $module ]]; then
  for state in missing broken; do
    rm -f "$module"
    words="corvo_bessel.so is neither in $place/bin nor in $place/bin/../lib/corvo"
    if [[ $state == broken ]]; then
      echo "no module" > "$module"
      words="file too short"
    fi
    expect 1 "Cannot Load the Module for the Bessel Functions of a Pipe!" \
      "$place/bin/corvo" /file "$work/runs/pipetype.cbi" /length 10000
    grep -qF "$words" "$work/said" || fail "'$words' is not said"
    [[ ! -e $work/runs/pipetype.cbo ]] || fail "a model without the module"
    expect 2 "Cannot Load the Module" \
      "$place/bin/corvo-verify" "$work/runs/pipetype.cbi" /length 10000
    expect 0 "LCP solve constants complete." \
      "$place/bin/corvo" /file "$work/runs/singlecore.cbi" /length 10000
  done
fi
exit "$failed"
