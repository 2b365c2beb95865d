#!/bin/bash
# Files of map tiles from outside: tiles.sh K7CHART. Compares them with SQLite's own reader and, where GDAL's programs are
# here, with what GDAL says is where.
source "$(dirname "$0")/../support/command_line.sh"
chart=$program
sample=$data
command -v python3 >/dev/null || { echo "skipped: there is no python3"; exit 0; }

same() {  # two files of tiles
  python3 - "$@" <<'END'
import sqlite3, sys
tiles = [sqlite3.connect(name).execute("SELECT * FROM tiles ORDER BY 1, 2, 3").fetchall() for name in sys.argv[1:]]
sys.exit(tiles[0] != tiles[1] or not tiles[0])
END
}

salish=(--bounds=-124.6,47.6,-121.4,49.9 --zoom 4-10)
"$chart" tiles "${salish[@]}" --threads 3 --output whole.mbtiles >out.txt || fail "tiles"
grep -q "^whole.mbtiles: $("$chart" tiles "${salish[@]}" --count) tiles" out.txt || fail "how many: $(cat out.txt)"

# Ended in the middle, it goes on where it was.
for signal in KILL INT; do
  # Shells have background jobs ignore the interrupt key.
  env --default-signal=INT "$chart" tiles "${salish[@]}" --threads 1 --output "$signal.mbtiles" &
  for ((i = 0; i < 600; ++i)); do
    [ "$(stat -c %s "$signal.mbtiles.part" 2>/dev/null || echo 0)" -gt 200000 ] && break
    sleep 0.05
  done
  kill -$signal $!
  wait $! 2>/dev/null && fail "there was nothing to end by SIG$signal"
  test ! -e "$signal.mbtiles" || fail "half a file has the name of a whole one"
  refuses "look: day, not night" tiles "${salish[@]}" --theme night --output "$signal.mbtiles"
  refuses "maxzoom: 10, not 9" tiles "${salish[0]}" --zoom 4-9 --output "$signal.mbtiles"
  "$chart" tiles "${salish[@]}" --output "$signal.mbtiles" | grep -q "[1-9][0-9]* of a run before$" ||
    fail "a run after SIG$signal begins anew"
  same whole.mbtiles "$signal.mbtiles" || fail "tiles after SIG$signal are others"
done
(ulimit -f 300; "$chart" tiles "${salish[@]}" --output full.mbtiles 2>err.txt) && fail "a full disk is taken"
test "$(wc -l <err.txt)" = 1 && grep -q "cannot write full.mbtiles" err.txt || fail "a full disk: $(cat err.txt)"
"$chart" tiles "${salish[@]}" --output full.mbtiles >out.txt && same whole.mbtiles full.mbtiles || fail "once there is room"

# Parts.
for part in 1 2 3; do
  "$chart" tiles "${salish[@]}" --shard $part/3 --output part$part.mbtiles >out.txt &
done
wait
"$chart" tiles merge merged.mbtiles part3.mbtiles part1.mbtiles part2.mbtiles >out.txt &&
  same whole.mbtiles merged.mbtiles || fail "parts joined"
refuses "missing: 2" tiles merge again.mbtiles part1.mbtiles part3.mbtiles
refuses "without --shard" tiles merge again.mbtiles part1.mbtiles whole.mbtiles
"$chart" tiles "${salish[@]}" --shard 2/3 --hide airways --output other.mbtiles >out.txt || fail "a part without airways"
refuses "hide airways" tiles merge again.mbtiles part1.mbtiles other.mbtiles part3.mbtiles
python3 - part2.mbtiles <<'END'
import sqlite3, sys
part = sqlite3.connect(sys.argv[1])
part.execute("DELETE FROM map WHERE zoom_level = (SELECT max(zoom_level) FROM map)")
part.commit()
END
refuses "takes no --hide" tiles merge again.mbtiles part1.mbtiles part2.mbtiles part3.mbtiles --hide airways
refuses "the parts have" tiles merge again.mbtiles part1.mbtiles part2.mbtiles part3.mbtiles
ls | grep -v mbtiles$ | grep -e journal -e 'merged.*part' && fail "remains beside the files"

refuses "100000000 is the most" tiles --bounds=-180,-90,180,90 --zoom 0-20 --output big.mbtiles
refuses "bounds are" tiles --bounds=1,2,3,nan --zoom 3 --output big.mbtiles
refuses "zooms are" tiles --bounds=1,2,3,4 --zoom 3-21 --output big.mbtiles
refuses "a part is" tiles --bounds=1,2,3,4 --zoom 3 --shard 9/8 --output big.mbtiles
refuses "no/where.mbtiles" tiles --bounds=1,2,3,4 --zoom 3 --output no/where.mbtiles

command -v gdal_translate >/dev/null && command -v gdal_rasterize >/dev/null && command -v ogr2ogr >/dev/null ||
  { echo "GDAL's programs are not here: pixels are not compared"; exit $failed; }
# Land, drawn and rasterised by another hand from the same set, in one grid; also across 180, where GDAL has the world.
for chart_of in "-124.6,47.6,-121.4,49.9 6-7 1" "-124.6,47.6,-121.4,49.9 6 2" "170,-48,-174,-34 2-3 1"; do
  read -r bounds zoom ratio <<<"$chart_of"
  "$chart" tiles --bounds=$bounds --zoom $zoom --ratio $ratio --layer "$sample/ne_50m_land.shp" --hide graticule \
    --output land.mbtiles >out.txt || fail "tiles of land"
  gdal_translate -q -of ENVI -co INTERLEAVE=BIP -b 1 -b 2 -b 3 -b 4 land.mbtiles drawn.bin || fail "GDAL cannot read tiles"
  gdal_translate -q -b 1 -ot Byte -scale 0 255 0 0 -a_nodata none drawn.bin burnt.tif
  ogr2ogr -q -t_srs EPSG:3857 -clipsrc -180 -85 180 85 land.shp "$sample/ne_50m_land.shp" 2>/dev/null
  # What land touches, then what it has the middle of.
  gdal_rasterize -q -at -burn 2 land.shp burnt.tif && gdal_rasterize -q -burn 1 land.shp burnt.tif &&
    gdal_translate -q -of ENVI burnt.tif burnt.bin && python3 "$here/land_pixels.py" drawn.bin burnt.bin $ratio ||
    fail "land of $bounds, ratio $ratio"
  rm -f land.* burnt.* drawn.*
done

# The middles of KSEA's runways, as the data have their ends, and the ground between them.
"$chart" tiles --bounds=-122.33,47.42,-122.29,47.48 --zoom 13 --layer airports --hide graticule --output field.mbtiles \
  >out.txt || fail "tiles of an airport"
middles=$(awk '$1 == 1 { in_field = $5 == "KSEA" } in_field && $1 == 100 { printf "%.6f %.6f\n", ($11 + $20) / 2, ($10 + $19) / 2 }' \
  "$sample/navdata/apt.dat" | sort -n)
colour_at() { gdallocationinfo -valonly -wgs84 field.mbtiles "$@" | tr '\n' ' '; }
ground=$(colour_at -122.328 47.45)
test "$(wc -l <<<"$middles")" = 3 && test -n "$ground" || fail "KSEA's runways"
previous=""
while read -r lon lat; do
  test "$(colour_at "$lon" "$lat")" != "$ground" || fail "no runway at $lat $lon"
  if [ -n "$previous" ]; then
    between=$(awk -v a="$previous" -v b="$lon" 'BEGIN { printf "%.6f", (a + b) / 2 }')
    test "$(colour_at "$between" "$lat")" = "$ground" || fail "a runway at $lat $between"
  fi
  previous=$lon
done <<<"$middles"
exit $failed
