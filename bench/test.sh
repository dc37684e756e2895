#!/bin/sh
# What the benchmark promises beside its figures: test.sh BENCHMARK LYING_BENCHMARK
set -eu
bench=$1
lying=$2
files=$(mktemp -d)
trap 'rm -rf "$files"' EXIT

fail() {
  printf 'bench/test.sh: %s\n' "$*" >&2
  exit 1
}
# fails_with STATUS TEXT COMMAND …: what it says on standard error has the text in it.
fails_with() {
  expected=$1
  text=$2
  shift 2
  status=0
  "$@" >"$files/out" 2>"$files/err" || status=$?
  [ "$status" = "$expected" ] || fail "exit status $status, not $expected, of $*"
  grep -qF -- "$text" "$files/err" || fail "no \"$text\" from $*"
}

# Every subject is measured, with results that agree.
"$bench" --list | sed 's/^  //' >"$files/listed"
[ "$(wc -l <"$files/listed")" -gt 50 ] || fail "too few subjects"
[ -z "$(sort "$files/listed" | uniq -d)" ] || fail "two subjects have one name"
"$bench" --quick --data "$files/data" >"$files/quick"
while read -r subject; do
  grep -qF -- "$subject: own, " "$files/quick" || fail "not measured: $subject"
done <"$files/listed"
awk -F '\t' 'NF != 6 || (NR > 1 && $5 < 0)' "$files/data" | grep -q . && fail "wrong data"
[ "$(grep -c '	own	' "$files/data")" = "$(wc -l <"$files/listed")" ] || fail "data of other subjects"

# Those that are named are measured, and no others; the table has a line for each.
"$lying" --processes 2 honest >"$files/table"
grep -q '^| An honest subject *|.*| fine, .* %' "$files/table" || fail "no line for the subject"
grep -q 'liar' "$files/table" && fail "a line that nobody wanted"

fails_with 2 'there is no subject with "nonsense"' "$bench" nonsense
grep -qF '  FloorQTX' "$files/err" || fail "the subjects are not listed"
fails_with 2 'needs all subjects' "$bench" --write-docs FloorQTX
fails_with 2 'nonsense' "$bench" --nonsense

# A peer that computes something else.
"$lying" --quick honest >"$files/out"
fails_with 1 'A subject with a liar: liar, input 3' "$lying" --quick

# The pictures can be made of the data.
if command -v gnuplot >/dev/null; then
  gnuplot -c "$(dirname "$0")/pictures.gp" "$files/data" "$files" 2>"$files/err" || fail "$(cat "$files/err")"
  for picture in ratios spline queue text; do
    grep -q '</svg>' "$files/$picture.svg" || fail "no picture $picture.svg"
  done
fi
