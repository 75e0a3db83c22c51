// Stream routines over the recording kernel library.
#include "routine_call.h"
#include "vml_recorder.h"
#include "vsl_call.h"
#include "vsl_recorder.h"
#include "xkl_vsl.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <set>

namespace {

/// What the tests know of a routine, apart from the tables.
struct stream_call {
    const char *name;
    const char *good;              // arguments
    const char *format;            // of the line, from the bracket on
    std::vector<const char *> bad; // `2=-1:-3`: place, value, status
};

const stream_call calls[] = {
    {"vslNewStreamEx",
     "at 0x800000 2 at",
     "(%p,VSL_BRNG_MT19937,%d,%p)",
     {"2=0x80000000:-1000", "2=-1:-1000", "3=-1:-3", "3=0x100000002:-3", "4=null:-3"}},
    {"vsliNewAbstractStream",
     "at 5 at at",
     "(%p,%d,%p,%p)",
     {"1=null:-5", "2=0:-3", "2=-1:-3", "3=null:-3", "4=null:-3"}},
    {"vsldNewAbstractStream",
     "at 5 at -0.5 0.5 at",
     "(%p,%d,%p,%lf,%lf,%p)",
     {"1=null:-5", "2=0:-3", "3=null:-3", "5=-0.5:-3", "6=null:-3"}},
    {"vslsNewAbstractStream",
     "at 5 at -0.5 0.5 at",
     "(%p,%d,%p,%lf,%lf,%p)",
     {"1=null:-5", "2=0:-3", "3=null:-3", "5=-0.75:-3", "6=null:-3"}},
    {"vslDeleteStream", "&live", "(%p)", {"1=null:-5", "1=&null:-5", "1=&dead:-1006"}},
    {"vslCopyStream", "at live", "(%p,%p)", {"1=null:-5", "2=null:-5", "2=dead:-1006"}},
    {"vslCopyStreamState",
     "live live",
     "(%p,%p)",
     {"1=null:-5", "1=dead:-1006", "2=null:-5", "2=dead:-1006"}},
    {"vslLeapfrogStream",
     "live 2 3",
     "(%p,%d,%d)",
     {"1=null:-5", "1=dead:-1006", "2=-1:-3", "2=0x100000000:-3", "3=2:-3", "3=0:-3", "3=0x100000005:-3"}},
    {"vslSkipAheadStream", "live 0x7fffffffffffffff", "(%p,%lli)", {"1=dead:-1006", "2=-1:-3"}},
    {"vslSkipAheadStreamEx", "live 3 at", "(%p,%d,%p)", {"1=dead:-1006", "2=0:-3", "3=null:-3"}},
    {"vslGetStreamStateBrng", "live", "(%p)", {"1=null:-5", "1=dead:-1006"}},
    {"vslSaveStreamF", "live \"", "(%p,stream.dat,-1)", {"1=null:-5", "1=dead:-1006", "2=null:-3"}},
    {"vslLoadStreamF", "at \"", "(%p,stream.dat,-1)", {"1=null:-5", "2=null:-3"}},
    {"vslSaveStreamM", "live at", "(%p,%p)", {"1=null:-5", "1=dead:-1006", "2=null:-3"}},
    {"vslLoadStreamM", "at at", "(%p,%p)", {"1=null:-5", "2=null:-3"}},
    {"vslGetStreamSize", "live", "(%p)", {"1=null:-5", "1=dead:-1006"}},
    {"vslGetNumRegBrngs", "", "()", {}},
    {"vslRegisterBrng", "at", "(%p)", {"1=null:-3"}},
    {"vslGetBrngProperties", "0x800000 at", "(%d,%p)", {"1=-1:-1000", "1=0x80000000:-1000", "2=null:-3"}},
};

int32_t make_call(const stream_call &of, const std::vector<vsl_value> &values)
{
    reset();
    return vsl_call(exported(of.name), values, vsl_row_of(of.name).element == 's');
}

/// `place=value:status` put into the arguments.
void spoil(const stream_call &of, const std::string &text, std::vector<vsl_value> &values)
{
    const auto place = static_cast<std::size_t>(std::stoi(text));
    const auto start = text.find('=') + 1;
    const std::string value = text.substr(start, text.rfind(':') - start);
    values.at(place - 1) = vsl_value_of(vsl_parameters(vsl_row_of(of.name)).at(place - 1), value);
}

TEST(vsl_streams, refuse_bad_arguments)
{
    std::set<std::string> known = {"vslNewStream"}; // has tests of its own
    for (const stream_call &each : calls) {
        known.insert(each.name);
        const auto good = vsl_values(vsl_parameters(vsl_row_of(each.name)), each.good);
        std::vector<vsl_value> all_bad = good; // the first one is reported
        for (auto bad = each.bad.rbegin(); bad != each.bad.rend(); ++bad) {
            SCOPED_TRACE(std::string(each.name) + " " + *bad);
            const std::string text = *bad;
            spoil(each, text, all_bad);
            std::vector<vsl_value> one_bad = good;
            spoil(each, text, one_bad);
            for (const auto &values : {one_bad, all_bad}) {
                EXPECT_EQ(make_call(each, values), std::stoi(text.substr(text.rfind(':') + 1)));
                ASSERT_EQ(recorded.reports.size(), 1u);
                EXPECT_EQ(recorded.reports[0].position, std::stoi(text));
                EXPECT_EQ(recorded.reports[0].name, each.name);
                EXPECT_EQ(recorded.order, (std::vector<std::string>{"register", "report"}));
            }
        }
    }
    for (int i = 0; i < vsl_row_count; ++i)
        if (std::string(vsl_rows[i].frame) == "stream") {
            EXPECT_TRUE(known.contains(vsl_rows[i].name)) << "no test knows " << vsl_rows[i].name;
        }
}

/// The line with the values in it.
std::string filled(const stream_call &of, const std::vector<vsl_value> &values)
{
    std::string line = of.name, rest = of.format;
    for (const vsl_value &each : values) {
        const auto mark = rest.find('%');
        if (mark == std::string::npos)
            break;
        const auto end = rest.find_first_of(",)", mark);
        const std::string format = rest.substr(mark, end - mark);
        if (mark > 1 && rest.find(',') < mark) { // a value that the format has in letters
            line += rest.substr(0, rest.find(',', 1));
            rest.erase(0, rest.find(',', 1));
            continue;
        }
        char text[64];
        if (each.real)
            std::snprintf(text, sizeof text, format.c_str(), each.number);
        else
            std::snprintf(text, sizeof text, format.c_str(), each.word);
        line += rest.substr(0, mark) + text;
        rest.erase(0, end);
    }
    return line + rest;
}

TEST(vsl_streams, hand_their_arguments_on)
{
    for (const stream_call &each : calls)
        for (const bool traced : {false, true}) {
            SCOPED_TRACE(each.name);
            const vsl_row &row = vsl_row_of(each.name);
            const auto parameters = vsl_parameters(row);
            const auto values = vsl_values(parameters, each.good);
            reset();
            recorded.verbose = traced;
            recorded.clock = {3, 3.5};
            vsl_recorded.statuses = {-77};
            EXPECT_EQ(vsl_call(exported(each.name), values, row.element == 's'), -77); // as the kernel says
            std::vector<core_call> kernels;
            for (const core_call &call : recorded.calls)
                if (call.entry != "xkl_serv_get_dynamic")
                    kernels.push_back(call);
            ASSERT_EQ(kernels.size(), 1u);
            EXPECT_EQ(kernels[0].entry, std::string("__") + each.name);
            EXPECT_EQ(kernels[0].arguments, vsl_handed(parameters, values));
            ASSERT_EQ(recorded.lines.size(), traced ? 1u : 0u);
            if (traced) {
                EXPECT_EQ(recorded.lines[0].text, filled(each, values));
                EXPECT_EQ(recorded.lines[0].domain, 2);
                EXPECT_EQ(recorded.lines[0].seconds, 0.5);
            }
        }
}

/// What the kernel gets of a seed.
struct received {
    int32_t brng = -1, count = -1;
    std::vector<uint32_t> words;
};

received seeded(int64_t brng, int64_t seed)
{
    received got;
    VSLStreamStatePtr stream = nullptr;
    recorded.on_call = [&](const core_call &call) {
        if (call.entry != "__vslNewStreamEx")
            return;
        EXPECT_EQ(call.arguments[0], word(&stream));
        got.brng = static_cast<int32_t>(call.arguments[1]);
        got.count = static_cast<int32_t>(call.arguments[2]);
        const auto *words = reinterpret_cast<const uint32_t *>(call.arguments[3]);
        got.words.assign(words, words + 2);
    };
    EXPECT_EQ(vslNewStream(&stream, brng, seed), 0);
    recorded.on_call = nullptr;
    return got;
}

TEST(vsl_new_stream, passes_seeds_as_words)
{
    for (const bool traced : {false, true}) {
        reset();
        recorded.verbose = traced;
        const std::vector<std::pair<int64_t, int32_t>> seeds = {
            {0, 1}, {777, 1}, {0x7fffffff, 1}, {0x80000000, 2}, {0x100000000, 2}, {-1, 2}};
        for (const auto &[seed, count] : seeds) {
            const received got = seeded(VSL_BRNG_MCG59, seed);
            EXPECT_EQ(got.brng, VSL_BRNG_MCG59);
            EXPECT_EQ(got.count, count) << seed;
            const auto low = static_cast<uint32_t>(seed), high = static_cast<uint32_t>(seed >> 32);
            EXPECT_EQ(got.words, (std::vector<uint32_t>{low, high})) << seed;
        }
    }
}

TEST(vsl_new_stream, refuses_identifiers_beyond_31_bits)
{
    VSLStreamStatePtr stream = nullptr;
    for (const int64_t bad : {int64_t{0x80000000}, int64_t{0x100000000}, int64_t{0x7fffffffffffffff},
                              int64_t{-1}, int64_t{-0x80000000}}) {
        reset();
        EXPECT_EQ(vslNewStream(&stream, bad, 1), -1000) << bad;
        ASSERT_EQ(recorded.reports.size(), 1u);
        EXPECT_EQ(recorded.reports[0].name, "vslNewStream");
        EXPECT_EQ(recorded.reports[0].length, 12);
        EXPECT_EQ(recorded.reports[0].position, 2);
        EXPECT_TRUE(recorded.calls.empty());
    }
    reset();
    EXPECT_EQ(seeded(0x7fffffff, 1).brng, 0x7fffffff); // whether there is one is the kernel's business
    EXPECT_EQ(seeded(INT64_MIN + 5, 1).brng, 5);       // of such a value the low half counts
}

TEST(vsl_new_stream, settles_threads_ahead_of_all_else)
{
    reset();
    seeded(VSL_BRNG_R250, 1);
    ASSERT_EQ(recorded.calls.size(), 2u);
    EXPECT_EQ(recorded.calls[0].entry, "xkl_serv_get_dynamic");
    reset();
    recorded.verbose = 1;
    seeded(VSL_BRNG_R250, 1);
    EXPECT_EQ(recorded.order, (std::vector<std::string>{"xkl_serv_get_dynamic", "clock", "__vslNewStreamEx",
                                                        "clock", "line"}));
}

TEST(vsl_new_stream, names_generators_in_its_line)
{
    const std::vector<std::pair<int64_t, const char *>> names = {
        {0x100000, "VSL_BRNG_MCG31"},
        {0x200000, "VSL_BRNG_R250"},
        {0x300000, "VSL_BRNG_MRG32K3A"},
        {0x400000, "VSL_BRNG_MCG59"},
        {0x500000, "VSL_BRNG_WH_substream0"},
        {0x500110, "VSL_BRNG_WH_substream272"},
        {0x500111, "Unknown engine"},
        {0x600000, "VSL_BRNG_SOBOL"},
        {0x600001, "Unknown engine"},
        {0x700000, "VSL_BRNG_NIEDERR"},
        {0x800000, "VSL_BRNG_MT19937"},
        {0x900000, "VSL_BRNG_MT2203_substream0"},
        {0x900005, "VSL_BRNG_MT2203_substream5"},
        {0x901787, "VSL_BRNG_MT2203_substream6023"},
        {0x901788, "Unknown engine"},
        {0xA00000, "Unknown engine"},
        {0xD00000, "VSL_BRNG_SFMT19937"},
        {0xE00000, "VSL_BRNG_NONDETERM"},
        {0xF00000, "VSL_BRNG_ARS5"},
        {0x1000000, "VSL_BRNG_PHILOX4X32X10"},
        {0x1100000, "Unknown engine"},
        {0, "Unknown engine"}};
    for (const auto &[identifier, name] : names) {
        reset();
        recorded.verbose = 1;
        recorded.clock = {5, 7};
        VSLStreamStatePtr stream = nullptr;
        EXPECT_EQ(vslNewStream(&stream, identifier, -3), 0);
        char line[128];
        std::snprintf(line, sizeof line, "vslNewStream(%p,%s,-3)", static_cast<void *>(&stream), name);
        ASSERT_EQ(recorded.lines.size(), 1u);
        EXPECT_EQ(recorded.lines[0].text, line);
        EXPECT_EQ(recorded.lines[0].seconds, 2);
    }
}

TEST(vsl_streams, cut_long_file_names_in_their_line)
{
    reset();
    recorded.verbose = 1;
    const std::string name(1000, 'x');
    EXPECT_EQ(vslSaveStreamF(&live_stream, name.c_str()), 0);
    ASSERT_EQ(recorded.lines.size(), 1u);
    EXPECT_EQ(recorded.lines[0].text.size(), 255u);
    EXPECT_EQ(recorded.calls[0].arguments, (words{word(&live_stream), word(name.c_str()), -1}));
}

TEST(vsl_streams, are_told_from_other_memory_by_their_mark)
{
    EXPECT_EQ(xkl_vml_service_IsStreamValid(nullptr), -5);
    for (const int mark : {0, 1, 2, 255}) {
        recorded_stream stream;
        stream.bytes[4] = static_cast<unsigned char>(mark);
        EXPECT_EQ(xkl_vml_service_IsStreamValid(&stream), mark == 1 ? 0 : -1006);
    }
}

} // namespace
