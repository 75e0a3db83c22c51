// The sparse BLAS on handles over the recording core: C names pass what came, Fortran names read values
// of the right width through addresses. Calls are laid out by hand, as the calling convention of this
// machine has them, so that no compiler's idea of the lists is shared with the library.
#include "recorder.h"
#include "routine_call.h"

#include "xkl_spblas.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <set>
#include <span>

namespace {

std::span<const routine_row> rows()
{
    return {inspector_rows, static_cast<std::size_t>(inspector_row_count)};
}

char type_of(const routine_row &row)
{
    const std::string name = row.name;
    return name.size() > 12 && name[12] == '_' ? name[11] : '-';
}

/// The number of a value's words among those that a call records.
constexpr std::size_t words_of_descriptor = 3;

/// One argument of a drawn call.
struct drawn_argument {
    enum kind { word, narrow, real, descriptor, address } what;
    int64_t value = 0;
    double number = 0;
    int32_t fields[3] = {};
};

class drawn_call {
  public:
    explicit drawn_call(const routine_row &row) : single_(type_of(row) == 's')
    {
        const bool is_complex = type_of(row) == 'c' || type_of(row) == 'z';
        for (const std::string &kind : split(row.kinds))
            arguments_.push_back(drawn(kind, is_complex, static_cast<int64_t>(arguments_.size()) + 1));
    }

    /// As C passes them: six words in registers, the rest on the stack. A descriptor takes two words,
    /// together in registers or together on the stack, where words behind it may still fit into
    /// registers.
    words by_value() const
    {
        words registers, stack;
        const auto place = [&](std::initializer_list<int64_t> values) {
            words &where = registers.size() + values.size() <= 6 ? registers : stack;
            where.insert(where.end(), values);
        };
        for (const drawn_argument &each : arguments_)
            if (each.what == drawn_argument::descriptor)
                place({descriptor_word(each), each.fields[2] + garbage});
            else if (each.what != drawn_argument::real)
                place({each.what == drawn_argument::narrow ? each.value + garbage : each.value});
        while (!stack.empty() && registers.size() < 6)
            registers.push_back(0);
        registers.insert(registers.end(), stack.begin(), stack.end());
        return registers;
    }

    std::array<double, 2> reals() const
    {
        std::array<double, 2> both{};
        std::size_t n = 0;
        for (const drawn_argument &each : arguments_)
            if (each.what == drawn_argument::real)
                both.at(n++) = each.number;
        return both;
    }

    /// Each value in memory of its own width, something else behind it.
    words by_address()
    {
        words addresses;
        for (const drawn_argument &each : arguments_)
            addresses.push_back(each.what == drawn_argument::address ? each.value : stored(each));
        return addresses;
    }

    words expected() const
    {
        words all;
        for (const drawn_argument &each : arguments_)
            if (each.what == drawn_argument::descriptor)
                all.insert(all.end(), each.fields, each.fields + words_of_descriptor);
            else
                all.push_back(each.what == drawn_argument::real ? recorded_bits(each.number) : each.value);
        return all;
    }

    bool single() const { return single_; }

  private:
    static constexpr int64_t garbage = int64_t{0x5a5a} << 32; // in halves that no one may look at

    static drawn_argument drawn(const std::string &kind, bool is_complex, int64_t i)
    {
        const int64_t address = 4096 * i;
        if (kind.ends_with("!"))
            return {drawn_argument::address, address};
        if (kind == "&matrix_descr")
            return {drawn_argument::descriptor, 0, 0, {static_cast<int32_t>(20 + i), 41, -3}};
        if (kind == "&sparse_matrix_t" || kind == "i")
            return {drawn_argument::word, address + (int64_t{1} << 40)};
        if (kind.starts_with("&"))
            return {drawn_argument::narrow, 100 + i};
        if (kind == "t" && !is_complex)
            return {drawn_argument::real, 0, static_cast<double>(i) + 0.25};
        return {drawn_argument::address, address};
    }

    static int64_t descriptor_word(const drawn_argument &of)
    {
        int64_t word;
        std::memcpy(&word, of.fields, sizeof word);
        return word;
    }

    int64_t stored(const drawn_argument &value)
    {
        memory_.push_back({garbage, garbage, garbage});
        void *const place = memory_.back().data();
        const auto number = static_cast<float>(value.number);
        if (value.what == drawn_argument::descriptor)
            std::memcpy(place, value.fields, sizeof value.fields);
        else if (value.what == drawn_argument::narrow)
            std::memcpy(place, &value.value, sizeof(int32_t));
        else if (value.what == drawn_argument::word)
            std::memcpy(place, &value.value, sizeof(int64_t));
        else if (single_)
            std::memcpy(place, &number, sizeof number);
        else
            std::memcpy(place, &value.number, sizeof value.number);
        return reinterpret_cast<int64_t>(place);
    }

    bool single_;
    std::vector<drawn_argument> arguments_;
    std::deque<std::array<int64_t, 3>> memory_;
};

std::vector<std::string> c_names(const routine_row &row)
{
    std::vector<std::string> names = split(row.spellings);
    names.insert(names.begin(), row.name);
    return names;
}

class handle_routine : public testing::TestWithParam<const routine_row *> {
  protected:
    const routine_row &row = *GetParam();
    drawn_call call{row};

    void expect_arrival() const
    {
        ASSERT_EQ(recorded.order, (std::vector<std::string>{std::string(row.name) + "_i8"}))
            << "nothing is installed, checked or traced";
        EXPECT_EQ(recorded.calls[0].arguments, call.expected());
    }
};

TEST_P(handle_routine, c_names_pass_what_came)
{
    for (const std::string &name : c_names(row)) {
        SCOPED_TRACE(name);
        reset();
        recorded.verbose = 1;
        call_with_reals(exported(name), call.by_value(), call.reals(), call.single());
        expect_arrival();
    }
}

TEST_P(handle_routine, fortran_names_read_values)
{
    for (std::string name : c_names(row)) {
        std::transform(name.begin(), name.end(), name.begin(),
                       [](unsigned char c) { return std::toupper(c); });
        SCOPED_TRACE(name);
        reset();
        recorded.integer_result = 6;
        const int64_t status = call_integer(exported(name), call.by_address());
        EXPECT_EQ(static_cast<int32_t>(status), 6);
        expect_arrival();
    }
}

std::vector<const routine_row *> addresses_of_rows()
{
    std::vector<const routine_row *> all;
    for (const routine_row &row : rows())
        all.push_back(&row);
    return all;
}
INSTANTIATE_TEST_SUITE_P(inspector, handle_routine, testing::ValuesIn(addresses_of_rows()),
                         [](const auto &info) { return std::string(info.param->name); });

TEST(handles, only_the_orthogonal_factorization_has_no_64_names)
{
    std::set<std::string> without;
    for (const routine_row &row : rows())
        if (*row.spellings == 0)
            without.insert(row.name);
    EXPECT_EQ(rows().size(), 178u);
    EXPECT_EQ(without.size(), 12u);
    for (const std::string &name : without)
        EXPECT_NE(name.find("qr"), std::string::npos) << name;
}

TEST(handles, prototypes_agree_with_the_lists)
{
    reset();
    double x[1] = {}, y[1] = {};
    const auto handle = reinterpret_cast<sparse_matrix_t>(int64_t{1} << 40);
    const matrix_descr triangle = {SPARSE_MATRIX_TYPE_TRIANGULAR, SPARSE_FILL_MODE_UPPER, SPARSE_DIAG_UNIT};
    recorded.integer_result = SPARSE_STATUS_NOT_SUPPORTED;
    const sparse_status_t status =
        xkl_sparse_d_mv(SPARSE_OPERATION_TRANSPOSE, 0.5, handle, triangle, x, -2, y);
    EXPECT_EQ(status, SPARSE_STATUS_NOT_SUPPORTED);
    const words mv = {11,
                      recorded_bits(0.5),
                      int64_t{1} << 40,
                      23,
                      41,
                      51,
                      reinterpret_cast<int64_t>(x),
                      recorded_bits(-2),
                      reinterpret_cast<int64_t>(y)};
    EXPECT_EQ(recorded.calls.at(0).arguments, mv);

    sparse_matrix_t product = nullptr;
    xkl_sparse_sp2m_64(SPARSE_OPERATION_NON_TRANSPOSE, triangle, handle, SPARSE_OPERATION_TRANSPOSE,
                       triangle, handle, SPARSE_STAGE_NNZ_COUNT, &product);
    const words sp2m = {10,
                        23,
                        41,
                        51,
                        int64_t{1} << 40,
                        11,
                        23,
                        41,
                        51,
                        int64_t{1} << 40,
                        91,
                        reinterpret_cast<int64_t>(&product)};
    EXPECT_EQ(recorded.calls.at(1).arguments, sp2m);
}

} // namespace
