// Families of matrices for the tests of compact routines: plain ones, packed by the library and taken apart
// again.
#pragma once

#include "blas_reference.h"

namespace blas_test {

BLAS_ENTRY(xkl_, gepack_compact);
BLAS_ENTRY(xkl_, geunpack_compact);

inline constexpr int32_t layouts[] = {CblasColMajor, CblasRowMajor},
                         formats[] = {XKL_COMPACT_128, XKL_COMPACT_256, XKL_COMPACT_512};

/// nm matrices, m by n, in the routine's layout: a row-major matrix is kept as its transpose
template <class T>
struct family {
    int32_t layout, format;
    int64_t m, n, nm, ld;
    std::vector<matrix<T>> stored;

    family(int32_t in_layout, int32_t in_format, int64_t rows, int64_t columns, int64_t count)
        : layout(in_layout), format(in_format), m(rows), n(columns), nm(count)
    {
        for (int64_t i = 0; i < nm; ++i)
            stored.push_back(layout == CblasColMajor ? matrix<T>(m, n) : matrix<T>(n, m));
        ld = (layout == CblasColMajor ? m : n) + 1;
    }

    T &at(int64_t matrix, int64_t i, int64_t j)
    {
        return layout == CblasColMajor ? stored[matrix](i, j) : stored[matrix](j, i);
    }
    /// Matrix i, by columns
    matrix<T> plain(int64_t i)
    {
        matrix<T> turned(m, n);
        for (int64_t v = 0; v < n; ++v)
            for (int64_t u = 0; u < m; ++u)
                turned(u, v) = at(i, u, v);
        return turned;
    }
    std::vector<T *> addresses()
    {
        std::vector<T *> each;
        for (matrix<T> &one : stored)
            each.push_back(one.data());
        return each;
    }

    /// A canary stands behind the end that xkl_compact_size gives.
    std::vector<real_of<T>> packed()
    {
        const int64_t across = layout == CblasColMajor ? n : m;
        std::vector<real_of<T>> place(
            xkl_compact_size(ld, across, format, nm, sizeof(real_of<T>), is_complex<T> ? 2 : 1) + 1, -77);
        const std::vector<T *> from = addresses();
        xkl_gepack_compact<T>(&layout, &m, &n, from.data(), &stored[0].ld, place.data(), &ld, &format, &nm);
        EXPECT_EQ(place.back(), -77);
        return place;
    }
    void unpack(const std::vector<real_of<T>> &place)
    {
        const std::vector<T *> to = addresses();
        EXPECT_EQ(place.back(), -77);
        xkl_geunpack_compact<T>(&layout, &m, &n, to.data(), &stored[0].ld, place.data(), &ld, &format, &nm);
        for (const matrix<T> &each : stored)
            EXPECT_TRUE(each.canaries_live());
    }
};

} // namespace blas_test
