#!/usr/bin/env bash
# run.sh PROGRAM [--update]: counts the instructions of each operation of benchInstructions and compares them with
# ceilings.txt. Fails when one is passed by more than 3 %. --update writes what was counted there instead.
# Exit status 77: not looked at, for valgrind is missing.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
ceilings=$here/ceilings.txt

command -v valgrind >/dev/null || {
    echo "skipped: valgrind is not installed, so no instructions are counted (apt-get install valgrind)"
    exit 77
}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# With all that is freed kept at hand, an allocation costs the same whatever the heap looks like.
GLIBC_TUNABLES=glibc.malloc.tcache_count=65535 valgrind --tool=callgrind --callgrind-out-file="$work/out" --collect-atstart=no --toggle-collect=benchMeasured \
    --dump-after=benchMeasured "$1" >"$work/names" 2>"$work/log" || {
    cat "$work/log" >&2
    exit 1
}
# One dump for each operation, numbered in their order.
for ((i = 1; i <= $(wc -l <"$work/names"); ++i)); do
    sed -n 's/^\(totals\|summary\): //p' "$work/out.$i" | tail -1
done >"$work/counts"
paste -d '|' "$work/counts" "$work/names" >"$work/counted"

if [[ ${2-} == --update ]]; then
    {
        grep '^#' "$ceilings" 2>/dev/null || true
        awk -F'|' '{ printf "%8d %s\n", $1, $2 }' "$work/counted"
    } >"$work/ceilings"
    mv "$work/ceilings" "$ceilings"
fi
awk -F'|' '
    FNR == NR {
        if ($0 !~ /^#/ && match($0, /^ *[0-9]+ /))
            ceiling[substr($0, RLENGTH + 1)] = $0 + 0
        next
    }
    $1 + 0 < 1 {
        printf "%10s %10s          %s: was not counted\n", $1, "-", $2
        failed = 1
        next
    }
    { seen[$2] = 1 }
    !($2 in ceiling) {
        printf "%10d %10s          %s: has no ceiling; ./bench instructions --update\n", $1, "-", $2
        failed = 1
        next
    }
    {
        passed = $1 > 1.03 * ceiling[$2]
        failed = failed || passed
        printf "%10d %10d  %5.1f %%  %s%s\n", $1, ceiling[$2], 100 * $1 / ceiling[$2], $2, passed ? ": PASSED ITS CEILING" : ""
    }
    END {
        for (operation in ceiling)
            if (!(operation in seen)) {
                printf "%10s %10d          %s: has a ceiling and was not counted\n", "-", ceiling[operation], operation
                failed = 1
            }
        exit failed
    }
' "$ceilings" "$work/counted"
