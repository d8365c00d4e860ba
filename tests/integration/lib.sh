# Helpers for the desktop tests; sourced by each test, which runs inside scripts/desktop-session.
# A test fails through `fail`, skips with exit 77 (fails in CI, where every test must run), and
# never prints a password field's text.

LECTORBELL=${1:?the lectorbell executable}
HERE=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
TREE="/usr/bin/python3 $HERE/atspi_tree.py"
failures=0
children=()

cleanup_children() {
  for pid in "${children[@]}"; do
    kill -CONT "$pid" 2>/dev/null || true
    kill "$pid" 2>/dev/null || true
  done
}
trap cleanup_children EXIT

fail() {
  echo "FAIL: $*" >&2
  failures=$((failures + 1))
}

pass() {
  echo "ok: $*"
}

finish() {
  [ "$failures" -eq 0 ] || { echo "$failures check(s) failed" >&2; exit 1; }
  echo "all checks passed"
}

# skip REASON: ends the test as skipped; in CI (CI=true) as failed, since every test must run there.
skip() {
  if [ "${CI:-}" = true ]; then
    echo "FAIL: not run, and CI=true needs every test to run: $*" >&2
    exit 1
  fi
  echo "skipped: $*"
  exit 77
}

require() {
  for tool in "$@"; do
    command -v "$tool" >/dev/null 2>&1 || skip "$tool is not installed"
  done
}

# probe ARGS...: runs the probe; sets probe_out, probe_status and probe_ms.
probe() {
  local started
  started=$(date +%s%N)
  probe_out=$("$LECTORBELL" probe "$@" 2>&1) && probe_status=0 || probe_status=$?
  probe_ms=$(( ($(date +%s%N) - started) / 1000000 ))
}

# json_field EXPRESSION: evaluates a Python expression over the JSON probe output `j`.
json_field() {
  /usr/bin/python3 -c 'import json,sys; j=json.loads(sys.stdin.read()); print(eval(sys.argv[1]))' "$1" <<<"$probe_out"
}

# expect_word POINT WORD STRATEGY: the probe at POINT starts at WORD with word precision.
expect_word() {
  local point=$1 word=$2 strategy=$3
  probe --at "$point" --json
  if [ "$probe_status" -ne 0 ]; then
    fail "probe at $word ($point) exited $probe_status: $probe_out"
    return
  fi
  local got_strategy got_precision first
  got_strategy=$(json_field 'j["result"]["strategy"]')
  got_precision=$(json_field 'j["result"]["precision"]')
  first=$(json_field 'j["result"]["blocks"][0]["text"].split()[0].strip(".,;:")')
  if [ "$got_strategy" = "$strategy" ] && [ "$first" = "$word" ] &&
     { [ "$got_precision" = word ] || [ "$strategy" = table ]; }; then
    pass "$word: $strategy, $got_precision, ${probe_ms} ms"
  else
    fail "$word: got strategy=$got_strategy precision=$got_precision first word=$first"
  fi
}

# expect_secure POINT SECRET: refused as a secure field, and the secret appears nowhere.
expect_secure() {
  local point=$1 secret=$2
  probe --at "$point"
  if [ "$probe_status" -eq 3 ] && [[ "$probe_out" == *"Secure field — not reading"* ]]; then
    pass "password field refused"
  else
    fail "password field at $point: status $probe_status"
  fi
  probe --at "$point" --json
  if [[ "$probe_out" == *"$secret"* ]]; then
    fail "the password field's text appeared in the probe output"
  fi
}

# wait_for PID ROLE: until the application shows an element of ROLE.
wait_for() {
  $TREE wait "$1" "$2" || { fail "no $2 appeared in process $1"; finish; }
}

# window_showing_word TITLE WORD SECONDS: the process of the visible window whose title matches
# TITLE, once its accessibility tree shows WORD; empty when that does not happen in time.
window_showing_word() {
  local pid="" deadline=$((SECONDS + $3))
  while [ "$SECONDS" -lt "$deadline" ]; do
    pid=$(xdotool search --onlyvisible --name "$1" getwindowpid 2>/dev/null | head -1)
    [ -n "$pid" ] && $TREE word "$pid" "$2" >/dev/null 2>&1 && { echo "$pid"; return; }
    sleep 0.25
  done
}

# word_point PID WORD [ROLE]: the screen point at the middle of WORD.
word_point() {
  $TREE word "$@"
}

# secure_point PID: a point inside the application's password field.
secure_point() {
  $TREE dump "$1" | sed -n 's/^ *password text \[\(-\{0,1\}[0-9]*\),\([0-9]*\) \([0-9]*\)x\([0-9]*\)\].*/\1 \2 \3 \4/p' |
    head -1 | { read -r x y w h; echo "$((x + w / 4)),$((y + h / 2))"; }
}
