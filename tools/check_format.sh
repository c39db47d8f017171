#!/bin/sh
# Fails and names the files that are not formatted as clang-format would.
set -eu
cd "$(dirname -- "$0")/.."
find src tests bench -name '*.cpp' -o -name '*.h' | xargs clang-format-16 --dry-run --Werror
