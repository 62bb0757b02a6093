#!/usr/bin/env bash
# Builds the libFuzzer harnesses with clang and runs one of them, or each in turn, for a number
# of seconds, each from the committed seeds. Fails on any finding: a crash or sanitizer report,
# a leak, an input slower than the time-out, or a run past the memory limits. What a harness
# found is kept under build-fuzz/findings/.
# Usage: scripts/fuzz.sh [parser|xml|framer|all] [seconds]   (defaults: all, 60)
set -euo pipefail
cd "$(dirname "$0")/.."

harness=${1:-all}
seconds=${2:-60}
all=(parser xml framer)
declare -A seeds=([parser]=messages [xml]=messages [framer]=streams)

if [ "$harness" = all ]; then
  chosen=("${all[@]}")
elif [ -n "${seeds[$harness]:-}" ]; then
  chosen=("$harness")
else
  echo "usage: scripts/fuzz.sh [${all[*]// /|}|all] [seconds]" >&2
  exit 2
fi
[[ "$seconds" =~ ^[1-9][0-9]*$ ]] || { echo "seconds must be a positive whole number" >&2; exit 2; }

scripts/install-deps.sh test
build=build-fuzz
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++-14 \
  -DTAVCLIENT_BUILD_FUZZERS=ON -DTAVCLIENT_BUILD_TESTS=OFF -DTAVCLIENT_BUILD_EXAMPLES=OFF >/dev/null
cmake --build "$build" -j"$(nproc)" --target "${chosen[@]/#/fuzz_}"

# A small quarantine still outlives any one input's frees, and five frames of each allocation's
# stack are enough to place it; both cut the allocator's cost, which dominates these harnesses.
# Re-running a saved input with ASAN_OPTIONS unset gives the full stacks.
export ASAN_OPTIONS=${ASAN_OPTIONS:-quarantine_size_mb=16:malloc_context_size=5}

# One at a time: the machine's cores are shared, and each run's figures should be its own.
for name in "${chosen[@]}"; do
  corpus=$build/corpus/$name
  findings=$build/findings
  log=$build/fuzz-$name.log
  rm -rf "$corpus"
  mkdir -p "$corpus" "$findings"
  echo "== fuzz $name for ${seconds} s"
  if ! "$build/fuzz/fuzz_$name" "$corpus" "fuzz/corpus/${seeds[$name]}" -dict=fuzz/wire.dict \
      -max_total_time="$seconds" -timeout=10 -rss_limit_mb=1024 -malloc_limit_mb=128 \
      -print_final_stats=1 -artifact_prefix="$findings/$name-" >"$log" 2>&1; then
    tail -n 60 "$log"
    echo "fuzz $name: FINDING (full log: $log, input under $findings/)" >&2
    exit 1
  fi
  awk -v name="$name" '
    /DONE/ { for (i = 1; i < NF; i++) if ($i == "corp:") corpus = $(i + 1) }
    /stat::number_of_executed_units/ { runs = $2 }
    /stat::average_exec_per_sec/ { rate = $2 }
    END { printf "fuzz %s: %d executions, %d/s, corpus %s (inputs/size), no finding\n", name, runs, rate, corpus }
  ' "$log"
done
