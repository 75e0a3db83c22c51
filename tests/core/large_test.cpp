// Vectors with more than 2^31 elements. They are mapped and mostly never written, so that they take address
// space and hardly any memory: the system backs pages that are only read with one page of zeros.
#include "xkl.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sys/mman.h>

namespace {

class large_vector : public testing::Test {
  protected:
    static constexpr int64_t n = (int64_t{1} << 31) + 8;
    static constexpr std::size_t bytes = static_cast<std::size_t>(n) * sizeof(float);
    float *x = nullptr;

    void SetUp() override
    {
        void *mapped = mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (mapped == MAP_FAILED)
            GTEST_SKIP() << "no address space for " << bytes << " bytes";
        x = static_cast<float *>(mapped);
        x[0] = -1;
        for (int64_t i = n - 8; i < n; ++i)
            x[i] = 1;
        x[n - 3] = -4;
    }

    void TearDown() override
    {
        if (x)
            munmap(x, bytes);
    }
};

TEST_F(large_vector, sums_and_places_count_every_element)
{
    const int64_t one = 1;
    EXPECT_EQ(sasum(&n, x, &one), 1 + 7 + 4);
    EXPECT_EQ(isamax(&n, x, &one), n - 2) << "places count from 1 in Fortran";
    EXPECT_EQ(cblas_isamax(n, x, 1), static_cast<decltype(cblas_isamax(n, x, 1))>(n - 3))
        << "and from 0 in C";
    EXPECT_FLOAT_EQ(cblas_snrm2(n, x, 1), std::sqrt(1.0f + 7 + 16));
}

TEST_F(large_vector, matrix_whose_columns_lie_further_apart)
{
    // Two columns of one element, more than 2^31 elements apart.
    const int64_t rows = 1, columns = 2, lda = n - 3, one = 1;
    const float alpha = 1, beta = 0, v[2] = {2, 3};
    float y = 0;
    sgemv("N", &rows, &columns, &alpha, x, &lda, v, &one, &beta, &y, &one);
    EXPECT_EQ(y, -1 * 2 + -4 * 3);
}

} // namespace
