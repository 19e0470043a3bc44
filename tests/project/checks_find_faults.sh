#!/usr/bin/env bash
# checks_find_faults.sh: the other checks of this folder fail on a tree with a known fault, and pass once it is gone.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
mkdir -p "$tree"/{platform/{base,trovio/{routing,tree}},trovio,nodes/{shared,relay,guard,dds/net},host,docs}
touch "$tree"/platform/base/A.h "$tree"/trovio/B.h "$tree"/nodes/guard/C.h "$tree"/nodes/dds/D.h "$tree"/host/Main.h
touch "$tree"/README.md "$tree"/platform/trovio/tree/T.h
printf '#include "nodes/relay/E.h"\n' >"$tree"/nodes/guard/C.cpp
printf '#include "nodes/relay/F.h"\n' >"$tree"/nodes/relay/E.h

# expect_fault CHECK FILE LINE: the line alone in the file makes the check fail.
expect_fault() {
    "$here/$1" "$tree" >/dev/null 2>&1 || { echo "$1 fails on a tree without a fault" >&2 && exit 1; }
    printf '%b' "$3" >"$tree/$2"
    ! "$here/$1" "$tree" >/dev/null 2>&1 || { echo "$1 does not see '$3' in $2" >&2 && exit 1; }
    rm "$tree/$2"
}
expect_fault layers.sh platform/base/Up.h '#include "trovio/B.h"\n'
expect_fault layers.sh platform/base/Beside.h '#  include <../../trovio/B.h>\n'
expect_fault layers.sh trovio/Aside.cpp '#include "base/A.h"\n#include "host/Main.h"\n'
expect_fault layers.sh nodes/dds/Sibling.h '#include "nodes/guard/C.h"\n'
expect_fault layers.sh nodes/shared/Family.h '#include "nodes/guard/C.h"\n'
expect_fault layers.sh nodes/dds/net/Above.h '#include "nodes/dds/D.h"\n'
expect_fault layers.sh nodes/relay/F.h '#include "nodes/relay/E.h"\n'
expect_fault layers.sh platform/trovio/Top.h '#include "trovio/tree/T.h"\n'
expect_fault layers.sh platform/trovio/routing/Early.h '#include "trovio/tree/T.h"\n'
expect_fault layers.sh platform/trovio/B.h '\n'
expect_fault links.sh docs/Page.md 'see [this](../host/Gone.h)\n'
expect_fault words.sh host/path.cpp 'open("/r''oot/x");\n'
expect_fault words.sh host/marker.md 'TO''DO: more\n'
expect_fault words.sh host/tab.cpp 'a\tb\n'
expect_fault words.sh host/blank.cpp 'a \n'
