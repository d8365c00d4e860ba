#!/usr/bin/env bash
# A desktop where accessibility was never turned on: the probe asks for it, the accessibility
# verb turns it on for good, names the running app that must be restarted (Chromium, which
# looks only as it starts) once, and GTK text is read right away.
set -uo pipefail
source "$(dirname "$0")/lib.sh"
require chromium xdotool gsettings

status() { "$LECTORBELL" accessibility "$@" 2>&1; }

[ "$(status)" = "accessibility: off" ] && pass "reported off" || fail "status: $(status)"

profile=$(mktemp -d)
chromium --no-sandbox --user-data-dir="$profile" --no-first-run --disable-gpu \
  --disable-dev-shm-usage --window-position=700,0 --window-size=600,400 \
  "data:text/html,<title>Switch page</title><p>Plain words</p>" >/dev/null 2>&1 &
children+=("$!")
/usr/bin/python3 "$HERE/gtk_fixture.py" "switch-secret" &
gtk=$!
children+=("$gtk")
wait_for "$gtk" text
for _ in $(seq 1 60); do
  xdotool search --onlyvisible --name "Switch page" >/dev/null 2>&1 && break
  sleep 0.25
done

point=$(word_point "$gtk" circle text)
probe --at "$point"
[ "$probe_status" -eq 3 ] && [[ "$probe_out" == *"Accessibility permission needed"* ]] &&
  pass "probe asks for accessibility" || fail "probe while off: $probe_status $probe_out"

out=$(status --enable)
if [[ "$out" == *"accessibility: on"* && "$out" == *"Restart this app so Lectorbell can read it: chromium (with --force-renderer-accessibility)."* ]]; then
  pass "turned on, chromium named"
else
  fail "enable: $out"
fi
[ "$(gsettings get org.gnome.desktop.interface toolkit-accessibility)" = true ] &&
  pass "kept in the desktop's settings" || fail "toolkit-accessibility not stored"
[ "$(status --enable)" = "accessibility: on" ] && pass "told once" || fail "second enable: $(status --enable)"

expect_word "$point" circle text-view

# Chromium keeps its page to itself until started with its own option, and the probe says so.
probe --at 1000,200 --json
[[ "$(json_field 'j["notice"]')" == *"shows no page text to accessibility: start it with --force-renderer-accessibility"* ]] &&
  pass "chromium's start option named" || fail "chromium notice: $probe_out"
rm -rf "$profile"
finish
