#!/usr/bin/env bash
# Counts the lines of C++ and Python that git tracks: those in files under a tests/, test/ (the
# ROS package's, as ROS names it) or fuzz/ folder against all others, and their ratio.
set -euo pipefail
cd "$(dirname "$0")/.."
git ls-files -z -- '*.cpp' '*.h' '*.py' | xargs -0 wc -l | awk '
  $2 == "total" { next }
  $2 ~ /(^|\/)(tests|test|fuzz)\// { tests += $1; next }
  { code += $1 }
  END { printf "tests %d, code %d, ratio %.2f\n", tests, code, code ? tests / code : 0 }'
