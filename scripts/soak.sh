#!/usr/bin/env bash
# The shift soak for MINUTES minutes (60 unless given): a get_angles loop at 1 kHz on one Robot
# while its controller, the simulator program, is killed and restarted and frozen and thawed in
# turn. Prints the calls, the failures by code, the times to notice and to reconnect, and the
# descriptors, threads, heap and log bytes at the end against after warm-up. BUILD_DIR names
# the build to use (build unless given).
set -euo pipefail
cd "$(dirname "$0")/.."
minutes=${1:-60}
build=${BUILD_DIR:-build}
scripts/install-deps.sh test
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j"$(nproc)" --target test_reliability
TAVTEST_SOAK_SECONDS=$((minutes * 60)) "$build/tests/test_reliability" --gtest_filter='ShiftSoakTest.*'
