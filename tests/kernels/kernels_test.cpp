// What holds for every kernel of the tables, in each instruction set of this processor and in each mode.
#include "kernel_call.h"

#include <algorithm>
#include <memory>

namespace {

constexpr int longest = 70;

std::vector<kernel_row> rows(bool strided)
{
    std::vector<kernel_row> chosen;
    std::copy_if(
        kernel_rows, kernel_rows + kernel_row_count, std::back_inserter(chosen),
        [&](const kernel_row &row) { return row.strided == strided && row.kind != kernel_class::pack; });
    return chosen;
}

template <class Body>
void for_each_kernel(bool strided, const Body &body)
{
    for (const kernel_row &row : rows(strided))
        for (int set = 0; set <= best_set(); ++set)
            for (const uint32_t accuracy : accuracies) {
                set_mode(accuracy);
                body(row, set,
                     std::string(row.name) + " set " + std::to_string(set) + " mode " +
                         std::to_string(accuracy));
            }
    set_mode(VML_HA);
}

/// The vectors of one call, filled, each with `gap` times the room that its elements need
struct call_memory {
    call_memory(const kernel_row &row, int n, int64_t gap = 1)
        : sizes(row), a(room(n, gap, sizes.input_size)), b(room(n, gap, sizes.input_size)),
          r1(room(n, gap, sizes.output_size)), r2(room(n, gap, sizes.output_size))
    {
    }
    static size_t room(int n, int64_t gap, size_t size)
    {
        return static_cast<size_t>((n - 1) * gap + 1) * size;
    }
    vectors addresses(int64_t gap = 1)
    {
        return {a.data(), b.data(), r1.data(), r2.data(), gap, gap, gap, gap};
    }

    shape sizes;
    guarded_bytes a, b, r1, r2;
};

/// The results of `longest` elements, from the contiguous kernel
std::unique_ptr<call_memory> whole(const kernel_row &row, int set)
{
    auto memory = std::make_unique<call_memory>(row, longest);
    fill_arguments(row, memory->a.data(), memory->a.size(), .11);
    fill_arguments(row, memory->b.data(), memory->b.size(), .07);
    call_kernel(row, set, longest, memory->addresses());
    return memory;
}

bool same(const char *x, const char *y, size_t size)
{
    return std::memcmp(x, y, size) == 0;
}

TEST(EveryKernel, AnElementsResultDoesNotDependOnTheLengthOfItsVector)
{
    for_each_kernel(false, [](const kernel_row &row, int set, const std::string &what) {
        const auto all = whole(row, set);
        for (int n = 1; n < longest; n += n < 33 ? 1 : 6) { // every remainder that a register may leave
            call_memory part(row, n);
            std::copy_n(all->a.data(), part.a.size(), part.a.data());
            std::copy_n(all->b.data(), part.b.size(), part.b.data());
            call_kernel(row, set, n, part.addresses());
            ASSERT_TRUE(same(part.r1.data(), all->r1.data(), part.r1.size())) << what << " n " << n;
            if (part.sizes.outputs == 2) {
                ASSERT_TRUE(same(part.r2.data(), all->r2.data(), part.r2.size())) << what << " n " << n;
            }
        }
    });
}

TEST(EveryKernel, ResultsMayOverwriteArguments)
{
    for_each_kernel(false, [](const kernel_row &row, int set, const std::string &what) {
        const auto all = whole(row, set);
        if (all->sizes.input_size != all->sizes.output_size)
            return;
        vectors places = all->addresses();
        const std::vector<char> first(all->r1.data(), all->r1.data() + all->r1.size()),
            second(all->r2.data(), all->r2.data() + all->r2.size());
        places.r1 = places.a;
        if (all->sizes.inputs == 2) { // the other argument as well
            call_memory again(row, longest);
            fill_arguments(row, again.a.data(), again.a.size(), .11);
            fill_arguments(row, again.b.data(), again.b.size(), .07);
            vectors other = again.addresses();
            other.r1 = other.b;
            call_kernel(row, set, longest, other);
            EXPECT_TRUE(same(other.r1, first.data(), first.size())) << what << " second argument";
        }
        call_kernel(row, set, longest, places);
        EXPECT_TRUE(same(places.r1, first.data(), first.size())) << what;
        if (all->sizes.outputs == 2) {
            EXPECT_TRUE(same(places.r2, second.data(), second.size())) << what;
        }
    });
}

/// Puts elements next to each other at a distance, and back
void spread(const char *from, char *to, int n, size_t size, int64_t gap)
{
    for (int i = 0; i < n; ++i)
        std::memcpy(to + static_cast<size_t>(i * gap) * size, from + static_cast<size_t>(i) * size, size);
}

void expect_spread(const char *spread_out, const char *dense, int n, size_t size, int64_t gap,
                   const std::string &what)
{
    for (int i = 0; i < n; ++i) {
        const char *const place = spread_out + static_cast<size_t>(i * gap) * size;
        ASSERT_TRUE(same(place, dense + static_cast<size_t>(i) * size, size)) << what << " element " << i;
        if (i + 1 < n) {
            ASSERT_EQ(std::count(place + size, place + static_cast<size_t>(gap) * size, 0x5a),
                      static_cast<int64_t>(static_cast<size_t>(gap - 1) * size))
                << what << " behind element " << i;
        }
    }
}

TEST(EveryKernel, StridedResultsAreTheContiguousOnesAndGapsStay)
{
    constexpr int64_t gap = 3;
    for_each_kernel(true, [](const kernel_row &row, int set, const std::string &what) {
        std::string name = row.name;
        name.pop_back();
        const kernel_row contiguous = {name.c_str(), row.element, row.kind, false};
        const auto dense = whole(contiguous, set);
        call_memory sparse(row, longest, gap);
        spread(dense->a.data(), sparse.a.data(), longest, dense->sizes.input_size, gap);
        spread(dense->b.data(), sparse.b.data(), longest, dense->sizes.input_size, gap);
        call_kernel(row, set, longest, sparse.addresses(gap));
        expect_spread(sparse.r1.data(), dense->r1.data(), longest, dense->sizes.output_size, gap, what);
        if (dense->sizes.outputs == 2)
            expect_spread(sparse.r2.data(), dense->r2.data(), longest, dense->sizes.output_size, gap, what);
    });
}

TEST(Tables, ACostIsATime)
{
    for (int i = 0; i < kernel_row_count; ++i)
        for (int set = 0; set < 3; ++set) {
            const float cost = kernel_entry<const float *>(std::string(kernel_rows[i].name) + "_ctab")[set];
            EXPECT_GT(cost, 0) << kernel_rows[i].name;
            EXPECT_LT(cost, 1e4) << kernel_rows[i].name;
        }
}

TEST(Tables, ClassesTheProcessorLacksRunWhatItHas)
{
    const auto index = kernel_entry<int32_t (*)(int32_t)>("GetTTableIndex");
    const bool avx2 = __builtin_cpu_supports("avx2"), avx512 = __builtin_cpu_supports("avx512dq");
    for (const int old : {-1, 0, 1, 2, 6, 9, 42})
        EXPECT_EQ(index(old), 0) << old;
    EXPECT_EQ(index(3), avx2 ? 1 : 0);
    for (const int wide : {4, 5})
        EXPECT_EQ(index(wide), avx512 ? 2 : avx2 ? 1 : 0);
}

} // namespace
