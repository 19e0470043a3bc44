#!/usr/bin/env bash
# fetch.sh FOLDER: fetches by npm what package-lock.json names into FOLDER, where it is not there yet. Exit status 77 where
# npm is missing, or does not reach it.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
folder=$1
command -v npm >/dev/null || { echo "npm is missing; install the package npm" && exit 77; }
! cmp --silent "$here/package-lock.json" "$folder/installed.json" || exit 0

mkdir -p "$folder"
cp "$here/package.json" "$here/package-lock.json" "$here/.npmrc" "$folder"
(cd "$folder" && npm ci --ignore-scripts --no-audit --no-fund >npm.log 2>&1) || {
    cat "$folder/npm.log" >&2
    # What came and is not what the list says, and a list that fits no more, are faults.
    ! grep --quiet --extended-regexp 'code (EINTEGRITY|EUSAGE)' "$folder/npm.log" || exit 1
    echo "npm does not reach what package-lock.json names; what needs it is skipped" >&2
    exit 77
}
cp "$here/package-lock.json" "$folder/installed.json"
