#!/usr/bin/env bash
# LibreOffice Writer (GTK 3): a document read from the pointed word on, paragraph after
# paragraph.
set -uo pipefail
source "$(dirname "$0")/lib.sh"
require soffice xdotool

work=$(mktemp -d)
# Writer's launcher outlives a plain TERM and keeps the test's files open: end both for good.
end_writer() {
  pkill -KILL -f "UserInstallation=file://$work/profile" 2>/dev/null
  rm -rf "$work"
  cleanup_children
}
trap end_writer EXIT
{
  printf '%s\n\n%s\n\n%s\n\n' \
    "The harbour lights came on one by one as the ferry crossed the bay." \
    "A second paragraph mentions the lighthouse keeper and his dog." \
    "The third paragraph closes the story at dawn."
  # Enough paragraphs for a full walk to read the tree ahead; Writer lists only those on screen.
  for i in $(seq 1 80); do printf 'Numbered paragraph %s of the story.\n\n' "$i"; done
} >"$work/story.txt"
SAL_USE_VCLPLUGIN=gtk3 soffice --nologo --norestore --nofirststartwizard \
  "-env:UserInstallation=file://$work/profile" --writer "$work/story.txt" >/dev/null 2>&1 &
children+=("$!")
app=$(window_showing_word story ferry 60)
[ -n "$app" ] || { fail "Writer did not show the document"; finish; }

expect_word "$(word_point "$app" ferry)" ferry leaf-walk
expect_word "$(word_point "$app" keeper)" keeper leaf-walk
probe --at "$(word_point "$app" ferry)" --json
json_field '" | ".join(b["text"] for b in j["result"]["blocks"])' |
  grep -q "ferry crossed the bay. | A second paragraph .* | The third paragraph" &&
  pass "read on through the following paragraphs" || fail "paragraphs: $probe_out"
numbers=$(json_field '" ".join(__import__("re").findall(r"Numbered paragraph (\d+)", " ".join(b["text"] for b in j["result"]["blocks"])))')
expected=$(seq -s ' ' 1 "$(wc -w <<<"$numbers")")
[ "$(wc -w <<<"$numbers")" -ge 10 ] && [ "$numbers" = "$expected" ] &&
  pass "every paragraph on screen, in order ($(wc -w <<<"$numbers"))" || fail "numbered paragraphs: $numbers"
finish
