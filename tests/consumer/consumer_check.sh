#!/usr/bin/env bash
# Installs BUILD_DIR into a fresh prefix, builds an application outside the source tree against
# it once through the CMake package and once through pkg-config, and runs each build against the
# installed simulator. The application is the README's own example, so the README cannot drift.
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
awk '/^## Use it in an application/ { section = 1 }
     section && /^```cpp/ { code = 1; next }
     code && /^```/ { exit }
     code' "$source_dir/README.md" >"$app/my_app.cpp"
[ -s "$app/my_app.cpp" ] || fail "no C++ block in the README's \"Use it in an application\""

cmake -S "$app" -B "$work/with-cmake" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/with-cmake" >/dev/null
export PKG_CONFIG_PATH=$libdir/pkgconfig
read -ra flags <<<"$(pkg-config --cflags --libs tavclient)"
g++ -std=c++17 "$app/my_app.cpp" "${flags[@]}" -Wl,-rpath,"$(pkg-config --variable=libdir tavclient)" \
  -o "$work/with-pkg-config"

# Runs the application against a simulator of its own, started on a free port, with HOME in the
# temporary directory so that the log lands there.
run_against_simulator() {
  local program=$1 name
  name=$(basename "$program")
  mkfifo "$work/$name.out"
  "$prefix/bin/tavsim" --port 0 --quiet >"$work/$name.out" &
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

run_against_simulator "$work/with-cmake/my_app"
run_against_simulator "$work/with-pkg-config"
echo "consumer check: installed, built through find_package and pkg-config, both ran"
