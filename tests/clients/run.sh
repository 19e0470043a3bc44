#!/usr/bin/env bash
# run.sh HOST WEB LANGUAGE: runs the first program in the section of docs/clients.md whose heading begins with LANGUAGE,
# beside a host that runs the scene of that page, until it has shown a value; in a network namespace of its own, where
# nobody else has the ports. WEB is where packages of npm come. Exit status 77 where the language is missing.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$here/../..
host=$1 web=$2 language=$3

run=(bash) expected='"value":[0.1,1.7,-0.3]'
case $language in
    Python) run=(/usr/bin/python3) expected='[' ;;
    JavaScript) run=(node "$web/browser.js") expected=Context/Generator/value ;;
    Node) run=(node --input-type=module -) expected=' ' ;;
esac

if [[ ${4-} != inside ]]; then
    [[ $language != Python ]] || /usr/bin/python3 -c 'import numpy, websockets' || exit 77 # of Debian, not another one
    [[ $language != Node ]] || command -v node || exit 77
    [[ $language != JavaScript ]] || "$root/tests/web/run.sh" "$web" browser.js </dev/null
    namespace=(unshare --net)
    ((UID == 0)) || namespace+=(--map-root-user)
    exec "${namespace[@]}" "$0" "$@" inside
fi

ip link set lo up
XDG_RUNTIME_DIR=$(mktemp -d)
export XDG_RUNTIME_DIR
trap 'kill $(jobs -p) || true; wait; rm -r "$XDG_RUNTIME_DIR"' EXIT
mkfifo "$XDG_RUNTIME_DIR/said" "$XDG_RUNTIME_DIR/shown"

"$host" run "$root/examples/first-light.toml" --monitor --quiet >"$XDG_RUNTIME_DIR/said" 2>&1 &
exec {said}<"$XDG_RUNTIME_DIR/said"
until read -ru "$said" line && [[ $line == monitor:* ]]; do :; done

program=$(sed -n "/^## $language/,\$p" "$root/docs/clients.md" | sed '1,/^```[a-z]/d; /^```$/,$d')
"${run[@]}" <<<"$program" >"$XDG_RUNTIME_DIR/shown" &
client=$!
exec {shown}<"$XDG_RUNTIME_DIR/shown"
while read -ru "$shown" line; do
    [[ $line == *"$expected"* ]] || continue
    [[ $language == Shell ]] || exit 0
    found=1
done
wait "$client" && [[ -n ${found-} ]] && exit 0
echo "the $language client has ended, and not shown '$expected'" >&2
exit 1
