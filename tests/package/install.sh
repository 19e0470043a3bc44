#!/usr/bin/env bash
# install.sh CMAKE BUILD-FOLDER PREFIX: installs into a prefix that holds nothing else.
set -euo pipefail
rm -rf "$3"
"$1" --install "$2" --prefix "$3"
