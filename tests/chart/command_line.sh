#!/bin/bash
# k7chart from outside: command_line.sh K7CHART
set -uo pipefail
chart=$1
# The font library keeps its tables until the process ends, which a leak check would count.
here=$(cd "$(dirname "$0")" && pwd)
export LSAN_OPTIONS="suppressions=$here/lsan.supp:print_suppressions=0"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
failed=0
fail() { echo "FAILED: $*"; failed=1; }

for format in png svg pdf; do
  "$chart" --range 300 --output "chart.$format" || fail "drawing chart.$format"
  test -s "chart.$format" || fail "chart.$format is empty"
done
"$chart" draw --range 300 --output verb.png && cmp chart.png verb.png || fail "draw is what k7chart does without a verb"
"$chart" draw --range 300 --layer land --layer LAND --output twice.png || fail "a layer twice"
"$chart" draw --range 300 --layer land --output once.png && cmp once.png twice.png || fail "a layer drawn twice"
"$chart" draw --center N51W118 --range 100 --layer land --layer rivers --output order.png &&
  "$chart" draw --center N51W118 --range 100 --layer rivers --layer land --output other.png &&
  cmp order.png other.png || fail "land over the lakes"
"$chart" draw --range 300 --theme night --output night.png && ! cmp -s chart.png night.png || fail "the night theme"
"$chart" draw --range 300 --theme Day --output day.png && cmp chart.png day.png || fail "the day theme"
"$chart" --range 300 --output /dev/stdout | cmp - chart.png || fail "a PNG for the standard output"
ln -s chart.png link.png
"$chart" --range 250 --output link.png && test -L link.png && ! cmp -s chart.png verb.png || fail "a link is written through"
"$chart" gallery --size 900x600 && test -s gallery.png || fail "gallery"

# What the tables say is what the helps list.
says() {  # what a line of the output must hold, then arguments
  local expected=$1
  shift
  "$chart" "$@" | grep -q -- "$expected" || fail "no '$expected' in k7chart $*"
}
says gallery --help
says --projection draw --help
says --projection help draw
says gallery.png gallery -h
says ne_110m_land.shp help draw
says '^k7chart [0-9]*\.[0-9]*\.[0-9]*$' --version
says 'rivers  *Rivers .*1:110m 1:50m  *ne_110m_rivers_lake_centerlines' layers
says 'lakes .* no ' layers
says '^132,559  off the map$' pick 132,559 --projection lambert --center 0,0 --range 5000 --size 301x701
says 'Altitude (ft)  *6277693' projections
[ "$("$chart" projections | grep -c '^[a-z]')" = 9 ] || fail "nine projections"

# Wrong words, files and values: one line that names the culprit, not zero, and no picture, whole or half.
refuses() {  # what the line must hold, then arguments
  local expected=$1 said status
  shift
  said=$("$chart" "$@" 2>&1)
  status=$?
  [ $status -ne 0 ] || fail "accepted: $*"
  [ "$(wc -l <<<"$said")" = 1 ] && [[ $said == "k7chart: "*"$expected"* ]] || fail "said of '$*': $said"
  compgen -G 'chart.png*' >/dev/null && fail "left a picture: $*"
  rm -f chart.png*
}
rm -f chart.png gallery.png
printf 'no shapes' >broken.shp
printf 'no table' >broken.dbf
: >broken.shx
echo '<Options><Fill Group="Sea">blue</Fill></Options>' >theme.xml
mkdir half
cp "$here"/../../data/sample/ne_110m_land.{shp,shx} half
refuses "no verb 'paint'" paint
refuses "--bogus" --bogus
refuses "say 'k7chart gallery'" --gallery
refuses "gallery takes no --projection" gallery --projection lambert
refuses "gallery takes no --param" gallery --param "Standard Parallel 1=49"
refuses "layers takes no --range" layers --range 3
refuses "unexpected argument 'chart.svg'" draw chart.svg
refuses "--range is given twice" --range 3 --range 4
refuses "--no-graticule takes no value" --no-graticule=yes
refuses "--range needs a value" --range
refuses "unknown theme 'dusk' (day, night" --theme dusk
refuses "theme.xml': Fill of Sea is #RRGGBB" --theme theme.xml
refuses mollweide --projection mollweide
refuses "N95" --center "N95 W10"
refuses "no longitude" --center "N48 30.0"
refuses "no latitude" --center "W123 30.0"
refuses "'0'" --range 0
refuses nan --range nan
refuses 1600 --size 1600
refuses "has land, rivers, borders" --layer volcanoes
refuses "no data for the layer 'lakes'" --layer lakes
refuses "'missing.shp': No such file" --layer missing.shp
refuses "cannot read 'half/ne_110m_land.dbf'" --layer half/ne_110m_land.shp
refuses "cannot read 'half/ne_110m_land.dbf'" --data half
refuses "broken.shp" --layer broken.shp
refuses "in the folder" --data "$work"
refuses "cannot write 'no/such/folder.png': No such file" --output no/such/folder.png
refuses "cannot write '/dev/full': No space left" --output /dev/full
refuses "Mercator" --projection mercator --center "N90 E0" --range 300
refuses "field of view" --projection perspective --param "Pitch=-40" --range 300

# Parameters that give no picture are said by name, with the values that do.
param() {  # what the line must hold, projection, parameters
  local expected=$1 projection=$2 arguments=()
  shift 2
  for parameter in "$@"; do arguments+=(--param "$parameter"); done
  refuses "$expected" --projection "$projection" "${arguments[@]}"
}
param "it has Standard Parallel 1, Standard Parallel 2" lambert "Paralel=3"
param "is set twice" lambert "Standard Parallel 1=3" "standard parallel 1=4"
param "'Standard Parallel' is above -90 and below 90, not 90" rectangular "Standard Parallel=90"
param "'Standard Parallel 2' is above -90 and below 90, not -90" lambert "Standard Parallel 2=-90"
param "opposite of each other" albers "Standard Parallel 1=-30" "Standard Parallel 2=30"
param "opposite of each other" lambert "Standard Parallel 1=0" "Standard Parallel 2=0"
param "'Altitude (ft)' is from 1 to 1000000000, not 0.5" perspective "Altitude (ft)=0.5"
param "'Pitch' is from -90 to below 80, not 80" perspective "Pitch=80"
param "'Field of View Y (degs)' is above 0 and below 90, not 0" perspective "Field of View Y (degs)=0"
param "nothing but sky" perspective "Pitch=0"
param "'Heading' changes nothing" perspective "Heading=45"
param "'Field of View Y (degs)' changes nothing" perspective "Field of View Y (degs)=20" "Altitude (ft)=30000"

# The order in which parameters are given makes no difference, and a level eye near the ground sees it.
"$chart" --projection perspective --param "Pitch=0" --param "Altitude (ft)=60000" --output level.png &&
  "$chart" --projection perspective --param "Altitude (ft)=60000" --param "Pitch=0" --output same.png &&
  cmp level.png same.png || fail "a level perspective"
exit $failed
