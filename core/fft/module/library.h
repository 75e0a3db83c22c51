// FFTW's functions, by the type of their elements.
#pragma once

#include <fftw3.h>

namespace xkl::fft {

template <class T>
struct library;

template <>
struct library<double> {
    using plan = fftw_plan;
    using complex = fftw_complex;
    using extent = fftw_iodim64;
    static constexpr auto plan_complex = fftw_plan_guru64_dft;
    static constexpr auto plan_forward = fftw_plan_guru64_dft_r2c;
    static constexpr auto plan_backward = fftw_plan_guru64_dft_c2r;
    static constexpr auto plan_real = fftw_plan_guru64_r2r;
    static constexpr auto run_complex = fftw_execute_dft;
    static constexpr auto run_forward = fftw_execute_dft_r2c;
    static constexpr auto run_backward = fftw_execute_dft_c2r;
    static constexpr auto run_real = fftw_execute_r2r;
    static constexpr auto destroy = fftw_destroy_plan;
    static constexpr auto forget_wisdom = fftw_forget_wisdom;
    static constexpr auto start_threads = fftw_init_threads;
    static constexpr auto set_parallel_loop = fftw_threads_set_callback;
    static constexpr auto set_threads = fftw_plan_with_nthreads;
    static constexpr auto alignment_of = fftw_alignment_of;
};

template <>
struct library<float> {
    using plan = fftwf_plan;
    using complex = fftwf_complex;
    using extent = fftwf_iodim64;
    static constexpr auto plan_complex = fftwf_plan_guru64_dft;
    static constexpr auto plan_forward = fftwf_plan_guru64_dft_r2c;
    static constexpr auto plan_backward = fftwf_plan_guru64_dft_c2r;
    static constexpr auto plan_real = fftwf_plan_guru64_r2r;
    static constexpr auto run_complex = fftwf_execute_dft;
    static constexpr auto run_forward = fftwf_execute_dft_r2c;
    static constexpr auto run_backward = fftwf_execute_dft_c2r;
    static constexpr auto run_real = fftwf_execute_r2r;
    static constexpr auto destroy = fftwf_destroy_plan;
    static constexpr auto forget_wisdom = fftwf_forget_wisdom;
    static constexpr auto start_threads = fftwf_init_threads;
    static constexpr auto set_parallel_loop = fftwf_threads_set_callback;
    static constexpr auto set_threads = fftwf_plan_with_nthreads;
    static constexpr auto alignment_of = fftwf_alignment_of;
};

} // namespace xkl::fft
