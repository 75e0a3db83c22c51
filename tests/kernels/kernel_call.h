// Calls of any kernel with vectors of bytes: what the rules that hold for all kernels are tested with.
#pragma once

#include "kernel_rows.h"
#include "library.h"

#include <complex>
#include <cstring>
#include <sys/mman.h>
#include <vector>

/// Vectors that end where readable memory ends, so that a byte too far ends the test
class guarded_bytes {
  public:
    explicit guarded_bytes(size_t size) : size_(size)
    {
        const size_t pages = (size + page - 1) / page * page;
        room_ = pages + page;
        start_ = static_cast<char *>(
            mmap(nullptr, room_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        mprotect(start_ + pages, page, PROT_NONE);
        bytes_ = start_ + pages - size;
        std::memset(bytes_, 0x5a, size);
    }
    ~guarded_bytes() { munmap(start_, room_); }
    guarded_bytes(const guarded_bytes &) = delete;
    guarded_bytes &operator=(const guarded_bytes &) = delete;

    char *data() { return bytes_; }
    size_t size() const { return size_; }

  private:
    static constexpr size_t page = 4096;
    size_t size_, room_;
    char *start_, *bytes_;
};

struct shape {
    explicit shape(const kernel_row &row)
    {
        const bool single = row.element == 's' || row.element == 'c';
        const size_t real = single ? 4 : 8,
                     own = row.element == 'c' || row.element == 'z' ? 2 * real : real;
        inputs = row.kind == kernel_class::two_in_one_out || row.kind == kernel_class::linear_frac ? 2 : 1;
        outputs = row.kind == kernel_class::one_in_two_out ? 2 : 1;
        input_size = row.kind == kernel_class::to_complex ? real : own;
        output_size = row.kind == kernel_class::to_real ? real : own;
    }
    int inputs, outputs;
    size_t input_size, output_size;
};

/// Vectors of one call: arguments, results, and the increments of a strided kernel
struct vectors {
    char *a, *b, *r1, *r2;
    int64_t inca = 1, incb = 1, inc1 = 1, inc2 = 1;
};

template <class R>
void call_with(const kernel_row &row, int set, int32_t n, const vectors &v)
{
    using std::complex;
    void *const code = const_cast<void *>(kernel_code(row.name, set));
    const R scalar = R(1.5);
    const complex<R> complex_scalar(R(1.5), R(-.5));
    const auto go = [&]<class... Tail>(
                        Tail... tail) { // integer arguments and floating-point ones don't mix
        if (row.kind == kernel_class::two_in_one_out || row.kind == kernel_class::linear_frac)
            row.strided ? reinterpret_cast<void (*)(int32_t, char *, int64_t, char *, int64_t, char *,
                                                    int64_t, Tail...)>(code)(n, v.a, v.inca, v.b, v.incb,
                                                                             v.r1, v.inc1, tail...)
                        : reinterpret_cast<void (*)(int32_t, char *, char *, char *, Tail...)>(code)(
                              n, v.a, v.b, v.r1, tail...);
        else if (row.kind == kernel_class::one_in_two_out)
            row.strided
                ? reinterpret_cast<void (*)(int32_t, char *, int64_t, char *, int64_t, char *, int64_t)>(
                      code)(n, v.a, v.inca, v.r1, v.inc1, v.r2, v.inc2)
                : reinterpret_cast<void (*)(int32_t, char *, char *, char *)>(code)(n, v.a, v.r1, v.r2);
        else
            row.strided
                ? reinterpret_cast<void (*)(int32_t, char *, int64_t, char *, int64_t, Tail...)>(code)(
                      n, v.a, v.inca, v.r1, v.inc1, tail...)
                : reinterpret_cast<void (*)(int32_t, char *, char *, Tail...)>(code)(n, v.a, v.r1, tail...);
    };
    if (row.kind == kernel_class::linear_frac)
        go(R(2), R(.5), R(1), R(.25));
    else if (row.kind == kernel_class::scalar && (row.element == 'c' || row.element == 'z'))
        go(&complex_scalar);
    else if (row.kind == kernel_class::scalar)
        go(scalar);
    else
        go();
}

inline void call_kernel(const kernel_row &row, int set, int32_t n, const vectors &v)
{
    row.element == 's' || row.element == 'c' ? call_with<float>(row, set, n, v)
                                             : call_with<double>(row, set, n, v);
}

/// Numbers of both kinds of element for which most functions have a value, and a few for which some have
/// none
inline void fill_arguments(const kernel_row &row, char *bytes, size_t size, double first)
{
    const bool single = row.element == 's' || row.element == 'c';
    const size_t count = size / (single ? 4 : 8);
    for (size_t i = 0; i < count; ++i) {
        const double x = first + .0043 * static_cast<double>(i * 37 % 199);
        if (single)
            reinterpret_cast<float *>(bytes)[i] = static_cast<float>(x);
        else
            reinterpret_cast<double *>(bytes)[i] = x;
    }
}
