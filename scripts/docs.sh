#!/usr/bin/env bash
# Builds the HTML page of the library's interface with Doxygen (installed through apt when
# missing) and prints where it is: build/docs/html/index.html.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh doxygen

TAVCLIENT_VERSION=$(sed -n 's/^project(tavclient VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
TAVCLIENT_DOCS_DIR=build/docs
export TAVCLIENT_VERSION TAVCLIENT_DOCS_DIR
mkdir -p "$TAVCLIENT_DOCS_DIR"
doxygen docs/Doxyfile
echo "$TAVCLIENT_DOCS_DIR/html/index.html"
