// Convolution from a program's side: the public routines with their 64-bit integers, in C and in Fortran's
// convention, over the default core.
#include "conv_task.h"
#include "xkl_vsl.h"

using namespace conv;

namespace {

std::vector<int64_t> wide(const vector &narrow)
{
    return {narrow.begin(), narrow.end()};
}

TEST(PublicConvolution, ComplexPlanesWithEverySetting)
{
    std::mt19937 random(1);
    settings s{.x = {7, 40}, .y = {60, 50}, .z = {20, 9}};
    s.start = {-3, 30};
    s.decimation = {2, 5};
    using number = std::complex<double>;
    strided<number> x(s.x, random), y(s.y, random), z(s.z, random), from_copy = z, fixed = z;
    x.fill(random);
    y.fill(random);
    VSLConvTaskPtr task = nullptr, copy = nullptr, with_x = nullptr;
    const auto xs = wide(x.strides), ys = wide(y.strides), zs = wide(z.strides);
    ASSERT_EQ(
        vslzConvNewTask(&task, VSL_CONV_MODE_AUTO, 2, wide(s.x).data(), wide(s.y).data(), wide(s.z).data()),
        VSL_CC_STATUS_OK);
    ASSERT_EQ(vslConvSetStart(task, wide(s.start).data()), VSL_CC_STATUS_OK);
    ASSERT_EQ(vslConvSetDecimation(task, wide(s.decimation).data()), VSL_CC_STATUS_OK);
    ASSERT_EQ(vslConvCopyTask(&copy, task), VSL_CC_STATUS_OK);
    EXPECT_EQ(vslConvSetMode(task, VSL_CONV_MODE_DIRECT), VSL_CC_STATUS_OK);
    EXPECT_EQ(vslConvSetInternalPrecision(task, VSL_CONV_PRECISION_DOUBLE), VSL_CC_STATUS_OK);
    EXPECT_EQ(vslzConvExec(task, x.memory.data(), xs.data(), y.memory.data(), ys.data(), z.memory.data(),
                           zs.data()),
              VSL_CC_STATUS_OK);
    EXPECT_EQ(vslzConvExec(copy, x.memory.data(), xs.data(), y.memory.data(), ys.data(),
                           from_copy.memory.data(), zs.data()),
              VSL_CC_STATUS_OK);
    ASSERT_EQ(vslzConvNewTaskX(&with_x, VSL_CONV_MODE_AUTO, 2, wide(s.x).data(), wide(s.y).data(),
                               wide(s.z).data(), x.memory.data(), xs.data()),
              VSL_CC_STATUS_OK);
    ASSERT_EQ(vslConvSetStart(with_x, wide(s.start).data()), VSL_CC_STATUS_OK);
    ASSERT_EQ(vslConvSetDecimation(with_x, wide(s.decimation).data()), VSL_CC_STATUS_OK);
    EXPECT_EQ(vslzConvExecX(with_x, y.memory.data(), ys.data(), fixed.memory.data(), zs.data()),
              VSL_CC_STATUS_OK);
    for (strided<number> *result : {&z, &from_copy, &fixed})
        expect_sums(s, x, y, *result, 1e-14);
    for (VSLConvTaskPtr *each : {&task, &copy, &with_x})
        EXPECT_EQ(vslConvDeleteTask(each), VSL_CC_STATUS_OK);
}

TEST(PublicConvolution, CorrelationFromFortran)
{
    const int64_t mode = VSL_CORR_MODE_DIRECT, nx = 3, ny = 5, nz = 4, start = -1, one = 1, back = -1;
    const double x[] = {1, 2, 3}, y[] = {50, 40, 30, 20, 10}; // y is read from its end
    double z[4];
    VSLCorrTaskPtr task = nullptr;
    ASSERT_EQ(vsldcorrnewtask1d_(&task, &mode, &nx, &ny, &nz), VSL_CC_STATUS_OK);
    ASSERT_EQ(vslcorrsetstart_(&task, &start), VSL_CC_STATUS_OK);
    ASSERT_EQ(vsldcorrexec1d_(&task, x, &one, y, &back, z, &one), VSL_CC_STATUS_OK);
    const double wanted[] = {80, 140, 200, 260};
    EXPECT_TRUE(std::equal(z, z + 4, wanted)) << z[0] << ' ' << z[1] << ' ' << z[2] << ' ' << z[3];
    EXPECT_EQ(vslcorrdeletetask_(&task), VSL_CC_STATUS_OK);
    EXPECT_EQ(task, nullptr);
}

TEST(PublicConvolution, StatusesComeThrough)
{
    VSLConvTaskPtr task = nullptr;
    EXPECT_EQ(vslsConvNewTask(&task, VSL_CONV_MODE_AUTO, 1, nullptr, nullptr, nullptr),
              VSL_CC_ERROR_XSHAPE);
    EXPECT_EQ(vslsConvNewTask1D(&task, VSL_CONV_MODE_AUTO, 3, 0, 3), VSL_CC_ERROR_YSHAPE);
    EXPECT_EQ(vslsConvNewTask1D(&task, 17, 3, 3, 3), VSL_CC_ERROR_MODE);
    EXPECT_EQ(task, nullptr);
    EXPECT_EQ(vslConvDeleteTask(&task), VSL_CC_ERROR_BAD_DESCRIPTOR);
    EXPECT_EQ(vslConvSetMode(nullptr, VSL_CONV_MODE_FFT), VSL_CC_ERROR_BAD_DESCRIPTOR);
}

} // namespace
