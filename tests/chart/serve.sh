#!/bin/bash
# k7chart serve from outside: serve.sh K7CHART
set -uo pipefail
chart=$1
here=$(cd "$(dirname "$0")" && pwd)
export TSAN_OPTIONS="suppressions=$here/tsan.supp"
work=$(mktemp -d)
server=
trap '[ -z "$server" ] || kill -KILL "$server" 2>/dev/null; rm -rf "$work"' EXIT
cd "$work"
failed=0
fail() { echo "FAILED: $*"; failed=1; }

start() {  # arguments of serve; sets server, at, port
  : >address
  timeout 240 "$chart" serve --port 0 "$@" >address 2>problem &
  server=$!
  for _ in {1..600}; do [ -s address ] && break; sleep 0.1; done
  at=$(cat address)
  port=${at##*:}
  port=${port%/}
  [ -n "$port" ] || { cat problem; fail "no address"; exit 1; }
}
status() { : >body; curl -s -m 60 -o body -D head -w '%{http_code}' "$@"; }
is() {  # status, what it is of, then curl's arguments
  local expected=$1 got
  shift
  got=$(status "$@")
  [ "$got" = "$expected" ] || fail "$got, not $expected: $*"
}
has() { tr -d '\r' <head | grep -qix -- "$1" || fail "no header '$1' but: $(cat head)"; }
hasNot() { ! grep -qi -- "^$1:" head || fail "header '$1': $(cat head)"; }
raw() {  # a status line's code for bytes as they are, "" when the connection is closed
  exec 3<>"/dev/tcp/127.0.0.1/$port"
  printf "$1" >&3
  timeout 20 head -n 1 <&3 | cut -d' ' -f2
  exec 3>&-
}
rawIs() { local got; got=$(raw "$2"); [[ $got =~ ^($1)$ ]] || fail "'$got', not $1: ${2:0:60}"; }
size() { od -An -tu1 -j16 -N8 body | awk '{ print $3 * 256 + $4 "x" $7 * 256 + $8 }'; }

start --log requests.log --host chart.example --threads 2 --cache 16
tile=${at}tiles/day/8/40/88
is 200 "$tile.png" && has "content-type: image/png" && has "x-content-type-options: nosniff" &&
  has "content-security-policy: default-src 'none'; style-src 'unsafe-inline'" && [ "$(size)" = 256x256 ] ||
  fail "a tile of $(size)"
cp body first
is 200 "$tile.png" && cmp body first || fail "a kept tile is another"
is 200 "$tile@2x.png" && [ "$(size)" = 512x512 ] || fail "a fine tile of $(size)"
is 200 "${at}tiles/night/8/40/88.png" && ! cmp -s body first || fail "a theme"
is 200 "${at}tiles/day.json" && grep -q "\"${at}tiles/day/{z}/{x}/{y}.png\"" body &&
  grep -qE '"center":\[-12[0-9.]+,4[0-9.]+,[5-9]\],"attribution":"[^"]' body || fail "TileJSON: $(cat body)"
for path in nothing tiles tiles/ tiles/day tiles/none.json tiles/none/8/40/88.png tiles/day/8/256/0.png tiles/day/8/40/88.jpg page/none; do
  is 404 "$at$path"
done
is 400 --path-as-is "${at}page/%2e%2e/x"
is 414 "$at$(printf 'a%.0s' {1..9000})"
# There is no room for an answer to this one; the sanitizer tells when anything of it is left at the end.
curl -s -o /dev/null "$at$(printf 'a%.0s' {1..24300})"

# Asked again, nothing is sent; of a tile that nobody has drawn, too.
is 200 -I "$tile.png" && [ ! -s body ] && has "content-length: $(wc -c <first)"
tag=$(tr -d '\r' <head | sed -n 's/^ETag: //Ip')
is 304 -H "If-None-Match: $tag" "${at}tiles/day/9/81/176.png" && [ ! -s body ] || fail "304 with a body"
is 404 -H "If-None-Match: $tag" "${at}tiles/day/9/81/999.png"

# Whom it answers.
for host in "localhost:$port" "chart.example"; do is 200 -H "Host: $host" "$tile.png"; done
is 421 -H "Host: evil.example:$port" "$tile.png"
for method in POST PUT DELETE OPTIONS TRACE; do is 405 -X $method "$tile.png" && has "allow: GET, HEAD"; done
is 405 -d a=1 "$tile.png"
is 200 -H "Origin: http://localhost:3000" "$tile.png" && has "access-control-allow-origin: http://localhost:3000"
is 200 -H "Origin: http://evil.example" "$tile.png" && hasNot access-control-allow-origin
is 200 -H "Origin: http://localhost:3000" "${at}robots.txt" && hasNot access-control-allow-origin && has "content-security-policy: default-src 'none';.*"
is 403 -H "Sec-Fetch-Site: cross-site" -H "Sec-Fetch-Mode: no-cors" "${at}robots.txt"

# What no browser sends. Bytes that nobody reads may cost the client its answer.
rawIs 400 'GET / HTTP/1.1\r\n\r\n'
rawIs 400 'GET / HTTP/1.1\r\nHost: localhost\r\nHost: localhost\r\n\r\n'
rawIs 400 'GET http://localhost/ HTTP/1.1\r\nHost: localhost\r\n\r\n'
rawIs '400|' 'GET /robots.txt HTTP/1.1\r\nHost: localhost\r\nContent-Length: 5\r\n\r\nabcde'
rawIs '400|' 'GET /robots.txt HTTP/1.1\r\nHost: localhost\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n'
rawIs '431|413|' "GET / HTTP/1.1\r\nHost: localhost\r\nX: $(printf 'a%.0s' {1..40000})\r\n\r\n"
rawIs '4..|505|' '\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03\r\n\r\n'
rawIs '4..|505|' 'GET\r\n\r\n'
rawIs '4..|505|' 'GET / HTTP/9.9\r\nHost: localhost\r\n\r\n'
rawIs 400 'GET /\x01\x02\xff HTTP/1.1\r\nHost: localhost\r\n\r\n'
rawIs 400 'GET /%%0d%%0aX HTTP/1.1\r\nHost: localhost\r\n\r\n'
is 200 "${at}robots.txt"

# The port is its own.
"$chart" serve --port "$port" >out 2>err && fail "a port that is taken"
[ ! -s out ] && [ "$(wc -l <err)" = 1 ] && grep -q "$port.*is taken" err || fail "a port that is taken: $(cat out err)"
for wrong in "--port 70000" "--port 1.5" "--listen here" "--threads 0" "--cache -1" "--log /none/x"; do
  timeout 60 "$chart" serve $wrong >out 2>err && fail "$wrong"
  [ "$(wc -l <err)" = 1 ] || fail "$wrong: $(cat err)"
done

# It ends while maps are drawn: each request is answered, or was not taken.
for i in {1..24}; do curl -s -m 60 -o /dev/null -w '%{http_code}\n' "${at}tiles/day/9/$((70 + i))/170@2x.png" & clients+=($!); done >codes
sleep 0.4
begin=$SECONDS
kill -TERM "$server"
wait "$server" || fail "exit code $? on SIGTERM"
server=
[ $((SECONDS - begin)) -le 20 ] || fail "it took $((SECONDS - begin)) s to end"
wait "${clients[@]}"
grep -qvE '^(200|503|000)$' codes && fail "in flight: $(sort codes | uniq -c)"
grep -q 200 codes || fail "nothing was answered in flight"
grep -Eq '^..:..:..  I  GET /tiles/day/8/40/88.png 200 [0-9]+ [0-9.]+ ms$' requests.log || fail "the log"
grep -Fq 'GET /%0d%0aX 400' requests.log && grep -Fq 'GET /\x01\x02\xFF 400' requests.log || fail "what the log says of odd requests"
exit $failed
