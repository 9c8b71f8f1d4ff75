# Sourced by ./run, ./test and .ci/run: installs what is missing on Debian and builds.

project_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_packages=(g++ cmake ninja-build qt6-base-dev libqt6sql6-sqlite libsqlite3-dev
    libplist-dev libexiv2-dev libxlsxwriter-dev)
sanitizer_packages=(clang libclang-rt-14-dev)

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# install_missing PACKAGE...: quiet and quick when everything is there.
install_missing() {
    local missing
    missing=$(comm -23 <(printf '%s\n' "$@" | sort -u) \
        <(dpkg-query -W -f '${db:Status-Status} ${Package}\n' "$@" 2>/dev/null |
            sed -n 's/^installed //p' | sort -u))
    [ -z "$missing" ] && return 0
    if ! command -v apt-get >/dev/null; then
        echo "Please install these packages (Debian names): $missing" >&2
        return 1
    fi
    echo "Installing:" $missing >&2
    as_root apt-get update -qq
    # shellcheck disable=SC2086 # one word per package
    DEBIAN_FRONTEND=noninteractive as_root apt-get install -y -qq --no-install-recommends \
        $missing >/dev/null
}

# build_preset PRESET [TARGET...]: configures when needed and builds all or the targets; prints only
# what goes wrong.
build_preset() {
    local preset=$1 log
    local targets=("${@:2}")
    log=$(mktemp)
    if ! {
        { [ -f "$project_dir/build/$preset/build.ninja" ] ||
            (cd "$project_dir" && cmake --preset "$preset"); } &&
            (cd "$project_dir" && cmake --build --preset "$preset" ${targets[@]:+--target "${targets[@]}"})
    } >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        return 1
    fi
    rm -f "$log"
}
