#!/bin/sh
# usage: run_lapacke.sh PROGRAM LIBRARY REFERENCE_LIBRARY PROVIDER_FOLDER
# Both over the same kernels on one thread, so that rounding is alike.
set -eu
here=$(dirname "$0")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export OPENBLAS_NUM_THREADS=1 XKL_NUM_THREADS=1 OPENBLAS_CORETYPE=Haswell
unset LAPACKE_NANCHECK
"$1" run "$2" "$scratch/ours"
LD_LIBRARY_PATH=$4${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH} "$1" run "$3" "$scratch/theirs"
"$1" compare "$scratch/ours" "$scratch/theirs" "$here/lapacke_exceptions.tbl"
