#!/bin/sh
# Fails and names the files whose layout is not clang-format's.
set -eu
cd "$(dirname -- "$0")/.."
find src tests bench -name '*.cpp' -o -name '*.h' | xargs clang-format-16 --dry-run --Werror
