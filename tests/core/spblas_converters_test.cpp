// The converters of the classic sparse BLAS: what they make of random matrices, both ways and in every base,
// which arrays their jobs leave alone, and what info tells.
#include "spblas_matrix.h"

namespace {
using namespace spblas_test;

constexpr int64_t canary = -77;

/// Results are longer than what they need; what is not written stays.
std::vector<int64_t> integers(int64_t count)
{
    return std::vector<int64_t>(static_cast<size_t>(count + 2), canary);
}
template <class T>
std::vector<T> elements(int64_t count)
{
    return std::vector<T>(static_cast<size_t>(count + 2), T(canary));
}
/// Whether a result stays as it was from a place on
template <class T>
bool untouched(const std::vector<T> &result, int64_t from = 0)
{
    return std::all_of(result.begin() + from, result.end(), [](T each) { return each == T(canary); });
}

template <class T>
struct rows {
    std::vector<T> values;
    std::vector<int64_t> across, starts;

    explicit rows(const sample<T> &a)
    {
        const stored_matrix<T> stored = in_rows(a, false);
        values = stored.values;
        across = stored.integers[1];
        starts = stored.integers[0];
    }
    rows(int64_t lines, int64_t room)
        : values(elements<T>(room)), across(integers(room)), starts(integers(lines + 1))
    {
    }
    /// The dense matrix, by columns; nothing may stand behind its elements
    std::vector<T> dense(int64_t m, int64_t n, int64_t base) const
    {
        std::vector<T> full(static_cast<size_t>(m * n));
        EXPECT_EQ(starts[0], base);
        for (int64_t i = 0; i < m; ++i)
            for (int64_t p = starts[i] - base; p < starts[i + 1] - base; ++p)
                full[static_cast<size_t>(i + (across[p] - base) * m)] += values[p];
        return full;
    }
    int64_t count(int64_t m) const { return starts[m] - starts[0]; }
    bool sorted(int64_t m) const
    {
        for (int64_t i = 0; i < m; ++i)
            if (!std::is_sorted(across.begin() + (starts[i] - starts[0]),
                                across.begin() + (starts[i + 1] - starts[0])))
                return false;
        return true;
    }
    void expect_end(int64_t m) const
    {
        EXPECT_TRUE(untouched(values, count(m)) && untouched(across, count(m)) && untouched(starts, m + 1));
    }
};

/// Calls body(job, matrix, base of rows, base of the other storage).
template <class T, class Body>
void for_each_base(const Body &body)
{
    for (const int64_t from : {0, 1})
        for (const int64_t to : {0, 1}) {
            std::vector<int64_t> job = {0, from, to, 2, 1000, 1, 0, 0};
            body(job, sample<T>(9, 9, {'G', '*', '*', from == 1}), from, to);
        }
}

template <class T>
struct spblas_converters : ::testing::Test {
};
TYPED_TEST_SUITE(spblas_converters, all_types);

TYPED_TEST(spblas_converters, elements_and_places)
{
    using T = TypeParam;
    const std::string name = name_of<T>("XKL_?CSRCOO");
    for_each_base<T>([&](std::vector<int64_t> job, const sample<T> &a, int64_t from, int64_t to) {
        rows<T> csr(a);
        const int64_t n = a.rows, count = csr.count(n);
        const auto expected = csr.dense(n, n, from);
        for (job[5] = 0; job[5] <= 3; ++job[5]) {
            auto values = elements<T>(count);
            auto row = integers(count), column = integers(count);
            int64_t nnz = canary, info = canary;
            call(name, {job.data(), &n, csr.values.data(), csr.across.data(), csr.starts.data(), &nnz,
                        values.data(), row.data(), column.data(), &info});
            EXPECT_EQ(info, job[5] == 0 ? -6 : 0);
            EXPECT_EQ(untouched(row), job[5] < 1);
            EXPECT_EQ(untouched(column), job[5] < 2);
            EXPECT_EQ(untouched(values), job[5] < 3);
            EXPECT_TRUE(untouched(row, count) && untouched(column, count) && untouched(values, count));
            if (job[5] < 3)
                continue;
            EXPECT_EQ(nnz, count);
            std::vector<T> full(expected.size());
            for (int64_t i = 0; i < count; ++i)
                full[static_cast<size_t>(row[i] - to + (column[i] - to) * n)] += values[i];
            EXPECT_EQ(full, expected);
        }
        job[5] = 3;
        job[4] = count - 1;
        int64_t nnz = canary, info = canary;
        call(name, {job.data(), &n, csr.values.data(), csr.across.data(), csr.starts.data(), &nnz, nullptr,
                    nullptr, nullptr, &info});
        EXPECT_EQ(info, 1);
        EXPECT_EQ(nnz, count);
    });
}

TYPED_TEST(spblas_converters, elements_back_to_rows)
{
    using T = TypeParam;
    const std::string name = name_of<T>("XKL_?CSRCOO");
    for_each_base<T>([&](std::vector<int64_t> job, sample<T> a, int64_t from, int64_t to) {
        const auto expected = rows<T>(a).dense(a.rows, a.rows, from);
        a.is.from_one = to == 1;
        const stored_matrix<T> coo = by_elements(a);
        const int64_t n = a.rows, nnz = coo.integers[2][0];
        rows<T> csr(n, nnz);
        const auto run = [&](int64_t direction, int64_t wanted) {
            int64_t info = canary;
            job[0] = direction;
            job[5] = wanted;
            call(name, {job.data(), &n, csr.values.data(), csr.across.data(), csr.starts.data(), &nnz,
                        coo.values.data(), coo.integers[0].data(), coo.integers[1].data(), &info});
            return info;
        };
        EXPECT_EQ(run(1, 3), -6);
        EXPECT_EQ(run(1, 1), 0);
        EXPECT_TRUE(untouched(csr.values) && untouched(csr.across));
        const auto starts = csr.starts;
        EXPECT_EQ(run(1, 2), 0);
        EXPECT_EQ(csr.starts, starts);
        EXPECT_EQ(csr.dense(n, n, from), expected);
        EXPECT_EQ(run(2, 0), 0);
        EXPECT_TRUE(csr.sorted(n));
        EXPECT_EQ(csr.dense(n, n, from), expected);
        csr.expect_end(n);
    });
}

TYPED_TEST(spblas_converters, columns)
{
    using T = TypeParam;
    const std::string name = name_of<T>("XKL_?CSRCSC");
    for_each_base<T>([&](std::vector<int64_t> job, const sample<T> &a, int64_t from, int64_t to) {
        rows<T> csr(a);
        const int64_t n = a.rows, count = csr.count(n);
        rows<T> csc(n, count), back(n, count);
        int64_t info = canary;
        const auto run = [&](int64_t backwards, int64_t with_values, rows<T> &left) {
            job[0] = backwards;
            job[5] = with_values;
            call(name, {job.data(), &n, left.values.data(), left.across.data(), left.starts.data(),
                        csc.values.data(), csc.across.data(), csc.starts.data(), &info});
            EXPECT_EQ(info, 0);
        };
        run(0, 0, csr);
        EXPECT_TRUE(untouched(csc.values));
        run(0, 1, csr);
        EXPECT_TRUE(csc.sorted(n));
        csc.expect_end(n);
        const auto expected = csr.dense(n, n, from), turned = csc.dense(n, n, to);
        for (int64_t i = 0; i < n; ++i)
            for (int64_t j = 0; j < n; ++j)
                EXPECT_EQ(turned[static_cast<size_t>(j + i * n)], expected[static_cast<size_t>(i + j * n)]);
        run(1, 1, back);
        EXPECT_EQ(back.dense(n, n, from), expected);
        back.expect_end(n);
    });
}

TYPED_TEST(spblas_converters, diagonals)
{
    using T = TypeParam;
    const std::string name = name_of<T>("XKL_?CSRDIA");
    for_each_base<T>([&](std::vector<int64_t> job, sample<T> a, int64_t from, int64_t) {
        // Two diagonals are full, so that a choice of three has them.
        std::erase_if(a.elements, [](const auto &e) { return e.column == e.row + 2; });
        for (int64_t i = 0; i + 2 < a.rows; ++i)
            a.elements.push_back({i, i + 2, T(3)});
        rows<T> csr(a);
        const int64_t n = a.rows, lead = n + 1, count = csr.count(n);
        const auto expected = csr.dense(n, n, from);
        for (const int64_t wanted : {0, 1, 10, 11}) {
            job[5] = wanted;
            int64_t chosen = 3, info = canary;
            std::vector<int64_t> distance = {2, 0, -4, canary};
            auto values = elements<T>(3 * lead);
            rows<T> rest(n, count), back(n, count + 3 * n);
            const auto run = [&](rows<T> &left) {
                call(name, {job.data(), &n, left.values.data(), left.across.data(), left.starts.data(),
                            values.data(), &lead, distance.data(), &chosen, rest.values.data(),
                            rest.across.data(), rest.starts.data(), &info});
                EXPECT_EQ(info, 0);
            };
            run(csr);
            EXPECT_EQ(chosen, 3);
            EXPECT_TRUE(untouched(distance, 3) && untouched(values, 3 * lead));
            if (wanted >= 10) {
                EXPECT_TRUE(std::is_sorted(distance.begin(), distance.begin() + 3));
                for (const int64_t full : {0, 2})
                    EXPECT_EQ(std::count(distance.begin(), distance.begin() + 3, full), 1) << full;
            }
            EXPECT_EQ(untouched(rest.starts), wanted % 10 == 0);
            for (const int64_t with_zeros : {0, 1}) {
                job[0] = 1;
                job[5] = with_zeros;
                run(back);
                EXPECT_TRUE(back.sorted(n));
                back.expect_end(n);
                auto sum = back.dense(n, n, from);
                if (wanted % 10 == 1) {
                    rest.expect_end(n);
                    const auto more = rest.dense(n, n, from);
                    std::transform(sum.begin(), sum.end(), more.begin(), sum.begin(), std::plus<T>());
                    EXPECT_EQ(sum, expected);
                    EXPECT_TRUE(with_zeros || back.count(n) + rest.count(n) == count);
                } else {
                    for (int64_t p = 0; p < n * n; ++p) {
                        const bool kept = std::count(distance.begin(), distance.begin() + 3, p / n - p % n);
                        const auto at = static_cast<size_t>(p);
                        EXPECT_EQ(sum[at], kept ? expected[at] : T(0));
                    }
                }
                back = rows<T>(n, count + 3 * n);
            }
            job[0] = 0;
        }
    });
}

TYPED_TEST(spblas_converters, diagonals_refuse)
{
    const std::string name = name_of<TypeParam>("XKL_?CSRDIA");
    for_each_base<TypeParam>([&](std::vector<int64_t> job, const sample<TypeParam> &a, int64_t, int64_t) {
        const int64_t n = a.rows, lead = n + 1;
        int64_t info = canary, few = n - 1;
        job[5] = 2;
        call(name, {job.data(), &n, nullptr, nullptr, nullptr, nullptr, &lead, nullptr, nullptr, nullptr,
                    nullptr, nullptr, &info});
        EXPECT_EQ(info, -6);
        job[5] = 0;
        call(name, {job.data(), &n, nullptr, nullptr, nullptr, nullptr, &few, nullptr, nullptr, nullptr,
                    nullptr, nullptr, &info});
        EXPECT_EQ(info, 1);
    });
}

TYPED_TEST(spblas_converters, skylines)
{
    using T = TypeParam;
    const std::string name = name_of<T>("XKL_?CSRSKY");
    for_each_base<T>([&](std::vector<int64_t> job, sample<T> a, int64_t from, int64_t to) {
        rows<T> csr(a);
        const int64_t n = a.rows;
        for (const int64_t lower : {0, 1}) {
            a.is.uplo = lower ? 'L' : 'U';
            a.is.from_one = to == 1;
            const stored_matrix<T> expected = in_skyline(a);
            const auto size = static_cast<int64_t>(expected.values.size());
            auto values = elements<T>(size);
            auto pointers = integers(n + 1);
            rows<T> back(n, size);
            const auto run = [&](int64_t backwards, int64_t room, int64_t wanted, rows<T> &left) {
                int64_t info = canary;
                job = {backwards, from, to, lower, room, wanted, 0, 0};
                call(name, {job.data(), &n, left.values.data(), left.across.data(), left.starts.data(),
                            values.data(), pointers.data(), &info});
                return info;
            };
            EXPECT_EQ(run(0, 0, 0, csr), 0);
            EXPECT_TRUE(
                std::equal(expected.integers[0].begin(), expected.integers[0].end(), pointers.begin()));
            EXPECT_EQ(run(0, size - 1, 1, csr), 1);
            EXPECT_TRUE(untouched(values));
            EXPECT_EQ(run(0, size, 1, csr), 0);
            EXPECT_TRUE(std::equal(expected.values.begin(), expected.values.end(), values.begin()));
            EXPECT_TRUE(untouched(values, size) && untouched(pointers, n + 1));
            EXPECT_EQ(run(1, 1, 1, back), 1);
            EXPECT_TRUE(untouched(back.values) && untouched(back.across));
            EXPECT_EQ(run(1, size, 1, back), 0);
            back.expect_end(n);
            auto triangle = csr.dense(n, n, from);
            for (int64_t p = 0; p < n * n; ++p)
                if (lower ? p / n > p % n : p / n < p % n)
                    triangle[static_cast<size_t>(p)] = 0;
            EXPECT_EQ(back.dense(n, n, from), triangle);
            job[3] = 2;
            int64_t info = canary;
            call(name, {job.data(), &n, nullptr, nullptr, nullptr, nullptr, nullptr, &info});
            EXPECT_EQ(info, -4);
        }
    });
}

TYPED_TEST(spblas_converters, blocks)
{
    using T = TypeParam;
    const std::string name = name_of<T>("XKL_?CSRBSR");
    for_each_base<T>([&](std::vector<int64_t> job, const sample<T> &a, int64_t from, int64_t to) {
        for (const int64_t order : {1, 3, 4}) {
            rows<T> csr(a);
            const int64_t m = a.rows, lines = (m + order - 1) / order, lead = order * order + 1;
            auto count = integers(1), pointers = integers(lines + 1), across = integers(lines * lines);
            auto values = elements<T>(lines * lines * lead);
            const auto run = [&](int64_t backwards, int64_t wanted, const int64_t &size, rows<T> &left,
                                 std::vector<int64_t> &starts) {
                int64_t info = canary;
                job = {backwards, from, to, 0, 0, wanted, 0, 0};
                call(name, {job.data(), &size, &order, &lead, left.values.data(), left.across.data(),
                            left.starts.data(), values.data(), across.data(), starts.data(), &info});
                return info;
            };
            EXPECT_EQ(run(0, -2, m, csr, count), -6);
            EXPECT_EQ(run(0, -1, m, csr, count), 0);
            EXPECT_TRUE(untouched(count, 1) && untouched(across));
            EXPECT_EQ(run(0, 0, m, csr, pointers), 0);
            EXPECT_TRUE(untouched(values));
            EXPECT_EQ(run(0, 1, m, csr, pointers), 0);
            EXPECT_EQ(pointers[static_cast<size_t>(lines)] - to, count[0]);
            EXPECT_TRUE(untouched(pointers, lines + 1) && untouched(across, count[0]) &&
                        untouched(values, count[0] * lead));
            const int64_t size = lines * order;
            rows<T> back(size, count[0] * order * order);
            EXPECT_EQ(run(1, 1, lines, back, pointers), 0);
            EXPECT_TRUE(back.sorted(size));
            back.expect_end(size);
            const auto full = back.dense(size, size, from), expected = csr.dense(m, m, from);
            for (int64_t p = 0; p < size * size; ++p) {
                const int64_t i = p % size, j = p / size;
                EXPECT_EQ(full[static_cast<size_t>(p)],
                          i < m && j < m ? expected[static_cast<size_t>(i + j * m)] : T(0));
            }
            // An element that isn't alone in its block tells how blocks are stored.
            if (order > 1) {
                const bool first_is_zero = across[0] == to;
                ASSERT_TRUE(first_is_zero);
                EXPECT_EQ(values[static_cast<size_t>(to == 1 ? order : 1)],
                          expected[static_cast<size_t>(m)]);
            }
        }
        int64_t info = canary, m = 4, order = 0, lead = 3;
        call(name,
             {job.data(), &m, &order, &lead, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &info});
        EXPECT_EQ(info, 1);
        order = 2;
        call(name,
             {job.data(), &m, &order, &lead, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &info});
        EXPECT_EQ(info, 2);
    });
}

TYPED_TEST(spblas_converters, dense_matrices)
{
    using T = TypeParam;
    const std::string name = name_of<T>("XKL_?DNSCSR");
    for_each_base<T>([&](std::vector<int64_t> job, sample<T> a, int64_t, int64_t) {
        const int64_t dense_base = job[1], base = job[2], m = 6, n = 8;
        a = sample<T>(m, n, {'G', '*', '*', base == 1});
        const auto expected = rows<T>(a).dense(m, n, base);
        dense_operand<T> full(m, n, dense_base == 0);
        full.elements.for_each([&](int64_t down, int64_t right, T &v) {
            v = expected[static_cast<size_t>(dense_base == 0 ? right + down * m : down + right * m)];
        });
        for (const int64_t part : {0, 1, 2}) {
            auto in_part = expected;
            for (int64_t p = 0; p < m * n; ++p)
                if (part == 0 ? p / m > p % m : part == 1 && p / m < p % m)
                    in_part[static_cast<size_t>(p)] = 0;
            const int64_t count = m * n - std::count(in_part.begin(), in_part.end(), T(0));
            rows<T> csr(m, count);
            const auto run = [&](int64_t backwards, int64_t room, int64_t wanted, dense_operand<T> &dense) {
                int64_t info = canary;
                job = {backwards, dense_base, base, part, room, wanted, 0, 0};
                call(name, {job.data(), &m, &n, dense.elements.data(), &dense.elements.ld,
                            csr.values.data(), csr.across.data(), csr.starts.data(), &info});
                return info;
            };
            EXPECT_EQ(run(0, 0, 0, full), 0);
            EXPECT_TRUE(untouched(csr.values) && untouched(csr.across));
            int64_t row = 1; // the first whose elements go beyond half of them
            while (csr.starts[row] - base <= count / 2)
                ++row;
            EXPECT_EQ(run(0, count / 2, 1, full), row);
            EXPECT_TRUE(untouched(csr.values, count / 2));
            EXPECT_EQ(run(0, count, 1, full), 0);
            csr.expect_end(m);
            EXPECT_EQ(csr.dense(m, n, base), in_part);
            dense_operand<T> back(m, n, dense_base == 0), old = back;
            EXPECT_EQ(run(1, 0, 0, back), 0);
            for (int64_t i = 0; i < m; ++i)
                for (int64_t j = 0; j < n; ++j) {
                    const bool outside = part == 0 ? j > i : part == 1 && j < i;
                    EXPECT_EQ(back(i, j), outside ? old(i, j) : in_part[static_cast<size_t>(i + j * m)]);
                }
            EXPECT_TRUE(back.elements.canaries_live());
        }
        int64_t info = canary;
        job[3] = 3;
        call(name, {job.data(), &m, &n, nullptr, &m, nullptr, nullptr, nullptr, &info});
        EXPECT_EQ(info, -4);
    });
}

} // namespace
