#!/bin/sh
# A wrong row is a clear error that names its file and line, and nothing is written.
# usage: wrong_rows.sh TABLEGEN
set -u
tablegen=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failed=0
count=0

# refused MESSAGE ROW ARGUMENT...: what tablegen makes of wrong.tbl
refused() {
    message=$1
    row=$2
    shift 2
    count=$((count + 1))
    rm -f "$scratch/out"
    if "$tablegen" "$@" -o "$scratch/out" 2>"$scratch/said"; then
        echo "accepted: $row"
        failed=1
    elif ! grep -q "wrong.tbl:[234]: " "$scratch/said" || ! grep -qF "$message" "$scratch/said"; then
        echo "for: $row"
        echo "said: $(cat "$scratch/said")"
        failed=1
    elif [ -e "$scratch/out" ]; then
        echo "left a file behind: $row"
        failed=1
    fi
}

# expect MESSAGE ROW: the row stands on line 3
expect() {
    printf '@family blas\n@spellings blas\n%s\n' "$2" >"$scratch/wrong.tbl"
    refused "$1" "$2" frames --tables "$scratch/wrong.tbl"
}

# expect_provider MESSAGE ROW
expect_provider() {
    printf '@family blas\n@spellings blas\n?AXPY S,D traced - n:i\n' >"$scratch/right.tbl"
    printf '\n\n%s\n' "$2" >"$scratch/wrong.tbl"
    refused "$1" "$2" core-own --option axpy --tables "$scratch/right.tbl" --providers "$scratch/wrong.tbl"
}

# expect_lapacke MESSAGE STATEMENT: a statement about DGEEX, on line 3
expect_lapacke() {
    printf '@family lapack\n@spellings lapack\n?GEEX S,D registered - m:i n:i a:T! lda:i x:T work:T! lwork:i info:info\n' >"$scratch/right.tbl"
    printf '# rows\n?GEEX  S,D\n    %s\n' "$2" >"$scratch/wrong.tbl"
    refused "$1" "$2" lapacke --tables "$scratch/right.tbl" --lapacke "$scratch/wrong.tbl"
}

expect 'unknown kind `y`' '?AXPY S,D traced - n:i a:y'
expect 'unknown kind `&lattice_t`' '?AXPY S,D reading - n:&lattice_t'
expect 'is not an argument' '?AXPY S,D traced - n'
expect 'two arguments are called `n`' '?AXPY S,D traced - n:i n:i'
expect 'unknown frame `trace`' '?AXPY S,D trace - n:i'
expect 'names its checks' '?GEMV S,D checked - n:i'
expect 'a helper its template' '?AXPY S,D helper - n:i'
expect 'names its checks' 'XKL_?OMATCOPY S valued - ordering:c'
expect 'a valued frame takes no kind i' 'XKL_?OMATCOPY S valued:omatcopy - rows:i'
expect 'only what a through frame calls' '?AXPY S,D traced/here - n:i'
expect 'unknown result `number`' '?DOT S,D traced number n:i'
expect 'has none of the letters' '?AXPY Q traced - n:i'
expect 'lists its types' '?AXPY - traced - n:i'
expect 'needs a routine with a type' 'AXPY - traced - x:T'
expect 'a row has the columns' '?AXPY S'
expect 'there is no spelling rule' '@spellings blass'
expect 'a directive is' '@famly blas'
expect 'stands in' "DSCAL - traced - n:i
DSCAL - traced - n:i"

expect_provider 'the columns name, types and provider' '?AXPY own:axpy'
expect_provider '`own:` is no provider' '?AXPY S own:'
expect_provider '`own:axpy/` is no provider' '?AXPY S own:axpy/'
expect_provider '`openblas:` is no provider' '?AXPY S openblas:'
expect_provider '`other:axpy` is no provider' '?AXPY S other:axpy'
expect_provider 'lists its types' '?AXPY S openblas:saxpy'
expect_provider 'no table has the routine `CAXPY`' '?AXPY S,C own:axpy'

expect_lapacke 'has no argument `b`' 'b in ge(m, n)'
expect_lapacke 'none of in, out, inout, value, space, query' 'a reads ge(m, n)'
expect_lapacke 'there is no storage scheme `xy`' 'a in xy(m, n)'
expect_lapacke 'scheme ge has 2 sizes' 'a in ge(m)'
expect_lapacke 'not followed by its leading dimension' 'x in ge(m, n)'
expect_lapacke 'none of nan, in, out, bound, refused, ld' 'a in ge(m, n), otherwise'
expect_lapacke '`)` is missing' 'a in ge(m, max(1, n)'
expect_lapacke 'there is no function `root`' 'work space root(n)'
expect_lapacke 'no argument or value `p`' 'a in ge(m, p)'
expect_lapacke 'it ends too early' 'work space n +'
expect_lapacke '`let NAME = VALUE`' 'let k m'
expect_lapacke '`check ARGUMENT if CONDITION`' 'check n'
expect_lapacke 'no table has the routine `DGEEY`' 'a in ge(m, n)
?GEEY D'
# expect_vml MESSAGE ROW, expect_kernel MESSAGE ROW, expect_setting MESSAGE ROW: a function, the provider
# of a kernel, an operation on mode and status
expect_vml() {
    printf '\n\n%s\n' "$2" >"$scratch/wrong.tbl"
    refused "$1" "$2" vml-threaders --vml "$scratch/wrong.tbl"
}
expect_kernel() {
    printf 'Exp s,d 1i_1o\n' >"$scratch/right.tbl"
    printf '\n\n%s\n' "$2" >"$scratch/wrong.tbl"
    refused "$1" "$2" vml-kernel-tables --vml "$scratch/right.tbl" --providers "$scratch/wrong.tbl"
}
expect_setting() {
    printf 'Exp d 1i_1o\n' >"$scratch/right.tbl"
    printf '\n\n%s\n' "$2" >"$scratch/wrong.tbl"
    refused "$1" "$2" vml-settings --vml "$scratch/right.tbl" --settings "$scratch/wrong.tbl"
}

# expect_errors MESSAGE ROW: a row of the table of errors, beside which Exp is a function
expect_errors() {
    printf 'Exp d 1i_1o\n' >"$scratch/right.tbl"
    printf '\n\n%s\n' "$2" >"$scratch/wrong.tbl"
    refused "$1" "$2" vml-header --vml "$scratch/right.tbl" --option "$scratch/wrong.tbl"
}

expect_vml 'the columns name, types and class' 'Exp s,d'
expect_vml 'unknown class `1i`' 'Exp s,d 1i'
expect_vml '`q` is no type' 'Exp s,q 1i_1o'
expect_vml 'has no functions of type s' 'Arg s to_real'
expect_vml 'stands in' 'Exp s 1i_1o
Exp s 1i_1o'
expect_kernel 'the columns name, types, header and cost' 'Exp s exponential'
expect_kernel 'has no function cExp' 'Exp c exponential 1,1,1'
expect_kernel 'is no cost' 'Exp s exponential 1,x,1'
expect_kernel 'three numbers' 'Exp s exponential 1,1'
expect_kernel 'three numbers' 'Exp s exponential 1,1,1,1'
expect_kernel 'has a kernel already' 'Exp s exponential 1,1,1
Exp s exponential 1,1,1'
expect_errors 'the errors in three modes' 'Exp d 1 4'
printf '\n\nLn d 1i_1o\n' >"$scratch/wrong.tbl"
printf 'Exp d 1 4 half\n' >"$scratch/right.tbl"
refused 'nothing is said about the errors of dLn' 'Ln' vml-header --vml "$scratch/wrong.tbl" --option "$scratch/right.tbl"
expect_fftw() {
    printf '\n\n%s\n' "$2" >"$scratch/wrong.tbl"
    refused "$1" "$2" fftw-frames --fftw "$scratch/wrong.tbl"
}
expect_fftw 'a row is `constant NAME VALUE`' 'routines both cleanup - -'
expect_fftw 'a row is `constant NAME VALUE`' 'constant FFTW_MEASURE'
expect_fftw 'a name of its own' 'data cc
data cc'
expect_fftw 'not for `Fortran`' 'routine Fortran cleanup - -'
expect_fftw 'unknown kind `complx`' 'routine C execute_dft - p:plan in:complx'
expect_fftw 'is not an argument' 'routine C execute - plan'
expect_fftw 'has no form by address' 'routine both malloc pointer n:size'
expect_setting 'a row has the columns' 'SetMode mode'
expect_setting 'a row has the columns' 'SetMode mode -'
expect_setting 'a row has the columns' 'SetMode integer mode'

# expect_vsl MESSAGE ROW: a generator, a stream routine or a task
expect_vsl() {
    printf '\n\n%s\n' "$2" >"$scratch/wrong.tbl"
    refused "$1" "$2" vsl-frames --vsl "$scratch/wrong.tbl"
}
expect_vsl 'the columns name, types, frame' 'vslCopy -'
expect_vsl 'is no frame' 'v?RngCauchy s,d draw:1 a:real'
expect_vsl 'is no frame' 'v?RngCauchy s,d generate a:real'
expect_vsl 'has no methods' 'v?RngCauchy s,d generate:+ a:real'
expect_vsl '`q` is no type' 'v?RngCauchy s,q generate:1 a:real'
expect_vsl 'lists its types' 'v?RngCauchy - generate:1 a:real'
expect_vsl 'is not an argument' 'v?RngCauchy s,d generate:1 a'
expect_vsl 'unknown kind `number`' 'v?RngCauchy s,d generate:1 a:number'
expect_vsl 'two arguments are called `a`' 'v?RngCauchy s,d generate:1 a:real a:real'
expect_vsl 'names no argument ahead of it' 'v?RngUniform s,d generate:1 b:real:above(a) a:real'
expect_vsl 'stands in' 'vslCopy - stream
vslCopy - stream'

echo "$count wrong rows"
exit $failed
