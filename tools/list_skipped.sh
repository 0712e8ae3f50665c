#!/bin/sh
# Lists what the last run of ctest skipped, with the reasons: list_skipped.sh LOG [ALLOWED].
#
# ctest calls an entry passed when one of its tests passed and all others were skipped, so the log is
# searched for the reasons, which pytest gives in lines of their own and GoogleTest in the line below
# the place. With ALLOWED, the status is 1 when a reason contains no line of that file; empty lines and
# comments (#) do not count.
set -eu
found=$(sed -n -e '/^SKIPPED/p' -e '/^\/.*: Skipped$/{n;p;}' "$1" | sort | uniq -c)
[ -n "$found" ] || { echo "no tests skipped" && exit; }
echo "skipped tests:"
echo "$found"
[ $# -gt 1 ] || exit 0
allowed=$(grep -v -e '^#' -e '^$' "$2")
! others=$(echo "$found" | grep -vF "$allowed") || {
    echo "not among the reasons in $2:"
    echo "$others"
    exit 1
}
