#!/usr/bin/env bash
# Reads FILE with a voice espeak-ng lists but cannot load (it needs an MBROLA database that is
# not installed), through a private copy of espeak-ng's data, and prints the exit status.
#   unloadable-voice-read.sh LECTORBELL ESPEAK_NG_DATA_DIR FILE
set -euo pipefail
exe=$1
system=$2
file=$3
data=$(mktemp -d "${TMPDIR:-/tmp}/lectorbell-espeak.XXXXXX")
trap 'rm -rf "$data"' EXIT
for entry in "$system"/*; do
  [ "$(basename "$entry")" = voices ] || ln -s "$entry" "$data/"
done
mkdir "$data/voices"
for entry in "$system"/voices/*; do
  ln -s "$entry" "$data/voices/"
done
printf 'name Needs MBROLA\nlanguage en-us\nmbrola en1 en1_phtrans\n' >"$data/voices/unloadable"
status=0
ESPEAK_DATA_PATH="$data" "$exe" read --voice unloadable --wav "$data/read.wav" "$file" || status=$?
echo "exit $status"
