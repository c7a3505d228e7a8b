# shellcheck shell=bash
# Runs the demo under Xvfb through the window's own commands: run_headless. Sourced after setup.sh.
source scripts/lib/screen.sh

HEADLESS_RUN_SECONDS=6

# run_headless PROGRAM FOLDER PROJECT PICTURE
run_headless() {
    local program="$1" folder="$2" project="$3" tasks
    screenshot="$4"
    mkdir -p "$(dirname "$screenshot")"
    rm -f "$screenshot"
    open_screen "$program" "$folder"
    open_project "$project"

    focus "$main_window" || headless_fail "the window took no input."
    x key F5
    sleep "$HEADLESS_RUN_SECONDS"
    no_box_open "a task did not run."
    take_picture "$main_window" "$screenshot" || headless_fail "the window could not be pictured."
    x key shift+F5
    tasks="$(grep -c '<=TaskInfo=>' "$folder/$project")"
    wait_until "the end of all $tasks tasks" all_tasks_reported "$tasks"

    say "Picture of the window: $(realpath "$screenshot")"
    pass_lines
    ! pass_lines | grep -q ': 0 passes$' || die "a task made no pass."
}
