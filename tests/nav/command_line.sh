#!/bin/bash
# k7nav from outside: command_line.sh K7NAV
source "$(dirname "$0")/../support/command_line.sh"
nav=$program
sample=$data/navdata

says() {  # what a line of the output must hold, then arguments
  local expected=$1
  shift
  "$nav" "$@" 2>&1 | grep -q -- "$expected" || fail "no '$expected' in k7nav $*"
}


says "N47 27.0 W122 18.7.*KSEA" find KSEA
says "V23 with 10 segments" find V23
says "R6701" find R6701
says "SEA.*, 2.2 NM" find SEA --near "47.4 -122.3"
says "433$" field KSEA Elev
says "116.8$" field SEA Freq
says "within .*VANCOUVER" near "49.2 -123.2"
says "YVR" near "49.2 -123.2" --range 10
says '^\. \. \.   \.   \. -$' morse SEA
says "Longest Runway .* x 100" fields 5
test "$("$nav" fields | grep -c '^[0-9]')" = 74 || fail "the types"
for as in plain full display document; do
  "$nav" describe KSEA --as $as >$as.xml || fail "describe --as $as"
  if command -v xmllint >/dev/null; then xmllint --noout $as.xml || fail "the XML of $as"; fi
done
grep -q NavKey full.xml && ! grep -q NavKey display.xml || fail "keys belong to the full form"

refuses "there is no 'KSAE'; spelled like it are .*KSEA" find KSAE
refuses "there is no 'QQQQQQQQ'" describe QQQQQQQQ
refuses "has a field 'Elevation'" field KSEA Elevation
refuses "is no position" near nowhere
refuses "is no type" fields 74
refuses "none of plain" describe KSEA --as pdf
refuses "cannot open" find KSEA --db none.db
refuses "is no database" find KSEA --db "$sample/nav.dat"
refuses "nothing to import" import out.db
refuses "needs the database" import --nav "$sample/nav.dat"
refuses "cannot open none.dat" import --nav none.dat out.db
refuses "fix.dat is no file of the kind" import --nav "$sample/fix.dat" out.db
refuses "no OpenAir" import --airspace "$sample/nav.dat" out.db
refuses "magnetic model" import --nav "$sample/nav.dat" --magnetic "$sample/nav.dat" out.db
refuses "find takes no --nav" find KSEA --nav x
test ! -e out.db || fail "a refused import leaves a database"

# The order of the options, and compression, change nothing.
gzip -c "$sample/awy.dat" >awy.dat
"$nav" import --awy awy.dat --fix "$sample/fix.dat" --nav "$sample/nav.dat" --apt "$sample/apt.dat" \
  --airspace "$sample/airspaces.txt" out.db || fail "import"
cmp <("$nav" describe V23 --as full --db out.db) <("$nav" describe V23 --as full) || fail "the order of the files"

# Bad lines are named, and the rest is there; a file that was cut off leaves the old database.
{ cat "$sample/fix.dat" | head -3; echo "48.5 -123.5 GOOD"; echo $'48.5 -9\e[9 BAD'; echo 99; } >bad.dat
"$nav" import --fix bad.dat bad.db 2>err.txt && grep -q "bad.dat:5: longitude '-9?\[9'" err.txt || fail "the bad line"
says "GOOD" find GOOD --db bad.db
head -c 300 awy.dat >cut.dat
refuses "cut off" import --awy cut.dat bad.db
says "GOOD" find GOOD --db bad.db
test "$(ls | grep -c bad.db)" = 1 || fail "files beside the database: $(ls)"
exit $failed
