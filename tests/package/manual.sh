#!/usr/bin/env bash
# manual.sh PREFIX: the manual page tells of every verb and option that the installed program's own help names.
set -euo pipefail
host=$1/bin/ostrel-host
page=$(sed 's/\\-/-/g; s/\\//g' "$1/share/man/man1/ostrel-host.1")

mapfile -t verbs < <("$host" --help | sed -n '/^Subcommands:/,$p' | grep -oE '^  [a-z-]+' | tr -d ' ')
((${#verbs[@]} > 3)) || { echo "no verbs found in: $("$host" --help)" >&2 && exit 1; }
missing=0
for verb in "${verbs[@]}"; do
    for word in "$verb" $("$host" "$verb" --help | grep -oE '^  +(-., *)?--[a-z-]+' | grep -oE -- '--[a-z-]+'); do
        [[ $word == --help ]] || grep -qE -- "^\.B[RI]? $word( |$)" <<<"$page" || {
            echo "the manual page does not know '$word' of '$verb'" >&2
            missing=1
        }
    done
done
exit $missing
