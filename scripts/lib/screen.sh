# shellcheck shell=bash
# A screen of its own (Xvfb) with the workbench on it, driven through real keys and clicks. Sourced after setup.sh.

HEADLESS_SCREEN="${SCREEN:-1280x800}"
HEADLESS_STEP_SECONDS=30  # What a step may take at most on a slow machine.

headless_pids=()
headless_folder=""
program_pid=""
main_window=""

headless_cleanup() {
    local pid
    for pid in "${headless_pids[@]}"; do
        kill "$pid" 2>/dev/null || true
    done
    for pid in "${headless_pids[@]}"; do
        for _ in {1..50}; do
            kill -0 "$pid" 2>/dev/null || break
            sleep 0.1
        done
        kill -KILL "$pid" 2>/dev/null || true
        wait "$pid" 2>/dev/null || true
    done
    headless_pids=()
    [[ -z "$headless_folder" ]] || rm -rf "$headless_folder"
}

# A step failed: says so with what the program said and what its screen showed.
headless_fail() {
    local screen="${screenshot%.png}-failed.png"
    rm -f "$screen"
    take_picture root "$screen" || true
    [[ ! -s "$headless_folder/output" ]] || tail -n 20 "$headless_folder/output" >&2
    [[ ! -s "$screen" ]] || say "The screen at that moment: $screen" >&2
    die "$*"
}

program_lives() {
    kill -0 "$program_pid" 2>/dev/null
}

# wait_until WHAT COMMAND…: looks four times a second until the command succeeds; fails with WHAT when it does not.
wait_until() {
    local what="$1" end=$((SECONDS + HEADLESS_STEP_SECONDS))
    shift
    until "$@"; do
        [[ -z "$program_pid" ]] || program_lives || headless_fail "the program ended by itself while waiting: $what"
        ((SECONDS < end)) || headless_fail "$what did not happen within $HEADLESS_STEP_SECONDS seconds."
        sleep 0.25
    done
}

x() {
    timeout 10 xdotool "$@" 2>/dev/null
}

# import_window WINDOW ARGUMENT…; another program named import may stand before ImageMagick's on the path.
import_window() {
    local import=/usr/bin/import-im6
    [[ -x "$import" ]] || import=/usr/bin/import
    timeout 30 "$import" -window "$@" 2>/dev/null
}

# take_picture WINDOW FILE
take_picture() {
    import_window "$1" "$2" && [[ -s "$2" ]]
}

start_screen() {
    local cookie
    cookie="$(od -An -N16 -tx1 /dev/urandom | tr -d ' \n')"
    touch "$headless_folder/server" "$headless_folder/client"
    xauth -q -f "$headless_folder/server" add :0 . "$cookie"
    Xvfb -displayfd 3 -auth "$headless_folder/server" -screen 0 "${HEADLESS_SCREEN}x24" -nolisten tcp -noreset \
        3>"$headless_folder/display" >"$headless_folder/output" 2>&1 &
    headless_pids+=($!)
    wait_until "the start of Xvfb" test -s "$headless_folder/display"
    DISPLAY=":$(<"$headless_folder/display")"
    export DISPLAY XAUTHORITY="$headless_folder/client"
    xauth -q -f "$XAUTHORITY" add "$DISPLAY" . "$cookie"
}

start_program() {
    local program folder="$2"
    program="$(realpath "$1")"
    (
        cd "$folder" || exit 1
        unset WAYLAND_DISPLAY QT_MESSAGE_PATTERN QT_SCALE_FACTOR QT_AUTO_SCREEN_SCALE_FACTOR
        export QT_QPA_PLATFORM=xcb QT_FORCE_STDERR_LOGGING=1 QT_LOGGING_RULES="lumivant.run.info=true"
        exec "$program"
    ) >"$headless_folder/output" 2>&1 </dev/null &
    program_pid=$!
    # Ended before the screen it needs.
    headless_pids=("$program_pid" "${headless_pids[@]}")
}

find_window() {
    found_window="$(x search --onlyvisible --name "$1" | head -n 1)"
    [[ -n "$found_window" ]]
}

focus() {
    x windowfocus "$1" && sleep 0.3
}

title_ends_in() {
    [[ "$(x getwindowname "$main_window")" == *"$1" ]]
}

# The dialog's list of matching names may take the first Return for itself.
confirm_until_opened() {
    title_ends_in "$1" && return 0
    if find_window '^打开文件$'; then
        focus "$found_window" || true
        x key Return || true
        sleep 0.5
    fi
    title_ends_in "$1"
}

open_project() {
    focus "$main_window" || headless_fail "the window took no input."
    x key ctrl+o
    wait_until "the open dialog" find_window '^打开文件$'
    focus "$found_window" || headless_fail "the open dialog took no input."
    x type --delay 20 "$1"
    wait_until "the opening of $1" confirm_until_opened "$1"
}

pass_lines() {
    grep -oE 'task ".*": [0-9]+ passes$' "$headless_folder/output" || true
}

all_tasks_reported() {
    [[ "$(pass_lines | wc -l)" -ge "$1" ]]
}

no_box_open() {
    ! find_window '^(警告|Warning)$' || headless_fail "the program shows a message: $1"
}

# open_screen PROGRAM FOLDER: a new screen with the program's window, which fills it; the program runs in the folder.
open_screen() {
    export LC_ALL=C.UTF-8
    headless_folder="$(mktemp -d)"
    trap headless_cleanup EXIT
    trap 'exit 130' INT TERM

    start_screen
    start_program "$1" "$2"
    wait_until "the window's appearance" find_window '^Lumivant$'
    main_window="$found_window"
    x windowmove "$main_window" 0 0 || true
    x windowsize "$main_window" "${HEADLESS_SCREEN%x*}" "${HEADLESS_SCREEN#*x}" || true
}
