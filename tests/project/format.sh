#!/usr/bin/env bash
# format.sh: every source looks as .clang-format says. To mend it: clang-format -i FILE…
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
find . -name build -prune -o \( -name '*.h' -o -name '*.cpp' -o -name '*.inl' \) -print0 |
    xargs -0 clang-format --dry-run --Werror
