#!/bin/sh
# A module of the core exports one name and needs nothing but libc and libm, so that it meets nobody else's library.
# usage: check_module.sh LIBRARY NAME
set -eu
export LC_ALL=C
exported=$(nm -D --defined-only "$1" | awk '{print $NF}' | tr '\n' ' ')
[ "$exported" = "$2 " ] || { echo "$1 exports $exported, instead of $2 alone"; exit 1; }
foreign=$(readelf -d "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | grep -vE '^(libc\.so\.6|libm\.so\.6|ld-linux-x86-64\.so\.2)$' || true)
[ -z "$foreign" ] || { echo "$1 needs $foreign"; exit 1; }
