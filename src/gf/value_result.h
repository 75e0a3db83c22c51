// The gfortran companion's one rule. Compilers disagree about complex functions: this library's bodies take
// the address of the result first, gfortran expects the function's value. The companion has the Fortran
// spellings, turns the one into the other, and goes before the interface library on the link line.
#pragma once

namespace xkl {

template <class Complex, class Body, class... A>
inline Complex value_result(Body &body, A... arguments)
{
    Complex result;
    body(&result, arguments...);
    return result;
}

} // namespace xkl
