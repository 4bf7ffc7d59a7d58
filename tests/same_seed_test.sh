#!/usr/bin/env bash
# Two runs of the suite with one seed write the same logs, to the byte; another seed's differ.
set -euo pipefail
suite=$1
source "$(dirname "$0")/own_folder.sh"
run() { # SEED LOG
  LANVOSS_TEST_TIME=seeded LANVOSS_TEST_SEED=$1 LANVOSS_TEST_LOG="$work/$2" \
    "$suite" --gtest_brief=1 >/dev/null
}
run 7 first
run 7 second
run 8 other
cmp "$work/first" "$work/second"
if cmp -s "$work/first" "$work/other"; then
  echo "the seed changes nothing"
  exit 1
fi
