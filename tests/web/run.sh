#!/usr/bin/env bash
# run.sh FOLDER SCRIPT [ARGUMENT …]: runs a script of this folder by node, with the packages that fetch.sh has fetched into
# FOLDER. Exit status 77 where they are not there.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
folder=$1
shift
command -v node >/dev/null || { echo "node is missing; install the package npm" && exit 77; }
cmp --silent "$here/package-lock.json" "$folder/installed.json" || {
    echo "what package-lock.json names is not there; $here/fetch.sh $folder fetches it"
    exit 77
}

exec {lock}>"$folder/lock"
flock "$lock" # tests run side by side
cp "$here"/*.js "$folder"
exec {lock}>&-
script=$1
shift
exec node "$folder/$script" "$@"
