// Convolution and correlation beside plain loops.
#include "conv_task.h"
#include "service/service_entries.h"

#include <thread>

using namespace conv;

namespace {

template <class T>
class Conv : public testing::Test {
};
TYPED_TEST_SUITE(Conv, all_types);

/// Statuses of a mode where the core may lack transforms
bool has_transforms()
{
    static const bool found = [] {
        settings s{.mode = VSL_CONV_MODE_FFT, .x = {2}, .y = {2}, .z = {3}};
        handle made;
        strided<double> x(s.x), y(s.y), z(s.z);
        EXPECT_EQ(create<double>(made, s), VSL_CC_STATUS_OK);
        const int32_t status = execute<double>(made, &x, y, z);
        EXPECT_TRUE(status == VSL_CC_STATUS_OK || status == VSL_CC_ERROR_METHOD) << status;
        return status == VSL_CC_STATUS_OK;
    }();
    return found;
}

template <class T>
double tolerance_of(const settings &s)
{
    const bool widened = s.internal_precision == VSL_CONV_PRECISION_DOUBLE;
    return widened ? 1e-14 : 8 * std::numeric_limits<real_of<T>>::epsilon();
}

/// A whole life of a task, with everything in z that is not the task's left as it was
template <class T>
void check(const settings &s, std::mt19937 &random)
{
    strided<T> x(s.x, random), y(s.y, random), z(s.z, random);
    x.fill(random);
    y.fill(random);
    const T untouched(17);
    std::fill(z.memory.begin(), z.memory.end(), untouched);
    handle made;
    ASSERT_EQ(create(made, s, s.fixed ? &x : nullptr), VSL_CC_STATUS_OK);
    edit(made, s);
    ASSERT_EQ(execute(made, s.fixed ? nullptr : &x, y, z), VSL_CC_STATUS_OK);
    expect_sums(s, x, y, z, tolerance_of<T>(s));
    vector place(s.z.size());
    do
        z.at(place) = untouched;
    while (advance(place, s.z));
    ASSERT_EQ(std::ranges::count(z.memory, untouched), std::ssize(z.memory)) << "written between elements";
}

int32_t between(std::mt19937 &random, int32_t least, int32_t most)
{
    return std::uniform_int_distribution<int32_t>(least, most)(random);
}

settings random_settings(std::mt19937 &random, int32_t rank, int32_t longest)
{
    settings s;
    s.kind = random() % 2 ? convolution : correlation;
    s.mode = has_transforms() ? between(random, 0, 2) : between(random, 0, 1);
    s.fixed = random() % 2;
    s.internal_precision = between(random, 0, 2);
    const bool starts = random() % 4, decimates = random() % 2;
    for (int32_t d = 0; d < rank; ++d) {
        s.x.push_back(between(random, 1, longest));
        s.y.push_back(between(random, 1, longest));
        const int32_t full = s.x[d] + s.y[d] - 1;
        s.z.push_back(between(random, 1, full + 2));
        if (starts)
            s.start.push_back(between(random, -full, full));
        if (decimates)
            s.decimation.push_back(random() % 3 ? between(random, 1, 3) : between(random, 1, full + 1));
    }
    return s;
}

template <class T>
void check_random(int32_t rank, int32_t longest, int repetitions)
{
    for (int i = 0; i < repetitions; ++i) {
        std::mt19937 random(static_cast<unsigned>(1000 * rank + i));
        const settings s = random_settings(random, rank, longest);
        SCOPED_TRACE(testing::Message()
                     << "case " << i << ", kind " << s.kind << ", mode " << s.mode << ", x "
                     << testing::PrintToString(s.x) << ", y " << testing::PrintToString(s.y) << ", z "
                     << testing::PrintToString(s.z) << ", start " << testing::PrintToString(s.start)
                     << ", decimation " << testing::PrintToString(s.decimation));
        check<T>(s, random);
        if (testing::Test::HasFatalFailure())
            return;
    }
}

TYPED_TEST(Conv, RandomTasksOfEachRank)
{
    check_random<TypeParam>(1, 9, 300);
    check_random<TypeParam>(1, 400, 100);
    check_random<TypeParam>(2, 14, 100);
    check_random<TypeParam>(3, 6, 60);
    check_random<TypeParam>(4, 4, 40);
    check_random<TypeParam>(7, 2, 10);
}

// Lengths around the widths of registers and tiles, where ends are masked out.
TYPED_TEST(Conv, EveryLengthAroundATile)
{
    std::mt19937 random(3);
    for (const int32_t x : {1, 2, 7, 8, 9, 31, 33, 64, 65, 130})
        for (const int32_t y : {1, 3, 16, 17, 63, 64, 66, 129, 257}) {
            const settings s{.mode = VSL_CONV_MODE_DIRECT, .x = {x}, .y = {y}, .z = {x + y - 1}};
            check<TypeParam>(s, random);
            ASSERT_FALSE(this->HasFatalFailure()) << x << " by " << y;
        }
}

// An infinity goes to the elements that the definition takes it to, and nowhere else.
TYPED_TEST(Conv, InfinitiesStayInPlace)
{
    const settings s{.mode = VSL_CONV_MODE_DIRECT, .x = {70}, .y = {90}, .z = {159}};
    strided<TypeParam> x(s.x), y(s.y), z(s.z);
    handle made;
    ASSERT_EQ(create<TypeParam>(made, s), VSL_CC_STATUS_OK);
    for (const int at : {0, 35, 69}) {
        std::fill(x.memory.begin(), x.memory.end(), TypeParam(1));
        std::fill(y.memory.begin(), y.memory.end(), TypeParam(2));
        x.memory[static_cast<size_t>(at)] = std::numeric_limits<real_of<TypeParam>>::infinity();
        ASSERT_EQ(execute(made, &x, y, z), VSL_CC_STATUS_OK);
        for (int i = 0; i < 159; ++i) {
            const auto element = std::real(z.memory[static_cast<size_t>(i)]);
            EXPECT_EQ(std::isinf(element), i >= at && i < at + 90) << at << ", " << i;
            EXPECT_FALSE(std::isnan(element)) << at << ", " << i;
        }
    }
}

// Sizes for which the automatic mode takes transforms, one large or many in blocks, and long decimations.
TYPED_TEST(Conv, LongArrays)
{
    struct sizes {
        vector x, y, z, start, decimation;
    };
    const sizes all[] = {
        {{1024}, {20000}, {500}, {-20}, {43}},         {{6000}, {6000}, {300}, {5800}, {1}},
        {{20000}, {1000}, {700}, {10000}, {7}},        {{60, 70}, {150, 140}, {20, 20}, {30, 35}, {9, 5}},
        {{20, 5, 30}, {40, 40, 9}, {6, 5, 7}, {}, {}}, {{3}, {30000}, {400}, {29700}, {1}},
        {{2000}, {90000}, {12}, {0}, {8000}},
    };
    std::mt19937 random(5);
    for (const sizes &each : all)
        for (const int32_t mode : {VSL_CONV_MODE_AUTO, VSL_CONV_MODE_DIRECT})
            for (const bool fixed : {false, true}) {
                settings s{.mode = mode, .x = each.x, .y = each.y, .z = each.z};
                s.start = each.start;
                s.decimation = each.decimation;
                s.fixed = fixed;
                check<TypeParam>(s, random);
                s.kind = correlation;
                check<TypeParam>(s, random);
                ASSERT_FALSE(this->HasFatalFailure()) << testing::PrintToString(each.x) << " mode " << mode;
            }
}

template <class T>
strided<T> result_in_mode(settings s, int32_t mode, const strided<T> &x, const strided<T> &y)
{
    s.mode = mode;
    strided<T> z(s.z);
    handle made;
    EXPECT_EQ(create<T>(made, s), VSL_CC_STATUS_OK);
    EXPECT_EQ(execute(made, &x, y, z), VSL_CC_STATUS_OK);
    return z;
}

// Full results for which the automatic mode takes transforms, in blocks and in one piece: the same bits as
// in that mode, and the direct sums but for rounding.
TYPED_TEST(Conv, AutomaticModeTakesTransformsForLongArrays)
{
    if (!has_transforms())
        GTEST_SKIP() << "no transforms";
    std::mt19937 random(7);
    for (const auto &[x_length, y_length] :
         {std::pair{1 << 10, 1 << 15}, {1 << 13, 3 << 9}, {5000, 5000}}) {
        const settings s{.x = {x_length}, .y = {y_length}, .z = {x_length + y_length - 1}};
        strided<TypeParam> x(s.x), y(s.y);
        x.fill(random);
        y.fill(random);
        const auto chosen = result_in_mode(s, VSL_CONV_MODE_AUTO, x, y).memory;
        EXPECT_EQ(chosen, result_in_mode(s, VSL_CONV_MODE_FFT, x, y).memory);
        const auto direct = result_in_mode(s, VSL_CONV_MODE_DIRECT, x, y).memory;
        double worst = 0;
        for (size_t i = 0; i < direct.size(); ++i)
            worst = std::max<double>(worst, std::abs(direct[i] - chosen[i]));
        EXPECT_LE(worst, tolerance_of<TypeParam>(s) * x.norm() * y.norm());
    }
}

TYPED_TEST(Conv, TaskWithItsOwnXNeedsTheCallersNoMore)
{
    std::mt19937 random(11);
    for (const int32_t mode : {VSL_CONV_MODE_DIRECT, VSL_CONV_MODE_AUTO}) {
        const settings s{.kind = correlation, .mode = mode, .x = {900}, .y = {2500}, .z = {150}};
        strided<TypeParam> x(s.x, random), y(s.y), z(s.z);
        x.fill(random);
        handle made, copy;
        {
            strided<TypeParam> lent = x;
            ASSERT_EQ(create(made, s, &lent), VSL_CC_STATUS_OK);
            std::fill(lent.memory.begin(), lent.memory.end(), TypeParam(0));
        }
        ASSERT_EQ(xkl_conv_copytask(&copy.task, made.task), VSL_CC_STATUS_OK);
        for (int execution = 0; execution < 3; ++execution) {
            y.fill(random);
            ASSERT_EQ(execute<TypeParam>(execution < 2 ? made : copy, nullptr, y, z), VSL_CC_STATUS_OK);
            expect_sums(s, x, y, z, tolerance_of<TypeParam>(s));
        }
        // A change after executions is seen by the next one, and not by the copy.
        settings changed = s;
        changed.start = {7};
        changed.decimation = {3};
        edit(made, changed);
        ASSERT_EQ(execute<TypeParam>(made, nullptr, y, z), VSL_CC_STATUS_OK);
        expect_sums(changed, x, y, z, tolerance_of<TypeParam>(s));
        ASSERT_EQ(execute<TypeParam>(copy, nullptr, y, z), VSL_CC_STATUS_OK);
        expect_sums(s, x, y, z, tolerance_of<TypeParam>(s));
    }
}

TEST(ConvThreads, OneTaskManyReaders)
{
    std::mt19937 random(13);
    const settings s{.x = {500}, .y = {6000}, .z = {6499}};
    strided<double> x(s.x), y(s.y), alone(s.z);
    x.fill(random);
    y.fill(random);
    handle made, first;
    ASSERT_EQ(create<double>(made, s, &x), VSL_CC_STATUS_OK);
    ASSERT_EQ(create<double>(first, s, &x), VSL_CC_STATUS_OK);
    ASSERT_EQ(execute<double>(first, nullptr, y, alone), VSL_CC_STATUS_OK);
    std::vector<strided<double>> results(8, strided<double>(s.z));
    std::vector<std::thread> readers;
    for (strided<double> &z : results)
        readers.emplace_back([&] {
            for (int i = 0; i < 5; ++i)
                EXPECT_EQ(execute<double>(made, nullptr, y, z), VSL_CC_STATUS_OK);
        });
    for (std::thread &each : readers)
        each.join();
    for (const strided<double> &z : results)
        EXPECT_EQ(z.memory, alone.memory);
}

// The same bits for any number of threads, which long rows and many rows use.
TEST(ConvThreads, ResultsDoNotDependOnTheirNumber)
{
    std::mt19937 random(17);
    for (const settings &s :
         {settings{.mode = VSL_CONV_MODE_DIRECT, .x = {800}, .y = {9000}, .z = {9799}},
          settings{.mode = VSL_CONV_MODE_DIRECT, .x = {9, 9}, .y = {200, 210}, .z = {208, 218}}}) {
        strided<double> x(s.x), y(s.y), one(s.z), four(s.z);
        x.fill(random);
        y.fill(random);
        handle made;
        ASSERT_EQ(create<double>(made, s), VSL_CC_STATUS_OK);
        xkl_serv_set_dynamic(0);
        xkl_serv_set_num_threads_local(1);
        EXPECT_EQ(execute(made, &x, y, one), VSL_CC_STATUS_OK);
        xkl_serv_set_num_threads_local(4);
        EXPECT_EQ(execute(made, &x, y, four), VSL_CC_STATUS_OK);
        xkl_serv_set_num_threads_local(0);
        xkl_serv_set_dynamic(1);
        EXPECT_EQ(one.memory, four.memory);
    }
}

} // namespace
