// One name for MUMPS' records and entries of the four arithmetics.
#pragma once

#include <cmumps_c.h>
#include <complex>
#include <dmumps_c.h>
#include <smumps_c.h>
#include <type_traits>
#include <zmumps_c.h>

namespace xkl::core::solvers {

static_assert(sizeof(MUMPS_INT) == 4);

template <class T>
struct mumps;
template <>
struct mumps<float> {
    using record = SMUMPS_STRUC_C;
    static constexpr auto call = smumps_c;
};
template <>
struct mumps<double> {
    using record = DMUMPS_STRUC_C;
    static constexpr auto call = dmumps_c;
};
template <>
struct mumps<std::complex<float>> {
    using record = CMUMPS_STRUC_C;
    static constexpr auto call = cmumps_c;
};
template <>
struct mumps<std::complex<double>> {
    using record = ZMUMPS_STRUC_C;
    static constexpr auto call = zmumps_c;
};

} // namespace xkl::core::solvers
