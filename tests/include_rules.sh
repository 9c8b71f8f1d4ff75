#!/usr/bin/env bash
# include_rules.sh PROJECT: which folder may include which. A folder always includes itself. A room
# below common/ also keeps its own rule: none includes the classes of the contract above it.
set -euo pipefail
cd "$1"

state='common/debug_log.h common/named_connection.h common/run_state.h common/host_records.h'
lower="$state common/values common/evidence"

# folder: the project folders and files it may include besides itself
rules="common:
common/values:
common/evidence: $state common/values
common/metadata: $lower
common/extraction: $lower common/plugin_helper_functions.h
common/artefacts: $lower common/extraction
macos: common
winos: common
plugin: common macos winos
host: plugin/opera.h common/host_records.h
report:
sample:"

status=0
while IFS=: read -r folder allowed; do
    [ -d "$folder" ] || continue
    while IFS= read -r line; do
        included=${line##*#include \"}
        included=${included%%\"*}
        case "$included" in
        "$folder"/* | ui_*.h | *.moc) continue ;;
        esac
        for one in $allowed; do
            [[ $included == "$one" || $included == "$one"/* ]] && continue 2
        done
        echo "$line: $folder must not include this" >&2
        status=1
    done < <(grep -rn --include='*.cpp' --include='*.h' --include='*.mm' '^#include "' "$folder" || true)
done <<<"$rules"
exit $status
