#!/usr/bin/env bash
# Installs BUILD_DIR into a fresh prefix, builds an application outside the source tree against
# it once through the CMake package and once through pkg-config, and runs each build against the
# installed simulator. The application is the README's own example, so the README cannot drift.
# Then the same with the contents of the Debian packages of BUILD_DIR, extracted into a
# temporary root, and the packaged Python module runs an example there.
set -euo pipefail
build=$(realpath "$1")
source_dir=$(realpath "$(dirname "$0")/../..")
work=$(mktemp -d)
simulator=""
trap '[ -n "$simulator" ] && kill "$simulator" 2>/dev/null; rm -rf "$work"' EXIT
fail() { echo "consumer check FAILED: $*" >&2; exit 1; }

prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null
libdir=$(dirname "$(find "$prefix" -name libtavclient.so)")
[ "$(readlink "$libdir/libtavclient.so")" = libtavclient.so.0 ] || fail "libtavclient.so is not a link to libtavclient.so.0"
readelf -d "$libdir/libtavclient.so.0" | grep -q 'SONAME.*\[libtavclient\.so\.0\]' || fail "libtavclient.so.0 lacks its SONAME"
! grep -rqs -e "$source_dir" -e "$build" "$libdir/cmake" "$libdir/pkgconfig" || fail "the installed package names the build or source tree"

app=$work/app
mkdir "$app"
cp "$source_dir/tests/consumer/CMakeLists.txt" "$app/"
# The README's blocks as scripts/doc-blocks.py reads them (and the test command checks them).
readme_block() {  # section, language
  /usr/bin/python3 "$source_dir/scripts/doc-blocks.py" show "$source_dir/README.md" --section "$1" --language "$2"
}
readme_block "Use it from C++" cpp >"$app/my_app.cpp" || fail "no C++ block in the README's \"Use it from C++\""


# Runs the application against the simulator of the tree it was built against, started on a free
# port, with HOME in the temporary directory so that the log lands there.
run_against_simulator() {
  local program=$1 root=$2 name=$3
  mkfifo "$work/$name.out"
  "$root/bin/tavsim" --port 0 --quiet >"$work/$name.out" &
  simulator=$!
  exec 3<"$work/$name.out"
  local line port output
  read -r -t 30 line <&3 || fail "the simulator printed nothing"
  port=$(sed -n 's/.*listening on 127\.0\.0\.1:\([0-9]*\) .*/\1/p' <<<"$line")
  [ -n "$port" ] || fail "no port in: $line"
  mkdir "$work/home-$name"
  output=$(HOME=$work/home-$name timeout 60 "$program" "$port") || fail "$name: $output"
  grep -q "joint 1 at 45.0 degrees" <<<"$output" || fail "$name printed: $output"
  compgen -G "$work/home-$name/TavClient/log/*.log" >/dev/null || fail "$name wrote no log under HOME"
  kill -INT "$simulator"
  wait "$simulator" || fail "the simulator did not stop cleanly"
  simulator=""
  exec 3<&-
  echo "$name: $output"
}

# Builds the application against the tree under `root` through find_package and through
# pkg-config, into the folder `into`, and runs both builds.
build_and_run() {
  local root=$1 into=$2 libdir flags
  libdir=$(dirname "$(find "$root" -name libtavclient.so)")
  mkdir "$into"
  cmake -S "$app" -B "$into/with-cmake" -DCMAKE_PREFIX_PATH="$root" >/dev/null
  cmake --build "$into/with-cmake" >/dev/null
  read -ra flags <<<"$(PKG_CONFIG_PATH=$libdir/pkgconfig pkg-config --cflags --libs tavclient)"
  g++ -std=c++17 "$app/my_app.cpp" "${flags[@]}" \
    -Wl,-rpath,"$(PKG_CONFIG_PATH=$libdir/pkgconfig pkg-config --variable=libdir tavclient)" -o "$into/with-pkg-config"
  run_against_simulator "$into/with-cmake/my_app" "$root" "$(basename "$into")-with-cmake"
  run_against_simulator "$into/with-pkg-config" "$root" "$(basename "$into")-with-pkg-config"
}

build_and_run "$prefix" "$work/installed"
echo "consumer check: installed, built through find_package and pkg-config, both ran"

cpack -G DEB --config "$build/CPackConfig.cmake" -B "$work/debs" >/dev/null
root=$work/root
for deb in "$work"/debs/*.deb; do
  dpkg-deb -x "$deb" "$root"
done
packages=$(for deb in "$work"/debs/*.deb; do dpkg-deb -f "$deb" Package; done | sort | xargs)
expected="libtavclient-dev libtavclient0"
[ -d "$build/python-module" ] && expected+=" python3-tavclient"
[ -f "$build/ros/setup.sh" ] && expected+=" tavclient-ros"
expected+=" tavsim"
[ "$packages" = "$expected" ] || fail "packages built: $packages; expected: $expected"
dpkg-deb -f "$work"/debs/libtavclient-dev_*.deb Depends | grep -q 'libtavclient0 (= ' ||
  fail "libtavclient-dev does not depend on its libtavclient0"
build_and_run "$root/usr" "$work/packaged"
if [ -d "$build/python-module" ]; then
  # The README's Python example.
  python_app=$work/readme_example.py
  readme_block "Use it from Python" python >"$python_app" || fail "no Python block in the README's \"Use it from Python\""
  output=$(cd "$work" && HOME=$work PYTHONPATH=$root/usr/lib/python3/dist-packages timeout 60 \
    /usr/bin/python3 "$python_app") || fail "packaged Python module: $output"
  echo "python3-tavclient: $output"
fi
echo "consumer check: Debian packages $packages built, extracted, the application built and ran"
