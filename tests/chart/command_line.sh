#!/bin/bash
# k7chart from outside: command_line.sh K7CHART
source "$(dirname "$0")/../support/command_line.sh"
chart=$program
sample=$data

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

# Airport diagrams: of mapping sets, of runways alone, of each airport that there is.
for format in png svg pdf; do
  "$chart" airport ksea --output "field.$format" && test -s "field.$format" || fail "airport field.$format"
done
"$chart" airport KSEA --aerodrome none --output runways.png && ! cmp -s field.png runways.png || fail "runways alone"
"$chart" airport KSEA --theme night --output dark.png && ! cmp -s field.png dark.png || fail "an airport by night"
awk '$1 ~ /^(1|16|17)$/ { print $5 }' "$sample/navdata/apt.dat" | while read -r ident; do
  "$chart" airport "$ident" --size 300x300 --output small.png || echo "$ident"
done | grep . && fail "airports"
if command -v python3 >/dev/null; then
  mkdir -p made/aerodrome made/navdata
  cp "$sample/aerodrome/make.py" made/aerodrome && cp "$sample/navdata/apt.dat" made/navdata &&
    python3 made/aerodrome/make.py && diff -r made/aerodrome "$sample/aerodrome" || fail "aerodrome sets are not made so"
fi

# What the tables say is what the helps list.
says() {  # what a line of the output must hold, then arguments
  local expected=$1
  shift
  grep -q -- "$expected" <<<"$("$chart" "$@")" || fail "no '$expected' in k7chart $*"
}
says gallery --help
says --projection draw --help
says --projection help draw
says --version -h
says --version --help
says --output draw --range 3 --help
says gallery.png gallery -h
says ne_110m_land.shp help draw
says '^k7chart [0-9]*\.[0-9]*\.[0-9]*$' --version
says '^132,559  off the map$' pick 132,559 --projection lambert --center 0,0 --range 5000 --size 301x701
says 'X,Y' pick --help
says 'each from 200 to 16000' help pick
says 'each from 450 to 16000' help gallery

# Words of a help stand in lines of 80 characters, each as full as it goes.
"$chart" help draw | awk 'length > 80 { exit 1 }
  /^   / && last ~ /^  / { split($0, words, " "); if (length(last) + 1 + length(words[1]) <= 80) exit 1 } { last = $0 }' ||
  fail "lines of the help"

# The lists as a whole.
lists() {  # verb and arguments; the list is the standard input
  cat >expected.txt
  env K7CHART_DATA="$sample" "$chart" "$@" >list.txt
  diff expected.txt list.txt >&2 || fail "the list of $1"
}
lists projections <<'END'
                            default       values
lambert        Lambert Conformal
    Standard Parallel 1     45            above -90 and below 90; unless set, laid through the chart
    Standard Parallel 2     30            above -90 and below 90; unless set, laid through the chart
mercator       Mercator
orthographic   Orthographic
rectangular    Rectangular
    Standard Parallel       0             above -90 and below 90
miller         Miller
albers         Albers Equal-Area
    Standard Parallel 1     45            above -90 and below 90; unless set, laid through the chart
    Standard Parallel 2     30            above -90 and below 90; unless set, laid through the chart
perspective    General Perspective
    Altitude (ft)           62776939.1    from 1 to 1000000000
    Heading                 0             from -360 to 360
    Bank                    0             from -360 to 360
    Pitch                   -90           from -90 to below 80
    Field of View Y (degs)  45            above 0 and below 90
stereographic  Stereographic
gnomonic       Gnomonic
END
lists layers --nav none.db --terrain none <<END
Layers in $sample

  layer      theme      present       sets
  land       Land       1:110m 1:50m  ne_110m_land, ne_50m_land, ne_10m_land
  terrain    Terrain    no            no terrain: '--terrain FOLDER' names region files that 'k7terrain build' has made
  contours   Contours   no            no terrain: '--terrain FOLDER' names region files that 'k7terrain build' has made
  lakes      Lakes      no            ne_110m_lakes, ne_50m_lakes, ne_10m_lakes
  rivers     Rivers     1:110m 1:50m  ne_110m_rivers_lake_centerlines, ne_50m_rivers_lake_centerlines, ne_10m_rivers_lake_centerlines
  borders    Borders    1:110m 1:50m  ne_110m_admin_0_boundary_lines_land, ne_50m_admin_0_boundary_lines_land, ne_10m_admin_0_boundary_lines_land
  elevations Elevations no            no terrain: '--terrain FOLDER' names region files that 'k7terrain build' has made
  isogonics  Isogonics  yes           $sample/magnetic/WMM.COF
  airspaces  Airspaces  no            cannot read the navigation data 'none.db': No such file or directory
  airways    Airways    no            cannot read the navigation data 'none.db': No such file or directory
  fixes      Fixes      no            cannot read the navigation data 'none.db': No such file or directory
  navaids    Navaids    no            cannot read the navigation data 'none.db': No such file or directory
  airports   Airports   no            cannot read the navigation data 'none.db': No such file or directory

1:110m serves beyond 2500 NM of range.
1:50m serves beyond 400 NM of range.
Where a set is missing, the next finer one is taken, or else a coarser. '--layer FILE.shp' draws any
other set.
END

# Pixels: 1600x1000 has its window from 70,38 to 1530,910 and so its middle at 800,474. Kansas is land.
kansas=(--center "N38 30 W98 00" --projection stereographic --layer land)
picks() {  # pixel, its line, the line below it or nothing, then arguments
  local pixel=$1 first=$2 second=$3 said
  shift 3
  said=$("$chart" pick "$pixel" "$@" 2>&1 |
    sed -E '1s/  (no elevation|-?[0-9]+ ft  -?[0-9]+ m)  variation [0-9]+\.[0-9]° [EW]$//')
  [ "$said" = "$pixel  $first${second:+$'\n'    $second}" ] || fail "said of pick $pixel $*: $said"
}
middle='N38 30.000 W098 00.000'
picks 800,474 "$middle" "ne_50m_land: Land" "${kansas[@]}" --range 2500
picks 800,474 "$middle" "ne_110m_land: Country" "${kansas[@]}" --range 2501
picks 800,474 "$middle" "ne_110m_land: Country" "${kansas[@]}"
picks 800,474 "$middle" "ne_50m_land: Land" "${kansas[@]}" --range=1
picks 800,474 'N48 30.000 W123 30.000' "" --range 10 --layer rivers
picks 800,474 'N48 30.000 W123 30.000' "" --range 10 --layer rivers --center "48.5, -123.5"
picks 800,474 'N50 00.000 W140 00.000' "" --range 10 --layer rivers --center 50N40
picks 800,474 'N48 30.000 E003 00.000' "" --range 10800 --layer rivers --center "n48 30 e3" --projection orthographic
picks -5,3 "outside the picture" "" --range 10
picks 3,-5 "outside the picture" "" --range 10
picks 1601,3 "outside the picture" "" --range 10
picks 3,1001 "outside the picture" "" --range 10
for pixel in 1600,1000 0,0 69.9,474 800,37.9 1530.1,474 800,910.1; do
  picks $pixel "outside the chart's frame" "" --range 10
done
for pixel in 70,38 1530,910 70,910 1530,38; do
  "$chart" pick $pixel --range 10 | grep -q "^$pixel  N4" || fail "the frame's corner $pixel"
done
[ "$("$chart" pick 800,474 1,1 --range 10 --layer rivers | wc -l)" = 2 ] || fail "two pixels"
elev=$("$chart" elev "48.5 -123.5" | sed -E 's/  posts .*//')
"$chart" pick 800,474 --range 10 --layer rivers | grep -q "^800,474  $elev  variation 1[45]\.[0-9]° E$" || fail "the elevation of a pixel"
# Texts of a set in UTF-8 are UTF-8 in lines and windows-1252 in XML.
for ending in shp shx; do cp "$sample/ne_110m_land.$ending" "accent.$ending"; done
LC_ALL=C sed $'s/Country/C\xc3\xb4untr/g' "$sample/ne_110m_land.dbf" >accent.dbf
echo UTF-8 >accent.cpg
picks 800,474 "$middle" "accent: Côuntr" "${kansas[@]:0:4}" --layer accent.shp
"$chart" pick 800,474 3,3 "${kansas[@]:0:4}" --layer accent.shp --xml | iconv -f windows-1252 -t utf-8 >accent.xml
for line in '<Nothing>outside the chart.*</Nothing>' '<Record Layer="accent" Text="accent: Côuntr">' '<featurecla Name="featurecla">Côuntr</featurecla>'; do
  grep -q "$line" accent.xml || fail "no $line in XML"
done
# Records are those of the library, and the whole is XML to others.
"$chart" pick 800,474 1,1 --range 20 --center "N47 27 W122 18.6" --xml --full >sea.xml
grep -q '<Ident Name="Ident">KSEA</Ident>' sea.xml && grep -q 'V23: SEA' sea.xml || fail "the records of a pixel"
! command -v xmllint >/dev/null || xmllint --noout sea.xml || fail "XML"

# Sets by file are what their name says; folders with one scale only serve all ranges; the environment names a folder.
mkdir coarse fine empty
cp "$sample"/ne_110m_land.* coarse
cp "$sample"/ne_50m_land.* fine
for ending in shp shx dbf; do cp "$sample/ne_110m_land.$ending" "other.$ending"; cp "$sample/ne_110m_land.$ending" "LAND.$ending"; done
picks 800,474 "$middle" "ne_110m_land: Country" "${kansas[@]}" --range 100 --data coarse
picks 800,474 "$middle" "ne_50m_land: Land" "${kansas[@]}" --range 5000 --data fine
K7CHART_DATA=coarse picks 800,474 "$middle" "ne_110m_land: Country" "${kansas[@]}" --range 100
small=(--data coarse --size 400x300)
"$chart" "${small[@]}" --layer land --output named.png
for set in LAND coarse/ne_110m_land; do
  "$chart" "${small[@]}" --layer $set.shp --output file.png && cmp named.png file.png || fail "$set.shp is land"
done
"$chart" "${small[@]}" --layer other.shp --output file.png && ! cmp -s named.png file.png || fail "other.shp is no land"

# Routes: the table's legs are airways of the sample that are flown at the level (hundreds of feet), and add up.
"$chart" route KSEA CYVR >route.txt && test -s route.png || fail "a route"
for level in 0 200 90; do
  [ $level = 0 ] || "$chart" route ksea cyvr --table --level ${level}00 --direct 40 >route.txt || fail "a route at $level"
  awk -v level=$level '
    FNR == NR { n = split($10, names, "-"); for (i = 1; i <= n; i++) { base[$1 $4 names[i]] = base[$4 $1 names[i]] = $8 + 0
                top[$1 $4 names[i]] = top[$4 $1 names[i]] = $9 + 0 } next }
    /^fix/ { rows = 1; next }
    !rows { next }
    { leg = before $1 $2; before = $1; total += $4; legs += NF > 1 }
    NF > 1 && $2 != "direct" && (!(leg in base) || level && (base[leg] > level || top[leg] < level)) { bad = 1 }
    NF > 1 && ($5 - total)^2 > (0.06 * legs)^2 { bad = 1 }
    END { exit bad || before != "CYVR" || legs < 3 }' "$sample/navdata/awy.dat" route.txt ||
    fail "the route at $level: $(cat route.txt)"
done

# Elevations in words, and profiles of the size that was asked for.
[ "$("$chart" elev "48.7 -121.8" "N48 30.0 W130 00.0")" = $'N48 42.000 W121 48.000  no elevation\nN48 30.000 W130 00.000  no elevation' ] ||
  fail "no elevation"
"$chart" elev --resolution 100 "49.65,-123.2" | grep -q '^N49 39.000 W123 12.000  -*[0-9]* ft  -*[0-9]* m  posts 90 arc-seconds apart$' || fail "elev"
for format in png svg pdf; do
  "$chart" profile KSEA CYVR "49 50 N 122 10 W" --size 640x400 --altitude FL60 --output "profile.$format" >profile.txt || fail "profile.$format"
done
grep -q '^KSEA - CYVR - 4950N12210W  .* NM, highest ground ' profile.txt && grep -q '^no elevation at 0.0-' profile.txt &&
  grep -q '^WARNING: 6000 ft does not clear' profile.txt || fail "the profile: $(cat profile.txt)"
[ "$(od -An -tu1 -j16 -N8 profile.png | tr -s ' ')" = ' 0 0 2 128 0 0 1 144' ] || fail "the size of profile.png"
grep -qF 'width="640px" height="400px"' profile.svg || fail "the size of profile.svg"
"$chart" profile KSEA CYVR --size 640x400 --theme night --output night.png >/dev/null && ! cmp -s night.png profile.png || fail "a profile by night"
"$chart" profile "48 -123" "48.5 -124" --nav none.db --output plain.png >/dev/null || fail "positions need no navigation data"
"$chart" profile "48 -123" "48.5 -124" --output /dev/stdout 2>/dev/null | cmp - plain.png || fail "a profile for the standard output"
"$chart" route "48.7 -121.8" CYVR --direct 40 --output position.png >route.txt && test -s position.png &&
  grep -q '^4842N12148W (position N48 42.0 W121 48.0) to CYVR' route.txt || fail "a route from a position: $(cat route.txt)"
# A trip sheet on its paper: twice the scale takes more pages. One chart may be asked for.
pages() { grep -ao '/Count [0-9]*' "$1" | cut -d' ' -f2; }
for scale in 500000 1:250000; do
  "$chart" route KSEA CYVR --track-up --paper letter --speed 95 --level 6000 --strip-scale $scale --output "trip${scale#1:}.pdf" >trip.txt &&
    grep -aqF 'MediaBox [ 0 0 612 792 ]' "trip${scale#1:}.pdf" || fail "a trip sheet at $scale"
done
"$chart" route KSEA CYVR --one-chart --output route.pdf >route.txt && cmp route.txt <("$chart" route KSEA CYVR --table) &&
  grep -q '^CYVR' trip.txt && [ "$(pages trip250000.pdf)" -gt "$(pages trip500000.pdf)" ] && [ "$(pages trip500000.pdf)" -gt 2 ] &&
  [ "$(pages route.pdf)" = 1 ] || fail "the pages of trip sheets"
"$chart" route KSEA CYVR --terrain none --output trip.pdf >trip.txt || fail "a trip sheet without terrain"
# Terrain is there unless it is left out or not asked for; a data folder's own goes before the sample's.
"$chart" --range 80 --output relief.png && "$chart" --range 80 --terrain none --output flat.png &&
  ! cmp -s relief.png flat.png || fail "terrain"
"$chart" --range 80 --layer land --output land.png && "$chart" --range 80 --layer land --terrain none --output same.png &&
  cmp land.png same.png && "$chart" --range 80 --layer land --layer terrain --output same.png && ! cmp -s land.png same.png ||
  fail "terrain by name"
# Layers on and off and in another order, in the picture and in the theme that keeps it.
mountains=(--range 20 --center "49.6 -123.3")
"$chart" "${mountains[@]}" --output plain.png && "$chart" "${mountains[@]}" --contours --write-theme kept.xml --output lines.png &&
  ! cmp -s plain.png lines.png || fail "contours"
"$chart" "${mountains[@]}" --theme kept.xml --output same.png && cmp lines.png same.png || fail "contours in a theme"
"$chart" "${mountains[@]}" --theme kept.xml --hide contours --output same.png && cmp plain.png same.png || fail "hidden contours"
"$chart" "${mountains[@]}" --theme printed --output same.png && ! cmp -s plain.png same.png || fail "the printed theme"
"$chart" "${mountains[@]}" --order "land, Terrain" --output same.png && cmp plain.png same.png &&
  "$chart" "${mountains[@]}" --order Terrain,land --write-theme kept.xml --output under.png && ! cmp -s plain.png under.png &&
  "$chart" "${mountains[@]}" --theme kept.xml --output same.png && cmp under.png same.png || fail "the order of layers"
"$chart" "${mountains[@]}" --layer land --show rivers --hide graticule --output shown.png &&
  "$chart" "${mountains[@]}" --layer land --layer rivers --no-graticule --output same.png && cmp shown.png same.png || fail "layers shown and hidden"
for dim in 0 70; do "$chart" route KSEA CYVR --dim $dim --output "dim$dim.png" >/dev/null || fail "a route dimmed by $dim"; done
cmp route.png dim0.png && ! cmp -s route.png dim70.png || fail "what is off the route"
mkdir own own/terrain
cp "$sample"/ne_110m_land.* own
cp "$sample"/terrain/12_*.ter own/terrain
"$chart" layers --data own | grep -q '^  terrain .* own/terrain$' || fail "terrain of a data folder"
"$chart" layers --data coarse | grep -q "^  elevations .* $sample/terrain\$" || fail "terrain of the sample"

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
refuses "the chart has no layer 'lakes'; it has sea, land" --hide lakes
refuses "the chart has no layer ''; it has sea, land" --order "land,,rivers"
refuses "--order names a layer twice" --order land,land
refuses "no terrain" --contours --terrain none
refuses "cannot write the theme 'no/such.xml'" --write-theme no/such.xml
refuses "by 0 to 100 percent, not '101'" route KSEA CYVR --dim 101
refuses "theme.xml': Fill of Sea is #RRGGBB" --theme theme.xml
refuses mollweide --projection mollweide
refuses "N95" --center "N95 W10"
refuses "no longitude" --center "N48 30.0"
refuses "no latitude" --center "W123 30.0"
refuses "from 1 to 10800, not '0.99'" --range 0.99
refuses "'10801'" --range 10801
refuses "NAME=NUMBER" --param Pitch
refuses "NAME=NUMBER" --param =3
refuses "NAME=NUMBER" --param Pitch=3x
refuses "unknown theme '.xml'" --theme .xml
refuses "from 200 to 16000, not '199x200'" --size 199x200
refuses "'200x16001'" --size 200x16001
refuses "'200x200x'" --size 200x200x
refuses "from 450 to 16000, not '449x450'" gallery --size 449x450
refuses ".png, .svg or .pdf, unlike 'chart.jpg'" --output chart.jpg
refuses "no verb 'paint'" help paint
refuses "unexpected argument 'gallery'" help draw gallery
refuses "pick needs at least one pixel" pick
refuses "not '3'" pick 3
refuses "not '3,x'" pick 3,x
refuses "not 'x,3'" pick x,3
refuses "--full needs --xml" pick 3,3 --full
refuses "a route needs two ends" route KSEA
refuses "unexpected argument 'KPAE'" route KSEA CYVR KPAE
refuses "there is no airport, navaid or fix 'KSAE'; spelled like it are KPAE, KSEA" route KSAE CYVR
refuses "no route from KSEA to CYVR: no airway lies within 0.0 NM of KSEA; the nearest passes SEA, 0.9 NM" route KSEA CYVR --direct 0
refuses "no route from KSEA to CYVR: there is no airway flown at 70000 ft" route KSEA CYVR --level FL700
refuses "not 'FL'" route KSEA CYVR --level FL
refuses "not '-1'" route KSEA CYVR --direct=-1
refuses "--track-up is for trip sheets" route KSEA CYVR --track-up
refuses "--speed is for trip sheets" route KSEA CYVR --speed 95 --output trip.png
refuses "10 to 5000 knots, not '9.9'" route KSEA CYVR --speed 9.9
refuses "not 'a5'" route KSEA CYVR --paper a5
refuses "not '1:49999'" route KSEA CYVR --strip-scale 1:49999
refuses "are lambert or stereographic" route KSEA CYVR --output trip.pdf --projection miller
refuses "there is no airport 'KSAE'; spelled like it are KPAE, KSEA" airport KSAE
refuses "needs an airport" airport --theme night
refuses "cannot read the folder of aerodrome sets 'nowhere'" airport KSEA --aerodrome nowhere
refuses "a profile needs two identifiers or positions" profile KSEA
refuses "there is no airport, navaid or fix 'KSAE'; spelled like it are KPAE, KSEA" profile KSAE CYVR
refuses "KSEA and ksea are the same place" profile KSEA ksea
refuses "has no longitude" profile KSEA "N48 30.0"
refuses "lie opposite each other" profile "10 20" "-10 -160"
refuses "not 'FL1001'" profile KSEA CYVR --altitude FL1001
refuses "profile takes no --no-legend" profile KSEA CYVR --no-legend
refuses "elev needs at least one position" elev
refuses "cannot read the position '91 10'" elev "48 -123" "91 10"
refuses "up to 3600, not '0'" elev --resolution 0 "48 -123"
refuses "cannot read the terrain folder 'none'" elev --terrain none "48 -123"
mkdir odd
cp "$sample"/terrain/120_N30W150.ter odd/7_N30W150.ter
refuses "as 120_N30W150.ter" elev --terrain odd "48 -123"
refuses "there are no region files (.ter) in 'empty'" profile KSEA CYVR --terrain empty
refuses "unexpected argument '-5'" draw -5
refuses "unexpected argument ''" draw ""
refuses "no verb ''" ""
refuses "unknown option '-x' (see k7chart pick --help)" pick -x
refuses "has no layers" --data empty --layer land
refuses "'no.png': No such file" --underlay no.png
refuses "needs --underlay" --underlay-bounds 1,2,3,4
for bounds in 1,2,3 1,2,3,4,5 1,4,3,2 3,2,3,4 1,2,181,4 1,2,3,x; do
  refuses "not '$bounds'" --underlay chart.png --underlay-bounds $bounds
done
refuses nan --range nan
refuses 1600 --size 1600
refuses "has land, rivers, borders" --layer volcanoes
refuses "no data for the layer 'lakes'" --layer lakes
refuses "'missing.shp': No such file" --layer missing.shp
refuses "cannot read 'half/ne_110m_land.dbf'" --layer half/ne_110m_land.shp
refuses "cannot read 'half/ne_110m_land.dbf'" --data half
refuses "broken.shp" --layer broken.shp
refuses "in the folder" --data "$work"
refuses "cannot read the navigation data 'none.db': No such file" --nav none.db
refuses "'broken.shp' is no database of navigation data" --layer airways --nav broken.shp
refuses "no terrain: '--terrain FOLDER'" --layer terrain --terrain none
refuses "cannot read the terrain folder 'nowhere': No such file" --terrain nowhere
refuses "no region files (.ter) in 'empty'" --terrain empty
refuses "not with --no-graticule" --layer elevations --no-graticule
refuses "cannot read the magnetic model 'none.COF': No such file" --magnetic none.COF
refuses "'broken.shp' holds no coefficients of a magnetic model" --layer isogonics --magnetic broken.shp
refuses "cannot write 'no/such/folder.png': No such file" --output no/such/folder.png
refuses "cannot write '/dev/full': No space left" --output /dev/full
refuses "Mercator" --projection mercator --center "N90 E0" --range 300
refuses "field of view" --projection perspective --param "Pitch=-40" --range 300

[ "$("$chart" layers 2>&1 >/dev/full)" = "k7chart: cannot write to the standard output: No space left on device" ] ||
  fail "a full standard output"
[[ $( (ulimit -f 8; "$chart" --output big.png) 2>&1) == *"cannot write 'big.png': File too large" ]] || fail "a file too large"
for format in svg:'width="320px" height="240px"' pdf:'MediaBox [ 0 0 240 180 ]'; do
  "$chart" --size 320x240 --range 300 --output "size.${format%%:*}" && grep -aqF "${format#*:}" "size.${format%%:*}" ||
    fail "the size of ${format%%:*}"
done
"$chart" gallery --size 450x450 --output small.png || fail "the smallest gallery"
"$chart" --size 200x200 --output small.png || fail "the smallest chart"
for part in graticule legend; do
  "$chart" --range 300 --no-$part --output bare.png && ! cmp -s bare.png day.png || fail "a chart without its $part"
done

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
