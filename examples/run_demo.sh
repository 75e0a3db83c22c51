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

# The scale is a factor of the transform in two programs and applied afterwards in the third one, so the last
# printed digit may be rounded either way.
compare_spectra() {
    paste "$programs/spectrum_c.txt" "$programs/spectrum_fortran.txt" "$programs/spectrum_fftw.txt" |
        awk 'function apart(i) { d = $2 - $i; return d < -1.5e-6 || d > 1.5e-6 }
            NF != 6 || apart(4) || apart(6) { print "  line " NR " DIFFERS: " $0; wrong = 1 }
            END { if (wrong || NR != 366) exit 1; print "\nThe three programs'\'' 366 lines agree." }'
}

draw() {
    picture=$programs/spectrum.png
    command -v gnuplot >/dev/null || {
        echo "No picture: gnuplot is not installed (apt-get install gnuplot-nox)"
        return 0
    }
    gnuplot -c "$here/spectrum.gp" "$programs/course.txt" "$programs/spectrum_c.txt" \
        "$programs/spectrum_fortran.txt" "$programs/spectrum_fftw.txt" "$picture"
    [ -s "$picture" ]
    echo "The picture of it: $picture"
}

for program in pca least_squares sunspots spectrum spectrum_dfti spectrum_fftw monte_carlo sparse; do
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

heading "5. Fourier transforms" "Three programs, one record: which periods are in 61 years of sea surface temperatures?"
if [ -e "$build/lib/libxkl_core_fft.so" ]; then
    echo "examples/spectrum.c, through a descriptor:"
    "$programs/spectrum" "$data/elnino.csv" "$programs/spectrum_c.txt"
    printf '\n%s\n' "examples/spectrum_dfti.f90, the module xkl_dfti, and back again: which El Ninos were the strongest?"
    "$programs/spectrum_dfti" "$data/elnino.csv" "$programs/spectrum_fortran.txt" "$programs/course.txt"
    printf '\n%s\n' "examples/spectrum_fftw.c, written for FFTW:"
    "$programs/spectrum_fftw" "$data/elnino.csv" "$programs/spectrum_fftw.txt"
    compare_spectra
    draw
else
    echo "Left out: this build has no transform module (XKL_WITH_FFT)."
fi
heading "6. Random numbers" "examples/monte_carlo.c: do error bars tell the truth?"
"$programs/monte_carlo"
heading "7. Sparse systems" "examples/sparse.c: plasma physics (UTM300) and a vibrating structure (LUND A), solved directly." \
    "A solution of ones is known."
"$programs/sparse" "$data/utm300.mtx"
"$programs/sparse" "$data/lund_a.mtx"
heading "All computed numbers agree with the published ones."
