#include "vml_call.h"

#include "routine_call.h"
#include "vml_recorder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <map>
#include <utility>

namespace {

const std::map<std::string, const char *> plain_lists = {
    {"1i_1o", "a r"},
    {"2i_1o", "a b r"},
    {"1i_2o", "a r1 r2"},
    {"scalar", "a =b r"},
    {"to_real", "a r"},
    {"to_complex", "a r"},
    {"linear_frac", "a b =scalea =shifta =scaleb =shiftb r"}};

/// Where r stands, and what its elements are: the classes to_real and to_complex mix two types.
std::size_t element_size(const vml_row &row, const std::string &name)
{
    const std::string kind = row.class_name;
    const bool real = (kind == "to_real" && name == "r") || (kind == "to_complex" && name == "a");
    const std::size_t precision = row.element == 's' || row.element == 'c' ? 4 : 8;
    return precision * ((row.element == 'c' || row.element == 'z') && !real ? 2 : 1);
}

std::string cased(std::string text, int (*change)(int))
{
    std::ranges::transform(text, text.begin(), [&](unsigned char c) { return change(c); });
    return text;
}

constexpr std::size_t most_words = 14;

template <std::size_t>
using word_at = int64_t;

/// Integers and reals travel apart, so their places among each other don't matter; unused ones are not
/// looked at.
template <class Real, std::size_t... I>
void call(void *routine, const std::array<int64_t, most_words> &words, const std::vector<Real> &reals,
          std::index_sequence<I...>)
{
    reinterpret_cast<void (*)(word_at<I>..., Real, Real, Real, Real)>(routine)(
        words[I]..., reals[0], reals[1], reals[2], reals[3]);
}

} // namespace

std::vector<vml_parameter> vml_parameters(const vml_row &row)
{
    const std::string function = row.function;
    if (std::string(row.class_name) == "pack") {
        const vml_parameter at = {
            function.ends_with('I') ? vml_parameter::increment : vml_parameter::places, "places"};
        const vml_parameter a = {vml_parameter::places, "a"}, y = {vml_parameter::places, "y"};
        if (function.starts_with("Pack"))
            return {a, at, y};
        return {a, y, at};
    }
    std::vector<vml_parameter> list;
    for (const std::string &each : split(plain_lists.at(row.class_name))) {
        const bool scalar = each.starts_with('=');
        list.push_back({scalar ? vml_parameter::scalar : vml_parameter::vector, each.substr(scalar)});
        if (row.strided && !scalar)
            list.push_back({vml_parameter::increment, "inc_" + each});
    }
    return list;
}

std::string vml_threader(const vml_row &row)
{
    const std::string own(1, row.element), real = row.element == 'c' ? "s" : "d", kind = row.class_name;
    const std::map<std::string, std::string> classes = {{"1i_1o", own + "_1i_1o"},
                                                        {"2i_1o", own + "_2i_1o"},
                                                        {"1i_2o", own + "_1i_2o"},
                                                        {"scalar", own + "_c" + own + "_2i_" + own + "_1o"},
                                                        {"linear_frac", own + "_6i_1o"},
                                                        {"to_real", own + "_1i_" + real + "_1o"},
                                                        {"to_complex", real + "_1i_" + own + "_1o"}};
    if (kind == "pack")
        return "";
    std::string name = "xkl_vml_serv_threader_" + classes.at(kind);
    if (row.strided)
        name.insert(name.find("i_") + 1, "I").append("I");
    return name;
}

std::vector<vml_spelling> vml_spellings(const vml_row &row)
{
    std::vector<vml_spelling> all;
    for (const bool in_mode : {false, true})
        for (const bool wide : {false, true}) {
            const std::string c = (in_mode ? "vm" : "v") + std::string(row.form) + (wide ? "_64" : "");
            all.push_back({c, false, in_mode, wide});
            all.push_back({cased(c, std::toupper) + "_", true, in_mode, wide});
            all.push_back({cased(c, std::tolower) + "_", true, in_mode, wide});
        }
    return all;
}

vml_call::vml_call(const vml_row &row, const vml_spelling &spelling, int64_t n)
    : row_(row), spelling_(spelling), parameters_(vml_parameters(row)), n_(n)
{
    for (std::size_t i = 0; i < parameters_.size(); ++i) {
        const auto serial = static_cast<int64_t>(i) + 1;
        vectors_.push_back(serial << 40);
        increments_.push_back(serial << 33); // wider than 32 bits
        doubles_.push_back(static_cast<double>(serial) + 0.5);
        floats_.push_back(static_cast<float>(serial) + 0.5f);
    }
}

bool vml_call::by_value(const vml_parameter &each) const
{
    return !spelling_.fortran && !(each.is == vml_parameter::scalar && is_complex());
}

void vml_call::make() const
{
    std::array<int64_t, most_words> words{};
    std::size_t count = 0;
    std::vector<double> doubles;
    std::vector<float> floats;
    words[count++] = spelling_.fortran ? word(&n_) : n_;
    for (std::size_t i = 0; i < parameters_.size(); ++i) {
        const vml_parameter &each = parameters_[i];
        if (each.is == vml_parameter::increment)
            words[count++] = by_value(each) ? increments_[i] : word(&increments_[i]);
        else if (each.is != vml_parameter::scalar)
            words[count++] = vectors_[i];
        else if (by_value(each))
            doubles.push_back(doubles_[i]), floats.push_back(floats_[i]);
        else
            words[count++] = row_.element == 's' ? word(&floats_[i]) : word(&doubles_[i]);
    }
    if (spelling_.in_mode)
        words[count++] = spelling_.fortran ? word(&mode) : static_cast<int64_t>(mode);
    doubles.resize(4);
    floats.resize(4);
    void *const routine = exported(spelling_.name);
    if (row_.element == 's')
        call(routine, words, floats, std::make_index_sequence<most_words>{});
    else
        call(routine, words, doubles, std::make_index_sequence<most_words>{});
}

words vml_call::handed_on(int64_t start) const
{
    words vectors, scalars;
    for (std::size_t i = 0; i < parameters_.size(); ++i) {
        const vml_parameter &each = parameters_[i];
        if (each.is == vml_parameter::increment)
            vectors.push_back(increments_[i]);
        else if (each.is == vml_parameter::vector)
            vectors.push_back(vectors_[i] + start * static_cast<int64_t>(element_size(row_, each.name)));
        else if (each.is == vml_parameter::places)
            vectors.push_back(vectors_[i]);
        else
            scalars.push_back(is_complex() ? word(&doubles_[i]) : word(doubles_[i]));
    }
    if (std::string(row_.function).starts_with("Unpack"))
        std::swap(vectors[1], vectors[2]);
    vectors.insert(vectors.end(), scalars.begin(), scalars.end());
    return vectors;
}

void for_each_entry(const std::function<void(const vml_row &, const vml_spelling &)> &check)
{
    for (int i = 0; i < vml_row_count; ++i)
        for (const vml_spelling &spelling : vml_spellings(vml_rows[i])) {
            SCOPED_TRACE(spelling.name);
            reset();
            check(vml_rows[i], spelling);
        }
}
