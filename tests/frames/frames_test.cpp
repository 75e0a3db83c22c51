// Every frame of the BLAS and LAPACK tables over the recording core: what arrives, in which order, what is
// reported and traced.
#include "recorder.h"
#include "routine_call.h"
#include "xkl_service.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

using steps = std::vector<std::string>;

class frame : public testing::TestWithParam<const routine_row *> {
  protected:
    void SetUp() override
    {
        const arguments_of arguments(row);
        reset();
        call(arguments); // the first call of a process may register by call where later ones do in place
        reset();
    }

    /// What a call leaves of its registration in the order of steps.
    steps registration() const { return registers && !in_place ? steps{"register"} : steps{}; }

    void expect_registered() const { EXPECT_EQ(registered_handler(), registers ? &cdecl_xerbla : nullptr); }

    const bool in_place = std::getenv("XKL_RECORD_IN_PLACE") != nullptr;
    const routine_row &row = *GetParam();
    const std::string kind = row.frame;
    const bool registers = kind != "traced" && kind != "through";
    const bool traced = kind != "through" && kind != "guarded";
    const bool batch = lapack_batch(row); // its line tells addresses alone
    const bool has_value = std::string(row.result) != "-" && std::string(row.result) != "first";

    /// Calls by one spelling over a core whose functions return the value expected below.
    std::complex<double> call(const arguments_of &arguments, const std::string &spelling)
    {
        recorded.integer_result = 42;
        recorded.real_result = 0.5;
        return call_for_value(row, exported(spelling), arguments.addresses());
    }

    std::complex<double> call(const arguments_of &arguments) { return call(arguments, row.body); }

    std::complex<double> expected_value() const
    {
        const std::string result = row.result;
        if (result == "complex")
            return {0.5, 42};
        return !has_value ? 0 : result == "real" || result == "r4" || result == "r8" ? 0.5 : 42;
    }

    static bool lapack_batch(const routine_row &row)
    {
        return std::string(row.core_entry).starts_with("xkl_lapack") &&
               std::string(row.name).find("_BATCH") != std::string::npos;
    }

    /// What arrived, less what lies behind 32-bit values in their words.
    static words arrived(const arguments_of &arguments)
    {
        words received = recorded.calls.at(0).arguments;
        for (std::size_t i = 0; i < arguments.kinds.size(); ++i)
            if (arguments.kinds[i] == "=int32_t")
                received.at(i) = static_cast<int32_t>(received.at(i));
        return received;
    }

    words expected_words(const arguments_of &arguments) const
    {
        words expected = arguments.addresses();
        if (row.group)
            expected.push_back(0);
        for (const std::string &kind : arguments.kinds)
            if (kind == "c" || kind == "C")
                expected.push_back(1);
        return expected;
    }

    /// The line as the argument kinds alone require it.
    std::string expected_line(const arguments_of &arguments) const
    {
        std::string text = std::string(row.name) + "(";
        for (std::size_t i = 0; i < arguments.kinds.size(); ++i) {
            const std::string &kind = arguments.kinds[i];
            char value[32];
            if (batch)
                std::snprintf(value, sizeof value, "%p", arguments.at(i));
            else if (arguments.by_value(i))
                std::snprintf(value, sizeof value, "%lli",
                              static_cast<long long>(arguments.addresses()[i]));
            else if (kind == "c" || (row.group && kind == "C"))
                std::snprintf(value, sizeof value, "%c", *static_cast<char *>(arguments.at(i)));
            else if (prints_integer(kind))
                std::snprintf(value, sizeof value, "%lli",
                              arguments.at(i) ? *static_cast<long long *>(arguments.at(i)) : 0);
            else if (kind == "e")
                std::snprintf(value, sizeof value, "%d", *static_cast<int *>(arguments.at(i)));
            else
                std::snprintf(value, sizeof value, "%p", arguments.at(i));
            text += (i ? "," : "") + std::string(value);
        }
        return (text + ")").substr(0, 449); // longer lines are cut
    }

    bool prints_integer(const std::string &kind) const
    {
        return kind == "i" || kind == "l" || kind == "info" || (row.group && kind == "I");
    }

    /// The order of steps without those that belong to the first call alone.
    static steps without_fetch(steps order)
    {
        std::erase(order, "verbose_mode");
        return order;
    }
};

TEST_P(frame, every_spelling_reaches_the_core_with_the_same_addresses)
{
    const arguments_of arguments(row);
    steps spellings = split(row.spellings);
    spellings.push_back(row.body);
    for (const std::string &spelling : spellings) {
        SCOPED_TRACE(spelling);
        reset();
        EXPECT_EQ(call(arguments, spelling), expected_value());
        ASSERT_EQ(recorded.calls.size(), 1u);
        EXPECT_EQ(recorded.calls[0].entry, row.core_entry);
        EXPECT_EQ(arrived(arguments), expected_words(arguments));
        EXPECT_EQ(exported(spelling), exported(row.body));
        expect_registered();
        steps expected = registration();
        expected.push_back(row.core_entry);
        EXPECT_EQ(without_fetch(recorded.order), expected) << "a quiet call reads no clock";
    }
}

TEST_P(frame, traced_call_leaves_its_line)
{
    arguments_of arguments(row);
    call(arguments); // the flag is fetched; switching it on afterwards must be seen at once
    reset();
    recorded.verbose = 1;
    recorded.clock = {10.0, 12.5};
    recorded.on_call = [&](const core_call &) {
        if (arguments.has_info())
            arguments.set_integer(arguments.last(), 17); // the line tells what the core stored
    };
    EXPECT_EQ(call(arguments), expected_value()) << "the result is kept across the trace";
    ASSERT_EQ(recorded.calls.size(), 1u);
    EXPECT_EQ(arrived(arguments), expected_words(arguments));
    if (!traced) {
        EXPECT_TRUE(recorded.lines.empty());
        return;
    }
    ASSERT_EQ(recorded.lines.size(), 1u);
    EXPECT_EQ(recorded.lines[0].text, expected_line(arguments));
    EXPECT_EQ(recorded.lines[0].domain, 2);
    EXPECT_EQ(recorded.lines[0].seconds, 2.5);
    steps expected = {"clock", row.core_entry, "clock", "line"};
    for (const std::string &step : registration())
        expected.insert(expected.begin(), step);
    EXPECT_EQ(without_fetch(recorded.order), expected);
}

class checked_frame : public frame {};

TEST_P(checked_frame, refused_call_is_reported_and_goes_no_further)
{
    for (const int32_t verbose : {0, 1}) {
        SCOPED_TRACE(verbose);
        arguments_of arguments(row);
        const int64_t place = arguments.spoil();
        reset();
        recorded.verbose = verbose;
        const std::complex<double> value = call(arguments);
        EXPECT_TRUE(recorded.calls.empty());
        ASSERT_EQ(recorded.reports.size(), 1u);
        EXPECT_EQ(recorded.reports[0].name, row.reported_name);
        EXPECT_EQ(recorded.reports[0].position, place);
        EXPECT_EQ(recorded.default_reports, 1) << "the report goes down the chain to the core's default";
        EXPECT_TRUE(!has_value || value == static_cast<double>(row.failed_result)) << value;
        if (arguments.has_info()) {
            EXPECT_EQ(arguments.integer(arguments.last()), -place);
        }
        steps expected = registration();
        expected.push_back("report");
        if (verbose && traced)
            expected.insert(expected.end(), {"clock", "clock", "line"});
        EXPECT_EQ(without_fetch(recorded.order), expected);
        EXPECT_EQ(recorded.lines.empty() ? "" : recorded.lines[0].text,
                  verbose && traced ? expected_line(arguments) : "");
    }
}

class unchecked_frame : public frame {};

TEST_P(unchecked_frame, null_integer_prints_zero)
{
    arguments_of arguments(row);
    for (std::size_t i = 0; i < arguments.kinds.size(); ++i)
        if (prints_integer(arguments.kinds[i]))
            arguments.replace_address(i, nullptr);
    recorded.verbose = 1;
    call(arguments);
    ASSERT_EQ(recorded.lines.size(), 1u);
    EXPECT_EQ(recorded.lines[0].text, expected_line(arguments));
}

/// The rows of a family with one of the given kinds of frame.
std::vector<const routine_row *> rows_with(std::span<const routine_row> family, const steps &frames)
{
    std::vector<const routine_row *> rows;
    for (const routine_row &row : family)
        if (std::find(frames.begin(), frames.end(), row.frame) != frames.end())
            rows.push_back(&row);
    return rows;
}

const auto row_name = [](const auto &info) { return std::string(info.param->name); };
const steps checked = {"checked", "guarded"}, unchecked = {"registered", "traced"};
const steps all = {"checked", "guarded", "registered", "traced", "through"};
INSTANTIATE_TEST_SUITE_P(blas, frame, testing::ValuesIn(rows_with(blas_routines(), all)), row_name);
INSTANTIATE_TEST_SUITE_P(lapack, frame, testing::ValuesIn(rows_with(lapack_routines(), all)), row_name);
INSTANTIATE_TEST_SUITE_P(blas, checked_frame, testing::ValuesIn(rows_with(blas_routines(), checked)),
                         row_name);
INSTANTIATE_TEST_SUITE_P(lapack, checked_frame, testing::ValuesIn(rows_with(lapack_routines(), checked)),
                         row_name);
INSTANTIATE_TEST_SUITE_P(blas, unchecked_frame, testing::ValuesIn(rows_with(blas_routines(), unchecked)),
                         row_name);
INSTANTIATE_TEST_SUITE_P(lapack, unchecked_frame,
                         testing::ValuesIn(rows_with(lapack_routines(), unchecked)), row_name);

TEST(trace, formats_that_programs_parse)
{
    for (const std::string format : {
             "DGEMM(%c,%c,%lli,%lli,%lli,%p,%p,%lli,%p,%lli,%p,%p,%lli)",
             "DGEMV(%c,%lli,%lli,%p,%p,%lli,%p,%lli,%p,%p,%lli)",
             "DGBMV(%c,%lli,%lli,%lli,%lli,%p,%p,%lli,%p,%lli,%p,%p,%lli)",
             "DTRSM(%c,%c,%c,%c,%lli,%lli,%p,%p,%lli,%p,%lli)",
             "DSYRK(%c,%c,%lli,%lli,%p,%p,%lli,%p,%p,%lli)",
             "ZHER2K(%c,%c,%lli,%lli,%p,%p,%lli,%p,%lli,%p,%p,%lli)",
             "DTPMV(%c,%c,%c,%lli,%p,%p,%lli)",
             "DAXPY(%lli,%p,%p,%lli,%p,%lli)",
             "DNRM2(%lli,%p,%lli)",
             "IDAMAX(%lli,%p,%lli)",
             "CDOTC(%p,%lli,%p,%lli,%p,%lli)",
             "SCABS1(%p)",
             "DROTG(%p,%p,%p,%p)",
             "SAXPYI(%lli,%p,%p,%p,%p)",
             "DGEMM_BATCH(%c,%c,%lli,%lli,%lli,%p,%p,%lli,%p,%lli,%p,%p,%lli,%lli,%lli)",
             "DGETRF(%lli,%lli,%p,%lli,%p,%lli)",
             "DPOTRF(%c,%lli,%p,%lli,%lli)",
             "DGEQRF(%lli,%lli,%p,%lli,%p,%p,%lli,%lli)",
             "DGESV(%lli,%lli,%p,%lli,%p,%p,%lli,%lli)",
             "DGETRS(%c,%lli,%lli,%p,%lli,%p,%p,%lli,%lli)",
             "DSYEV(%c,%c,%lli,%p,%lli,%p,%p,%lli,%lli)",
             "DGESVD(%c,%c,%lli,%lli,%p,%lli,%p,%p,%lli,%p,%lli,%p,%lli,%lli)",
             "DLANGE(%c,%lli,%lli,%p,%lli,%p)",
             "DLAMCH(%c)",
             "XKL_DGETRFNPI(%lli,%lli,%lli,%p,%lli,%lli)",
             "XKL_DTPPACK(%c,%c,%lli,%p,%lli,%lli,%lli,%lli,%p,%lli,%lli)",
             "XKL_DSPFFRT2(%p,%lli,%lli,%p,%p)",
             "XKL_DGEQRF_COMPACT(%lli,%lli,%lli,%p,%lli,%p,%p,%lli,%lli,%lli,%lli)",
             "XKL_DGETRINP_COMPACT(%lli,%lli,%p,%lli,%p,%lli,%lli,%lli,%lli)",
             "DGETRI_OOP_BATCH(%p,%p,%p,%p,%p,%p,%p,%p,%p)",
             "DGETRS_BATCH_STRIDED(%p,%p,%p,%p,%p,%p,%p,%p,%p,%p,%p,%p,%p)",
             "DGESVDA_BATCH_STRIDED(%p,%p,%p,%p,%p,%p,%p,%p,%p,%p,%p,%p,%p,%p,%p,%p,%p,%p,%p,%p,%p)",
             "DDTTRSB(%c,%lli,%lli,%p,%p,%p,%p,%lli,%lli)",
             "ILAENV(%lli,%c,%c,%lli,%lli,%lli,%lli)",
             "DGEMM_BATCH_STRIDED(%c,%c,%lli,%lli,%lli,%p,%p,%lli,%lli,%p,%lli,%lli,%p,%p,%lli,%lli,%lli)",
         })
        EXPECT_EQ(row_of(format.substr(0, format.find('('))).format, format);
}

TEST(trace, clock_that_reads_zero_is_not_read_again)
{
    reset();
    const arguments_of arguments(row_of("DAXPY"));
    recorded.verbose = 1;
    recorded.clock = {0.0, 5.0};
    call_integer(exported("daxpy"), arguments.addresses());
    ASSERT_EQ(recorded.lines.size(), 1u);
    EXPECT_TRUE(recorded.lines[0].seconds == 0 && std::signbit(recorded.lines[0].seconds));
    EXPECT_EQ(recorded.clock.size(), 1u);
}

TEST(trace, flag_is_fetched_once_and_then_read_live)
{
    const arguments_of arguments(row_of("DSCAL"));
    void *const routine = exported("dscal");
    reset();
    call_integer(routine, arguments.addresses()); // fetches, unless an earlier test did
    reset();
    for (const int32_t flag : {0, 1, 0, 2}) {
        recorded.verbose = flag;
        call_integer(routine, arguments.addresses());
    }
    EXPECT_EQ(recorded.lines.size(), 2u);
    for (const std::string &step : recorded.order)
        EXPECT_NE(step, "verbose_mode");
}

/// The tridiagonal solvers' forms for callers with 32-bit integers, which no row's frame stands for.
TEST(narrow, sizes_arrive_widened_and_info_comes_back_alone)
{
    for (const std::string name : {"sdtsvb", "ddtsvb", "sdttrfb", "ddttrfb", "sdttrsb", "ddttrsb"}) {
        SCOPED_TRACE(name);
        std::string upper = name;
        std::transform(upper.begin(), upper.end(), upper.begin(), ::toupper);
        const routine_row &row = row_of(upper);
        const arguments_of wide(row);
        const std::size_t count = wide.names.size();
        std::vector<std::array<int32_t, 2>> narrow(count, {3, -1}); // what lies beside a size is not read
        words addresses = wide.addresses();
        for (std::size_t i = 0; i < count; ++i)
            if (wide.kinds[i] == "i" || wide.kinds[i] == "info")
                addresses[i] = reinterpret_cast<int64_t>(narrow[i].data());
        reset();
        recorded.verbose = 1;
        recorded.on_call = [&](const core_call &call) {
            for (std::size_t i = 0; i < count; ++i)
                if (wide.kinds[i] == "i") {
                    EXPECT_EQ(*reinterpret_cast<int64_t *>(call.arguments[i]), 3);
                } else if (wide.kinds[i] != "info") {
                    EXPECT_EQ(call.arguments[i], addresses[i]);
                }
            *reinterpret_cast<int64_t *>(call.arguments[count - 1]) = 17;
        };
        call_integer(exported(name + "_4dfl"), addresses);
        ASSERT_EQ(recorded.calls.size(), 1u);
        EXPECT_EQ(recorded.calls[0].entry, row.core_entry);
        EXPECT_EQ(registered_handler(), &cdecl_xerbla) << "the program hears of what the core finds";
        EXPECT_TRUE(recorded.lines.empty()) << "none of them leaves a trace line";
        EXPECT_EQ(narrow[count - 1], (std::array<int32_t, 2>{17, -1}));
    }
}

} // namespace
