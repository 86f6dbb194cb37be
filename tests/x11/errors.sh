#!/usr/bin/env bash
# An effects file that cannot be used is told in a message box, and the program ends with 0.
. "$(dirname "$0")/desktop.sh" "$@"

box_is_open() { xwininfo -root -tree 2>/dev/null | grep -qF '"KRN Error (DirectX8)"'; }

box_is_gone() { ! box_is_open; }

# shows_box TEXT: the box is there, TEXT has been said, and Return closes it.
shows_box() {
    until_true 60 box_is_open || fail "no message box"
    grep -qF "KRN Error (DirectX8): $1" "$work/err" || fail "instead of $1: $(cat "$work/err")"
    # The box takes the focus a little after it can be seen.
    until_true 30 closes_with_return || fail "the message box stays"
    ends_with 0
}
box_width() { xwininfo -name 'KRN Error (DirectX8)' 2>/dev/null | sed -n 's/ *Width: //p'; }
# A window is one pixel wide until its first size has arrived.
fits_the_screen() {
    local width
    width=$(box_width)
    [ "${width:-0}" -gt 300 ] && [ "$width" -lt 1280 ]
}
closes_with_return() {
    xdotool key Return
    box_is_gone
}

start_desktop

write_effects
"$program" --data "$work/data" >"$work/out" 2>"$work/err" &
program_pid=$!
pids+=("$program_pid")
shows_box 'VisualEffectSystem: No effects in effect file'

write_effects one
start_program /full
echo '}' >>"$work/data/cfg/effects.cfg"
xdotool keydown r
shows_box 'ConfigFileReader:'
xdotool keyup r

# However long the text, the box stays on the screen, and it ends with its program.
write_effects one
long=$(printf '長い名前 %s ' $(seq 1 50))
sed -i "s/Life = 0/CountType = \"$long\"/" "$work/data/cfg/effects.cfg"
"$program" --data "$work/data" >"$work/out" 2>"$work/err" &
program_pid=$!
pids+=("$program_pid")
until_true 60 box_is_open || fail "no message box for a long text"
until_true 20 fits_the_screen || fail "the box is $(box_width) wide"
kill -KILL "$program_pid"
until_true 20 box_is_gone || fail "a killed program leaves its box"
finish
