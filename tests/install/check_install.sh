#!/bin/sh
# check_install.sh BUILD_DIR SOURCE_DIR: installs a build, moves it to another place, and uses it from there.
set -eu
build=$(readlink -f "$1")
source=$(readlink -f "$2")
users=$source/tests/install/project
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

step() {
    echo "-- $*"
}

fail() {
    echo "check_install: $*" >&2
    exit 1
}

step "installing, and moving what was installed"
cmake --install "$build" --prefix "$scratch/first" >"$scratch/install.log"
mkdir "$scratch/moved here"
prefix="$scratch/moved here/xkl"
mv "$scratch/first" "$prefix"

step "no path of the build or of the sources is left"
leaks=$(grep -rlF -e "$build" -e "$source" -e "$scratch/first" "$prefix" || true)
[ -z "$leaks" ] || fail "paths of the build are left in: $leaks"

step "libraries are looked for beside themselves only"
for file in "$prefix"/lib/*.so "$prefix"/bin/*; do
    paths=$(readelf -d "$file" | sed -n 's/.*R\(UN\)\?PATH.*\[\(.*\)\]/\2/p')
    case "$file:$paths" in
    *.so:'$ORIGIN' | *.so: | "$prefix"/bin/*:'$ORIGIN/../lib') ;;
    *) fail "$file has the search path '$paths'" ;;
    esac
done

step "each header stands alone, in C and in C++, old and new"
for header in "$prefix"/include/xkl/*.h "$prefix"/include/xkl/fftw/*.h; do
    for language in "c -std=c99" c "c++ -std=c++11" c++; do
        # shellcheck disable=SC2086 # a language and its year
        echo "#include \"$header\"" |
            cc -x $language -Wall -Wextra -Wpedantic -Werror -fsyntax-only "-I$prefix/include/xkl" "-I$prefix/include/xkl/fftw" - ||
            fail "$header does not stand alone in $language"
    done
done

step "each Fortran module stands alone, within the standard's columns"
for module in "$prefix"/include/xkl/*.f90 "$prefix"/include/xkl/fftw/*.f90; do
    gfortran -std=f2018 -fdefault-integer-8 -Wline-truncation -Werror -fsyntax-only -J "$scratch" \
        "-I$prefix/include/xkl/fftw" "$module" ||
        fail "$module is not standard Fortran"
done

step "a CMake project"
cmake -S "$users" -B "$scratch/cmake" -DCMAKE_PREFIX_PATH="$prefix" >"$scratch/cmake.log" ||
    fail "find_package(xkl) failed: $(cat "$scratch/cmake.log")"
cmake --build "$scratch/cmake" >"$scratch/cmake.log" 2>&1 || fail "$(cat "$scratch/cmake.log")"
for user in c_user cpp_user usual_user usual_user_as_cpp fftw_user fftw_user_fortran fortran_user; do
    "$scratch/cmake/$user"
done

cd "$scratch"
export LD_LIBRARY_PATH="$prefix/lib"

step "pkg-config"
flags=$(PKG_CONFIG_PATH="$prefix/lib/pkgconfig" pkg-config --cflags --libs xkl)
eval "cc -std=c11 -Wall -Wextra -Werror '$users/c_user.c' -o by_pkg_config $flags"
./by_pkg_config

step "plain compilers"
cc "-I$prefix/include/xkl" "$users/c_user.c" -o plain_c "-L$prefix/lib" -lxkl_quorl_ilp64
c++ "-I$prefix/include/xkl" "$users/cpp_user.cpp" -o plain_cpp "-L$prefix/lib" -lxkl_quorl_ilp64
gfortran -fdefault-integer-8 "$prefix/include/xkl/xkl_blas.f90" "$users/fortran_user.f90" -o plain_fortran \
    "-L$prefix/lib" -lxkl_quorl_gf_ilp64 -lxkl_quorl_ilp64
for program in ./plain_c ./plain_cpp ./plain_fortran; do $program; done

step "a gfortran program with the companion in the second place is wrong, as the documents warn"
gfortran -fdefault-integer-8 "$prefix/include/xkl/xkl_blas.f90" "$users/fortran_user.f90" -o wrong_order \
    "-L$prefix/lib" -lxkl_quorl_ilp64 -lxkl_quorl_gf_ilp64
if ./wrong_order >/dev/null 2>&1; then fail "the order of the two libraries does not matter any more"; fi

unset LD_LIBRARY_PATH
step "Python's ctypes, and the tool"
python3 -c 'import ctypes, sys; print("Python:", ctypes.CDLL(sys.argv[1]).cblas_idamax)' \
    "$prefix/lib/libxkl_quorl_ilp64.so" >/dev/null
"$prefix/bin/xkl" info >"$scratch/info.txt" || fail "xkl info ended with an error: $(cat "$scratch/info.txt")"
for library in libxkl_quorl_ilp64.so libxkl_core.so libxkl_kernels.so; do
    grep -qF " $prefix/lib/$library" "$scratch/info.txt" || fail "xkl info found another $library than the installed one"
done
echo "-- the installed tree works on its own"
