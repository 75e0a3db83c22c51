// The C interface over the default core: every problem gives the same result in either layout. A
// column-major call passes through as it is, so this says that every row-major translation computes what it
// should, conjugates included.
#include "cblas_call.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

/// How one matrix of a call lies in memory.
class matrix_layout {
  public:
    matrix_layout(c_call &call, const std::string &name, int64_t g) : by_rows_(call.by_rows())
    {
        const std::string ld = "ld" + name;
        const auto size = [&](const std::string &dimension) { return call.value(dimension, g); };
        const auto side = [&] {
            return call.has("side") ? size(size("side") == 141 ? "m" : "n") : size("n");
        };
        if (name == "ap") {
            packed_ = true;
            upper_ = size("uplo") == 121;
            rows = cols = side();
            return;
        }
        ld_ = size(ld);
        std::string extent = call.rule.extents;
        extent = extent.substr(extent.find(ld + ":") + ld.size() + 1);
        extent = extent.substr(0, extent.find(' '));
        const auto sizes = parts_of(extent, ',');
        if (extent == "k+1" || extent == "kl+ku+1") {
            const bool upper = call.has("uplo") && size("uplo") == 121;
            band_ = true;
            below_ = call.has("kl") ? size("kl") : upper ? 0 : size("k");
            above_ = call.has("ku") ? size("ku") : upper ? size("k") : 0;
            rows = call.has("m") ? size("m") : size("n");
            cols = size("n");
        } else if (sizes.size() == 1) {
            rows = cols = extent == "side" ? side() : size("n");
        } else {
            rows = size(sizes[sizes.size() - 2]);
            cols = size(sizes[sizes.size() - 1]);
            if (sizes.size() == 3 && size(sizes[0]) != 111)
                std::swap(rows, cols);
        }
    }

    int64_t rows, cols;

    /// Where an element is in memory, or -1 if it is not.
    int64_t at(int64_t i, int64_t j) const
    {
        if (packed_) {
            if (upper_ ? i > j : i < j)
                return -1;
            const int64_t line = by_rows_ ? i : j, other = by_rows_ ? j : i;
            // Lines that grow hold 1, 2, 3... elements; those that shrink hold n, n-1...
            return upper_ == by_rows_ ? line * rows - line * (line - 1) / 2 + other - line
                                      : line * (line + 1) / 2 + other;
        }
        if (band_) {
            if (j - i > above_ || i - j > below_)
                return -1;
            return by_rows_ ? i * ld_ + below_ + j - i : j * ld_ + above_ + i - j;
        }
        return by_rows_ ? i * ld_ + j : j * ld_ + i;
    }

  private:
    bool by_rows_, packed_ = false, band_ = false, upper_ = false;
    int64_t ld_ = 0, below_ = 0, above_ = 0;
};

/// Where the matrices or vectors of an argument start, and their groups.
struct instance {
    void *start;
    int64_t group;
};

std::vector<instance> instances_of(c_call &call, const std::string &name)
{
    c_argument &given = call.at(name);
    std::vector<instance> all;
    const int64_t size = (is_single(given.element) ? 4 : 8) * (is_complex(given.element) ? 2 : 1);
    if (call.has("batch_size"))
        for (int64_t i = 0; i < call.value("batch_size"); ++i)
            all.push_back({given.memory.data() + i * call.value("stride" + name) * size, 0});
    else if (call.grouped)
        for (int64_t g = 0; g < call.groups; ++g)
            for (int64_t i = 0; i < call.value("group_size", g); ++i)
                all.push_back({given.addresses[all.size()], g});
    else
        all.push_back({given.data(), 0});
    return all;
}

bool is_matrix(c_call &call, const c_argument &each)
{
    return each.name == "ap" || call.has("ld" + each.name);
}

/// Values without pattern, small beside a diagonal that keeps triangular systems tame.
number value_at(const std::string &name, std::size_t instance, int64_t i, int64_t j)
{
    const auto noise = [&](int64_t seed) {
        return std::sin(static_cast<double>(seed + 7 * i + 13 * j) + 3.0 * static_cast<double>(instance) +
                        name[0]);
    };
    return i == j ? number(4 + noise(1)) : number(noise(2), noise(3)) * 0.4;
}

void fill(c_call &call)
{
    for (c_argument &each : call.arguments) {
        if (!is_matrix(call, each))
            continue;
        const auto all = instances_of(call, each.name);
        for (std::size_t p = 0; p < all.size(); ++p) {
            const matrix_layout place(call, each.name, all[p].group);
            for (int64_t i = 0; i < place.rows; ++i)
                for (int64_t j = 0; j < place.cols; ++j)
                    if (place.at(i, j) >= 0)
                        write(all[p].start, each.element, place.at(i, j), value_at(each.name, p, i, j));
        }
    }
}

/// The elements of an argument in an order that no layout changes.
std::vector<number> elements(c_call &call, c_argument &each)
{
    std::vector<number> result;
    if (!is_matrix(call, each))
        for (int64_t i = 0; i < c_call::bytes / 16; ++i)
            result.push_back(read(each.data(), each.element, i));
    else
        for (const instance &one : instances_of(call, each.name)) {
            const matrix_layout place(call, each.name, one.group);
            for (int64_t i = 0; i < place.rows; ++i)
                for (int64_t j = 0; j < place.cols; ++j)
                    if (place.at(i, j) >= 0)
                        result.push_back(read(one.start, each.element, place.at(i, j)));
        }
    return result;
}

void expect_same_result(c_call &by_columns, c_call &by_rows)
{
    for (std::size_t a = 0; a < by_rows.arguments.size(); ++a) {
        c_argument &each = by_rows.arguments[a];
        if (each.element == '-' || each.is_real_value())
            continue;
        const auto expected = elements(by_columns, by_columns.arguments[a]), seen = elements(by_rows, each);
        ASSERT_EQ(expected.size(), seen.size());
        double largest = 0, difference = 0;
        for (std::size_t i = 0; i < seen.size(); ++i) {
            largest = std::max(largest, std::abs(expected[i]));
            difference = std::max(difference, std::abs(expected[i] - seen[i]));
        }
        EXPECT_LE(difference, largest * (is_single(each.element) ? 1e-5 : 1e-13)) << each.name;
    }
}

/// The options of all groups, so many values further.
void turn_options(c_call &call, int64_t by)
{
    for (c_argument &each : call.arguments)
        for (int64_t g = 0; each.kind == "C" && g < call.groups; ++g) {
            const option_range range = options_of(each.name);
            call.set(each.name, range.first + (g + by + each.name.back()) % range.count, g);
        }
}

TEST(cblas_numeric, both_layouts_give_the_same_result)
{
    for (const cblas_row *row : rows_with([](c_call &call) { return call.has_layout; })) {
        SCOPED_TRACE(row->name);
        c_call options(*row, 3);
        for (int64_t turn = 0; turn < (options.grouped || options.has("stridex") ? 3 : 1); ++turn) {
            turn_options(options, turn);
            if (options.has("stridex"))
                options.set("stridex", 25 * turn); // 0: one vector for the whole batch
            options.for_each_option([&] {
                bool refused = false;
                for (int64_t g = 0; g < (options.grouped ? 3 : 1); ++g)
                    refused = refused || options.is_refused(g);
                if (refused)
                    return;
                c_call by_columns(*row, 3), by_rows(*row, 3);
                for (std::size_t i = 0; i < options.arguments.size(); ++i)
                    for (c_call *call : {&by_columns, &by_rows}) {
                        call->arguments[i].numbers = options.arguments[i].numbers;
                        call->arguments[i].options = options.arguments[i].options;
                    }
                by_columns.set_layout(102);
                by_rows.set_layout(101);
                fill(by_columns);
                fill(by_rows);
                const auto before = by_rows.arguments;
                by_columns.make();
                by_rows.make("_64");
                expect_same_result(by_columns, by_rows);
                bool changed = false;
                for (std::size_t i = 0; i < before.size(); ++i)
                    changed = changed || before[i].memory != by_rows.arguments[i].memory;
                EXPECT_TRUE(changed) << "nothing was computed";
            });
        }
    }
}

} // namespace
