#!/usr/bin/env bash
# Installs what is missing, checks the format of every C++ file, builds the library with its
# tests and runs them: first the plain build, followed by an application built against an
# install of it, then each fuzzing harness for a short slot, then the same suite under
# ThreadSanitizer and under AddressSanitizer with UndefinedBehaviorSanitizer. `--quick` runs
# the plain build and the application only.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh test

echo "== format"
scripts/check-format.sh

jobs=$(nproc)
run_suite() {  # build directory, then extra cmake arguments
  local dir=$1
  shift
  echo "== ${dir}"
  cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@"
  cmake --build "$dir" -j"$jobs"
  ctest --test-dir "$dir" --output-on-failure -j"$jobs"
}

# Line tables are all a report (sanitizer or valgrind) needs; full debug information only slows
# the build.
run_suite build -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O2 -g1 -DNDEBUG"
echo "== consumer check"
tests/consumer/consumer_check.sh build
if [ "${1:-}" != "--quick" ]; then
  scripts/fuzz.sh all 30
  run_suite build-tsan -DTAVCLIENT_SANITIZER=thread -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1 -g1 -DNDEBUG"
  run_suite build-asan -DTAVCLIENT_SANITIZER=address -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1 -g1 -DNDEBUG"
fi
