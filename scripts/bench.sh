#!/usr/bin/env bash
# Installs what is missing, builds the library, the simulator and the benchmarks in Release
# and runs them, printing one table. Arguments go to the benchmark program (for example
# --benchmark_filter=floor). The 1 kHz control loop runs 10 s unless TAVBENCH_LOOP_SECONDS
# says otherwise (60 for the figures in docs/performance.md).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh test
cmake -S . -B build-bench -DCMAKE_BUILD_TYPE=Release -DTAVCLIENT_BUILD_BENCHMARKS=ON \
  -DTAVCLIENT_BUILD_TESTS=OFF -DTAVCLIENT_BUILD_EXAMPLES=OFF >/dev/null
cmake --build build-bench -j"$(nproc)" --target tavclient-bench
TAVBENCH_LOOP_SECONDS=${TAVBENCH_LOOP_SECONDS:-10} build-bench/bench/tavclient-bench "$@"
