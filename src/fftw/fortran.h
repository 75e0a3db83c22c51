// How the forms that Fortran calls without an interface hand on what they are given: integers of 64 bits, by
// address. Arrays are Fortran's, the first dimension fastest, so that sizes and kinds are turned around; the
// dimensions of the guru planners have strides and stay as they are, but their kinds are turned all the same:
// so does FFTW.
#pragma once

#include "fftw/guru.h"

namespace xkl::fftw {

/// Numbers of each dimension, turned around.
class turned {
  public:
    turned(int64_t rank, const int64_t *numbers) : given_(numbers && rank <= most_dimensions)
    {
        for (int64_t i = 0; given_ && i < rank; ++i)
            numbers_[i] = numbers[rank - 1 - i];
    }

    /// Null if there are none, or for too many dimensions.
    const int64_t *numbers() const { return given_ ? numbers_ : nullptr; }

  private:
    int64_t numbers_[most_dimensions];
    bool given_;
};

/// Three arrays as the triples of the guru planners; null where one is missing, or for too many dimensions.
class zipped {
  public:
    zipped(int64_t rank, const int64_t *n, const int64_t *is, const int64_t *os)
        : given_(rank <= most_dimensions && n && is && os)
    {
        for (int64_t i = 0; given_ && i < rank; ++i)
            dims_[i] = {n[i], is[i], os[i]};
    }

    operator const fftw_iodim64 *() const { return given_ ? dims_ : nullptr; }

  private:
    fftw_iodim64 dims_[most_dimensions];
    bool given_;
};

} // namespace xkl::fftw
