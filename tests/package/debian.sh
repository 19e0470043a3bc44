#!/usr/bin/env bash
# debian.sh CPACK BUILD-FOLDER: the Debian package, unpacked into an empty folder, holds a program that runs from there
# and finds its node modules, and pages whose links lead somewhere; a library that only a module needs is recommended,
# not depended on.
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cd "$2"
"$1" -G DEB -B "$work" >"$work/log" 2>&1 || { cat "$work/log" && exit 1; }
! grep -i warning "$work/log" || { echo "cpack warns, see above" >&2 && exit 1; }

package=$(echo "$work"/*.deb)
depends=$(dpkg-deb --field "$package" Depends)
recommends=$(dpkg-deb --field "$package" Recommends)
expect() {
    [[ $2 == *"$3"* ]] || { echo "$1 lacks '$3': $2" >&2 && exit 1; }
}
expect Depends "$depends" libstdc++6

dpkg-deb --extract "$package" "$work/unpacked"
host=$work/unpacked/usr/bin/ostrel-host
"$host" version
expect "node types" "$("$host" nodes)" OSC
expect "loaded libraries" "$(ldd "$host")" "$work/unpacked/usr"
pages=$(echo "$work"/unpacked/usr/share/doc/*)
"$host" check "$pages/examples/first-light.toml"
"$here/../project/links.sh" "$pages"

# The packages of all libraries that the given files load directly; our own are in none.
packages_behind() {
    objdump -p "$@" | awk '$1 == "NEEDED" { print $2 }' | sort -u | while read -r library; do
        dpkg-query --search "*/$(uname -m)-linux-gnu/$library" 2>/dev/null | head -n 1 | cut -d: -f1 || true
    done | sort -u
}
modules=("$work"/unpacked/usr/lib/trovio/*.so)
for provider in $(comm -13 <(packages_behind "$host" "$work"/unpacked/usr/lib/*.so) <(packages_behind "${modules[@]}")); do
    expect Recommends "$recommends" "$provider"
    [[ $depends != *"$provider"* ]] || { echo "Depends has $provider, which only a module needs: $depends" >&2 && exit 1; }
done
