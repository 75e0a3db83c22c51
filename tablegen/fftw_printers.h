// What the generator prints of the FFTW3 interface.
#pragma once

#include "fftw_table.h"

#include <iosfwd>

namespace tablegen {

/// Every exported routine, each a call of the template of its name.
void print_fftw_frames(std::ostream &out, const fftw_table &table);
/// The part of fftw3.h behind its types.
void print_fftw_header(std::ostream &out, const fftw_table &table);
/// Constants for programs that call the forms without interface: fftw3.f.
void print_fftw_fortran_constants(std::ostream &out, const fftw_table &table);
/// Constants, types and interfaces for programs that `include 'fftw3.f03'`.
void print_fftw_fortran(std::ostream &out, const fftw_table &table);

} // namespace tablegen
