#!/usr/bin/env bash
# debian.sh CPACK BUILD-FOLDER: the Debian package, unpacked into an empty folder, holds a program that runs from there
# and finds its node modules; what only a module needs is recommended, not depended on.
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$2"
"$1" -G DEB -B "$work" >"$work/log" || { cat "$work/log" && exit 1; }

package=$(echo "$work"/*.deb)
field() { dpkg-deb --field "$package" "$1"; }
expect() {
    [[ $2 == *"$3"* ]] || { echo "$1 lacks '$3': $2" >&2 && exit 1; }
}
expect Depends "$(field Depends)" libstdc++6
expect Recommends "$(field Recommends)" liblo7
[[ $(field Depends) != *liblo* ]] || { echo "liblo is needed by a module only: $(field Depends)" >&2 && exit 1; }

dpkg-deb --extract "$package" "$work/unpacked"
host=$work/unpacked/usr/bin/ostrel-host
"$host" version
expect "node types" "$("$host" nodes)" OSC
expect "loaded libraries" "$(ldd "$host")" "$work/unpacked/usr"
"$host" check "$work"/unpacked/usr/share/doc/*/examples/first-light.toml
