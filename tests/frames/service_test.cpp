// Service forwarders over the recording core: every spelling, the widths that are read, the callbacks and
// reporters.
#include "recorder.h"
#include "routine_call.h"

#include "xkl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

extern "C" void xkl_serv_xerbla(const char *name, const int64_t *position, int64_t length);

namespace {

/// Entries that the recording core implements itself are tested by hand below.
bool by_hand(const std::string &name)
{
    static const std::vector<std::string> names = {"LSAME", "DSECND"};
    return name.starts_with("xkl_") || std::find(names.begin(), names.end(), name) != names.end();
}

template <class Wanted>
std::vector<const routine_row *> forwarders(Wanted wanted)
{
    std::vector<const routine_row *> rows;
    for (int i = 0; i < service_row_count; ++i) {
        const routine_row &row = service_rows[i];
        if (std::string(row.frame).starts_with("forward") && !by_hand(row.name) && wanted(row))
            rows.push_back(&row);
    }
    return rows;
}

class forwarder : public testing::TestWithParam<const routine_row *> {
  protected:
    const routine_row &row = *GetParam();
    // More than 32 bits, so that a wrong width shows.
    static constexpr int64_t wide = (int64_t{1} << 32) + 4;

    static int64_t as_read(const std::string &kind, int64_t value)
    {
        return kind == "j" ? static_cast<int32_t>(value) : value;
    }

    /// What reached the core, each word cut to the width of its kind.
    words arrived() const
    {
        words cut;
        const auto kinds = split(row.kinds);
        for (std::size_t i = 0; i < kinds.size(); ++i)
            cut.push_back(as_read(kinds[i], recorded.calls.at(0).arguments.at(i)));
        return cut;
    }
};

TEST_P(forwarder, fortran_spellings_read_values_through_addresses)
{
    std::vector<std::string> spellings = split(row.spellings);
    spellings.push_back(row.body);
    const auto kinds = split(row.kinds);
    words given, expected;
    for (const std::string &kind : kinds) {
        const bool value = kind == "j" || kind == "q" || kind == "v";
        given.push_back(value ? reinterpret_cast<int64_t>(&wide) : wide);
        expected.push_back(value ? as_read(kind, wide) : wide);
    }
    for (const std::string &spelling : spellings) {
        SCOPED_TRACE(spelling);
        reset();
        call_integer(exported(spelling), given);
        ASSERT_EQ(recorded.calls.size(), 1u);
        EXPECT_EQ(recorded.calls[0].entry, row.core_entry);
        EXPECT_EQ(arrived(), expected);
    }
}

class mixed_forwarder : public forwarder {};

TEST_P(mixed_forwarder, mixed_case_spelling_passes_values)
{
    reset();
    call_integer(exported(row.mixed), words(split(row.kinds).size(), 4));
    ASSERT_EQ(recorded.calls.size(), 1u);
    EXPECT_EQ(recorded.calls[0].entry, row.core_entry);
    EXPECT_EQ(arrived(), words(split(row.kinds).size(), 4));
}

const auto row_name = [](const auto &info) { return std::string(info.param->name); };
const auto has_fortran = [](const routine_row &row) { return std::string(row.frame) == "forward"; };
const auto has_mixed = [](const routine_row &row) { return *row.mixed != 0; };
INSTANTIATE_TEST_SUITE_P(service, forwarder, testing::ValuesIn(forwarders(has_fortran)), row_name);
INSTANTIATE_TEST_SUITE_P(service, mixed_forwarder, testing::ValuesIn(forwarders(has_mixed)), row_name);

TEST(service, comparison_and_clock_reach_the_core)
{
    reset();
    recorded.clock = {3.5, 4.5};
    EXPECT_NE(lsame("n", "N", 1, 1), 0);
    EXPECT_EQ(lsame_64_("n", "T", 1, 1), 0);
    EXPECT_EQ(dsecnd(), 3.5);
    EXPECT_EQ(DSECND_64(), 4.5);
    for (const char *spelling : {"LSAME", "LSAME_64", "lsame_", "lsame_64", "xkl_lapack__lsame_"})
        EXPECT_EQ(exported(spelling), exported("lsame")) << spelling;
}

TEST(service, internal_entries_reach_the_core)
{
    reset();
    void *block = xkl_serv_iface_allocate(64, 128);
    ASSERT_NE(block, nullptr);
    xkl_serv_iface_deallocate(block);
    EXPECT_EQ(recorded.allocated, 0);
    EXPECT_EQ(xkl_serv_iface_verbose_mode(), &recorded.verbose);
    xkl_serv_iface_print_verbose_info(1.5, 2, "line");
    ASSERT_EQ(recorded.lines.size(), 1u);
    EXPECT_EQ(recorded.lines[0].seconds, 1.5);
    EXPECT_EQ(recorded.lines[0].domain, 2);
    const int64_t position = 8;
    xkl_set_xerbla_interface(cdecl_xerbla);
    xkl_serv_iface_xerbla("DGEMM ", &position, 6);
    ASSERT_EQ(recorded.reports.size(), 1u);
    EXPECT_EQ(recorded.default_reports, 1);
}

TEST(service, callback_chains_end_at_the_core)
{
    EXPECT_EQ(cdecl_progress(nullptr, nullptr, "", 0), 71);
    EXPECT_EQ(cdecl_pardiso_pivot(nullptr, nullptr, nullptr), 72);
}

TEST(reporters, cblas_xerbla_widens_the_position_and_measures_the_name)
{
    reset();
    cblas_xerbla("cblas_dgemm", 1);
    cblas_xerbla_malloc_error("cblas_zher");
    ASSERT_EQ(recorded.reports.size(), 2u);
    EXPECT_EQ(recorded.reports[0].name, "cblas_dgemm");
    EXPECT_EQ(recorded.reports[0].position, 1);
    EXPECT_EQ(recorded.reports[0].length, 11);
    EXPECT_EQ(recorded.reports[1].name, "cblas_zher");
    EXPECT_EQ(recorded.reports[1].position, 1000);
    EXPECT_EQ(recorded.default_reports, 2) << "registered before the report";
    reset();
    cblas_xerbla(std::string(5000, 'x').c_str(), 2);
    EXPECT_EQ(recorded.reports.at(0).length, 4096);
}

TEST(reporters, lapacke_xerbla_prints_and_never_reaches_xerbla)
{
    const std::map<int64_t, std::string> texts = {
        {-1010, "Not enough memory to allocate work array in LAPACKE_dgesv\n"},
        {-1011, "Not enough memory to transpose matrix in LAPACKE_dgesv\n"},
        {-3, "Wrong parameter 3 in LAPACKE_dgesv\n"},
        {INT64_MIN, "Wrong parameter 0 in LAPACKE_dgesv\n"},
        {0, ""},
        {5, ""},
    };
    for (const auto &[info, text] : texts) {
        reset();
        LAPACKE_xerbla("LAPACKE_dgesv", info);
        EXPECT_EQ(recorded.lines.empty() ? "" : recorded.lines[0].text, text) << info;
        EXPECT_TRUE(recorded.reports.empty());
    }
}

int handled_code = 0;

TEST(exit_handler, is_remembered_passed_on_and_called)
{
    const xkl_exit_handler handler = [](int code) { handled_code = code; };
    for (xkl_type_xkl_set_exit_handler *setter :
         {XKL_Set_Exit_Handler, XKL_SET_EXIT_HANDLER, xkl_set_exit_handler_}) {
        reset();
        setter(handler);
        ASSERT_EQ(recorded.calls.size(), 1u);
        EXPECT_EQ(recorded.calls[0].entry, "xkl_serv_set_exit_handler");
        EXPECT_EQ(recorded.calls[0].arguments[0], reinterpret_cast<int64_t>(handler));
    }
    xkl_serv_iface_exit(7);
    EXPECT_EQ(handled_code, 7);
    xkl_set_exit_handler(nullptr);
    EXPECT_EXIT(xkl_serv_iface_exit(3), testing::ExitedWithCode(3), "");
}

} // namespace
