// The matrix copies against a walk over all elements: every ordering, operation and kind of factor, sizes
// around those of registers, tiles and blocks, and distances between lines that leave room, in which
// nothing may change. The tests run once for each instruction set.
#include "blas_reference.h"
#include "core_matcopy.h"

#include "service/service_entries.h"
#include "xkl_service_types.h"

#include <atomic>
#include <cstring>
#include <thread>

namespace {
using namespace blas_test;

#define COPY_ENTRY(name)                                                                                   \
    template <class T>                                                                                     \
    constexpr auto name = pick<T>(xkl_trans_xkl_s##name, xkl_trans_xkl_d##name, xkl_trans_xkl_c##name,     \
                                  xkl_trans_xkl_z##name)
COPY_ENTRY(omatcopy);
COPY_ENTRY(imatcopy);
COPY_ENTRY(omatcopy2);
COPY_ENTRY(omatadd);
COPY_ENTRY(omatcopy_batch_strided);
COPY_ENTRY(imatcopy_batch_strided);
COPY_ENTRY(omatadd_batch_strided);
COPY_ENTRY(omatcopy_batch);
COPY_ENTRY(imatcopy_batch);

constexpr char operations[] = {'N', 'T', 'C', 'R', 'n', 't', 'c', 'r'};

bool turns(char trans)
{
    return std::strchr("TCtc", trans) != nullptr;
}

template <class T>
T op_of(char trans, const T &x)
{
    if constexpr (is_complex<T>)
        return std::strchr("CRcr", trans) ? std::conj(x) : x;
    else
        return x;
}

/// Between -1 and 1, for memory that is too large for a generator with good properties
template <class T>
T quick_element()
{
    static uint64_t state = 1;
    const auto next = [] {
        state = state * 6364136223846793005 + 1442695040888963407;
        return static_cast<double>(static_cast<int64_t>(state)) / 9223372036854775808.;
    };
    const double re = next();
    return scalar<T>(re, is_complex<T> ? next() : 0);
}

/// rows by cols elements in memory, all of it random: what is no element must stay as it is, too. The
/// distance of a line is its length and `room` more, times the stride.
template <class T>
struct stored {
    char ordering;
    size_t rows, cols, stride, ld;
    std::vector<T> memory;

    stored(char in_ordering, size_t m, size_t n, size_t room, size_t in_stride = 1, size_t spare = 0)
        : ordering(in_ordering), rows(m), cols(n), stride(in_stride)
    {
        const bool by_columns = ordering == 'C' || ordering == 'c';
        const size_t length = by_columns ? m : n, lines = by_columns ? n : m;
        ld = std::max<size_t>(length, 1) * stride + room;
        memory.resize(ld * lines + margin * 2 + spare);
        for (T &each : memory)
            each = quick_element<T>();
    }
    T *data() { return memory.data() + margin; }
    size_t place(size_t i, size_t j) const
    {
        return ordering == 'C' || ordering == 'c' ? i * stride + j * ld : i * ld + j * stride;
    }
    T &at(size_t i, size_t j) { return data()[place(i, j)]; }

    static constexpr size_t margin = 5;
};

/// Like another one of its kind: the same memory, another shape and distance in it
template <class T>
stored<T> reshaped(const stored<T> &from, size_t m, size_t n, size_t ld)
{
    stored<T> result = from;
    result.rows = m;
    result.cols = n;
    result.ld = ld;
    return result;
}

/// Exact where nothing is multiplied, to rounding elsewhere; zeros and what was not to change exact, too.
template <class T>
void expect_same(const std::vector<T> &found, const std::vector<T> &expected, bool exact,
                 const std::string &what)
{
    ASSERT_EQ(found.size(), expected.size());
    const real_of<T> tolerance = 8 * std::numeric_limits<real_of<T>>::epsilon();
    for (size_t i = 0; i < found.size(); ++i)
        if (found[i] != expected[i] && (exact || !(std::abs(found[i] - expected[i]) <= tolerance)))
            FAIL() << what << ": element " << i << " of memory is " << found[i] << ", not " << expected[i];
}

template <class T>
struct matcopy : ::testing::Test {
    const std::vector<T> factors = {T(1), scalar<T>(1.25, -.5), T(-2), T(0)};
};
TYPED_TEST_SUITE(matcopy, all_types);

struct shape {
    size_t rows, cols, room_a, room_b;
};

std::string name_of(char ordering, char trans, const shape &s, int number)
{
    return std::string{ordering, trans, ' '} + std::to_string(s.rows) + " by " + std::to_string(s.cols) +
           " case " + std::to_string(number);
}

const shape small_shapes[] = {{0, 3, 0, 0},   {3, 0, 1, 2},   {1, 1, 0, 0},   {2, 2, 0, 0},
                              {2, 3, 1, 0},   {8, 8, 0, 3},   {9, 7, 0, 0},   {1, 70, 2, 0},
                              {70, 1, 0, 1},  {16, 16, 0, 0}, {17, 15, 3, 2}, {33, 31, 7, 1},
                              {64, 48, 0, 0}, {65, 67, 0, 5}, {40, 100, 4, 4}};
/// Beyond blocks and what a thread does alone; lines a power of two apart; copies past the caches.
const shape large_shapes[] = {{512, 256, 0, 0},  {259, 301, 2, 0},   {130, 1030, 0, 6},
                              {1024, 516, 0, 8}, {512, 512, 512, 0}, {700, 1100, 4, 4}};

template <class T>
void test_copy(char ordering, char trans, const shape &s, const T &alpha)
{
    stored<T> a(ordering, s.rows, s.cols, s.room_a);
    stored<T> b = turns(trans) ? stored<T>(ordering, s.cols, s.rows, s.room_b)
                               : stored<T>(ordering, s.rows, s.cols, s.room_b);
    if (alpha == T(0) && !a.memory.empty())
        std::fill(a.memory.begin(), a.memory.end(), not_a_number<T>());
    stored<T> expected = b;
    for (size_t i = 0; i < s.rows; ++i)
        for (size_t j = 0; j < s.cols; ++j)
            (turns(trans) ? expected.at(j, i) : expected.at(i, j)) =
                alpha == T(0) ? T(0) : alpha * op_of(trans, a.at(i, j));
    omatcopy<T>(ordering, trans, s.rows, s.cols, pass(alpha), a.data(), a.ld, b.data(), b.ld);
    expect_same(b.memory, expected.memory, alpha == T(1) || alpha == T(0),
                name_of(ordering, trans, s, static_cast<int>(std::real(alpha) * 4)));
}

TYPED_TEST(matcopy, small_copies)
{
    for (const char ordering : {'C', 'R', 'c', 'r'})
        for (const char trans : operations)
            for (const TypeParam &alpha : this->factors)
                for (const shape &s : small_shapes)
                    test_copy(ordering, trans, s, alpha);
}

TYPED_TEST(matcopy, large_copies)
{
    for (const char trans : {'N', 'T', 'C', 'R'})
        for (const TypeParam &alpha : this->factors)
            for (const shape &s : large_shapes)
                test_copy('C', trans, s, alpha);
    const size_t cols = 9 * 1024 * 1024 / sizeof(TypeParam) / 2048; // 9 MB go past the caches
    for (const char trans : {'N', 'T'})
        for (const size_t rows : {2048, 2051})
            for (const size_t room : {0, 64})
                test_copy('R', trans, {rows, cols, room, room}, this->factors[room == 0]);
}

TYPED_TEST(matcopy, infinities_stay_alone)
{
    using T = TypeParam;
    const auto infinity = std::numeric_limits<real_of<T>>::infinity();
    for (const char trans : {'N', 'T', 'C', 'R'})
        for (const T alpha : {T(1), T(2)}) {
            const std::vector<T> a(100, scalar<T>(infinity, 3));
            std::vector<T> b(100);
            omatcopy<T>('C', trans, 10, 10, pass(alpha), a.data(), 10, b.data(), 10);
            const std::vector<T> expected(100, op_of(trans, scalar<T>(infinity, 3 * std::real(alpha))));
            EXPECT_EQ(b, expected) << trans;
        }
}

/// In place: the memory before, with the elements of the result put where they belong. What stands where
/// only the source had elements is nobody's.
template <class T>
void test_in_place(char ordering, char trans, const shape &s, const T &alpha)
{
    const size_t rows = turns(trans) ? s.cols : s.rows, cols = turns(trans) ? s.rows : s.cols;
    const stored<T> other(ordering, rows, cols, s.room_b);
    stored<T> ab(ordering, s.rows, s.cols, s.room_a, 1, other.memory.size());
    stored<T> before = ab, expected = reshaped(ab, rows, cols, other.ld);
    for (size_t i = 0; i < rows; ++i)
        for (size_t j = 0; j < cols; ++j)
            expected.at(i, j) =
                alpha == T(0) ? T(0)
                              : alpha * op_of(trans, turns(trans) ? before.at(j, i) : before.at(i, j));
    std::vector<bool> in_result(ab.memory.size());
    for (size_t i = 0; i < rows; ++i)
        for (size_t j = 0; j < cols; ++j)
            in_result[ab.margin + expected.place(i, j)] = true;
    imatcopy<T>(ordering, trans, s.rows, s.cols, pass(alpha), ab.data(), ab.ld, other.ld);
    for (size_t i = 0; i < s.rows; ++i)
        for (size_t j = 0; j < s.cols; ++j)
            if (const size_t place = ab.margin + ab.place(i, j); !in_result[place])
                expected.memory[place] = ab.memory[place];
    expect_same(ab.memory, expected.memory, alpha == T(1) || alpha == T(0),
                "in place " + name_of(ordering, trans, s, static_cast<int>(std::real(alpha) * 4)));
}

const shape shapes_in_place[] = {{0, 2, 0, 0},   {2, 2, 0, 0},   {1, 9, 0, 0},  {9, 1, 2, 3},
                                 {9, 1, 3, 2},   {8, 8, 1, 1},   {8, 8, 3, 0},  {8, 8, 0, 3},
                                 {17, 17, 0, 0}, {37, 37, 2, 5}, {3, 5, 0, 0},  {5, 3, 4, 0},
                                 {24, 40, 0, 7}, {40, 24, 1, 1}, {61, 33, 9, 2}};

TYPED_TEST(matcopy, in_place)
{
    for (const char ordering : {'C', 'r'})
        for (const char trans : operations)
            for (const TypeParam &alpha : this->factors)
                for (const shape &s : shapes_in_place)
                    test_in_place(ordering, trans, s, alpha);
    for (const char trans : {'N', 'T', 'C', 'R'})
        for (const shape &s : {shape{600, 600, 0, 0}, {515, 515, 3, 3}, {600, 300, 5, 0}, {513, 513, 2, 7}})
            test_in_place('C', trans, s, this->factors[1]);
}

/// The same results when there is no memory to turn a matrix through, and nothing of it is kept.
TYPED_TEST(matcopy, in_place_without_memory)
{
    int blocks = 0;
    const int64_t in_use = xkl_serv_mem_stat(&blocks);
    ASSERT_EQ(xkl_serv_set_memory_limit(1, 1), 1);
    void *const hog = xkl_serv_malloc(size_t{1} << 20, 64);
    for (const char trans : {'T', 'C'})
        for (const TypeParam &alpha : this->factors)
            for (const shape &s : {shape{130, 70, 0, 0},
                                   {70, 130, 3, 0},
                                   {200, 64, 0, 9},
                                   {91, 180, 5, 5},
                                   {4200, 3, 0, 0},
                                   {3, 4200, 1, 40},
                                   {1, 9000, 2, 0}})
                test_in_place('C', trans, s, alpha);
    xkl_serv_free(hog);
    xkl_serv_set_memory_limit(1, 0);
    EXPECT_EQ(xkl_serv_mem_stat(&blocks), in_use);
}

TYPED_TEST(matcopy, strided_copies)
{
    using T = TypeParam;
    struct strides {
        size_t a, b;
    };
    for (const char ordering : {'C', 'R'})
        for (const char trans : operations)
            for (const T &alpha : this->factors)
                for (const auto &[stridea, strideb] : {strides{1, 1}, {2, 1}, {1, 3}, {4, 2}})
                    for (const shape &s :
                         {shape{0, 2, 0, 0}, {2, 3, 0, 0}, {33, 70, 1, 2}, {150, 45, 0, 0}}) {
                        const size_t m = turns(trans) ? s.cols : s.rows, n = turns(trans) ? s.rows : s.cols;
                        stored<T> a(ordering, s.rows, s.cols, s.room_a, stridea);
                        stored<T> b(ordering, m, n, s.room_b, strideb), expected = b;
                        for (size_t i = 0; i < m; ++i)
                            for (size_t j = 0; j < n; ++j)
                                expected.at(i, j) =
                                    alpha == T(0)
                                        ? T(0)
                                        : alpha * op_of(trans, turns(trans) ? a.at(j, i) : a.at(i, j));
                        omatcopy2<T>(ordering, trans, s.rows, s.cols, pass(alpha), a.data(), a.ld, stridea,
                                     b.data(), b.ld, strideb);
                        expect_same(b.memory, expected.memory, alpha == T(1) || alpha == T(0), "strided");
                    }
}

template <class T>
void test_sum(char ordering, char transa, char transb, const shape &s, const T &alpha, const T &beta)
{
    const auto operand = [&](char trans, size_t room) {
        return turns(trans) ? stored<T>(ordering, s.cols, s.rows, room)
                            : stored<T>(ordering, s.rows, s.cols, room);
    };
    stored<T> a = operand(transa, s.room_a), b = operand(transb, s.room_b);
    stored<T> c(ordering, s.rows, s.cols, s.room_a);
    if (alpha == T(0))
        std::fill(a.memory.begin(), a.memory.end(), not_a_number<T>());
    if (beta == T(0))
        std::fill(b.memory.begin(), b.memory.end(), not_a_number<T>());
    stored<T> expected = c;
    const auto term = [](char trans, const T &by, stored<T> &from, size_t i, size_t j) {
        return by == T(0) ? T(0) : by * op_of(trans, turns(trans) ? from.at(j, i) : from.at(i, j));
    };
    for (size_t i = 0; i < s.rows; ++i)
        for (size_t j = 0; j < s.cols; ++j)
            expected.at(i, j) = term(transa, alpha, a, i, j) + term(transb, beta, b, i, j);
    omatadd<T>(ordering, transa, transb, s.rows, s.cols, pass(alpha), a.data(), a.ld, pass(beta), b.data(),
               b.ld, c.data(), c.ld);
    expect_same(c.memory, expected.memory, alpha == T(0) && beta == T(0),
                std::string("sum with ") + transb + " and " + name_of(ordering, transa, s, 0));
}

TYPED_TEST(matcopy, sums)
{
    for (const char transa : {'N', 'T', 'C', 'R'})
        for (const char transb : {'n', 't', 'c', 'r'})
            for (const TypeParam &alpha : this->factors)
                for (const TypeParam &beta : this->factors)
                    for (const shape &s :
                         {shape{0, 3, 0, 0}, {2, 2, 0, 0}, {8, 9, 0, 1}, {35, 17, 2, 0}, {16, 64, 0, 3}}) {
                        test_sum('C', transa, transb, s, alpha, beta);
                        test_sum('R', transa, transb, s, alpha, beta);
                    }
    for (const char transa : {'N', 'T'})
        for (const char transb : {'N', 'C'})
            test_sum('C', transa, transb, {515, 600, 0, 1}, this->factors[1], this->factors[2]);
}

/// The result in the place of an operand that stays as it is
TYPED_TEST(matcopy, sum_into_an_operand)
{
    using T = TypeParam;
    stored<T> a('C', 37, 37, 1), c('C', 37, 37, 2), expected = c;
    const T alpha = this->factors[1], beta = this->factors[2];
    for (size_t i = 0; i < 37; ++i)
        for (size_t j = 0; j < 37; ++j)
            expected.at(i, j) = alpha * a.at(j, i) + beta * c.at(i, j);
    omatadd<T>('C', 'T', 'N', 37, 37, pass(alpha), a.data(), a.ld, pass(beta), c.data(), c.ld, c.data(),
               c.ld);
    expect_same(c.memory, expected.memory, false, "sum in place");
}

/// Checks report some letters and let the call go on: nothing is turned then.
TYPED_TEST(matcopy, unknown_operations_copy)
{
    using T = TypeParam;
    const T one(1), two(2);
    stored<T> a('C', 9, 4, 1, 2), b('C', 9, 4, 0, 3), expected = b;
    for (size_t i = 0; i < 9; ++i)
        for (size_t j = 0; j < 4; ++j)
            expected.at(i, j) = a.at(i, j);
    omatcopy2<T>('C', 'X', 9, 4, pass(one), a.data(), a.ld, 2, b.data(), b.ld, 3);
    EXPECT_EQ(b.memory, expected.memory);
    stored<T> c('C', 9, 4, 0), d('C', 9, 4, 1), e('C', 9, 4, 2), sum = e;
    for (size_t i = 0; i < 9; ++i)
        for (size_t j = 0; j < 4; ++j)
            sum.at(i, j) = two * c.at(i, j) + d.at(i, j);
    omatadd<T>('C', '?', 'Q', 9, 4, pass(two), c.data(), c.ld, pass(one), d.data(), d.ld, e.data(), e.ld);
    expect_same(e.memory, sum.memory, false, "unknown operations");
}

TYPED_TEST(matcopy, strided_batches_are_loops)
{
    using T = TypeParam;
    const T alpha = this->factors[1], beta = this->factors[2];
    for (const size_t count : {0, 1, 3, 200}) {
        const size_t m = 45, n = 33, lda = 47, ldb = 46, step = 2200;
        const stored<T> a('C', step, count + 1, 0), b('C', step, count + 1, 0), c('C', step, count + 1, 0);
        const T *from = a.memory.data(), *second = b.memory.data();
        std::vector<T> one = c.memory, all = c.memory;
        for (size_t i = 0; i < count; ++i)
            omatcopy<T>('R', 'T', m, n, pass(alpha), from + i * step, lda, one.data() + i * step, ldb);
        omatcopy_batch_strided<T>('R', 'T', m, n, pass(alpha), from, lda, step, all.data(), ldb, step,
                                  count);
        EXPECT_EQ(all, one);
        for (size_t i = 0; i < count; ++i)
            imatcopy<T>('R', 'C', m, n, pass(alpha), one.data() + i * step, lda, ldb);
        imatcopy_batch_strided<T>('R', 'C', m, n, pass(alpha), all.data(), lda, ldb, step, count);
        EXPECT_EQ(all, one);
        for (size_t i = 0; i < count; ++i)
            omatadd<T>('C', 'N', 'T', m, n, pass(alpha), from + i * step, lda, pass(beta),
                       second + i * step, ldb, one.data() + i * step, lda);
        omatadd_batch_strided<T>('C', 'N', 'T', m, n, pass(alpha), from, lda, step, pass(beta), second, ldb,
                                 step, all.data(), lda, step, count);
        EXPECT_EQ(all, one);
    }
}

TYPED_TEST(matcopy, group_batches_are_loops)
{
    using T = TypeParam;
    const std::vector<char> trans = {'N', 'T', 'C', 'R'};
    const std::vector<size_t> rows = {3, 40, 2, 31}, cols = {5, 30, 2, 1}, lda = {7, 41, 2, 33},
                              ldb = {4, 44, 3, 31}, sizes = {4, 90, 0, 7};
    const size_t step = 2000, count = 101;
    const stored<T> a('C', step, count, 0), b('C', step, count, 0);
    std::vector<T> one = b.memory, all = b.memory;
    std::vector<const T *> from(count);
    std::vector<T *> to(count);
    for (size_t i = 0; i < count; ++i) {
        from[i] = a.memory.data() + i * step;
        to[i] = all.data() + i * step;
    }
    const std::vector<T> &alpha = this->factors;
    const auto each = [&](const auto &call) {
        size_t i = 0;
        for (size_t group = 0; group < sizes.size(); ++group)
            for (const size_t end = i + sizes[group]; i < end; ++i)
                call(group, from[i], one.data() + i * step);
    };
    each([&](size_t g, const T *x, T *y) {
        omatcopy<T>('C', trans[g], rows[g], cols[g], pass(alpha[g]), x, lda[g], y, ldb[g]);
    });
    omatcopy_batch<T>('C', trans.data(), rows.data(), cols.data(), alpha.data(), from.data(), lda.data(),
                      to.data(), ldb.data(), sizes.size(), sizes.data());
    EXPECT_EQ(all, one);
    each([&](size_t g, const T *, T *y) {
        imatcopy<T>('C', trans[g], rows[g], cols[g], pass(alpha[g]), y, lda[g], ldb[g]);
    });
    imatcopy_batch<T>('C', trans.data(), rows.data(), cols.data(), alpha.data(), to.data(), lda.data(),
                      ldb.data(), sizes.size(), sizes.data());
    EXPECT_EQ(all, one);
    omatcopy_batch<T>('C', nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0,
                      nullptr);
}

/// Several threads at once, each with copies large enough for threads of their own
TYPED_TEST(matcopy, many_threads_at_once)
{
    using T = TypeParam;
    xkl_serv_set_dynamic(0);
    xkl_serv_set_num_threads(4);
    const stored<T> a('C', 700, 700, 4);
    const T one(1);
    std::atomic<int> wrong{0};
    std::vector<std::thread> callers;
    for (int caller = 0; caller < 4; ++caller)
        callers.emplace_back([&] {
            std::vector<T> b(a.memory.size()), c(a.memory.size());
            for (int round = 0; round < 5; ++round) {
                omatcopy<T>('C', 'T', 700, 700, pass(one), a.memory.data(), 704, b.data(), 700);
                imatcopy<T>('C', 'T', 700, 700, pass(one), b.data(), 700, 700);
                omatcopy<T>('R', 'N', 700, 700, pass(one), b.data(), 700, c.data(), 704);
                for (size_t j = 0; j < 700; ++j)
                    wrong += !std::equal(c.begin() + j * 704, c.begin() + j * 704 + 700,
                                         a.memory.begin() + j * 704);
            }
        });
    for (std::thread &each : callers)
        each.join();
    xkl_serv_domain_set_num_threads(0, XKL_DOMAIN_ALL);
    xkl_serv_set_dynamic(1);
    EXPECT_EQ(wrong, 0);
}

} // namespace
