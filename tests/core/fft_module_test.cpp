// The transform module as a file: missing, wrong, planning by measurement, and its results beside FFTW itself
// in another process.
#include "fft_model.h"
#include "process.h"
#include "service/service_entries.h"

#include <cstdio>
#include <fstream>

using namespace fft_model;

// The program exports names of FFTW, as the interface library does. A module that bound to them would end
// here.
extern "C" {
void *fftw_plan_guru64_dft(void)
{
    abort();
}
void *fftw_plan_guru64_dft_r2c(void)
{
    abort();
}
void *fftw_plan_guru64_dft_c2r(void)
{
    abort();
}
void fftw_execute_dft(void)
{
    abort();
}
void fftw_destroy_plan(void)
{
    abort();
}
void *fftw_malloc(void)
{
    abort();
}
}

namespace {

void expect_no_module(const std::string &file, const char *reason)
{
    in_new_process([&] {
        const variable named("XKL_CORE_FFT", file);
        descriptor one(DFTI_DOUBLE, DFTI_COMPLEX, {4});
        EXPECT_EQ(one.status, DFTI_UNIMPLEMENTED);
        EXPECT_EQ(one.handle, nullptr);
        const std::string text = xkl_serv_get_msg(780, 0);
        EXPECT_NE(text.substr(0, 80).find("libxkl_core_fft.so"), std::string::npos) << text;
        EXPECT_NE(text.substr(0, 80).find("XKL_CORE_FFT"), std::string::npos) << text;
        EXPECT_NE(text.find(reason), std::string::npos) << text;
    });
}

TEST(Module, MissingIsAStatusWhoseMessageSaysWhatToDo)
{
    expect_no_module("/nowhere/libxkl_core_fft.so", "No such file");
    expect_no_module("libm.so.6", "xkl_core_fft_module");
}

TEST(Module, CanBeThereLater)
{
    in_new_process([] {
        {
            const variable named("XKL_CORE_FFT", "/nowhere/libxkl_core_fft.so");
            EXPECT_EQ(descriptor(DFTI_DOUBLE, DFTI_COMPLEX, {4}).status, DFTI_UNIMPLEMENTED);
        }
        EXPECT_EQ(descriptor(DFTI_DOUBLE, DFTI_COMPLEX, {4}).status, DFTI_NO_ERROR);
    });
}

std::vector<double> random_reals(int64_t count)
{
    std::mt19937_64 random(static_cast<uint64_t>(count));
    std::uniform_real_distribution<double> uniform(-1, 1);
    std::vector<double> all(static_cast<size_t>(count));
    for (double &each : all)
        each = uniform(random);
    return all;
}

// Largest difference in units of the largest number.
double difference(const std::vector<double> &a, const std::vector<double> &b)
{
    double most = 0, largest = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        most = std::max(most, std::abs(a[i] - b[i]));
        largest = std::max(largest, std::abs(b[i]));
    }
    return most / largest;
}

// There and back, in place or not, and the input of the first transform as it was.
void expect_round_trip(int32_t domain, const indices &lengths, int64_t batch)
{
    const int64_t points = product(lengths);
    const int64_t reals = domain == DFTI_COMPLEX ? 2 * points : points;
    const int64_t spectrum =
        domain == DFTI_COMPLEX ? reals : points / lengths[0] * (lengths[0] / 2 + 1) * 2;
    descriptor one(DFTI_DOUBLE, domain, lengths);
    one.set(DFTI_PLACEMENT, DFTI_NOT_INPLACE);
    one.set(DFTI_NUMBER_OF_TRANSFORMS, batch);
    one.scale(1, 1 / static_cast<double>(points));
    ASSERT_EQ(one.commit(), 0);
    const std::vector<double> x = random_reals(reals * batch);
    std::vector<double> input = x, y(static_cast<size_t>(spectrum * batch)), back(x.size());
    ASSERT_EQ(one.compute(true, input.data(), y.data()), 0);
    EXPECT_EQ(input, x);
    const std::vector<double> kept = y;
    ASSERT_EQ(one.compute(false, y.data(), back.data()), 0);
    EXPECT_EQ(y, kept);
    EXPECT_LT(difference(back, x), 1e-13);
}

TEST(Module, RoundTripsOfLengthsWithLargePrimeFactors)
{
    for (const int32_t domain : {DFTI_COMPLEX, DFTI_REAL}) {
        for (const int64_t n : {65537, 99991, 2 * 50021, 3 * 7 * 4999, 524287})
            expect_round_trip(domain, {n}, 1);
        expect_round_trip(domain, {1009, 31}, 3);
        expect_round_trip(domain, {2, 1013, 11}, 2);
        expect_round_trip(domain, {769}, 300);
        expect_round_trip(domain, {64}, 9973); // no number of threads divides it
    }
}

TEST(Module, PlansByMeasurementWithoutTouchingTheArrays)
{
    in_new_process([] {
        const variable plan("XKL_DFT_PLAN", "measure");
        for (const int32_t domain : {DFTI_COMPLEX, DFTI_REAL}) {
            expect_round_trip(domain, {720}, 1);
            expect_round_trip(domain, {48, 50}, 7);
        }
    });
}

// What FFTW itself computes, by a program that is linked with it as usual.
std::vector<double> by_fftw(const std::string &what, const indices &lengths, const std::vector<double> &in,
                            size_t size)
{
    const std::string base = testing::TempDir() + "fft_" + std::to_string(getpid());
    std::ofstream(base + ".in", std::ios::binary)
        .write(reinterpret_cast<const char *>(in.data()),
               static_cast<std::streamsize>(in.size() * sizeof(double)));
    std::string command = std::string(XKL_FFT_YARDSTICK) + " " + what + " " + base + ".in " + base + ".out";
    for (auto each = lengths.rbegin(); each != lengths.rend(); ++each)
        command += " " + std::to_string(*each);
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    std::vector<double> out(size);
    std::ifstream result(base + ".out", std::ios::binary);
    result.read(reinterpret_cast<char *>(out.data()), static_cast<std::streamsize>(size * sizeof(double)));
    EXPECT_EQ(result.gcount(), static_cast<std::streamsize>(size * sizeof(double)));
    std::remove((base + ".in").c_str());
    std::remove((base + ".out").c_str());
    return out;
}

TEST(Module, LargeTransformsAreThoseOfFftw)
{
    const std::vector<indices> shapes{
        {1 << 20}, {3 * 5 * 7 * 11 * 13 * 17}, {600, 500}, {100, 90, 80}, {50, 20, 10, 30}};
    for (const indices &lengths : shapes) {
        const int64_t points = product(lengths), half = points / lengths[0] * (lengths[0] / 2 + 1);
        const std::vector<double> x = random_reals(2 * points);
        std::vector<double> in = x, out(x.size());
        descriptor complex(DFTI_DOUBLE, DFTI_COMPLEX, lengths);
        complex.set(DFTI_PLACEMENT, DFTI_NOT_INPLACE);
        ASSERT_EQ(complex.commit(), 0);
        ASSERT_EQ(complex.compute(true, in.data(), out.data()), 0);
        EXPECT_LT(difference(out, by_fftw("forward", lengths, x, x.size())), 1e-14);
        ASSERT_EQ(complex.compute(false, in.data(), out.data()), 0);
        EXPECT_LT(difference(out, by_fftw("backward", lengths, x, x.size())), 1e-14);

        const std::vector<double> r(x.begin(), x.begin() + points);
        in = r;
        out.resize(static_cast<size_t>(2 * half));
        descriptor real(DFTI_DOUBLE, DFTI_REAL, lengths);
        real.set(DFTI_PLACEMENT, DFTI_NOT_INPLACE);
        ASSERT_EQ(real.commit(), 0);
        ASSERT_EQ(real.compute(true, in.data(), out.data()), 0);
        const auto spectrum = by_fftw("real", lengths, r, out.size());
        EXPECT_LT(difference(out, spectrum), 1e-14);
    }
}

} // namespace
