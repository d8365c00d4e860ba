#!/usr/bin/env bash
# Starts `lectorbell read FILE`, presses Ctrl-C (SIGINT) after 3 s (speech has begun) and prints its exit status.
set -u
"$1" read "$2" &
reader=$!
sleep 3
kill -INT "$reader"
wait "$reader"
echo "exit $?"
