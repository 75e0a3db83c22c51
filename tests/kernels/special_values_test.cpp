// Results and statuses at special arguments: each case in every lane of a register and in the rest of a
// vector, among the function's other cases.
#include "promises.h"

#include "kernel_rows.h"
#include "library.h"

#include <cmath>
#include <fstream>
#include <limits>
#include <map>
#include <sstream>

namespace {

struct special_case {
    double a[2], r[2];
    int32_t status;
    std::string line;
};
struct function_cases {
    const kernel_row *row;
    const promise *allowed;
    std::vector<special_case> cases;
};

const std::vector<promise> &promises()
{
    static const std::vector<promise> all = read_promises(ACCURACY_TABLE);
    return all;
}

const promise *find_promise(const std::string &kernel)
{
    const auto found = std::find_if(promises().begin(), promises().end(),
                                    [&](const promise &each) { return each.kernel() == kernel; });
    return found == promises().end() ? nullptr : &*found;
}

template <class R>
double value_of(std::string text)
{
    using limits = std::numeric_limits<R>;
    const bool negative = text[0] == '-';
    if (negative)
        text.erase(0, 1);
    static const std::map<std::string, double> names = {
        {"max", limits::max()}, {"min", limits::min()},    {"tiny", limits::denorm_min()},
        {"pi", M_PI},           {"3pi/4", 3 * (M_PI / 4)}, {"pi/2", M_PI_2},
        {"pi/4", M_PI_4}};
    const auto name = names.find(text);
    char *end = nullptr;
    const double value = name != names.end() ? name->second : std::strtod(text.c_str(), &end);
    if (end && *end)
        throw std::runtime_error(text + " is not a number");
    return negative ? -value : value;
}

std::vector<std::string> split(const std::string &text)
{
    std::vector<std::string> parts;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, ',');)
        parts.push_back(part);
    return parts;
}

int32_t status_of(const std::string &word)
{
    const std::vector<std::string> words = split("ok,domain,pole,overflow,underflow");
    const auto found = std::find(words.begin(), words.end(), word);
    if (found == words.end())
        throw std::runtime_error(word + " is no status");
    return static_cast<int32_t>(found - words.begin());
}

template <class R>
special_case case_of(const std::string &arguments, const std::string &results, const std::string &status,
                     const std::string &line)
{
    special_case c = {{}, {}, status_of(status), line};
    const auto fill = [](const std::string &text, double(&to)[2]) {
        const std::vector<std::string> parts = split(text);
        for (size_t i = 0; i < parts.size(); ++i)
            to[i] = value_of<R>(parts[i]);
    };
    fill(arguments, c.a);
    fill(results, c.r);
    return c;
}

/// All cases of the functions that are there, by kernel
std::map<std::string, function_cases> read_cases()
{
    std::map<std::string, function_cases> all;
    std::ifstream in(SPECIAL_VALUES_TABLE);
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#')
            continue;
        std::istringstream words(line);
        std::string functions, types, arguments, results, status;
        words >> functions >> types >> arguments >> results >> status;
        for (const std::string &function : split(functions))
            for (const std::string &type : split(types)) {
                const std::string name = type + function;
                const kernel_row *const row = find_row(name);
                if (!row)
                    continue; // a stand-in
                function_cases &own = all[name];
                own.row = row;
                own.allowed = find_promise(name);
                own.cases.push_back(type == "s" ? case_of<float>(arguments, results, status, line)
                                                : case_of<double>(arguments, results, status, line));
            }
    }
    return all;
}

std::map<int64_t, int32_t> statuses; // of the elements of the last call that had errors

int note(xkl_vml_error *error)
{
    statuses[error->index] = error->status;
    return 0;
}

bool as_expected(double y, double expected, const promise &allowed, int mode)
{
    if (std::isnan(y) || std::isnan(expected))
        return std::isnan(y) && std::isnan(expected);
    if (std::signbit(y) != std::signbit(expected))
        return false;
    const format f(allowed.single());
    const int exponent = std::max(std::isfinite(expected) ? std::ilogb(expected) + 1 : 0, f.least_exponent);
    const double unit = std::ldexp(1, exponent - f.digits), ulps = allowed.ulps[mode];
    if (expected == 0 || std::isinf(expected) || ulps == 0)
        return y == expected;
    return std::abs(y - expected) <= (ulps + 1) * unit; // the table's numbers are rounded, too
}

template <class R>
class special_call {
  public:
    explicit special_call(const function_cases &function) : function_(function) {}

    /// Elements are the cases in turn, from the one at `first`; one case alone where a scalar serves all
    /// elements.
    void run(size_t count, size_t first, int set, int mode)
    {
        const size_t n = function_.cases.size(), step = function_.row->kind == kernel_class::scalar ? 0 : 1;
        std::vector<R> a, b, r1(count, R(-99)), r2(count, R(-99));
        std::vector<const special_case *> order;
        for (size_t i = 0; i < count; ++i) {
            order.push_back(&function_.cases[(first + step * i) % n]);
            a.push_back(static_cast<R>(order.back()->a[0]));
            b.push_back(static_cast<R>(order.back()->a[1]));
        }
        statuses.clear();
        set_mode(accuracies[mode]);
        compute(set, a, b, r1, r2);
        for (size_t i = 0; i < count; ++i)
            check(*order[i], i, set, mode, static_cast<double>(r1[i]), static_cast<double>(r2[i]));
    }

  private:
    void compute(int set, const std::vector<R> &a, const std::vector<R> &b, std::vector<R> &r1,
                 std::vector<R> &r2) const
    {
        const std::string name = function_.row->name;
        const auto n = static_cast<int32_t>(a.size());
        switch (function_.row->kind) {
        case kernel_class::two_in_one_out:
            return kernel<const R *, const R *, R *>(name, set)(n, a.data(), b.data(), r1.data());
        case kernel_class::linear_frac: // (1*a + 0)/(1*b + 0)
            return kernel<const R *, const R *, R *, R, R, R, R>(name, set)(n, a.data(), b.data(),
                                                                            r1.data(), 1, 0, 1, 0);
        case kernel_class::one_in_two_out:
            return kernel<const R *, R *, R *>(name, set)(n, a.data(), r1.data(), r2.data());
        case kernel_class::scalar:
            return kernel<const R *, R *, R>(name, set)(n, a.data(), r1.data(), b[0]);
        default:
            return kernel<const R *, R *>(name, set)(n, a.data(), r1.data());
        }
    }
    void check(const special_case &c, size_t i, int set, int mode, double r1, double r2) const
    {
        const auto what = [&] {
            return std::string(function_.row->name) + " (" + c.line + ") element " + std::to_string(i) +
                   " set " + std::to_string(set) + " mode " + std::to_string(mode);
        };
        const auto found = statuses.find(static_cast<int64_t>(i));
        EXPECT_EQ(found == statuses.end() ? 0 : found->second, c.status) << what();
        EXPECT_TRUE(as_expected(r1, c.r[0], *function_.allowed, mode)) << what() << " is " << r1;
        if (function_.row->kind == kernel_class::one_in_two_out) {
            EXPECT_TRUE(as_expected(r2, c.r[1], *function_.allowed, mode)) << what() << " is second " << r2;
        }
    }

    const function_cases &function_;
};

template <class R>
void check_all(const function_cases &function)
{
    ASSERT_NE(function.allowed, nullptr) << function.row->name;
    special_call<R> call(function);
    const size_t n = function.cases.size();
    for (int set = 0; set <= best_set(); ++set)
        for (int mode = 0; mode < 3; ++mode)
            for (size_t first = 0; first < n; ++first)
                call.run(first == 0 ? n + 37 : 1 + first % 19, first, set, mode);
}

TEST(SpecialValues, AreAsLaidDown)
{
    set_callback(&note);
    for (const auto &[name, function] : read_cases())
        function.row->element == 's' ? check_all<float>(function) : check_all<double>(function);
    set_callback(nullptr);
    set_status(0);
    set_mode(VML_HA);
}

TEST(SpecialValues, EveryRealFunctionHasSome)
{
    const auto cases = read_cases();
    for (int i = 0; i < kernel_row_count; ++i) {
        const kernel_row &row = kernel_rows[i];
        const bool real = row.element == 's' || row.element == 'd';
        if (real && !row.strided && row.kind != kernel_class::pack) {
            EXPECT_TRUE(cases.contains(row.name)) << row.name;
        }
    }
}

} // namespace
