// The planners in front of guru64: sizes in row-major order, as an array or one by one, many transforms, and
// dimensions of 32 bits. Templates over the integer: C's is int, Fortran's has 64 bits.
#pragma once

#include "fftw/r2r.h"

namespace xkl::fftw {

/// Rows of one side's array: the physical sizes of its dimensions are `embed`, or the lengths where that is
/// null, but for the last one, which is `last`.
template <class Integer>
struct array_layout {
    const Integer *embed;
    int64_t stride;
    int64_t last;
};

/// The dimensions of a row-major problem.
class row_major {
  public:
    template <class Integer>
    row_major(int64_t rank, const Integer *n, array_layout<Integer> in, array_layout<Integer> out)
    {
        if (rank > most_dimensions || !n)
            return;
        for (int64_t i = 0; i < rank; ++i)
            dims_[i].n = n[i];
        fits_ = lay_out(rank, n, in, &fftw_iodim64::is) && lay_out(rank, n, out, &fftw_iodim64::os);
    }

    /// Null if there are no lengths, too many dimensions, or arrays that no memory could hold.
    const fftw_iodim64 *dims() const { return fits_ ? dims_ : nullptr; }

  private:
    template <class Integer>
    bool lay_out(int64_t rank, const Integer *n, array_layout<Integer> array,
                 ptrdiff_t fftw_iodim64::*stride)
    {
        int64_t next = array.stride;
        for (int64_t i = rank - 1; i >= 0; --i) {
            dims_[i].*stride = next;
            const int64_t inner = array.embed ? array.embed[i] : i == rank - 1 ? array.last : n[i];
            if (i > 0 && __builtin_mul_overflow(next, inner, &next))
                return false;
        }
        return true;
    }

    fftw_iodim64 dims_[most_dimensions];
    bool fits_ = false;
};

/// Sizes of the last dimension: `n` reals, and the complex numbers that stand for them. In place the rows of
/// reals are padded to those of complex numbers.
struct real_rows {
    int64_t reals, complexes;

    template <class Integer>
    real_rows(int64_t rank, const Integer *n, bool in_place) : reals(0), complexes(0)
    {
        if (rank < 1 || rank > most_dimensions || !n)
            return;
        const int64_t last = n[rank - 1];
        complexes = last / 2 + 1;
        reals = !in_place ? last : complexes <= INT64_MAX / 2 ? 2 * complexes : INT64_MAX;
    }
};

/// The batch of the many planners. The distances of a single transform mean nothing.
struct many_batch {
    fftw_iodim64 dim;

    int64_t rank() const { return dim.n == 1 ? 0 : 1; }
};

template <class Integer>
int64_t last_of(int64_t rank, const Integer *n)
{
    return rank >= 1 && rank <= most_dimensions && n ? n[rank - 1] : 0;
}

// Many, from which the basic planners follow: one transform in arrays of its own size.

template <class Real, class Integer>
void *plan_many_dft(int64_t rank, const Integer *n, int64_t howmany, void *in, const Integer *inembed,
                    int64_t istride, int64_t idist, void *out, const Integer *onembed, int64_t ostride,
                    int64_t odist, int64_t sign, int64_t flags)
{
    const int64_t last = last_of(rank, n);
    const row_major array(rank, n, array_layout<Integer>{inembed, istride, last},
                          array_layout<Integer>{onembed, ostride, last});
    const many_batch batch{{howmany, idist, odist}};
    return plan_guru64_dft<Real>(rank, array.dims(), batch.rank(), &batch.dim, in, out, sign, flags);
}

template <class Real, class Integer>
void *plan_many_dft_r2c(int64_t rank, const Integer *n, int64_t howmany, void *in, const Integer *inembed,
                        int64_t istride, int64_t idist, void *out, const Integer *onembed, int64_t ostride,
                        int64_t odist, int64_t flags)
{
    const real_rows rows(rank, n, in == out);
    const row_major array(rank, n, array_layout<Integer>{inembed, istride, rows.reals},
                          array_layout<Integer>{onembed, ostride, rows.complexes});
    const many_batch batch{{howmany, idist, odist}};
    return plan_guru64_dft_r2c<Real>(rank, array.dims(), batch.rank(), &batch.dim, in, out, flags);
}

template <class Real, class Integer>
void *plan_many_dft_c2r(int64_t rank, const Integer *n, int64_t howmany, void *in, const Integer *inembed,
                        int64_t istride, int64_t idist, void *out, const Integer *onembed, int64_t ostride,
                        int64_t odist, int64_t flags)
{
    const real_rows rows(rank, n, in == out);
    const row_major array(rank, n, array_layout<Integer>{inembed, istride, rows.complexes},
                          array_layout<Integer>{onembed, ostride, rows.reals});
    const many_batch batch{{howmany, idist, odist}};
    return plan_guru64_dft_c2r<Real>(rank, array.dims(), batch.rank(), &batch.dim, in, out, flags);
}

template <class Real, class Integer, class Kind>
void *plan_many_r2r(int64_t rank, const Integer *n, int64_t howmany, void *in, const Integer *inembed,
                    int64_t istride, int64_t idist, void *out, const Integer *onembed, int64_t ostride,
                    int64_t odist, const Kind *kinds, int64_t flags)
{
    const int64_t last = last_of(rank, n);
    const row_major array(rank, n, array_layout<Integer>{inembed, istride, last},
                          array_layout<Integer>{onembed, ostride, last});
    const many_batch batch{{howmany, idist, odist}};
    return plan_guru64_r2r<Real>(rank, array.dims(), batch.rank(), &batch.dim, in, out, kinds, flags);
}

template <class Real, class Integer>
void *plan_dft(int64_t rank, const Integer *n, void *in, void *out, int64_t sign, int64_t flags)
{
    const Integer *as_long = nullptr;
    return plan_many_dft<Real>(rank, n, 1, in, as_long, 1, 0, out, as_long, 1, 0, sign, flags);
}

template <class Real, class Integer>
void *plan_dft_r2c(int64_t rank, const Integer *n, void *in, void *out, int64_t flags)
{
    const Integer *as_long = nullptr;
    return plan_many_dft_r2c<Real>(rank, n, 1, in, as_long, 1, 0, out, as_long, 1, 0, flags);
}

template <class Real, class Integer>
void *plan_dft_c2r(int64_t rank, const Integer *n, void *in, void *out, int64_t flags)
{
    const Integer *as_long = nullptr;
    return plan_many_dft_c2r<Real>(rank, n, 1, in, as_long, 1, 0, out, as_long, 1, 0, flags);
}

template <class Real, class Integer, class Kind>
void *plan_r2r(int64_t rank, const Integer *n, void *in, void *out, const Kind *kinds, int64_t flags)
{
    const Integer *as_long = nullptr;
    return plan_many_r2r<Real>(rank, n, 1, in, as_long, 1, 0, out, as_long, 1, 0, kinds, flags);
}

/// Lengths, or kinds, that are given one by one.
template <class Number, size_t count>
struct in_a_row {
    Number all[count];

    const Number *numbers() const { return all; }
};

template <class Number, class... More>
in_a_row(Number, More...) -> in_a_row<Number, 1 + sizeof...(More)>;

// Guru planners with 32-bit dimensions.

/// The dimensions in 64 bits; null where guru64 refuses.
class widened {
  public:
    widened(int64_t rank, const fftw_iodim *dims, int64_t howmany_rank, const fftw_iodim *howmany_dims)
    {
        if (rank > most_dimensions || howmany_rank > 1 || !dims)
            return;
        for (int64_t i = 0; i < rank; ++i)
            dims_[i] = wide(dims[i]);
        all_ = dims_;
        if (howmany_rank == 1 && howmany_dims) {
            batch_ = wide(*howmany_dims);
            only_ = &batch_;
        }
    }

    const fftw_iodim64 *dims() const { return all_; }
    const fftw_iodim64 *howmany_dims() const { return only_; }

  private:
    static fftw_iodim64 wide(const fftw_iodim &dim) { return {dim.n, dim.is, dim.os}; }

    fftw_iodim64 dims_[most_dimensions], batch_;
    const fftw_iodim64 *all_ = nullptr, *only_ = nullptr;
};

template <class Real>
void *plan_guru_dft(int64_t rank, const fftw_iodim *dims, int64_t howmany_rank,
                    const fftw_iodim *howmany_dims, void *in, void *out, int64_t sign, int64_t flags)
{
    const widened wide(rank, dims, howmany_rank, howmany_dims);
    return plan_guru64_dft<Real>(rank, wide.dims(), howmany_rank, wide.howmany_dims(), in, out, sign,
                                 flags);
}

template <class Real>
void *plan_guru_dft_r2c(int64_t rank, const fftw_iodim *dims, int64_t howmany_rank,
                        const fftw_iodim *howmany_dims, void *in, void *out, int64_t flags)
{
    const widened wide(rank, dims, howmany_rank, howmany_dims);
    return plan_guru64_dft_r2c<Real>(rank, wide.dims(), howmany_rank, wide.howmany_dims(), in, out, flags);
}

template <class Real>
void *plan_guru_dft_c2r(int64_t rank, const fftw_iodim *dims, int64_t howmany_rank,
                        const fftw_iodim *howmany_dims, void *in, void *out, int64_t flags)
{
    const widened wide(rank, dims, howmany_rank, howmany_dims);
    return plan_guru64_dft_c2r<Real>(rank, wide.dims(), howmany_rank, wide.howmany_dims(), in, out, flags);
}

template <class Real>
void *plan_guru_split_dft(int64_t rank, const fftw_iodim *dims, int64_t howmany_rank,
                          const fftw_iodim *howmany_dims, void *ri, void *ii, void *ro, void *io,
                          int64_t flags)
{
    const widened wide(rank, dims, howmany_rank, howmany_dims);
    return plan_guru64_split_dft<Real>(rank, wide.dims(), howmany_rank, wide.howmany_dims(), ri, ii, ro, io,
                                       flags);
}

template <class>
void *plan_guru_split_dft_r2c(int64_t, const fftw_iodim *, int64_t, const fftw_iodim *, void *, void *,
                              void *, int64_t)
{
    return nullptr;
}

template <class>
void *plan_guru_split_dft_c2r(int64_t, const fftw_iodim *, int64_t, const fftw_iodim *, void *, void *,
                              void *, int64_t)
{
    return nullptr;
}

template <class Real, class Kind>
void *plan_guru_r2r(int64_t rank, const fftw_iodim *dims, int64_t howmany_rank,
                    const fftw_iodim *howmany_dims, void *in, void *out, const Kind *kinds, int64_t flags)
{
    const widened wide(rank, dims, howmany_rank, howmany_dims);
    return plan_guru64_r2r<Real>(rank, wide.dims(), howmany_rank, wide.howmany_dims(), in, out, kinds,
                                 flags);
}

} // namespace xkl::fftw
