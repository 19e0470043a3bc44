#!/usr/bin/env bash
# headers_stand_alone.sh COMPILER INCLUDE-FOLDER: every installed header compiles by itself, without a warning and from
# the installed folder alone.
set -euo pipefail
cd "$2"
export compiler=$1
# shellcheck disable=SC2016  # expanded by the inner shell
find . -name '*.h' -print0 | xargs -0 -P "$(nproc)" -I{} bash -c \
    '"$compiler" -std=c++20 -fsyntax-only -Wall -Wextra -Werror -I. -x c++ - <<<"#include \"$1\"" || {
        echo "$1 does not compile by itself" >&2
        exit 1
    }' _ {}
