// What pardiso answers: phases and handles, faults of the input, singular matrices, control entries,
// callbacks.
#include "pardiso_problems.h"

#include "xkl.h"

#include <malloc.h>
#include <sys/resource.h>

namespace {

int pivots_seen = 0;
double last_threshold = 0;
void (*on_pivot)() = nullptr;
int64_t progress_calls = 0, stop_at = -1;

} // namespace

// The program's own link of the callback chains.
extern "C" int xkl_pardiso_pivot(const double *, double *pivot, const double *threshold)
{
    ++pivots_seen;
    last_threshold = *threshold;
    if (on_pivot)
        on_pivot();
    *pivot = *threshold;
    return 1;
}

extern "C" int xkl_progress(const int64_t *, const int64_t *, const char *, int64_t)
{
    return progress_calls++ == stop_at;
}

namespace {

TEST(protocol, handles_and_phases)
{
    const matrix<double> a = laplace<double>(5, 2);
    solver<double> s(a, 2);
    s.b = random_vector<double>(a.n);
    for (const int64_t phase : {22, 23, 33, 331, 0})
        EXPECT_EQ(s.run(phase), phase == 0 ? 0 : XKL_PARDISO_INPUT_ERROR) << phase;
    for (const int64_t phase : {1, 10, 14, 21, 34, 44, 334, -2})
        EXPECT_EQ(s.run(phase), XKL_PARDISO_INPUT_ERROR) << phase;

    int garbage = 0;
    s.pt[0] = &garbage;
    EXPECT_EQ(s.run(11), XKL_PARDISO_INPUT_ERROR);
    EXPECT_EQ(s.run(-1), XKL_PARDISO_INPUT_ERROR);
    s.pt[0] = nullptr;

    ASSERT_EQ(s.run(11), 0);
    EXPECT_EQ(s.run(33), XKL_PARDISO_INPUT_ERROR); // no factors yet
    s.mtype = -2;
    EXPECT_EQ(s.run(22), XKL_PARDISO_INPUT_ERROR); // analysed as another kind
    s.mtype = 2;
    ASSERT_EQ(s.run(22), 0);
    ASSERT_EQ(s.run(33), 0);
    EXPECT_LT(backward_error(a, s.x, s.b), 20);
    EXPECT_EQ(s.run(0), 0);
    EXPECT_EQ(s.run(33), XKL_PARDISO_INPUT_ERROR); // released
    ASSERT_EQ(s.run(23), 0);
    EXPECT_LT(backward_error(a, s.x, s.b), 20);
    EXPECT_EQ(s.run(-1), 0);
    EXPECT_EQ(s.pt[0], nullptr);
    EXPECT_EQ(s.run(-1), 0); // nothing left to release
}

TEST(protocol, arguments)
{
    const matrix<double> a = laplace<double>(5, 2);
    solver<double> s(a, 2);
    const auto refused = [&s] {
        EXPECT_EQ(s.run(11), XKL_PARDISO_INPUT_ERROR);
        EXPECT_EQ(s.pt[0], nullptr);
    };
    for (int64_t *number : {&s.n, &s.maxfct, &s.mnum}) {
        const int64_t right = *number;
        for (const int64_t wrong : {0, -1}) {
            *number = wrong;
            refused();
        }
        *number = right;
    }
    s.mnum = 2;
    refused();
    s.mnum = 1;
    for (const int64_t type : {0, 5, -11, 12}) {
        s.mtype = type;
        refused();
    }
    s.mtype = 2;
    int64_t error = 77, one = 1, phase = 13;
    pardiso(nullptr, &one, &one, &s.mtype, &phase, &s.n, nullptr, nullptr, nullptr, nullptr, &one, s.iparm,
            &one, nullptr, nullptr, &error);
    EXPECT_EQ(error, XKL_PARDISO_INPUT_ERROR);
    pardiso(s.pt, &one, &one, &s.mtype, &phase, &s.n, nullptr, nullptr, nullptr, nullptr, &one, s.iparm,
            &s.msglvl, nullptr, nullptr, &error);
    EXPECT_EQ(error, XKL_PARDISO_INPUT_ERROR);
    // A name for complex elements.
    pardiso_dc(s.pt, &one, &one, &s.mtype, &phase, &s.n, nullptr, s.in.ia.data(), s.in.ja.data(), nullptr,
               &one, s.iparm, &s.msglvl, nullptr, nullptr, &error);
    EXPECT_EQ(error, XKL_PARDISO_INPUT_ERROR);
}

TEST(protocol, faults_of_the_matrix)
{
    const matrix<double> a = laplace<double>(5, 2);
    const auto refused = [](solver<double> &s, int64_t row) {
        EXPECT_EQ(s.run(11), XKL_PARDISO_INPUT_ERROR);
        EXPECT_EQ(s.iparm[29], row);
        EXPECT_EQ(s.pt[0], nullptr);
    };
    solver<double> out_of_range(a, 11), twice(a, 11), falling(a, 11), lower(a, 11), unordered(a, 11);
    out_of_range.in.ja[out_of_range.in.ia[7] - 1] = 26;
    refused(out_of_range, 8);
    twice.in.ja[twice.in.ia[3]] = twice.in.ja[twice.in.ia[3] - 1];
    refused(twice, 4);
    falling.in.ia[9] = falling.in.ia[8] - 1;
    refused(falling, 9);
    lower.mtype = -2; // has elements below the diagonal
    refused(lower, 2);

    // Rows out of order are put in order, unless the checker is asked.
    const int64_t first = unordered.in.ia[4] - 1;
    std::swap(unordered.in.ja[first], unordered.in.ja[first + 1]);
    std::swap(unordered.in.a[first], unordered.in.a[first + 1]);
    unordered.iparm[26] = 1;
    refused(unordered, 5);
    unordered.iparm[26] = 0;
    unordered.b = random_vector<double>(a.n);
    ASSERT_EQ(unordered.run(13), 0);
    EXPECT_LT(backward_error(a, unordered.x, unordered.b), 20);
    unordered.in.a[first] = std::nan("");
    EXPECT_EQ(unordered.run(22), XKL_PARDISO_INPUT_ERROR);
    EXPECT_EQ(unordered.iparm[29], 5);
}

TEST(protocol, singular_matrices)
{
    for (const int64_t m : {6, 34}) {
        SCOPED_TRACE(m);
        matrix<double> no_column = laplace<double>(m, 2);
        for (auto at = no_column.elements.begin(); at != no_column.elements.end();)
            at = at->first.second == 3 ? no_column.elements.erase(at) : std::next(at);
        solver<double> structurally(no_column, 11);
        EXPECT_EQ(structurally.run(11), XKL_PARDISO_PREORDERING_FAILED);
        EXPECT_GE(structurally.iparm[29], 1);
        EXPECT_LE(structurally.iparm[29], m * m);

        matrix<double> same_rows = laplace<double>(m, 2);
        for (int64_t j = 0; j < m * m; ++j)
            if (same_rows.elements.count({4, j}) || same_rows.elements.count({5, j}))
                same_rows(5, j) = same_rows(4, j);
        solver<double> numerically(same_rows, 11);
        EXPECT_EQ(numerically.run(12), XKL_PARDISO_ZERO_PIVOT);
        EXPECT_GE(numerically.iparm[29], 1);
        EXPECT_EQ(numerically.run(33), XKL_PARDISO_INPUT_ERROR); // no factors

        solver<double> indefinite(laplace<double>(m, 2, -1.37), 2);
        EXPECT_EQ(indefinite.run(12), XKL_PARDISO_ZERO_PIVOT);
        EXPECT_GE(indefinite.iparm[29], 1);
        EXPECT_LE(indefinite.iparm[29], m * m);
    }
    matrix<double> square;
    square.n = 2;
    square(0, 0) = square(0, 1) = square(1, 0) = square(1, 1) = 1;
    for (const int64_t mtype : {1, 2, -2, 11}) {
        solver<double> s(square, mtype);
        EXPECT_EQ(s.run(12), XKL_PARDISO_ZERO_PIVOT) << mtype;
    }
    matrix<double> exchange; // regular, with zeros on the diagonal
    exchange.n = 2;
    exchange(0, 1) = exchange(1, 0) = 1;
    for (const int64_t mtype : {1, -2, 11}) {
        solver<double> s(exchange, mtype);
        s.iparm[12] = 1;
        s.b = {3, 4};
        ASSERT_EQ(s.run(13), 0) << mtype;
        EXPECT_EQ(s.x, (std::vector<double>{4, 3}));
    }
    matrix<double> diagonal;
    diagonal.n = 3;
    diagonal(0, 0) = diagonal(2, 2) = 1;
    diagonal(1, 1) = 0;
    solver<double> s(diagonal, -2);
    EXPECT_EQ(s.run(12), XKL_PARDISO_SINGULAR_DIAGONAL);
    EXPECT_EQ(s.iparm[29], 2);
    diagonal.elements.erase({1, 1});
    solver<double> missing(diagonal, 11);
    EXPECT_EQ(missing.run(11), XKL_PARDISO_SINGULAR_DIAGONAL);
    EXPECT_EQ(missing.iparm[29], 2);
    missing.iparm[4] = 7; // an error that is about no row
    EXPECT_EQ(missing.run(11), XKL_PARDISO_INPUT_ERROR);
    EXPECT_EQ(missing.iparm[29], 0);
}

TEST(protocol, controls_that_are_not_carried_out)
{
    const matrix<double> a = laplace<double>(5, 2);
    solver<double> s(a, 11);
    const std::pair<int, int64_t> unsupported[] = {{1, 1}, {3, 31}, {36, -2}, {38, 1}, {42, 1}, {59, 2}};
    for (const auto &[entry, value] : unsupported) {
        const int64_t kept = s.iparm[entry];
        s.iparm[entry] = value;
        EXPECT_EQ(s.run(11), XKL_PARDISO_NOT_SUPPORTED) << "iparm(" << entry + 1 << ") = " << value;
        s.iparm[entry] = kept;
    }
    const std::pair<int, int64_t> invalid[] = {{1, 4},  {4, 3},  {10, 2}, {12, -1},
                                               {20, 4}, {26, 2}, {34, 2}};
    for (const auto &[entry, value] : invalid) {
        const int64_t kept = s.iparm[entry];
        s.iparm[entry] = value;
        EXPECT_EQ(s.run(11), XKL_PARDISO_INPUT_ERROR) << "iparm(" << entry + 1 << ") = " << value;
        s.iparm[entry] = kept;
    }
    // With iparm(1) = 0 nothing is read.
    s.iparm[0] = 0;
    s.iparm[1] = 99;
    ASSERT_EQ(s.run(12), 0);
    EXPECT_EQ(s.iparm[1], 2);
    EXPECT_GT(s.iparm[17], 0);
    s.b = random_vector<double>(a.n);
    s.iparm[0] = 1;
    s.iparm[11] = 3;
    EXPECT_EQ(s.run(33), XKL_PARDISO_INPUT_ERROR);
}

TEST(protocol, solution_in_b_and_marked_unknowns)
{
    const matrix<double> a = laplace<double>(5, 2);
    solver<double> s(a, 2);
    const std::vector<double> right = random_vector<double>(a.n);
    s.b = right;
    s.perm.assign(a.n, 0);
    s.perm[3] = s.perm[8] = 1;
    ASSERT_EQ(s.run(13), 0);
    const std::vector<double> whole = s.x;
    s.iparm[5] = 1;
    s.x.assign(a.n, 7.0);
    ASSERT_EQ(s.run(33), 0);
    EXPECT_EQ(s.b, whole);
    EXPECT_EQ(s.x, std::vector<double>(a.n, 7.0));
    s.iparm[5] = 0;
    s.b = right;
    s.iparm[30] = 3;
    ASSERT_EQ(s.run(33), 0);
    for (int64_t i = 0; i < a.n; ++i)
        EXPECT_EQ(s.x[i], s.perm[i] ? whole[i] : 7.0);
    s.iparm[30] = 2; // all but the marked right-hand sides are zero
    ASSERT_EQ(s.run(33), 0);
    std::vector<double> sparse(a.n);
    sparse[3] = right[3];
    sparse[8] = right[8];
    EXPECT_LT(backward_error(a, s.x, sparse), 20);
}

TEST(protocol, several_matrices_in_a_handle)
{
    const matrix<double> a = laplace<double>(5, 2), other = laplace<double>(5, 2, 3.0);
    solver<double> s(a, 2);
    s.maxfct = 2;
    s.b = random_vector<double>(a.n);
    ASSERT_EQ(s.run(12), 0);
    const std::vector<double> values = s.in.a;
    s.in.a = rows<double>(other, true, 1).a;
    s.mnum = 2;
    EXPECT_EQ(s.run(33), XKL_PARDISO_INPUT_ERROR);
    ASSERT_EQ(s.run(23), 0); // the analysis is made up for
    EXPECT_LT(backward_error(other, s.x, s.b), 20);
    s.mnum = 1;
    ASSERT_EQ(s.run(33), 0);
    EXPECT_LT(backward_error(a, s.x, s.b), 20);
    s.mnum = 2;
    EXPECT_EQ(s.run(0), 0);
    s.mnum = 1;
    EXPECT_EQ(s.run(33), 0);
}

TEST(protocol, refinement_repairs_what_changed_pivots_spoiled)
{
    // The first pivot in the given order is tiny: it goes to the program's routine.
    matrix<double> a = laplace<double>(5, 2, 0.5);
    a(0, 0) = 1e-14;
    solver<double> s(a, -2);
    s.iparm[20] = 0;
    s.iparm[4] = 1;
    for (int64_t i = 0; i < a.n; ++i)
        s.perm.push_back(i + 1);
    s.b = random_vector<double>(a.n);
    pivots_seen = 0;
    ASSERT_EQ(s.run(13), 0);
    EXPECT_EQ(pivots_seen, 1);
    EXPECT_EQ(s.iparm[13], 1);
    EXPECT_DOUBLE_EQ(last_threshold, 1e-8 * 4.5);
    EXPECT_GT(s.iparm[6], 0);
    EXPECT_LT(backward_error(a, s.x, s.b), 20);

    s.iparm[7] = -5; // residuals in the wider type
    ASSERT_EQ(s.run(33), 0);
    EXPECT_LE(s.iparm[6], 5);
    EXPECT_LT(backward_error(a, s.x, s.b), 5);
}

void *steps_handle = nullptr;
int64_t pardiso_answer = 0, steps_answer = 0;
solver<double> *solver_at_work = nullptr;

// A routine of the program that turns to the solution which waits for it gets an error, and no deadlock.
TEST(protocol, callbacks_get_no_turn)
{
    matrix<double> exchange;
    exchange.n = 2;
    exchange(0, 0) = exchange(1, 1) = 0;
    exchange(0, 1) = exchange(1, 0) = 1;
    const int64_t none = 0, one = 1, symmetric = XKL_DSS_SYMMETRIC, automatic = XKL_DSS_AUTO_ORDER,
                  indefinite = XKL_DSS_INDEFINITE, forward = XKL_DSS_FORWARD_SOLVE, elements = 3;
    solver<double> s(exchange, -2);
    s.iparm[55] = 1;
    const rows<double> &in = s.in;
    ASSERT_EQ(dss_create(&steps_handle, &none), 0);
    ASSERT_EQ(
        dss_define_structure(&steps_handle, &symmetric, in.ia.data(), &s.n, &s.n, in.ja.data(), &elements),
        0);
    ASSERT_EQ(dss_reorder(&steps_handle, &automatic, nullptr), 0);
    ASSERT_EQ(dss_factor_real_d(&steps_handle, &indefinite, in.a.data()), 0);
    solver_at_work = &s;
    on_pivot = [] {
        const int64_t nothing = 0;
        double values[1];
        pardiso_answer = solver_at_work->run(0);
        steps_answer = dss_statistics(&steps_handle, &nothing, "Peakmem", values);
    };
    double b[] = {1, 2}, x[2];
    ASSERT_EQ(s.run(11), 0);
    ASSERT_EQ(s.run(22), 0);
    EXPECT_EQ(pardiso_answer, XKL_PARDISO_INPUT_ERROR);
    EXPECT_EQ(steps_answer, XKL_DSS_SUCCESS) << "another solution";
    // Parts need factors without exchanges, which this matrix has none of.
    EXPECT_EQ(dss_solve_real_d(&steps_handle, &forward, b, &one, x), XKL_DSS_FAILURE);
    EXPECT_EQ(steps_answer, XKL_DSS_STATE_ERR);
    on_pivot = [] {
        const int64_t nothing = 0;
        steps_answer = dss_delete(&steps_handle, &nothing);
    };
    EXPECT_EQ(dss_solve_real_d(&steps_handle, &forward, b, &one, x), XKL_DSS_FAILURE);
    EXPECT_EQ(steps_answer, XKL_DSS_STATE_ERR);
    on_pivot = nullptr;
    EXPECT_EQ(dss_solve_real_d(&steps_handle, &none, b, &one, x), 0);
    EXPECT_EQ(dss_delete(&steps_handle, &none), 0);
}

TEST(protocol, progress_can_stop_a_solution)
{
    const matrix<double> a = laplace<double>(34, 2);
    solver<double> s(a, 2);
    s.b = random_vector<double>(a.n);
    progress_calls = 0;
    ASSERT_EQ(s.run(13), 0);
    EXPECT_EQ(progress_calls, 6); // before and after each of three steps
    for (int64_t call = 0; call < 6; ++call) {
        progress_calls = 0;
        stop_at = call;
        EXPECT_EQ(s.run(13), XKL_PARDISO_INTERRUPTED);
        EXPECT_EQ(progress_calls, call + 1);
    }
    stop_at = -1;
    ASSERT_EQ(s.run(13), 0);
    EXPECT_LT(backward_error(a, s.x, s.b), 20);
}

TEST(protocol, nothing_leaks)
{
    const matrix<double> positive = laplace<double>(34, 2), unsymmetric = laplace<double>(6, 2, 0.0, 0.5);
    matrix<double> singular = unsymmetric;
    for (int64_t j = 0; j < singular.n; ++j)
        if (singular.elements.count({4, j}) || singular.elements.count({5, j}))
            singular(5, j) = singular(4, j);
    const auto round = [&] {
        for (const auto &[a, mtype] :
             {std::pair{&positive, 2}, std::pair{&positive, -2}, std::pair{&unsymmetric, 11}}) {
            solver<double> s(*a, mtype);
            s.b = random_vector<double>(a->n);
            ASSERT_EQ(s.run(13), 0);
            ASSERT_EQ(s.run(23), 0);
            s.iparm[1] = 1;
            ASSERT_EQ(s.run(11), XKL_PARDISO_NOT_SUPPORTED);
        }
        solver<double> s(singular, 11);
        ASSERT_EQ(s.run(12), XKL_PARDISO_ZERO_PIVOT);
    };
    for (int i = 0; i < 3; ++i)
        round();
    const size_t before = mallinfo2().uordblks;
    for (int i = 0; i < 5; ++i)
        round();
    EXPECT_LT(mallinfo2().uordblks, before + 4096);
}

// In a process of its own, whose memory is limited when the matrix and the kernels' buffers are there.
int64_t factor_with_little_memory(int64_t mtype)
{
    const matrix<double> a = laplace<double>(24, 3);
    solver<double> s(a, mtype), before(laplace<double>(11, 3), mtype);
    if (before.run(12) != 0 || s.run(11) != 0)
        return 1;
    std::ifstream sizes("/proc/self/statm");
    int64_t pages = 0;
    sizes >> pages;
    const rlim_t bytes = static_cast<rlim_t>(pages) * 4096 + (1 << 22);
    const rlimit limit{bytes, bytes};
    setrlimit(RLIMIT_AS, &limit);
    return s.run(22);
}

TEST(protocolDeathTest, memory_that_runs_out_is_an_error_code)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer ends a process whose memory runs out";
#endif
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    for (const int64_t mtype : {2, 11})
        EXPECT_EXIT(_exit(factor_with_little_memory(mtype) == XKL_PARDISO_OUT_OF_MEMORY ? 0 : 1),
                    testing::ExitedWithCode(0), "");
}

} // namespace
