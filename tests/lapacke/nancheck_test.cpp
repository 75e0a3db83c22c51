// Every NaN check against the definition of its storage scheme: a NaN in any element that is stored is found,
// and nothing else is, for infinities and huge values look like one to a sum.
#include "guarded_array.h"
#include "helper_call.h"
#include "xkl_lapacke_helpers.h"

#include <limits>

namespace {

template <class R>
constexpr R nan_of = std::numeric_limits<R>::quiet_NaN();

/// Values that are none, by turns; sums of them would be.
template <class R>
R harmless(int64_t k)
{
    using limits = std::numeric_limits<R>;
    const R values[] = {limits::infinity(),   limits::max(), R(0),          -limits::infinity(),
                        limits::denorm_min(), R(-1),         -limits::max()};
    return values[k % 7];
}

template <class R>
void expect_exact(const routine_row &row, const stored_matrix &a)
{
    const helper check(row);
    const int64_t parts = row.name[0] == 'C' || row.name[0] == 'Z' ? 2 : 1;
    guarded_array<R> array(a.extent() * parts);
    std::fill(array.all().begin(), array.all().end(), nan_of<R>);
    for (const int64_t place : a.places())
        for (int64_t part = 0; place >= 0 && part < parts; ++part)
            array[place * parts + part] = harmless<R>(place + part);
    for (const bool twin : {false, true})
        EXPECT_EQ(check(twin, a, array.data()), 0) << row.name << " of " << a.text();
    for (const int64_t place : a.places())
        for (int64_t part = 0; place >= 0 && part < parts; ++part) {
            const R kept = std::exchange(array[place * parts + part], nan_of<R>);
            const int64_t found = check(place % 2 == 0, a, array.data());
            array[place * parts + part] = kept;
            ASSERT_EQ(found, 1) << row.name << " of " << a.text() << ", place " << place << " part "
                                << part;
        }
}

void for_each_check(auto &&visit)
{
    for (const routine_row &row : helper_rows())
        if (std::string(row.name).ends_with("_NANCHECK") && !scheme_of(row.name).empty())
            visit(row);
}

void expect_exact_in_type(const routine_row &row, const stored_matrix &a)
{
    if (row.name[0] == 'S' || row.name[0] == 'C')
        expect_exact<float>(row, a);
    else
        expect_exact<double>(row, a);
}

TEST(nancheck, finds_any_stored_element_and_no_other)
{
    int matrices = 0;
    for_each_check([&](const routine_row &row) {
        for (const stored_matrix &a : matrices_for(row)) {
            expect_exact_in_type(row, a);
            ++matrices;
        }
    });
    EXPECT_GT(matrices, 4000);
}

/// Checks without layout (sp, pf...) look at all that is packed, where nothing tells the diagonal.
TEST(nancheck, bad_layouts_letters_and_null_are_no_nan)
{
    for_each_check([](const routine_row &row) {
        const helper check(row);
        stored_matrix a{.scheme = "ge", .m = 3, .n = 3, .kl = 1, .ku = 1, .ld = 4};
        std::vector<double> array(100, nan_of<double>);
        ASSERT_EQ(check(false, a, array.data()), 1) << row.name;
        EXPECT_EQ(check(false, a, nullptr), 0) << row.name;
        const auto expect_none = [&](const char *name, auto member, auto bad) {
            if (!has_argument(row, name))
                return;
            const auto kept = std::exchange(a.*member, bad);
            EXPECT_EQ(check(false, a, array.data()), 0) << row.name << " with a bad " << name;
            EXPECT_EQ(check(true, a, array.data()), 0) << row.name << "_64 with a bad " << name;
            a.*member = kept;
        };
        for (const int bad : {0, 100, 103, -101})
            expect_none("layout", &stored_matrix::layout, bad);
        expect_none("direct", &stored_matrix::direct, 'U');
        expect_none("transr", &stored_matrix::transr, 'R');
        expect_none("uplo", &stored_matrix::uplo, 'X');
        expect_none("diag", &stored_matrix::diag, 'L');
    });
}

TEST(nancheck, sizes_without_elements_read_nothing)
{
    guarded_array<double> none(0);
    for_each_check([&](const routine_row &row) {
        const helper check(row);
        for (const int64_t n : {0, -1, -5})
            for (const stored_matrix &pattern : matrices_for(row)) {
                stored_matrix a = pattern;
                (n == 0 && has_argument(row, "m") ? a.m : a.n) = n;
                EXPECT_EQ(check(false, a, none.data()), 0) << row.name << " of " << a.text();
            }
    });
}

/// Lines end where the leading dimension says that the next begins, and never reach behind the array.
TEST(nancheck, too_small_leading_dimensions_bound_what_is_read)
{
    const double nan = nan_of<double>;
    double a[12] = {};
    a[7] = nan; // row 2, column 4
    EXPECT_EQ(LAPACKE_dge_nancheck(101, 3, 4, a, 4), 1);
    guarded_array<double> exact(9);
    EXPECT_EQ(LAPACKE_dge_nancheck(101, 3, 4, exact.data(), 3), 0);
    EXPECT_EQ(LAPACKE_dge_nancheck(102, 4, 3, exact.data(), 3), 0);
    for (const char uplo : {'U', 'L'})
        for (const int layout : {101, 102}) {
            EXPECT_EQ(LAPACKE_dsy_nancheck(layout, uplo, 3, exact.data(), 3), 0);
            EXPECT_EQ(LAPACKE_dsb_nancheck(layout, uplo, 3, 50, exact.data(), layout == 101 ? 0 : 3), 0);
        }
    EXPECT_EQ(LAPACKE_dge_nancheck(102, 4, 3, exact.data(), 0), 0);
    EXPECT_EQ(LAPACKE_dge_nancheck(102, 4, 3, exact.data(), -2), 0);
    exact[8] = nan;
    EXPECT_EQ(LAPACKE_dge_nancheck(101, 3, 4, exact.data(), 3), 1);
}

TEST(nancheck, vectors_in_every_direction)
{
    for (const int64_t step : {1, 2, 3, 5}) // 2 and more: an element in each step counts
        for (const int64_t n : {1, 2, 5, 16, 17, 31, 32, 33, 40, 100, 1000}) {
            const int64_t extent = (n - 1) * step + 1;
            guarded_array<double> real(extent);
            guarded_array<float> complex(2 * extent);
            for (int64_t k = 0; k < 2 * extent; ++k) {
                (k < extent ? real[k] : real[0]) = harmless<double>(k);
                complex[k] = harmless<float>(k);
            }
            auto *pairs = reinterpret_cast<lapack_complex_float *>(complex.data());
            for (int64_t k = 0; k < extent; ++k)
                for (const int64_t incx : {step, -step}) {
                    const int64_t expected = k % step == 0;
                    const double kept = std::exchange(real[k], nan_of<double>);
                    ASSERT_EQ(LAPACKE_d_nancheck(n, real.data(), incx), expected) << n << " " << k;
                    real[k] = kept;
                    for (const int64_t part : {0, 1}) {
                        const float old = std::exchange(complex[2 * k + part], nan_of<float>);
                        ASSERT_EQ(LAPACKE_c_nancheck_64(n, pairs, incx), expected) << n << " " << k;
                        complex[2 * k + part] = old;
                    }
                }
            EXPECT_EQ(LAPACKE_d_nancheck(n, real.data(), step), 0);
            EXPECT_EQ(LAPACKE_c_nancheck(n, pairs, -step), 0);
        }
}

TEST(nancheck, vector_without_increment_is_its_first_element)
{
    double x[5] = {1, nan_of<double>, 1, 1, nan_of<double>};
    EXPECT_EQ(LAPACKE_d_nancheck(5, x, 0), 0);
    EXPECT_EQ(LAPACKE_d_nancheck(5, x + 1, 0), 1);
    EXPECT_EQ(LAPACKE_d_nancheck(5, nullptr, 0), 0);
    EXPECT_EQ(LAPACKE_d_nancheck(0, x + 1, 1), 0);
    EXPECT_EQ(LAPACKE_d_nancheck(-3, x + 1, 2), 0);
    EXPECT_EQ(LAPACKE_d_nancheck(1, x, INT64_MIN), 0);
}

/// The three arrays have their own lengths; the diagonal of pt is real.
template <class D, class E>
void expect_tridiagonal(int64_t (*gt)(int64_t, const E *, const E *, const E *),
                        int64_t (*st)(int64_t, const E *, const E *),
                        int64_t (*pt)(int64_t, const D *, const E *), E bad)
{
    for (const int64_t n : {1, 2, 5, 40}) {
        guarded_array<E> dl(n - 1), d(n), du(n - 1);
        guarded_array<D> real(n);
        const auto expect = [&](int64_t found, int64_t symmetric, int64_t positive) {
            EXPECT_EQ(gt(n, dl.data(), d.data(), du.data()), found);
            EXPECT_EQ(st(n, d.data(), du.data()), symmetric);
            EXPECT_EQ(pt(n, real.data(), du.data()), positive);
        };
        expect(0, 0, 0);
        d[n - 1] = bad;
        expect(1, 1, 0);
        d[n - 1] = {};
        real[n - 1] = nan_of<D>;
        expect(0, 0, 1);
        real[n - 1] = 0;
        if (n == 1)
            continue;
        dl[n - 2] = bad;
        expect(1, 0, 0);
        dl[n - 2] = {};
        du[n - 2] = bad;
        expect(1, 1, 1);
    }
    EXPECT_EQ(gt(3, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(st(3, nullptr, nullptr), 0);
    EXPECT_EQ(pt(3, nullptr, nullptr), 0);
}

TEST(nancheck, tridiagonal_arrays)
{
    const float single = nan_of<float>;
    const double bad = nan_of<double>;
    expect_tridiagonal<float>(LAPACKE_sgt_nancheck, LAPACKE_sst_nancheck, LAPACKE_spt_nancheck, single);
    expect_tridiagonal<double>(LAPACKE_dgt_nancheck_64, LAPACKE_dst_nancheck_64, LAPACKE_dpt_nancheck_64,
                               bad);
    expect_tridiagonal<float>(LAPACKE_cgt_nancheck, LAPACKE_cst_nancheck, LAPACKE_cpt_nancheck,
                              lapack_make_complex_float(0, single));
    expect_tridiagonal<double>(LAPACKE_zgt_nancheck, LAPACKE_zst_nancheck, LAPACKE_zpt_nancheck,
                               lapack_make_complex_double(bad, 0));
}

TEST(lsame, compares_letters_in_either_case)
{
    EXPECT_NE(LAPACKE_lsame('u', 'U'), 0);
    EXPECT_NE(LAPACKE_lsame('L', 'L'), 0);
    EXPECT_EQ(LAPACKE_lsame('U', 'L'), 0);
}

} // namespace
