#!/usr/bin/env bash
# Every key command and the click, in a real window.
. "$(dirname "$0")/desktop.sh" "$@"

start_desktop
write_effects first second third
start_program /resx:500 /resy:400

tells '"effect":"first","effects":3' || fail "the first effect is not current"
hold Tab -- '"effect":"second"'
hold Tab -- '"effect":"third"'
hold Tab -- '"effect":"first"'
hold Shift_L Tab -- '"effect":"third"'
hold Return -- '"live":1'
hold Return -- '"live":2'
hold l -- '"live":2'

hold Pause -- '"paused":true'
hold Pause -- '"paused":false'
hold F8 -- '"overlay":false'
hold F8 -- '"overlay":true'
hold b -- '"backdrop":false'
hold b -- '"backdrop":true'
hold KP_Multiply -- '"speed":1.'
hold KP_Divide -- '"speed":0.'

# The camera comes home after each move.
home='"eye":[0,200,100]'
moved() { ! tells "$home"; }
turned() { ! tells '"view":[-0,-0.8944272,-0.4472136]'; }
move() {
    local what=$1 key
    shift
    for key in "$@"; do xdotool keydown "$key"; done
    until_true 20 "$what" || fail "$* left the camera where it was"
    for key in "$@"; do xdotool keyup "$key"; done
    hold c -- "$home"
}
for key in Up Down; do move moved $key; done
for key in Left Right Prior Next; do
    move turned $key
    move moved Shift_R $key
done
for key in Left Right Up Down; do move moved Control_L $key; done

write_effects first second third fourth
hold F5 -- '"effects":4'
tells '"live":2' || fail "F5 ended what was running"
hold r -- '"live":0'

xdotool mousemove --window "$window" 250 200 click 1
until_true 20 tells '"live":1' || fail "a click started nothing"

xdotool keydown Escape
ends_with 1
finish
