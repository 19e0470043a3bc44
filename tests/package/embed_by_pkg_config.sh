#!/usr/bin/env bash
# embed_by_pkg_config.sh COMPILER LIBRARY-FOLDER PACKAGE SOURCE ARGUMENT…: builds and runs an example with pkg-config alone.
set -euo pipefail
export PKG_CONFIG_PATH=$2/pkgconfig
program=$(mktemp)
trap 'rm -f "$program"' EXIT
read -ra flags < <(pkg-config --cflags --libs "$3")
"$1" -std=c++20 -Wall -Werror "$4" -o "$program" "${flags[@]}" -Wl,-rpath,"$2"
"$program" "${@:5}"
