#!/bin/bash
# k7chart from outside: command_line.sh K7CHART
set -uo pipefail
chart=$1
# The font library keeps its tables until the process ends, which a leak check would count.
export LSAN_OPTIONS="suppressions=$(cd "$(dirname "$0")" && pwd)/lsan.supp:print_suppressions=0"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
failed=0
fail() { echo "FAILED: $*"; failed=1; }

for format in png svg pdf; do
  "$chart" --range 300 --output "chart.$format" || fail "drawing chart.$format"
  test -s "chart.$format" || fail "chart.$format is empty"
done
"$chart" --gallery --size 900x600 --output gallery.png || fail "gallery"
"$chart" --help | grep -q -- --projection || fail "--help"

# Wrong words, files and values: one line that names the culprit, not zero, and no picture, whole or half.
refuses() {  # what the line must hold, then arguments
  local expected=$1 said status
  shift
  said=$("$chart" --output refused.png "$@" 2>&1)
  status=$?
  [ $status -ne 0 ] || fail "accepted: $*"
  [ "$(wc -l <<<"$said")" = 1 ] && [[ $said == "k7chart: "*"$expected"* ]] || fail "said of '$*': $said"
  compgen -G 'refused.png*' >/dev/null && fail "left a picture: $*"
  rm -f refused.png*
}
printf 'no shapes' >broken.shp
printf 'no table' >broken.dbf
: >broken.shx
refuses bogus --bogus
refuses mollweide --projection mollweide
refuses "N95" --center "N95 W10"
refuses "'0'" --range 0
refuses nan --range nan
refuses 1600 --size 1600
refuses volcanoes --layer volcanoes
refuses "missing.shp" --layer missing.shp
refuses "broken.shp" --layer broken.shp
refuses "Standard Parallel" --param "Paralel=3"
refuses "Mercator" --projection mercator --center "N90 E0" --range 300
refuses "Albers" --projection albers --param "Standard Parallel 1=-30" --param "Standard Parallel 2=30"
refuses "field of view" --projection perspective --param "Pitch=-40" --range 300
refuses "out of range" --projection perspective --param "Field of View Y (degs)=180"
refuses "--gallery takes no" --gallery --param "Standard Parallel 1=49"
refuses "in the folder" --data "$work"
refuses "no/such" --output no/such/folder.png
exit $failed
