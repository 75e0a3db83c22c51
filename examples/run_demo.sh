#!/bin/sh
# run_demo.sh BUILD_DIR: the example programs one after another, from a build with XKL_BUILD_EXAMPLES.
set -eu
build=$(readlink -f "${1:?usage: run_demo.sh BUILD_DIR}")
here=$(dirname "$(readlink -f "$0")")
exec 2>&1 # the reports of bad arguments stand where they were made
programs=$build/examples
data=$here/data

bold='' plain=''
if [ -t 1 ]; then bold=$(printf '\033[1m') plain=$(printf '\033[0m'); fi

# heading TITLE [LINE...]
heading() {
    printf '\n%s%s%s\n' "$bold" "$1" "$plain"
    shift
    [ $# = 0 ] || printf '%s\n' "$@" ''
}

for program in pca least_squares sunspots sparse; do
    [ -x "$programs/$program" ] || {
        echo "run_demo.sh: $programs/$program is not built: configure with -DXKL_BUILD_EXAMPLES=ON" >&2
        exit 1
    }
done

heading "1. C" "examples/pca.c, through the C interface: where do 150 irises differ most?"
"$programs/pca" "$data/iris.csv"
heading "2. Fortran" "examples/least_squares.f90, LAPACK with 64-bit integers and explicit interfaces:" \
    "what made employment rise in the United States from 1947 to 1962?"
"$programs/least_squares" "$data/longley.csv"
heading "3. Fortran with complex functions" "examples/sunspots.f90, with the companion library in front:" \
    "how long is the Sun's cycle?"
"$programs/sunspots" "$data/sunspots.csv"
heading "4. Python" "examples/correlation.py, nothing but ctypes: which measurements go together?"
python3 "$here/correlation.py" "$build/lib/libxkl_quorl_ilp64.so" "$data/iris.csv"
heading "5. Sparse systems" "examples/sparse.c: plasma physics (UTM300) and a vibrating structure (LUND A), solved directly." \
    "A solution of ones is known."
"$programs/sparse" "$data/utm300.mtx"
"$programs/sparse" "$data/lund_a.mtx"
heading "All computed numbers agree with the published ones."
