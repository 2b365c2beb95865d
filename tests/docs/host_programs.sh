#!/bin/bash
# Runs the programs of docs/writing_a_host.md and compares what they say with what is known from elsewhere:
#   host_programs.sh SOURCE PROGRAMS
set -euo pipefail
data=$1/data/sample
bin=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
same() { diff -u - "$1" || { echo "$1 is not what it should be"; exit 1; }; }

# Los Angeles to New York, and 100 NM of the way, as Ed Williams's "Aviation Formulary" works it: 2144 NM (0.623585
# radians), 66 degrees (1.150035 radians), 34 37 N 116 33 W.
"$bin/host_course" "N33 57 W118 24" "N40 38 W073 47" >course
same course <<<'2143.73 NM on a course of 65.89
after 100 NM N34 37 W116 33'

"$bin/host_settings" options.xml log >/dev/null
"$bin/host_settings" options.xml log >settings
grep -qx 'options.xml: 64 MiB for terrain' settings
tail -n +2 settings | diff -u options.xml -
[ "$(grep -c '^..:..:..  W  options.xml: ' log)" = 1 ]
"$bin/host_own_files" >own_files
[ "$(head -1 own_files)" = 'cache of 48 MiB' ]

# 300 NM are the 300 pixels above the middle; Seattle falls where the stereographic formula has it (J. P. Snyder,
# "Map Projections: A Working Manual", equations 21-2 to 21-4).
"$bin/host_coast" "$data/ne_50m_land.shp" coast.svg >coast
same coast <<<'centre at 400.0 300.0
1.000 NM a pixel'
seattle=$(awk 'BEGIN { d = atan2(0, -1) / 180; r = 3437.74677; p0 = 48.5 * d; p = 47.45 * d; l = (123.5 - 122.31) * d
  k = 2 / (1 + sin(p0) * sin(p) + cos(p0) * cos(p) * cos(l))
  printf "M%.2f %.2f", 400 + r * k * cos(p) * sin(l), 300 - r * k * (cos(p0) * sin(p) - sin(p0) * cos(p) * cos(l)) }')
grep -q "stroke='rgba(204,0,128,1.000)'.* d='${seattle}L" coast.svg

# The table's header counts its records; between 12 and 20 east, 46 and 52 north of these great rivers flows the Danube.
"$bin/host_shapes" "$data/ne_110m_rivers_lake_centerlines.shp" >shapes
rows=$(od -An -tu4 -j4 -N4 "$data/ne_110m_rivers_lake_centerlines.dbf" | tr -d ' ')
grep -q "^ne_110m_rivers_lake_centerlines: $rows records" shapes
[ "$(sed 1d shapes | cut -d, -f1)" = '5: Danube' ]

# The cone by its own slope; the mountain between the four posts of the source about it, in feet.
"$bin/host_elevations" "$data/terrain" relief.png >elevations
[ "$(head -1 elevations)" = ' 0 NM 6000 ft; 18 NM 4200 ft; 36 NM 2400 ft; 54 NM 600 ft;' ]
mountain=$(awk -F, -v lat=49.6666667 -v lon=-123.3333333 '
  NR > 1 && $1 > lat - 0.02157 && $1 < lat + 0.02157 && $2 > lon - 0.0333 && $2 < lon + 0.0333 {
    sum += $3 * (1 - sqrt(($1 - lat) ^ 2) / 0.02157) * (1 - sqrt(($2 - lon) ^ 2) / 0.03331) }
  END { print sum / 0.3048 }' "$data/terrain/salish_sea.csv")
awk -v want="$mountain" '/^at / { near = $6 > want - 5 && $6 < want + 5 } END { exit !near }' elevations
[ "$(od -An -tx1 -N24 relief.png | tr -d ' \n')" = 89504e470d0a1a0a0000000d4948445200000140000000f0 ]

"$bin/host_store" >store
[ "$(sed -n 1,2p store)" = 'NZAA (AUCKLAND)
47.4500' ]
grep -qa '>N 47 27.0   W 122 18.6<' store

# 120 NM are two degrees of a meridian.
"$bin/host_chart" "$data/ne_50m_land.shp" chart.svg >chart
awk '{ exit !($4 <= 45.45 && $4 > 45.2 && $6 >= 49.45 && $6 < 49.7) }' chart
grep -q "<text x='406.00' y='304.00'>KSEA</text>" chart.svg
grep -q "stroke='rgba(204,0,128,1.000)'.* d='M400.00 300.00L" chart.svg
