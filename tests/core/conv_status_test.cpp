// What convolution answers to bad arguments and without memory: a status, and nothing is written.
#include "conv_task.h"
#include "service/service_entries.h"

using namespace conv;

namespace {

void *const unwritten = reinterpret_cast<void *>(uintptr_t{0x5a5a5a5a});

struct creation {
    int32_t kind = 1, one = 1, mode = VSL_CONV_MODE_AUTO, domain = 1, precision = 2, dims = 2;
    vector x = {2, 3}, y = {4, 5}, z = {5, 7};
    bool null_x = false, null_y = false, null_z = false;

    int32_t run(void **task) const
    {
        return xkl_conv_newtask(task, kind, one, mode, domain, precision, dims, null_x ? nullptr : x.data(),
                                null_y ? nullptr : y.data(), null_z ? nullptr : z.data());
    }
};

TEST(ConvStatus, CreationWithBadArguments)
{
    constexpr int32_t huge = INT32_MAX;
    const std::pair<creation, int32_t> refused[] = {
        {{.kind = 0}, VSL_CC_ERROR_KIND},
        {{.kind = 3}, VSL_CC_ERROR_KIND},
        {{.one = 2}, VSL_CC_ERROR_JOB},
        {{.mode = -1}, VSL_CC_ERROR_MODE},
        {{.mode = 3}, VSL_CC_ERROR_MODE},
        {{.domain = 3}, VSL_CC_ERROR_TYPE},
        {{.precision = 0}, VSL_CC_ERROR_EXTERNAL_PRECISION},
        {{.dims = 0}, VSL_CC_ERROR_DIMS},
        {{.dims = -1}, VSL_CC_ERROR_DIMS},
        {{.dims = 8}, VSL_CC_ERROR_DIMS},
        {{.x = {2, 0}}, VSL_CC_ERROR_XSHAPE},
        {{.y = {-1, 2}}, VSL_CC_ERROR_YSHAPE},
        {{.z = {1, 0}}, VSL_CC_ERROR_ZSHAPE},
        {{.null_x = true}, VSL_CC_ERROR_XSHAPE},
        {{.null_y = true}, VSL_CC_ERROR_YSHAPE},
        {{.null_z = true}, VSL_CC_ERROR_ZSHAPE},
        {{.dims = 3, .x = {1, 1, 1}, .y = {huge, huge, huge}, .z = {1, 1, 1}}, VSL_CC_ERROR_YSHAPE},
    };
    for (const auto &[arguments, status] : refused) {
        void *task = unwritten;
        EXPECT_EQ(arguments.run(&task), status);
        EXPECT_EQ(task, unwritten);
    }
    EXPECT_EQ(creation().run(nullptr), VSL_CC_ERROR_BAD_ARGUMENT);

    void *task = unwritten;
    const int32_t shape = 3, stride = 1, zero = 0;
    const double x[3] = {1, 2, 3};
    const auto with_x = [&](const double *values, const int32_t *strides) {
        return xkl_conv_newtaskx(&task, 1, 1, 0, 1, 2, 1, &shape, &shape, &shape, values, strides);
    };
    EXPECT_EQ(with_x(nullptr, &stride), VSL_CC_ERROR_X);
    EXPECT_EQ(with_x(x, nullptr), VSL_CC_ERROR_XSTRIDE);
    EXPECT_EQ(with_x(x, &zero), VSL_CC_ERROR_XSTRIDE);
    EXPECT_EQ(task, unwritten);
}

class ConvTask : public testing::Test {
  protected:
    void SetUp() override
    {
        ASSERT_EQ(create<double>(plain_, shapes_), VSL_CC_STATUS_OK);
        ASSERT_EQ(create<double>(fixed_, shapes_, &x_), VSL_CC_STATUS_OK);
        std::fill(z_.memory.begin(), z_.memory.end(), 17.0);
    }
    void TearDown() override { EXPECT_EQ(std::ranges::count(z_.memory, 17.0), std::ssize(z_.memory)); }
    int32_t run(const double *x, const int32_t *xs, const double *y, const int32_t *ys, double *z,
                const int32_t *zs)
    {
        return xkl_conv_exec(plain_.task, x, xs, y, ys, z, zs);
    }

    settings shapes_{.x = {3}, .y = {4}, .z = {6}};
    strided<double> x_{shapes_.x}, y_{shapes_.y}, z_{shapes_.z};
    handle plain_, fixed_;
};

TEST_F(ConvTask, ExecutionWithBadArguments)
{
    const double *x = x_.memory.data(), *y = y_.memory.data();
    double *z = z_.memory.data();
    const int32_t stride = 1, zero = 0;
    EXPECT_EQ(run(nullptr, &stride, y, &stride, z, &stride), VSL_CC_ERROR_X);
    EXPECT_EQ(run(x, nullptr, y, &stride, z, &stride), VSL_CC_ERROR_XSTRIDE);
    EXPECT_EQ(run(x, &zero, y, &stride, z, &stride), VSL_CC_ERROR_XSTRIDE);
    EXPECT_EQ(run(x, &stride, nullptr, &stride, z, &stride), VSL_CC_ERROR_Y);
    EXPECT_EQ(run(x, &stride, y, nullptr, z, &stride), VSL_CC_ERROR_YSTRIDE);
    EXPECT_EQ(run(x, &stride, y, &zero, z, &stride), VSL_CC_ERROR_YSTRIDE);
    EXPECT_EQ(run(x, &stride, y, &stride, nullptr, &stride), VSL_CC_ERROR_Z);
    EXPECT_EQ(run(x, &stride, y, &stride, z, nullptr), VSL_CC_ERROR_ZSTRIDE);
    EXPECT_EQ(run(x, &stride, y, &stride, z, &zero), VSL_CC_ERROR_ZSTRIDE);
    EXPECT_EQ(xkl_conv_execx(fixed_.task, nullptr, &stride, z, &stride), VSL_CC_ERROR_Y);
}

TEST_F(ConvTask, WrongExecutionForATask)
{
    const int32_t stride = 1;
    EXPECT_EQ(xkl_conv_execx(plain_.task, y_.memory.data(), &stride, z_.memory.data(), &stride),
              VSL_CC_ERROR_JOB);
    EXPECT_EQ(xkl_conv_exec(fixed_.task, x_.memory.data(), &stride, y_.memory.data(), &stride,
                            z_.memory.data(), &stride),
              VSL_CC_ERROR_JOB);
}

TEST_F(ConvTask, BadEdits)
{
    const int32_t wrong = 5, step = 0;
    EXPECT_EQ(xkl_conv_edittask(plain_.task, 3, &wrong), VSL_CC_ERROR_MODE);
    EXPECT_EQ(xkl_conv_edittask(plain_.task, 3, nullptr), VSL_CC_ERROR_MODE);
    EXPECT_EQ(xkl_conv_edittask(plain_.task, 5, nullptr), VSL_CC_ERROR_START);
    EXPECT_EQ(xkl_conv_edittask(plain_.task, 6, nullptr), VSL_CC_ERROR_DECIMATION);
    EXPECT_EQ(xkl_conv_edittask(plain_.task, 6, &step), VSL_CC_ERROR_DECIMATION);
    EXPECT_EQ(xkl_conv_edittask(plain_.task, 9, &wrong), VSL_CC_ERROR_INTERNAL_PRECISION);
    EXPECT_EQ(xkl_conv_edittask(plain_.task, 9, nullptr), VSL_CC_ERROR_INTERNAL_PRECISION);
    EXPECT_EQ(xkl_conv_edittask(plain_.task, 4, &wrong), VSL_CC_ERROR_BAD_ARGUMENT);
}

TEST_F(ConvTask, WhatIsNoTask)
{
    alignas(8) char something[256] = {};
    const int32_t stride = 1;
    for (void *const task : {static_cast<void *>(nullptr), static_cast<void *>(something)}) {
        void *copy = unwritten, *doomed = task;
        EXPECT_EQ(xkl_conv_exec(task, x_.memory.data(), &stride, y_.memory.data(), &stride,
                                z_.memory.data(), &stride),
                  VSL_CC_ERROR_BAD_DESCRIPTOR);
        EXPECT_EQ(xkl_conv_execx(task, y_.memory.data(), &stride, z_.memory.data(), &stride),
                  VSL_CC_ERROR_BAD_DESCRIPTOR);
        EXPECT_EQ(xkl_conv_edittask(task, 5, &stride), VSL_CC_ERROR_BAD_DESCRIPTOR);
        EXPECT_EQ(xkl_conv_copytask(&copy, task), VSL_CC_ERROR_BAD_DESCRIPTOR);
        EXPECT_EQ(xkl_conv_deletetask(&doomed), VSL_CC_ERROR_BAD_DESCRIPTOR);
        EXPECT_EQ(copy, unwritten);
        EXPECT_EQ(doomed, task);
    }
    EXPECT_EQ(xkl_conv_deletetask(nullptr), VSL_CC_ERROR_BAD_DESCRIPTOR);
    EXPECT_EQ(xkl_conv_copytask(nullptr, plain_.task), VSL_CC_ERROR_BAD_ARGUMENT);
}

/// Leaves the library a megabyte beyond what it has now.
class ConvMemory : public testing::Test {
  protected:
    static void limit()
    {
        int buffers = 0;
        const int64_t used = xkl_serv_mem_stat(&buffers);
        xkl_serv_set_memory_limit(XKL_MEM_ALL, static_cast<size_t>(used >> 20) + 1);
    }
    void TearDown() override { xkl_serv_set_memory_limit(XKL_MEM_ALL, 0); }
};

// Short x: direct sums over a copy of y. Long ones: one transform.
TEST_F(ConvMemory, NoneForAnExecution)
{
    for (const auto &[mode, length] :
         {std::pair{VSL_CONV_MODE_DIRECT, 30}, {VSL_CONV_MODE_AUTO, 1 << 19}}) {
        const settings s{.mode = mode, .x = {length}, .y = {1 << 19}, .z = {1 << 19}};
        strided<double> x(s.x), y(s.y), z(s.z);
        std::fill(z.memory.begin(), z.memory.end(), 17.0);
        handle made;
        ASSERT_EQ(create<double>(made, s), VSL_CC_STATUS_OK);
        limit();
        EXPECT_EQ(execute(made, &x, y, z), VSL_CC_ERROR_ALLOCATION_FAILURE);
        EXPECT_EQ(std::ranges::count(z.memory, 17.0), std::ssize(z.memory));
        xkl_serv_set_memory_limit(XKL_MEM_ALL, 0);
        EXPECT_EQ(execute(made, &x, y, z), VSL_CC_STATUS_OK);
        EXPECT_EQ(std::ranges::count(z.memory, 0.0), std::ssize(z.memory));
    }
}

TEST_F(ConvMemory, NoneForATasksX)
{
    const settings s{.x = {1 << 20}, .y = {4}, .z = {4}};
    const strided<double> x(s.x);
    handle made, copy;
    limit();
    EXPECT_EQ(create(made, s, &x), VSL_CC_ERROR_ALLOCATION_FAILURE);
    EXPECT_EQ(made.task, nullptr);
    xkl_serv_set_memory_limit(XKL_MEM_ALL, 0);
    ASSERT_EQ(create(made, s, &x), VSL_CC_STATUS_OK);
    limit();
    EXPECT_EQ(xkl_conv_copytask(&copy.task, made.task), VSL_CC_ERROR_ALLOCATION_FAILURE);
    EXPECT_EQ(copy.task, nullptr);
}

} // namespace
