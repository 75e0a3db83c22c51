// The forms that Fortran calls without an interface: every argument by address, integers of 64 bits, the
// result first. Arrays are Fortran's, the first dimension fastest, so that sizes and kinds are turned
// around; the dimensions of the guru planners have strides and stay as they are.
#pragma once

#include "fftw/planners.h"
#include "fftw/services.h"

#include <climits>

namespace xkl::fftw::fortran {

using integer = const int64_t *;

/// Numbers of each dimension, turned around; null as they were, or for too many dimensions.
class reversed {
  public:
    reversed(int64_t rank, integer numbers) : given_(numbers && rank <= most_dimensions)
    {
        for (int64_t i = 0; given_ && i < rank; ++i)
            numbers_[i] = numbers[rank - 1 - i];
    }

    operator integer() const { return given_ ? numbers_ : nullptr; }

  private:
    int64_t numbers_[most_dimensions];
    bool given_;
};

/// Three arrays as the triples of the guru planners.
class zipped {
  public:
    zipped(int64_t rank, int64_t most, integer n, integer is, integer os)
        : given_(rank <= most && n && is && os)
    {
        for (int64_t i = 0; given_ && i < rank; ++i)
            dims_[i] = {n[i], is[i], os[i]};
    }

    operator const fftw_iodim64 *() const { return given_ ? dims_ : nullptr; }

  private:
    fftw_iodim64 dims_[most_dimensions];
    bool given_;
};

/// A plan goes into an integer variable of 64 bits; 0 if there is none.
template <class Plan>
void store(Plan *result, void *plan)
{
    *result = static_cast<Plan>(plan);
}

// Complex.

template <class Real, class Plan>
void plan_dft(Plan *result, integer rank, integer n, void *in, void *out, integer sign, integer flags)
{
    store(result, fftw::plan_dft<Real>(*rank, integer(reversed(*rank, n)), in, out, *sign, *flags));
}

template <class Real, class Plan>
void plan_dft_1d(Plan *result, integer n, void *in, void *out, integer sign, integer flags)
{
    store(result, fftw::plan_dft_1d<Real>(*n, in, out, *sign, *flags));
}

template <class Real, class Plan>
void plan_dft_2d(Plan *result, integer nx, integer ny, void *in, void *out, integer sign, integer flags)
{
    store(result, fftw::plan_dft_2d<Real>(*ny, *nx, in, out, *sign, *flags));
}

template <class Real, class Plan>
void plan_dft_3d(Plan *result, integer nx, integer ny, integer nz, void *in, void *out, integer sign,
                 integer flags)
{
    store(result, fftw::plan_dft_3d<Real>(*nz, *ny, *nx, in, out, *sign, *flags));
}

template <class Real, class Plan>
void plan_many_dft(Plan *result, integer rank, integer n, integer howmany, void *in, integer inembed,
                   integer istride, integer idist, void *out, integer onembed, integer ostride,
                   integer odist, integer sign, integer flags)
{
    store(result,
          fftw::plan_many_dft<Real>(*rank, integer(reversed(*rank, n)), *howmany, in,
                                    integer(reversed(*rank, inembed)), *istride, *idist, out,
                                    integer(reversed(*rank, onembed)), *ostride, *odist, *sign, *flags));
}

template <class Real, class Plan>
void plan_guru_dft(Plan *result, integer rank, integer n, integer is, integer os, integer howmany_rank,
                   integer howmany_n, integer howmany_is, integer howmany_os, void *in, void *out,
                   integer sign, integer flags)
{
    store(result, plan_guru64_dft<Real>(*rank, zipped(*rank, most_dimensions, n, is, os), *howmany_rank,
                                        zipped(*howmany_rank, 1, howmany_n, howmany_is, howmany_os), in,
                                        out, *sign, *flags));
}

// Real to complex.

template <class Real, class Plan>
void plan_dft_r2c(Plan *result, integer rank, integer n, void *in, void *out, integer flags)
{
    store(result, fftw::plan_dft_r2c<Real>(*rank, integer(reversed(*rank, n)), in, out, *flags));
}

template <class Real, class Plan>
void plan_dft_r2c_1d(Plan *result, integer n, void *in, void *out, integer flags)
{
    store(result, fftw::plan_dft_r2c_1d<Real>(*n, in, out, *flags));
}

template <class Real, class Plan>
void plan_dft_r2c_2d(Plan *result, integer nx, integer ny, void *in, void *out, integer flags)
{
    store(result, fftw::plan_dft_r2c_2d<Real>(*ny, *nx, in, out, *flags));
}

template <class Real, class Plan>
void plan_dft_r2c_3d(Plan *result, integer nx, integer ny, integer nz, void *in, void *out, integer flags)
{
    store(result, fftw::plan_dft_r2c_3d<Real>(*nz, *ny, *nx, in, out, *flags));
}

template <class Real, class Plan>
void plan_many_dft_r2c(Plan *result, integer rank, integer n, integer howmany, void *in, integer inembed,
                       integer istride, integer idist, void *out, integer onembed, integer ostride,
                       integer odist, integer flags)
{
    store(result, fftw::plan_many_dft_r2c<Real>(
                      *rank, integer(reversed(*rank, n)), *howmany, in, integer(reversed(*rank, inembed)),
                      *istride, *idist, out, integer(reversed(*rank, onembed)), *ostride, *odist, *flags));
}

template <class Real, class Plan>
void plan_guru_dft_r2c(Plan *result, integer rank, integer n, integer is, integer os, integer howmany_rank,
                       integer howmany_n, integer howmany_is, integer howmany_os, void *in, void *out,
                       integer flags)
{
    store(result, plan_guru64_dft_r2c<Real>(*rank, zipped(*rank, most_dimensions, n, is, os), *howmany_rank,
                                            zipped(*howmany_rank, 1, howmany_n, howmany_is, howmany_os), in,
                                            out, *flags));
}

// Complex to real.

template <class Real, class Plan>
void plan_dft_c2r(Plan *result, integer rank, integer n, void *in, void *out, integer flags)
{
    store(result, fftw::plan_dft_c2r<Real>(*rank, integer(reversed(*rank, n)), in, out, *flags));
}

template <class Real, class Plan>
void plan_dft_c2r_1d(Plan *result, integer n, void *in, void *out, integer flags)
{
    store(result, fftw::plan_dft_c2r_1d<Real>(*n, in, out, *flags));
}

template <class Real, class Plan>
void plan_dft_c2r_2d(Plan *result, integer nx, integer ny, void *in, void *out, integer flags)
{
    store(result, fftw::plan_dft_c2r_2d<Real>(*ny, *nx, in, out, *flags));
}

template <class Real, class Plan>
void plan_dft_c2r_3d(Plan *result, integer nx, integer ny, integer nz, void *in, void *out, integer flags)
{
    store(result, fftw::plan_dft_c2r_3d<Real>(*nz, *ny, *nx, in, out, *flags));
}

template <class Real, class Plan>
void plan_many_dft_c2r(Plan *result, integer rank, integer n, integer howmany, void *in, integer inembed,
                       integer istride, integer idist, void *out, integer onembed, integer ostride,
                       integer odist, integer flags)
{
    store(result, fftw::plan_many_dft_c2r<Real>(
                      *rank, integer(reversed(*rank, n)), *howmany, in, integer(reversed(*rank, inembed)),
                      *istride, *idist, out, integer(reversed(*rank, onembed)), *ostride, *odist, *flags));
}

template <class Real, class Plan>
void plan_guru_dft_c2r(Plan *result, integer rank, integer n, integer is, integer os, integer howmany_rank,
                       integer howmany_n, integer howmany_is, integer howmany_os, void *in, void *out,
                       integer flags)
{
    store(result, plan_guru64_dft_c2r<Real>(*rank, zipped(*rank, most_dimensions, n, is, os), *howmany_rank,
                                            zipped(*howmany_rank, 1, howmany_n, howmany_is, howmany_os), in,
                                            out, *flags));
}

template <class Real, class Plan>
void plan_guru_split_dft(Plan *result, integer rank, integer n, integer is, integer os,
                         integer howmany_rank, integer howmany_n, integer howmany_is, integer howmany_os,
                         void *ri, void *ii, void *ro, void *io, integer flags)
{
    store(result, plan_guru64_split_dft<Real>(
                      *rank, zipped(*rank, most_dimensions, n, is, os), *howmany_rank,
                      zipped(*howmany_rank, 1, howmany_n, howmany_is, howmany_os), ri, ii, ro, io, *flags));
}

template <class, class Plan, class... Arguments>
void plan_guru_split_dft_r2c(Plan *result, Arguments...)
{
    store(result, nullptr);
}

template <class, class Plan, class... Arguments>
void plan_guru_split_dft_c2r(Plan *result, Arguments...)
{
    store(result, nullptr);
}

// Real to real. The guru planner turns its kinds around, unlike its dimensions: so does FFTW.

template <class Real, class Plan>
void plan_r2r(Plan *result, integer rank, integer n, void *in, void *out, integer kinds, integer flags)
{
    store(result, fftw::plan_r2r<Real>(*rank, integer(reversed(*rank, n)), in, out,
                                       integer(reversed(*rank, kinds)), *flags));
}

template <class Real, class Plan>
void plan_r2r_1d(Plan *result, integer n, void *in, void *out, integer kind, integer flags)
{
    store(result, fftw::plan_r2r_1d<Real>(*n, in, out, *kind, *flags));
}

template <class Real, class Plan>
void plan_r2r_2d(Plan *result, integer nx, integer ny, void *in, void *out, integer kindx, integer kindy,
                 integer flags)
{
    store(result, fftw::plan_r2r_2d<Real>(*ny, *nx, in, out, *kindy, *kindx, *flags));
}

template <class Real, class Plan>
void plan_r2r_3d(Plan *result, integer nx, integer ny, integer nz, void *in, void *out, integer kindx,
                 integer kindy, integer kindz, integer flags)
{
    store(result, fftw::plan_r2r_3d<Real>(*nz, *ny, *nx, in, out, *kindz, *kindy, *kindx, *flags));
}

template <class Real, class Plan>
void plan_many_r2r(Plan *result, integer rank, integer n, integer howmany, void *in, integer inembed,
                   integer istride, integer idist, void *out, integer onembed, integer ostride,
                   integer odist, integer kinds, integer flags)
{
    store(result, fftw::plan_many_r2r<Real>(*rank, integer(reversed(*rank, n)), *howmany, in,
                                            integer(reversed(*rank, inembed)), *istride, *idist, out,
                                            integer(reversed(*rank, onembed)), *ostride, *odist,
                                            integer(reversed(*rank, kinds)), *flags));
}

template <class Real, class Plan>
void plan_guru_r2r(Plan *result, integer rank, integer n, integer is, integer os, integer howmany_rank,
                   integer howmany_n, integer howmany_is, integer howmany_os, void *in, void *out,
                   integer kinds, integer flags)
{
    store(result, plan_guru64_r2r<Real>(*rank, zipped(*rank, most_dimensions, n, is, os), *howmany_rank,
                                        zipped(*howmany_rank, 1, howmany_n, howmany_is, howmany_os), in,
                                        out, integer(reversed(*rank, kinds)), *flags));
}

// The rest: the plan by address, arrays as they are.

/// Thread counts beyond C's int are as good as its bounds.
inline int narrowed(int64_t count)
{
    return static_cast<int>(count > INT_MAX ? INT_MAX : count < INT_MIN ? INT_MIN : count);
}

template <class Real, class Plan>
void execute(Plan *plan)
{
    fftw::execute<Real>(*plan);
}

template <class Real, class Plan>
void execute_dft(Plan *plan, void *in, void *out)
{
    fftw::execute_dft<Real>(*plan, in, out);
}

template <class Real, class Plan>
void execute_dft_r2c(Plan *plan, void *in, void *out)
{
    fftw::execute_dft_r2c<Real>(*plan, in, out);
}

template <class Real, class Plan>
void execute_dft_c2r(Plan *plan, void *in, void *out)
{
    fftw::execute_dft_c2r<Real>(*plan, in, out);
}

template <class Real, class Plan>
void execute_r2r(Plan *plan, void *in, void *out)
{
    fftw::execute_r2r<Real>(*plan, in, out);
}

template <class Real, class Plan>
void execute_split_dft(Plan *plan, void *ri, void *ii, void *ro, void *io)
{
    fftw::execute_split_dft<Real>(*plan, ri, ii, ro, io);
}

template <class Real, class Plan>
void execute_split_dft_r2c(Plan *plan, void *in, void *ro, void *io)
{
    fftw::execute_split_dft_r2c<Real>(*plan, in, ro, io);
}

template <class Real, class Plan>
void execute_split_dft_c2r(Plan *plan, void *ri, void *ii, void *out)
{
    fftw::execute_split_dft_c2r<Real>(*plan, ri, ii, out);
}

template <class Real, class Plan>
void destroy_plan(Plan *plan)
{
    fftw::destroy_plan<Real>(*plan);
}

template <class Real>
void init_threads(int64_t *result)
{
    *result = fftw::init_threads<Real>();
}

template <class Real>
void plan_with_nthreads(integer count)
{
    fftw::plan_with_nthreads<Real>(narrowed(*count));
}

template <class Real>
void planner_nthreads(int64_t *result)
{
    *result = fftw::planner_nthreads<Real>();
}

template <class Real>
void cleanup_threads()
{
    fftw::cleanup_threads<Real>();
}

template <class Real>
void make_planner_thread_safe()
{
    fftw::make_planner_thread_safe<Real>();
}

template <class Real>
void set_timelimit(const double *seconds)
{
    fftw::set_timelimit<Real>(*seconds);
}

template <class>
void import_wisdom(int64_t *result, void *, void *)
{
    *result = 0;
}

template <class Real>
void import_system_wisdom(int64_t *result)
{
    *result = fftw::import_system_wisdom<Real>();
}

template <class>
void export_wisdom(void *, void *)
{
}

template <class Real>
void forget_wisdom()
{
    fftw::forget_wisdom<Real>();
}

template <class Real>
void cleanup()
{
    fftw::cleanup<Real>();
}

template <class Real, class Plan>
void print_plan(Plan *plan)
{
    fftw::print_plan<Real>(*plan);
}

template <class Real, class Plan>
void flops(Plan *plan, double *add, double *mul, double *fma)
{
    fftw::flops<Real>(*plan, add, mul, fma);
}

template <class Real, class Plan>
void cost(double *result, Plan *plan)
{
    *result = fftw::cost<Real>(*plan);
}

template <class Real, class Plan>
void estimate_cost(double *result, Plan *plan)
{
    *result = fftw::estimate_cost<Real>(*plan);
}

} // namespace xkl::fftw::fortran
