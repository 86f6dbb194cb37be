#!/usr/bin/env bash
# Menu and dialogs, by mouse and by keyboard; what they leave in the settings.
. "$(dirname "$0")/desktop.sh" "$@"

start_desktop
write_effects first second third
registry=$work/sparkrig/registry.toml
setting() { grep -qF "$1" "$registry"; }
keys() { for key in "$@"; do xdotool key "$key" && sleep 0.1; done; }
# In the window, the menu bar included.
click() { xdotool mousemove --window "$window" "$1" "$2" && sleep 0.2 && xdotool click 1 && sleep 0.3; }
works_again() { until_true 2 works || fail "the program does not go on after $1"; }

start_program --repeat
keys space t h Return
until_true 20 tells '"effect":"third"' || fail "Space, two letters and Return choose no effect"
keys alt+e s Return Home Down Return
until_true 20 tells '"effect":"second"' || fail "the menu and the arrow keys choose no effect"
# Escape, Return and Tab in a dialog are not the program's.
keys space Tab Escape
works_again Escape
tells '"effect":"second"' || fail "a key of a dialog reached the program: $(tail -n 1 "$journal")"

click 30 13 # Effect
until_true 2 rests || fail "the open menu does not hold the program"
click 40 69 # Select...
xdotool mousemove --window "$window" 500 200 click --repeat 3 5
click 400 169 # the first of the list
click 478 675 # OK
until_true 20 tells '"effect":"first"' || fail "the mouse chooses no effect"

keys d 4 2 Return
until_true 20 tells '"detail":42' || fail "the detail level stays: $(tail -n 1 "$journal")"
keys shift+d 7 x Escape
works_again 'the detail level'
tells '"detail":42' || fail "Escape does not keep the detail level"
keys alt+h i
until_true 2 rests || fail "no info"
keys Return
works_again 'the info'

cp "$shipped/docs/sheet.png" "$work/data/picture.jpg" # by its content a png
keys F10 Down Down Down Return
until_true 2 rests || fail "no choice of a file"
keys End Return
until_true 20 tells '"background":"'"$work/data/picture.jpg"'"' || fail "no background: $(tail -n 1 "$journal")"
setting "BgrdTexturePath = '$work/data/picture.jpg'" || setting "\"$work/data/picture.jpg\"" || fail "the setting is not kept"
keys alt+e r
until_true 20 tells '"background":""' || fail "the background stays"
setting "BgrdTexturePath = ''" || setting 'BgrdTexturePath = ""' || fail "the setting stays: $(cat "$registry")"

# The desktop's own chooser, where there is one; a file that is no picture leaves what there is.
mkdir "$work/bin"
printf '#!/bin/sh\necho "$@" >"%s/asked"\necho "%s/out"\n' "$work" "$work" >"$work/bin/zenity"
chmod +x "$work/bin/zenity"
keys Escape
ends_with 1
PATH=$work/bin:$PATH start_program --repeat
keys alt+e s s Return
until_true 20 setting "$work/out" || fail "the desktop's chooser was not asked"
grep -qF -- '--title=Chose a background texture --file-filter=graphics files | *.jpg *.tga *.bmp *.dds' "$work/asked" || fail "$(cat "$work/asked")"
works_again 'a file that is no picture'

# Where the window is too low for a dialog, its title still stands below the menu.
xdotool windowsize --sync "$window" 700 560
keys space
click 250 124 # the second of the list
keys Return
until_true 20 tells '"effect":"second"' || fail "the menu covers the dialog: $(tail -n 1 "$journal")"

keys alt+e e
ends_with 1
finish
