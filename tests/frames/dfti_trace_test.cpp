// The trace lines of computations, from data/dfti_lines.tbl: what a descriptor holds, and the line it
// must leave.
#include "dfti_fake.h"

#include "xkl_dfti.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

namespace {

/// The settings of a row, by their keys, and its line.
struct configuration {
    std::map<std::string, std::string> settings;
    std::string line, text;

    bool has(const std::string &key) const { return settings.contains(key); }
    std::string get(const std::string &key, const std::string &otherwise) const
    {
        const auto found = settings.find(key);
        return found == settings.end() ? otherwise : found->second;
    }
    int64_t number(const std::string &key, int64_t otherwise) const
    {
        return std::stoll(get(key, std::to_string(otherwise)));
    }
    /// In the order of C.
    words vector(const std::string &key, char separator) const
    {
        std::istringstream in(get(key, ""));
        words values;
        for (std::string part; std::getline(in, part, separator);)
            values.push_back(std::stoll(part));
        return values;
    }
};

void PrintTo(const configuration &row, std::ostream *out)
{
    *out << row.text;
}

std::vector<configuration> configurations()
{
    std::ifstream in(XKL_TEST_DATA "/dfti_lines.tbl");
    std::vector<configuration> rows;
    for (std::string text; std::getline(in, text);) {
        const auto arrow = text.find(" => ");
        if (text.starts_with("#") || arrow == std::string::npos)
            continue;
        configuration row{{}, text.substr(arrow + 4), text.substr(0, arrow)};
        std::istringstream settings(row.text);
        for (std::string each; settings >> each;)
            row.settings[each.substr(0, each.find('='))] = each.substr(each.find('=') + 1);
        rows.push_back(row);
    }
    if (rows.size() < 60)
        throw std::runtime_error("data/dfti_lines.tbl has too few rows");
    return rows;
}

class described : public fake_descriptor {
  public:
    explicit described(const configuration &row)
        : fake_descriptor(static_cast<int32_t>(row.vector("n", 'x').size()))
    {
        make_committed(*this);
        lengths = row.vector("n", 'x');
        std::ranges::reverse(lengths);
        const std::pair<const char *, words *> vectors[] = {{"is", &input_strides},
                                                            {"os", &output_strides},
                                                            {"fs", &forward_strides},
                                                            {"bs", &backward_strides}};
        for (const auto &[key, strides] : vectors)
            if (row.has(key)) {
                *strides = row.vector(key, ',');
                std::reverse(strides->begin() + 1, strides->end());
            }
        count = row.number("count", 1);
        thread_limit = row.number("tlim", 0);
        input_distance = row.number("id", 0), output_distance = row.number("od", 0);
        forward_distance = row.number("fd", 0), backward_distance = row.number("bd", 0);
        head.array_count = 1;
        head.precision = row.get("p", "d") == "s" ? DFTI_SINGLE : DFTI_DOUBLE;
        head.forward_domain = row.get("dom", "c") == "r" ? DFTI_REAL : DFTI_COMPLEX;
        head.placement = row.get("place", "i") == "o" ? DFTI_NOT_INPLACE : DFTI_INPLACE;
        head.complex_storage = static_cast<int32_t>(row.number("cstor", 39));
        head.conjugate_even_storage = static_cast<int32_t>(row.number("ces", 39));
        head.packed_format = static_cast<int32_t>(row.number("pack", 57));
        head.workspace = static_cast<int32_t>(row.number("ws", 51));
        head.forward_scale = std::stod(row.get("fscale", "1"));
        head.backward_scale = std::stod(row.get("bscale", "1"));
        head.flags = row.has("destroy") ? ~0u : ~xkl_dft_destroys_input;
    }
};

/// An address that is as far from a multiple of 64 as the row says.
void *address(int64_t offset)
{
    alignas(64) static char place[256];
    return place + offset;
}

class dfti_line : public testing::TestWithParam<configuration> {};

TEST_P(dfti_line, is_as_expected)
{
    const configuration &row = GetParam();
    described descriptor(row);
    reset();
    recorded.verbose = 1;
    void *const output = row.has("out") ? address(row.number("out", 0)) : nullptr;
    const bool backward = row.get("way", "f") == "b";
    EXPECT_EQ((backward ? DftiComputeOutOfPlaceBackward : DftiComputeOutOfPlaceForward)(
                  descriptor.handle(), address(row.number("in", 0)), output),
              0);
    std::ostringstream expected;
    expected << row.line << "desc:" << static_cast<void *>(descriptor.handle()) << ")";
    ASSERT_EQ(recorded.lines.size(), 1u);
    EXPECT_EQ(recorded.lines[0].text, expected.str()) << row.text;
}

INSTANTIATE_TEST_SUITE_P(all, dfti_line, testing::ValuesIn(configurations()));

TEST(dfti_line_end, a_line_that_is_too_long_is_cut)
{
    fake_descriptor descriptor(7);
    make_committed(descriptor);
    for (words *each : {&descriptor.lengths, &descriptor.input_strides, &descriptor.output_strides})
        std::ranges::fill(*each, 1'000'000'000'000'000'000);
    reset();
    recorded.verbose = 1;
    EXPECT_EQ(DftiComputeInPlaceForward(descriptor.handle(), address(0)), 0);
    ASSERT_EQ(recorded.lines.size(), 1u);
    const std::string &line = recorded.lines[0].text;
    EXPECT_EQ(line.size(), 510u);
    EXPECT_TRUE(line.starts_with("FFT(dcfi1000000000000000000:1000000000000000000:1000000000000000000x1"));
    EXPECT_TRUE(line.find(",input_strides:{1000000000000000000,") != std::string::npos);
}

} // namespace
