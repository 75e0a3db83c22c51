// The matrix copies against a walk over all elements: every ordering, operation and kind of factor, sizes
// around those of registers, tiles and blocks, and distances between lines that leave room, in which
// nothing may change. The tests run once for each instruction set.
#include "blas_reference.h"
#include "core_matcopy.h"

#include "service/service_entries.h"

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

/// Real scalars go by value, complex ones by address.
template <class T>
auto pass(const T &scalar)
{
    if constexpr (is_complex<T>)
        return &scalar;
    else
        return scalar;
}

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
            each = random_element<T>();
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
    for (const char trans : {'N', 'T'}) // 16 MB and more go past the caches
        for (const size_t room : {0, 3, 64})
            test_copy('R', trans, {2051, 16 * 1024 * 1024 / sizeof(TypeParam) / 2048, room, room},
                      this->factors[trans == 'T']);
}
} // namespace
