#!/bin/sh
# What the Fortran modules declare must be there to be linked: the name in small letters and an underscore, as compilers
# make it, or the name that it is bound to.
# usage: check_fortran.sh LIBRARY MODULE_FILE...
set -eu
export LC_ALL=C
library=$1
shift
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

nm -D --defined-only "$library" | awk '{print $NF}' | sort -u >"$scratch/exported"
awk '
    { text = text $0 }
    sub(/& *$/, "", text) { next } # goes on in the next line
    { line = tolower(text); original = text; text = "" }
    line ~ /^ *interface/ { inside = 1 }
    line ~ /^ *end interface/ { inside = 0 }
    inside && match(line, /^ *(subroutine|function) +[a-z0-9_]+/) {
        name = substr(line, RSTART, RLENGTH)
        sub(/.* /, "", name)
        if (match(original, /bind\([cC], name=.[A-Za-z0-9_]+/)) {
            name = substr(original, RSTART, RLENGTH)
            sub(/.*=./, "", name)
            print name
        } else
            print name "_"
    }' "$@" | sort -u >"$scratch/declared"
[ -s "$scratch/declared" ] || { echo "no interface was found in $*" >&2; exit 1; }
comm -23 "$scratch/declared" "$scratch/exported" >"$scratch/missing"
[ ! -s "$scratch/missing" ] || { echo "declared, but not exported: $(tr '\n' ' ' <"$scratch/missing")"; exit 1; }
echo "$(wc -l <"$scratch/declared") declared names are exported"
