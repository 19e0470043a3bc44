#!/usr/bin/env bash
# own_node.sh CMAKE COMPILER PREFIX BUILD-FOLDER: builds the example of an own node type against what is installed in
# PREFIX, as its page says, and runs the scene of that page with it.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
cmake=$1 compiler=$2 prefix=$3 build=$4
rm -rf "$build"
"$cmake" -S "$root/examples/own-node" -B "$build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="-Wall -Wextra -Wpedantic -Werror"
"$cmake" --build "$build"

expect() {
    [[ $2 == *"$3"* ]] || { echo "$1 lacks '$3': $2" >&2 && exit 1; }
}
host=$prefix/bin/ostrel-host
page=$root/docs/own-node.md
export TROVIO_NODE_PATH=$build
listing=$("$host" nodes Distance)
expect "the listing" "$listing" "from $build/trovio-node-Distance.so"
while IFS= read -r line; do
    expect "the listing" "$listing" "$line"
done < <(sed -n '/^Distance:/p; /^    near /p' "$page")

sed -n '/^```toml/,/^```$/{/^```/d;p}' "$page" >"$build/scene.toml"
"$host" run "$build/scene.toml" --seconds 2 --format json >"$build/values"
for value in '"sensor":"distance","label":"Distance","type":"SFFloat","value":7' \
    '"sensor":"near","label":"Near","type":"SFBool","value":true'; do
    grep -qF "$value" "$build/values" || { echo "no $value among:" >&2 && cat "$build/values" >&2 && exit 1; }
done

sed -i 's/near=10/near=-1/' "$build/scene.toml"
expect "the refusal" "$("$host" check "$build/scene.toml" 2>&1)" \
    "'near': value '-1' is not allowed; allowed: number from 0 to 1000"
