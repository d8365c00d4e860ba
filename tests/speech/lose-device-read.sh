#!/usr/bin/env bash
# Starts `lectorbell read FILE` under scripts/with-null-sink, kills the sound server once speech
# has sounded for a second, as a crashing server dies, and prints the reader's output and exit
# status.
set -u
out=$(mktemp)
trap 'rm -f "$out"' EXIT
"$1" read "$2" >"$out" 2>&1 &
reader=$!
for _ in $(seq 200); do
  grep -q "state: speaking" "$out" && break
  sleep 0.05
done
sleep 1
kill -KILL "$(cat "$LECTORBELL_TEST_PULSE_DIR/pulse/pid")"
wait "$reader"
status=$?
cat "$out"
echo "exit $status"
