#!/bin/sh
# A wrong row is a clear error that names its file and line, and nothing is written.
# usage: wrong_rows.sh TABLEGEN
set -u
tablegen=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failed=0
count=0

# expect MESSAGE ROW: the row stands on line 3
expect() {
    count=$((count + 1))
    printf '@family blas\n@spellings blas\n%s\n' "$2" >"$scratch/wrong.tbl"
    rm -f "$scratch/out"
    if "$tablegen" frames --tables "$scratch/wrong.tbl" -o "$scratch/out" 2>"$scratch/said"; then
        echo "accepted: $2"
        failed=1
    elif ! grep -q "wrong.tbl:[34]: " "$scratch/said" || ! grep -qF "$1" "$scratch/said"; then
        echo "for: $2"
        echo "said: $(cat "$scratch/said")"
        failed=1
    elif [ -e "$scratch/out" ]; then
        echo "left a file behind: $2"
        failed=1
    fi
}

expect 'unknown kind `y`' '?AXPY S,D traced - n:i a:y'
expect 'is not an argument' '?AXPY S,D traced - n'
expect 'two arguments are called `n`' '?AXPY S,D traced - n:i n:i'
expect 'unknown frame `trace`' '?AXPY S,D trace - n:i'
expect 'names its checks' '?GEMV S,D checked - n:i'
expect 'unknown result `number`' '?DOT S,D traced number n:i'
expect 'has none of the letters' '?AXPY Q traced - n:i'
expect 'lists its types' '?AXPY - traced - n:i'
expect 'needs a routine with a type' 'AXPY - traced - x:T'
expect 'a row has the columns' '?AXPY S'
expect 'there is no spelling rule' '@spellings blass'
expect 'a directive is' '@famly blas'
expect 'stands in' "DSCAL - traced - n:i
DSCAL - traced - n:i"

echo "$count wrong rows"
exit $failed
