#!/usr/bin/env bash
# Fails when a tracked C++ file differs from the project's one format (.clang-format), naming
# the places. `scripts/check-format.sh --fix` rewrites them instead.
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t files < <(git ls-files '*.cpp' '*.h')
if [ "${1:-}" = "--fix" ]; then
  clang-format-14 -i "${files[@]}"
else
  clang-format-14 --dry-run --Werror "${files[@]}"
fi
