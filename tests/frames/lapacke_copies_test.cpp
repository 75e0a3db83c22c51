// What row-major calls copy, over the recording core. Memory that the library obtains is marked as
// unwritten, and every element's value tells its place: so each copied element must stand where the same
// call in column-major has it, and each result where its place in the copy says.
#include "lapacke_core.h"

#include "xkl_lapacke_types.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <set>

using namespace lapacke;

namespace {

constexpr int64_t side = leading_dimension; // of the caller's matrices

/// Where the core puts results: unlike any value that it was given.
number result_at(int64_t i, int64_t j)
{
    return {-double(1000 * i + j + 1), double(i - j) - 0.25};
}

bool is_unwritten(const char *memory, char element, int64_t at)
{
    const std::size_t size = size_of(element);
    const auto *bytes =
        reinterpret_cast<const unsigned char *>(memory) + size * static_cast<std::size_t>(at);
    return std::all_of(bytes, bytes + size, [](unsigned char byte) { return byte == unwritten; });
}

/// A row-major call of the same matrices that a column-major call has, and what became of them.
class observed_call {
  public:
    observed_call(const lapacke_row &row, int set)
        : by_columns_(row, true, set), made_(row, true, set), fortran_(row)
    {
        made_.layout = row_major;
        for (std::size_t i = 0; i < made_.arguments.size(); ++i)
            if (is_matrix(i))
                transpose(i);
        fortran_.compute = [this](const words &seen) { look(seen); };
    }

    void make(const std::string &twin)
    {
        const auto before = made_.contents();
        made_.make(twin);
        for (std::size_t i = 0; i < made_.arguments.size(); ++i)
            if (is_matrix(i))
                look_at_results(i, before[i]);
    }

    std::map<std::string, int64_t> copied_in, copied_out; // elements
    std::set<std::string> copies;
    int calls() const { return fortran_.calls; }

  private:
    bool is_matrix(std::size_t i) const
    {
        const auto &all = made_.arguments;
        return all[i].is_array && all[i].is_number() && i + 1 < all.size() &&
               all[i + 1].is_leading_dimension();
    }

    void transpose(std::size_t i)
    {
        argument &each = made_.arguments[i];
        for (int64_t row = 0; row < side; ++row)
            for (int64_t column = 0; column < side; ++column)
                write(each.memory.data(), each.element, row * side + column, given(i, row, column));
    }

    number given(std::size_t i, int64_t row, int64_t column) const
    {
        const argument &each = by_columns_.arguments[i];
        return read(each.memory.data(), each.element, row + column * side);
    }

    void look(const words &seen)
    {
        for (std::size_t i = 0; i < made_.arguments.size(); ++i) {
            const auto block =
                std::find_if(recorded.blocks.begin(), recorded.blocks.end(), [&](const memory_block &each) {
                    return each.live && reinterpret_cast<int64_t>(each.place) == seen[i];
                });
            if (is_matrix(i) && block != recorded.blocks.end())
                look_at_copy(i, block->place, block->size, *reinterpret_cast<int64_t *>(seen[i + 1]));
        }
    }

    void look_at_copy(std::size_t i, char *memory, std::size_t size, int64_t ld)
    {
        const argument &each = made_.arguments[i];
        copies.insert(each.name);
        const auto elements = static_cast<int64_t>(size / size_of(each.element));
        ASSERT_GT(ld, 0) << each.name;
        EXPECT_EQ(elements % ld, 0) << each.name << " has a row too many";
        for (int64_t at = 0; at < elements; ++at) {
            const int64_t row = at % ld, column = at / ld;
            if (!is_unwritten(memory, each.element, at)) {
                ASSERT_EQ(read(memory, each.element, at), given(i, row, column))
                    << each.name << "(" << row << "," << column << ")";
                ++copied_in[each.name];
            }
            write(memory, each.element, at, result_at(row, column));
        }
    }

    void look_at_results(std::size_t i, const std::vector<char> &before)
    {
        const argument &each = made_.arguments[i];
        const bool real = each.element == 's' || each.element == 'd';
        for (int64_t row = 0; row < side; ++row)
            for (int64_t column = 0; column < side; ++column) {
                const number now = read(each.memory.data(), each.element, row * side + column);
                if (now == read(before.data(), each.element, row * side + column))
                    continue;
                const number result = result_at(row, column);
                ASSERT_EQ(now, real ? number(result.real()) : result)
                    << each.name << "(" << row << "," << column << ")";
                ++copied_out[each.name];
            }
        if (each.is_constant) {
            EXPECT_EQ(copied_out.count(each.name), 0u) << each.name;
        }
    }

    call by_columns_, made_;
    core fortran_;
};

class lapacke_copies : public testing::Test {
  protected:
    void TearDown() override { reset(); }
};

TEST_F(lapacke_copies, every_element_keeps_its_place)
{
    for (const lapacke_row &row : rows())
        for (const std::string twin : {"", "_64"})
            for (const int set : {0, 1}) {
                if (!row.has_layout || (twin != "" && !row.has_twin))
                    continue;
                SCOPED_TRACE(row.name + twin + (set ? ", second set" : ""));
                reset();
                observed_call observed(row, set);
                observed.make(twin);
                EXPECT_EQ(observed.calls(), 1);
                EXPECT_EQ(recorded.allocated, 0);
                for (const auto &[name, count] : observed.copied_in)
                    EXPECT_TRUE(observed.copies.contains(name) && count > 0);
            }
}

// How many elements go in and come out: from the routines' documentation, with m = 7, n = 5, k = 3, p = 4,
// nrhs = 3 and bands of 1 below and 2 above.
TEST_F(lapacke_copies, matrices_are_copied_where_they_are_used)
{
    struct expected {
        const char *routine, *matrix;
        int set;
        int64_t in, out;
    };
    constexpr int64_t triangle = 15, square = 25; // of order n
    static const expected all[] = {{"dgetrf", "a", 0, 35, 35},
                                   {"dgesv", "b", 0, 15, 15},
                                   {"dposv", "a", 0, triangle, triangle},
                                   {"zhesv", "a", 1, triangle, triangle},
                                   {"dtrtri", "a", 0, triangle, triangle},
                                   {"dtrtri", "a", 1, 10, 10},
                                   {"dsyev", "a", 0, triangle, square},
                                   {"dsyev", "a", 1, triangle, triangle},
                                   {"zheevd", "a", 0, triangle, square},
                                   {"dsyevr", "a", 0, triangle, triangle},
                                   {"dsyevr", "z", 0, 0, square},
                                   {"dsyevr", "z", 1, 0, 0},
                                   {"dgesvd", "a", 0, 35, 35},
                                   {"dgesvd", "u", 0, 0, 49},
                                   {"dgesvd", "u", 1, 0, 35},
                                   {"dgesvd", "vt", 1, 0, square},
                                   {"dgeev", "vl", 0, 0, square},
                                   {"dgeev", "vl", 1, 0, 0},
                                   {"dgels", "b", 0, 21, 21},
                                   {"dgeqrt", "t", 0, 0, 10},
                                   {"dgesvx", "x", 0, 0, 15},
                                   {"dgesvx", "af", 0, square, 0},
                                   {"dgesvx", "af", 1, 0, square},
                                   {"dgesvx", "b", 0, 15, 15},
                                   {"dgetrs", "a", 0, square, 0},
                                   {"zunmqr", "a", 0, 21, 0},
                                   {"zunmqr", "c", 1, 35, 35},
                                   {"dormrz", "a", 0, 21, 0},
                                   {"dormrz", "a", 1, 15, 0},
                                   {"zunmbr", "a", 1, 15, 0},
                                   {"dhseqr", "z", 0, square, square},
                                   {"dhseqr", "z", 1, 0, square},
                                   {"dlaset", "a", 0, 35, 35},
                                   {"zlacp2", "a", 0, 35, 0},
                                   {"zlacp2", "b", 0, 0, 35},
                                   {"dgbsv", "ab", 0, 18, 18},
                                   {"dpbtrf", "ab", 0, 12, 12},
                                   {"xkl_dgetrfnpi", "a", 0, 35, 35},
                                   {"xkl_dtppack", "a", 0, 6, 0},
                                   {"xkl_dtpunpack", "a", 1, 6, 6},
                                   {"dlarfb", "v", 0, 15, 0},
                                   {"dlaswp", "a", 0, 20, 20},
                                   {"dpteqr", "z", 1, 0, square},
                                   {"sggsvp", "v", 0, 0, 16}};
    for (const expected &each : all) {
        SCOPED_TRACE(std::string(each.routine) + " " + each.matrix + (each.set ? ", second set" : ""));
        reset();
        observed_call observed(row_of(each.routine), each.set);
        observed.make("");
        EXPECT_EQ(observed.copied_in[each.matrix], each.in);
        EXPECT_EQ(observed.copied_out[each.matrix], each.out);
    }
}

// Packed triangles: by columns the upper one has element (i,j) at i + j(j+1)/2, by rows at the place of (j,i)
// in the lower one by columns.
TEST_F(lapacke_copies, packed_triangles_change_their_order)
{
    for (const char *routine : {"dppsv", "zpptrf", "sspsv", "chpsv", "dtptri", "dsptrd"})
        for (const int set : {0, 1}) {
            SCOPED_TRACE(routine + std::string(set ? ", lower" : ", upper"));
            reset();
            const lapacke_row &row = row_of(routine);
            core fortran(row);
            call made(row, true, set);
            made.layout = row_major;
            const int64_t n = made.at("n").integer;
            const bool upper = set == 0, unit = made.has("diag") && set == 1;
            const auto by_columns = [&](int64_t i, int64_t j) {
                return upper ? i + j * (j + 1) / 2 : i + j * (2 * n - j - 1) / 2;
            };
            const auto by_rows = [&](int64_t i, int64_t j) {
                return upper ? j + i * (2 * n - i - 1) / 2 : j + i * (i + 1) / 2;
            };
            const argument &ap = made.at("ap");
            const std::size_t at = fortran.place("ap");
            const std::vector<char> before = ap.memory;
            fortran.compute = [&](const words &seen) {
                auto *const copy = reinterpret_cast<char *>(seen[at]);
                for (int64_t j = 0; j < n; ++j)
                    for (int64_t i = upper ? 0 : j; i < (upper ? j + 1 : n); ++i) {
                        if (!(unit && i == j)) {
                            EXPECT_EQ(read(copy, ap.element, by_columns(i, j)),
                                      read(before.data(), ap.element, by_rows(i, j)));
                        }
                        write(copy, ap.element, by_columns(i, j), result_at(i, j).real());
                    }
            };
            made.make();
            EXPECT_EQ(fortran.calls, 1);
            for (int64_t j = 0; j < n; ++j)
                for (int64_t i = upper ? 0 : j; i < (upper ? j + 1 : n); ++i)
                    if (!(unit && i == j)) {
                        EXPECT_EQ(read(ap.memory.data(), ap.element, by_rows(i, j)),
                                  result_at(i, j).real());
                    }
        }
}

} // namespace
