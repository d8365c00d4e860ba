#!/usr/bin/env bash
# LibreOffice Writer (GTK 3): a document read from the pointed word on, paragraph after
# paragraph.
set -uo pipefail
source "$(dirname "$0")/lib.sh"
require soffice xdotool

work=$(mktemp -d)
printf '%s\n\n%s\n\n%s\n' \
  "The harbour lights came on one by one as the ferry crossed the bay." \
  "A second paragraph mentions the lighthouse keeper and his dog." \
  "The third paragraph closes the story at dawn." >"$work/story.txt"
SAL_USE_VCLPLUGIN=gtk3 soffice --nologo --norestore --nofirststartwizard \
  "-env:UserInstallation=file://$work/profile" --writer "$work/story.txt" >/dev/null 2>&1 &
children+=("$!")
app=""
for _ in $(seq 1 120); do
  app=$(xdotool search --onlyvisible --name "story" getwindowpid 2>/dev/null | head -1)
  [ -n "$app" ] && $TREE word "$app" ferry >/dev/null 2>&1 && break
  sleep 0.5
done
[ -n "$app" ] || { fail "Writer did not show the document"; finish; }

expect_word "$(word_point "$app" ferry)" ferry leaf-walk
expect_word "$(word_point "$app" keeper)" keeper leaf-walk
probe --at "$(word_point "$app" ferry)" --json
json_field '" | ".join(b["text"] for b in j["result"]["blocks"])' |
  grep -q "ferry crossed the bay. | A second paragraph .* | The third paragraph" &&
  pass "read on through the following paragraphs" || fail "paragraphs: $probe_out"
pkill -f "UserInstallation=file://$work/profile" 2>/dev/null
rm -rf "$work"
finish
