# shellcheck shell=bash
# What the tour's story is told with: it finds the controls of the window on the screen, uses them by mouse and keyboard,
# and looks whether that had its effect. Sourced after screen.sh.
#
# Controls are found by their outlines: along a column (or row) of pixels that meets no text, an outline is a dark pixel
# behind a light one. No place is known beforehand but the window's own size.

TOUR_OUTLINE_GRAY=215  # Outlines are darker than this, faces and backgrounds lighter.
TOUR_VIEWS_LEFT=340    # Here the views have begun.
TOUR_FREE_COLUMN=17    # Inside the controls of the tab, left of every text.
TOUR_KEY_MS=25
TOUR_LIMIT_SECONDS=480  # For all of it, on a slow machine.

screen_width="${HEADLESS_SCREEN%x*}"
screen_height="${HEADLESS_SCREEN#*x}"
tour_step=0

# step WHAT: one line of output for what comes next.
step() {
    ((SECONDS < TOUR_LIMIT_SECONDS)) || headless_fail "the tour takes longer than $TOUR_LIMIT_SECONDS seconds."
    tour_step=$((tour_step + 1))
    printf '%2d. [%3d s] %s\n' "$tour_step" "$SECONDS" "$*"
}

# ---- Looking ---------------------------------------------------------------------------------------------------------

# outlines GEOMETRY: the places of the outlines along a strip that is one pixel wide or high.
outlines() {
    import_window root -crop "$1" +repage -colorspace Gray -depth 8 gray:- | od -An -v -tu1 -w1 |
        awk -v dark="$TOUR_OUTLINE_GRAY" '{ if ($1 < dark && before >= dark) print NR - 1; before = $1 }'
}

# look_at_tab: finds the controls of the task's tab, which come first in a regular row: tab_controls (the middle of each
# of the four above the steps), steps_top, steps_end and step_num.
look_at_tab() {
    local lines i j
    mapfile -t lines < <(outlines "1x$((screen_height - 70))+$TOUR_FREE_COLUMN+0")
    for ((i = 0; i + 9 < ${#lines[@]}; i++)); do
        is_control_row "${lines[@]:i:8}" && break
    done
    ((i + 9 < ${#lines[@]})) || return 1
    tab_controls=()
    for ((j = i; j < i + 8; j += 2)); do
        tab_controls+=($(((lines[j] + lines[j + 1]) / 2)))
    done
    steps_top="${lines[i + 9]}"
    steps_end=$steps_top
    step_num=0
    for ((j = i + 10; j < ${#lines[@]}; j++)); do
        ((lines[j] - lines[j - 1] == lines[i + 10] - steps_top && lines[j] - lines[j - 1] < 50)) || break
        steps_end="${lines[j]}"
        step_num=$((step_num + 1))
    done
}

# Four controls of one height with equal gaps between them.
is_control_row() {
    local height=$(($2 - $1)) gap=$(($3 - $2)) i
    ((height > 15 && height < 60 && gap < height)) || return 1
    for ((i = 3; i <= 7; i += 2)); do
        ((${!i} - ${*:i-1:1} == gap)) || return 1
        ((${*:i+1:1} - ${!i} == height)) || return 1
    done
}

step_num_is() {
    look_at_tab && ((step_num == $1))
}

# digest WINDOW [GEOMETRY]: changes when what is shown there changes.
digest() {
    if [[ $# -gt 1 ]]; then
        import_window "$1" -crop "$2" +repage rgb:- | md5sum
    else
        import_window "$1" rgb:- | md5sum
    fi
}

differs_from() {
    local before="$1"
    shift
    [[ "$(digest "$@")" != "$before" ]]
}

# view_middle VIEW: geometry of a piece in the middle of a view, when all four are shown.
view_middle() {
    local width=$(((screen_width - TOUR_VIEWS_LEFT) / 2)) height=$(((screen_height - 120) / 2))
    printf '%dx%d+%d+%d' $((width / 2)) $((height / 2)) \
        $((TOUR_VIEWS_LEFT + width / 4 + (($1 - 1) % 2) * width)) $((60 + height / 4 + (($1 - 1) / 2) * height))
}

# Counts the colours of a place; a view that nothing was drawn on has one.
colours_of() {
    import_window root -crop "$1" +repage -format '%k' info:-
}

shows_a_picture() {
    [[ "$(colours_of "$(view_middle "$1")")" -gt 3 ]]
}

# picture_window WINDOW NAME: a picture for the manual; few colours are enough, and none when it has no name.
picture_window() {
    [[ -n "$2" ]] || return 0
    take_picture "$1" "$headless_folder/shot.png" || headless_fail "the screen could not be pictured."
    "$(command -v convert-im6 || command -v convert)" "$headless_folder/shot.png" -strip +dither -colors 96 \
        -define png:compression-level=9 "$pictures/$2.png" || headless_fail "the picture $2 could not be written."
}

# ---- Acting ----------------------------------------------------------------------------------------------------------

keys() {
    x key --delay "$TOUR_KEY_MS" "$@" || headless_fail "the keys $* could not be pressed."
}

write() {
    x type --delay "$TOUR_KEY_MS" "$1" || headless_fail "'$1' could not be typed."
}

# times N KEY: the same key N times.
times() {
    local i
    for ((i = 0; i < $1; i++)); do
        keys "$2"
    done
}

click() {
    x mousemove "$1" "$2" click "${3:-1}" || headless_fail "the mouse did not move."
}

to_main_window() {
    focus "$main_window" || headless_fail "the window took no input."
}

# A dialog has to come up; keys go to it from now on.
in_dialog() {
    wait_until "the dialog '$1'" find_window "^$1\$"
    dialog="$found_window"
    sleep 0.2
    focus "$dialog" || headless_fail "the dialog '$1' took no input."
}

is_gone() {
    ! x search --onlyvisible --name "^$1\$" | grep -q .
}

# The dialog has to go, and no box may stand in its place.
dialog_ends() {
    wait_until "the end of the dialog '$1'" is_gone "$1"
    no_box_open "after the dialog '$1'."
}

# answer_yes TITLE [PICTURE]: the question that is open, by its first button.
answer_yes() {
    in_dialog "$1"
    picture_window "$dialog" "${2:-}"
    keys Left Return
    wait_until "the end of the question" is_gone "$1"
}

# click_control N: one of the four controls above the steps, from 0.
click_control() {
    wait_until "the controls of the tab" look_at_tab
    click 60 "${tab_controls[$1]}"
}

# open_menu: the menu of the steps, by a right click below the last one.
open_menu() {
    to_main_window
    wait_until "the controls of the tab" look_at_tab
    sleep 0.3
    local before place="$TOUR_VIEWS_LEFT"x"$((screen_height - steps_top))"+0+"$steps_top"
    before="$(digest root "$place")"
    click 60 $((steps_end + 12)) 3
    wait_until "the menu of the steps" differs_from "$before" root "$place"
    sleep 0.3
}

# add_step CLASS ALGORITHM DIALOG: picks an algorithm by its places in the menus; its dialog has to come up.
add_step() {
    open_menu
    keys Down Right
    times "$1" Down
    keys Right
    times "$2" Down
    keys Return
    in_dialog "$3"
}

# choose_command N [PICTURE]: one of the commands at the end of the menu, counted from the last.
choose_command() {
    open_menu
    times "$1" Up
    picture_window root "${2:-}"
    keys Return
}

# step_added DIALOG: OK; the steps are one more then.
step_added() {
    local before=$step_num
    keys Return
    dialog_ends "$1"
    wait_until "step $((before + 1)) in the table" step_num_is $((before + 1))
}

# choose_row N: row N (from 0) of the table that has the keyboard.
choose_row() {
    keys ctrl+Home space
    times "$1" Down
}

click_step() {
    look_at_tab || headless_fail "the steps are not to be seen."
    local height=$(((steps_end - steps_top) / step_num))
    click 60 $((steps_top + height * $1 + height / 2))
}

# ---- The strip below the views ---------------------------------------------------------------------------------------

# choose_layout N: with the keyboard, in the combo that is the third control from the right.
choose_layout() {
    local lines
    to_main_window
    # Near the upper edge of the controls no text is met. The strip lies above the status bar.
    mapfile -t lines < <(outlines "$((screen_width / 2))x1+$((screen_width / 2))+$((screen_height - 39 - 8))")
    [[ ${#lines[@]} -ge 6 ]] || headless_fail "the controls below the views are not to be seen."
    local left=${lines[-6]} right=${lines[-5]}
    click $((screen_width / 2 + (left + right) / 2)) $((screen_height - 39))
    sleep 0.4
    keys Home
    times "$1" Down
    keys Return
    sleep 0.4
}

# The place where four views meet is lighter than the views.
is_divided() {
    local light
    light="$(outlines "$((screen_width - TOUR_VIEWS_LEFT - 20))x1+$TOUR_VIEWS_LEFT+$((screen_height - 100))" | wc -l)"
    [[ "$light" -ge 1 ]]
}
layout_changed() {
    ! is_divided
}

test_title() {
    [[ "$(x getwindowname "$main_window")" == "$1" ]]
}
