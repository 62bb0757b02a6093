#!/usr/bin/env bash
# Builds the Debian packages libtavclient0, libtavclient-dev, python3-tavclient, tavsim and,
# where Debian's ROS is installed, tavclient-ros in Release, into build-packages/debs;
# `--install` then installs them through apt.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh cmake g++ make python3-dev python3-pybind11 dpkg-dev file
cmake -S . -B build-packages -DCMAKE_BUILD_TYPE=Release -DTAVCLIENT_BUILD_TESTS=OFF \
  -DTAVCLIENT_BUILD_EXAMPLES=OFF >/dev/null
cmake --build build-packages -j"$(nproc)"
rm -rf build-packages/debs
(cd build-packages && cpack -G DEB -B debs >/dev/null)
ls build-packages/debs/*.deb
if [ "${1:-}" = --install ]; then
  sudo_cmd=()
  [ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo)
  "${sudo_cmd[@]}" apt-get install -y "$PWD"/build-packages/debs/*.deb
fi
