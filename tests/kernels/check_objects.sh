#!/bin/sh
# Functions that objects share must not come from one that is compiled for newer processors: the linker
# keeps one copy of them for all. So what an object offers for sharing carries the name of its set.
# usage: check_objects.sh SET OBJECT...
set -u
set_name=$1
shift
shared=$(nm "$@" | awk '$2 ~ /^[VWuw]$/ {print $3}' |
    grep -v "_ZN[A-Z]*3xkl7kernels[0-9]*$set_name" | sort -u)
if [ -n "$shared" ]; then
    echo "not in namespace $set_name, but may be shared with other objects:"
    echo "$shared" | c++filt
    exit 1
fi
echo "$# objects"
