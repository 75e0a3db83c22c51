#include "vsl_call.h"

#include "routine_call.h"
#include "vml_recorder.h"

#include <array>
#include <stdexcept>
#include <utility>

recorded_stream live_stream, dead_stream{{0, 0, 0, 0, 0}};

namespace {

constexpr std::size_t most_words = 14;

void *held_live = &live_stream, *held_dead = &dead_stream, *held_null = nullptr;

template <std::size_t>
using word_at = int64_t;

template <class Real, std::size_t... I>
int32_t call(void *routine, const std::array<int64_t, most_words> &words,
             const std::array<double, 4> &reals, std::index_sequence<I...>)
{
    const auto real = [&](std::size_t i) { return static_cast<Real>(reals[i]); };
    return reinterpret_cast<int32_t (*)(word_at<I>..., Real, Real, Real, Real)>(routine)(
        words[I]..., real(0), real(1), real(2), real(3));
}

int64_t stream_word(const std::string &text)
{
    if (text == "live")
        return word(&live_stream);
    if (text == "dead")
        return word(&dead_stream);
    if (text == "&live")
        return word(&held_live);
    if (text == "&dead")
        return word(&held_dead);
    if (text == "&null")
        return word(&held_null);
    throw std::invalid_argument(text);
}

} // namespace

std::vector<vsl_parameter> vsl_parameters(const vsl_row &row)
{
    std::vector<vsl_parameter> list;
    for (const std::string &each : split(row.arguments)) {
        const auto colon = each.find(':');
        const std::string kind = each.substr(colon + 1);
        list.push_back({each.substr(0, colon), kind.substr(0, kind.find(':'))});
    }
    return list;
}

const vsl_row &vsl_row_of(const std::string &name)
{
    for (int i = 0; i < vsl_row_count; ++i)
        if (name == vsl_rows[i].name)
            return vsl_rows[i];
    throw std::out_of_range(name);
}

vsl_value vsl_value_of(const vsl_parameter &parameter, const std::string &text)
{
    if (parameter.is_real())
        return {true, std::stod(text), 0};
    if (text == "null")
        return {false, 0, 0};
    if (text == "at") // the name's letters make the addresses differ
        return {false, 0, (int64_t{1} << 44) + (int64_t{parameter.name[0]} << 36)};
    if (text.starts_with('"'))
        return {false, 0, word("stream.dat")};
    if (text.find_first_of("0123456789") != std::string::npos)
        return {false, 0, std::stoll(text, nullptr, 0)};
    return {false, 0, stream_word(text)};
}

std::vector<vsl_value> vsl_values(const std::vector<vsl_parameter> &parameters, const std::string &text)
{
    const std::vector<std::string> parts = split(text.c_str());
    if (parts.size() != parameters.size())
        throw std::invalid_argument(text);
    std::vector<vsl_value> values;
    for (std::size_t i = 0; i < parts.size(); ++i)
        values.push_back(vsl_value_of(parameters[i], parts[i]));
    return values;
}

int32_t vsl_call(void *routine, const std::vector<vsl_value> &values, bool single)
{
    std::array<int64_t, most_words> words{};
    std::array<double, 4> reals{};
    std::size_t word_count = 0, real_count = 0;
    for (const vsl_value &each : values)
        if (each.real)
            reals.at(real_count++) = each.number;
        else
            words.at(word_count++) = each.word;
    constexpr auto indices = std::make_index_sequence<most_words>{};
    return single ? call<float>(routine, words, reals, indices)
                  : call<double>(routine, words, reals, indices);
}

words vsl_handed(const std::vector<vsl_parameter> &parameters, const std::vector<vsl_value> &values)
{
    words handed;
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        handed.push_back(values[i].real               ? recorded_bits(values[i].number)
                         : parameters[i].is_integer() ? int64_t{static_cast<int32_t>(values[i].word)}
                                                      : values[i].word);
        if (parameters[i].kind == "text")
            handed.push_back(-1);
    }
    return handed;
}
