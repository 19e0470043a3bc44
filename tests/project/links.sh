#!/usr/bin/env bash
# links.sh [ROOT]: every file that README.md, CHANGELOG.md or a page of docs/ links to is there. Prints each fault and
# fails when there is one.
set -euo pipefail
cd "${1:-$(dirname "${BASH_SOURCE[0]}")/../..}"

faults=0
while IFS=: read -r page line target; do
    target=${target#](}
    target=${target%%[)#]*}
    [[ $target == "" || $target == *://* || -e $(dirname "$page")/$target ]] && continue
    echo "$page:$line: the link to '$target' leads nowhere" >&2
    faults=1
done < <(grep -rnoE --include='*.md' '\]\([^)]+\)' README.md CHANGELOG.md docs 2>/dev/null)
exit $faults
