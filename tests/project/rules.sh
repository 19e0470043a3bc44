#!/usr/bin/env bash
# rules.sh [ROOT]: every test that docs/rules.md names is there, and every rule names one. Prints each fault and fails
# when there is one.
set -euo pipefail
cd "${1:-$(dirname "${BASH_SOURCE[0]}")/../..}"

mapfile -t tests < <(grep -rhoE --include='*.cpp' '^TEST(_F|_P)?\([A-Za-z0-9]+, *[A-Za-z0-9]+\)' tests |
    sed -E 's/^TEST(_F|_P)?\(//; s/, */./; s/\)$//')
declare -A known
for test in "${tests[@]}"; do known[$test]=1; done

faults=0 rules=0
while IFS= read -r line; do
    [[ $line == "| rule |"* || $line == "|---"* ]] && continue
    rules=$((rules + 1))
    [[ $line =~ \`([A-Za-z0-9]+\.[A-Za-z0-9]+)\`\ \|$ && ${known[${BASH_REMATCH[1]}]:-} ]] && continue
    echo "docs/rules.md names no test that is there: $line" >&2
    faults=1
done < <(grep '^|' docs/rules.md)
((rules)) || { echo "docs/rules.md has no rules" >&2 && exit 1; }
exit $faults
