#!/usr/bin/env bash
# The library exports the factory, under its decorated name, and nothing else.
set -euo pipefail
library=$1
exported=$(nm -D --defined-only "$library" | awk '{print $3}')
expected=_Z13getLanvossPtrPFvNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEES4_ES4_
if [ "$exported" != "$expected" ]; then
  printf 'exported:\n%s\nexpected:\n%s\n' "$exported" "$expected"
  exit 1
fi
