#!/usr/bin/env bash
# layers.sh [ROOT]: each folder includes only what its line below allows, no family of nodes includes another one, no
# headers include each other in a circle, and no header of trovio/ has the name of one in platform/trovio/, for both are
# included as "trovio/…". Prints each fault and fails when there is one.
set -euo pipefail
cd "${1:-$(dirname "${BASH_SOURCE[0]}")/../..}"

platform="platform/base platform/osg platform/merid platform/ostrel platform/trovio"
runtime="platform/base platform/osg platform/merid"
product="$platform trovio sensorManager"
# A folder that is allowed admits those below it, too; one with /. behind it only what stands at its top. What is
# installed stands at the top, and includes nothing below.
declare -A allowed=(
    [platform/base]=""
    [platform/osg]="platform/base"
    [platform/merid]="platform/base platform/osg"
    [platform/ostrel]="$runtime"
    [platform/trovio]="$runtime"
    [platform/trovio/messages]="$runtime platform/trovio/."
    [platform/trovio/values]="$runtime platform/trovio/."
    [platform/trovio/slots]="$runtime platform/trovio/."
    [platform/trovio/stepping]="$runtime platform/trovio/."
    [platform/trovio/settings]="$runtime platform/trovio/. platform/trovio/messages"
    [platform/trovio/routing]="$runtime platform/trovio/. platform/trovio/messages"
    [platform/trovio/explain]="$runtime platform/trovio/. platform/trovio/messages platform/trovio/routing"
    [platform/trovio/modules]="$runtime platform/trovio/. platform/trovio/messages"
    [platform/trovio/tree]="$runtime platform/trovio/. platform/trovio/messages platform/trovio/routing platform/trovio/explain"
    [trovio]="$platform"
    [sensorManager]="$platform trovio"
    [nodes/shared]="$product"
    [nodes/relay]="$product nodes/shared"
    [nodes/text]="$product nodes/shared"
    [nodes/dds/wire]="$product nodes/shared nodes/relay"
    [nodes/dds/net]="$product nodes/shared"
    [nodes/dds/clocks]="$product nodes/shared nodes/dds/net nodes/dds/wire"
    [nodes/dds/watch]="$product nodes/shared nodes/dds/net nodes/dds/wire"
    [nodes/osc/address]="$product nodes/shared"
    [nodes/osc/packet]="$product nodes/shared nodes/osc/address"
    [explain]="$product explain/text"
    [explain/text]="$product"
    [scene]="$product explain"
    [scene/toml]="$product explain scene/."
    [scene/file]="$product explain scene/. scene/toml"
    [scene/parts]="$product explain scene/. scene/toml scene/file"
    [scene/change]="$product explain scene/. scene/toml scene/file scene/parts"
    [scene/run]="$product explain scene/. scene/toml scene/file scene/parts scene/change"
    [scene/check]="$product explain scene/. scene/toml scene/file scene/parts scene/run"
    [monitor]="$product explain"
    [monitor/codec]="$product explain monitor/."
    [monitor/tap]="$product explain monitor/. monitor/codec"
    [monitor/answer]="$product explain monitor/. monitor/codec monitor/tap"
    [monitor/server]="$product explain monitor"
    [monitor/server/streams]="$product explain monitor/. monitor/codec monitor/tap monitor/answer"
    [monitor/server/net]="$product monitor/server/. monitor/server/streams"
    [monitor/server/page]="$product explain monitor/. monitor/answer monitor/server/net"
    [monitor/server/doors]="$product explain monitor/. monitor/server/net"
    [monitor/record]="$product explain monitor/. monitor/codec monitor/tap monitor/mcap"
    [monitor/mcap]="$product explain/text monitor/codec monitor/mcap"
    [monitor/mcap/format]="$product explain/text monitor/codec"
    [monitor/mcap/read]="$product explain/text monitor/codec monitor/mcap/format"
    [monitor/mcap/write]="$product explain/text monitor/codec monitor/mcap/format"
    [monitor/replay]="$product explain/text monitor/codec monitor/mcap"
    [host]="$product explain scene monitor"
    [host/output]="$product explain scene monitor host/."
    [host/show]="$product explain scene monitor host/. host/output"
    [host/run]="$product explain scene monitor host/. host/output host/show"
    [host/report]="$product explain scene monitor host/. host/show"
    [host/replay]="$product explain scene monitor host/. host/output host/show host/run host/report"
    [host/ask]="$product explain scene monitor host/. host/output host/show host/run"
    [host/calibrate]="$product explain scene host/. host/show"
    [host/listen]="$product nodes/shared nodes/osc explain host/. host/ask host/run host/show"
    [host/recording]="$product explain scene monitor host/. host/output host/show"
    [host/cli]="$product explain scene monitor host"
    [examples]="$product explain scene monitor"
    [benchmarks]="$product nodes explain scene monitor host"
    [fuzz]="$product nodes explain scene monitor host"
    [tests]="$product nodes explain scene monitor host examples benchmarks fuzz"
)
# Any other folder of nodes/ is a family: it has its own rooms, and what all families share.
family="$product nodes/shared nodes/relay nodes/text"
includes=$(mktemp)
trap 'rm -f "$includes"' EXIT
body=""
faults=0

# The layer that a file belongs to: the innermost of its folders that has a line, else its family of nodes or its first
# folder.
layer_of() {
    layer=${1%/*}
    until [[ -v allowed[$layer] || $layer != */* || $layer =~ ^nodes/[^/]+$ ]]; do layer=${layer%/*}; done
}

# What a layer may include beside itself.
allowed_of() {
    [[ -v allowed[$1] || $1 != nodes/* ]] && list=${allowed[$1]-} || list="$family $1"
}

is_allowed() {
    local to=$1 one
    shift
    for one; do [[ $to/ == "$one"/* || $to/. == "$one" ]] && return; done
    return 1
}

# Where an included file stands: beside the one that includes it, below the root, or below platform/.
find_included() {
    for found in "${1%/*}/$2" "$2" "platform/$2"; do
        [[ -e $found ]] && return
    done
    return 1
}

while IFS=: read -r file number line; do
    [[ $line != namespace* ]] || body=$file
    [[ $line =~ \#[[:space:]]*include[[:space:]]*[\"\<]([^\">]+) ]] || continue
    find_included "$file" "${BASH_REMATCH[1]}" || continue
    [[ $found != *./* ]] || found=$(realpath --relative-to=. "$found")
    # What stands below a header's own text are bodies of templates, which need both sides.
    [[ $file == *.c* || $file == "$body" ]] || echo "$file $found" >>"$includes"
    layer_of "$file" && from=$layer
    layer_of "$found" && to=$layer
    allowed_of "$from"
    [[ $from == "$to" ]] || is_allowed "$to" $list && continue
    echo "$file:$number: $from includes $to ($found); it may include: ${list:-nothing that is known}" >&2
    faults=1
done < <(grep -rnE --include='*.h' --include='*.inl' --include='*.cpp' --include='*.c' \
    '^[[:space:]]*#[[:space:]]*include|^namespace' \
    $(for folder in "${!allowed[@]}"; do [[ -d ${folder%%/*} ]] && echo "${folder%%/*}"; done | sort -u))

if ! circle=$(tsort "$includes" 2>&1 >/dev/null); then
    echo "these headers include each other in a circle:" $(sed -n 's/^tsort: \([^ ]*\)$/\1/p' <<<"$circle") >&2
    faults=1
fi

for header in trovio/*.h; do
    [[ -e platform/$header ]] || continue
    echo "$header and platform/$header have one name and would hide each other" >&2
    faults=1
done
exit $faults
