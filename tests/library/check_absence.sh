#!/bin/sh
# What is in a library of its own for its licence's sake must not be in another one.
# usage: check_absence.sh LIBRARY PATTERN
set -eu
if nm "$1" | grep -i "$2"; then
    echo "$1 holds names like $2"
    exit 1
fi
