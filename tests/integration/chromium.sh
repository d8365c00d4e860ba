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
app=$(window_showing_word "Lectorbell article" mountains 15)
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

# A long page, long enough for a full walk to read the tree ahead in bulk: it must read every
# paragraph in order, links inline, headings, no sidebar, and agree with the quick walk, which
# asks element by element.
long="$profile/long.html"
{
  echo '<!DOCTYPE html><html lang="en"><meta charset="utf-8"><title>Long article</title>'
  echo '<body><nav aria-label="Sections"><a href="#a">Sidebar entry gamma</a></nav><main><article>'
  echo '<p>The first paragraph holds the word lighthouse.</p>'
  for i in $(seq 1 400); do
    [ $((i % 50)) -eq 0 ] && echo "<h2>Part $i</h2>"
    if [ $((i % 7)) -eq 0 ]; then
      echo "<p>Paragraph $i has <a href=\"#l$i\">link number $i</a> inside.</p>"
    else
      echo "<p>Paragraph $i of the long article.</p>"
    fi
  done
  echo '</article></main></body></html>'
} >"$long"
chromium --no-sandbox --force-renderer-accessibility --user-data-dir="$profile/long" \
  --no-first-run --disable-gpu --disable-dev-shm-usage --window-position=0,0 \
  --window-size=900,900 "file://$long" >/dev/null 2>&1 &
children+=("$!")
longApp=$(window_showing_word "Long article" lighthouse 15)
[ -n "$longApp" ] || { fail "chromium did not show the long page"; finish; }
point=$(word_point "$longApp" lighthouse)
probe --at "$point" --json
full=$probe_out
probe --at "$point" --quick --json
quick=$probe_out
check=$(/usr/bin/python3 - "$full" "$quick" <<'PY'
import json, re, sys
full, quick = (json.loads(text)["result"] for text in sys.argv[1:3])
text = " ".join(b["text"] for b in full["blocks"])
numbers = [int(n) for n in re.findall(r"Paragraph (\d+)", text)]
problems = []
if full["walkCut"]:
    problems.append("full walk cut")
if numbers != list(range(1, 401)):
    problems.append("paragraphs out of order or missing: %d found" % len(numbers))
if "Paragraph 350 has link number 350 inside." not in text:
    problems.append("link not inline")
if "Part 200" not in [b["text"] for b in full["blocks"] if b["role"] == "heading"]:
    problems.append("heading missing")
if "Sidebar entry" in text:
    problems.append("sidebar read")
agree = len(quick["blocks"]) > 2 and quick["blocks"][:-1] == full["blocks"][:len(quick["blocks"]) - 1]
if not agree:
    problems.append("quick and full walks disagree")
print("; ".join(problems) or "ok")
PY
)
[ "$check" = ok ] && pass "long page read whole, ${probe_ms} ms quick" || fail "long page: $check"
rm -rf "$profile"
finish
