#!/bin/sh
# expectReport.sh REPORT FUNCTION COMMAND…: whether the command fails with this report, and a stack in it has the function.
report="$1"
function="$2"
shift 2
output=$("$@" 2>&1)
status=$?
printf '%s\n' "$output"
complain() {
    echo "expectReport: $1"
    exit 1
}
[ "$status" -ne 0 ] || complain "the program ended without an error"
printf '%s\n' "$output" | grep -q -F -e "$report" || complain "no report says: $report"
printf '%s\n' "$output" | grep -E '^ *#[0-9]+ ' | grep -q -F -e "$function" || complain "no stack has $function"
