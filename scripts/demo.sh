#!/usr/bin/env bash
# Installs what the demo needs and is missing (a compiler, CMake, make), builds the demo and the
# simulator program (build-demo/simulator/tavsim) and runs the demo's tour. With no arguments
# the demo starts a controller simulator in its own process; "HOST PORT" points it at a real
# controller. With TAVSIM_VIEW=PORT set, the simulator also serves its live view on that port
# (the demo prints the address), and what the view needs is installed too.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh demo ${TAVSIM_VIEW:+view}
cmake -S . -B build-demo -DCMAKE_BUILD_TYPE=Release -DTAVCLIENT_BUILD_TESTS=OFF >/dev/null
cmake --build build-demo -j"$(nproc)" --target tavclient-demo tavsim
echo
build-demo/examples/tavclient-demo "$@"
