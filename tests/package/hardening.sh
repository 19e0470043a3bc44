#!/usr/bin/env bash
# hardening.sh FILE…: each of these libraries, modules and programs was built to make faults hard to use. The first one
# has to be a program that prints, so that there is something to fortify and to assert.
set -euo pipefail

failed=0
# expect FILE WHAT TEXT COMMAND…: what the command says of the file has the text in it.
expect() {
    local file=$1 what=$2 text=$3
    shift 3
    "$@" "$file" | grep -E -- "$text" >/dev/null || { echo "$file: $what: no '$text' in what '$*' says" >&2 && failed=1; }
}

# The first instruction of each function of ours; what the compiler's own start files hold says nothing.
first_instructions() {
    objdump -d --no-show-raw-insn "$1" | awk '/^[0-9a-f]+ <_ZN?K?[0-9]*(6Trovio|6Ostrel|6Scenes|7Explain|4Host)/ { getline; print }'
}

# what | pattern | command
everywhere="\
stands at any address               |Type: +DYN          |readelf -hW
tables read-only after loading      |GNU_RELRO           |readelf -lW
all of it bound when it is loaded   |BIND_NOW            |readelf -dW
a stack without code                |GNU_STACK.* RW +0x  |readelf -lW
guarded stack frames                |__stack_chk_fail    |readelf --dyn-syms -W
marked targets of indirect calls    |endbr64             |first_instructions"
in_program="\
calls that know their buffer's size |__[a-z]+_chk        |readelf --dyn-syms -W
asserted containers                 |__glibcxx_assert_fail|readelf --dyn-syms -W"

hold() {
    local file=$1 what pattern command
    while IFS='|' read -r what pattern command; do
        # shellcheck disable=SC2086  # the command's words
        expect "$file" "${what%%  *}" "$(sed 's/ *$//' <<<"$pattern")" $command
    done <<<"$2"
}

[[ $(uname -m) == x86_64 ]] || everywhere=$(grep -v endbr64 <<<"$everywhere")
hold "$1" "$in_program"
for file in "$@"; do
    hold "$file" "$everywhere"
done
exit "$failed"
