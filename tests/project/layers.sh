#!/usr/bin/env bash
# layers.sh [ROOT]: each folder includes only what its line below allows, and no header of trovio/ has the name of one
# in platform/trovio/, for both are included as "trovio/…". Prints each fault and fails when there is one.
set -euo pipefail
cd "${1:-$(dirname "${BASH_SOURCE[0]}")/../..}"

platform="platform/base platform/osg platform/merid platform/ostrel platform/trovio"
product="$platform trovio sensorManager"
declare -A allowed=(
    [platform/base]=""
    [platform/osg]="platform/base"
    [platform/merid]="platform/base platform/osg"
    [platform/ostrel]="platform/base platform/osg platform/merid"
    [platform/trovio]="platform/base platform/osg platform/merid"
    [trovio]="$platform"
    [sensorManager]="$platform trovio"
    [nodes]="$product"
    [host]="$product"
    [examples]="$product"
    [benchmarks]="$product nodes host"
    [fuzz]="$product nodes host"
    [tests]="$product nodes host examples benchmarks fuzz"
)
faults=0

# The layer that a file belongs to: its first folder, or the first two below platform/.
layer_of() {
    local first=${1%%/*} rest=${1#*/}
    [[ $first == platform ]] && layer=platform/${rest%%/*} || layer=$first
}

# Where an included file stands: beside the one that includes it, below the root, or below platform/.
find_included() {
    for found in "${1%/*}/$2" "$2" "platform/$2"; do
        [[ -e $found ]] && return
    done
    return 1
}

while IFS=: read -r file number line; do
    [[ $line =~ \#[[:space:]]*include[[:space:]]*[\"\<]([^\">]+) ]] || continue
    find_included "$file" "${BASH_REMATCH[1]}" || continue
    found=$(realpath --relative-to=. "$found")
    layer_of "$file" && from=$layer
    layer_of "$found" && to=$layer
    [[ $from == "$to" || " ${allowed[$from]-} " == *" $to "* ]] && continue
    echo "$file:$number: $from includes $to ($found); it may include: ${allowed[$from]-nothing that is known}" >&2
    faults=1
done < <(grep -rnE --include='*.h' --include='*.inl' --include='*.cpp' --include='*.c' '^[[:space:]]*#[[:space:]]*include' \
    $(for folder in "${!allowed[@]}"; do [[ -d $folder ]] && echo "$folder"; done))

for header in trovio/*.h; do
    [[ -e platform/$header ]] || continue
    echo "$header and platform/$header have one name and would hide each other" >&2
    faults=1
done
exit $faults
