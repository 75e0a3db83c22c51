// The table of the FFTW3 interface: constants, data objects and routines, and how an argument of each kind is
// written in C, in a Fortran interface, and in the forms without one.
#pragma once

#include "table.h"

#include <set>

namespace tablegen {

/// A family: what its names start with, and its types.
struct fftw_family {
    std::string prefix;         // fftw_
    std::string fortran_prefix; // dfftw_
    std::string real;           // double
    std::string fortran_real;   // C_DOUBLE
};

/// How a kind of argument is written. `@` is the place of the family's prefix, `%` of its real type, `$` of the
/// argument's name, `^` of what that name has ahead of `dims`.
struct fftw_kind {
    std::string c;       // `const int *`, with its blank
    std::string fortran; // `integer(C_INT), dimension(*)`
    // In the forms where all go by address; empty: these forms have no such argument.
    std::string by_address;
    std::string handed_on; // what these forms call the routine with, `*$`
};

/// FFTW_FORWARD, one of the kinds of real transforms, or the name of a text.
struct fftw_constant {
    std::string group; // constant, kind, data
    std::string name, value, about;
};

struct fftw_routine {
    std::string name;        // without its prefix: plan_dft
    bool by_address = false; // has forms that Fortran calls without an interface
    std::string result;      // a kind, or `-`
    std::vector<argument> arguments;
    std::string about;
};

struct fftw_table {
    std::vector<fftw_constant> constants;
    std::vector<fftw_routine> routines;
};

fftw_table read_fftw_table(const std::string &file);

const std::vector<fftw_family> &fftw_families();
const fftw_kind &fftw_kind_named(const std::string &name);

/// `text` with the family's prefix and real type in their places.
std::string fftw_spelled(std::string text, const fftw_family &family);

/// The arguments of the form by address, with their types: the result first, dimensions as three arrays, and
/// lengths that follow each other, or kinds, in reverse order, since Fortran's first dimension is the fastest.
std::vector<argument> fftw_by_address(const fftw_routine &row);

/// What the form by address calls the routine with.
std::string fftw_handed_on(const argument &each);

std::set<std::string> fftw_exported_names(const fftw_table &table);

} // namespace tablegen
