#!/usr/bin/env bash
# Sizes, minimising, dragging and closing.
. "$(dirname "$0")/desktop.sh" "$@"

start_desktop
write_effects only
start_program /resx:500 /resy:400

# The size asked for is that of the whole window, with its frame.
extents=$(xprop -id "$window" _NET_FRAME_EXTENTS | sed 's/.*= //; s/,//g')
read -r left right top bottom <<<"$extents"
client="\"client\":[$((500 - left - right)),$((400 - top - bottom))]"
until_true 20 tells "$client" || fail "the window with its frame is not 500 x 400: $(tail -n 1 "$journal")"

xdotool windowsize "$window" 420 310
until_true 20 tells '"client":[420,310]' || fail "the new size did not arrive"

# A drag by the title bar pauses, and ends the pause of the Pause key as well.
hold Pause -- '"paused":true'
x=$(xwininfo -id "$window" | sed -n 's/.*Absolute upper-left X: *//p')
y=$(xwininfo -id "$window" | sed -n 's/.*Absolute upper-left Y: *//p')
xdotool mousemove $((x + 200)) $((y - top / 2))
xdotool mousedown 1
sleep 1
xdotool mousemove_relative 30 20
sleep 0.5
xdotool mouseup 1
until_true 20 tells '"paused":false' || fail "the end of a drag did not end the pause"

# A hidden tester costs no processor time.
processor_time() { awk '{print $14 + $15}' "/proc/$program_pid/stat"; }
rests() {
    local before
    before=$(processor_time)
    sleep 1
    [ $(($(processor_time) - before)) -le 1 ]
}
xdotool windowminimize --sync "$window"
until_true 20 rests || fail "the minimised program goes on"
xdotool windowmap --sync "$window"
xdotool windowactivate --sync "$window"
until_true 20 tells '"client":[420,310]' || fail "the size after restoring is wrong"
hold Return -- '"live":1'

# The close box.
xdotool key --window 0 alt+F4
ends_with 1
finish
