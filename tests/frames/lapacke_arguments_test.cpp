// Arguments of single LAPACKE routines that no rule for all of them covers, over the recording core.
#include "lapacke_core.h"

#include "xkl_lapacke_types.h"

#include <gtest/gtest.h>

#include <limits>

using namespace lapacke;

namespace {

class lapacke_arguments : public testing::Test {
  protected:
    void SetUp() override { LAPACKE_set_nancheck(1); }
    void TearDown() override { reset(); }
};

TEST_F(lapacke_arguments, short_band_factors_are_refused_in_row_major)
{
    for (const char *routine : {"ssytrf_aa_2stage", "zhetrf_aa_2stage", "csysv_aa_2stage",
                                "chesv_aa_2stage", "dsytrs_aa_2stage", "zhetrs_aa_2stage"})
        for (const std::string twin : {"", "_64"}) {
            SCOPED_TRACE(routine + twin);
            reset();
            const lapacke_row &row = row_of(routine);
            core fortran(row);
            call made(row, true);
            made.layout = row_major;
            const int64_t least = 4 * made.at("n").integer;
            made.at("ltb").integer = least;
            EXPECT_EQ(made.make(twin), 0);
            EXPECT_EQ(fortran.calls, 1);
            made.at("ltb").integer = least - 1;
            EXPECT_EQ(made.make(twin), -made.place("ltb"));
            EXPECT_EQ(fortran.calls, 1);
            EXPECT_EQ(message(),
                      "Wrong parameter " + std::to_string(made.place("ltb")) + " in " + made.name() + "\n");
        }
}

// A matrix without columns may lie anywhere: there is nothing that the matrix copy could refuse.
TEST_F(lapacke_arguments, no_error_bounds_are_no_error)
{
    for (const char *routine : {"dgerfsx", "zgbrfsx", "zgesvxx", "cgbsvxx", "sporfsx", "cposvxx", "dsyrfsx",
                                "dsysvxx", "zherfsx", "chesvxx"}) {
        SCOPED_TRACE(routine);
        reset();
        const lapacke_row &row = row_of(routine);
        core fortran(row);
        call made(row, true);
        made.layout = row_major;
        made.at("n_err_bnds").integer = 0;
        EXPECT_EQ(made.make(), 0);
        EXPECT_EQ(fortran.calls, 1);
        EXPECT_TRUE(recorded.reports.empty());
    }
}

// Which side it is tells how long the array is: without it, nothing may be read.
TEST_F(lapacke_arguments, arrays_of_unknown_size_are_not_searched_for_nan)
{
    for (const char *routine : {"dgemqrt", "ztpmqrt", "stprfb"}) {
        SCOPED_TRACE(routine);
        reset();
        const lapacke_row &row = row_of(routine);
        core fortran(row);
        call made(row, false);
        made.at("side").integer = 'X';
        argument &v = made.at("v");
        write(v.memory.data(), v.element, 0, std::numeric_limits<double>::quiet_NaN());
        made.make();
        EXPECT_EQ(fortran.calls, 1);
    }
}

} // namespace
