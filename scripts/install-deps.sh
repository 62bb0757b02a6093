#!/usr/bin/env bash
# Installs, through apt, whatever a fresh Debian 12 machine lacks from a named set of packages,
# or given package names, whatever of those is missing. Usage: install-deps.sh [SET|PACKAGE...]
#   demo  what the demo needs: a compiler, CMake and make
#   view  what the simulator's live view needs: cpp-httplib (found through pkg-config), three.js
#   ros   what the ROS 1 driver (ros/) needs to build, run and be tested: Debian's ROS
#   test  the demo, view and ros sets and everything the tests, fuzzers and benchmarks use (the
#         default)
set -euo pipefail

demo=(cmake g++ make)
view=(pkg-config libcpp-httplib-dev libjs-three)
# The driver's build: roscpp, actionlib, the message packages it uses and tf2 (found through
# pkg-config), genmsg and gencpp for its own messages; at run time rosmaster, the robot state
# publisher and rviz; rostest and Xvfb for the tests and the rviz screenshot. The description's
# tests and the screenshot use ROS from Python (rospy, tf2, actionlib, the message modules, genpy
# for the action's), check_urdf, and ImageMagick's import.
ros=(pkg-config ros-base-dev ros-message-generation libactionlib-dev libactionlib-msgs-dev
     python3-actionlib libstd-msgs-dev libstd-srvs-dev libsensor-msgs-dev libgeometry-msgs-dev
     libdiagnostic-msgs-dev libtrajectory-msgs-dev libtf2-dev libtf2-ros-dev
     ros-robot-state-publisher rviz python3-rostest librostest-dev xvfb
     python3-rospy python3-roslaunch python3-tf2-ros python3-genpy python3-yaml python3-sensor-msgs
     python3-trajectory-msgs python3-visualization-msgs liburdfdom-tools imagemagick)
# pkg-config builds the README's program against an install; clang-14 and its runtimes
# (libFuzzer among them) build the fuzzing harnesses; valgrind checks the soak for leaks;
# pybind11 and the Python headers build the Python module, pytest runs its tests and
# pytest-timeout names one that hangs; dpkg-dev and file let CPack build the Debian packages;
# clang-format-14 checks the format; chromium loads the live view in its browser test;
# python3-matplotlib draws the recording example's plot.
test=("${demo[@]}" "${view[@]}" "${ros[@]}" chromium libgtest-dev libgmock-dev libbenchmark-dev
      valgrind clang-14 libclang-rt-14-dev python3-dev python3-pybind11 python3-pytest
      python3-pytest-timeout python3-matplotlib dpkg-dev file clang-format-14)

packages=()
for name in "${@:-test}"; do
  case "$name" in
    demo) packages+=("${demo[@]}") ;;
    view) packages+=("${view[@]}") ;;
    ros) packages+=("${ros[@]}") ;;
    test) packages+=("${test[@]}") ;;
    *) packages+=("$name") ;;
  esac
done
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
