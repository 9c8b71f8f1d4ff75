#!/usr/bin/env bash
# check_install.sh BUILD_DIR: installs into a scratch folder, builds the example of docs/hosting.md
# against the installed files alone, and runs both hosts on sample evidence.
set -euo pipefail
build=$(realpath "$1")
project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/installed" >/dev/null
"$build/bin/sample_evidence" --os macOS --out "$work/evidence" --accounts 1

mkdir "$work/host"
awk '/^```cpp$/ {inside = 1; next} /^```$/ {inside = 0} inside' "$project/docs/hosting.md" \
    >"$work/host/small_host.cpp"
cat >"$work/host/CMakeLists.txt" <<'CMAKE'
cmake_minimum_required(VERSION 3.25)
project(small_host CXX)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_AUTOMOC ON)
find_package(Qt6 REQUIRED COMPONENTS Widgets)
add_executable(small_host small_host.cpp)
target_include_directories(small_host PRIVATE ${HEADERS})
target_link_libraries(small_host PRIVATE Qt6::Widgets)
CMAKE
cmake -S "$work/host" -B "$work/host/build" -G Ninja \
    -DHEADERS="$work/installed/include/opera_artifacts" >/dev/null
cmake --build "$work/host/build" >/dev/null

account=$(basename "$(find "$work/evidence/Users" -mindepth 1 -maxdepth 1 -type d ! -name Shared |
    head -n 1)")
"$work/host/build/small_host" "$work/installed/lib/libopera.so" "$work/evidence/" "$work/small" \
    "$account" >/dev/null 2>&1
"$work/installed/bin/opera_extract" --source "$work/evidence" --os macOS --result "$work/full" \
    --quiet

rows() { sqlite3 "$work/$1/Artifacts_Result/Opera/Opera.sqlite" "select count(*) from $2"; }
for table in history cookies; do
    if [ "$(rows small $table)" -eq 0 ] || [ "$(rows small $table)" -ne "$(rows full $table)" ]; then
        echo "$table: the example host found $(rows small $table), opera_extract $(rows full $table)" >&2
        exit 1
    fi
done
echo "installed library and hosts work"
