// Every LAPACKE function over the recording core. What is expected follows from the argument lists: which
// argument is refused under which number, what becomes of workspaces, and that nothing is left behind. Tables
// at the end hold what does not: columns of matrices and inputs of chosen routines, from their documentation.
#include "lapacke_core.h"

#include "xkl_lapacke_types.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <set>

using namespace lapacke;

namespace {

const std::string twins[] = {"", "_64"};

/// Runs `body` for each function of each routine that has the property.
template <class Wanted, class Body>
void for_each_function(Wanted wanted, Body body)
{
    int seen = 0;
    for (const lapacke_row &row : rows())
        for (const std::string &twin : twins) {
            if (!wanted(row) || (twin != "" && !row.has_twin))
                continue;
            SCOPED_TRACE(row.name + twin);
            reset();
            body(row, twin);
            ++seen;
        }
    EXPECT_GT(seen, 0);
}

bool has_layout(const lapacke_row &row)
{
    return row.has_layout;
}
bool any(const lapacke_row &)
{
    return true;
}
bool is_value(const lapacke_row &row)
{
    return std::string(row.result) != "lapack_int";
}

/// The type's letter cut off: gesv.
std::string stem(const lapacke_row &row)
{
    const std::string routine = row.routine;
    return routine.starts_with("xkl_") ? routine.substr(5) : routine.substr(1);
}

/// Their argument trans tells the layout, so that nothing is copied and no leading dimension looked at.
bool is_transposed(const lapacke_row &row)
{
    static const std::set<std::string> stems = {"bbcsd", "orbdb", "unbdb", "orcsd", "uncsd"};
    return stems.contains(stem(row));
}

std::string wrong_parameter(int64_t place, const std::string &name)
{
    return "Wrong parameter " + std::to_string(place) + " in " + name + "\n";
}

class lapacke_frames : public testing::Test {
  protected:
    void SetUp() override
    {
        reset();
        LAPACKE_set_nancheck(1);
    }
    void TearDown() override { reset(); }
};

TEST_F(lapacke_frames, a_bad_layout_is_reported_first)
{
    for_each_function(has_layout, [](const lapacke_row &row, const std::string &twin) {
        for (const bool work : {false, true})
            for (const int layout : {100, 103}) {
                core fortran(row);
                call made(row, work);
                made.layout = layout;
                for (argument &each : made.arguments)
                    if (each.is_leading_dimension())
                        each.integer = -1;
                EXPECT_EQ(made.make(twin), work && is_value(row) ? 0 : -1);
                EXPECT_EQ(message(), wrong_parameter(1, made.name()));
                EXPECT_EQ(fortran.calls, 0);
            }
    });
}

TEST_F(lapacke_frames, bad_leading_dimensions_are_refused_in_row_major)
{
    const auto wanted = [](const lapacke_row &row) { return row.has_layout && !is_transposed(row); };
    for_each_function(wanted, [](const lapacke_row &row, const std::string &twin) {
        core fortran(row);
        std::vector<std::string> leading;
        for (const argument &each : call(row, true).arguments)
            if (each.is_leading_dimension())
                leading.push_back(each.name);
        for (std::size_t first = 0; first < leading.size(); ++first) {
            call made(row, true);
            made.layout = row_major;
            for (std::size_t i = first; i < leading.size(); ++i) // all from here on: the first one counts
                made.at(leading[i]).integer = -1;
            const int64_t place = made.place(leading[first]);
            EXPECT_EQ(made.make(twin), -place);
            EXPECT_EQ(message(), wrong_parameter(place, made.name()));
        }
        EXPECT_EQ(fortran.calls, 0);
        EXPECT_TRUE(recorded.blocks.empty());
    });
}

TEST_F(lapacke_frames, column_major_passes_everything_on)
{
    for_each_function(any, [](const lapacke_row &row, const std::string &twin) {
        core fortran(row);
        call made(row, true);
        fortran.compute = [&](const words &seen) {
            for (std::size_t i = 0; i < made.arguments.size(); ++i) {
                const argument &each = made.arguments[i];
                const bool trans = is_transposed(row) && each.name == "trans"; // its letter is normalised
                if (each.is_array) {
                    EXPECT_EQ(seen[i], reinterpret_cast<int64_t>(each.memory.data())) << each.name;
                } else if (each.element == 'i') {
                    EXPECT_EQ(*reinterpret_cast<int64_t *>(seen[i]), each.integer) << each.name;
                } else if (each.element == 'a' && !trans) {
                    EXPECT_EQ(*reinterpret_cast<char *>(seen[i]), each.integer) << each.name;
                } else if (each.is_number()) {
                    EXPECT_EQ(read(reinterpret_cast<void *>(seen[i]), each.element, 0).real(), 2.5)
                        << each.name;
                }
            }
        };
        for (const int64_t info : {0, -3, 4}) {
            fortran.info = info;
            const double result = made.make(twin);
            if (row.has_info) {
                EXPECT_EQ(result, info < 0 && row.has_layout ? info - 1 : info);
            } else if (!is_value(row)) {
                EXPECT_EQ(result, 0);
            }
        }
        EXPECT_EQ(fortran.calls, 3);
        EXPECT_TRUE(recorded.lines.empty());
        EXPECT_TRUE(recorded.blocks.empty());
    });
}

TEST_F(lapacke_frames, infos_are_adjusted_in_row_major_too)
{
    for_each_function(has_layout, [](const lapacke_row &row, const std::string &twin) {
        for (const int64_t info : {-3, 0, 4}) {
            core fortran(row);
            fortran.info = info;
            call made(row, true);
            made.layout = row_major;
            const double result = made.make(twin);
            if (row.has_info) {
                EXPECT_EQ(result, info < 0 ? info - 1 : info);
            }
            EXPECT_EQ(fortran.calls, 1);
            EXPECT_EQ(recorded.allocated, 0);
        }
    });
}

// Arrays that the list calls constant are inputs, but for those that select or lead elsewhere.
TEST_F(lapacke_frames, nan_is_found_in_every_constant_array)
{
    static const std::set<std::string> unchecked = {"laswp"};
    for_each_function(any, [](const lapacke_row &row, const std::string &twin) {
        for (const int layout : layouts)
            for (std::size_t i = 0; i < call(row, false).arguments.size(); ++i) {
                call made(row, false);
                made.layout = layout;
                argument &spoiled = made.arguments[i];
                if (!spoiled.is_number())
                    continue;
                constexpr double nan = std::numeric_limits<double>::quiet_NaN();
                spoiled.real = nan;
                for (int64_t at = 0; spoiled.is_array && at < leading_dimension * leading_dimension; ++at)
                    write(spoiled.memory.data(), spoiled.element, at, number(1, nan));
                if (spoiled.element == 's' || spoiled.element == 'd')
                    for (int64_t at = 0; spoiled.is_array && at < leading_dimension * leading_dimension;
                         ++at)
                        write(spoiled.memory.data(), spoiled.element, at, nan);
                core fortran(row);
                const double result = made.make(twin);
                const bool refused = result == -static_cast<double>(made.place(spoiled.name));
                EXPECT_TRUE(refused || fortran.calls > 0) << spoiled.name << ": " << result;
                EXPECT_FALSE(refused && fortran.calls > 0) << spoiled.name;
                EXPECT_TRUE(recorded.lines.empty());
                if (spoiled.is_constant && !unchecked.contains(stem(row))) {
                    EXPECT_TRUE(refused) << spoiled.name << ": " << result;
                }
                LAPACKE_set_nancheck(0);
                made.make(twin);
                EXPECT_GT(fortran.calls, 0);
                LAPACKE_set_nancheck(1);
            }
    });
}

// In a query the sizes are -1; then every workspace is a block of the size that was answered.
TEST_F(lapacke_frames, workspaces_are_queried_obtained_and_released)
{
    for_each_function(any, [](const lapacke_row &row, const std::string &twin) {
        for (const int layout : layouts) {
            reset();
            core fortran(row);
            call made(row, false);
            made.layout = layout;
            fortran.compute = [&](const words &seen) {
                for (std::size_t i = 0; i < fortran.names.size(); ++i) {
                    const std::string &name = fortran.names[i];
                    if (!fortran.is_workspace(name) || seen[i] == 0)
                        continue;
                    const auto block = std::find_if(
                        recorded.blocks.begin(), recorded.blocks.end(), [&](const memory_block &each) {
                            return each.live && reinterpret_cast<int64_t>(each.place) == seen[i];
                        });
                    if (block == recorded.blocks.end()) {
                        EXPECT_TRUE(stem(row).starts_with("lan")) << name << " is no block";
                        continue;
                    }
                    const std::size_t size = size_of(element_of(fortran.types[i]));
                    EXPECT_EQ(block->size % size, 0u) << name;
                    if (fortran.queries > 0 && fortran.place("l" + name) < fortran.names.size() &&
                        fortran.integer(seen, "l" + name) == fortran.answer(i)) {
                        EXPECT_EQ(block->size, size * static_cast<std::size_t>(fortran.answer(i))) << name;
                    }
                }
            };
            made.make(twin);
            EXPECT_EQ(fortran.calls, fortran.queries + 1);
            EXPECT_LE(fortran.queries, 1);
            for (const memory_block &block : recorded.blocks)
                EXPECT_EQ(block.alignment, 128);
            EXPECT_EQ(recorded.allocated, 0) << "blocks are left over";
            EXPECT_TRUE(recorded.lines.empty()) << message();
        }
    });
}

TEST_F(lapacke_frames, a_size_query_in_row_major_copies_nothing)
{
    const auto wanted = [](const lapacke_row &row) {
        return row.has_layout && !is_transposed(row) &&
               std::string(row.work_names).find("lwork") != std::string::npos;
    };
    for_each_function(wanted, [](const lapacke_row &row, const std::string &twin) {
        core fortran(row);
        call made(row, true);
        made.layout = row_major;
        made.at(made.has("lwork") ? "lwork" : "lcwork").integer = -1;
        for (argument &each :
             made.arguments) // as small as row-major allows: the Fortran routine needs rows
            if (each.is_leading_dimension())
                each.integer = 7;
        made.make(twin);
        EXPECT_EQ(fortran.queries, 1);
        EXPECT_EQ(fortran.calls, 1);
        EXPECT_TRUE(recorded.blocks.empty());
        for (std::size_t i = 0; i < made.arguments.size(); ++i)
            if (made.arguments[i].is_array) {
                EXPECT_EQ(fortran.last[i], reinterpret_cast<int64_t>(made.arguments[i].memory.data()));
            }
    });
}

// Every allocation of every function fails once.
TEST_F(lapacke_frames, without_memory_nothing_is_written_and_nothing_left)
{
    const auto expect_failure = [](const lapacke_row &row, call &made, const std::string &twin, int good) {
        reset();
        core fortran(row);
        recorded.good_allocations = good;
        recorded.failing_allocations = 1;
        const auto before = made.contents();
        const double result = made.make(twin);
        if (recorded.failing_allocations > 0)
            return false;
        const bool transposing = message().starts_with("Not enough memory to transpose matrix in ");
        const std::string name = transposing ? row.name + std::string("_work") : made.name();
        const bool own = is_value(row) && !transposing && message().ends_with("_work\n");
        EXPECT_EQ(message(), transposing ? "Not enough memory to transpose matrix in " + name + "\n"
                                         : "Not enough memory to allocate work array in " + name +
                                               (own && !made.work ? "_work\n" : "\n"));
        EXPECT_EQ(recorded.lines.size(), 1u);
        EXPECT_EQ(result, is_value(row) ? 0 : transposing ? -1011 : -1010);
        EXPECT_EQ(recorded.allocated, 0);
        EXPECT_EQ(fortran.calls, fortran.queries);
        EXPECT_EQ(made.contents(), before);
        return true;
    };
    for_each_function(any, [&](const lapacke_row &row, const std::string &twin) {
        for (const int layout : layouts)
            for (const bool work : {false, true}) {
                call made(row, work);
                made.layout = layout;
                int good = 0;
                while (expect_failure(row, made, twin, good) && !testing::Test::HasFailure())
                    ++good;
            }
    });
}

TEST_F(lapacke_frames, absurd_sizes_fail_as_allocations)
{
    constexpr int64_t huge = INT64_MAX / 2;
    for (const char *routine : {"dgetrf", "zgesvd", "ssyevd", "dgels", "dpptrf"}) {
        SCOPED_TRACE(routine);
        const lapacke_row &row = row_of(routine);
        reset();
        core fortran(row);
        call made(row, true);
        made.layout = row_major;
        for (argument &each : made.arguments)
            if (!each.is_array && each.element == 'i')
                each.integer = huge;
        EXPECT_EQ(made.make(), -1011);
        EXPECT_EQ(fortran.calls, 0);
        for (const memory_block &block : recorded.blocks)
            EXPECT_GE(block.size, static_cast<std::size_t>(huge)) << "too short";
    }
}

// The columns of matrices, from the documentation of their routines, with the sizes of good_integer.
TEST_F(lapacke_frames, leading_dimensions_are_bounded_by_columns)
{
    struct bound {
        const char *routine, *leading;
        int64_t columns;
        int set;
    };
    constexpr int64_t m = 7, n = 5, k = 3, p = 4, nrhs = 3;
    static const bound bounds[] = {
        {"dgetrf", "lda", n, 0},  {"dgesv", "lda", n, 0},       {"dgesv", "ldb", nrhs, 0},
        {"zgbsv", "ldab", n, 0},  {"sgels", "lda", n, 0},       {"sgels", "ldb", nrhs, 0},
        {"dgesvd", "ldu", m, 0},  {"dgesvd", "ldvt", n, 0},     {"dgesvd", "ldu", n, 1},
        {"cgeqrf", "lda", n, 0},  {"dormqr", "lda", k, 0},      {"dormqr", "ldc", n, 0},
        {"zunmlq", "lda", m, 0},  {"zunmlq", "lda", n, 1},      {"dormrq", "lda", m, 0},
        {"dormrq", "lda", n, 1},  {"sormrz", "lda", n, 1},      {"zunmbr", "lda", k, 0},
        {"dgglse", "ldb", n, 0},  {"dggglm", "lda", m, 0},      {"dggglm", "ldb", p, 0},
        {"sggsvd3", "ldu", m, 0}, {"sggsvd3", "ldv", p, 0},     {"cggsvp", "ldv", p, 0},
        {"dsyev", "lda", n, 0},   {"zhbevd", "ldz", n, 0},      {"dpbsv", "ldab", n, 0},
        {"dtrsyl", "lda", m, 0},  {"dtrsyl", "ldb", n, 0},      {"dtrsyl", "ldc", n, 0},
        {"dgeqrt", "ldt", n, 0},  {"sgemqrt", "ldt", k, 0},     {"dtpqrt", "ldb", n, 0},
        {"dtpmqrt", "lda", n, 0}, {"dtpmqrt", "lda", k, 1},     {"dlarfb", "ldt", k, 0},
        {"dlarft", "ldv", k, 0},  {"dlarft", "ldv", n, 1},      {"dgebak", "ldv", m, 0},
        {"ztrevc", "ldvl", 4, 1}, {"dsfrk", "lda", k, 0},       {"dsfrk", "lda", n, 1},
        {"dtfsm", "ldb", n, 0},   {"xkl_dtppack", "lda", k, 0}, {"dgesvx", "ldx", nrhs, 0},
        {"dlacpy", "ldb", n, 0},  {"dlapmr", "ldx", n, 0},      {"dsbevx", "ldz", 3, 1},
    };
    for (const bound &each : bounds) {
        SCOPED_TRACE(std::string(each.routine) + " " + each.leading);
        for (const std::string &twin : twins) {
            reset();
            const lapacke_row &row = row_of(each.routine);
            core fortran(row);
            call made(row, true, each.set);
            made.layout = row_major;
            made.at(each.leading).integer = each.columns;
            EXPECT_GE(made.make(twin), 0);
            EXPECT_EQ(fortran.calls, 1);
            made.at(each.leading).integer = each.columns - 1;
            EXPECT_EQ(made.make(twin), -made.place(each.leading));
            EXPECT_EQ(fortran.calls, 1);
        }
    }
}

// What routines read, with the options of the first set, from their documentation.
TEST_F(lapacke_frames, nan_is_looked_for_in_inputs_alone)
{
    static const std::pair<const char *, const char *> inputs[] = {
        {"dgetrf", "a"},          {"dgetri", "a"},          {"dgesv", "a b"},
        {"zgbsv", "ab b"},        {"dgtsv", "dl d du b"},   {"sposv", "a b"},
        {"dppsv", "ap b"},        {"zhesv", "a b"},         {"dgels", "a b"},
        {"dgelsd", "a b rcond"},  {"dgesvd", "a"},          {"dgesdd", "a"},
        {"dsyev", "a"},           {"dsyevd", "a"},          {"zheevr", "a abstol"},
        {"dstevx", "d e abstol"}, {"dgeev", "a"},           {"dggev", "a b"},
        {"dgees", "a"},           {"dgesvx", "a af r c b"}, {"dgeqrf", "a"},
        {"dormqr", "a tau c"},    {"dgglse", "a b c d"},    {"dhseqr", "h z"},
        {"dtrsyl", "a b c"},      {"xkl_dgetrfnp", "a"},    {"xkl_zgetrinp", "a"},
        {"xkl_stppack", "a"},     {"xkl_ctpunpack", "ap"},  {"dlange", "a"},
        {"zlarfx", "v tau c"},    {"zrot", "x y c s"},      {"dpteqr", "d e z"},
        {"dgecon", "a anorm"},    {"dgejsv", "a"},          {"dtgsja", "a b tola tolb u v q"}};
    for (const auto &[routine, names] : inputs) {
        const lapacke_row &row = row_of(routine);
        std::string found;
        for (std::size_t i = 0; i < call(row, false).arguments.size(); ++i) {
            call made(row, false);
            argument &spoiled = made.arguments[i];
            if (!spoiled.is_number())
                continue;
            const number nan = std::numeric_limits<double>::quiet_NaN();
            spoiled.real = nan;
            for (int64_t at = 0; spoiled.is_array && at < leading_dimension * leading_dimension; ++at)
                write(spoiled.memory.data(), spoiled.element, at, nan);
            core fortran(row);
            made.make();
            if (fortran.calls == 0)
                found += (found.empty() ? "" : " ") + spoiled.name;
        }
        EXPECT_EQ(found, names) << routine;
    }
}

// Run before any other test asks for the flag: a child starts with it unset.
TEST(lapacke_nan_switch_DeathTest, follows_the_environment_once)
{
    const auto flag_with = [](const char *value) {
        reset();
        if (value)
            recorded.environment["LAPACKE_NANCHECK"] = value;
        const int first = LAPACKE_get_nancheck();
        recorded.environment["LAPACKE_NANCHECK"] = first ? "0" : "1";
        std::exit(first == LAPACKE_get_nancheck() ? 40 + first : 1);
    };
    struct expected {
        const char *value;
        int flag;
    };
    for (const auto [value, flag] : {expected{nullptr, 1},
                                     {"", 1},
                                     {"0", 0},
                                     {"1", 1},
                                     {" -7x", 1},
                                     {"no", 0},
                                     {"4294967296", 0},
                                     {"4294967297", 1},
                                     {"99999999999999999999", 1}})
        EXPECT_EXIT(flag_with(value), testing::ExitedWithCode(40 + flag), "")
            << (value ? value : "(unset)");
}

TEST_F(lapacke_frames, the_switch_is_0_or_1)
{
    LAPACKE_set_nancheck(-5);
    EXPECT_EQ(LAPACKE_get_nancheck(), 1);
    LAPACKE_set_nancheck(0);
    EXPECT_EQ(LAPACKE_get_nancheck(), 0);
}

TEST_F(lapacke_frames, version_comes_from_the_fortran_routine)
{
    int64_t major = 0, minor = 0, patch = 0;
    LAPACKE_ilaver(&major, &minor, &patch);
    ASSERT_EQ(recorded.calls.size(), 1u);
    EXPECT_EQ(recorded.calls[0].entry, "xkl_lapack_ilaver");
    EXPECT_EQ(recorded.calls[0].arguments,
              (words{reinterpret_cast<int64_t>(&major), reinterpret_cast<int64_t>(&minor),
                     reinterpret_cast<int64_t>(&patch)}));
}

} // namespace
