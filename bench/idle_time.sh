#!/usr/bin/env bash
# Prints the processor time that the program uses in ten seconds: active, without the focus, with a dialog, minimised.
. "$(dirname "$0")/../tests/x11/desktop.sh" "$@"

used_in_ten_seconds() {
    local before
    before=$(processor_time)
    sleep 10
    echo "$1: $((($(processor_time) - before) * 10)) ms"
}

start_desktop
write_effects only
start_program --repeat
used_in_ten_seconds active
cover
used_in_ten_seconds 'without the focus'
xdotool windowactivate --sync "$window" key space
until_true 5 rests
used_in_ten_seconds 'a dialog open'
xdotool key Escape windowminimize --sync "$window"
until_true 5 rests
used_in_ten_seconds minimised
finish
