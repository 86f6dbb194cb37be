# Sourced by the scenarios: a desktop of its own, the program in it, and what it tells.
# Arguments of a scenario: the program, the folder with its textures and compiled shaders.
set -u
program=$1
shipped=$2
work=$(mktemp -d)
journal=$work/journal.jsonl
pids=()
failures=0

clean_up() {
    for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null; done
    wait 2>/dev/null
    rm -rf "$work"
}
trap clean_up EXIT

fail() {
    echo "FAILED: $1" >&2
    failures=$((failures + 1))
}

# until_true SECONDS COMMAND...: polls until the command succeeds.
until_true() {
    local tries=$(($1 * 10))
    shift
    while ! "$@"; do
        tries=$((tries - 1))
        [ $tries -gt 0 ] || return 1
        sleep 0.1
    done
}

start_desktop() {
    export XDG_CONFIG_HOME=$work HOME=$work
    unset SDL_VIDEODRIVER WAYLAND_DISPLAY
    # A server that resets when its last client leaves would take the window manager along: hence -noreset.
    Xvfb -noreset -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$work/display" 2>"$work/xvfb.log" &
    pids+=($!)
    until_true 30 test -s "$work/display" || { cat "$work/xvfb.log" >&2; exit 1; }
    DISPLAY=:$(cat "$work/display")
    export DISPLAY
    openbox --sm-disable >/dev/null 2>&1 &
    pids+=($!)
    until_true 30 has_window_manager || { echo "openbox did not start" >&2; exit 1; }
}

has_window_manager() { xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id'; }

# write_effects NAME...: an effects file of effects that each are one particle that never ends.
write_effects() {
    mkdir -p "$work/data/cfg"
    ln -sfn "$shipped/shader" "$work/data/shader"
    ln -sfn "$shipped/textures" "$work/data/textures"
    : >"$work/data/cfg/texCatalogue.cfg"
    local name
    for name in "$@"; do
        printf '#%s\ndesc = "%s"\nPARTICLE {\n  texture = "textures\\glow.png"\n  Life = 0\n  scale = 20, 20, 20\n}\n' "$name" "$name"
    done >"$work/data/cfg/effects.cfg"
}

# start_program OPTION...: waits until the first frame has been drawn.
start_program() {
    : >"$journal"
    "$program" --data "$work/data" --journal "$journal" "$@" >"$work/out" 2>"$work/err" &
    program_pid=$!
    pids+=("$program_pid")
    until_true 60 test -s "$journal" || { echo "no frame was drawn" >&2; cat "$work/err" >&2; exit 1; }
    window=$(xdotool search --sync --pid "$program_pid" --name '^Sparkrig$' | tail -n 1)
    xdotool windowactivate --sync "$window"
}

tells() { tail -n 1 "$journal" | grep -qF -- "$1"; }

# hold KEY... -- TEXT: presses the keys in order and keeps them down until the journal tells TEXT.
hold() {
    local keys=() tries
    while [ "$1" != -- ]; do keys+=("$1") && shift; done
    for tries in 1 2 3; do
        local key
        has_ended && break
        for key in "${keys[@]}"; do xdotool keydown "$key"; done
        until_true 20 tells "$2" && tries=done
        for key in "${keys[@]}"; do xdotool keyup "$key"; done
        sleep 0.5 # some frames with the keys up
        [ $tries = done ] && return 0
    done
    fail "${keys[*]} did not give $2: $(tail -n 1 "$journal")"
}

# ends_with CODE: the program is ending; it ends with that code.
ends_with() {
    until_true 60 has_ended || { fail "the program did not end"; return; }
    wait "$program_pid"
    local code=$?
    [ $code -eq "$1" ] || fail "ended with $code instead of $1: $(cat "$work/err")"
}

# Ticks of 1/100 s.
processor_time() { awk '{print $14 + $15}' "/proc/$program_pid/stat"; }
used_in_a_second() {
    local before
    before=$(processor_time)
    sleep 1
    echo $(($(processor_time) - before))
}
# Each look takes a second.
rests() { [ "$(used_in_a_second)" -le 1 ]; }
works() { [ "$(used_in_a_second)" -ge 5 ]; }

# colour_at X Y: of the screen, as "rr gg bb".
colour_at() { echo $(import -silent -window root -crop "1x1+$1+$2" -depth 8 rgb:- | od -An -tx1); }
shows_at() { [ "$(colour_at "$1" "$2")" = "$3" ]; }

# cover: another window takes the focus. A busy window manager can give it back to the program; then it is asked again.
cover() {
    xev -name cover -geometry 200x150+900+750 >/dev/null &
    pids+=($!)
    until_true 20 xdotool search --name '^cover$' >/dev/null || fail "no other window"
    until_true 2 rests_behind "$(xdotool search --name '^cover$' | tail -n 1)" || fail "the program goes on without the focus"
}
has_focus() { [ "$(xdotool getactivewindow 2>/dev/null)" = "$1" ]; }
rests_behind() { { has_focus "$1" || xdotool windowactivate "$1"; } && rests; }

has_ended() { ! kill -0 "$program_pid" 2>/dev/null; }

finish() {
    [ $failures -eq 0 ] && exit 0
    echo "$failures failures; the last of the journal:" >&2
    tail -n 3 "$journal" >&2
    exit 1
}
