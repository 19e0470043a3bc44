#!/usr/bin/env bash
# run.sh [--apply-only] [NAME …]: proves that the checks find faults. Puts each patch of patches/, or those named, into
# a copy of the tree, builds the one program that its head names, and runs it: it has to fail, and to say why in words
# that the head expects. Before, each program has to pass without a fault. --apply-only looks whether all patches fit.
set -uo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)
tree=$root/build/faults/tree # always the same place, so that a compiler cache helps
log=$root/build/faults/log
patience=600 # seconds; a check that hangs has found something, too, but has to say so itself

head_of() { sed -n "s/^$2: //p" "$here/patches/$1.patch"; }

apply() { patch --directory="$tree" --strip=1 --silent --no-backup-if-mismatch "$@"; }

# Builds PROGRAM in PRESET; ends the script when that fails, for it says nothing about the check.
build() {
    (cd "$tree" && cmake --preset "$1" -DOSTREL_LONG=OFF && cmake --build "build/$1" --target "$2") >"$log" 2>&1 && return
    tail -40 "$log" >&2
    echo "$2 does not build in preset $1" >&2
    exit 1
}

# The thread sanitizer does not start where addresses are spread wide.
plain=()
! setarch -R true 2>/dev/null || plain=(setarch -R)
# The explorer's fibres have stacks of their own, which the sanitizer's stand-in stacks do not know.
export ASAN_OPTIONS=detect_stack_use_after_return=0
run() { (cd "$tree" && exec timeout "$patience" "${plain[@]}" "build/$1/bin/$2" "${@:3}") >"$log" 2>&1; }

declare -A passed=()
# Without a fault the check passes. Each is tried once.
expect_pass() {
    [[ ${passed[$*]:-} ]] && return
    build "$1" "$2"
    run "$@" || { tail -40 "$log" >&2 && echo "$* fails without a fault" >&2 && exit 1; }
    passed[$*]=1
}

# catches NAME PRESET PROGRAM ARGUMENT …
catches() {
    local patch=$here/patches/$1.patch
    expect_pass "${@:2}"
    apply <"$patch" || exit 1
    build "$2" "$3"
    run "${@:2}" 2>/dev/null # the shell would tell that it was aborted
    local status=$?
    apply --reverse <"$patch" || exit 1
    ((status != 0)) && reason=$(grep -m 1 -oE "([^:]*: )?.{0,40}($(head_of "$1" Shows)).{0,40}" "$log")
}

apply_only=
[[ ${1:-} != --apply-only ]] || { apply_only=1 && shift; }
names=("$@")
((${#names[@]})) || mapfile -t names < <(basename --suffix=.patch "$here"/patches/*.patch)
if [[ $apply_only ]]; then
    tree=$root
    for name in "${names[@]}"; do
        apply --dry-run <"$here/patches/$name.patch" || { echo "$name does not fit the tree" >&2 && exit 1; }
    done
    exit 0
fi

rm -rf "$tree"
mkdir -p "$tree"
trap 'rm -rf "$tree"' EXIT
tar -C "$root" --exclude=./build --exclude=./.git -cf - . | tar -C "$tree" -xf -
caught=0
for name in "${names[@]}"; do
    read -ra check < <(head_of "$name" Check)
    reason=
    if catches "$name" "${check[@]}"; then
        ((++caught))
        printf 'caught      %-24s %-6s %-16s %s\n' "$name" "${check[0]}" "${check[1]}" "${reason# }"
    else
        printf 'NOT CAUGHT  %-24s %-6s %-16s %s\n' "$name" "${check[0]}" "${check[1]}" "$(head_of "$name" Fault)"
    fi
done
echo "$caught of ${#names[@]} caught"
((caught == ${#names[@]}))
