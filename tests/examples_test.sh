#!/usr/bin/env bash
# Each example reaches its device over the simulated radio and exits with 0. The smallest one is in the
# README.
set -euo pipefail
programs=$1 root=$2
diff <(sed -n '/^```cpp$/,/^```$/p; /^```$/q' "$root/README.md" | sed '/^```/d') \
  "$root/examples/smallest.cc"
source "$(dirname "$0")/own_folder.sh"
cd "$work"
"$programs/smallest" | grep '^local,remote: 192.168.137.1,192.168.137.21$'
timeout --preserve-status --signal=INT 3 "$programs/keep_alive" Cam-90A4 2>&1 >log |
  diff - <(printf 'up 192.168.137.1,192.168.137.94\nended\n')
"$programs/event_loop" | grep "on the loop's thread: Cam-7F21 has \"192.168.137.1,192.168.137.21\""
