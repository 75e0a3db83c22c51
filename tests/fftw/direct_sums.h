// Transforms as the sums that define them, in long double: what results are compared with.
#pragma once

#include "fftw3.h"

#include <complex>
#include <numbers>
#include <vector>

namespace direct {

using number = std::complex<long double>;
using numbers = std::vector<number>;

/// Row k of the matrix of a one-dimensional transform of n elements times x, x strided.
using row_product = number (*)(const number *x, int stride, int n, int k);

inline number turned(long long numerator, long long denominator)
{
    const long double angle = 2 * std::numbers::pi_v<long double> *
                              static_cast<long double>(numerator % denominator) /
                              static_cast<long double>(denominator);
    return {std::cos(angle), std::sin(angle)};
}

template <int sign>
number fourier(const number *x, int stride, int n, int k)
{
    number sum = 0;
    for (int j = 0; j < n; ++j)
        sum += x[j * stride] * turned(static_cast<long long>(sign) * j * k, n);
    return sum;
}

/// cos(pi (j + a) (k + b) / m) or sin, with a and b in halves: the cosine and sine transforms differ in
/// these, and in the weights of their first and last elements.
inline long double wave(bool sine, int twice_j, int twice_k, int m)
{
    const number at = turned(static_cast<long long>(twice_j) * twice_k, 8LL * m);
    return sine ? at.imag() : at.real();
}

inline number real_to_real(fftw_r2r_kind kind, const number *x, int stride, int n, int k)
{
    const auto sum = [&](bool sine, int j_start, int k_start, int m, int first, int last) {
        number total = 0;
        for (int j = first; j < last; ++j)
            total += 2.0L * x[j * stride] * wave(sine, 2 * j + j_start, 2 * k + k_start, m);
        return total;
    };
    const number head = x[0], tail = x[(n - 1) * stride];
    const long double alternating = k % 2 ? -1 : 1;
    switch (kind) {
    case FFTW_R2HC: {
        const number at = fourier<-1>(x, stride, n, k <= n / 2 ? k : n - k);
        return k <= n / 2 ? at.real() : at.imag();
    }
    case FFTW_HC2R: {
        number total = 0;
        for (int j = 0; j < n; ++j) {
            const int pair = j <= n / 2 ? j : n - j;
            const long double imaginary = pair == 0 || 2 * pair == n ? 0 : x[(n - pair) * stride].real();
            const number full{x[pair * stride].real(), j <= n / 2 ? imaginary : -imaginary};
            total += full * turned(static_cast<long long>(j) * k, n);
        }
        return total.real();
    }
    case FFTW_DHT: {
        const number at = fourier<+1>(x, stride, n, k);
        return at.real() + at.imag();
    }
    case FFTW_REDFT00:
        return head + alternating * tail + sum(false, 0, 0, n - 1, 1, n - 1);
    case FFTW_REDFT10:
        return sum(false, 1, 0, n, 0, n);
    case FFTW_REDFT01:
        return head + sum(false, 0, 1, n, 1, n);
    case FFTW_REDFT11:
        return sum(false, 1, 1, n, 0, n);
    case FFTW_RODFT00:
        return sum(true, 2, 2, n + 1, 0, n);
    case FFTW_RODFT10:
        return sum(true, 1, 2, n, 0, n);
    case FFTW_RODFT01:
        return alternating * tail + sum(true, 2, 1, n, 0, n - 1);
    case FFTW_RODFT11:
        return sum(true, 1, 1, n, 0, n);
    }
    return 0;
}

/// Applies `row(x, stride, n, k, dimension)` along every dimension of a row-major array.
template <class Row>
numbers along_all(numbers x, const std::vector<int> &lengths, const Row &row)
{
    int stride = static_cast<int>(x.size());
    for (size_t dimension = 0; dimension < lengths.size(); ++dimension) {
        const int n = lengths[dimension], block = stride;
        stride /= n;
        numbers result(x.size());
        for (int start = 0; start < static_cast<int>(x.size()); start += block)
            for (int inner = 0; inner < stride; ++inner)
                for (int k = 0; k < n; ++k)
                    result[start + k * stride + inner] = row(&x[start + inner], stride, n, k, dimension);
        x = result;
    }
    return x;
}

inline numbers fourier_all(const numbers &x, const std::vector<int> &lengths, int sign)
{
    return along_all(x, lengths, [sign](const number *from, int stride, int n, int k, size_t) {
        return sign == FFTW_FORWARD ? fourier<-1>(from, stride, n, k) : fourier<+1>(from, stride, n, k);
    });
}

} // namespace direct
