#!/usr/bin/env bash
# check_syntax.sh FILE INCLUDE_FLAGS...: parses the macOS implementation with clang against the
# minimal declarations beside this script.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
file=$1
shift
# Qt's headers must not take this system for the other one, so no macOS target is named.
exec clang++ -std=c++20 -x objective-c++ -fobjc-arc -fobjc-runtime=macosx-12.0 -fsyntax-only -fPIC \
    -Wall -Wextra -Werror -Wno-deprecated -isystem "$here" "$@" "$file"
