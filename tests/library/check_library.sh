#!/bin/sh
# House rules of the interface library, read off the built file.
# usage: check_library.sh LIBRARY GOLDEN_DIRECTORY
set -eu
export LC_ALL=C
library=$1
golden=$2
failed=0
complain() { echo "$*"; failed=1; }
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# Exported names against the reviewed lists, both ways.
nm -D --defined-only "$library" | awk '{print $NF}' | sort -u >"$scratch/built"
cat "$golden"/*.txt | sort -u >"$scratch/golden"
comm -13 "$scratch/golden" "$scratch/built" >"$scratch/unknown"
comm -23 "$scratch/golden" "$scratch/built" >"$scratch/missing"
[ ! -s "$scratch/unknown" ] || complain "exported, but not in the reviewed lists ($golden): $(tr '\n' ' ' <"$scratch/unknown")"
[ ! -s "$scratch/missing" ] || complain "in the reviewed lists, but not exported: $(tr '\n' ' ' <"$scratch/missing")"

# Imports: the core's entries, and of libc only what ends the process or serves the loader of the kernel
# library.
nm -D --undefined-only "$library" | awk '{print $NF}' | sed 's/@.*//' | sort -u |
    grep -vE '^(xkl_(serv|blas|lapack|trans|conv|dft|spblas|sparse|pds|iss|trs|feast|vml_serv_threader)_.*|exit|dlsym|dlerror|dladdr|getcwd|__cxa_finalize|__gmon_start__|_ITM_.*)$' >"$scratch/foreign" || true
[ ! -s "$scratch/foreign" ] || complain "imports that are neither the core's nor allowed: $(tr '\n' ' ' <"$scratch/foreign")"

needed=$(readelf -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | tr '\n' ' ')
[ "$needed" = "libxkl_core.so libc.so.6 " ] || complain "needs $needed, instead of libxkl_core.so and libc.so.6 alone"
runpath=$(readelf -d "$library" | sed -n 's/.*(RUNPATH).*\[\(.*\)\]/\1/p')
[ "$runpath" = '$ORIGIN' ] || complain "its RUNPATH is $runpath, instead of \$ORIGIN"

echo "$(wc -l <"$scratch/built") exported names, $(wc -l <"$scratch/golden") reviewed"
exit $failed
