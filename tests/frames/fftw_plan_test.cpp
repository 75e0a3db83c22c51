// Plans of the FFTW3 interface after they are made: execution, the record, the settings, a program's own
// constructor, and the routines around planning.
#include "fftw_core.h"
#include "fftw_family.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace {

using steps = std::vector<std::string>;

template <class Real>
class fftw_plans : public testing::Test {
  protected:
    using family = fftw<Real>;
    using complex = typename family::complex;

    fftw_plans()
    {
        for (int i = 0; i < 8; ++i)
            core.name(&array[i], std::string(1, static_cast<char>('a' + i)));
    }
    ~fftw_plans() { fftw3_xkl.thread_count = 1; }

    Real *x(int i) { return &array[i]; }
    complex *z(int i) { return reinterpret_cast<complex *>(&array[i]); }

    /// What one call does.
    template <class Call>
    steps steps_of(const Call &call)
    {
        core.steps.clear();
        call();
        return core.steps;
    }

    fftw_core core;
    Real array[16] = {};
};

using precisions = testing::Types<double, float>;
TYPED_TEST_SUITE(fftw_plans, precisions);

TYPED_TEST(fftw_plans, only_minus_one_is_forward)
{
    using family = fftw<TypeParam>;
    for (const int sign : {-1, 1, 0, -2, 7})
        for (const bool in_place : {true, false}) {
            const auto plan = family::plan_dft_1d(4, this->z(0), this->z(in_place ? 0 : 1), sign, 0);
            ASSERT_NE(plan, nullptr);
            EXPECT_EQ(this->steps_of([&] { family::execute(plan); }),
                      steps{std::string(sign == -1 ? "forward" : "backward") + (in_place ? " a" : " a b")});
            family::destroy_plan(plan);
        }
}

TYPED_TEST(fftw_plans, execute_with_their_own_or_other_arrays)
{
    using family = fftw<TypeParam>;
    const auto r2c = family::plan_dft_r2c_1d(4, this->x(0), this->z(1), 0);
    const auto c2r = family::plan_dft_c2r_1d(4, this->z(0), this->x(0), 0);
    const fftw_iodim dim = {4, 1, 1};
    const auto split =
        family::plan_guru_split_dft(1, &dim, 0, nullptr, this->x(0), this->x(1), this->x(2), this->x(3), 0);
    const auto split_in_place =
        family::plan_guru_split_dft(1, &dim, 0, nullptr, this->x(0), this->x(1), this->x(0), this->x(1), 0);
    const auto r2r = family::plan_r2r_1d(4, this->x(0), this->x(1), FFTW_DHT, 0);
    const auto r2r_in_place = family::plan_r2r_1d(4, this->x(0), this->x(0), FFTW_DHT, 0);
    EXPECT_EQ(this->steps_of([&] {
        for (const auto plan : {r2c, c2r, split, split_in_place, r2r, r2r_in_place})
            family::execute(plan);
    }),
              (steps{"forward a b", "backward a", "forward a b c d", "forward a b", "r2r a b", "r2r a a"}));
    EXPECT_EQ(this->steps_of([&] {
        family::execute_dft_r2c(r2c, this->x(4), this->z(5));
        family::execute_dft_c2r(c2r, this->z(4), this->x(4));
        family::execute_split_dft(split, this->x(4), this->x(5), this->x(6), this->x(7));
        family::execute_split_dft(split_in_place, this->x(4), this->x(5), this->x(4), this->x(5));
        family::execute_r2r(r2r, this->x(4), this->x(5));
        family::execute_r2r(r2r_in_place, this->x(4), this->x(4));
        family::execute(r2c); // still has its own
    }),
              (steps{"forward e f", "backward e", "forward e f g h", "forward e f", "r2r e f", "r2r e e",
                     "forward a b"}));
    for (const auto plan : {r2c, c2r, split, split_in_place, r2r, r2r_in_place})
        family::destroy_plan(plan);
    EXPECT_EQ(this->core.live, 0);
    EXPECT_EQ(this->core.blocks(), 0);
}

TYPED_TEST(fftw_plans, nothing_happens_without_a_plan_or_arrays)
{
    using family = fftw<TypeParam>;
    const auto plan = family::plan_dft_1d(4, this->z(0), this->z(1), -1, 0);
    const auto empty = reinterpret_cast<typename family::plan>(fftw3_xkl.plan_constructor());
    EXPECT_EQ(this->steps_of([&] {
        for (const typename family::plan each : {typename family::plan(nullptr), empty}) {
            family::execute(each);
            family::execute_dft(each, this->z(0), this->z(1));
            family::execute_dft_r2c(each, this->x(0), this->z(1));
            family::execute_dft_c2r(each, this->z(0), this->x(1));
            family::execute_r2r(each, this->x(0), this->x(1));
            family::execute_split_dft(each, this->x(0), this->x(1), this->x(2), this->x(3));
        }
        family::execute_dft(plan, nullptr, this->z(1));
        family::execute_dft(plan, this->z(0), nullptr);
        family::execute_split_dft(plan, this->x(0), nullptr, this->x(2), this->x(3));
        family::execute_split_dft(plan, this->x(0), this->x(1), this->x(2), nullptr);
        family::execute_split_dft_r2c(plan, this->x(0), this->x(1), this->x(2));
        family::execute_split_dft_c2r(plan, this->x(0), this->x(1), this->x(2));
        family::destroy_plan(nullptr);
    }),
              steps{});
    family::destroy_plan(empty);
    family::destroy_plan(plan);
    EXPECT_EQ(this->core.blocks(), 0);
}

TYPED_TEST(fftw_plans, memory_has_the_alignment_of_the_settings)
{
    using family = fftw<TypeParam>;
    fftw3_xkl.alignment = 128;
    recorded.calls.clear();
    family::free(family::malloc(10));
    family::free(family::alloc_real(10));
    family::free(family::alloc_complex(10));
    fftw3_xkl.alignment = 64;
    std::vector<words> asked;
    for (const core_call &call : recorded.calls)
        if (call.entry == "xkl_serv_malloc")
            asked.push_back(call.arguments);
    const int64_t size = sizeof(TypeParam);
    EXPECT_EQ(asked, (std::vector<words>{{10, 128}, {10 * size, 128}, {20 * size, 128}}));
    EXPECT_EQ(this->core.blocks(), 0);
    EXPECT_EQ(family::alloc_complex(SIZE_MAX / 4), nullptr) << "its size does not fit";
    EXPECT_EQ(family::alignment_of(reinterpret_cast<TypeParam *>(0x1028)), 40);
    EXPECT_EQ(family::alignment_of(reinterpret_cast<TypeParam *>(0x10c0)), 0);
}

TYPED_TEST(fftw_plans, threads_and_time_limit_are_kept_in_the_settings)
{
    using family = fftw<TypeParam>;
    EXPECT_EQ(family::init_threads(), 1);
    EXPECT_EQ(fftw3_xkl.thread_count, this->core.threads);
    family::plan_with_nthreads(3);
    EXPECT_EQ(fftw3_xkl.thread_count, 3);
    EXPECT_EQ(family::planner_nthreads(), 3);
    family::cleanup_threads();
    EXPECT_EQ(fftw3_xkl.thread_count, 1);
    family::set_timelimit(2.5);
    EXPECT_EQ(fftw3_xkl.time_limit, 2.5);
    fftw3_xkl.time_limit = 0;
}

TYPED_TEST(fftw_plans, routines_about_planning_answer_that_there_is_nothing)
{
    using family = fftw<TypeParam>;
    const auto plan = family::plan_dft_1d(4, this->z(0), this->z(1), -1, 0);
    EXPECT_EQ(family::import_wisdom(nullptr, nullptr), 0);
    EXPECT_EQ(family::import_wisdom_from_file(nullptr), 0);
    EXPECT_EQ(family::import_wisdom_from_filename("any"), 0);
    EXPECT_EQ(family::import_wisdom_from_string("any"), 0);
    EXPECT_EQ(family::import_system_wisdom(), 0);
    EXPECT_EQ(family::export_wisdom_to_filename("any"), 0);
    EXPECT_EQ(family::export_wisdom_to_string(), nullptr);
    EXPECT_EQ(family::sprint_plan(plan), nullptr);
    EXPECT_EQ(family::cost(plan), 0.0);
    EXPECT_EQ(family::estimate_cost(plan), 0.0);
    EXPECT_STREQ(family::version, "FFTW 3.3.4 wrappers to  Quorl XKLlib");
    EXPECT_STREQ(family::cc, "");
    family::destroy_plan(plan);
}

TEST(fftw_settings, start_as_documented)
{
    EXPECT_EQ(fftw3_xkl.reserved, 0);
    EXPECT_EQ(fftw3_xkl.thread_count, 1);
    EXPECT_EQ(fftw3_xkl.time_limit, 0.0);
    EXPECT_EQ(fftw3_xkl.reserved_word, 1);
    EXPECT_EQ(fftw3_xkl.alignment, 64);
}

TEST(fftw_record, is_empty_when_new_and_owns_its_buffers)
{
    fftw_core core;
    fftw3_xkl_plan *plan = fftw3_xkl.plan_constructor();
    ASSERT_NE(plan, nullptr);
    EXPECT_EQ(recorded.blocks.back().size, 96u);
    void *record_words[12];
    std::memcpy(record_words, plan, sizeof record_words);
    for (const int word : {0, 1, 2, 3, 4, 5, 6, 7, 8, 10})
        EXPECT_EQ(record_words[word], nullptr) << word;
    EXPECT_NE(record_words[9], nullptr);
    plan->destroy(nullptr); // nothing
    void *const five = plan->buffers[0] = fftw_malloc(1), *const seven = plan->buffers[2] = fftw_malloc(1);
    recorded.calls.clear();
    fftw_destroy_plan(reinterpret_cast<fftw_plan>(plan));
    std::vector<int64_t> released;
    for (const core_call &call : recorded.calls)
        released.push_back(call.arguments.at(0));
    EXPECT_EQ(released, (words{reinterpret_cast<int64_t>(seven), reinterpret_cast<int64_t>(five),
                               reinterpret_cast<int64_t>(plan)}));
    EXPECT_EQ(core.blocks(), 0);
}

/// A constructor as a program may have one: it counts, and its plans end in a routine of its own.
int constructed = 0, destroyed = 0;
fftw3_xkl_plan *(*library_constructor)() = nullptr;
void (*library_destroy)(fftw3_xkl_plan *) = nullptr;

void own_destroy(fftw3_xkl_plan *plan)
{
    ++destroyed;
    library_destroy(plan);
}

fftw3_xkl_plan *own_constructor()
{
    ++constructed;
    fftw3_xkl_plan *plan = library_constructor();
    library_destroy = plan->destroy;
    plan->destroy = own_destroy;
    return plan;
}

class own_constructor_in_place {
  public:
    explicit own_constructor_in_place(fftw3_xkl_plan *(*constructor)())
    {
        library_constructor = fftw3_xkl.plan_constructor;
        fftw3_xkl.plan_constructor = constructor;
        constructed = destroyed = 0;
    }
    ~own_constructor_in_place() { fftw3_xkl.plan_constructor = library_constructor; }
};

TEST(fftw_constructor, of_the_program_makes_the_plans_of_both_families)
{
    fftw_core core;
    const own_constructor_in_place mine(own_constructor);
    double x[4];
    float y[4];
    const fftw_plan r2r = fftw_plan_r2r_1d(4, x, x, FFTW_DHT, 0);
    const fftwf_plan r2c = fftwf_plan_dft_r2c_1d(2, y, reinterpret_cast<fftwf_complex *>(y), 0);
    EXPECT_EQ(constructed, 2);
    fftw_destroy_plan(r2r);
    fftwf_destroy_plan(r2c);
    EXPECT_EQ(destroyed, 2);
    EXPECT_EQ(core.steps[1], "create sr1d 2");
    core.steps.clear();
    core.failing_step = 1;
    EXPECT_EQ(fftw_plan_r2r_1d(4, x, x, FFTW_DHT, 0), nullptr);
    core.failing_step = 3;
    EXPECT_EQ(fftwf_plan_dft_r2c_1d(2, y, reinterpret_cast<fftwf_complex *>(y), 0), nullptr);
    EXPECT_EQ(destroyed, 4) << "also those that fail";
    EXPECT_EQ(core.live, 0);
    EXPECT_EQ(core.blocks(), 0);
}

TEST(fftw_constructor, that_gives_nothing_gives_no_plan)
{
    fftw_core core;
    double x[4];
    {
        const own_constructor_in_place mine([]() -> fftw3_xkl_plan * { return nullptr; });
        EXPECT_EQ(fftw_plan_r2r_1d(4, x, x, FFTW_DHT, 0), nullptr);
        EXPECT_EQ(fftw_plan_dft_r2c_1d(2, x, reinterpret_cast<fftw_complex *>(x), 0), nullptr);
    }
    EXPECT_EQ(recorded.calls.size(), 0u);
}

} // namespace
