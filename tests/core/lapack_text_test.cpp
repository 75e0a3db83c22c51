// What is special about single LAPACK routines: names and other text without their lengths, values that are
// not numbers, machine constants, and the reports of errors that LAPACK finds itself.
#include "element_types.h"
#include "lapack_reports.h"
#include "xkl.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace {

using lapack_tests::reports;

int64_t tuned(int64_t what, const char *name, int64_t n1, int64_t n2, int64_t n3 = -1, int64_t n4 = -1)
{
    return ilaenv_(&what, name, " ", &n1, &n2, &n3, &n4);
}

// The block size of short and wide QR is the third size for this name alone; every other gets 1 or 32.
int64_t rows_of_dgeqr(const char *name)
{
    return tuned(1, name, 500, 7, 1);
}

TEST(names, end_where_c_and_fortran_end_them)
{
    EXPECT_EQ(tuned(1, "DGETRF", 100, 100), 64);
    EXPECT_EQ(tuned(1, "dgetrf", 100, 100), 64);
    EXPECT_EQ(tuned(1, "DGEQRF", 100, 100), 32);
    EXPECT_EQ(tuned(1, "ZHETRD_HE2HB", 100, 100), tuned(1, "ZHETRD", 100, 100));
    EXPECT_EQ(tuned(1, "QQQQQQ", 100, 100), 1) << "unknown names get blocks of one";
    EXPECT_EQ(rows_of_dgeqr("DGEQR"), 500);
    EXPECT_EQ(rows_of_dgeqr("DGEQR "), 500);
    EXPECT_EQ(rows_of_dgeqr("DGEQRDORMQR"), 500)
        << "the next constant of a Fortran program stands behind it";
}

TEST(names, reach_every_routine_that_takes_one)
{
    const int64_t crossover = 12, ilo = 1, ihi = 300, n = 300, lwork = 300;
    EXPECT_EQ(iparmq_(&crossover, "DHSEQRDGETRF", "SV", &n, &ilo, &ihi, &lwork), 75);
    EXPECT_EQ(tuned(crossover, "DHSEQR", n, ilo, ihi, lwork), 75);

    const int64_t block = 17, none = -1, threads = 1;
    EXPECT_EQ(ilaenv2stage_(&threads, "DSYTRD_SY2SB", "N", &n, &none, &none, &none),
              ilaenv2stage_(&threads, "DSYTRD_SY2SBX", "N", &n, &none, &none, &none));
    const int64_t real_width = iparam2stage_(&block, "DSYTRD_SY2SB", "N", &n, &none, &none, &none);
    EXPECT_GT(real_width, 1) << "the band's width";
    EXPECT_EQ(iparam2stage_(&block, "dsytrd_sy2sb", "N", &n, &none, &none, &none), real_width);
}

TEST(names, at_the_end_of_memory)
{
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    void *mapped = mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(mapped, MAP_FAILED);
    char *end = static_cast<char *>(mapped) + page;
    std::memcpy(end - 3, "DGEQR ", 6);
    EXPECT_EQ(rows_of_dgeqr(end - 3), 500) << "a name across two pages";
    ASSERT_EQ(mprotect(end, page, PROT_NONE), 0);
    std::memcpy(end - 5, "DGEQR", 5);
    EXPECT_EQ(rows_of_dgeqr(end - 5), 500) << "nothing behind the name can be read";
    munmap(mapped, 2 * page);
}

TEST(text, compares_as_many_letters_as_asked)
{
    const auto same = [](int64_t n, const char *a, const char *b) { return lsamen_(&n, a, b); };
    EXPECT_EQ(same(2, "GE", "ge"), 1);
    EXPECT_EQ(same(2, "GETRF", "GESV"), 1);
    EXPECT_EQ(same(3, "GETRF", "GESV"), 0);
    EXPECT_EQ(same(3, "GE", "GE"), 0) << "shorter than asked";
    EXPECT_EQ(same(0, "A", "B"), 1);
}

TEST(text, comes_back_as_one_character)
{
    const auto letter = [](int64_t trans) { return chla_transtype_(&trans); };
    EXPECT_EQ(letter(111), 'N');
    EXPECT_EQ(letter(112), 'T');
    EXPECT_EQ(letter(113), 'C');
    EXPECT_EQ(letter(0), 'X');
}

TEST(results, of_every_kind)
{
    const std::complex<float> x(3, 4), y(1, 2), big(1e30f, 1e30f);
    const std::complex<double> xx(3, 4), yy(1, 2);
    EXPECT_EQ(cladiv_(&x, &y), std::complex<float>(2.2f, -0.4f));
    EXPECT_EQ(zladiv_(&xx, &yy), std::complex<double>(2.2, -0.4));
    EXPECT_EQ(cladiv_(&big, &big), std::complex<float>(1, 0));
    const double nan = std::numeric_limits<double>::quiet_NaN(), one = 1;
    EXPECT_EQ(disnan_(&nan), 1) << "all 64 bits";
    EXPECT_EQ(disnan_(&one), 0);
    int64_t seed[] = {1, 2, 3, 5};
    const int64_t unit_circle = 5;
    EXPECT_NEAR(std::abs(zlarnd_(&unit_circle, seed)), 1, 1e-15);
}

TEST(results, division_of_a_vector_by_a_complex_number)
{
    std::vector<std::complex<double>> x = {{3e300, 4e300}, {7, 7}, {5, 0}};
    const std::complex<double> a(1e300, 2e300);
    const int64_t two = 2, backward = -1;
    zrscl_(&two, &a, x.data(), &two);
    EXPECT_NEAR(std::abs(x[0] - std::complex<double>(2.2, -0.4)), 0, 1e-15);
    EXPECT_EQ(x[1], std::complex<double>(7, 7));
    EXPECT_NEAR(std::abs(x[2] * 1e300 - std::complex<double>(1, -2)), 0, 1e-15);
    const auto before = x;
    zrscl_(&two, &a, x.data(), &backward);
    EXPECT_EQ(x, before);
}

TEST(results, triangles_in_single_precision)
{
    const int64_t n = 2;
    double a[] = {1, 2, 3, 4};
    std::complex<double> z[] = {1, 2, 3, 4};
    float s[4] = {};
    std::complex<float> c[4] = {};
    int64_t info = 77;
    dlat2s_("L", &n, a, &n, s, &n, &info);
    EXPECT_EQ(info, 0);
    EXPECT_EQ(s[1], 2);
    a[1] = 1e300;
    dlat2s_("L", &n, a, &n, s, &n, &info);
    EXPECT_EQ(info, 1) << "too large";
    info = 77;
    zlat2c_("U", &n, z, &n, c, &n, &info);
    EXPECT_EQ(info, 0);
    EXPECT_EQ(c[2], std::complex<float>(3));
}

// LAPACK takes rows of matrices that end where memory ends.
TEST(results, dot_products_of_rows_read_nothing_beyond_them)
{
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    void *mapped = mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(mapped, MAP_FAILED);
    char *end = static_cast<char *>(mapped) + page;
    ASSERT_EQ(mprotect(end, page, PROT_NONE), 0);
    const int64_t row = 3, one = 1, up = -3;
    const std::complex<double> y[] = {{1, 2}, {3, 4}, {5, 6}, {7, 8}};
    for (int64_t n = 1; n <= 4; ++n) {
        auto *x = reinterpret_cast<std::complex<double> *>(end) - ((n - 1) * row + 1);
        std::complex<double> forward = 0, backward = 0;
        for (int64_t i = 0; i < n; ++i) {
            x[i * row] = {static_cast<double>(i), 2};
            forward += x[i * row] * y[i];
        }
        for (int64_t i = 0; i < n; ++i)
            backward += std::conj(x[(n - 1 - i) * row]) * y[i];
        std::complex<double> found;
        zdotu(&found, &n, x, &row, y, &one);
        EXPECT_EQ(found, forward) << n;
        zdotc(&found, &n, x, &up, y, &one);
        EXPECT_EQ(found, backward) << n;
    }
    munmap(mapped, 2 * page);
}

TEST(machine_constants, as_older_programs_find_them)
{
    const double one = 1;
    const int64_t base = 2, digits = 53, smallest = -1021, yes = 1;
    int64_t beta, t, rounds, ieee, emin, emax;
    double eps, rmin, rmax;
    dlamc4_(&emin, &one, &base);
    EXPECT_EQ(emin, -1073) << "down to the smallest denormal";
    dlamc5_(&base, &digits, &smallest, &yes, &emax, &rmax);
    EXPECT_EQ(emax, 1024);
    EXPECT_EQ(rmax, std::numeric_limits<double>::max());
    const int64_t single_digits = 24, single_smallest = -125;
    float single_max;
    slamc5_(&base, &single_digits, &single_smallest, &yes, &emax, &single_max);
    EXPECT_EQ(emax, 128);
    EXPECT_EQ(single_max, std::numeric_limits<float>::max());

    dlamc1_(&beta, &t, &rounds, &ieee);
    EXPECT_EQ(t, static_cast<int64_t>(dlamch_("N")));
    dlamc2_(&beta, &t, &rounds, &eps, &emin, &rmin, &emax, &rmax);
    EXPECT_EQ(eps, dlamch_("E"));
    EXPECT_EQ(emin, static_cast<int64_t>(dlamch_("M")));
    EXPECT_EQ(rmin, dlamch_("U"));
    EXPECT_EQ(emax, static_cast<int64_t>(dlamch_("L")));
    EXPECT_EQ(rmax, dlamch_("O"));
}

// Errors that no frame checks.

TEST_F(reports, too_little_work_space)
{
    const int64_t n = 4, lwork = 2;
    std::vector<double> a(16, 1), s(4), u(16), vt(16), work(2);
    int64_t info = 0;
    dgesvd_("A", "A", &n, &n, a.data(), &n, s.data(), u.data(), &n, vt.data(), &n, work.data(), &lwork,
            &info);
    EXPECT_EQ(info, -13);
    EXPECT_EQ(name, "DGESVD");
    EXPECT_EQ(position, 13);
}

TEST_F(reports, of_solving_with_factors_are_in_info_too)
{
    struct bad_call {
        int64_t position;
        char trans;
        int64_t n, nrhs, lda, ldb;
    };
    std::complex<double> z[4] = {};
    float s[4] = {};
    int64_t ipiv[2] = {1, 2};
    for (const bad_call &each : {bad_call{1, 'R', -1, 1, 2, 2},
                                 {2, 't', -1, -1, 2, 2},
                                 {3, 'c', 2, -1, 1, 2},
                                 {5, 'N', 2, 1, 1, 1},
                                 {8, 'N', 2, 1, 2, 1},
                                 {5, 'N', 0, 0, 0, 1},
                                 {0, 'N', 0, 0, 1, 1}}) {
        SCOPED_TRACE(each.position);
        int64_t info = 77;
        forget();
        zgetrs_(&each.trans, &each.n, &each.nrhs, z, &each.lda, ipiv, z, &each.ldb, &info);
        EXPECT_EQ(info, -each.position);
        EXPECT_EQ(name, each.position ? "ZGETRS" : "");
        info = 77;
        forget();
        sgetrs_(&each.trans, &each.n, &each.nrhs, s, &each.lda, ipiv, s, &each.ldb, &info);
        EXPECT_EQ(info, -each.position);
        EXPECT_EQ(position, each.position);
    }
}

TEST_F(reports, names_of_all_lengths)
{
    const int64_t n = 2, lwork = 100;
    double a[4] = {}, w[2], work[100];
    int64_t info = 0;
    dsyev_("X", "U", &n, a, &n, w, work, &lwork, &info);
    EXPECT_EQ(info, -1);
    EXPECT_EQ(name, "DSYEV ");
    EXPECT_EQ(position, 1);
    dsyev_2stage_("N", "X", &n, a, &n, w, work, &lwork, &info);
    EXPECT_EQ(info, -2);
    EXPECT_EQ(name, "DSYEV_2STAGE");
    EXPECT_EQ(position, 2);
}

TEST_F(reports, from_the_generators)
{
    const int64_t n = -1, one = 1;
    int64_t seed[] = {1, 2, 3, 5}, info = 0;
    double a, work, d;
    dlagge_(&n, &n, &one, &one, &d, &a, &one, seed, &work, &info);
    EXPECT_EQ(info, -1);
    EXPECT_EQ(name, "DLAGGE");
    EXPECT_EQ(position, 1);
}

TEST_F(reports, with_a_name_given_as_an_array)
{
    char letters[] = {'M', 'I', 'N', 'E', '_', 'O', 'W', 'N', '!'};
    const int64_t count = 8, place = 7;
    xerbla_array_(letters, &count, &place);
    EXPECT_EQ(name, "MINE_OWN");
    EXPECT_EQ(position, 7);
}

} // namespace
