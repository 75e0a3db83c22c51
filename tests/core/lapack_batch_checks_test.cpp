// Bad arguments of LAPACK's batches: the report names routine and place, the first element of info tells
// the place, and nothing else is written. And what happens when there is no memory.
#include "blas_reference.h"

#include "lapack/call.h"
#include "service/service_entries.h"

#include <array>

namespace {
using xkl::core::call;
namespace entries = xkl::core::entries;

std::string reported_name;
int64_t reported_place, reports;

struct lapack_batch_checks : ::testing::Test {
    xkl_xerbla_handler previous;
    void SetUp() override
    {
        reports = 0;
        previous = xkl_serv_set_xerbla([](const char *name, const int64_t *place, int64_t length) {
            reported_name.assign(name, static_cast<size_t>(length));
            reported_place = *place;
            ++reports;
        });
    }
    void TearDown() override { xkl_serv_set_xerbla(previous); }
};

/// The arguments of a call by their places, from 1. Two matrices or groups of one; all arrays are `data`.
struct arguments {
    std::vector<int64_t> integers;
    std::vector<double> data = std::vector<double>(1000, .5);
    std::vector<int64_t> pivots = std::vector<int64_t>(100, 1), info = {77, 77};

    const int64_t &operator[](size_t place) const { return integers[place]; }
    char letter(size_t place) const { return static_cast<char>(integers[place]); }
    double *a() { return data.data(); }
    int64_t *p() { return pivots.data(); }
};

struct bad_argument {
    size_t place;
    int64_t value;
};

struct checked_routine {
    const char *name;
    std::vector<int64_t> good; // by place; 0 where an array stands
    std::vector<bad_argument> bad;
    void (*run)(arguments &v);
};

/// A value for each of two groups: a good one, and the one to be tested
std::array<int64_t, 2> groups(int64_t value)
{
    return {3, value};
}

const std::vector<checked_routine> routines = {
    {"DGETRF_BATCH_STRIDED ",
     {0, 4, 3, 0, 5, 15, 0, 3, 2},
     {{1, -1}, {2, -1}, {4, 3}, {5, 14}, {5, 0}, {7, 2}, {8, -1}},
     [](arguments &v) {
         call(entries::getrf_batch_strided<double>, v[1], v[2], v.a(), v[4], v[5], v.p(), v[7], v[8],
              v.info.data());
     }},
    {"DGETRFNP_BATCH_STRIDED ",
     {0, 4, 3, 0, 5, 15, 2},
     {{1, -1}, {2, -1}, {4, 3}, {5, 14}, {6, -1}},
     [](arguments &v) {
         call(entries::getrfnp_batch_strided<double>, v[1], v[2], v.a(), v[4], v[5], v[6], v.info.data());
     }},
    {"DGETRS_BATCH_STRIDED ",
     {0, 'N', 4, 2, 0, 4, 0, 0, 0, 0, 6, 12, 2},
     {{1, 'X'}, {2, -1}, {3, -1}, {5, 3}, {6, -1}, {8, -1}, {10, 3}, {11, 11}, {12, -1}},
     [](arguments &v) {
         call(entries::getrs_batch_strided<double>, v.letter(1), v[2], v[3], v.a(), v[5], v[6], v.p(), v[8],
              v.a(), v[10], v[11], v[12], v.info.data());
     }},
    {"DGETRSNP_BATCH_STRIDED ",
     {0, 'T', 4, 2, 0, 4, 0, 0, 6, 12, 2},
     {{1, 'X'}, {2, -1}, {3, -1}, {5, 3}, {6, -1}, {8, 3}, {9, 11}, {10, -1}},
     [](arguments &v) {
         call(entries::getrsnp_batch_strided<double>, v.letter(1), v[2], v[3], v.a(), v[5], v[6], v.a(),
              v[8], v[9], v[10], v.info.data());
     }},
    {"DGETRI_BATCH_STRIDED ",
     {0, 4, 0, 5, 20, 0, 0, 2},
     {{1, -1}, {3, 3}, {4, 19}, {6, -1}, {7, -1}},
     [](arguments &v) {
         call(entries::getri_batch_strided<double>, v[1], v.a(), v[3], v[4], v.p(), v[6], v[7],
              v.info.data());
     }},
    {"DGETRI_OOP_BATCH_STRIDED ",
     {0, 4, 0, 5, 0, 0, 0, 0, 4, 16, 2},
     {{1, -1}, {3, 3}, {4, -1}, {6, -1}, {8, 3}, {9, 15}, {10, -1}},
     [](arguments &v) {
         call(entries::getri_oop_batch_strided<double>, v[1], v.a(), v[3], v[4], v.p(), v[6], v.a(), v[8],
              v[9], v[10], v.info.data());
     }},
    {"DPOTRF_BATCH_STRIDED ",
     {0, 'L', 4, 0, 4, 16, 2},
     {{1, 'N'}, {2, -1}, {4, 3}, {5, 15}, {6, -1}},
     [](arguments &v) {
         call(entries::potrf_batch_strided<double>, v.letter(1), v[2], v.a(), v[4], v[5], v[6],
              v.info.data());
     }},
    {"DGELS_BATCH_STRIDED ",
     {0, 'N', 4, 6, 2, 0, 4, 24, 0, 6, 12, 2},
     {{1, 'C'}, {2, -1}, {3, -1}, {4, -1}, {6, 3}, {7, 23}, {9, 5}, {10, 11}, {11, -1}},
     [](arguments &v) {
         call(entries::gels_batch_strided<double>, v.letter(1), v[2], v[3], v[4], v.a(), v[6], v[7], v.a(),
              v[9], v[10], v[11], v.info.data());
     }},
    {"DGETRF_BATCH ",
     {0, 4, 3, 0, 5, 0, 2, 1},
     {{1, -1}, {2, -1}, {4, 3}, {6, -1}, {7, -1}},
     [](arguments &v) {
         double *a[] = {v.a(), v.a()};
         int64_t *p[] = {v.p(), v.p()};
         call(entries::getrf_batch<double>, groups(v[1]).data(), groups(v[2]).data(), a,
              groups(v[4]).data(), p, v[6], groups(v[7]).data(), v.info.data());
     }},
    {"DGETRFNP_BATCH ",
     {0, 4, 3, 0, 5, 2, 1},
     {{1, -1}, {2, -1}, {4, 3}, {5, -1}, {6, -1}},
     [](arguments &v) {
         double *a[] = {v.a(), v.a()};
         call(entries::getrfnp_batch<double>, groups(v[1]).data(), groups(v[2]).data(), a,
              groups(v[4]).data(), v[5], groups(v[6]).data(), v.info.data());
     }},
    {"DGETRI_OOP_BATCH ",
     {0, 4, 0, 5, 0, 0, 6, 2, 1},
     {{1, -1}, {3, 3}, {6, 3}, {7, -1}, {8, -1}},
     [](arguments &v) {
         double *a[] = {v.a(), v.a()};
         int64_t *p[] = {v.p(), v.p()};
         call(entries::getri_oop_batch<double>, groups(v[1]).data(), a, groups(v[3]).data(), p, a,
              groups(v[6]).data(), v[7], groups(v[8]).data(), v.info.data());
     }},
    {"DGESVDA_BATCH_STRIDED ",
     {0, 0, 2, 6, 4, 0, 6, 24, 0, 4, 0, 6, 24, 0, 4, 16, 0, 0, 0, 500, 2},
     {{1, 2},
      {3, -1},
      {4, -1},
      {4, 7},
      {6, 5},
      {7, 23},
      {9, 3},
      {11, 5},
      {12, 23},
      {14, 3},
      {15, 15},
      {16, -1},
      {19, 59},
      {19, -2},
      {20, -1}},
     [](arguments &v) {
         const int64_t iparm[16] = {v[1]};
         call(entries::gesvda_batch_strided<double>, iparm, v.p(), v[3], v[4], v.a(), v[6], v[7], v.a(),
              v[9], v.a(), v[11], v[12], v.a(), v[14], v[15], static_cast<double>(v[16]), nullptr, v.a(),
              v[19], v[20], v.info.data());
     }},
    {"DGESVDA_BATCH_KERNEL ",
     {0, 1, 4, 6, 4, 0, 6, 0, 0, 6, 0, 4, 0, 0, 0, 500},
     {{1, -1}, {2, 5}, {2, -1}, {3, -1}, {4, 7}, {6, 5}, {9, 5}, {11, 3}, {15, 59}},
     [](arguments &v) {
         const int64_t iparm[16] = {v[1]};
         int64_t rank = v[2];
         call(entries::gesvda_batch_kernel<double>, iparm, &rank, v[3], v[4], v.a(), v[6], v.a(), v.a(),
              v[9], v.a(), v[11], static_cast<double>(v[12]), nullptr, v.a(), v[15], v.info.data());
         EXPECT_EQ(rank, v[2]);
     }},
    {"DGESVDA_BATCH_GETSIZES ",
     {0, 1, 6, 4, 2},
     {{1, 3}, {2, -1}, {3, -1}, {3, 7}, {4, -1}},
     [](arguments &v) {
         const int64_t iparm[16] = {v[1]};
         call(entries::gesvda_batch_getsizes<double>, iparm, v[2], v[3], v[4], v.p(), v.info.data());
     }},
};

TEST_F(lapack_batch_checks, report_the_bad_argument_and_write_nothing)
{
    for (const checked_routine &routine : routines)
        for (const bad_argument &bad : routine.bad) {
            arguments v{routine.good}, before = v;
            v.integers[bad.place] = bad.value;
            reports = 0;
            routine.run(v);
            const auto place = static_cast<int64_t>(bad.place);
            EXPECT_EQ(reports, 1) << routine.name << place;
            EXPECT_EQ(reported_name, routine.name);
            EXPECT_EQ(reported_place, place) << routine.name;
            EXPECT_EQ(v.info, (std::vector<int64_t>{-place, 77})) << routine.name;
            EXPECT_EQ(v.data, before.data) << routine.name << place;
            EXPECT_EQ(v.pivots, before.pivots) << routine.name << place;
        }
}

TEST_F(lapack_batch_checks, report_the_first_of_several)
{
    arguments v{{0, -1, -1, 0, -1, -1, 0, -1, -1}};
    routines[0].run(v);
    EXPECT_EQ(reported_place, 1);
    const int64_t n[] = {3, -1}, ld[] = {2, 4}, sizes[] = {-1, 1}, two = 2;
    double *const *nowhere = nullptr;
    call(entries::getrfnp_batch<double>, n, n, nowhere, ld, two, sizes, v.info.data());
    EXPECT_EQ(reported_place, 1) << "a test is made for all groups before the next one";
}

TEST_F(lapack_batch_checks, name_the_type)
{
    const int64_t bad = -1, one = 1;
    int64_t info = 0;
    const auto name = [&](const auto &entry) {
        call(entry, 'U', bad, nullptr, one, one, one, &info);
        return reported_name;
    };
    EXPECT_EQ(name(entries::potrf_batch_strided<float>), "SPOTRF_BATCH_STRIDED ");
    EXPECT_EQ(name(entries::potrf_batch_strided<std::complex<float>>), "CPOTRF_BATCH_STRIDED ");
    EXPECT_EQ(name(entries::potrf_batch_strided<std::complex<double>>), "ZPOTRF_BATCH_STRIDED ");
}

TEST_F(lapack_batch_checks, report_a_lack_of_memory)
{
    const int64_t m = 10, n = 5, count = 3, stride = m * n, nrhs = 6000, stridex = m * nrhs;
    std::vector<double> a(stride * count), b(stridex * count);
    std::generate(a.begin(), a.end(), blas_test::random_element<double>);
    const auto old_a = a, old_b = b;
    std::vector<int64_t> info(3, 5);
    ASSERT_EQ(xkl_serv_set_memory_limit(1, 1), 1); // megabyte; the workspace of one matrix takes more
    call(entries::gels_batch_strided<double>, 'N', m, n, nrhs, a.data(), m, stride, b.data(), m, stridex,
         count, info.data());
    xkl_serv_set_memory_limit(1, 0);
    EXPECT_EQ(reports, 1);
    EXPECT_EQ(reported_name, "DGELS_BATCH_STRIDED ");
    EXPECT_EQ(reported_place, 1000);
    EXPECT_EQ(info[0], -1000);
    EXPECT_EQ(a, old_a);
    EXPECT_EQ(b, old_b);
}

} // namespace
