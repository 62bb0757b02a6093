#!/usr/bin/env bash
# Builds the ROS driver, the simulator and the driver's benchmark in Release and runs it,
# printing one table (ros/README.md keeps the last figures). The argument is the seconds
# measured at each joint-state rate (10 by default).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh test
cmake -S . -B build-bench -DCMAKE_BUILD_TYPE=Release -DTAVCLIENT_BUILD_BENCHMARKS=ON \
  -DTAVCLIENT_BUILD_TESTS=OFF -DTAVCLIENT_BUILD_EXAMPLES=OFF -DTAVCLIENT_BUILD_ROS=ON >/dev/null
cmake --build build-bench -j"$(nproc)" --target tavclient_ros_bench
build-bench/ros/tavclient_ros_bench "${1:-10}"
