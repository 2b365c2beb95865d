#!/bin/bash
# Installs a build and uses it as a host outside the tree does: check_installed.sh SOURCE BUILD
#   the README's program builds with find_package and with pkg-config, and prints what the README says it prints;
#   the library exports the classes and functions of exported_names.txt and nothing else.
set -euo pipefail
source_dir=$1
build_dir=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build_dir" --prefix "$work/prefix" >/dev/null

# The README holds the program in its first cpp block and its output in the text block behind it.
awk '/^```/ { if (on) exit; on = ($0 == "```cpp"); next } on' "$source_dir/README.md" >"$work/main.cpp"
awk '/^```cpp/ { seen = 1 } /^```/ { if (on) exit; on = (seen && $0 == "```text"); next } on' \
  "$source_dir/README.md" >"$work/expected.txt"
test -s "$work/main.cpp" && test -s "$work/expected.txt"

cmake -S "$source_dir/tests/install/consumer" -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" \
  -DCONSUMER_SOURCE="$work/main.cpp" >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
cmake --build "$work/cmake" >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
"$work/cmake/consumer" >"$work/cmake.txt"
diff -u "$work/expected.txt" "$work/cmake.txt"

libdir=$(dirname "$(find "$work/prefix" -name k7core.pc)")
export PKG_CONFIG_PATH=$libdir
# shellcheck disable=SC2046
g++ -std=c++20 "$work/main.cpp" -o "$work/consumer" $(pkg-config --cflags --libs k7core)
LD_LIBRARY_PATH=$(dirname "$libdir") "$work/consumer" >"$work/pkgconfig.txt"
diff -u "$work/expected.txt" "$work/pkgconfig.txt"

"$source_dir/script/exported-names" "$(find "$work/prefix" -name 'libk7core.so')" >"$work/names.txt"
diff -u "$source_dir/tests/install/exported_names.txt" "$work/names.txt"
