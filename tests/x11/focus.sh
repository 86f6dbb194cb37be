#!/usr/bin/env bash
# Full screen: the focus goes to another window and comes back by the window manager, without a move of the mouse.
. "$(dirname "$0")/desktop.sh" "$@"

# A busy window manager can miss the keys.
switch_back() {
    local try
    for try in 1 2 3; do
        xdotool keydown alt key Tab keyup alt
        until_true 5 has_focus "$window" && return
    done
    fail "the window manager does not switch"
}

start_desktop
write_effects only
start_program /full
until_true 20 tells '"client":[1280,1024]' || fail "full screen is not the whole screen: $(tail -n 1 "$journal")"
cover
switch_back
until_true 2 works || fail "the program stays frozen when the focus is back"
xdotool keydown Escape
ends_with 1
finish
