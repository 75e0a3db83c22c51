// The classic sparse BLAS without memory: what needs some reports position 1000 and writes nothing, what can
// do without does.
#include "spblas_matrix.h"

#include "xkl_service.h"

namespace {
using namespace spblas_test;

constexpr int64_t n = 200'000; // an array of so many integers is more than may be allocated

std::vector<std::string> reports;

class spblas_memory : public testing::Test {
  protected:
    void SetUp() override
    {
        for (int64_t i = 0; i < n; ++i) {
            starts.push_back(3 * i + 1);
            for (const int64_t j : {i, (i + 1) % n, (i + 2) % n}) {
                rows.push_back(i + 1);
                columns.push_back(j + 1);
                values.push_back(j == i ? 4 : 1);
            }
        }
        starts.push_back(elements + 1);
        reports.clear();
        before = xkl_set_xerbla([](const char *name, const int64_t *position, int64_t length) {
            reports.push_back(std::string(name, static_cast<size_t>(length)) + " " +
                              std::to_string(*position));
        });
        bytes = xkl_mem_stat(&blocks);
        limit(1);
    }
    void TearDown() override
    {
        limit(0);
        xkl_set_xerbla(before);
        int32_t blocks_left = 0;
        EXPECT_EQ(xkl_mem_stat(&blocks_left), bytes);
        EXPECT_EQ(blocks_left, blocks);
    }
    static void limit(size_t megabytes)
    {
        const int32_t all = XKL_MEM_ALL;
        ASSERT_EQ(xkl_set_memory_limit(&all, &megabytes), 1);
    }
    /// The call, which is no argument's fault, says that there is no memory.
    static void expect_refused(const std::string &name, const addresses &given)
    {
        reports.clear();
        EXPECT_EQ(call(name, given), 0);
        EXPECT_EQ(reports, std::vector<std::string>{name + " 1000"});
    }

    static constexpr int64_t elements = 3 * n, one = 1;
    std::vector<int64_t> starts, rows, columns;
    std::vector<double> values;
    int64_t bytes = 0;
    int32_t blocks = 0;
    xkl_xerbla_handler before = nullptr;
};

TEST_F(spblas_memory, sums_and_products_say_so)
{
    std::vector<double> c(1, 7);
    std::vector<int64_t> jc(1, 7), ic(n + 1, 7);
    const std::vector<int64_t> untouched = ic;
    const double beta = 1;
    const int64_t sort = 7, room = 0;
    for (const char *trans : {"N", "T"})
        for (const int64_t request : {0, 1, 2}) {
            int64_t info = 7;
            expect_refused("XKL_DCSRADD", {trans, &request, &sort, &n, &n, values.data(), columns.data(),
                                           starts.data(), &beta, values.data(), columns.data(),
                                           starts.data(), c.data(), jc.data(), ic.data(), &room, &info});
            EXPECT_EQ(info, -1);
            info = 7;
            expect_refused("XKL_DCSRMULTCSR",
                           {trans, &request, &sort, &n, &n, &n, values.data(), columns.data(),
                            starts.data(), values.data(), columns.data(), starts.data(), c.data(),
                            jc.data(), ic.data(), &room, &info});
            EXPECT_EQ(info, -1);
        }
    EXPECT_EQ(ic, untouched);
    EXPECT_EQ(jc[0], 7);
    EXPECT_EQ(c[0], 7);
}

/// No array that large has a size in bytes, and a wrong one would be small.
TEST_F(spblas_memory, columns_beyond_all_memory)
{
    limit(0);
    const int64_t request = 1, sort = 7, room = 0, place[] = {1, 2}, column = 5;
    const double value = 1;
    for (const int64_t width : {(int64_t{1} << 61) + 1, int64_t{1} << 62, INT64_MAX}) {
        int64_t info = 7, ic[] = {7, 7};
        expect_refused("XKL_DCSRADD", {"N", &request, &sort, &one, &width, &value, &column, place, &value,
                                       &value, &column, place, nullptr, nullptr, ic, &room, &info});
        EXPECT_EQ(info, -1);
        EXPECT_EQ(ic[0], 7);
    }
}

TEST_F(spblas_memory, elements_in_any_order_are_not_solved_with)
{
    const double alpha = 1;
    std::vector<double> x(n, 1), y(n, 7);
    const std::vector<double> untouched = y;
    const auto append = [&](addresses given) {
        const addresses arrays{values.data(), rows.data(), columns.data(), &elements};
        given.insert(given.end(), arrays.begin(), arrays.end());
        return given;
    };
    const auto with = [](addresses given, std::initializer_list<const void *> more) {
        given.insert(given.end(), more);
        return given;
    };
    expect_refused("XKL_DCOOSV", with(append({"N", &n, &alpha, "TUNF"}), {x.data(), y.data()}));
    expect_refused("XKL_DCOOSM",
                   with(append({"N", &n, &one, &alpha, "TUNF"}), {x.data(), &n, y.data(), &n}));
    for (const char *name : {"XKL_DCOOTRSV", "XKL_CSPBLAS_DCOOTRSV"})
        expect_refused(name, with(append({"U", "N", "N", &n}), {x.data(), y.data()}));
    EXPECT_EQ(y, untouched);
}

TEST_F(spblas_memory, converters_say_so)
{
    const int64_t job[] = {0, 1, 1, 0, elements, 1, 0, 0}, block = 2, block_size = 4;
    int64_t info = 7, diagonals = 1, distance = 0, untouched = 7;
    double element = 7;
    expect_refused("XKL_DCSRDIA", {job, &n, values.data(), columns.data(), starts.data(), &element, &n,
                                   &distance, &diagonals, &element, &untouched, &untouched, &info});
    EXPECT_EQ(info, -100);
    info = 7;
    // Half as many block columns take just less than the limit.
    std::vector<int64_t> far = columns;
    far[0] = 2 * n;
    expect_refused("XKL_DCSRBSR", {job, &n, &block, &block_size, values.data(), far.data(), starts.data(),
                                   &element, &untouched, &untouched, &info});
    EXPECT_EQ(info, -100);
    EXPECT_EQ(element, 7);
    EXPECT_EQ(untouched, 7);
}

/// Threads that find no room for vectors of their own leave the work to one.
TEST_F(spblas_memory, products_need_none)
{
    const double alpha = 2, beta = 0;
    std::vector<double> x(n, 1), y(n, 7);
    EXPECT_EQ(call("XKL_DCSRMV", {"T", &n, &n, &alpha, "GLNF", values.data(), columns.data(), starts.data(),
                                  starts.data() + 1, x.data(), &beta, y.data()}),
              0);
    EXPECT_EQ(y, std::vector<double>(n, 12));
    EXPECT_TRUE(reports.empty());
}

} // namespace
