// Descriptors over the default core: what they answer, refuse, keep and give back.
#include "fft/transform_module.h"
#include "fft_model.h"
#include "service/service_entries.h"

#include <gtest/gtest.h>

#include <cstring>
#include <dlfcn.h>
#include <string>

using namespace fft_model;

namespace {

std::string message(int32_t status)
{
    std::string text(200, '?');
    EXPECT_EQ(xkl_dft_dfti_error_message_external(&status, text.data(), 200), 0);
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

// The module as the core has opened it.
const xkl::fft::module_functions &module_of(const descriptor &)
{
    void *library = dlopen("libxkl_core_fft.so", RTLD_NOW | RTLD_NOLOAD);
    void *symbol = dlsym(library, "xkl_core_fft_module");
    return *reinterpret_cast<decltype(&xkl_core_fft_module)>(symbol)(nullptr, xkl::fft::module_version);
}

TEST(Descriptors, CreationRefusesWhatCannotBe)
{
    const auto status = [](int32_t precision, int32_t domain, const indices &lengths) {
        return descriptor(precision, domain, lengths).status;
    };
    EXPECT_EQ(status(DFTI_DOUBLE, DFTI_COMPLEX, {4}), DFTI_NO_ERROR);
    EXPECT_EQ(status(DFTI_DOUBLE, DFTI_COMPLEX, {4, -1}), DFTI_INVALID_CONFIGURATION);
    EXPECT_EQ(status(DFTI_DOUBLE, DFTI_COMPLEX, {4, 0}), DFTI_INVALID_CONFIGURATION);
    EXPECT_EQ(status(DFTI_DOUBLE, DFTI_COMPLEX, indices(8, 2)), DFTI_INVALID_CONFIGURATION);
    EXPECT_EQ(status(DFTI_DOUBLE, DFTI_COMPLEX, {}), DFTI_INVALID_CONFIGURATION);
    EXPECT_EQ(status(34, DFTI_COMPLEX, {4}), DFTI_INVALID_CONFIGURATION);
    EXPECT_EQ(status(DFTI_DOUBLE, 34, {4}), DFTI_INVALID_CONFIGURATION);
    EXPECT_EQ(status(DFTI_SINGLE, DFTI_REAL, {int64_t{1} << 60}), DFTI_1D_LENGTH_EXCEEDS_INT32);
    EXPECT_EQ(xkl_dft_dfti_create_dc1d(nullptr, 4, 0), DFTI_INCONSISTENT_CONFIGURATION);
    DFTI_DESCRIPTOR *handle = nullptr;
    EXPECT_EQ(xkl_dft_dfti_create_dr1d(&handle, -4, 0), DFTI_INVALID_CONFIGURATION);
    EXPECT_EQ(handle, nullptr);
    // More than any machine has: no memory at commit, and the process goes on.
    descriptor huge(DFTI_DOUBLE, DFTI_COMPLEX, {int64_t{1} << 46});
    ASSERT_EQ(huge.status, 0);
    EXPECT_EQ(huge.commit(), DFTI_MEMORY_ERROR);
    descriptor often(DFTI_SINGLE, DFTI_REAL, {2});
    often.set(DFTI_NUMBER_OF_TRANSFORMS, INT64_MAX);
    EXPECT_EQ(often.commit(), DFTI_MEMORY_ERROR);
}

TEST(Descriptors, HandlesAreLookedAt)
{
    int32_t parameter = DFTI_PLACEMENT;
    int64_t value = DFTI_INPLACE;
    DFTI_DESCRIPTOR *none = nullptr;
    DFTI_DESCRIPTOR wrong{};
    DFTI_DESCRIPTOR *not_one = &wrong;
    float x[2];
    for (DFTI_DESCRIPTOR **handle : {&none, &not_one}) {
        EXPECT_EQ(xkl_dft_dfti_set_value_intval(handle, &parameter, &value), DFTI_BAD_DESCRIPTOR);
        EXPECT_EQ(xkl_dft_dfti_get_value_intval(handle, &parameter, &value), DFTI_BAD_DESCRIPTOR);
        EXPECT_EQ(xkl_dft_dfti_commit_descriptor_external(handle), DFTI_BAD_DESCRIPTOR);
        EXPECT_EQ(xkl_dft_dfti_copy_descriptor_external(handle, &none), DFTI_BAD_DESCRIPTOR);
        EXPECT_EQ(xkl_dft_dfti_free_descriptor_external(handle), DFTI_BAD_DESCRIPTOR);
        EXPECT_EQ(xkl_dft_dfti_compute_forward_s(handle, x), DFTI_BAD_DESCRIPTOR);
    }
    EXPECT_EQ(xkl_dft_dfti_free_descriptor_external(nullptr), DFTI_INCONSISTENT_CONFIGURATION);
    EXPECT_EQ(xkl_dft_dfti_compute_backward_s(nullptr, x), DFTI_INCONSISTENT_CONFIGURATION);

    descriptor freed(DFTI_DOUBLE, DFTI_COMPLEX, {4});
    DFTI_DESCRIPTOR *again = freed.handle;
    EXPECT_EQ(xkl_dft_dfti_free_descriptor_external(&freed.handle), 0);
    EXPECT_EQ(freed.handle, nullptr);
    EXPECT_NE(again, nullptr);
}

TEST(Descriptors, SettingsComeBackAndUncommit)
{
    descriptor one(DFTI_SINGLE, DFTI_REAL, {6, 5});
    struct setting {
        int32_t parameter;
        int64_t initial, good, bad;
    };
    const setting settings[] = {
        {DFTI_FORWARD_DOMAIN, DFTI_REAL, DFTI_COMPLEX, 34},
        {DFTI_PRECISION, DFTI_SINGLE, DFTI_DOUBLE, 37},
        {DFTI_NUMBER_OF_TRANSFORMS, 1, 3, 0},
        {DFTI_COMPLEX_STORAGE, DFTI_COMPLEX_COMPLEX, DFTI_REAL_REAL, 43},
        {DFTI_PLACEMENT, DFTI_INPLACE, DFTI_NOT_INPLACE, 45},
        {DFTI_WORKSPACE, DFTI_ALLOW, DFTI_AVOID, 50},
        {DFTI_ORDERING, DFTI_ORDERED, DFTI_BACKWARD_SCRAMBLED, 50},
        {DFTI_TRANSPOSE, DFTI_NONE, DFTI_ALLOW, 50},
        {DFTI_NUMBER_OF_USER_THREADS, 1, 8, 0},
        {DFTI_THREAD_LIMIT, 0, 2, -1},
        {DFTI_DESTROY_INPUT, DFTI_AVOID, DFTI_ALLOW, 50},
    };
    for (const auto &[parameter, initial, good, bad] : settings) {
        EXPECT_EQ(one.get(parameter), initial) << parameter;
        ASSERT_EQ(one.commit(), 0) << parameter;
        EXPECT_EQ(one.get(DFTI_COMMIT_STATUS), DFTI_COMMITTED);
        EXPECT_EQ(one.set(parameter, bad), DFTI_INCONSISTENT_CONFIGURATION) << parameter;
        EXPECT_EQ(one.get(DFTI_COMMIT_STATUS), DFTI_COMMITTED);
        EXPECT_EQ(one.set(parameter, good), 0) << parameter;
        EXPECT_EQ(one.get(parameter), good) << parameter;
        EXPECT_EQ(one.get(DFTI_COMMIT_STATUS), DFTI_UNCOMMITTED) << parameter;
        EXPECT_EQ(one.handle->forward, nullptr);
        EXPECT_EQ(one.handle->backward, nullptr);
        double x = 0;
        EXPECT_EQ(xkl_dft_dfti_compute_forward_d(&one.handle, &x), DFTI_INVALID_CONFIGURATION);
    }
    EXPECT_EQ(one.set(DFTI_COMMIT_STATUS, DFTI_COMMITTED), DFTI_INCONSISTENT_CONFIGURATION);
    EXPECT_EQ(one.set(DFTI_DIMENSION, 1), DFTI_INCONSISTENT_CONFIGURATION);
    EXPECT_EQ(one.get(DFTI_DIMENSION), 2);
    char name[10];
    one.handle->operations->set_name(one.handle, "spectrum analyser", 17);
    one.handle->operations->get_name(one.handle, name, 10);
    EXPECT_STREQ(name, "spectrum ");
    const int32_t scale = DFTI_BACKWARD_SCALE;
    double factor = 0;
    one.scale(2, 0.25);
    EXPECT_EQ(xkl_dft_dfti_get_value_dblval(&one.handle, &scale, &factor), 0);
    EXPECT_EQ(factor, 0.25);
}

TEST(Descriptors, StorageAndFormatGoTogether)
{
    descriptor one(DFTI_DOUBLE, DFTI_REAL, {8});
    EXPECT_EQ(one.get(DFTI_CONJUGATE_EVEN_STORAGE), DFTI_COMPLEX_COMPLEX);
    EXPECT_EQ(one.get(DFTI_PACKED_FORMAT), DFTI_CCE_FORMAT);
    one.set(DFTI_PACKED_FORMAT, DFTI_PERM_FORMAT);
    EXPECT_EQ(one.get(DFTI_CONJUGATE_EVEN_STORAGE), DFTI_COMPLEX_REAL);
    EXPECT_EQ(one.commit(), 0);
    one.set(DFTI_CONJUGATE_EVEN_STORAGE,
            DFTI_COMPLEX_COMPLEX); // both were set now, and contradict each other
    EXPECT_EQ(one.get(DFTI_PACKED_FORMAT), DFTI_PERM_FORMAT);
    EXPECT_EQ(one.commit(), DFTI_INCONSISTENT_CONFIGURATION);

    descriptor other(DFTI_DOUBLE, DFTI_REAL, {8});
    other.set(DFTI_CONJUGATE_EVEN_STORAGE, DFTI_COMPLEX_REAL);
    EXPECT_EQ(other.get(DFTI_PACKED_FORMAT), DFTI_CCS_FORMAT);
}

TEST(Descriptors, CommitRefusesWhatItCannotCompute)
{
    descriptor packed(DFTI_DOUBLE, DFTI_REAL, {8, 4, 2});
    packed.set(DFTI_CONJUGATE_EVEN_STORAGE, DFTI_COMPLEX_REAL);
    EXPECT_EQ(packed.commit(), DFTI_UNIMPLEMENTED);
    packed.set(DFTI_CONJUGATE_EVEN_STORAGE, DFTI_COMPLEX_COMPLEX);
    EXPECT_EQ(packed.commit(), DFTI_NO_ERROR);
    packed.set(DFTI_REAL_STORAGE, DFTI_REAL_COMPLEX);
    EXPECT_EQ(packed.commit(), DFTI_UNIMPLEMENTED);
    EXPECT_EQ(packed.get(DFTI_COMMIT_STATUS), DFTI_UNCOMMITTED);
    EXPECT_EQ(packed.handle->forward, nullptr);

    descriptor coinciding(DFTI_DOUBLE, DFTI_COMPLEX, {8, 4});
    coinciding.strides({0, {1, 0}, 0}, {0, {1, 8}, 0});
    EXPECT_EQ(coinciding.commit(), DFTI_INCONSISTENT_CONFIGURATION);
    descriptor mixed(DFTI_DOUBLE, DFTI_COMPLEX, {8});
    mixed.set(DFTI_COMPLEX_STORAGE, DFTI_REAL_COMPLEX);
    EXPECT_EQ(mixed.commit(), DFTI_UNIMPLEMENTED);
}

TEST(Descriptors, ComputationsNeedTheirArrays)
{
    std::vector<double> x(64, 1), y(64, 2);
    descriptor one(DFTI_DOUBLE, DFTI_COMPLEX, {8});
    one.commit();
    EXPECT_EQ(one.handle->array_count, 1);
    EXPECT_EQ(one.compute(true, nullptr), DFTI_INCONSISTENT_CONFIGURATION);
    EXPECT_EQ(one.compute(true, x.data(), y.data()), DFTI_INCONSISTENT_CONFIGURATION);
    auto *complex = reinterpret_cast<XKL_Complex16 *>(x.data());
    EXPECT_EQ(xkl_dft_dfti_compute_forward_zz(&one.handle, complex, complex + 8),
              DFTI_INCONSISTENT_CONFIGURATION);
    EXPECT_EQ(xkl_dft_dfti_compute_forward_c(&one.handle, reinterpret_cast<XKL_Complex8 *>(x.data())),
              DFTI_INCONSISTENT_CONFIGURATION);
    EXPECT_EQ(x, std::vector<double>(64, 1));
    EXPECT_EQ(xkl_dft_dfti_compute_forward_z(&one.handle, complex), 0);
    EXPECT_EQ(x[0], 8);

    one.set(DFTI_PLACEMENT, DFTI_NOT_INPLACE);
    one.commit();
    EXPECT_EQ(one.handle->array_count, 2);
    EXPECT_EQ(one.compute(true, x.data()), DFTI_INCONSISTENT_CONFIGURATION);
    EXPECT_EQ(one.compute(true, x.data(), x.data()), DFTI_INCONSISTENT_CONFIGURATION);
    one.set(DFTI_COMPLEX_STORAGE, DFTI_REAL_REAL);
    one.commit();
    EXPECT_EQ(one.handle->array_count, 4);
    EXPECT_EQ(one.compute(false, x.data(), y.data(), nullptr, y.data() + 8),
              DFTI_INCONSISTENT_CONFIGURATION);
    EXPECT_EQ(one.compute(false, x.data(), y.data(), x.data() + 8, nullptr),
              DFTI_INCONSISTENT_CONFIGURATION);
    EXPECT_EQ(
        xkl_dft_dfti_compute_backward_dddd(&one.handle, x.data(), y.data(), x.data() + 8, y.data() + 8), 0);
}

TEST(Descriptors, CopiesKeepAllSettings)
{
    descriptor one(DFTI_SINGLE, DFTI_COMPLEX, {3, 5});
    one.set(DFTI_NUMBER_OF_TRANSFORMS, 2);
    one.set(DFTI_INPUT_DISTANCE, 20);
    one.scale(0.5, 1);
    one.strides({2, {1, 4}, 0}, {0, {5, 1}, 0});
    one.handle->operations->set_name(one.handle, "first", 5);
    ASSERT_EQ(one.commit(), 0);
    DFTI_DESCRIPTOR *copy = nullptr;
    ASSERT_EQ(xkl_dft_dfti_copy_descriptor_external(&one.handle, &copy), 0);
    EXPECT_EQ(copy->commit_status, DFTI_COMMITTED);
    std::vector<float> x(100, 1), y(100, 1);
    EXPECT_EQ(one.compute(true, x.data()), 0);
    EXPECT_EQ(copy->forward(copy, y.data(), nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(x, y);
    EXPECT_EQ(x[4], 7.5f); // the sum of 15, halved, at the offset
    int64_t strides[3];
    copy->operations->get_output_strides(copy, strides);
    EXPECT_EQ(std::vector<int64_t>(strides, strides + 3), (std::vector<int64_t>{0, 5, 1}));
    EXPECT_EQ(xkl_dft_dfti_free_descriptor_external(&copy), 0);
}

TEST(Descriptors, DefaultLayoutsByStorageAndPlacement)
{
    const auto layout = [](int32_t placement, int32_t format, bool forward) {
        descriptor one(DFTI_DOUBLE, DFTI_REAL, {6, 5});
        one.set(DFTI_PLACEMENT, placement);
        one.set(DFTI_PACKED_FORMAT, format);
        int64_t strides[3], distance;
        const auto &operations = *one.handle->operations;
        (forward ? operations.get_forward_strides : operations.get_backward_strides)(one.handle, strides);
        (forward ? operations.get_forward_distance : operations.get_backward_distance)(one.handle,
                                                                                       &distance);
        return indices{strides[1], strides[2], distance};
    };
    EXPECT_EQ(layout(DFTI_NOT_INPLACE, DFTI_CCE_FORMAT, true), (indices{1, 6, 30}));
    EXPECT_EQ(layout(DFTI_NOT_INPLACE, DFTI_CCE_FORMAT, false), (indices{1, 4, 20}));
    EXPECT_EQ(layout(DFTI_INPLACE, DFTI_CCE_FORMAT, true), (indices{1, 8, 40}));
    EXPECT_EQ(layout(DFTI_INPLACE, DFTI_CCE_FORMAT, false), (indices{1, 4, 20}));
    EXPECT_EQ(layout(DFTI_NOT_INPLACE, DFTI_CCS_FORMAT, false), (indices{1, 8, 48}));
    EXPECT_EQ(layout(DFTI_INPLACE, DFTI_CCS_FORMAT, true), (indices{1, 8, 48}));
    EXPECT_EQ(layout(DFTI_INPLACE, DFTI_PERM_FORMAT, true), (indices{1, 6, 30}));
    EXPECT_EQ(layout(DFTI_NOT_INPLACE, DFTI_PACK_FORMAT, false), (indices{1, 6, 30}));
}

TEST(Descriptors, EqualOnesShareTheirPlans)
{
    const indices lengths{40, 30};
    descriptor first(DFTI_DOUBLE, DFTI_COMPLEX, lengths);
    ASSERT_EQ(first.commit(), 0);
    const auto &module = module_of(first);
    const int64_t before = module.plannings();
    for (int i = 0; i < 10; ++i) {
        descriptor next(DFTI_DOUBLE, DFTI_COMPLEX, lengths);
        ASSERT_EQ(next.commit(), 0);
        ASSERT_EQ(next.commit(), 0);
    }
    xkl_dft_dfti_free_descriptor_external(&first.handle);
    descriptor later(DFTI_DOUBLE, DFTI_COMPLEX, lengths);
    ASSERT_EQ(later.commit(), 0);
    EXPECT_EQ(module.plannings(), before);
    later.set(DFTI_PLACEMENT, DFTI_NOT_INPLACE);
    ASSERT_EQ(later.commit(), 0);
    EXPECT_EQ(module.plannings(), before + 1);
}

// Plans that nobody uses are kept for later, some of them; all else goes.
TEST(Descriptors, GiveBackTheirMemory)
{
    descriptor one(DFTI_DOUBLE, DFTI_COMPLEX, {8});
    ASSERT_EQ(one.commit(), 0);
    const auto &module = module_of(one);
    int32_t blocks = 0, blocks_after = 0;
    const int64_t before = xkl_serv_mem_stat(&blocks);
    for (int64_t n = 1; n <= 300; ++n) {
        descriptor each(n % 2 ? DFTI_DOUBLE : DFTI_SINGLE, DFTI_REAL, {n});
        each.set(DFTI_PACKED_FORMAT, DFTI_PERM_FORMAT);
        ASSERT_EQ(each.commit(), 0);
        std::vector<double> x(static_cast<size_t>(n), 1);
        ASSERT_EQ(each.compute(true, x.data()), 0);
        ASSERT_EQ(each.compute(false, x.data()), 0);
    }
    EXPECT_EQ(xkl_serv_mem_stat(&blocks_after), before);
    EXPECT_EQ(blocks_after, blocks);
    EXPECT_LE(module.plans(), 70);
    std::vector<descriptor *> many;
    for (int64_t n = 1; n <= 100; ++n)
        many.push_back(new descriptor(DFTI_DOUBLE, DFTI_COMPLEX, {n}));
    for (descriptor *each : many)
        ASSERT_EQ(each->commit(), 0);
    EXPECT_GE(module.plans(), 100);
    for (descriptor *each : many)
        delete each;
    EXPECT_LE(module.plans(), 70);
}

TEST(Descriptors, MessagesAndClasses)
{
    const int32_t two = 2, three = 3;
    EXPECT_EQ(xkl_dft_dfti_error_class_external(&two, &two), 1);
    EXPECT_EQ(xkl_dft_dfti_error_class_external(&two, &three), 0);
    for (int32_t status = 0; status <= 9; ++status)
        EXPECT_EQ(message(status), xkl_serv_get_msg(status == 4 ? 784 : 774 + status, 0));
    EXPECT_EQ(message(10), xkl_serv_get_msg(784, 0));
    EXPECT_EQ(message(-1), message(4));
    EXPECT_EQ(message(6), "this transform is not implemented");
    const int32_t status = 2;
    char text[12] = "...........";
    xkl_dft_dfti_error_message_external(&status, text, 10);
    EXPECT_STREQ(text, "the descri.");
    char version[198];
    xkl_dft_dfti_get_version_string(version, 198);
    EXPECT_NE(std::string(version).find("XKL "), std::string::npos);
    EXPECT_EQ(xkl_dft_dfti_commit_descriptor_dm(nullptr), DFTI_UNIMPLEMENTED);
}

} // namespace
