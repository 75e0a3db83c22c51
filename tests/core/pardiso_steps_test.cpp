// The other roads to the direct solvers: solution by steps, parts of a solution, diagonals, Schur
// complements, handles in files, the matrix checker, the cluster form.
#include "pardiso_problems.h"
#include "xkl_service.h"

#include <cmath>
#include <unistd.h>

namespace {

// A folder that goes away.
struct folder {
    std::string path = testing::TempDir() + "pardiso_" + std::to_string(getpid());
    folder() { EXPECT_EQ(std::system(("mkdir -p " + path).c_str()), 0); }
    ~folder() { EXPECT_EQ(std::system(("rm -rf " + path).c_str()), 0); }
};

template <class T>
void parts_make_the_whole(const matrix<T> &a, int64_t mtype)
{
    SCOPED_TRACE(mtype);
    solver<T> s(a, mtype);
    const std::vector<T> right = random_vector<T>(2 * a.n);
    ASSERT_EQ(s.run(12), 0);
    for (int op = 0; op <= 2; ++op) {
        s.iparm[11] = op;
        s.b = right;
        for (const int64_t phase : {331, 332, 333}) {
            ASSERT_EQ(s.run(phase), 0);
            s.b = s.x;
        }
        const std::vector<T> first(right.begin(), right.begin() + a.n), x(s.x.begin(), s.x.begin() + a.n);
        EXPECT_LT(backward_error(a, x, first, op), 200);
    }
}

TEST(parts, make_the_whole)
{
    for (const int64_t m : {7, 33}) {
        parts_make_the_whole(laplace<double>(m, 2), 2);
        parts_make_the_whole(laplace<double>(m, 2, 0.0, 0.5), 11);
        parts_make_the_whole(magnetic<complex16>(m, 0.2), 4);
        parts_make_the_whole(laplace<complex16>(m, 2, {0.5, 0.5}), 6);
        parts_make_the_whole(laplace<complex16>(m, 2, {0.5, 0.5}, {0.3, 0.2}), 13);
    }
    // Without exchanges these factors would be wrong, and nothing would tell.
    const matrix<double> indefinite = saddle_point(8, 5);
    solver<double> s(indefinite, -2);
    s.b = random_vector<double>(indefinite.n);
    s.iparm[4] = 1;
    for (int64_t i = indefinite.n; i > 0; --i)
        s.perm.push_back(i);
    ASSERT_EQ(s.run(13), 0);
    EXPECT_EQ(s.run(331), XKL_PARDISO_NOT_SUPPORTED);
}

TEST(diagonals, product_is_the_determinant)
{
    matrix<double> a;
    a.n = 3;
    a(0, 0) = 4, a(1, 1) = -5, a(2, 2) = 6;
    a(0, 1) = a(1, 0) = 1, a(1, 2) = a(2, 1) = 2;
    const double determinant = 4 * (-5 * 6 - 4) - 6;
    solver<double> s(a, -2);
    double df[3], da[3];
    int64_t mnum = 1, error = 77;
    ASSERT_EQ(s.run(12), 0);
    EXPECT_EQ(pardiso_getdiag(s.pt, df, da, &mnum, &error), XKL_PARDISO_NOT_SUPPORTED); // nobody asked
    s.iparm[55] = 1;
    ASSERT_EQ(s.run(12), 0);
    EXPECT_EQ(pardiso_getdiag_d(s.pt, df, da, &mnum, &error), 0);
    EXPECT_EQ(error, 0);
    EXPECT_NEAR(df[0] * df[1] * df[2], determinant, 1e-12);
    EXPECT_EQ(std::vector<double>(da, da + 3), (std::vector<double>{4, -5, 6}));
    EXPECT_EQ(pardiso_getdiag_z(s.pt, nullptr, nullptr, &mnum, &error), XKL_PARDISO_INPUT_ERROR);
    mnum = 2;
    EXPECT_EQ(pardiso_getdiag_d(s.pt, df, da, &mnum, &error), XKL_PARDISO_INPUT_ERROR);
}

// S = A22 - A21 inv(A11) A12, column by column through solutions with A: inv(S) is a block of inv(A).
template <class T>
void schur_complement_is_right(const matrix<T> &a, int64_t mtype)
{
    SCOPED_TRACE(mtype);
    const std::vector<int64_t> unknowns = {2, 7, a.n - 1};
    const int64_t m = 3;
    solver<T> whole(a, mtype), s(a, mtype);
    whole.b.assign(a.n * m, T{});
    for (int64_t j = 0; j < m; ++j)
        whole.b[j * a.n + unknowns[j]] = 1;
    ASSERT_EQ(whole.run(13), 0);

    s.iparm[35] = 2;
    s.perm.assign(a.n, 0);
    for (const int64_t u : unknowns)
        s.perm[u] = 1;
    s.x.resize(m * m);
    ASSERT_EQ(s.run(12), 0);
    const std::vector<T> schur(s.x.begin(), s.x.begin() + m * m); // by rows
    for (int64_t i = 0; i < m; ++i)
        for (int64_t j = 0; j < m; ++j) {
            T sum{};
            for (int64_t k = 0; k < m; ++k)
                sum += schur[i * m + k] * whole.x[j * a.n + unknowns[k]];
            EXPECT_LT(std::abs(sum - T(i == j)), 1e-10);
        }
    s.b = random_vector<T>(a.n);
    ASSERT_EQ(s.run(33), 0);
    EXPECT_LT(backward_error(a, s.x, s.b), 200);

    // Exported: dense rows, the upper triangle of a symmetric one.
    solver<T> e(a, mtype);
    e.iparm[35] = -1;
    e.perm = s.perm;
    ASSERT_EQ(e.run(11), 0);
    const bool half = upper_only(mtype);
    ASSERT_EQ(e.iparm[35], half ? m * (m + 1) / 2 : m * m);
    EXPECT_EQ(e.run(22), XKL_PARDISO_INPUT_ERROR); // nowhere to write
    std::vector<T> values(e.iparm[35]);
    std::vector<int64_t> ia(m + 1), ja(e.iparm[35]);
    int64_t step = 1, error = 77;
    pardiso_export(e.pt, values.data(), ia.data(), ja.data(), &step, e.iparm, &error);
    ASSERT_EQ(error, 0);
    ASSERT_EQ(e.run(22), 0);
    EXPECT_EQ(ia[0], 1);
    EXPECT_EQ(ia[m], e.iparm[35] + 1);
    for (int64_t i = 0; i < m; ++i)
        for (int64_t k = ia[i] - 1; k < ia[i + 1] - 1; ++k)
            EXPECT_LT(std::abs(values[k] - schur[i * m + ja[k] - 1]), 1e-12);
    step = -1;
    pardiso_export(e.pt, nullptr, nullptr, nullptr, &step, e.iparm, &error);
    EXPECT_EQ(error, 0);
}

TEST(schur, complement)
{
    schur_complement_is_right(laplace<double>(6, 2), 2);
    schur_complement_is_right(laplace<double>(6, 2, -1.37), -2);
    schur_complement_is_right(laplace<double>(6, 2, 0.0, 0.4), 11);
    schur_complement_is_right(magnetic<complex16>(6, 0.2), 4);
    schur_complement_is_right(laplace<complex16>(6, 2, {0.5, 0.5}), 6);
}

TEST(files, a_handle_comes_back)
{
    const folder home;
    const matrix<double> a = laplace<double>(34, 2, -1.37);
    int64_t error = 77;
    std::vector<double> before;
    {
        solver<double> s(a, -2);
        s.b = random_vector<double>(a.n);
        ASSERT_EQ(s.run(13), 0);
        before = s.x;
        pardiso_handle_store(s.pt, home.path.c_str(), &error);
        EXPECT_EQ(error, 0);
        pardiso_handle_restore(s.pt, home.path.c_str(), &error); // the live handle would be lost
        EXPECT_EQ(error, XKL_PARDISO_INPUT_ERROR);
        pardiso_handle_store(s.pt, "/nowhere/at/all", &error);
        EXPECT_EQ(error, XKL_PARDISO_OUT_OF_CORE_OPEN);
    }
    solver<double> s(a, -2);
    pardiso_handle_restore_64(s.pt, home.path.c_str(), &error);
    ASSERT_EQ(error, 0);
    s.b = random_vector<double>(a.n);
    ASSERT_EQ(s.run(33), 0);
    EXPECT_LT(distance(s.x, before), 1e-12 * norm(before));

    // A file with another byte, or a shorter one, is no handle.
    const std::string file = home.path + "/xkl_pardiso_handle.bin";
    for (const char *damage : {"printf '\\377' | dd bs=1 seek=5000 conv=notrunc status=none of=",
                               "truncate -s 3000 ", "truncate -s 10 "}) {
        ASSERT_EQ(std::system((damage + file).c_str()), 0);
        void *pt[64] = {};
        pardiso_handle_restore(pt, home.path.c_str(), &error);
        EXPECT_EQ(error, XKL_PARDISO_OUT_OF_CORE_IO) << damage;
        EXPECT_EQ(pt[0], nullptr);
    }
    pardiso_handle_delete(home.path.c_str(), &error);
    EXPECT_EQ(error, 0);
    pardiso_handle_delete_64(home.path.c_str(), &error);
    EXPECT_EQ(error, XKL_PARDISO_OUT_OF_CORE_OPEN);
}

TEST(checker, first_fault)
{
    sparse_struct s;
    sparse_matrix_checker_init(&s);
    const auto check = [&s](std::vector<int64_t> ia, std::vector<int64_t> ja) {
        s.n = static_cast<int64_t>(ia.size()) - 1;
        s.csr_ia = ia.data();
        s.csr_ja = ja.data();
        return sparse_matrix_checker(&s);
    };
    using found = std::vector<int64_t>;
    const auto about = [&s] { return found(s.check_result, s.check_result + 3); };
    EXPECT_EQ(check({0, 2, 3}, {0, 1, 1}), XKL_SPARSE_CHECKER_SUCCESS);
    EXPECT_EQ(check({0, 2, 1}, {0, 1, 1}), XKL_SPARSE_CHECKER_NON_MONOTONIC);
    EXPECT_EQ(about(), (found{1, 2, 1}));
    EXPECT_EQ(check({0, 2, 3}, {0, 2, 1}), XKL_SPARSE_CHECKER_OUT_OF_RANGE);
    EXPECT_EQ(about(), (found{1, 2, 0}));
    EXPECT_EQ(check({0, 2, 3}, {1, 0, 1}), XKL_SPARSE_CHECKER_NONORDERED);
    EXPECT_EQ(about(), (found{1, 1, 0}));
    s.matrix_structure = XKL_UPPER_TRIANGULAR;
    EXPECT_EQ(check({0, 1, 3}, {0, 0, 1}), XKL_SPARSE_CHECKER_NONTRIANGULAR);
    EXPECT_EQ(about(), (found{1, 0, 1}));
    s.matrix_structure = XKL_LOWER_TRIANGULAR;
    EXPECT_EQ(check({0, 1, 3}, {0, 0, 1}), XKL_SPARSE_CHECKER_SUCCESS);
    s.matrix_structure = XKL_STRUCTURAL_SYMMETRIC;
    EXPECT_EQ(check({0, 1, 3}, {0, 0, 1}), XKL_SPARSE_CHECKER_NONTRIANGULAR);
    EXPECT_EQ(check({0, 2, 4}, {0, 1, 0, 1}), XKL_SPARSE_CHECKER_SUCCESS);
    s.indexing = XKL_ONE_BASED;
    s.print_style = XKL_FORTRAN_STYLE;
    s.message_level = XKL_PRINT;
    testing::internal::CaptureStdout();
    EXPECT_EQ(check({1, 2, 3}, {1, 3}), XKL_SPARSE_CHECKER_OUT_OF_RANGE);
    EXPECT_EQ(about(), (found{2, 3, 2}));
    EXPECT_NE(testing::internal::GetCapturedStdout().find("place 2 holds the column 3, in row 2"),
              std::string::npos);

    int8_t text[6];
    const int64_t length = 6;
    xkl_cvt_to_null_terminated_str(text, &length, "ab  ", 4);
    EXPECT_STREQ(reinterpret_cast<const char *>(text), "ab");
    xkl_cvt_to_null_terminated_str(text, &length, "abcdefgh", 8);
    EXPECT_STREQ(reinterpret_cast<const char *>(text), "abcde");
}

// A solution by steps of one matrix.
struct steps {
    explicit steps(int64_t option = 0) { EXPECT_EQ(dss_create(&handle, &option), 0); }
    ~steps()
    {
        const int64_t none = 0;
        EXPECT_EQ(dss_delete(&handle, &none), 0);
        EXPECT_EQ(handle, nullptr);
    }
    template <class T>
    int64_t define(const rows<T> &in, int64_t n, int64_t kind)
    {
        const int64_t elements = static_cast<int64_t>(in.ja.size());
        return dss_define_structure(&handle, &kind, in.ia.data(), &n, &n, in.ja.data(), &elements);
    }
    std::vector<double> tell(const char *words, size_t count, int64_t status = XKL_DSS_SUCCESS)
    {
        std::vector<double> values(count, 77.0);
        const int64_t none = 0;
        EXPECT_EQ(dss_statistics(&handle, &none, words, values.data()), status) << words;
        return values;
    }
    void *handle = nullptr;
};

TEST(dss, real_and_complex_solutions)
{
    const int64_t none = 0, one = 1, automatic = XKL_DSS_AUTO_ORDER;
    const matrix<double> a = from_file("lund_a.mtx");
    const rows<double> in(a, true, 1);
    steps s;
    ASSERT_EQ(s.define(in, a.n, XKL_DSS_SYMMETRIC), 0);
    ASSERT_EQ(dss_reorder(&s.handle, &automatic, nullptr), 0);
    for (const int64_t known : {XKL_DSS_POSITIVE_DEFINITE, XKL_DSS_INDEFINITE}) {
        ASSERT_EQ(dss_factor_real(&s.handle, &known, in.a.data()), 0);
        const std::vector<double> b = random_vector<double>(a.n);
        std::vector<double> x(a.n);
        ASSERT_EQ(dss_solve_real_d(&s.handle, &none, b.data(), &one, x.data()), 0);
        EXPECT_LT(backward_error(a, x, b), 5);
        const std::vector<double> inertia = s.tell("inertia,ReorderTime", 4);
        EXPECT_EQ(inertia[0], a.n);
        EXPECT_EQ(inertia[1] + inertia[2], 0);
    }

    const matrix<complex8> c = laplace<complex8>(7, 2, {-1.f, 0.5f}, {0.3f, 0.1f});
    const rows<complex8> zero_based(c, false, 0);
    steps z(XKL_DSS_ZERO_BASED_INDEXING + XKL_DSS_SINGLE_PRECISION + XKL_DSS_MSG_LVL_FATAL +
            XKL_DSS_TERM_LVL_ERROR);
    ASSERT_EQ(z.define(zero_based, c.n, XKL_DSS_NON_SYMMETRIC_COMPLEX), 0);
    ASSERT_EQ(dss_reorder(&z.handle, &automatic, nullptr), 0);
    EXPECT_EQ(dss_factor_complex_d(&z.handle, &none, nullptr), XKL_DSS_OPTION_CONFLICT);
    ASSERT_EQ(dss_factor_complex(&z.handle, &none, zero_based.a.data()), 0);
    const std::vector<complex8> b = random_vector<complex8>(c.n);
    std::vector<complex8> x(c.n);
    for (const int64_t op :
         {int64_t{0}, int64_t{XKL_DSS_CONJUGATE_SOLVE}, int64_t{XKL_DSS_TRANSPOSE_SOLVE}}) {
        ASSERT_EQ(dss_solve_complex_s(&z.handle, &op, b.data(), &one, x.data()), 0);
        EXPECT_LT(backward_error(c, x, b, op == 0 ? 0 : op == XKL_DSS_CONJUGATE_SOLVE ? 1 : 2), 5);
    }
    z.tell("inertia", 1, XKL_DSS_STATISTICS_INVALID_MATRIX);
}

// The determinant of laplace(m, 2) with a shift is the product of its eigenvalues.
TEST(dss, determinants_and_their_signs)
{
    const int64_t none = 0, automatic = XKL_DSS_AUTO_ORDER, indefinite = XKL_DSS_INDEFINITE;
    for (const int64_t m : {5, 6, 33}) {
        double digits = 0;
        int sign = 1;
        for (int64_t i = 1; i <= m; ++i)
            for (int64_t j = 1; j <= m; ++j) {
                const double value =
                    4 - 1.37 - 2 * std::cos(i * M_PI / (m + 1)) - 2 * std::cos(j * M_PI / (m + 1));
                digits += std::log10(std::abs(value));
                sign *= value < 0 ? -1 : 1;
            }
        for (const bool symmetric : {true, false}) {
            SCOPED_TRACE(testing::Message() << m << (symmetric ? " symmetric" : " unsymmetric"));
            const matrix<double> a = laplace<double>(m, 2, -1.37);
            const rows<double> in(a, symmetric, 1);
            steps s;
            ASSERT_EQ(s.define(in, a.n, symmetric ? XKL_DSS_SYMMETRIC : XKL_DSS_NON_SYMMETRIC), 0);
            ASSERT_EQ(dss_reorder(&s.handle, &automatic, nullptr), 0);
            ASSERT_EQ(dss_factor_real_d(&s.handle, symmetric ? &indefinite : &none, in.a.data()), 0);
            const std::vector<double> told = s.tell("Determinant", 2);
            EXPECT_EQ(std::signbit(told[1]) ? -1 : 1, sign);
            EXPECT_NEAR(told[0] + std::log10(std::abs(told[1])), digits, 1e-9);
            EXPECT_GE(std::abs(told[1]), 1 - 1e-9);
            EXPECT_LT(std::abs(told[1]), 10 + 1e-9);
        }
    }
}

TEST(dss, statuses)
{
    const int64_t none = 0, one = 1, automatic = XKL_DSS_AUTO_ORDER, wrong = 1 << 20;
    const matrix<double> a = laplace<double>(5, 2, 0.0, 0.3);
    rows<double> in(a, false, 1);
    steps s;
    std::vector<double> b(a.n), x(a.n);
    EXPECT_EQ(dss_reorder(&s.handle, &automatic, nullptr), XKL_DSS_STATE_ERR);
    EXPECT_EQ(s.define(in, a.n, 0), XKL_DSS_STRUCTURE_ERR);
    EXPECT_EQ(s.define(in, a.n, wrong), XKL_DSS_INVALID_OPTION);
    EXPECT_EQ(s.define(in, a.n, XKL_DSS_AUTO_ORDER), XKL_DSS_INVALID_OPTION);
    EXPECT_EQ(s.define(in, a.n, XKL_DSS_SYMMETRIC), XKL_DSS_COL_ERR); // elements below the diagonal
    const int64_t kind = XKL_DSS_NON_SYMMETRIC, more = a.n + 1, elements = in.ja.size();
    for (const auto &[count, status] : {std::pair{elements - 1, XKL_DSS_TOO_FEW_VALUES},
                                        std::pair{elements + 1, XKL_DSS_TOO_MANY_VALUES}})
        EXPECT_EQ(dss_define_structure(&s.handle, &kind, in.ia.data(), &a.n, &a.n, in.ja.data(), &count),
                  status);
    EXPECT_EQ(dss_define_structure(&s.handle, &kind, in.ia.data(), &a.n, &more, in.ja.data(), &elements),
              XKL_DSS_NOT_SQUARE);
    rows<double> falling = in;
    falling.ia[3] = 0;
    EXPECT_EQ(s.define(falling, a.n, kind), XKL_DSS_ROW_ERR);
    ASSERT_EQ(s.define(in, a.n, kind), 0);
    EXPECT_EQ(dss_factor_real_d(&s.handle, &none, in.a.data()), XKL_DSS_STATE_ERR);
    const int64_t mine = XKL_DSS_MY_ORDER, tell = XKL_DSS_GET_ORDER;
    std::vector<int64_t> perm(a.n, 1);
    EXPECT_EQ(dss_reorder(&s.handle, &mine, perm.data()), XKL_DSS_REORDER_ERR);
    ASSERT_EQ(dss_reorder(&s.handle, &tell, perm.data()), 0);
    ASSERT_EQ(dss_reorder(&s.handle, &mine, perm.data()), 0);
    EXPECT_EQ(dss_factor_complex_d(&s.handle, &none, nullptr), XKL_DSS_OPTION_CONFLICT);
    EXPECT_EQ(dss_factor_real_s(&s.handle, &none, nullptr), XKL_DSS_OPTION_CONFLICT);
    s.tell("Determinant", 1, XKL_DSS_STATISTICS_INVALID_STATE);
    s.tell("Colour", 1, XKL_DSS_STATISTICS_INVALID_STRING);
    EXPECT_EQ(dss_solve_real_d(&s.handle, &none, b.data(), &one, x.data()), XKL_DSS_STATE_ERR);
    std::vector<double> zeros(in.a.size());
    EXPECT_EQ(dss_factor_real_d(&s.handle, &none, zeros.data()), XKL_DSS_ZERO_PIVOT);
    EXPECT_EQ(dss_solve_real_d(&s.handle, &none, b.data(), &one, x.data()), XKL_DSS_STATE_ERR);
    zeros[0] = INFINITY;
    EXPECT_EQ(dss_factor_real_d(&s.handle, &none, zeros.data()), XKL_DSS_VALUES_ERR);
    const int64_t strong = XKL_DSS_OOC_STRONG, level = XKL_DSS_MSG_LVL_SUCCESS - 1, both = 4096 + 8192;
    void *handle = nullptr;
    EXPECT_EQ(dss_create(&handle, &strong), XKL_DSS_INVALID_OPTION);
    EXPECT_EQ(dss_create(&handle, &level), XKL_DSS_MSG_LVL_ERR);
    EXPECT_EQ(dss_create(&handle, &both), XKL_DSS_OPTION_CONFLICT);
    EXPECT_EQ(dss_delete(&handle, &none), XKL_DSS_STATE_ERR);
}

TEST(cluster, one_process)
{
    const matrix<double> a = laplace<double>(6, 2);
    solver<double> s(a, 2);
    s.b = random_vector<double>(a.n);
    s.x.resize(a.n);
    const int32_t communicator = 0;
    const int64_t phase = 13, one = 1;
    int64_t error = 77;
    const auto call = [&] {
        cluster_sparse_solver(s.pt, &s.maxfct, &s.mnum, &s.mtype, &phase, &s.n, s.in.a.data(),
                              s.in.ia.data(), s.in.ja.data(), nullptr, &one, s.iparm, &s.msglvl, s.b.data(),
                              s.x.data(), &communicator, &error);
        return error;
    };
    ASSERT_EQ(call(), 0);
    EXPECT_LT(backward_error(a, s.x, s.b), 20);
    s.iparm[39] = 1; // rows 1 to 3 only
    s.iparm[40] = 1;
    s.iparm[41] = 3;
    EXPECT_EQ(call(), XKL_PARDISO_NOT_SUPPORTED);
    s.iparm[39] = 0;
    setenv("PMI_SIZE", "2", 1);
    EXPECT_EQ(call(), XKL_PARDISO_NOT_SUPPORTED);
    unsetenv("PMI_SIZE");
    const int32_t name = XKL_CLUSTER_EXPORT_PTLUQT_L;
    cluster_sparse_solver_get_csr_size(s.pt, &name, nullptr, nullptr, &communicator, &error);
    EXPECT_EQ(error, XKL_PARDISO_NOT_SUPPORTED);
}

// The routine of a program that sets one, and defines no link of the chain, holds until it is taken back:
// solver calls, which install the chain, leave it.
TEST(pivots, go_to_the_routine_that_was_set)
{
    static int asked;
    asked = 0;
    const xkl_pivot_handler routine = [](const double *, double *pivot, const double *threshold) {
        ++asked;
        *pivot = *threshold;
        return 1;
    };
    matrix<double> a = laplace<double>(5, 2, 0.5);
    a(0, 0) = 1e-14; // the first pivot of the fixed engine, which goes in the given order
    solver<double> s(a, -2);
    s.iparm[20] = 0;
    s.iparm[4] = 1;
    for (int64_t i = 0; i < a.n; ++i)
        s.perm.push_back(i + 1);
    s.b = random_vector<double>(a.n);
    EXPECT_EQ(XKL_SET_PARDISO_PIVOT(routine), nullptr);
    for (const int run : {1, 2}) {
        ASSERT_EQ(s.run(run == 1 ? 13 : 23), 0);
        EXPECT_EQ(asked, run);
    }
    EXPECT_EQ(XKL_SET_PARDISO_PIVOT(nullptr), routine);
    ASSERT_EQ(s.run(23), 0);
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(s.iparm[13], 1) << "changed by the library's own";
}

} // namespace
