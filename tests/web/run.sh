#!/usr/bin/env bash
# run.sh FOLDER SCRIPT [ARGUMENT …]: runs a script of this folder by node, with the packages that package-lock.json
# names, which come into FOLDER the first time. Exit status 77 where npm is missing.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
folder=$1
shift
for command in node npm; do
    command -v "$command" >/dev/null || { echo "$command is missing; install the package npm" && exit 77; }
done

mkdir -p "$folder"
exec {lock}>"$folder/lock"
flock "$lock" # tests run side by side
cp "$here"/*.js "$here/package.json" "$here/.npmrc" "$folder"
if ! cmp --silent "$here/package-lock.json" "$folder/installed.json"; then
    cp "$here/package-lock.json" "$folder"
    (cd "$folder" && npm ci --ignore-scripts --no-audit --no-fund >npm.log 2>&1) || {
        cat "$folder/npm.log" >&2
        echo "the packages that package-lock.json names cannot be installed" >&2
        exit 1
    }
    cp "$here/package-lock.json" "$folder/installed.json"
fi
exec {lock}>&-
script=$1
shift
exec node "$folder/$script" "$@"
