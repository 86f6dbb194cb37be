#!/usr/bin/env bash
# Sizes, minimising, dragging and closing.
. "$(dirname "$0")/desktop.sh" "$@"

start_desktop
write_effects only
start_program /resx:500 /resy:400

# The size asked for is that of the whole window, with its frame and its menu.
extents=$(xprop -id "$window" _NET_FRAME_EXTENTS | sed 's/.*= //; s/,//g')
read -r left right top bottom <<<"$extents"
menu=26
client="\"client\":[$((500 - left - right)),$((400 - top - bottom - menu))]"
until_true 20 tells "$client" || fail "the window with its frame is not 500 x 400: $(tail -n 1 "$journal")"

xdotool windowsize "$window" 420 310
until_true 20 tells '"client":[420,284]' || fail "the new size did not arrive"

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

# Without the focus it rests, and what was covered shows the last frame again, in whatever size.
cover
corner_x=$((x + 50)) corner_y=$((y + 45))
backdrop=$(colour_at $corner_x $corner_y)
xdotool search --name '^cover$' windowmove $((corner_x - 40)) $((corner_y - 40))
until_true 20 shows_at $corner_x $corner_y 'ff ff ff' || fail "the other window covers nothing"
xdotool search --name '^cover$' windowmove 900 700
until_true 20 shows_at $corner_x $corner_y "$backdrop" || fail "an uncovered window does not show its picture"
for size in '700 500' '420 310'; do
    xdotool windowsize "$window" $size
    until_true 20 shows_at $((x + ${size% *} - 5)) $((y + ${size#* } / 2)) "$backdrop" || fail "the picture does not fill $size"
done
xdotool windowactivate --sync "$window"
until_true 2 works || fail "the program does not go on with the focus"

# A hidden tester costs no processor time.
xdotool windowminimize --sync "$window"
until_true 2 rests || fail "the minimised program goes on"
xdotool windowmap --sync "$window"
xdotool windowactivate --sync "$window"
until_true 20 tells '"client":[420,284]' || fail "the size after restoring is wrong"
hold Return -- '"live":1'

# The close box.
xdotool key --window 0 alt+F4
ends_with 1
finish
