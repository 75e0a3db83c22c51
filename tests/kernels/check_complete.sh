#!/bin/sh
# usage: check_complete.sh LIBRARY
# No kernel is a stand-in any more: their names start with missing_.
set -eu
symbols=$(nm -C "$1")
echo "$symbols" | grep -q ' xkl_vml_kernel_dExp_ttab$' || { echo "nm shows no kernel tables in $1" >&2; exit 1; }
missing=$(echo "$symbols" | sed -n 's/.* missing_\([A-Za-z0-9]*\).*/\1/p' | sort -u)
[ -z "$missing" ] || { echo "stand-ins: $(echo "$missing" | wc -l)" >&2; echo "$missing" >&2; exit 1; }
