#!/usr/bin/env bash
# Chromium: an article with headings, paragraphs, a link inside a paragraph, a table, a
# navigation sidebar and a password input.
set -uo pipefail
source "$(dirname "$0")/lib.sh"
require chromium xdotool

profile=$(mktemp -d)
chromium --no-sandbox --force-renderer-accessibility --user-data-dir="$profile" --no-first-run \
  --disable-gpu --disable-dev-shm-usage --window-position=0,0 --window-size=1200,900 \
  "file://$HERE/article.html" >/dev/null 2>&1 &
children+=("$!")
app=""
for _ in $(seq 1 60); do
  app=$(xdotool search --onlyvisible --class chromium getwindowpid 2>/dev/null | head -1)
  [ -n "$app" ] && $TREE word "$app" mountains >/dev/null 2>&1 && break
  sleep 0.25
done
[ -n "$app" ] || { fail "chromium did not show the page"; finish; }
chromium --version | head -1

expect_word "$(word_point "$app" mountains)" mountains leaf-walk
expect_word "$(word_point "$app" trout)" trout leaf-walk
expect_word "$(word_point "$app" widens)" widens leaf-walk
expect_word "$(word_point "$app" Birchwood)" Birchwood table

# The link's text is read inside its paragraph, and the sidebar is left out of the article.
probe --at "$(word_point "$app" Fishermen)" --json
json_field '" ".join(b["text"] for b in j["result"]["blocks"])' | grep -q "the brown trout bite" &&
  pass "link read inside its paragraph" || fail "link: $probe_out"
[[ "$probe_out" != *"Sidebar entry"* ]] && pass "navigation left out" || fail "navigation read: $probe_out"

expect_secure "$(secure_point "$app")" "hunter2sesame"
rm -rf "$profile"
finish
