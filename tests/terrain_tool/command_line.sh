#!/bin/bash
# k7terrain from outside: command_line.sh K7TERRAIN
source "$(dirname "$0")/../support/command_line.sh"
terrain=$program
sample=$data/terrain


# One process a region makes what one process for all makes.
levels=(--resolution 12 --resolution 40 --resolution 120)
test "$("$terrain" build --list "${levels[@]}" "$sample" | tr '\n' ' ')" = "12_N30W150 40_N30W150 120_N30W150 " ||
  fail "the list"
test "$("$terrain" build --list "$sample")" = 40_N30W150 || fail "the level that suits"
for region in $("$terrain" build --list "${levels[@]}" "$sample"); do
  "$terrain" build "${levels[@]}" --region "$region" --output one "$sample" &
done
wait
"$terrain" build "${levels[@]}" --output all "$sample/salish_sea.csv" || fail "build"
diff -r one all || fail "regions made one by one differ"
test "$(ls one | wc -l)" = 6 || fail "files beside the regions: $(ls one)"
"$terrain" check one | grep -c ': good$' | grep -q '^3$' || fail "check"
"$terrain" check "$sample" >out.txt || fail "the sample: $(cat out.txt)"
"$terrain" info one/40_N30W150.ter | grep -q '^metres: -13.. to 21..$' || fail "info"

# What is whole stays when its successor cannot be made, also on a full disk.
cp one/40_N30W150.ter before
head -c 100000 "$sample/salish_sea.csv" >cut.csv
refuses "cut.csv" build --output one cut.csv
(ulimit -f 8; "$terrain" build --output one "$sample" 2>err.txt) && fail "a full disk is taken"
grep -q "cannot write 40_N30W150.ter" err.txt || fail "a full disk: $(cat err.txt)"
cmp before one/40_N30W150.ter && test "$(ls one | wc -l)" = 6 || fail "a failed build leaves its traces: $(ls one)"

for signal in TERM INT; do
  # Shells have background jobs ignore the interrupt key.
  env --default-signal=INT "$terrain" build --resolution 3600 --output one "$sample" &
  for ((i = 0; i < 200; ++i)); do ls one | grep -q part && break; sleep 0.05; done
  ls one | grep -q part || fail "there is no part to leave behind"
  kill -$signal $!
  wait $! && fail "SIG$signal is ignored"
  test "$(ls one | wc -l)" = 6 || fail "SIG$signal leaves its traces: $(ls one)"
done

printf x | dd of=one/40_N30W150.ter bs=1 seek=15000 conv=notrunc 2>/dev/null
"$terrain" check one >out.txt 2>err.txt && fail "a damaged region is good"
test "$(wc -l <err.txt)" = 1 && grep -q "1 of 3 region files" err.txt || fail "check: $(cat err.txt)"
grep -q '^one/40_N30W150.ter: ' out.txt || fail "the damaged one is not named"
for size in 0 50 72 100 5000 20000; do
  head -c $size before >cut.ter
  refuses "cut.ter: " info cut.ter
done
refuses "there is no region file" check "$here"
refuses "none of the regions" build --region 40_N00E000 "$sample"
refuses "none of 12 40" build --resolution 41 "$sample"
refuses "no number of posts" build --tile 1e9 "$sample"
refuses "no elevation grid in" build one
refuses "needs elevation grids" build
exit $failed
