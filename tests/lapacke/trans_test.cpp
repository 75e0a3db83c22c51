// Every layout copy against the definition of its storage scheme: stored elements arrive, all other places
// keep what they hold.
#include "guarded_array.h"
#include "helper_call.h"
#include "xkl_lapacke_helpers.h"

#include <algorithm>

namespace {

constexpr double untouched = -1;

void for_each_copy(auto &&visit)
{
    for (const routine_row &row : helper_rows())
        if (std::string(row.name).ends_with("_TRANS"))
            visit(row);
}

/// The same matrix in the other layout
stored_matrix turned(stored_matrix a, int64_t gap)
{
    a.layout = a.by_columns() ? 101 : 102;
    a.ld = a.line() + gap;
    return a;
}

template <class R>
void expect_copy(const routine_row &row, const stored_matrix &a, const stored_matrix &b)
{
    const helper copy(row);
    const int64_t parts = row.name[0] == 'C' || row.name[0] == 'Z' ? 2 : 1;
    guarded_array<R> in(a.extent() * parts), out(b.extent() * parts);
    for (const bool twin : {false, true}) {
        for (std::size_t k = 0; k < in.all().size(); ++k)
            in.all()[k] = static_cast<R>(k + 1);
        const std::vector<R> given(in.all().begin(), in.all().end());
        std::fill(out.all().begin(), out.all().end(), static_cast<R>(untouched));
        std::vector<R> expected(out.all().begin(), out.all().end());
        const auto from = a.places(), to = b.places();
        for (std::size_t k = 0; k < from.size(); ++k)
            for (int64_t part = 0; from[k] >= 0 && part < parts; ++part)
                expected[static_cast<std::size_t>(to[k] * parts + part)] = in[from[k] * parts + part];
        copy(twin, a, in.data(), out.data(), b.ld);
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(), out.all().begin()))
            << row.name << " of " << a.text();
        EXPECT_TRUE(std::equal(given.begin(), given.end(), in.all().begin()))
            << row.name << " of " << a.text();
    }
}

void expect_copy_in_type(const routine_row &row, stored_matrix a, int64_t gap)
{
    if (a.scheme == "tf") // the diagonal lies among what is copied
        a.diag = 'N';
    const stored_matrix b = turned(a, gap);
    if (row.name[0] == 'S' || row.name[0] == 'C')
        expect_copy<float>(row, a, b);
    else
        expect_copy<double>(row, a, b);
}

TEST(trans, moves_what_is_stored_and_nothing_else)
{
    int64_t matrices = 0;
    for_each_copy([&](const routine_row &row) {
        for (const stored_matrix &a : matrices_for(row))
            expect_copy_in_type(row, a, ++matrices % 2 * 5);
    });
    EXPECT_GT(matrices, 4000);
}

/// Triangles that are halved more than once
TEST(trans, large_triangles)
{
    for_each_copy([](const routine_row &row) {
        const std::string scheme = scheme_of(row.name);
        if (scheme != "tr" && scheme != "tz" && scheme != "hs" && scheme != "tp")
            return;
        for (const int64_t n : {130, 131, 260})
            for (const int layout : {101, 102})
                for (const char uplo : {'U', 'L'})
                    expect_copy_in_type(
                        row, {.scheme = scheme, .layout = layout, .uplo = uplo, .m = n, .n = n, .ld = n},
                        1);
    });
}

TEST(trans, bad_layouts_letters_and_null_copy_nothing)
{
    for_each_copy([](const routine_row &row) {
        const helper copy(row);
        stored_matrix a{.scheme = "ge", .m = 3, .n = 3, .kl = 1, .ku = 1, .ld = 4};
        const std::vector<double> in(100, 1);
        std::vector<double> out(100, untouched);
        const auto expect_nothing = [&](const char *what) {
            EXPECT_TRUE(std::all_of(out.begin(), out.end(), [](double x) { return x == untouched; }))
                << row.name << " with " << what;
        };
        const auto try_bad = [&](const char *name, auto member, auto bad) {
            if (!has_argument(row, name))
                return;
            const auto kept = std::exchange(a.*member, bad);
            copy(false, a, in.data(), out.data(), 4);
            copy(true, a, in.data(), out.data(), 4);
            a.*member = kept;
            expect_nothing(name);
        };
        if (a.scheme != scheme_of(row.name)) // general matrices take any layout but one as row-major
            try_bad("layout", &stored_matrix::layout, 103);
        try_bad("direct", &stored_matrix::direct, 'U');
        try_bad("transr", &stored_matrix::transr, 'R');
        try_bad("uplo", &stored_matrix::uplo, 'X');
        try_bad("diag", &stored_matrix::diag, 'L');
        copy(false, a, nullptr, out.data(), 4);
        copy(false, a, in.data(), nullptr, 4);
        expect_nothing("null");
    });
}

TEST(trans, general_matrices_are_row_major_unless_column_major)
{
    const double in[] = {1, 2, 3, 4, 5, 6};
    double out[6] = {};
    LAPACKE_dge_trans(0, 2, 3, in, 3, out, 2);
    const double expected[] = {1, 4, 2, 5, 3, 6};
    EXPECT_TRUE(std::equal(out, out + 6, expected));
}

TEST(trans, sizes_without_elements_touch_nothing)
{
    guarded_array<double> none(0);
    for_each_copy([&](const routine_row &row) {
        if (scheme_of(row.name) == "ge") // the matrix copy tests its sizes itself
            return;
        const helper copy(row);
        for (const int64_t n : {0, -1})
            for (stored_matrix a : matrices_for(row)) {
                a.m = a.n = n;
                copy(false, a, none.data(), none.data(), 1);
            }
    });
}

} // namespace
