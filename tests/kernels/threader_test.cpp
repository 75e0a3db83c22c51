// The threaders of the core over the kernel library: vectors that are long enough to be shared.
#include "core_vml.h"
#include "library.h"
#include "service/service_entries.h"
#include "xkl_service_types.h"

#include "process.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <mutex>
#include <set>
#include <thread>
#include <xmmintrin.h>

extern "C" void xkl_serv_set_num_threads(int count);

namespace {

constexpr int count = 300000; // long enough for several threads, and no multiple of a part's length
constexpr float expensive = 100;

struct Threader : testing::Test {
    Threader() { xkl_serv_set_num_threads(4); }
    ~Threader() override
    {
        set_mode(VML_HA);
        set_status(0);
        set_callback(nullptr);
        xkl_serv_set_num_threads(1);
    }
};

std::vector<double> numbers(size_t n)
{
    std::vector<double> a(n);
    for (size_t i = 0; i < n; ++i)
        a[i] = .01 + static_cast<double>(i % 1013) * .037;
    return a;
}

TEST_F(Threader, ThreadsGiveWhatOneThreadGives)
{
    const std::vector<double> a = numbers(2 * count);
    std::vector<double> alone(2 * count, -1), shared(2 * count, -1);
    for (const uint32_t mode : accuracies) {
        set_mode(mode);
        kernel<const double *, double *>("dSin", best_set())(count, a.data(), alone.data());
        xkl_vml_serv_threader_d_1i_1o(kernel_code("dSin", best_set()), count, a.data(), shared.data(),
                                      kernel_library(), expensive);
        EXPECT_EQ(alone, shared) << mode;
        kernel<const double *, int64_t, double *, int64_t>("dSinI", best_set())(count, a.data(), 2,
                                                                                alone.data(), 2);
        xkl_vml_serv_threader_d_1iI_1oI(kernel_code("dSinI", best_set()), count, a.data(), 2, shared.data(),
                                        2, kernel_library(), expensive);
        EXPECT_EQ(alone, shared) << mode;
    }
}

std::mutex lock;
std::set<std::thread::id> threads_seen;

// Takes long enough for all threads to get a part.
void add_scalar(int32_t n, const xkl_complex16 *a, xkl_complex16 *r, const xkl_complex16 *scalar)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    {
        const std::lock_guard guard(lock);
        threads_seen.insert(std::this_thread::get_id());
    }
    for (int32_t i = 0; i < n; ++i)
        r[i] = {a[i].real + scalar->real, a[i].imag + scalar->imag};
}

TEST_F(Threader, PartsCoverTheVectorAndScalarsStay)
{
    std::vector<xkl_complex16> a(count), r(count);
    for (int i = 0; i < count; ++i)
        a[static_cast<size_t>(i)] = {1. * i, -2. * i};
    const xkl_complex16 scalar = {.5, .25};
    xkl_vml_serv_threader_z_cz_2i_z_1o(reinterpret_cast<const void *>(&add_scalar), count, a.data(),
                                       r.data(), &scalar, kernel_library(), expensive);
    for (int i = 0; i < count; ++i) {
        ASSERT_EQ(r[static_cast<size_t>(i)].real, i + .5);
        ASSERT_EQ(r[static_cast<size_t>(i)].imag, .25 - 2. * i);
    }
    EXPECT_GT(threads_seen.size(), 1u);
}

std::atomic<uint32_t> modes_seen{0}, other_modes{0};
std::atomic<unsigned> controls_seen{0};

void note_settings(int32_t, const double *, double *)
{
    ++(kernel_entry<uint32_t (*)()>("GetMode")() == (VML_LA | VML_FTZDAZ_ON) ? modes_seen : other_modes);
    controls_seen |= _mm_getcsr() & 0x6000;
}

TEST_F(Threader, WorkersTakeOverTheCallersSettings)
{
    set_mode(VML_LA | VML_FTZDAZ_ON);
    _mm_setcsr(_mm_getcsr() | 0x2000); // round down
    double x = 0;
    xkl_vml_serv_threader_d_1i_1o(reinterpret_cast<const void *>(&note_settings), count, &x, &x,
                                  kernel_library(), expensive);
    _mm_setcsr(_mm_getcsr() & ~0x2000u);
    EXPECT_GT(modes_seen, 1u);
    EXPECT_EQ(other_modes, 0u);
    EXPECT_EQ(controls_seen, 0x2000u);
}

TEST_F(Threader, ErrorsOfThePartsAreTheCallers)
{
    std::vector<double> a = numbers(count), r(count);
    const auto ln = [&] {
        xkl_vml_serv_threader_d_1i_1o(kernel_code("dLn", best_set()), count, a.data(), r.data(),
                                      kernel_library(), expensive);
    };
    set_status(1000);
    ln();
    EXPECT_EQ(status(), 1000);
    a[count - 1] = 0;
    set_mode(VML_HA | VML_ERRMODE_ERRNO);
    errno = 0;
    ln();
    EXPECT_EQ(status(), VML_STATUS_SING);
    EXPECT_EQ(errno, ERANGE);
    a[count / 2] = -1;
    ln();
    EXPECT_EQ(status(), VML_STATUS_ERRDOM);
    EXPECT_EQ(errno, EDOM);
    set_status(0);
    set_mode(VML_HA | VML_ERRMODE_IGNORE);
    ln();
    EXPECT_EQ(status(), 0);
}

std::vector<int64_t> order;
std::set<std::thread::id> callback_threads;

TEST_F(Threader, TheCallbackRunsOnTheCallersThreadInOrder)
{
    std::vector<double> a = numbers(count), r(count);
    for (size_t i = 0; i < count; i += 30000)
        a[i] = -1;
    set_callback([](xkl_vml_error *error) {
        order.push_back(error->index);
        callback_threads.insert(std::this_thread::get_id());
        return 0;
    });
    xkl_vml_serv_threader_d_1i_1o(kernel_code("dLn", best_set()), count, a.data(), r.data(),
                                  kernel_library(), expensive);
    EXPECT_EQ(order, (std::vector<int64_t>{0, 30000, 60000, 90000, 120000, 150000, 180000, 210000, 240000,
                                           270000}));
    EXPECT_EQ(callback_threads, std::set<std::thread::id>{std::this_thread::get_id()});
}

TEST(KernelLibrary, IsOpenedBesideTheCoreOrWhereItIsNamed)
{
    in_new_process([] { EXPECT_NE(dlsym(xkl_serv_load_vml(), "xkl_vml_kernel_dExp_ttab"), nullptr); });
    const variable named("XKL_KERNELS", KERNEL_LIBRARY);
    in_new_process([] { EXPECT_NE(dlsym(xkl_serv_load_vml(), "xkl_vml_kernel_dExp_ttab"), nullptr); });
    const variable wrong("XKL_KERNELS", "/no/such/kernels.so");
    in_new_process([] {
        EXPECT_EQ(xkl_serv_load_vml(), nullptr);
        const std::string text = xkl_serv_get_msg(771, 0);
        EXPECT_NE(text.find("/no/such/kernels.so"), std::string::npos) << text;
        EXPECT_NE(text.find("XKL_KERNELS"), std::string::npos) << text;
        testing::internal::CaptureStderr();
        EXPECT_EQ(xkl_serv_print(1, 772, 1, "xkl_vml_kernel_dExp_ttab"), 0);
        EXPECT_NE(testing::internal::GetCapturedStderr().find("has no kernel xkl_vml_kernel_dExp_ttab"),
                  std::string::npos);
    });
}

} // namespace
