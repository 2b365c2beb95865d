#!/bin/bash
# The tree's includes run one way, and the check that says so sees what it should: check_layers.sh SOURCE
set -uo pipefail
"$1/script/check-layers" "$1" || exit 1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -r "$1/src" "$1/include" "$1/examples" "$work"
failed=0
planted() {  # file, its first line, what the check must say
  cp "$work/$1" "$work/whole"
  printf '%s\n' "$2" | cat - "$work/whole" >"$work/$1"
  said=$("$check" "$work" 2>&1) && { echo "passed: $2 in $1"; failed=1; }
  [[ $said == *"$1:1: $3"* ]] || { echo "said of $2 in $1: $said"; failed=1; }
  cp "$work/whole" "$work/$1"
}
check=$1/script/check-layers
planted src/foundation/array.cpp '#include <k7/io/io.h>' 'foundation may not include k7/io/io.h'
planted src/foundation/array.cpp '#include <k7/core.h>' 'foundation may not include k7/core.h'
planted src/foundation/string.cpp '#include <k7/geometry.h>' 'foundation may not include k7/geometry.h'
planted src/foundation/time.cpp '# include "k7/io/io.h"' 'foundation may not include k7/io/io.h'
planted src/geometry/shp_obj.cpp '#include "shp_dbf.h"' 'geometry may not include shp_dbf.h'
planted include/k7/geodesy/ecef.h '#include <k7/projection/grfx.h>' 'geodesy may not include k7/projection/grfx.h'
planted include/k7/io.h '#include <k7/geodesy/ecef.h>' 'io.h may not include k7/geodesy/ecef.h'
planted examples/chart/ink/cairo_grfx.h '#include "layers/graticule.h"' 'ink may not include layers/graticule.h'
planted examples/chart/layers/graticule.h '#include "sheet/page.h"' 'layers may not include sheet/page.h'
planted examples/chart/sheet/page.cpp '#include "io/os.h"' 'io/os.h is no header of the examples'
planted examples/chart/app/main.cpp '#include <k7/io/os.h>' 'k7/io/os.h is no public header'
exit $failed
