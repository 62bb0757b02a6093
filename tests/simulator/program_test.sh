#!/usr/bin/env bash
# The simulator program as a user runs it: rejects bad options, serves on the port it prints,
# logs the connection and stops cleanly on Ctrl-C (SIGINT).
set -euo pipefail
program="$1"
work=$(mktemp -d)
pid=""
fail() { echo "FAIL: $*"; cat "$work/log" 2>/dev/null || true; exit 1; }
trap '[ -n "$pid" ] && kill "$pid" 2>/dev/null; rm -rf "$work"' EXIT

"$program" --help | grep -q -- "--port PORT"
! "$program" --motors 11 2>"$work/error" || fail "--motors 11 was accepted"
grep -q "bad value for --motors" "$work/error"

"$program" --port 0 --motors 7 >"$work/log" 2>&1 &
pid=$!
for _ in $(seq 200); do
  grep -q "listening on" "$work/log" && break
  sleep 0.05
done
port=$(sed -n 's/.*listening on 127\.0\.0\.1:\([0-9]*\) .*/\1/p' "$work/log")
[ -n "$port" ] || fail "no port in the log"

exec 3<>"/dev/tcp/127.0.0.1/$port"
printf '<root><heart /></root>' >&3
read -r -t 5 -N 22 reply <&3
exec 3<&-
[ "$reply" = "<root><Heart /></root>" ] || fail "heart reply was '$reply'"

kill -INT "$pid"
status=0
wait "$pid" || status=$?
pid=""
[ "$status" -eq 0 ] || fail "exit status $status after SIGINT"
grep -q "\[conn 1\] connected from 127.0.0.1" "$work/log"
grep -q "with 7 motors" "$work/log"
grep -q "tavsim: stopped" "$work/log"
echo "simulator program: 1 passed, 0 failed"
