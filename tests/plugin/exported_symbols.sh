#!/usr/bin/env bash
# exported_symbols.sh LIBRARY: the library defines create_object for others and nothing else.
set -euo pipefail
found=$(nm -D --defined-only "$1" | awk '{print $3}')
if [ "$found" != create_object ]; then
    printf 'exported:\n%s\n' "$found" | c++filt >&2
    exit 1
fi
