// Conjugation for row-major calls. Such a call becomes one about the transposed matrix; where the routine
// has a conjugate transpose, conj(A) is left over, for which Fortran has no letter. Conjugating the whole
// equation moves it to the vectors and scalars: vectors that are only read are copied, those that are
// written are conjugated in place before and after.
#pragma once

#include "cblas/bounds.h"
#include "cblas/call.h"

#include <cstddef>

namespace xkl::cblas {

constexpr int copy_alignment = 128;

/// Memory for conjugated copies. Empty when there is none, which the caller reports.
template <class E>
class copy_buffer {
  public:
    /// Room for `vectors` vectors of `length` elements, none of it for a negative or overflowing count.
    copy_buffer(int64_t vectors, int64_t length)
    {
        int64_t bytes;
        if (!__builtin_mul_overflow(vectors, length, &bytes) &&
            !__builtin_mul_overflow(bytes, static_cast<int64_t>(sizeof(E)), &bytes))
            start_ = xkl_serv_iface_allocate(static_cast<std::size_t>(bytes), copy_alignment);
    }
    ~copy_buffer()
    {
        if (start_)
            xkl_serv_iface_deallocate(start_);
    }
    copy_buffer(const copy_buffer &) = delete;
    copy_buffer &operator=(const copy_buffer &) = delete;

    explicit operator bool() const { return start_ != nullptr; }
    E *data() const { return static_cast<E *>(start_); }

  private:
    void *start_ = nullptr;
};

template <class E>
E conjugated(const E &value)
{
    return {value.real, -value.imag};
}

template <class R>
auto conjugated(const void *scalar)
{
    return conjugated(*static_cast<const typename R::element *>(scalar));
}

/// Writes conj(x) in logical order, which for a negative increment is the reverse of the order in memory.
template <class E>
void copy_conjugated(E *copy, const void *vector, int64_t n, int64_t inc)
{
    const E *x = static_cast<const E *>(vector);
    const uint64_t step = magnitude(inc), length = static_cast<uint64_t>(n);
    for (uint64_t i = 0; i < length; ++i)
        copy[inc < 0 ? length - 1 - i : i] = conjugated(x[i * step]);
}

template <class E>
void conjugate(E *vector, int64_t n, int64_t inc)
{
    const uint64_t step = magnitude(inc), length = static_cast<uint64_t>(n);
    for (uint64_t i = 0; i < length; ++i)
        vector[i * step].imag = -vector[i * step].imag;
}

/// A vector argument.
template <class Data>
struct vector {
    Data *data;
    int64_t length, inc;
};
template <class Data>
vector(Data *, int64_t, int64_t) -> vector<Data>;

/// Conjugates a result in place for as long as the object lives.
template <class R, class Data>
class conjugated_result {
    using element = typename R::element;

  public:
    explicit conjugated_result(const vector<Data> &y) : y_(y) { flip(); }
    ~conjugated_result() { flip(); }
    conjugated_result(const conjugated_result &) = delete;
    conjugated_result &operator=(const conjugated_result &) = delete;

  private:
    void flip() { conjugate(static_cast<element *>(y_.data), y_.length, y_.inc); }

    vector<Data> y_;
};

/// Calls with conj(x) in logical order, increment 1, or reports that there is no memory for it. An empty
/// vector is passed as it is.
template <class R, class X, class Call>
void with_conjugated(const vector<X> &x, Call call)
{
    using element = typename R::element;
    if (x.length <= 0)
        return call(static_cast<const element *>(x.data), x.inc);
    const copy_buffer<element> copy(1, x.length);
    if (!copy)
        return cblas_xerbla_malloc_error(R::name);
    copy_conjugated(copy.data(), x.data, x.length, x.inc);
    call(static_cast<const element *>(copy.data()), int64_t{1});
}

} // namespace xkl::cblas
