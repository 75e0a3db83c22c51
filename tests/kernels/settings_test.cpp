// Mode, status and callback of the kernel library, and what a call does with its errors.
#include "library.h"

#include <cerrno>
#include <cmath>
#include <limits>
#include <thread>
#include <vector>
#include <xmmintrin.h>

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();

/// The default settings before and after each test
struct Settings : testing::Test {
    Settings() { reset(); }
    ~Settings() override { reset(); }
    static void reset()
    {
        set_mode(VML_HA);
        set_status(0);
        set_callback(nullptr);
    }
};

std::vector<double> run(const std::string &function, std::vector<double> a, int set = best_set())
{
    std::vector<double> r(a.size(), -99);
    kernel<const double *, double *>(function, set)(static_cast<int32_t>(a.size()), a.data(), r.data());
    return r;
}

TEST_F(Settings, AreGivenBackAsTheyWereSet)
{
    EXPECT_EQ(set_mode(0xfedcba98), VML_HA);
    EXPECT_EQ(kernel_entry<uint32_t (*)()>("GetMode")(), 0xfedcba98);
    EXPECT_EQ(set_mode(VML_HA), 0xfedcba98);
    EXPECT_EQ(set_status(-2), 0);
    EXPECT_EQ(status(), -2);
    EXPECT_EQ(kernel_entry<int32_t (*)()>("ClearErrStatus")(), -2);
    EXPECT_EQ(status(), 0);
    const xkl_vml_error_callback callback = [](xkl_vml_error *) { return 0; };
    EXPECT_EQ(set_callback(callback), nullptr);
    EXPECT_EQ(kernel_entry<xkl_vml_error_callback (*)()>("GetErrorCallBack")(), callback);
    EXPECT_EQ(kernel_entry<xkl_vml_error_callback (*)()>("ClearErrorCallBack")(), callback);
    EXPECT_EQ(kernel_entry<xkl_vml_error_callback (*)()>("GetErrorCallBack")(), nullptr);
}

TEST_F(Settings, BelongToTheirThread)
{
    set_mode(VML_EP | VML_ERRMODE_IGNORE);
    set_status(4);
    std::thread([] {
        EXPECT_EQ(kernel_entry<uint32_t (*)()>("GetMode")(), VML_HA | VML_ERRMODE_DEFAULT);
        EXPECT_EQ(status(), 0);
        run("dLn", {-1});
        EXPECT_EQ(status(), VML_STATUS_ERRDOM);
    }).join();
    EXPECT_EQ(status(), 4);
}

struct error_case {
    const char *function;
    double a;
    int32_t status;
    double r;
};

bool same_but_for_rounding(double x, double y)
{
    if (std::isnan(x) || std::isnan(y))
        return std::isnan(x) && std::isnan(y);
    const bool near = x == y || std::abs(x - y) <= 1e-15 * std::abs(y);
    return near && std::signbit(x) == std::signbit(y);
}

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
const error_case error_cases[] = {
    {"dSqrt", -1, VML_STATUS_ERRDOM, nan},
    {"dSqrt", -0., 0, -0.},
    {"dSqrt", nan, 0, nan},
    {"dInv", 0, VML_STATUS_SING, inf},
    {"dInv", -0., VML_STATUS_SING, -inf},
    {"dInv", inf, 0, 0},
    {"dInv", 0x1p1023, VML_STATUS_UNDERFLOW, 0x1p-1023},
    {"dInv", 0x1p-1074, VML_STATUS_OVERFLOW, inf},
    {"dSqr", 1e200, VML_STATUS_OVERFLOW, inf},
    {"dSqr", 1e-200, VML_STATUS_UNDERFLOW, 0},
    {"dSqr", 0, 0, 0},
    {"dExp", 710, VML_STATUS_OVERFLOW, inf},
    {"dExp", -746, VML_STATUS_UNDERFLOW, 0},
    {"dExp", -inf, 0, 0},
    {"dExp", inf, 0, inf},
    {"dExp", nan, 0, nan},
    {"dExp2", 1024, VML_STATUS_OVERFLOW, inf},
    {"dExp10", 309, VML_STATUS_OVERFLOW, inf},
    {"dExpm1", 710, VML_STATUS_OVERFLOW, inf},
    {"dExpm1", -inf, 0, -1},
    {"dLn", 0, VML_STATUS_SING, -inf},
    {"dLn", -0., VML_STATUS_SING, -inf},
    {"dLn", -1, VML_STATUS_ERRDOM, nan},
    {"dLn", inf, 0, inf},
    {"dLog1p", -1, VML_STATUS_SING, -inf},
    {"dLog1p", -2, VML_STATUS_ERRDOM, nan},
    {"dLog2", 0x1p-1074, 0, -1074},
    {"dLog10", -inf, VML_STATUS_ERRDOM, nan},
    {"dSin", inf, VML_STATUS_ERRDOM, nan},
    {"dSin", -0., 0, -0.},
    {"dCos", -inf, VML_STATUS_ERRDOM, nan},
    {"dTan", inf, VML_STATUS_ERRDOM, nan},
    {"dSinpi", 3, 0, 0},
    {"dSinpi", -0x1p60, 0, -0.},
    {"dCospi", 0x1p60, 0, 1},
    {"dCospi", 0x1p52 + 1, 0, -1},
    {"dCospi", 2.5, 0, 0},
    {"dSinpi", 1e9 + .5, 0, 1},
    {"dAsin", 1.5, VML_STATUS_ERRDOM, nan},
    {"dAcos", -inf, VML_STATUS_ERRDOM, nan},
    {"dSinh", 710.4, 0, std::sinh(710.4)},
    {"dSinh", -711, VML_STATUS_OVERFLOW, -inf},
    {"dCosh", 710.4, 0, std::cosh(710.4)},
    {"dAcosh", .5, VML_STATUS_ERRDOM, nan},
    {"dAtanh", -1, VML_STATUS_SING, -inf},
    {"dAtanh", 2, VML_STATUS_ERRDOM, nan},
    {"dErfc", 28, VML_STATUS_UNDERFLOW, 0},
    {"dErfc", inf, 0, 0},
    {"dLGamma", -3, VML_STATUS_SING, inf},
    {"dLGamma", -inf, 0, inf},
    {"dTGamma", 0, VML_STATUS_SING, inf},
    {"dTGamma", -3, VML_STATUS_ERRDOM, nan},
    {"dTGamma", 172, VML_STATUS_OVERFLOW, inf},
};

TEST_F(Settings, StatusOfOneElement)
{
    for (const error_case &each : error_cases)
        for (int set = 0; set <= best_set(); ++set)
            for (const uint32_t accuracy : accuracies) {
                const std::string what = std::string(each.function) + "(" + std::to_string(each.a) +
                                         ") set " + std::to_string(set) + " mode " +
                                         std::to_string(accuracy);
                set_mode(accuracy);
                set_status(0);
                const double r = run(each.function, {each.a}, set)[0];
                EXPECT_EQ(status(), each.status) << what;
                EXPECT_TRUE(same_but_for_rounding(r, each.r)) << what << " is " << r << ", not " << each.r;
            }
}

TEST_F(Settings, TheSmallestStatusOfACallStays)
{
    run("dLn", {0, 1, -1, 0});
    EXPECT_EQ(status(), VML_STATUS_ERRDOM);
    run("dLn", {1, 2, 3});
    EXPECT_EQ(status(), VML_STATUS_ERRDOM) << "a call without errors leaves it alone";
    run("dLn", {1, 2, 0});
    EXPECT_EQ(status(), VML_STATUS_SING) << "a call with errors does not";
}

std::vector<xkl_vml_error> seen;

TEST_F(Settings, TheCallbackSeesEachErrorAndMayChangeItsResult)
{
    seen.clear();
    set_callback([](xkl_vml_error *error) {
        seen.push_back(*error);
        error->r1[0] = 7;
        return 0;
    });
    std::vector<double> a(1000, .5), r(1000);
    a[3] = -2, a[256] = 0, a[999] = -4;
    const auto ln = kernel<const double *, int64_t, double *, int64_t>("dLnI", best_set());
    ln(500, a.data() + 1, 2, r.data(), 1); // elements 1, 128, 499
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_STREQ(seen[0].name, "vdLnI");
    EXPECT_EQ(seen[0].index, 1);
    EXPECT_EQ(seen[0].a[0], -2);
    EXPECT_EQ(seen[0].status, VML_STATUS_ERRDOM);
    EXPECT_TRUE(std::isnan(seen[0].r1[0]));
    EXPECT_EQ(seen[1].index, 499);
    EXPECT_EQ(r[1], 7);
    EXPECT_EQ(r[499], 7);
    EXPECT_EQ(r[0], std::log(.5));
}

TEST_F(Settings, TheCallbackSeesBothArgumentsOfEachType)
{
    seen.clear();
    set_callback([](xkl_vml_error *error) {
        seen.push_back(*error);
        return 0;
    });
    const float big[2] = {3e38f, 1}, bigger[2] = {2e38f, 1};
    float r[2];
    kernel<const float *, const float *, float *>("sAdd", best_set())(2, big, bigger, r);
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].a[0], 3e38f);
    EXPECT_EQ(seen[0].b[0], 2e38f);
    EXPECT_EQ(seen[0].r1[0], inf);
    EXPECT_EQ(seen[0].status, VML_STATUS_OVERFLOW);
    const double x[2] = {1, 1e308}, y[2] = {2, 1e308};
    double z[2];
    kernel<const double *, const double *, double *>("zAdd", best_set())(1, x, y, z);
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[1].a[1], 1e308);
    EXPECT_EQ(seen[1].r1[0], 3);
    EXPECT_EQ(seen[1].r1[1], inf);
    EXPECT_STREQ(seen[1].name, "vzAdd");
}

TEST_F(Settings, ModesChooseWhoIsTold)
{
    static int calls;
    calls = 0;
    set_callback([](xkl_vml_error *) { return ++calls; });
    set_mode(VML_HA | VML_ERRMODE_IGNORE);
    errno = 0;
    run("dLn", {-1});
    run("dTGamma", {1000}); // by way of the C library, which sets errno
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(status(), 0);
    EXPECT_EQ(calls, 0);
    set_mode(VML_HA | VML_ERRMODE_ERRNO);
    errno = 0;
    run("dLn", {-1});
    EXPECT_EQ(errno, EDOM);
    run("dLn", {0});
    EXPECT_EQ(errno, ERANGE);
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(status(), VML_STATUS_SING);
    set_mode(VML_HA | VML_ERRMODE_STDERR | VML_ERRMODE_CALLBACK);
    testing::internal::CaptureStderr();
    run("dLn", {1, 2, 3, -1, -2});
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "XKL: vdLn: an argument is outside the domain (element 3)\n");
    EXPECT_EQ(calls, 2);
}

TEST_F(Settings, DenormalNumbersAsTheModeSays)
{
    const std::vector<double> denormal = {0x1p-1060};
    const auto control = [] { return _mm_getcsr() & 0xffc0; };
    const unsigned before = control();
    EXPECT_EQ(run("dExpm1", denormal)[0], 0x1p-1060);
    set_mode(VML_HA | VML_FTZDAZ_ON);
    EXPECT_EQ(run("dSqrt", denormal)[0], 0);
    EXPECT_EQ(control(), before);
    _mm_setcsr(_mm_getcsr() | 0x8040);
    const unsigned flushing = control();
    set_mode(VML_HA);
    EXPECT_EQ(run("dSqrt", denormal)[0], 0) << "the caller's own choice";
    set_mode(VML_HA | VML_FTZDAZ_OFF);
    EXPECT_EQ(run("dSqrt", denormal)[0], 0x1p-530);
    EXPECT_EQ(control(), flushing);
    _mm_setcsr((_mm_getcsr() & ~0x8040u));
}

} // namespace
