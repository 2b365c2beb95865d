#!/bin/sh
# What GDAL makes of the chart's pictures and services: its positions of pixels are the second derivation.
# 77: GDAL is not there.
set -eu
k7chart=$1
command -v gdaltransform >/dev/null && command -v gdal_translate >/dev/null && command -v ogrinfo >/dev/null || exit 77
folder=$(mktemp -d)
server=
trap 'test -z "$server" || kill "$server"; rm -rf "$folder"' EXIT
cd "$folder"
fail() { echo "$1" >&2; exit 1; }

# A picture's files put its pixels where `pick` does, to a tenth of a pixel.
SPHERE="+proj=longlat +R=6378137 +no_defs"
agree() {
  "$k7chart" draw "$@" --size 600x400 --no-legend --georeference --output map.png >/dev/null 2>&1 ||
    fail "$*: not drawn"
  "$k7chart" pick "$@" --size 600x400 --xml 300,200 120,90 480,90 130,300 470,310 2>/dev/null >picked.xml
  sed -n 's/.*<Pixel X="\(.*\)" Y="\(.*\)">.*/\1 \2/p' picked.xml >pixels
  sed -n 's/.*<Lat>\(.*\)<.*/\1/p' picked.xml >lats
  sed -n 's/.*<Lon>\(.*\)<.*/\1/p' picked.xml >lons
  paste -d' ' lons lats | gdaltransform -i -t_srs "$SPHERE" map.png | paste -d' ' pixels - |
    awk '{ if (($1-$3)^2 + ($2-$4)^2 > 0.01) bad = 1 } END { exit bad || NR != 5 }' ||
    fail "$*: GDAL has the pixels elsewhere"
}
agree --projection lambert --center 47.5,-122.3 --range 200
agree --projection lambert --center=-34,150 --range 600
agree --projection albers --center 40,-100 --range 900
agree --projection mercator --center 10,179 --range 600
agree --projection miller --center 60,20 --range 800
agree --projection rectangular --center 47.5,-122.3 --range 200 --param "Standard Parallel=47"
agree --projection orthographic --center 47.5,-122.3 --range 1500
agree --projection stereographic --center 80,30 --range 1500
agree --projection gnomonic --center=-20,30 --range 1500
# The world file and the system say the same as the sidecar that GDAL prefers.
gdaltransform map.png <<END >sidecar
0.5 0.5
END
awk 'NR == FNR { line[FNR] = $1; next } { exit ($1 - line[5])^2 + ($2 - line[6])^2 > 1e-6 }' map.pgw sidecar ||
  fail "the world file and the sidecar differ"
! "$k7chart" draw --projection perspective --georeference --output tilted.png 2>/dev/null ||
  fail "a perspective has no system"

"$k7chart" serve --port 0 >address 2>/dev/null &
server=$!
for _ in 1 2 3 4 5 6 7 8 9 10; do test -s address || sleep 0.5; done
address=$(head -n 1 address)
test -n "$address" || fail "no server"

# Sea and land where they are, in all reference systems; colours are those of the theme "day".
wms="WMS:${address}wms?SERVICE=WMS&VERSION=1.3.0&REQUEST=GetMap&LAYERS=sea,land&STYLES=day&FORMAT=image/png"
for map in "EPSG:3857 -13803617,5780349,-13358338,6274861" "EPSG:4326 46,-124,49,-120" "CRS:84 -124,46,-120,49"; do
  gdal_translate -q -outsize 900 1000 "$wms&CRS=${map% *}&BBOX=${map#* }" map.tif
  for place in "-122.40 47.55 207" "-123.20 48.25 207" "-122.25 47.45 229" "-123.50 47.80 229"; do
    set -- $place
    test "$(gdallocationinfo -valonly -b 1 -wgs84 map.tif "$1" "$2")" = "$3" || fail "$map: no $3 at $1 $2"
  done
done
gdalinfo "WMS:${address}wms?SERVICE=WMS&REQUEST=GetCapabilities" | grep -q "LAYERS=navaids" ||
  fail "GDAL does not read the capabilities"

# Features that GDAL reads, and areas that are valid.
ogrinfo -ro -al -so "${address}geojson?bbox=-124,47,-121,49&layers=navaids,airspaces,land" | grep -q "Feature Count: [1-9]" ||
  fail "GDAL does not read the features"
kill "$server"
server=
