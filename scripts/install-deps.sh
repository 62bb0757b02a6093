#!/usr/bin/env bash
# Installs, through apt, whatever a fresh Debian 12 machine lacks to build, test and benchmark the
# project, or, given package names, whatever of those is missing (scripts/docs.sh asks for doxygen).
set -euo pipefail

# clang-14 and its runtimes (libFuzzer among them) build the fuzzing harnesses; pybind11 and the
# Python headers the Python module, pytest its tests; dpkg-dev and file let CPack build the
# Debian packages.
packages=(cmake g++ make pkg-config libgtest-dev libgmock-dev libbenchmark-dev valgrind clang-14
          libclang-rt-14-dev python3-dev python3-pybind11 python3-pytest dpkg-dev file)
[ $# -gt 0 ] && packages=("$@")
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo_cmd=()
[ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
