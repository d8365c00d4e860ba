#!/usr/bin/env bash
# Runs a command whose files cannot grow past KIB kibibytes, as on a disk that fills up: a write
# past the limit fails ("File too large") instead of ending the process.
#   with-file-size-limit.sh KIB COMMAND...
set -euo pipefail
trap '' XFSZ
ulimit -f "$1"
shift
exec "$@"
