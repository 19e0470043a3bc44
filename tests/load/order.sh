#!/usr/bin/env bash
# order.sh LIST PROGRAM [LIBRARY]: runs the program, which says what the library does, and compares: at load the library
# does what the list says, at unload it destroys what it built, last first.
set -euo pipefail

list=$1
shift
said=$("$@" | sed -E 's/std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >/std::string/g
    s/, std::allocator<.*>::the_/>>::the_/')
diff "$list" <(sed '/^loaded/,$d' <<<"$said") ||
    { echo "The order at load (>) is not that of the list (<), $list." >&2 && exit 1; }
diff <(sed -n 's/^built/destroyed/p' "$list" | tac) <(sed '1,/^loaded/d' <<<"$said") ||
    { echo "The order at unload (>) is not the reverse of that at load (<)." >&2 && exit 1; }
