# What tests of programs from outside have in common: sourced with the program as $1, it leaves them in a folder of their own.
set -uo pipefail
program=$1
here=$(cd "$(dirname "$0")" && pwd)
data=$(cd "$here/../../data/sample" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
failed=0
fail() { echo "FAILED: $*"; failed=1; }
refuses() {  # what the one line of the error output must hold, then arguments
  local expected=$1
  shift
  "$program" "$@" >out.txt 2>err.txt && fail "$* is taken"
  test ! -s out.txt || fail "$* prints"
  test "$(wc -l <err.txt)" = 1 && grep -q -- "$expected" err.txt || fail "$*: $(cat err.txt)"
}
