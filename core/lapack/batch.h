// What the batches of LAPACK share: the tests of their arguments, loops whose matrices need workspace, and
// the steps on one matrix for which LAPACK has no routine.
#pragma once

#include "call.h"

#include "blas/parallel.h"
#include "blas/workspace.h"

#include <algorithm>
#include <initializer_list>

namespace xkl::core {

struct argument_test {
    int64_t place; // in the routine's list
    bool passed;
};

/// Reports the first bad argument, in the order of the tests. info has an element a matrix; the first one
/// tells the place.
template <class T>
bool refused(const char *routine, std::initializer_list<argument_test> tests, int64_t *info)
{
    for (const auto [place, passed] : tests)
        if (!passed) {
            *info = -place;
            report(routine, letter_of<T>, place);
            return true;
        }
    return false;
}

/// In group batches a test is made for all groups before the next one starts.
template <class Test>
bool every(int64_t groups, const Test &test)
{
    for (int64_t group = 0; group < groups; ++group)
        if (!test(group))
            return false;
    return true;
}

inline bool none_negative(int64_t groups, const int64_t *values)
{
    return every(groups, [=](int64_t g) { return values[g] >= 0; });
}

inline bool holds(int64_t ld, int64_t rows)
{
    return ld >= std::max<int64_t>(rows, 1);
}

/// Whether results don't overlap at this distance. An input's distance may be 0, a result's may not.
inline bool apart(int64_t stride, int64_t ld, int64_t columns)
{
    int64_t area;
    return stride >= 1 && !__builtin_mul_overflow(ld, columns, &area) && area <= stride;
}

/// The option of routines that solve with op(A), in any type
inline bool is_operation(char trans)
{
    return is(trans, 'N') || is(trans, 'T') || is(trans, 'C');
}

/// The workspace that suits a LAPACK routine best, in elements. `ask` calls it for the answer.
template <class T, class Ask>
int64_t best_workspace(const Ask &ask)
{
    constexpr int64_t query = -1;
    T answer{};
    int64_t info;
    ask(&answer, query, &info);
    return std::max<int64_t>(static_cast<int64_t>(std::real(answer)), 1);
}

/// body(i, space) for every i of 0 to count. The `length` elements of space are this body's alone while it
/// runs: the matrices go in ranges, each with a space of its own, in as many as there is memory for.
template <class T, class Body>
void for_each_in_spaces(T *spaces, int64_t ranges, int64_t length, int64_t count, double operations_of_one,
                        const Body &body)
{
    if (ranges <= 0)
        return;
    const double matrices_of_one = static_cast<double>(count) / static_cast<double>(ranges);
    for_each(ranges, operations_of_one * matrices_of_one, [&](int64_t range) {
        const int64_t last = count * (range + 1) / ranges;
        for (int64_t i = count * range / ranges; i < last; ++i)
            body(i, spaces + range * length);
    });
}

/// Ranges for each thread, so that a thread that comes late leaves its share to the others
constexpr int64_t ranges_of_a_thread = 4;

inline int64_t wanted_ranges(int64_t count)
{
    const int64_t threads = thread_count();
    return std::min(count, threads > 1 ? threads * ranges_of_a_thread : 1);
}

/// The same with space from the library's allocator. Without any, that is reported, as info(1) tells too.
template <class T, class Body>
void for_each_with_space(const char *routine, int64_t length, int64_t count, double operations_of_one,
                         int64_t *info, const Body &body)
{
    if (count == 0)
        return;
    workspace<T> spaces(length, wanted_ranges(count), routine);
    if (spaces.width() == 0)
        *info = -no_memory;
    else
        for_each_in_spaces(spaces.data(), spaces.width(), length, count, operations_of_one, body);
}

/// The first zero on the diagonal, counted from 1; 0 if there is none
template <class T>
int64_t zero_on_diagonal(int64_t n, const T *a, int64_t lda)
{
    for (int64_t i = 0; i < n; ++i)
        if (a[i + i * lda] == T(0))
            return i + 1;
    return 0;
}

/// The inverse of a matrix from its factors by ?GETRF, the factors left as they are: X*L = inv(U), and the
/// interchanges of rows become such of columns. A singular matrix leaves the array alone.
template <class T>
void invert_into(int64_t n, const T *a, int64_t lda, const int64_t *ipiv, T *inverse, int64_t ldinv,
                 int64_t *info)
{
    *info = zero_on_diagonal(n, a, lda);
    if (*info != 0 || n == 0)
        return;
    for (int64_t j = 0; j < n; ++j) {
        std::copy_n(a + j * lda, j + 1, inverse + j * ldinv);
        std::fill_n(inverse + j * ldinv + j + 1, n - j - 1, T(0));
    }
    call(entries::trtri<T>, 'U', 'N', n, inverse, ldinv, info);
    call(entries::trsm<T>, 'R', 'L', 'N', 'U', n, n, T(1), a, lda, inverse, ldinv);
    for (int64_t j = n - 1; j-- > 0;)
        if (const int64_t other = ipiv[j] - 1; other != j)
            std::swap_ranges(inverse + j * ldinv, inverse + j * ldinv + n, inverse + other * ldinv);
}

/// Solves op(A)*X = B with the factors of ?GETRFNP.
template <class T>
void solve_without_pivots(char trans, int64_t n, int64_t nrhs, const T *a, int64_t lda, T *b, int64_t ldb)
{
    if (is(trans, 'N')) {
        call(entries::trsm<T>, 'L', 'L', trans, 'U', n, nrhs, T(1), a, lda, b, ldb);
        call(entries::trsm<T>, 'L', 'U', trans, 'N', n, nrhs, T(1), a, lda, b, ldb);
    } else {
        call(entries::trsm<T>, 'L', 'U', trans, 'N', n, nrhs, T(1), a, lda, b, ldb);
        call(entries::trsm<T>, 'L', 'L', trans, 'U', n, nrhs, T(1), a, lda, b, ldb);
    }
}

} // namespace xkl::core
