#!/bin/bash
# Installs a build and uses it as a host outside the tree does: check_installed.sh SOURCE BUILD
#   the README's program builds with find_package and with pkg-config, and prints what the README says it prints;
#   the programs of docs/host build and say what they should;
#   the library exports the classes and functions of exported_names.txt and nothing else;
#   k7chart, where it was built, draws from where it is installed, terrain that k7terrain finds good included;
#   other folders and a project that holds the tree get what they ask for.
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
# The shared library needs no other package's file.
export PKG_CONFIG_LIBDIR=$libdir
# shellcheck disable=SC2046
g++ -std=c++20 "$work/main.cpp" -o "$work/consumer" $(pkg-config --cflags --libs k7core)
LD_LIBRARY_PATH=$(dirname "$libdir") "$work/consumer" >"$work/pkgconfig.txt"
diff -u "$work/expected.txt" "$work/pkgconfig.txt"

# The programs of docs/writing_a_host.md, by themselves against what is installed.
{ cmake -S "$source_dir/docs/host" -B "$work/programs" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" &&
  cmake --build "$work/programs"; } >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
"$source_dir/tests/docs/host_programs.sh" "$source_dir" "$work/programs"

"$source_dir/script/exported-names" "$(find "$work/prefix" -name 'libk7core.so')" >"$work/names.txt"
diff -u "$source_dir/tests/install/exported_names.txt" "$work/names.txt"

if [ -x "$work/prefix/bin/k7chart" ]; then
  mv "$work/prefix" "$work/moved"
  (cd "$work"
   env -u K7CHART_DATA "$work/moved/bin/k7chart" layers >layers.txt
   "$work/moved/bin/k7terrain" check moved/share/k7chart/sample/terrain >/dev/null
   env -u K7CHART_DATA "$work/moved/bin/k7chart" draw --theme night --size 200x200 \
     --terrain moved/share/k7chart/sample/terrain --output chart.png)
  grep -q "$work/moved/share/k7chart/sample" "$work/layers.txt" || { cat "$work/layers.txt"; exit 1; }
  test -s "$work/chart.png"
fi

cmake -S "$source_dir" -B "$work/absolute" -G Ninja -DCMAKE_INSTALL_PREFIX=/there -DCMAKE_INSTALL_LIBDIR=/else/lib \
  -DK7_BUILD_TESTS=OFF -DK7_BUILD_EXAMPLES=OFF >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
flags=$(PKG_CONFIG_LIBDIR=$work/absolute pkg-config --cflags --libs k7core)
[ "$(echo $flags)" = "-I/there/include -L/else/lib -lk7core" ] || { echo "pkg-config: $flags"; exit 1; }

mkdir "$work/holder"
printf '%s\n' 'cmake_minimum_required(VERSION 3.23)' 'project(holder LANGUAGES CXX)' \
  "add_subdirectory($source_dir k7)" >"$work/holder/CMakeLists.txt"
cmake -S "$work/holder" -B "$work/held" -G Ninja >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
! grep -rl 'file(INSTALL' "$work/held" --include=cmake_install.cmake
