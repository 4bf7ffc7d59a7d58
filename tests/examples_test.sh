#!/usr/bin/env bash
# The examples over the simulated radio. Two of them are in the README.
set -euo pipefail
programs=$1 root=$2
snippets=$(sed -n '/^```cpp$/,/^```$/p' "$root/README.md" | sed '/^```/d')
diff <(echo "$snippets") <(cat "$root/examples/smallest.cc" "$root/examples/bare.cc")
source "$(dirname "$0")/own_folder.sh"
cd "$work"
"$programs/smallest" | grep '^local,remote: 192.168.137.1,192.168.137.21$'
timeout --preserve-status --signal=INT 3 "$programs/keep_alive" Cam-90A4 2>&1 >log |
  diff - <(printf 'up 192.168.137.1,192.168.137.94\nended\n')
"$programs/bare" | grep '^local,remote: 192.168.137.1,192.168.137.21$'
on_loop() { "$programs/event_loop" "$@" | sed -n "s/^on the loop's thread: //p"; }
on_loop | grep '^Cam-7F21 has 192.168.137.21$'
on_loop Nobody 1 | grep '^no link to Nobody: the time was over during the search$'
on_loop Nobody 60 1 | grep '^the request for Nobody was given up$'
