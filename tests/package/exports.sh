#!/usr/bin/env bash
# exports.sh LIBRARY NAMESPACES [LIST]: what the library exports, one line for each name with how many there are of it;
# template arguments are left out, so that all slot types share a line. Fails if it is in other namespaces than these, as
# in "Ostrel|Trovio". With a list, says what differs and fails if anything does.
# Left out is what the compiler happened to keep of inline functions and of other libraries' classes; what belongs to
# the slots and pools is compiled on purpose.
set -euo pipefail

exported=$(nm --dynamic --demangle --defined-only "$1" | cut -d' ' -f2- |
    sed -E ':inner; s/<[^<>]*>/@/; t inner; s/@/<>/g; s/\[abi:[a-z0-9]+\]//')
prefix='(((construction )?vtable|VTT|typeinfo|typeinfo name|guard variable) for |(non-)?(virtual )?thunk to )?'
foreign=$(grep -vE "^. $prefix($2)::" <<<"$exported" || true)
[[ -z $foreign ]] || { echo "exported, but not of this library:" >&2 && echo "$foreign" >&2 && exit 1; }

slots='Trovio::(InSlot|BufferedInSlot|OutSlot)<>'
list=$(grep -E "^[^WV] |^W ($slots|Trovio::Cache<>)|^V (vtable|typeinfo) for (Ostrel::|$slots)" <<<"$exported" |
    cut -d' ' -f2- | LC_ALL=C sort | uniq -c | sed 's/^ *//')
if [[ $# == 2 ]]; then
    echo "$list"
else
    diff "$3" - <<<"$list" || { echo "Where the change is meant: $0 $1 $2 >$3" >&2 && exit 1; }
fi
