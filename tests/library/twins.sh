#!/bin/sh
# The functions of LAPACKE whose names end in _64 call the entries and helpers whose names do, and the others don't.
# usage: twins.sh OBJECT_FILE...
set -eu
export LC_ALL=C
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# called FILE: the Fortran entries and LAPACKE functions that an object file leaves to others
called() {
    nm -u "$1" | awk '{print $2}' | grep -E '^(xkl_lapack__|xkl_blas__|LAPACKE_|[cz]rot)' || true
}

twins=0
for object; do
    case "$object" in
    */lapacke_helpers*) ;;
    */lapacke_*-64.cpp.o)
        twins=$((twins + 1))
        called "$object" | grep -vE '_64_?$' | sed "s|^|$(basename "$object") calls |" >>"$scratch/wrong" || true
        ;;
    */lapacke_*.cpp.o)
        called "$object" | grep -E '_64_?$' | sed "s|^|$(basename "$object") calls |" >>"$scratch/wrong" || true
        ;;
    esac
done
[ "$twins" -gt 0 ] || { echo "no file of twins was given" >&2; exit 1; }
cat "$scratch/wrong"
[ ! -s "$scratch/wrong" ]
