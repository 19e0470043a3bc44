#!/usr/bin/env bash
# run.sh FOLDER HOST SECONDS ROWS TABLE: measures the page of a browser, with the packages of the tests, which come
# into FOLDER the first time. Adds to the files ROWS and TABLE what the other benchmarks add.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
folder=$1
mkdir -p "$folder"
cp "$here"/*.js "$folder"
"$here/../../tests/web/fetch.sh" "$folder"
exec "$here/../../tests/web/run.sh" "$folder" pageBench.js "${@:2}"
