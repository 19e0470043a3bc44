#!/usr/bin/env bash
# shapes.sh OBJECT DUMP: compares the shapes of the classes that shapes.txt names with what it says of them.
set -euo pipefail

here=$(dirname "${BASH_SOURCE[0]}")
expected=$here/shapes.txt
actual=$(mktemp)
trap 'rm -f "$actual"' EXIT
gdb --batch -nx -ex "python expected, dump = '$expected', '$2'" -x "$here/shapes.py" "$1" >"$actual"
diff --unified=1 --show-function-line='^[OT]' --label expected --label actual "$expected" "$actual" || {
    echo "The class named after @@ has changed its shape: programs that were built before no longer fit." >&2
    exit 1
}
