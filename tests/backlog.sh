#!/usr/bin/env bash
# Four sources, one after another and then two at a time: the same rows must come out.
# backlog.sh PROGRAMS_FOLDER [SCALE]; prints the seconds of both. Skipped (77) without GNU parallel.
set -euo pipefail
programs=$1
scale=${2:-20}
parallel --version 2>/dev/null | grep -q GNU || exit 77

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for seed in 1 2 3 4; do
    "$programs/sample_evidence" --os macOS --accounts 1 --only history --scale "$scale" \
        --seed "$seed" --out "$work/source$seed" >/dev/null
done

run() { # run FOLDER JOBS
    mkdir -p "$work/$1"
    parallel --will-cite --quote --jobs "$2" --halt now,fail=1 \
        "$programs/opera_extract" --source "$work/source{}" --os macOS --table history \
        --result "$work/$1/{}" --quiet ::: 1 2 3 4
}
started=$(date +%s.%N)
run alone 1
between=$(date +%s.%N)
run together 2
ended=$(date +%s.%N)

python3 - "$work" <<'PYTHON'
import pathlib, sqlite3, sys
for seed in "1234":
    rows = [sqlite3.connect(next((pathlib.Path(sys.argv[1]) / way / seed).rglob("*.sqlite")))
            .execute("select * from history order by INT").fetchall()
            for way in ("alone", "together")]
    if not rows[0] or rows[0] != rows[1]:
        sys.exit(f"source {seed}: {len(rows[0])} and {len(rows[1])} rows, not the same")
PYTHON
printf 'one after another %.2f s, two at a time %.2f s\n' \
    "$(awk "BEGIN { print $between - $started }")" "$(awk "BEGIN { print $ended - $between }")"
