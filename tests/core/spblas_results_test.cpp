// Sums and products of the classic sparse BLAS whose result is sparse, or dense of two sparse ones: stages,
// room, order of indices, against dense matrices.
#include "spblas_matrix.h"

namespace {
using namespace spblas_test;

constexpr int64_t canary = -77;

/// Compressed rows from 1, some elements longer than what is in them
template <class T>
struct rows_result {
    std::vector<int64_t> starts, across;
    std::vector<T> values;
    rows_result(int64_t rows, int64_t room)
        : starts(static_cast<size_t>(rows + 2), canary), across(static_cast<size_t>(room + 2), canary),
          values(static_cast<size_t>(room + 2), T(canary))
    {
    }
    int64_t rows() const { return static_cast<int64_t>(starts.size()) - 2; }
    int64_t count() const { return starts[starts.size() - 2] - 1; }
    bool untouched_from(int64_t place) const
    {
        const auto from = static_cast<size_t>(place);
        return starts.back() == canary &&
               std::all_of(across.begin() + place, across.end(), [](int64_t j) { return j == canary; }) &&
               std::all_of(values.begin() + static_cast<int64_t>(from), values.end(),
                           [](T v) { return v == T(canary); });
    }
};

/// One call of CSRADD or CSRMULTCSR
template <class T>
struct sparse_call {
    std::string which;
    char trans;
    stored_matrix<T> a, b;
    int64_t m, n, k;
    T beta;

    int64_t run(int64_t request, int64_t sort, int64_t room, rows_result<T> &c)
    {
        int64_t info = canary;
        addresses given{&trans, &request, &sort, &m, &n};
        const auto append = [&](std::initializer_list<const void *> more) {
            given.insert(given.end(), more);
        };
        if (which == "MULTCSR")
            append({&k});
        append({a.values.data(), a.integers[1].data(), a.integers[0].data()});
        if (which == "ADD")
            append({&beta});
        append({b.values.data(), b.integers[1].data(), b.integers[0].data(), c.values.data(),
                c.across.data(), c.starts.data(), &room, &info});
        EXPECT_EQ(call(name_of<T>("XKL_?CSR" + which), given), 0);
        return info;
    }
};

bool rises(const int64_t *first, const int64_t *end)
{
    return std::is_sorted(first, end);
}
template <class T>
bool rows_rise(const stored_matrix<T> &a)
{
    for (int64_t i = 0; i < a.m; ++i)
        if (!rises(&a.integers[1][a.integers[0][i] - 1], a.integers[1].data() + a.integers[0][i + 1] - 1))
            return false;
    return true;
}

template <class T>
void expect_rows(const rows_result<T> &c, const wide_matrix &expected, bool sorted)
{
    wide_matrix full(expected.rows, expected.columns);
    for (int64_t i = 0; i < c.rows(); ++i) {
        for (int64_t p = c.starts[i] - 1; p < c.starts[i + 1] - 1; ++p) {
            ASSERT_TRUE(c.across[p] >= 1 && c.across[p] <= expected.columns);
            ASSERT_EQ(full(i, c.across[p] - 1), wide(0)) << "an element twice";
            full(i, c.across[p] - 1) = widen(c.values[p]);
        }
        if (sorted) {
            EXPECT_TRUE(rises(c.across.data() + c.starts[i] - 1, c.across.data() + c.starts[i + 1] - 1));
        }
    }
    for (int64_t i = 0; i < expected.rows; ++i)
        for (int64_t j = 0; j < expected.columns; ++j)
            expect_close(
                scalar<T>(static_cast<double>(full(i, j).real()), static_cast<double>(full(i, j).imag())),
                expected(i, j), 2 * expected.columns, "C", i, j);
    EXPECT_TRUE(c.untouched_from(c.count()));
}

/// A sum or product, what it is of the dense matrices, and the same in one stage, in two, and without room
template <class T>
void expect_stages(sparse_call<T> given, const wide_matrix &expected)
{
    SCOPED_TRACE(given.which + " " + given.trans);
    for (const int64_t sort : {0, 1, 2, 3, 4, 5, 6, 7, 8}) {
        sparse_call<T> each = given;
        rows_result<T> counts(expected.rows, 0);
        EXPECT_EQ(each.run(1, sort, -1, counts), 0);
        EXPECT_TRUE(counts.untouched_from(0));
        const int64_t room = counts.count();
        rows_result<T> staged(expected.rows, room), whole(expected.rows, room);
        staged.starts = counts.starts;
        EXPECT_EQ(each.run(2, sort, -1, staged), 0);
        expect_rows(staged, expected, sort < 4 || sort > 7);
        EXPECT_EQ(rows_rise(each.a), sort == 1 || sort == 3 || sort == 4 || sort == 6) << sort;
        EXPECT_EQ(rows_rise(each.b), sort == 2 || sort == 3 || sort == 5 || sort == 6) << sort;
        EXPECT_EQ(given.run(0, 0, room, whole), 0);
        expect_rows(whole, expected, true);
    }
    rows_result<T> counts(expected.rows, 0);
    given.run(1, 0, 0, counts);
    // Room that ends with a row, and inside the next one
    const int64_t full_row = expected.rows / 2, room = counts.starts[full_row] - 1;
    for (const int64_t less : {room, counts.starts[full_row + 1] - 2}) {
        rows_result<T> short_of(expected.rows, less);
        EXPECT_EQ(given.run(0, 0, less, short_of), full_row + 1);
        EXPECT_TRUE(short_of.untouched_from(less));
    }
}

template <class T>
sample<T> random_sample(int64_t m, int64_t n, double density)
{
    return sample<T>(m, n, {'G', '*', '*', true}, density);
}

template <class T>
struct spblas_results : ::testing::Test {
};
TYPED_TEST_SUITE(spblas_results, all_types);

TYPED_TEST(spblas_results, sums)
{
    using T = TypeParam;
    for (const char trans : {'N', 'T', 'c'}) {
        const sample<T> a = random_sample<T>(40, 31, .3);
        const sample<T> b = trans == 'N' ? random_sample<T>(40, 31, .3) : random_sample<T>(31, 40, .3);
        const T beta = scalar<T>(-2, .5);
        wide_matrix expected = a.described();
        const wide_matrix other = op(b.described(), trans);
        for (size_t i = 0; i < expected.elements.size(); ++i)
            expected.elements[i] += widen(beta) * other.elements[i];
        expect_stages<T>({"ADD", trans, in_rows(a, false), in_rows(b, false), 40, 31, 0, beta}, expected);
    }
}

TYPED_TEST(spblas_results, products)
{
    using T = TypeParam;
    for (const char trans : {'N', 't', 'C'}) {
        const sample<T> a = random_sample<T>(30, 23, .2),
                        b = random_sample<T>(trans == 'N' ? 23 : 30, 41, .2);
        expect_stages<T>({"MULTCSR", trans, in_rows(a, false), in_rows(b, false), 30, 23, 41, T(0)},
                         op(a.described(), trans) * b.described());
    }
}

/// Enough work for several threads
TYPED_TEST(spblas_results, large_products)
{
    using T = TypeParam;
    const sample<T> a = random_sample<T>(200, 150, .2), b = random_sample<T>(150, 180, .2);
    const wide_matrix expected = a.described() * b.described();
    sparse_call<T> given{"MULTCSR", 'N', in_rows(a, false), in_rows(b, false), 200, 150, 180, T(0)};
    rows_result<T> c(200, 200 * 180);
    EXPECT_EQ(given.run(0, 3, 200 * 180, c), 0);
    expect_rows(c, expected, true);
}

TYPED_TEST(spblas_results, dense_products)
{
    using T = TypeParam;
    for (const char trans : {'N', 'T', 'C'})
        for (const int64_t k : {0, 7, 120}) {
            const int64_t m = 60, n = 50;
            const sample<T> a = random_sample<T>(m, n, .4),
                            b = random_sample<T>(trans == 'N' ? n : m, k, .4);
            const stored_matrix<T> left = in_rows(a, false), right = in_rows(b, false);
            const wide_matrix expected = op(a.described(), trans) * b.described();
            matrix<T> c(expected.rows, k);
            const matrix<T> old = c;
            c = output(c, T(0));
            call(name_of<T>("XKL_?CSRMULTD"),
                 {&trans, &m, &n, &k, left.values.data(), left.integers[1].data(), left.integers[0].data(),
                  right.values.data(), right.integers[1].data(), right.integers[0].data(), c.data(),
                  &c.ld});
            expect_update(c, T(1), expected, T(0), old, m, "C");
        }
}

TYPED_TEST(spblas_results, without_rows_or_elements)
{
    using T = TypeParam;
    const stored_matrix<T> none = in_rows(random_sample<T>(0, 5, 1), false);
    for (const std::string which : {"ADD", "MULTCSR"})
        for (const char trans : {'N', 'T'}) {
            const int64_t rows = which == "MULTCSR" && trans == 'T' ? 5 : 0;
            stored_matrix<T> b = none;
            b.integers[0].assign(7, 1);
            rows_result<T> c(rows, 0);
            sparse_call<T> given{which, trans, none, b, 0, 5, 3, T(1)};
            EXPECT_EQ(given.run(0, 0, 0, c), 0);
            EXPECT_EQ(c.count(), 0);
            EXPECT_TRUE(c.untouched_from(0));
        }
}

} // namespace
