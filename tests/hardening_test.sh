#!/usr/bin/env bash
# The built files have the protections that the distribution's have.
set -u
readonly start_marks=10 # more than the compiler's own files bring
failures=0
expect() { # FILE WHAT TEXT COMMAND...
  local file=$1 what=$2 text=$3
  shift 3
  if ! "$@" "$file" | grep -qE "$text"; then
    echo "$file: $what is missing"
    failures=$((failures + 1))
  fi
}

for file in "$@"; do
  expect "$file" "a position that the system chooses" 'Type: +DYN' readelf -hW
  expect "$file" "a read-only table of relocations" GNU_RELRO readelf -lW
  expect "$file" "binding at the start" 'BIND_NOW|FLAGS_1.* NOW' readelf -dW
  expect "$file" "a stack that is no code" 'GNU_STACK .* RW ' readelf -lW
  expect "$file" "the stack protector" __stack_chk_fail nm -D
  expect "$file" "the checked functions of the C library" ' __[a-z]+_chk@' nm -D
  if [ "$(uname -m)" = x86_64 ] &&
    [ "$(objdump -d --section=.text "$file" | grep -c endbr64)" -lt "$start_marks" ]; then
    echo "$file: marks at the targets of jumps are missing"
    failures=$((failures + 1))
  fi
done
exit "$((failures > 0))"
