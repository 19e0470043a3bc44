#!/usr/bin/env bash
# words.sh [ROOT]: no file carries paths of somebody's machine, markers of unfinished work, tabs or trailing blanks.
# Prints each fault and fails when there is one.
set -euo pipefail
cd "${1:-$(dirname "${BASH_SOURCE[0]}")/../..}"

# What belongs to the project: what is committed, or, in an unpacked archive, all that is not built. The kept inputs of
# the fuzz targets are bytes rather than texts.
mapfile -t files < <(git ls-files --cached -- ':!fuzz/corpus' 2>/dev/null)
((${#files[@]})) ||
    mapfile -t files < <(find . \( -path ./build -o -path ./.git -o -path ./fuzz/corpus \) -prune -o -type f -print)

faults=0
# refuse WHY PATTERN: patterns are written so that they do not match themselves.
refuse() {
    grep -nIE --no-messages -- "$2" "${files[@]}" && {
        echo "^ $1" >&2
        faults=1
    }
    return 0
}
refuse "a path of one machine" '(^|[^[:alnum:]_.}])/([r]oot|[h]ome|[U]sers|[t]mp|[w]ork)/'
refuse "a marker of unfinished work" '\b([T]ODO|[F]IXME|[X]XX|[H]ACK)\b'
refuse "a tab" "$(printf '\t')"
refuse "blanks at the end of a line" '[[:blank:]]+$'
exit $faults
