#!/usr/bin/env bash
# Qt 6 widgets: a text editor read from the pointed word and a password line edit refused.
set -uo pipefail
source "$(dirname "$0")/lib.sh"
fixture=${2:?the Qt fixture executable}

secret="qt-$RANDOM-sesame"
QT_QPA_PLATFORM=xcb "$fixture" "$secret" &
app=$!
children+=("$app")
wait_for "$app" text

expect_word "$(word_point "$app" passes text)" passes text-view
expect_word "$(word_point "$app" melt text)" melt text-view
expect_secure "$(secure_point "$app")" "$secret"
finish
