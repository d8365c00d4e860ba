#!/usr/bin/env bash
# GTK 3: a text view read from the pointed word, a password entry refused, a keyboard selection
# read back, and a hung application answered in time.
set -uo pipefail
source "$(dirname "$0")/lib.sh"
require xdotool
/usr/bin/python3 -c 'import gi; gi.require_version("Gtk", "3.0")' 2>/dev/null ||
  skip "python3-gi with GTK 3 is not installed"

secret="gtk-$RANDOM-sesame"
/usr/bin/python3 "$HERE/gtk_fixture.py" "$secret" &
app=$!
children+=("$app")
wait_for "$app" text

expect_word "$(word_point "$app" circle text)" circle text-view
expect_word "$(word_point "$app" traders text)" traders text-view
probe --at "$(word_point "$app" harbour text)" --quick --json
[ "$(json_field 'j["result"]["blocks"][0]["text"].split()[0]')" = harbour ] &&
  pass "quick probe starts at harbour" || fail "quick probe: $probe_out"
expect_secure "$(secure_point "$app")" "$secret"

# A selection made with the keyboard is read back.
point=$(word_point "$app" Morning text)
xdotool mousemove "${point%,*}" "${point#*,}" click 1
xdotool key ctrl+Home shift+ctrl+Right shift+ctrl+Right
sleep 0.2
probe --at "$point" --selection --json
if [ "$(json_field 'j["decision"]')" = readSelection ] && [ "$(json_field 'j["text"]')" = "Morning light" ]; then
  pass "keyboard selection read back"
else
  fail "selection: $probe_out"
fi

# A hung application: the answer within 1.0 s, then the application runs on.
point=$(word_point "$app" circle text)
kill -STOP "$app"
for attempt in 1 2 3; do
  probe --at "$point"
  if [ "$probe_status" -eq 3 ] && [[ "$probe_out" == *"The app didn't respond in time — try again"* ]] &&
     [ "$probe_ms" -lt 1000 ]; then
    pass "hung application answered in ${probe_ms} ms"
  else
    fail "hung application (attempt $attempt): status $probe_status after ${probe_ms} ms: $probe_out"
  fi
done
kill -CONT "$app"
expect_word "$point" circle text-view

finish
