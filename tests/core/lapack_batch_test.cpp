// The batches of LAPACK: what a batch makes of its matrices is what the plain routine makes of each of
// them, whatever their neighbours are: of another group, singular, in another thread's hands.
#include "blas_reference.h"

#include "lapack/call.h"
#include "service/service_entries.h"

#include <thread>

namespace {
using namespace blas_test;
using xkl::core::call;
namespace entries = xkl::core::entries;

/// Matrices at a distance from each other, with something between columns and matrices that must stay
template <class T>
struct stack {
    int64_t rows, columns, count, ld = rows + 1, stride = ld * columns + 3;
    std::vector<T> elements = std::vector<T>(static_cast<size_t>(stride * count + 1));

    stack(int64_t m, int64_t n, int64_t matrices) : rows(m), columns(n), count(matrices)
    {
        std::generate(elements.begin(), elements.end(), random_element<T>);
    }
    T *operator[](int64_t i) { return elements.data() + i * stride; }
    T &at(int64_t i, int64_t row, int64_t column) { return (*this)[i][row + column * ld]; }

    /// Makes each column outweigh the others in a row of its own; with `turned`, another one in each
    /// matrix, so that rows are interchanged.
    stack dominant(bool turned) const
    {
        stack result = *this;
        for (int64_t i = 0; i < count; ++i)
            for (int64_t k = 0; k < std::min(rows, columns); ++k)
                result.at(i, turned ? (k + i) % rows : k, k) += T(static_cast<real_of<T>>(2 * rows + 1));
        return result;
    }
    stack hermitian() const
    {
        stack result = dominant(false);
        for (int64_t i = 0; i < count; ++i)
            for (int64_t k = 0; k < rows; ++k)
                result.at(i, k, k) = std::real(result.at(i, k, k));
        return result;
    }
};

template <class T>
void expect_like(const std::vector<T> &actual, const std::vector<T> &expected, int64_t order,
                 const char *what)
{
    ASSERT_EQ(actual.size(), expected.size());
    real_of<T> largest = 0, apart = 0;
    for (size_t i = 0; i < actual.size(); ++i) {
        largest = std::max(largest, std::abs(expected[i]));
        if (!(std::abs(actual[i] - expected[i]) <= apart))
            apart = std::abs(actual[i] - expected[i]);
    }
    EXPECT_LE(apart,
              10 * static_cast<real_of<T>>(order) * std::numeric_limits<real_of<T>>::epsilon() * largest)
        << what;
}

std::vector<int64_t> integers(int64_t count, int64_t value = -7)
{
    return std::vector<int64_t>(static_cast<size_t>(count), value);
}

template <class T>
struct lapack_batches : ::testing::Test {
    static constexpr int64_t count = 150; // enough work for threads
    void SetUp() override { xkl_serv_set_num_threads(4); }
    void TearDown() override { xkl_serv_set_num_threads(0); }

    /// Factors each matrix by itself.
    static std::vector<int64_t> factor(stack<T> &a, std::vector<int64_t> &pivots, int64_t stridepiv)
    {
        std::vector<int64_t> info = integers(a.count);
        for (int64_t i = 0; i < a.count; ++i)
            call(entries::getrf<T>, a.rows, a.columns, a[i], a.ld, pivots.data() + i * stridepiv, &info[i]);
        return info;
    }
    /// A singular matrix among others
    static void spoil(stack<T> &a, int64_t i, int64_t column)
    {
        std::fill_n(a[i] + column * a.ld, a.rows, T(0));
    }
};
TYPED_TEST_SUITE(lapack_batches, all_types);

TYPED_TEST(lapack_batches, factors_in_strides)
{
    using T = TypeParam;
    for (const auto &[m, n] : {std::pair<int64_t, int64_t>{12, 12}, {17, 9}, {5, 20}, {1, 1}, {70, 66}}) {
        const int64_t steps = std::min(m, n), stridepiv = steps + 2;
        stack<T> a = stack<T>(m, n, this->count).dominant(true);
        this->spoil(a, 7, n / 3);
        this->spoil(a, 149, 0);
        stack<T> expected = a;
        auto pivots = integers(stridepiv * a.count), expected_pivots = pivots, info = integers(a.count);
        const auto expected_info = this->factor(expected, expected_pivots, stridepiv);
        call(entries::getrf_batch_strided<T>, m, n, a[0], a.ld, a.stride, pivots.data(), stridepiv, a.count,
             info.data());
        EXPECT_EQ(info, expected_info);
        EXPECT_EQ(info[149], 1);
        EXPECT_EQ(pivots, expected_pivots);
        expect_like(a.elements, expected.elements, m, "getrf");

        // Where no rows would be interchanged anyway
        stack<T> regular = stack<T>(m, n, this->count).dominant(false);
        expected = regular;
        this->factor(expected, pivots, stridepiv);
        info = integers(a.count);
        call(entries::getrfnp_batch_strided<T>, m, n, regular[0], a.ld, a.stride, a.count, info.data());
        EXPECT_EQ(info, integers(a.count, 0));
        expect_like(regular.elements, expected.elements, m, "getrfnp");
    }
}

TYPED_TEST(lapack_batches, solves_in_strides)
{
    using T = TypeParam;
    const int64_t n = 13, nrhs = 3, once = 0;
    for (const char trans : {'N', 't', 'C'})
        for (const bool shared : {false, true}) { // one matrix for all right-hand sides, or each its own
            stack<T> lu = stack<T>(n, n, this->count).dominant(true);
            auto pivots = integers(n * lu.count), info = integers(lu.count);
            this->factor(lu, pivots, n);
            stack<T> b(n, nrhs, this->count), expected = b;
            for (int64_t i = 0; i < b.count; ++i)
                call(entries::getrs<T>, trans, n, nrhs, lu[shared ? 0 : i], lu.ld,
                     pivots.data() + (shared ? 0 : i * n), expected[i], b.ld, &info[i]);
            info = integers(b.count);
            call(entries::getrs_batch_strided<T>, trans, n, nrhs, lu[0], lu.ld, shared ? once : lu.stride,
                 pivots.data(), shared ? once : n, b[0], b.ld, b.stride, b.count, info.data());
            EXPECT_EQ(info, integers(b.count, 0));
            expect_like(b.elements, expected.elements, n, "getrs");

            lu = stack<T>(n, n, this->count).dominant(false);
            this->factor(lu, pivots, n);
            expected = b;
            for (int64_t i = 0; i < b.count; ++i)
                call(entries::getrs<T>, trans, n, nrhs, lu[shared ? 0 : i], lu.ld, pivots.data(),
                     expected[i], b.ld, &info[i]);
            info = integers(b.count);
            call(entries::getrsnp_batch_strided<T>, trans, n, nrhs, lu[0], lu.ld, shared ? once : lu.stride,
                 b[0], b.ld, b.stride, b.count, info.data());
            EXPECT_EQ(info, integers(b.count, 0));
            expect_like(b.elements, expected.elements, n, "getrsnp");
        }
}

TYPED_TEST(lapack_batches, inverts_in_strides)
{
    using T = TypeParam;
    for (const int64_t n : {1, 6, 13, 90}) {
        stack<T> lu = stack<T>(n, n, n > 50 ? 9 : this->count).dominant(true);
        auto pivots = integers(n * lu.count), info = integers(lu.count), expected_info = info;
        this->spoil(lu, 5, n - 1);
        this->factor(lu, pivots, n);
        stack<T> inverse = lu, expected = lu, apart(n, n, lu.count), expected_apart = apart;
        std::vector<T> work(static_cast<size_t>(n));
        for (int64_t i = 0; i < lu.count; ++i) {
            call(entries::getri<T>, n, expected[i], lu.ld, pivots.data() + i * n, work.data(), n,
                 &expected_info[i]);
            for (int64_t j = 0; j < n && i != 5; ++j)
                std::copy_n(&expected.at(i, 0, j), n, &expected_apart.at(i, 0, j));
        }
        call(entries::getri_batch_strided<T>, n, inverse[0], lu.ld, lu.stride, pivots.data(), n, lu.count,
             info.data());
        EXPECT_EQ(info, expected_info);
        EXPECT_EQ(info[5], n);
        expect_like(inverse.elements, expected.elements, n, "getri");

        const stack<T> before = lu;
        info = integers(lu.count);
        call(entries::getri_oop_batch_strided<T>, n, lu[0], lu.ld, lu.stride, pivots.data(), n, apart[0],
             apart.ld, apart.stride, lu.count, info.data());
        EXPECT_EQ(info, expected_info);
        EXPECT_EQ(lu.elements, before.elements);
        expect_like(apart.elements, expected_apart.elements, n, "getri_oop");
    }
}

TYPED_TEST(lapack_batches, factors_positive_definite_matrices)
{
    using T = TypeParam;
    for (const char uplo : {'U', 'l'})
        for (const int64_t n : {1, 14, 70}) {
            stack<T> a = stack<T>(n, n, this->count).hermitian(), expected = a;
            a.at(3, n / 2, n / 2) = expected.at(3, n / 2, n / 2) = -1;
            auto info = integers(a.count), expected_info = info;
            for (int64_t i = 0; i < a.count; ++i)
                call(entries::potrf<T>, uplo, n, expected[i], a.ld, &expected_info[i]);
            call(entries::potrf_batch_strided<T>, uplo, n, a[0], a.ld, a.stride, a.count, info.data());
            EXPECT_EQ(info, expected_info);
            EXPECT_EQ(info[3], n / 2 + 1);
            std::copy_n(expected[3], a.stride, a[3]); // behind a bad pivot anything may stand
            expect_like(a.elements, expected.elements, n, "potrf");
        }
}

TYPED_TEST(lapack_batches, fits_least_squares)
{
    using T = TypeParam;
    const int64_t nrhs = 2, lwork = 4000;
    std::vector<T> work(lwork);
    for (const auto &[m, n] : {std::pair<int64_t, int64_t>{30, 7}, {7, 30}, {60, 60}, {1, 1}, {4, 0}})
        for (const char trans : {'N', is_complex<T> ? 'c' : 't'}) {
            stack<T> a = stack<T>(m, n, this->count).dominant(true), b(std::max(m, n), nrhs, this->count);
            if (n > 0)
                this->spoil(a, 11, 0);
            stack<T> expected_a = a, expected = b;
            auto info = integers(a.count), expected_info = info;
            for (int64_t i = 0; i < a.count; ++i)
                call(entries::gels<T>, trans, m, n, nrhs, expected_a[i], a.ld, expected[i], b.ld,
                     work.data(), lwork, &expected_info[i]);
            call(entries::gels_batch_strided<T>, trans, m, n, nrhs, a[0], a.ld, a.stride, b[0], b.ld,
                 b.stride, a.count, info.data());
            EXPECT_EQ(info, expected_info);
            expect_like(a.elements, expected_a.elements, m + n, "gels, factors");
            expect_like(b.elements, expected.elements, m + n, "gels, solutions");
        }
}

/// Groups of different shapes, some empty: the matrices of each are a stack.
template <class T>
struct grouped {
    static constexpr int64_t groups = 5;
    static constexpr int64_t sizes[groups] = {3, 0, 120, 1, 9}, n[groups] = {20, 9, 12, 70, 1};
    std::array<int64_t, groups> m, ld;
    std::vector<stack<T>> stacks;
    std::vector<T *> addresses;
    std::vector<std::vector<int64_t>> pivots; // of each matrix
    std::vector<int64_t *> pivot_addresses;

    grouped(bool square, bool turned)
    {
        for (int64_t g = 0; g < groups; ++g) {
            m[g] = square ? n[g] : n[g] + 2 * g - 3;
            stacks.push_back(stack<T>(m[g], n[g], sizes[g]).dominant(turned));
            ld[g] = stacks[g].ld;
            pivots.insert(pivots.end(), sizes[g], integers(n[g] + 5));
        }
        point();
    }
    grouped(const grouped &other)
        : m(other.m), ld(other.ld), stacks(other.stacks), addresses(other.addresses), pivots(other.pivots),
          pivot_addresses(other.pivot_addresses)
    {
        point();
    }
    void point()
    {
        addresses.clear();
        pivot_addresses.clear();
        for (stack<T> &each : stacks)
            for (int64_t i = 0; i < each.count; ++i)
                addresses.push_back(each[i]);
        for (std::vector<int64_t> &each : pivots)
            pivot_addresses.push_back(each.data());
    }
    T *const *in() const { return addresses.data(); }
    int64_t *const *ipiv() const { return pivot_addresses.data(); }
    int64_t count() const { return static_cast<int64_t>(addresses.size()); }

    /// body(group, matrix) for all, one after the other
    template <class Body>
    void each(const Body &body)
    {
        for (int64_t g = 0, i = 0; g < groups; ++g)
            for (int64_t of_group = 0; of_group < sizes[g]; ++of_group, ++i)
                body(g, i);
    }
    std::vector<int64_t> factor()
    {
        std::vector<int64_t> info = integers(count());
        each([&](int64_t g, int64_t i) {
            call(entries::getrf<T>, m[g], n[g], addresses[i], ld[g], pivots[i].data(), &info[i]);
        });
        return info;
    }
    void expect(const grouped &expected, const char *what) const
    {
        for (int64_t g = 0; g < groups; ++g)
            expect_like(stacks[g].elements, expected.stacks[g].elements, n[g] + m[g], what);
        EXPECT_EQ(pivots, expected.pivots);
    }
};

TYPED_TEST(lapack_batches, factors_groups_for_several_callers_at_once)
{
    using T = TypeParam;
    grouped<T> original(false, true);
    this->spoil(original.stacks[2], 100, 4);
    grouped<T> expected = original;
    const auto expected_info = expected.factor();
    EXPECT_EQ(expected_info[103], 5);
    EXPECT_EQ(std::count(expected_info.begin(), expected_info.end(), 0), original.count() - 1);

    std::vector<grouped<T>> results(3, original);
    std::vector<std::vector<int64_t>> infos(3, integers(original.count()));
    std::vector<std::thread> callers;
    for (size_t caller = 0; caller < results.size(); ++caller)
        callers.emplace_back([&, caller] {
            grouped<T> &a = results[caller];
            call(entries::getrf_batch<T>, a.m.data(), a.n, a.in(), a.ld.data(), a.ipiv(), a.groups, a.sizes,
                 infos[caller].data());
        });
    for (std::thread &each : callers)
        each.join();
    for (const auto &each : infos)
        EXPECT_EQ(each, expected_info);
    for (const grouped<T> &each : results)
        each.expect(expected, "getrf");
}

TYPED_TEST(lapack_batches, factors_groups_without_pivoting)
{
    using T = TypeParam;
    grouped<T> a(false, false), expected = a;
    auto info = integers(a.count());
    expected.factor();
    expected.pivots = a.pivots;
    call(entries::getrfnp_batch<T>, a.m.data(), a.n, a.in(), a.ld.data(), a.groups, a.sizes, info.data());
    EXPECT_EQ(info, integers(a.count(), 0));
    a.expect(expected, "getrfnp");

    a.stacks[2].at(50, 0, 0) = 0;
    call(entries::getrfnp_batch<T>, a.m.data(), a.n, a.in(), a.ld.data(), a.groups, a.sizes, info.data());
    EXPECT_EQ(std::count(info.begin(), info.end(), 0), a.count() - 1);
    EXPECT_EQ(info[53], 1);
}

TYPED_TEST(lapack_batches, inverts_groups)
{
    using T = TypeParam;
    grouped<T> lu(true, true);
    this->spoil(lu.stacks[2], 100, 4);
    lu.factor();
    grouped<T> inverse = lu, expected = inverse;
    std::vector<T> work(70);
    auto info = integers(lu.count()), expected_info = info;
    lu.each([&](int64_t g, int64_t i) {
        call(entries::getri<T>, lu.n[g], expected.in()[i], lu.ld[g], lu.ipiv()[i], work.data(), lu.n[g],
             &expected_info[i]);
    });
    EXPECT_EQ(expected_info[103], 5);
    call(entries::getri_oop_batch<T>, lu.n, lu.in(), lu.ld.data(), lu.ipiv(), inverse.in(),
         inverse.ld.data(), lu.groups, lu.sizes, info.data());
    EXPECT_EQ(info, expected_info);
    inverse.expect(expected, "getri_oop");
}

TYPED_TEST(lapack_batches, do_nothing_without_matrices)
{
    using T = TypeParam;
    T *const nowhere = nullptr;
    int64_t *const untouched = nullptr;
    T *const *no_matrices = nullptr;
    int64_t *const *no_pivots = nullptr;
    const int64_t none[] = {0, 0}, two = 2, n[] = {3, 3};
    for (const int64_t groups : {int64_t{0}, two}) {
        call(entries::getrf_batch<T>, n, n, no_matrices, n, no_pivots, groups, none, untouched);
        call(entries::getri_oop_batch<T>, n, no_matrices, n, no_pivots, no_matrices, n, groups, none,
             untouched);
    }
    const int64_t batch = 0, three = 3, nine = 9;
    call(entries::getrf_batch_strided<T>, three, three, nowhere, three, nine, untouched, three, batch,
         untouched);
    call(entries::getri_batch_strided<T>, three, nowhere, three, nine, untouched, three, batch, untouched);
    call(entries::gels_batch_strided<T>, 'N', three, three, three, nowhere, three, nine, nowhere, three,
         nine, batch, untouched);
    auto info = integers(2); // matrices without elements are factored all the same
    call(entries::getri_batch_strided<T>, int64_t{0}, nowhere, three, nine, untouched, three, two,
         info.data());
    EXPECT_EQ(info, integers(2, 0));
}

} // namespace
