#!/usr/bin/env bash
# embed_by_pkg_config.sh COMPILER LIBRARY-FOLDER SOURCE: builds and runs the embedding example with pkg-config alone.
set -euo pipefail
export PKG_CONFIG_PATH=$2/pkgconfig
program=$(mktemp)
trap 'rm -f "$program"' EXIT
read -ra flags < <(pkg-config --cflags --libs ostrelSensorManager)
"$1" -std=c++20 -Wall -Werror "$3" -o "$program" "${flags[@]}" -Wl,-rpath,"$2"
"$program"
