#!/usr/bin/env bash
# The host program as its user meets it: the result last on standard output, one line on standard
# error for a failure, and the exit codes.
set -uo pipefail
program=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cat >"$work/quick.json" <<'JSON'
{"habits": {"enumeration_ms": 300},
 "peers": [{"name": "Cam", "appear_ms": 20, "pair_ms": 20, "open_ms": 20},
           {"name": "Hangs", "appear_ms": 20, "pairings": ["hangs"]}]}
JSON
failures=0
expect() { # EXIT-CODE LAST-LINE-OF-OUTPUT COMPLAINTS COMMAND...
  local code=$1 last=$2 complaints=$3
  shift 3
  "$@" >"$work/out" 2>"$work/err"
  local got=$?
  if [ "$got" -ne "$code" ] || [[ $(tail -n 1 "$work/out") != $last ]] ||
    [ "$(wc -l <"$work/err")" -ne "$complaints" ]; then
    echo "unexpected: $*: exit code $got, $(tail -n 1 "$work/out")"
    cat "$work/err"
    failures=$((failures + 1))
  fi
}
interrupted() { # SECONDS COMMAND...
  local after=$1
  shift
  "$@" &
  sleep "$after"
  kill -INT $!
  wait $!
}
common=(--dir "$work" --scenario "$work/quick.json")

expect 0 '192.168.49.1,192.168.49.20' 0 "$program" ip Cam "${common[@]}"
expect 0 Cam 0 "$program" watch Cam "${common[@]}"
expect 0 Hangs 0 "$program" watch "${common[@]}"
expect 1 '*' 1 "$program" ip Cam --direct "${common[@]}" # known, but not paired any more
expect 2 '' 1 "$program" ip '' "${common[@]}"
expect 2 '' 2 "$program" ip Cam --gap soon "${common[@]}"
expect 2 '' 2 "$program" watch --keep "${common[@]}"
expect 2 '' 1 "$program" ip Cam --scenario "$work/none.json"
expect 130 '*' 1 interrupted 0.5 "$program" ip Nobody "${common[@]}"
expect 130 '*' 1 interrupted 0.5 "$program" watch Nobody "${common[@]}"
exit $((failures > 0))
