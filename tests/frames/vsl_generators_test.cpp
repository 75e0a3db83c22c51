// Generators over the recording kernel library: every routine of the table.
#include "routine_call.h"
#include "vml_recorder.h"
#include "vsl_call.h"
#include "vsl_recorder.h"
#include "xkl_vsl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <limits>

namespace {

constexpr int64_t block = 0x7fffffff;
constexpr int64_t accurate_flag = 1 << 30;

/// What the tests know of a distribution, apart from the tables.
struct distribution {
    const char *name; // ? for s and d
    int methods;
    bool accurate;
    const char *format; // of the parameters, single precision with its %f too
    const char *good;
    std::vector<const char *> bad; // `6=0.5`: place and value
};

const distribution distributions[] = {
    {"v?RngUniform", 1, true, "%lf,%lf", "0.5 1.5", {"6=0.5", "6=0.25", "6=-inf"}},
    {"v?RngGaussian", 3, false, "%lf,%lf", "-2.5 0.125", {"6=0", "6=-1"}},
    {"v?RngGaussianMV",
     3,
     false,
     "%lli,%lli,%p,%p",
     "3 2 at at",
     {"5=0", "5=-1", "5=0x100000003", "6=-1", "6=3", "7=null", "8=null"}},
    {"v?RngExponential", 1, true, "%lf,%lf", "-2.5 0.125", {"6=0", "6=-1"}},
    {"v?RngLaplace", 1, false, "%lf,%lf", "-2.5 0.125", {"6=0", "6=-1"}},
    {"v?RngWeibull", 1, true, "%lf,%lf,%lf", "2 -0.5 0.125", {"5=0", "5=-1", "7=0", "7=-1"}},
    {"v?RngCauchy", 1, false, "%lf,%lf", "-2.5 0.125", {"6=0", "6=-1"}},
    {"v?RngRayleigh", 1, true, "%lf,%lf", "-2.5 0.125", {"6=0", "6=-1"}},
    {"v?RngLognormal", 2, true, "%lf,%lf,%lf,%lf", "-1 2 -3 4", {"6=0", "6=-2", "8=0", "8=-4"}},
    {"v?RngGumbel", 1, false, "%lf,%lf", "-2.5 0.125", {"6=0", "6=-1"}},
    {"v?RngGamma", 1, true, "%lf,%lf,%lf", "2 -0.5 0.125", {"5=0", "5=-1", "7=0", "7=-1"}},
    {"v?RngBeta", 1, true, "%lf,%lf,%lf,%lf", "1 2 -3 4", {"5=0", "5=-1", "6=0", "6=-1", "8=0", "8=-4"}},
    {"v?RngChiSquare", 1, false, "%d", "5", {"5=0", "5=-3", "5=0x100000001"}},
    {"viRngUniform", 1, false, "%d,%d", "-7 7", {"6=-7", "6=-8", "5=0x80000000", "6=0x80000000"}},
    {"viRngUniformBits", 1, false, "", "", {}},
    {"viRngUniformBits32", 1, false, "", "", {}},
    {"viRngUniformBits64", 1, false, "", "", {}},
    {"viRngBernoulli", 1, false, "%lf", "0.25", {"5=-0.001", "5=1.001"}},
    {"viRngGeometric", 1, false, "%lf", "0.25", {"5=0", "5=1", "5=-1", "5=2"}},
    {"viRngBinomial", 1, false, "%d,%lf", "10 0.25", {"5=-1", "5=0x100000000", "6=-0.001", "6=1.001"}},
    {"viRngNegBinomial", 1, false, "%d,%lf", "10 0.25", {"5=0", "5=-1", "6=0", "6=1"}},
    {"viRngHypergeometric", 1, false, "%d,%d,%d", "10 4 6", {"5=-1", "6=-1", "6=11", "7=-1", "7=11"}},
    {"viRngPoisson", 2, false, "%lf", "0.25", {"5=0", "5=-1"}},
    {"viRngPoissonV", 1, false, "%p", "at", {"5=null"}},
    {"viRngMultinomial", 1, false, "%d,%d,%p", "10 3 at", {"5=-1", "6=0", "6=-1", "7=null"}},
};

/// A generator with good arguments, of which a test spoils some.
struct generator {
    const distribution &known;
    const vsl_row &row;
    std::vector<vsl_parameter> parameters;
    std::vector<vsl_value> values;
    int64_t method = 0, stream = word(&live_stream), n = 3, r = int64_t{1} << 43;

    generator(const distribution &of, const std::string &name)
        : known(of), row(vsl_row_of(name)), parameters(vsl_parameters(row)),
          values(vsl_values(parameters, of.good))
    {
    }

    int32_t call(const std::string &spelling = "") const
    {
        std::vector<vsl_value> list = {
            {false, 0, method}, {false, 0, stream}, {false, 0, n}, {false, 0, r}};
        list.insert(list.end(), values.begin(), values.end());
        return vsl_call(exported(spelling.empty() ? row.name : spelling), list, row.element == 's');
    }

    /// Puts a bad value in; its place.
    int64_t spoil(const std::string &place_and_value)
    {
        const auto place = static_cast<std::size_t>(std::stoi(place_and_value));
        values.at(place - 5) =
            vsl_value_of(parameters.at(place - 5), place_and_value.substr(place_and_value.find('=') + 1));
        return static_cast<int64_t>(place);
    }

    /// What a block's call must be.
    core_call expected(int64_t start, int64_t count) const
    {
        const std::map<char, int64_t> sizes = {{'s', 4}, {'d', 8}, {'i', 4}, {'u', 4}, {'l', 8}};
        const std::string name = row.name;
        const int64_t width = name.ends_with("GaussianMV") || name.ends_with("Multinomial") ? 3 : 1;
        words arguments = {static_cast<int32_t>(method), stream, count,
                           r + start * width * sizes.at(row.element)};
        for (const int64_t each : vsl_handed(parameters, values))
            arguments.push_back(each);
        if (name == "viRngPoissonV")
            arguments.back() += start * static_cast<int64_t>(sizeof(double));
        return {"_vsl" + name.substr(1), arguments};
    }
};

/// The distribution of a routine: vdRngGaussian is v?RngGaussian.
const distribution &distribution_of(const std::string &name)
{
    std::string untyped = name;
    untyped[1] = name[1] == 'i' ? 'i' : '?';
    return *std::ranges::find(distributions, untyped, [](const distribution &each) { return each.name; });
}

void for_each_generator(const std::function<void(generator)> &check)
{
    int seen = 0;
    for (const distribution &each : distributions)
        for (const char *type : {"s", "d"}) {
            std::string name = each.name;
            const auto mark = name.find('?');
            if (mark == std::string::npos && *type == 'd')
                continue;
            if (mark != std::string::npos)
                name.replace(mark, 1, type);
            SCOPED_TRACE(name);
            ++seen;
            reset();
            vsl_recorded = {};
            check(generator(each, name));
        }
    int rows = 0;
    for (int i = 0; i < vsl_row_count; ++i)
        rows += std::string(vsl_rows[i].frame) == "generate";
    EXPECT_EQ(seen, rows) << "generators of the tables that no test knows, or the reverse";
}

/// A call that must be refused with one report, and nothing else.
void expect_refused(const generator &by, int64_t place, int32_t status)
{
    reset();
    EXPECT_EQ(by.call(), status);
    ASSERT_EQ(recorded.reports.size(), 1u) << "place " << place;
    EXPECT_EQ(recorded.reports[0].position, place);
    EXPECT_EQ(recorded.reports[0].name, by.row.name);
    EXPECT_EQ(recorded.default_reports, 1);
    EXPECT_EQ(recorded.order, (std::vector<std::string>{"register", "report"}));
}

void expect_calls(const std::vector<core_call> &expected)
{
    ASSERT_EQ(recorded.calls.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(recorded.calls[i].entry, expected[i].entry);
        EXPECT_EQ(recorded.calls[i].arguments, expected[i].arguments) << "call " << i;
    }
}

TEST(vsl_generators, check_in_order)
{
    for_each_generator([](generator by) {
        const std::vector<vsl_value> good = by.values;
        if (!by.known.bad.empty())
            by.spoil(by.known.bad.back());
        by.method = -1, by.stream = 0, by.n = -1, by.r = 0;
        expect_refused(by, 1, -3);
        by.method = by.known.methods; // too large, which is found only later
        expect_refused(by, 2, -5);
        by.stream = word(&dead_stream);
        expect_refused(by, 2, -1006);
        by.stream = word(&live_stream);
        expect_refused(by, 3, -3);
        by.n = 0;
        reset();
        EXPECT_EQ(by.call(), 0);
        EXPECT_TRUE(recorded.order.empty());
        by.n = 1;
        expect_refused(by, 4, -3);
        by.r = int64_t{1} << 43;
        expect_refused(by, 1, -3);
        by.method = int64_t{1} << 32; // all 64 bits count
        expect_refused(by, 1, -3);
        by.method = by.known.methods - 1;
        for (const char *bad : by.known.bad) {
            by.values = good;
            const int64_t place = by.spoil(bad);
            expect_refused(by, place, -3);
        }
    });
}

TEST(vsl_generators, accept_what_is_in_range)
{
    for_each_generator([](generator by) {
        std::vector<core_call> expected;
        for (by.method = 0; by.method < by.known.methods; ++by.method) {
            EXPECT_EQ(by.call(), 0);
            expected.push_back(by.expected(0, 3));
        }
        expect_calls(expected);
        by.method = accurate_flag;
        if (by.known.accurate) {
            EXPECT_EQ(by.call(), 0);
            expected.push_back(by.expected(0, 3));
            expect_calls(expected);
        } else {
            expect_refused(by, 1, -3);
        }
        by.method = accurate_flag + by.known.methods;
        expect_refused(by, 1, -3);
    });
}

TEST(vsl_generators, take_the_ends_of_ranges)
{
    const std::vector<std::pair<const char *, const char *>> ends = {
        {"viRngBernoulli", "0"},
        {"viRngBernoulli", "1"},
        {"viRngBinomial", "0 0"},
        {"viRngBinomial", "0 1"},
        {"viRngUniform", "-1 0"},
        {"viRngHypergeometric", "0 0 0"},
        {"viRngHypergeometric", "4 4 4"},
        {"viRngMultinomial", "0 1 at"},
        {"viRngUniform", "-0x80000000 0x7fffffff"},
        {"vdRngGaussianMV", "1 0 at at"}};
    for (const auto &[name, values] : ends) {
        reset();
        generator by(distribution_of(name), name);
        by.values = vsl_values(by.parameters, values);
        EXPECT_EQ(by.call(), 0) << name << " " << values;
        EXPECT_EQ(recorded.calls.size(), 1u) << name << " " << values;
    }
}

TEST(vsl_generators, let_nan_pass)
{
    for_each_generator([](generator by) {
        const std::vector<vsl_value> good = by.values;
        for (std::size_t i = 0; i < good.size(); ++i) {
            if (!good[i].real)
                continue;
            reset();
            by.values = good;
            by.values[i].number = std::numeric_limits<double>::quiet_NaN();
            EXPECT_EQ(by.call(), 0) << by.parameters[i].name;
            EXPECT_EQ(recorded.calls.size(), 1u);
            EXPECT_TRUE(recorded.reports.empty());
        }
    });
}

TEST(vsl_generators, cut_long_calls_into_blocks)
{
    for_each_generator([](generator by) {
        by.n = 2 * block + 5;
        vsl_recorded.statuses = {0, 2, 1};
        EXPECT_EQ(by.call(), 1); // of the last block
        expect_calls({by.expected(0, block), by.expected(block, block), by.expected(2 * block, 5)});

        reset();
        by.n = block;
        EXPECT_EQ(by.call(), 0);
        expect_calls({by.expected(0, block)});

        reset();
        by.n = 2 * block;
        vsl_recorded.statuses = {0, -1012};
        EXPECT_EQ(by.call(), -1012);
        vsl_recorded.statuses = {-1121, 0};
        EXPECT_EQ(by.call(), -1121); // at once
        expect_calls({by.expected(0, block), by.expected(block, block), by.expected(0, block)});
        vsl_recorded = {};
    });
}

/// The line that a call must leave.
std::string expected_line(const generator &by)
{
    char text[512];
    std::snprintf(text, sizeof text, "%s(%d,%p,%d,%p", by.row.name, static_cast<int>(by.method),
                  reinterpret_cast<void *>(by.stream), static_cast<int>(by.n),
                  reinterpret_cast<void *>(by.r));
    std::string line = text, formats = by.known.format;
    for (const vsl_value &each : by.values) {
        const std::string format = formats.substr(0, formats.find(','));
        formats.erase(0, format.size() + 1);
        if (each.real)
            std::snprintf(text, sizeof text, format.c_str(), each.number);
        else
            std::snprintf(text, sizeof text, format.c_str(), each.word);
        line += std::string(",") + text;
    }
    return line + ")";
}

TEST(vsl_generators, leave_a_line_when_tracing)
{
    for_each_generator([](generator by) {
        recorded.verbose = 1;
        recorded.clock = {10, 11.5, 20, 20.25};
        by.n = block + 7;
        EXPECT_EQ(by.call(), 0);
        expect_calls({by.expected(0, block), by.expected(block, 7)});
        ASSERT_EQ(recorded.lines.size(), 1u);
        EXPECT_EQ(recorded.lines[0].text, expected_line(by));
        EXPECT_EQ(recorded.lines[0].domain, 2);
        EXPECT_EQ(recorded.lines[0].seconds, 1.75);
        EXPECT_EQ(recorded.order.back(), "line");

        reset(); // tracing is off again, and the flag is known
        EXPECT_EQ(by.call(), 0);
        EXPECT_EQ(recorded.order.size(), recorded.calls.size()) << "a quiet call reads no clock";

        reset();
        recorded.verbose = 1;
        vsl_recorded.statuses = {-4};
        EXPECT_EQ(by.call(), -4);
        EXPECT_EQ(recorded.calls.size(), 1u);
        EXPECT_TRUE(recorded.lines.empty());
    });
}

TEST(vsl_generators, share_a_body_between_spellings)
{
    reset();
    generator by(distribution_of("viRngNegBinomial"), "viRngNegBinomial");
    EXPECT_EQ(by.call("viRngNegbinomial"), 0);
    expect_calls({by.expected(0, 3)});
    EXPECT_EQ(exported("viRngNegbinomial"), exported("viRngNegBinomial"));
}

TEST(vsl_generators, fetch_their_kernels_once)
{
    for_each_generator([](generator by) {
        by.call();
        const int loads = vml_recorded.loads;
        by.call();
        EXPECT_EQ(vml_recorded.loads, loads);
        EXPECT_EQ(loads, 1);
    });
}

} // namespace
